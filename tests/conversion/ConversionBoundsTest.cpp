/// Conversions touch every byte of their memory, and no other byte.
#include "tests/common/AllConversions.h"
#include "tests/common/FaultCatcher.h"
#include "tests/common/GuardedBytes.h"
#include "tests/reference/Conversions.h"

#include <numeric>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {
namespace {

using namespace KSX::PixelConversion;

/// A conversion of two rows without a gap: bytes that are read after the first row are in the
/// second one, and only those after the second row are outside the picture.
struct Case {
    const Conversion& conversion;
    const reference::RowConversion& reference;
    unsigned width;

    std::size_t srcBytes() const { return 2 * reference.bytesRead(width); }
    std::size_t dstBytes() const { return 2 * rowBytes(conversion.dst(), width); }

    bool faults(FaultCatcher& catcher, std::uint8_t* dst, std::uint8_t* src) const
    {
        return catcher.faults([&] {
            conversion.entry.function(width, 2, dst, static_cast<unsigned>(dstBytes() / 2), src,
                                      static_cast<unsigned>(srcBytes() / 2));
        });
    }
};

std::ostream& operator<<(std::ostream& out, const Case& c)
{
    return out << c.conversion.name << ", width " << c.width << ": ";
}

class ConversionBounds : public testing::Test {
protected:
    /// Room for two of the widest rows, and for what is read after them.
    static constexpr std::size_t kRoom = 2 * 4096 * 8 + 4096;

    GuardedBytes m_src{kRoom};
    GuardedBytes m_dst{kRoom};
    FaultCatcher m_catcher;

    /// Calls `check(case)` for every conversion at `widths` and at all widths up to `last`. After
    /// false it goes on with the next conversion, because more faults of one conversion say nothing
    /// new.
    template<class CHECK>
    static void forAll(unsigned last, std::vector<unsigned> widths, const CHECK& check)
    {
        widths.resize(widths.size() + last);
        std::iota(widths.end() - last, widths.end(), 1u);
        for (const Conversion& conversion : allConversions()) {
            const auto reference = reference::rowConversion(conversion.entry);
            for (const unsigned width : widths)
                if (width >= reference.leastWidth && !check(Case{conversion, reference, width}))
                    break;
        }
    }
};

TEST_F(ConversionBounds, NothingOutsideIsTouched)
{
    forAll(200, {720, 1280, 1918, 1919, 1920, 1921, 1922, 2048, 3840, 4096}, [&](const Case& c) {
        const auto staysInside = [&](const char* side, std::uint8_t* dst, std::uint8_t* src) {
            const bool faulted = c.faults(m_catcher, dst, src);
            const auto* const at = static_cast<const std::uint8_t*>(m_catcher.address());
            EXPECT_FALSE(faulted) << c << "pictures " << side << " at a protected page: byte "
                                  << at - src << " of " << c.srcBytes() << " of the source, or "
                                  << at - dst << " of " << c.dstBytes() << " of the destination";
            return !faulted;
        };
        return staysInside("end", m_dst.end() - c.dstBytes(), m_src.end() - c.srcBytes()) &&
               staysInside("begin", m_dst.begin(), m_src.begin());
    });
}

// A conversion may read no more bytes after a row than it needs, and faults are seen in the test
// above.
TEST_F(ConversionBounds, AllInsideIsTouched)
{
    forAll(100, {1280, 1919, 4096}, [&](const Case& c) {
        const bool reads = c.faults(m_catcher, m_dst.begin(), m_src.end() - c.srcBytes() + 1);
        const bool writes = c.faults(m_catcher, m_dst.end() - c.dstBytes() + 1, m_src.begin());
        EXPECT_TRUE(reads) << c << "the source's last byte was not read";
        EXPECT_TRUE(writes) << c << "the destination's last byte was not written";
        return reads && writes;
    });
}

} // namespace
} // namespace kestrix::test
