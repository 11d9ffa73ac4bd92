/// What conversions touch and what their results hang on: every byte of memory that is theirs and
/// none besides, and neither alignment nor what lies on the stack.
#include "tests/common/AllConversions.h"
#include "tests/common/FaultCatcher.h"
#include "tests/common/GuardedBytes.h"
#include "tests/common/Random.h"
#include "tests/reference/Conversions.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

/// Rows lie close: what one reads too much lies in the next, and only the last reads it behind the
/// picture.
struct Case {
    const Conversion& conversion;
    const reference::RowConversion& reference;
    unsigned width;
    unsigned height;

    std::size_t srcRow() const { return reference.bytesRead(width); }
    std::size_t dstRow() const { return rowBytes(conversion.dst(), width); }
    std::size_t srcBytes() const { return height * srcRow(); }
    std::size_t dstBytes() const { return height * dstRow(); }

    void run(std::uint8_t* dst, std::uint8_t* src) const
    {
        conversion.entry.function(width, height, dst, static_cast<unsigned>(dstRow()), src,
                                  static_cast<unsigned>(srcRow()));
    }

    /// The bits of the destination that have no defined value. `src` can be read some way behind
    /// the picture.
    std::vector<std::uint8_t> undefined(const std::uint8_t* src) const
    {
        std::vector<std::uint8_t> mask;
        for (unsigned y = 0; y < height; ++y) {
            const auto row =
                reference.convert(src + y * srcRow(), width, conversion.heightForPrimaries(height));
            mask.insert(mask.end(), row.undefined.begin(), row.undefined.end());
        }
        return mask;
    }
};

std::ostream& operator<<(std::ostream& out, const Case& c)
{
    return out << c.conversion.name << ", width " << c.width << ", height " << c.height;
}

class ConversionBounds : public testing::Test {
protected:
    /// Room for two of the widest rows and what is read behind them, at any alignment.
    static constexpr std::size_t kRoom = 2 * 4096 * 8 + 4096;

    GuardedBytes m_src{kRoom};
    GuardedBytes m_dst{kRoom};
    FaultCatcher m_catcher;

    ConversionBounds() { Random(1).fill(std::span(m_src.begin(), m_src.end()), Content::Uniform); }

    /// Calls `check(case)` for every conversion at widths up to `last` and at `wider` ones, until
    /// it gives false: one fault of a conversion tells as much as all of them.
    template<class CHECK>
    static void forAll(unsigned last, const std::vector<unsigned>& wider, const CHECK& check)
    {
        for (const Conversion& conversion : allConversions()) {
            const auto reference = reference::rowConversion(conversion.entry);
            const unsigned least = std::max(1u, reference.leastWidth);
            std::vector<unsigned> widths(std::max(least, last + 1) - least);
            std::iota(widths.begin(), widths.end(), least);
            widths.insert(widths.end(), wider.begin(), wider.end());
            for (const unsigned width : widths)
                if (width >= least && !check(Case{conversion, reference, width, 2}))
                    break;
        }
    }

    static const std::vector<unsigned>& pictureWidths()
    {
        static const std::vector<unsigned> widths = {720,  1280, 1918, 1919, 1920,
                                                     1921, 1922, 2048, 3840, 4096};
        return widths;
    }

    /// Converts what it is told to and names the place of a fault.
    bool staysInside(const Case& c, const char* side, std::uint8_t* dst, std::uint8_t* src)
    {
        const bool faulted = m_catcher.faults([&] { c.run(dst, src); });
        const auto* const at = static_cast<const std::uint8_t*>(m_catcher.address());
        EXPECT_FALSE(faulted) << c << ", pictures " << side << " at a protected page: touched byte "
                              << at - src << " of " << c.srcBytes() << " of the source, or "
                              << at - dst << " of " << c.dstBytes() << " of the destination";
        return !faulted;
    }

    bool staysInside(const Case& c)
    {
        return staysInside(c, "ending", m_dst.end() - c.dstBytes(), m_src.end() - c.srcBytes()) &&
               staysInside(c, "beginning", m_dst.begin(), m_src.begin());
    }
};

TEST_F(ConversionBounds, NothingOutsideIsTouched)
{
    forAll(200, pictureWidths(), [&](const Case& c) { return staysInside(c); });
}

// So the bytes that a conversion may read behind a row are not more than it needs, and a fault does
// not pass unseen.
TEST_F(ConversionBounds, AllInsideIsTouched)
{
    forAll(100, {1280, 1919, 4096}, [&](const Case& c) {
        std::uint8_t* const dst = m_dst.end() - c.dstBytes() + 1;
        std::uint8_t* const src = m_src.end() - c.srcBytes() + 1;
        const bool reads = m_catcher.faults([&] { c.run(m_dst.begin(), src); });
        const bool writes = m_catcher.faults([&] { c.run(dst, m_src.begin()); });
        EXPECT_TRUE(reads) << c << ": the source's last byte was not read";
        EXPECT_TRUE(writes) << c << ": the destination's last byte was not written";
        return reads && writes;
    });
}

/// Compares results but for bits without a defined value.
struct SameBytes {
    std::vector<std::uint8_t> undefined;
    std::vector<std::uint8_t> first;

    bool operator()(const std::uint8_t* bytes)
    {
        std::vector<std::uint8_t> defined(bytes, bytes + undefined.size());
        for (std::size_t i = 0; i < defined.size(); ++i)
            defined[i] &= static_cast<std::uint8_t>(~undefined[i]);
        if (first.empty())
            first = defined;
        return defined == first;
    }
};

/// Leaves `byte` all over the stack that the next call will use.
[[gnu::noinline]] void paintStack(std::uint8_t byte)
{
    std::uint8_t stack[65536];
    std::memset(stack, byte, sizeof(stack));
    asm volatile("" : : "r"(stack) : "memory");
}

TEST_F(ConversionBounds, WhatLiesOnTheStackMakesNoDifference)
{
    forAll(100, {1279, 1280, 1281, 1919, 4095}, [&](const Case& c) {
        SameBytes same{c.undefined(m_src.begin()), {}};
        for (const std::uint8_t paint : {0x00, 0xFF, 0xA5}) {
            paintStack(paint);
            c.run(m_dst.begin(), m_src.begin());
            if (!same(m_dst.begin())) {
                ADD_FAILURE() << c << ": other bytes over a stack of " << unsigned{paint};
                return false;
            }
        }
        return true;
    });
}

} // namespace
} // namespace kestrix::test
