/// The command line of preview_host.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "conversion/KSXPixelConversion.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>

namespace preview_host {

/// A bad option. The message is one line.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Pixels by rows.
struct Size {
    unsigned width = 0;
    unsigned height = 0;

    bool operator==(const Size&) const = default;
};

enum class HelperKind { FixedFunction, OpenGL3 };

/// The values of the options, each of them valid on its own.
struct Options {
    /// A file of raw frames, "-" for standard input, a PNG picture, or empty for the test pattern.
    std::string input;
    /// The same for the right eye; empty for frames of one eye.
    std::string rightEye;
    HelperKind helper = HelperKind::OpenGL3;
    std::uint32_t format = KSX::PixelConversion::PixelFormat_BGRA;
    std::optional<Size> size;
    std::optional<unsigned> rowBytes;
    std::optional<std::uint32_t> colorspace;
    bool captured = false;
    bool flip = false;
    std::uint32_t preview3D = Preview3DDefault;
    /// Frames per second, 0 for as fast as possible.
    double rate = 25;
    /// The number of frames to show; all if not given.
    std::optional<std::uint64_t> frames;
    std::optional<Size> window;
    std::string screenshot;
    /// Keys to press, one after each frame.
    std::string keys;
};

/// Reads the command line. Throws `UsageError`. Returns nothing if an option requested information
/// only; in this case it has been printed.
std::optional<Options> parseOptions(int argc, char** argv);

/// A value and its name on the command line. The keys choose values in the order of a table of
/// these.
template<class VALUE>
struct Named {
    const char* name;
    VALUE value;
};

inline constexpr Named<HelperKind> kHelpers[] = {
    {"gl", HelperKind::FixedFunction},
    {"gl3", HelperKind::OpenGL3},
};

/// The colourspaces that a frame can state.
inline constexpr Named<std::optional<std::uint32_t>> kColorspaces[] = {
    {"none", std::nullopt},
    {"r601", ColorspaceCodeRec601},
    {"r709", ColorspaceCodeRec709},
    {"2020", ColorspaceCodeRec2020},
};

inline constexpr Named<std::uint32_t> kPreview3DModes[] = {
    {"default", Preview3DDefault}, {"left", Preview3DLeftOnly},       {"right", Preview3DRightOnly},
    {"side", Preview3DSideBySide}, {"topbottom", Preview3DTopBottom},
};

/// The entry of `value`, which is in the table.
template<class VALUE, std::size_t N>
const Named<VALUE>& named(const Named<VALUE> (&table)[N], VALUE value)
{
    return *std::find_if(std::begin(table), std::end(table),
                         [&](const auto& entry) { return entry.value == value; });
}

/// The value after `value` in the table; the first one after the last one.
template<class VALUE, std::size_t N>
VALUE nextValue(const Named<VALUE> (&table)[N], VALUE value)
{
    return table[(&named(table, value) - table + 1) % N].value;
}

} // namespace preview_host
