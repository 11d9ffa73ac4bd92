/// Prints a hash of the result of each conversion for random pictures. It is the same for every
/// compiler and every level of optimisation. Bits without a defined value are left out.
#include "tests/common/AllConversions.h"
#include "tests/common/Random.h"
#include "tests/reference/Conversions.h"

#include <cstdio>
#include <vector>

using namespace kestrix::test;
using namespace KSX::PixelConversion;

namespace {

/// FNV-1a of 64 bits.
class Hash {
public:
    void add(std::uint8_t byte) { m_value = (m_value ^ byte) * 0x100000001B3; }
    unsigned long long value() const { return m_value; }

private:
    unsigned long long m_value = 0xCBF29CE484222325;
};

/// Converts each row of a picture separately. A tall picture selects the primaries for 625 lines;
/// all its rows lie in one place.
void hashRow(const Conversion& conversion, unsigned width, unsigned height, Content content,
             Hash& hash)
{
    const auto reference = reference::rowConversion(conversion.entry);
    std::vector<std::uint8_t> src(reference.bytesRead(width) + 64);
    std::vector<std::uint8_t> dst(rowBytes(conversion.dst(), width));
    Random(width).fill(src, content);
    conversion.limit(src);
    conversion.entry.function(width, height, dst.data(),
                              height == 1 ? static_cast<unsigned>(dst.size()) : 0, src.data(), 0);
    const auto expected =
        reference.convert(src.data(), width, conversion.heightForPrimaries(height));
    for (std::size_t i = 0; i < dst.size(); ++i)
        hash.add(dst[i] & static_cast<std::uint8_t>(~expected.undefined[i]));
}

} // namespace

int main()
{
    for (const Conversion& conversion : allConversions()) {
        const unsigned least = std::max(1u, reference::rowConversion(conversion.entry).leastWidth);
        Hash hash;
        for (const unsigned width : {5, 12, 13, 31, 32, 50, 96, 97, 131, 720, 1280, 1919, 4096})
            for (const Content content : {Content::Uniform, Content::NearMaximum})
                if (width >= least) {
                    hashRow(conversion, width, 1, content, hash);
                    if (conversion.changes601() && width < 100)
                        hashRow(conversion, width, 576, content, hash);
                }
        std::printf("%s %016llx\n", conversion.name.c_str(), hash.value());
    }
}
