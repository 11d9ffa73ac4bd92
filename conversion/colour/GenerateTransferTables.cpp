/// Writes the tables of the transfer curves as C++ source, for the build. The argument is the name
/// of the file.
#include "conversion/colour/GamutMatrices.h"
#include "conversion/colour/TransferCharacteristicPQ.h"
#include "conversion/fast/Rec709OETF10.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <vector>

namespace {

using namespace KSX::PixelConversion;

// ITU-R BT.2020-2, table 4.
constexpr double kAlpha = 1.099296826809442;
constexpr double kBeta = 0.018053968510807;

double rec709ToLinear(double v)
{
    return v < 4.5 * kBeta ? v / 4.5 : std::pow((v + kAlpha - 1) / kAlpha, 1 / 0.45);
}

double rec709FromLinear(double l)
{
    return l < kBeta ? 4.5 * l : kAlpha * std::pow(l, 0.45) - (kAlpha - 1);
}

/// The 8-bit code of light in steps of 1/1279, as `Rec709OETF<8, V>::forward` states it.
int encode8(const std::vector<float>& table, float f)
{
    const auto at = [&](float i) {
        return table[std::min(static_cast<std::size_t>(i), table.size() - 1)];
    };
    const float fraction = f - std::trunc(f);
    const float upper = fraction * at(std::nearbyint(f));
    const float lower = (1 - fraction) * at(std::trunc(f));
    return static_cast<int>(std::nearbyint(upper + lower));
}

/// The first float between `begin` and `end` that has a higher code than `begin`; `end` if there is
/// none.
float findRise(const std::vector<float>& table, float begin, float end)
{
    const int code = encode8(table, begin);
    auto low = std::bit_cast<std::int32_t>(begin);
    auto high = std::bit_cast<std::int32_t>(end);
    while (high - low > 1) {
        const std::int32_t middle = low + (high - low) / 2;
        (encode8(table, std::bit_cast<float>(middle)) > code ? high : low) = middle;
    }
    return std::bit_cast<float>(high);
}

/// `Rec709OETF<10, V1>` for one value, in the same order of operations.
using Curve10 = Rec709OETF<10, V1>;

template<std::size_t TERMS>
double evaluate(const double (&polynomial)[TERMS], double x)
{
    double sum = polynomial[TERMS - 1];
    for (std::size_t i = TERMS - 1; i-- > 0;)
        sum = sum * x + polynomial[i];
    return sum;
}

double decode10(std::size_t code)
{
    const double v = static_cast<double>(code) * Curve10::kSignalOfCode;
    return v < Curve10::kLineEndInSignal ? v * Curve10::kLineToLight
                                         : evaluate(Curve10::kToLight, v);
}

/// The code of the float with these bits.
int encode10(std::uint32_t bits)
{
    const double l = std::bit_cast<float>(bits);
    const double v = l < Curve10::kLineEndInLight
                         ? l * 4.5
                         : evaluate(Curve10::kPower, l) * Curve10::kAlpha - Curve10::kAlphaMinus1;
    return static_cast<int>(std::nearbyint(v * 1023));
}

/// The first number from `begin` to `end` for which `reached` holds, if all after it do.
template<class REACHED>
std::uint32_t findFirst(std::uint32_t begin, std::uint32_t end, const REACHED& reached)
{
    while (begin < end) {
        const std::uint32_t middle = begin + (end - begin) / 2;
        if (reached(middle))
            end = middle;
        else
            begin = middle + 1;
    }
    return begin;
}

/// The bits of the floats at which the codes rise. No edge wavers over more floats than `kWavers`.
struct Edges10 {
    static constexpr std::uint32_t kWavers = 64;

    Edges10()
    {
        const auto end = std::bit_cast<std::uint32_t>(fast::kRec709EdgesHighest);
        for (int code = 1; code < 1024; ++code) {
            std::uint32_t rise =
                findFirst(0, end, [&](std::uint32_t bits) { return encode10(bits) >= code; });
            for (std::uint32_t before = 1; before <= kWavers; ++before)
                if (encode10(rise - before) >= code) {
                    rise -= before;
                    before = 0;
                }
            rises.push_back(rise);
        }
    }

    /// The entry for the floats from `first` to `last`.
    fast::Rec709Edge between(std::uint32_t first, std::uint32_t last) const
    {
        const auto above = std::upper_bound(rises.begin(), rises.end(), last);
        const auto code = static_cast<int>(above - rises.begin()) - 1;
        // If no edge is in the range, every float of it is above one.
        fast::Rec709Edge edge{first, 0};
        if (const std::uint32_t rise = *(above - 1); rise + kWavers > first) {
            edge.rise = rise;
            for (std::uint32_t i = 0; i < 31; ++i)
                if (encode10(rise + i + 1) < code)
                    edge.falls |= 1u << i;
        }
        edge.rise = (static_cast<std::uint32_t>(code) << 22) - edge.rise;
        return edge;
    }

    std::vector<std::uint32_t> rises{0};
};

// SMPTE ST 2084, 5.
double pqToLinear(double signal)
{
    constexpr double kM1 = 2610.0 / 16384;
    constexpr double kM2 = 2523.0 / 4096 * 128;
    constexpr double kC2 = 2413.0 / 4096 * 32;
    constexpr double kC3 = 2392.0 / 4096 * 32;
    constexpr double kC1 = kC3 - kC2 + 1;
    const double root = std::pow(signal, 1 / kM2);
    const double light = 10000 * std::pow(std::max(root - kC1, 0.0) / (kC2 - kC3 * root), 1 / kM1);
    return std::max(light, 0.0001);
}

/// The position of `light` in a table that never falls and whose range includes it, with the
/// fraction between two entries. Several entries share the lowest value; its position is that of
/// the first entry above them.
double findIn(const std::vector<double>& table, double light)
{
    const auto above = std::upper_bound(table.begin(), table.end(), light);
    if (above == table.end())
        return static_cast<double>(table.size() - 1);
    if (light == table.front())
        return static_cast<double>(above - table.begin());
    const auto below = above - 1;
    return static_cast<double>(below - table.begin()) + (light - *below) / (*above - *below);
}

template<class VALUE>
void write(std::ostream& out, const char* type, const char* name, std::size_t entries,
           const VALUE& value)
{
    out << "const " << type << ' ' << name << '[' << entries << "] = {\n";
    for (std::size_t i = 0; i < entries; ++i)
        out << value(i) << (i % 4 == 3 ? ",\n" : ", ");
    out << "};\n";
}

/// The products of a matrix with the light of each code: an entry has the parts of B, G and R.
template<class MATRIX>
void writeProducts(std::ostream& out, const char* matrix, const std::vector<float>& toLinear8)
{
    out << "template<> const TableRow fast::LightProducts<" << matrix << ">::at[3][256] = {\n";
    for (int component = 0; component < 3; ++component) {
        out << "{\n";
        for (const float light : toLinear8) {
            out << "{{";
            for (const int row : {2, 1, 0})
                out << light * MATRIX::get()[3 * row + component] << ", ";
            out << "0}},\n";
        }
        out << "},\n";
    }
    out << "};\n";
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: generate_transfer_tables FILE\n";
        return 1;
    }
    std::ofstream out(argv[1]);
    out << "#include \"conversion/colour/TransferCharacteristicPQ.h\"\n"
           "#include \"conversion/fast/Primaries.h\"\n"
           "namespace KSX::PixelConversion {\n"
        << std::hexfloat;

    std::vector<float> toLinear8(256);
    for (std::size_t i = 0; i < toLinear8.size(); ++i)
        toLinear8[i] = static_cast<float>(rec709ToLinear(static_cast<double>(i) / 255));
    write(out, "float", "kRec709OETFToLinear8", toLinear8.size(),
          [&](std::size_t i) { return toLinear8[i]; });
    std::vector<float> fromLinear(1280);
    for (std::size_t i = 0; i < fromLinear.size(); ++i)
        fromLinear[i] = static_cast<float>(255 * rec709FromLinear(static_cast<double>(i) / 1279));
    write(out, "float", "kRec709OETFFromLinear8", fromLinear.size(),
          [&](std::size_t i) { return fromLinear[i]; });
    write(out, "Rec709Rise", "kRec709OETFRises8", fromLinear.size(), [&](std::size_t i) {
        const auto begin = static_cast<float>(i);
        std::ostringstream rise;
        rise << std::hexfloat << '{' << findRise(fromLinear, begin, begin + 1) << ", "
             << encode8(fromLinear, begin) << '}';
        return rise.str();
    });

    write(out, "float", "fast::kRec709OETFToLinear10", 1024,
          [](std::size_t i) { return static_cast<float>(decode10(i)); });
    const Edges10 edges;
    auto first = std::bit_cast<std::uint32_t>(fast::kRec709EdgesLowest);
    write(out, "fast::Rec709Edge", "fast::kRec709Edges10", fast::kRec709EdgesCount,
          [&](std::size_t i) {
              const std::uint32_t next = findFirst(first, 0x3f900000, [&](std::uint32_t bits) {
                  return fast::rec709EdgesRange(std::bit_cast<float>(bits)) >
                         fast::kRec709EdgesFirst + i;
              });
              const fast::Rec709Edge edge = edges.between(first, next - 1);
              first = next;
              std::ostringstream entry;
              entry << '{' << edge.rise << "u, " << edge.falls << "u}";
              return entry.str();
          });

    std::vector<double> toLinear(4096);
    for (std::size_t i = 0; i < toLinear.size(); ++i)
        toLinear[i] = pqToLinear(static_cast<double>(i) / 4095);
    write(out, "double", "kPQOETFToLinear12Bit", toLinear.size(),
          [&](std::size_t i) { return toLinear[i]; });
    write(out, "double", "kPQOETFFromLinear12Bit", 32768, [&](std::size_t i) {
        const double part = static_cast<double>(i % 16384) / kHalvedLUTIdxMax;
        const double light = i < 16384 ? 0.0001 + (kPQOETFFromLinear12BitLoLUTMax - 0.0001) * part
                                       : kPQOETFFromLinear12BitHiLUTMin +
                                             (10000 - kPQOETFFromLinear12BitHiLUTMin) * part;
        return findIn(toLinear, light) / 4095;
    });

    writeProducts<RGB_2020_TO_709>(out, "RGB_2020_TO_709", toLinear8);
    writeProducts<RGB_2020_TO_601PAL>(out, "RGB_2020_TO_601PAL", toLinear8);
    writeProducts<RGB_2020_TO_601NTSC>(out, "RGB_2020_TO_601NTSC", toLinear8);
    writeProducts<RGB_709_TO_2020>(out, "RGB_709_TO_2020", toLinear8);
    writeProducts<RGB_601PAL_TO_2020>(out, "RGB_601PAL_TO_2020", toLinear8);
    writeProducts<RGB_601NTSC_TO_2020>(out, "RGB_601NTSC_TO_2020", toLinear8);
    writeProducts<RGB_601PAL_TO_709>(out, "RGB_601PAL_TO_709", toLinear8);
    writeProducts<RGB_601NTSC_TO_709>(out, "RGB_601NTSC_TO_709", toLinear8);
    writeProducts<RGB_709_TO_601PAL>(out, "RGB_709_TO_601PAL", toLinear8);
    writeProducts<RGB_709_TO_601NTSC>(out, "RGB_709_TO_601NTSC", toLinear8);

    out << "}\n";
    out.close();
    if (!out) {
        std::cerr << "generate_transfer_tables: cannot write " << argv[1] << '\n';
        return 1;
    }
    return 0;
}
