/// The command line of the sample host.
#pragma once

#include "api/KestrixPreviewAPI.h"

#include <cstddef>
#include <cstdint>
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

/// What was asked for, each value checked by itself.
struct Options {
    /// A file of raw frames, "-" for standard input, a PNG picture, or empty for the test pattern.
    std::string input;
    /// The same for the right eye; empty for a plain frame.
    std::string rightEye;
    HelperKind helper = HelperKind::OpenGL3;
    std::uint32_t format = 0;
    std::optional<Size> size;
    std::optional<unsigned> rowBytes;
    std::optional<std::uint32_t> colorspace;
    bool captured = false;
    bool flip = false;
    std::uint32_t preview3D = Preview3DDefault;
    /// Frames a second, 0 for as fast as possible.
    double rate = 0;
    /// How many frames to show, if not all.
    std::optional<std::uint64_t> frames;
    std::optional<Size> window;
    std::string screenshot;
    /// Keys to press, one after each frame.
    std::string keys;
    bool listFormats = false;
};

/// Reads the command line. Throws `UsageError`; gives nothing where help or a completion script was
/// asked for and printed.
std::optional<Options> parseOptions(int argc, char** argv);

/// A value by its name on the command line. The keys go through a table of them in its order.
template<class VALUE>
struct Named {
    const char* name;
    VALUE value;
};

inline constexpr Named<HelperKind> kHelpers[] = {
    {"gl", HelperKind::FixedFunction},
    {"gl3", HelperKind::OpenGL3},
};

/// What a frame can state.
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
    std::size_t i = 0;
    while (!(table[i].value == value))
        ++i;
    return table[i];
}

/// The value after that of `value` in the table, after the last one the first.
template<class VALUE, std::size_t N>
VALUE nextValue(const Named<VALUE> (&table)[N], VALUE value)
{
    return table[(&named(table, value) - table + 1) % N].value;
}

/// The code that a format's name or number means, if it is one of the 30.
std::optional<std::uint32_t> formatCode(const std::string& name);

} // namespace preview_host
