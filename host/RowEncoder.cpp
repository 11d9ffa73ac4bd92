/// The layouts of the 30 pixel formats as a table, and the one writer that uses it.
#include "host/RowEncoder.h"

#include "conversion/PixelFormats.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string_view>

namespace kestrix::host {

using namespace KSX::PixelConversion;

namespace {

enum class ByteOrder { Little, Big };
enum class Range { Studio, Full };

/// Weights of red and blue in luma.
struct LumaWeights {
    Colorspace colorspace;
    double r;
    double b;
};

constexpr LumaWeights kLumaWeights[] = {
    {Colorspace601, 0.299, 0.114},
    {Colorspace709, 0.2126, 0.0722},
    {Colorspace2020, 0.2627, 0.0593},
};

std::uint32_t roundToCode(double value, double lowest, double highest)
{
    return static_cast<std::uint32_t>(std::clamp(std::floor(value + 0.5), lowest, highest));
}

/// The code of a value: 0 has the code `zero`, and 1 has the code `zero` + `gain`, both at 8 bits.
std::uint32_t studioCode(double value, double zero, double gain, unsigned bits)
{
    const double scale = 1u << (bits - 8);
    return roundToCode(scale * (zero + gain * value), scale, 255 * scale - 1);
}

std::uint32_t fullCode(double value, unsigned bits)
{
    const double highest = (1u << bits) - 1;
    return roundToCode(highest * value, 0, highest);
}

std::uint32_t levelCode(double value, Range range, unsigned bits)
{
    return range == Range::Full ? fullCode(value, bits) : studioCode(value, 16, 219, bits);
}

std::uint32_t chromaCode(double value, unsigned bits)
{
    return studioCode(value, 128, 224, bits);
}

} // namespace

/// A format as a stream of samples that fill words from the lowest bit up.
///
/// Letters of `samples` are components in the order of the stream: R G B, A for alpha, Y U V for
/// luma, Cb and Cr, and '-' for zeros. With chroma they describe a pair of pixels, otherwise one
/// pixel. Each word has spare bits below and above its samples; if it has none, a sample may
/// continue in the next word.
struct RowEncoder::Layout {
    PixelFormat format;
    std::string_view samples;
    unsigned bits;
    unsigned wordBits;
    ByteOrder order;
    unsigned spareBelow;
    unsigned spareAbove;
    Range range;
    Range alphaRange = Range::Full;
    unsigned spareValue = 0;

    bool hasChroma() const { return samples.find('U') != samples.npos; }
    std::size_t pixels() const { return hasChroma() ? 2 : 1; }
};

// clang-format off
const RowEncoder::Layout RowEncoder::kLayouts[] = {
    // format            samples  bits word order              spare  range
    {PixelFormat_2vuy,   "UYVY",    8,  8, ByteOrder::Little,  0, 0,  Range::Studio},
    {PixelFormat_YUY2,   "YUYV",    8,  8, ByteOrder::Little,  0, 0,  Range::Studio},
    {PixelFormat_v210,   "UYVY",   10, 32, ByteOrder::Little,  0, 2,  Range::Studio},
    {PixelFormat_v212,   "UYVY",   12, 16, ByteOrder::Little,  4, 0,  Range::Studio},
    {PixelFormat_v216,   "UYVY",   16, 16, ByteOrder::Little,  0, 0,  Range::Studio},
    {PixelFormat_ay10,   "YUAYVA", 10, 32, ByteOrder::Big,     0, 2,  Range::Studio, Range::Studio},
    {PixelFormat_Ay10,   "YUAYVA", 10, 32, ByteOrder::Big,     0, 2,  Range::Studio, Range::Full},

    {PixelFormat_ARGB,   "ARGB",    8,  8, ByteOrder::Little,  0, 0,  Range::Full},
    {PixelFormat_vRGB,   "ARGB",    8,  8, ByteOrder::Little,  0, 0,  Range::Studio},
    {PixelFormat_BGRA,   "BGRA",    8,  8, ByteOrder::Little,  0, 0,  Range::Full},
    {PixelFormat_BGRv,   "BGRA",    8,  8, ByteOrder::Little,  0, 0,  Range::Studio},
    {PixelFormat_BGRX,   "BGR-",    8,  8, ByteOrder::Little,  0, 0,  Range::Full},
    {PixelFormat_RGBA,   "RGBA",    8,  8, ByteOrder::Little,  0, 0,  Range::Full},
    {PixelFormat_RGB3,   "RGB",     8,  8, ByteOrder::Little,  0, 0,  Range::Full},

    {PixelFormat_r210,   "BGR",    10, 32, ByteOrder::Big,     0, 2,  Range::Studio},
    {PixelFormat_R210,   "BGR",    10, 32, ByteOrder::Big,     0, 2,  Range::Full},
    {PixelFormat_R10l,   "BGR",    10, 32, ByteOrder::Little,  2, 0,  Range::Studio},
    {PixelFormat_R10L,   "BGR",    10, 32, ByteOrder::Little,  2, 0,  Range::Full},
    {PixelFormat_R10b,   "BGR",    10, 32, ByteOrder::Big,     2, 0,  Range::Studio},
    {PixelFormat_R10B,   "BGR",    10, 32, ByteOrder::Big,     2, 0,  Range::Full},
    {PixelFormat_R10A,   "BGR",    10, 32, ByteOrder::Big,     2, 0,  Range::Full, Range::Full, 3},
    {PixelFormat_A04l,   "BGRA",   10, 16, ByteOrder::Little,  0, 6,  Range::Studio},
    {PixelFormat_A04L,   "BGRA",   10, 16, ByteOrder::Little,  0, 6,  Range::Full},

    {PixelFormat_R12B,   "RGB",    12, 32, ByteOrder::Big,     0, 0,  Range::Full},
    {PixelFormat_R12L,   "RGB",    12, 32, ByteOrder::Little,  0, 0,  Range::Full},
    {PixelFormat_R12l,   "RGB",    12, 32, ByteOrder::Little,  0, 0,  Range::Studio},
    {PixelFormat_S12L,   "BGR-",   12, 16, ByteOrder::Little,  0, 4,  Range::Full},
    {PixelFormat_b64a,   "ARGB",   16, 16, ByteOrder::Big,     0, 0,  Range::Full},
    {PixelFormat_L64A,   "ARGB",   16, 16, ByteOrder::Little,  0, 0,  Range::Full},
    {PixelFormat_l64a,   "ARGB",   10, 16, ByteOrder::Little,  6, 0,  Range::Studio},
};
// clang-format on

const RowEncoder::Layout& RowEncoder::layoutOf(std::uint32_t format)
{
    static_assert(std::size(kLayouts) == std::size(kPixelFormats));
    for (const Layout& layout : kLayouts)
        if (layout.format == format)
            return layout;
    throw std::invalid_argument("no such pixel format");
}

RowEncoder::RowEncoder(std::uint32_t format, Colorspace colorspace, unsigned width)
    : m_layout(layoutOf(format))
{
    const auto* weights =
        std::find_if(std::begin(kLumaWeights), std::end(kLumaWeights),
                     [=](const LumaWeights& row) { return row.colorspace == colorspace; });
    if (weights == std::end(kLumaWeights))
        throw std::invalid_argument("no such colourspace");
    m_lumaR = weights->r;
    m_lumaB = weights->b;

    const PixelFormatInfo& info = *findPixelFormat(format);
    m_rowBytes = KSX::PixelConversion::rowBytes(info, width);
    m_codes.resize((width + info.groupPixels - 1) / info.groupPixels * info.groupPixels);
}

void RowEncoder::encode(std::span<const Color> row, std::uint8_t* out)
{
    if (row.empty())
        return;
    if (m_layout.hasChroma())
        quantiseYUV(row);
    else
        quantiseRGB(row);
    pack(out);
}

void RowEncoder::quantiseRGB(std::span<const Color> row)
{
    for (std::size_t x = 0; x < m_codes.size(); ++x) {
        const Color& color = row[std::min(x, row.size() - 1)];
        m_codes[x] = {levelCode(color.r, m_layout.range, m_layout.bits),
                      levelCode(color.g, m_layout.range, m_layout.bits),
                      levelCode(color.b, m_layout.range, m_layout.bits),
                      levelCode(color.a, m_layout.alphaRange, m_layout.bits)};
    }
}

void RowEncoder::quantiseYUV(std::span<const Color> row)
{
    const auto pixel = [&](std::size_t x) -> const Color& {
        return row[std::min(x, row.size() - 1)];
    };
    const auto luma = [&](double r, double g, double b) {
        return m_lumaR * r + (1 - m_lumaR - m_lumaB) * g + m_lumaB * b;
    };

    std::uint32_t cb = 0;
    std::uint32_t cr = 0;
    for (std::size_t x = 0; x < m_codes.size(); ++x) {
        if (x % 2 == 0) {
            // Chroma is linear in R'G'B', so a filter of R'G'B' also filters chroma.
            const Color& left = pixel(x == 0 ? 0 : x - 1);
            const Color& middle = pixel(x);
            const Color& right = pixel(x + 1);
            const double r = (left.r + 2 * middle.r + right.r) / 4;
            const double g = (left.g + 2 * middle.g + right.g) / 4;
            const double b = (left.b + 2 * middle.b + right.b) / 4;
            const double y = luma(r, g, b);
            cb = chromaCode((b - y) / (2 * (1 - m_lumaB)), m_layout.bits);
            cr = chromaCode((r - y) / (2 * (1 - m_lumaR)), m_layout.bits);
        }
        const Color& color = pixel(x);
        m_codes[x] = {levelCode(luma(color.r, color.g, color.b), m_layout.range, m_layout.bits), cb,
                      cr, levelCode(color.a, m_layout.alphaRange, m_layout.bits)};
    }
}

void RowEncoder::pack(std::uint8_t* out) const
{
    std::uint64_t word = 0;
    unsigned filled = 0;
    const auto append = [&](std::uint64_t value, unsigned bits) {
        word |= value << filled;
        filled += bits;
        if (filled < m_layout.wordBits)
            return;
        const unsigned bytes = m_layout.wordBits / 8;
        for (unsigned i = 0; i < bytes; ++i) {
            const unsigned place = m_layout.order == ByteOrder::Little ? i : bytes - 1 - i;
            *out++ = static_cast<std::uint8_t>(word >> 8 * place);
        }
        word >>= m_layout.wordBits;
        filled -= m_layout.wordBits;
    };

    const std::size_t lettersAPixel = m_layout.samples.size() / m_layout.pixels();
    for (std::size_t x = 0; x < m_codes.size(); ++x) {
        const Codes& codes = m_codes[x];
        const std::size_t first = x % m_layout.pixels() * lettersAPixel;
        for (const char letter : m_layout.samples.substr(first, lettersAPixel)) {
            if (m_layout.spareBelow && filled == 0)
                append(m_layout.spareValue, m_layout.spareBelow);
            switch (letter) {
            case 'R':
            case 'Y':
                append(codes[0], m_layout.bits);
                break;
            case 'G':
            case 'U':
                append(codes[1], m_layout.bits);
                break;
            case 'B':
            case 'V':
                append(codes[2], m_layout.bits);
                break;
            case 'A':
                append(codes[3], m_layout.bits);
                break;
            default:
                append(0, m_layout.bits);
            }
            if (m_layout.spareAbove && filled + m_layout.spareAbove == m_layout.wordBits)
                append(0, m_layout.spareAbove);
        }
    }
}

} // namespace kestrix::host
