/// Which options there are, and what their values mean.
#include "Options.h"

#include "conversion/PixelFormats.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <iostream>
#include <map>

namespace preview_host {
namespace {

/// As wide and as high as textures can be relied upon to be.
constexpr unsigned kLargestSide = 16384;
constexpr double kFastestRate = 1000;
constexpr std::uint64_t kMostFrames = 1000000000;
/// Row sizes go through the engine as 32 bits, from where it takes the larger half for negative.
constexpr unsigned kLargestRow = 0x7fffffff;

const std::map<std::string, HelperKind> kHelpers = {
    {"gl", HelperKind::FixedFunction},
    {"gl3", HelperKind::OpenGL3},
};

const std::map<std::string, std::uint32_t> kPreview3DFormats = {
    {"default", Preview3DDefault}, {"left", Preview3DLeftOnly},       {"right", Preview3DRightOnly},
    {"side", Preview3DSideBySide}, {"topbottom", Preview3DTopBottom},
};

const std::map<std::string, std::optional<std::uint32_t>> kColorspaces = {
    {"r601", ColorspaceCodeRec601},
    {"r709", ColorspaceCodeRec709},
    {"2020", ColorspaceCodeRec2020},
    {"none", std::nullopt},
};

/// The value that `name` stands for in `map`, or a `UsageError` that lists what there is.
template<class VALUE>
VALUE choose(const char* option, const std::map<std::string, VALUE>& map, const std::string& name)
{
    const auto found = map.find(name);
    if (found != map.end())
        return found->second;
    std::string message = std::string(option) + ": '" + name + "' is none of";
    for (const auto& [known, value] : map)
        message += " " + known;
    throw UsageError(message);
}

/// Reads all of `text` as a whole number of 1 to `largest`; nothing where it is none.
template<class NUMBER>
std::optional<NUMBER> wholeNumber(std::string_view text, NUMBER largest)
{
    NUMBER value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool all = error == std::errc() && end == text.data() + text.size();
    return all && value >= 1 && value <= largest ? std::optional(value) : std::nullopt;
}

/// The same, a `UsageError` where it is none.
template<class NUMBER>
NUMBER parseNumber(const char* option, const std::string& text, NUMBER largest)
{
    if (const auto value = wholeNumber(text, largest))
        return *value;
    throw UsageError(std::string(option) + ": '" + text + "' is no number of 1 to " +
                     std::to_string(largest));
}

Size parseSize(const char* option, const std::string& text)
{
    const std::string_view all = text;
    const std::size_t cross = all.find('x');
    if (cross != all.npos) {
        const auto width = wholeNumber(all.substr(0, cross), kLargestSide);
        const auto height = wholeNumber(all.substr(cross + 1), kLargestSide);
        if (width && height)
            return {*width, *height};
    }
    throw UsageError(std::string(option) + ": '" + text + "' is no WIDTHxHEIGHT of 1 to " +
                     std::to_string(kLargestSide) + " each");
}

} // namespace

std::optional<Options> parseOptions(int argc, char** argv)
{
    Options options;
    std::string helper = "gl3";
    std::string format = "BGRA";
    std::string size;
    std::string rowBytes;
    std::string colorspace = "none";
    std::string preview3D = "default";
    std::string frames;
    std::string window;

    CLI::App app("Shows video frames through one of the two preview helpers.");
    app.add_option("input", options.input,
                   "Raw frames in a file or on standard input ('-'), or a PNG picture; "
                   "left out, a moving test pattern");
    app.add_option("--helper", helper, "gl: fixed function, gl3: OpenGL 3.2")
        ->capture_default_str();
    app.add_option("--format", format, "Pixel format of the frames, see --list-formats")
        ->capture_default_str();
    app.add_option("--size", size, "WIDTHxHEIGHT of raw frames or of the test pattern");
    app.add_option("--row-bytes", rowBytes, "Bytes from one row to the next");
    app.add_option("--colorspace", colorspace, "What the frames state: r601, r709, 2020 or none")
        ->capture_default_str();
    app.add_flag("--captured", options.captured, "Mark the frames as captured");
    app.add_flag("--flip", options.flip, "The first row in memory is the bottom one");
    app.add_option("--right-eye", options.rightEye, "The right eye's input");
    app.add_option("--preview-3d", preview3D, "default, left, right, side or topbottom")
        ->capture_default_str();
    app.add_option("--rate", options.rate, "Frames a second, 0 for as fast as possible")
        ->default_val(25.0);
    app.add_option("--frames", frames, "Stop after so many frames");
    app.add_option("--window", window, "WIDTHxHEIGHT of the window");
    app.add_option("--screenshot", options.screenshot, "Write the last painted picture as PNG");
    app.add_flag("--list-formats", options.listFormats, "List the pixel formats and exit");

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        std::cout << app.help();
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what());
    }

    const auto code = formatCode(format);
    if (!code)
        throw UsageError("--format: '" + format + "' is no pixel format, see --list-formats");
    options.format = *code;
    options.helper = choose("--helper", kHelpers, helper);
    options.colorspace = choose("--colorspace", kColorspaces, colorspace);
    options.preview3D = choose("--preview-3d", kPreview3DFormats, preview3D);
    if (!size.empty())
        options.size = parseSize("--size", size);
    if (!window.empty())
        options.window = parseSize("--window", window);
    if (!rowBytes.empty())
        options.rowBytes = parseNumber("--row-bytes", rowBytes, kLargestRow);
    if (!frames.empty())
        options.frames = parseNumber("--frames", frames, kMostFrames);
    if (!(options.rate >= 0 && options.rate <= kFastestRate))
        throw UsageError("--rate: not between 0 and 1000");
    if (options.input == "-" && options.rightEye == "-")
        throw UsageError("--right-eye: standard input is the left eye's already");
    return options;
}

std::string formatName(std::uint32_t format)
{
    if (format == KSX::PixelConversion::PixelFormat_ARGB)
        return "ARGB";
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8)
        name += static_cast<char>(format >> shift & 0xff);
    return name;
}

std::optional<std::uint32_t> formatCode(const std::string& name)
{
    for (const auto& info : KSX::PixelConversion::kPixelFormats)
        if (formatName(info.code) == name || std::to_string(info.code) == name)
            return info.code;
    return std::nullopt;
}

} // namespace preview_host
