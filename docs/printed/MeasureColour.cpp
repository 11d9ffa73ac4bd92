/// Prints the tables of docs/colour.md: the errors of the conversions and of the shader, compared
/// with the formulas of the standards in double precision, from the code values of the source.
#include "tests/preview/ShaderModel.h"
#include "tests/reference/Curves.h"
#include "tests/reference/Layouts.h"

#include "conversion/PixelFormats.h"
#include "host/RowEncoder.h"
#include "preview/ScreenPreviewLut.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

using namespace kestrix::test;
using namespace KSX::PixelConversion;
using kestrix::host::Color;
using kestrix::host::RowEncoder;
using reference::Layout;

namespace {

using Three = std::array<double, 3>;
using Nine = std::array<Three, 3>;

/// A multiple of every block, in whole texels.
constexpr unsigned kWidth = 96;
/// The pixel of a row that is measured: an even one, far from the ends.
constexpr unsigned kAt = 48;
/// The engine recognises pictures of 625-line systems by their height.
constexpr unsigned kPALHeight = 576;
constexpr unsigned kOtherHeight = 480;

// --- The standards -------------------------------------------------------------------------------

/// ITU-R BT.601-7, 2.5.1 and 3.1 to 3.3; BT.709-6, 1.3 and 3.2; BT.2020-2, tables 3 and 4.
struct Standard {
    double kr, kb;
    Three x, y; ///< of the primaries R, G, B
};

const Standard& standardOf(Colorspace colorspace, bool pal)
{
    static const Standard ntsc{0.299, 0.114, {0.63, 0.31, 0.155}, {0.34, 0.595, 0.07}},
        lines625{0.299, 0.114, {0.64, 0.29, 0.15}, {0.33, 0.6, 0.06}},
        rec709{0.2126, 0.0722, {0.64, 0.3, 0.15}, {0.33, 0.6, 0.06}},
        rec2020{0.2627, 0.0593, {0.708, 0.17, 0.131}, {0.292, 0.797, 0.046}};
    return colorspace == Colorspace709    ? rec709
           : colorspace == Colorspace2020 ? rec2020
           : pal                          ? lines625
                                          : ntsc;
}

Three times(const Nine& m, const Three& v)
{
    Three out{};
    for (std::size_t i = 0; i < 3; ++i)
        out[i] = m[i][0] * v[0] + m[i][1] * v[1] + m[i][2] * v[2];
    return out;
}

Nine inverse(const Nine& m)
{
    const auto minor = [&](std::size_t r, std::size_t c) {
        return m[(r + 1) % 3][(c + 1) % 3] * m[(r + 2) % 3][(c + 2) % 3] -
               m[(r + 1) % 3][(c + 2) % 3] * m[(r + 2) % 3][(c + 1) % 3];
    };
    const double determinant =
        m[0][0] * minor(0, 0) + m[0][1] * minor(0, 1) + m[0][2] * minor(0, 2);
    Nine out{};
    for (std::size_t r = 0; r < 3; ++r)
        for (std::size_t c = 0; c < 3; ++c)
            out[c][r] = minor(r, c) / determinant;
    return out;
}

/// Linear light to CIE XYZ, with primaries that add up to D65 (SMPTE RP 177).
Nine toXYZ(const Standard& standard)
{
    Nine m{};
    for (std::size_t i = 0; i < 3; ++i) {
        m[0][i] = standard.x[i] / standard.y[i];
        m[1][i] = 1;
        m[2][i] = (1 - standard.x[i] - standard.y[i]) / standard.y[i];
    }
    const Three scale = times(inverse(m), {0.3127 / 0.329, 1, (1 - 0.3127 - 0.329) / 0.329});
    for (Three& row : m)
        for (std::size_t i = 0; i < 3; ++i)
            row[i] *= scale[i];
    return m;
}

/// R'G'B' converted to other primaries, and whether it is within their gamut.
Three changePrimaries(const Three& rgb, const Standard& from, const Standard& to, bool& inside)
{
    Three linear{};
    for (std::size_t i = 0; i < 3; ++i)
        linear[i] = static_cast<double>(reference::toLinear(std::clamp(rgb[i], 0.0, 1.0)));
    linear = times(inverse(toXYZ(to)), times(toXYZ(from), linear));
    Three out{};
    for (std::size_t i = 0; i < 3; ++i) {
        inside = inside && linear[i] >= 0 && linear[i] <= 1;
        out[i] = static_cast<double>(reference::fromLinear(std::clamp(linear[i], 0.0, 1.0)));
    }
    return out;
}

/// Code values in the order of a row, B G R or Cb Y Cr.
Three codesAt(const Layout& layout, const std::uint8_t* row)
{
    Three codes{};
    const std::size_t first = (layout.is422() ? 2 : 4) * kAt;
    for (std::size_t i = 0; i < 3; ++i)
        codes[i] = layout.read(row, layout.bitOf(first + i));
    return codes;
}

Three toRGB(const Three& codes, const Layout& layout, const Standard& standard)
{
    if (!layout.is422()) {
        const double black = layout.levels.black(), range = layout.levels.white() - black;
        return {(codes[2] - black) / range, (codes[1] - black) / range, (codes[0] - black) / range};
    }
    const double unit = std::exp2(layout.levels.bits - 8);
    const double y = (codes[1] / unit - 16) / 219;
    const double r = y + 2 * (1 - standard.kr) * (codes[2] / unit - 128) / 224;
    const double b = y + 2 * (1 - standard.kb) * (codes[0] / unit - 128) / 224;
    return {r, (y - standard.kr * r - standard.kb * b) / (1 - standard.kr - standard.kb), b};
}

Three fromRGB(const Three& rgb, const Layout& layout, const Standard& standard)
{
    const auto& [r, g, b] = rgb;
    if (!layout.is422()) {
        const double black = layout.levels.black(), range = layout.levels.white() - black;
        const auto code = [&](double x) { return black + range * std::clamp(x, 0.0, 1.0); };
        return {code(b), code(g), code(r)};
    }
    const double unit = std::exp2(layout.levels.bits - 8);
    const double y = standard.kr * r + (1 - standard.kr - standard.kb) * g + standard.kb * b;
    return {unit * (128 + 224 * (b - y) / (2 * (1 - standard.kb))), unit * (16 + 219 * y),
            unit * (128 + 224 * (r - y) / (2 * (1 - standard.kr)))};
}

// --- Colours -------------------------------------------------------------------------------------

/// R'G'B' from a fixed seed, evenly distributed; every eighth is grey.
class Colours {
public:
    Color next()
    {
        const Color color{unit(), unit(), unit()};
        return ++m_count % 8 == 0 ? Color{color.r, color.r, color.r} : color;
    }

private:
    double unit() { return static_cast<double>(m_random() >> 11) * 0x1p-53; }

    std::mt19937_64 m_random{1};
    unsigned m_count = 0;
};

struct Errors {
    void add(double error)
    {
        worst = std::max(worst, std::abs(error));
        squares += error * error;
        ++count;
    }
    double mean() const { return std::sqrt(squares / static_cast<double>(count)); }

    double worst = 0;
    double squares = 0;
    std::size_t count = 0;
};

// --- The engine ----------------------------------------------------------------------------------

std::string classOf(const Layout& src, const Layout& dst, bool primaries)
{
    const auto bits = [](const Layout& layout) {
        return std::to_string(layout.levels.bits) + "-bit ";
    };
    if (src.code == PixelFormat_b64a && dst.levels.bits == 12)
        return "`b64a` to `R12B`, `R12L`, which keep the low 12 of the 16 bits";
    const std::string to = dst.is422() ? "4:2:2" : "RGB";
    const std::string kinds = std::string(src.is422() ? "4:2:2" : "RGB") + " to ";
    if (primaries)
        return std::string(src.levels.bits == 10 && src.unitBits == 64 ? "`A04l`, `A04L`"
                                                                       : "other formats") +
               ", primaries changed, to " + bits(dst) + to;
    if (src.is422() != dst.is422())
        return kinds + bits(dst) + to;
    const std::string depth = src.levels.bits == dst.levels.bits  ? "same depth"
                              : src.levels.bits < dst.levels.bits ? "more bits"
                                                                  : "fewer bits";
    if (src.is422())
        return kinds + to + ", " + depth;
    const std::string range = src.levels.full != dst.levels.full ? "range changed"
                              : src.levels.full                  ? "full range kept"
                                                                 : "studio range kept";
    return kinds + to + ", " + range + ", " + depth;
}

void measure(const ConversionEntry& entry, unsigned height, Errors& errors)
{
    const bool any = entry.srcColorspace == ColorspaceUnspecified;
    const Colorspace from = any ? Colorspace709 : entry.srcColorspace;
    const Colorspace to = any ? Colorspace709 : entry.dstColorspace;
    const bool pal = height == kPALHeight;
    const Layout& src = reference::layoutOf(entry.srcFormat);
    const Layout& dst = reference::layoutOf(entry.dstFormat);
    const std::size_t srcBytes = rowBytes(*findPixelFormat(entry.srcFormat), kWidth);
    const std::size_t dstBytes = rowBytes(*findPixelFormat(entry.dstFormat), kWidth);

    RowEncoder encoder(entry.srcFormat, from, kWidth);
    std::vector<std::uint8_t> in(srcBytes * height + 64), out(dstBytes * height);
    std::vector<Three> expected;
    for (Colours colours; expected.size() < height;) {
        std::uint8_t* const row = in.data() + srcBytes * expected.size();
        encoder.encode(std::vector<Color>(kWidth, colours.next()), row);
        bool inside = true;
        Three rgb = toRGB(codesAt(src, row), src, standardOf(from, pal));
        if (from != to)
            rgb = changePrimaries(rgb, standardOf(from, pal), standardOf(to, pal), inside);
        if (inside)
            expected.push_back(fromRGB(rgb, dst, standardOf(to, pal)));
    }
    entry.function(kWidth, height, out.data(), static_cast<unsigned>(dstBytes), in.data(),
                   static_cast<unsigned>(srcBytes));
    for (std::size_t y = 0; y < height; ++y) {
        const Three codes = codesAt(dst, out.data() + dstBytes * y);
        for (std::size_t i = 0; i < 3; ++i)
            errors.add(codes[i] - expected[y][i]);
    }
}

void printConversions()
{
    struct Class {
        std::string name;
        unsigned rows = 0;
        Errors errors;
        unsigned worstRow = 0;
    };
    std::vector<Class> classes;
    for (unsigned i = 0; i < kConversionCount; ++i) {
        const ConversionEntry& entry = conversions[i];
        const std::string name =
            classOf(reference::layoutOf(entry.srcFormat), reference::layoutOf(entry.dstFormat),
                    entry.srcColorspace != entry.dstColorspace);
        auto found = std::ranges::find(classes, name, &Class::name);
        if (found == classes.end())
            found = classes.insert(found, {name, 0, {}, 0});
        const double before = found->errors.worst;
        measure(entry, kPALHeight, found->errors);
        measure(entry, kOtherHeight, found->errors);
        ++found->rows;
        if (found->errors.worst > before)
            found->worstRow = i;
    }
    std::ranges::sort(classes, {}, &Class::name);
    std::puts("| Conversion | Rows | Worst | Worst row | RMS |\n|---|---|---|---|---|");
    for (const Class& each : classes)
        std::printf("| %s | %u | %.2f | %s | %.2f |\n", each.name.c_str(), each.rows,
                    each.errors.worst,
                    each.errors.worst >= 0.005 ? std::to_string(each.worstRow).c_str() : "",
                    each.errors.mean());
}

// --- The OpenGL 3 helper -------------------------------------------------------------------------

void printShader()
{
    constexpr PixelFormat formats[] = {PixelFormat_2vuy, PixelFormat_v210, PixelFormat_Ay10,
                                       PixelFormat_BGRA, PixelFormat_BGRv, PixelFormat_r210,
                                       PixelFormat_R10L, PixelFormat_R12L, PixelFormat_R12l};
    const struct {
        Colorspace colorspace;
        unsigned width, height, code;
    } standards[] = {{Colorspace601, 720, 480, 0x72363031},
                     {Colorspace601, 720, 576, 0x72363031},
                     {Colorspace709, 1920, 1080, 0x72373039},
                     {Colorspace2020, 1920, 1080, 0x32303230}};
    ScreenPreviewLut::Generate(LutFormat_RGBA32F);
    std::puts("\n| Format | Rec. 601, 525 lines | Rec. 601, 625 lines | Rec. 709 | Rec. 2020 |\n"
              "|---|---|---|---|---|");
    for (const PixelFormat format : formats) {
        const Layout& layout = reference::layoutOf(format);
        std::printf("| `");
        for (int shift = 24; shift >= 0; shift -= 8)
            std::putchar(static_cast<int>(format >> shift & 0xff));
        std::printf("` |");
        for (const auto& [colorspace, width, height, code] : standards) {
            const float* const table = ScreenPreviewLut::Get(
                ScreenPreviewLut::GetID(width, height, format, code), LutFormat_RGBA32F);
            const Standard& standard = standardOf(colorspace, height == kPALHeight);
            RowEncoder encoder(format, colorspace, kWidth);
            const auto bytes = static_cast<int>(encoder.rowBytes());
            TexturePicture picture{bytes / 4, 1, std::vector<std::uint8_t>(encoder.rowBytes())};
            Colours colours;
            Errors errors;
            while (errors.count < 3 * 4000) {
                encoder.encode(std::vector<Color>(kWidth, colours.next()), picture.bytes.data());
                bool inside = true;
                const Three expected =
                    changePrimaries(toRGB(codesAt(layout, picture.bytes.data()), layout, standard),
                                    standard, standardOf(Colorspace709, false), inside);
                if (!inside)
                    continue;
                const Colour shown =
                    layout.levels.bits == 8 && !layout.is422()
                        ? throughTable(table, sampledColour(picture, format, 0.5, 0.5))
                        : shaderColour(picture, format, table, kWidth, 1, 0.5, 0.5);
                for (std::size_t i = 0; i < 3; ++i)
                    errors.add(255 * (std::clamp(shown[i], 0.0, 1.0) - expected[i]));
            }
            std::printf(" %.2f, %.2f |", errors.worst, errors.mean());
        }
        std::printf("\n");
    }
}

} // namespace

int main()
{
    printConversions();
    printShader();
}
