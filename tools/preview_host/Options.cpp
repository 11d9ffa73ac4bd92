/// Which options there are, and what their values mean.
#include "Options.h"

#include "Completion.h"
#include "Keys.h"

#include "conversion/PixelFormats.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <iostream>

namespace preview_host {
namespace {

/// As wide and as high as textures can be relied upon to be.
constexpr unsigned kLargestSide = 16384;
constexpr double kFastestRate = 1000;
constexpr std::uint64_t kMostFrames = 1000000000;
/// Row sizes go through the engine as 32 bits, from where it takes the larger half for negative.
constexpr unsigned kLargestRow = 0x7fffffff;

constexpr const char* kShells = "bash|zsh";

/// The names of a table, with bars between them.
template<class VALUE, std::size_t N>
std::string namesOf(const Named<VALUE> (&table)[N])
{
    std::string names;
    for (const auto& entry : table)
        names += (names.empty() ? "" : "|") + std::string(entry.name);
    return names;
}

/// The value that `name` stands for, or a `UsageError` that lists what there is.
template<class VALUE, std::size_t N>
VALUE choose(const char* option, const Named<VALUE> (&table)[N], const std::string& name)
{
    for (const auto& entry : table)
        if (name == entry.name)
            return entry.value;
    throw UsageError(std::string(option) + ": '" + name + "' is none of " + namesOf(table));
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

double parseRate(const std::string& text)
{
    double rate = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), rate);
    if (error == std::errc() && end == text.data() + text.size() && rate >= 0 &&
        rate <= kFastestRate)
        return rate;
    throw UsageError("--rate: '" + text + "' is no number of 0 to 1000");
}

void checkKeys(const std::string& keys)
{
    for (const char key : keys)
        if (!actionOf(key))
            throw UsageError(std::string("--keys: '") + key + "' is no key, see --help");
}

constexpr const char* kExamples = R"(Examples:
  preview_host
      The test pattern in a window, 1920x1080 BGRA at 25 frames a second.
  preview_host --format v210 --colorspace 2020 picture.png
      A picture as 10-bit YUV frames that state Rec. 2020.
  ffmpeg -i clip.mov -f rawvideo -pix_fmt uyvy422 - |
      preview_host --helper gl --format 2vuy --size 1920x1080 -
      Raw video from a pipe through the fixed-function helper.
  preview_host --helper gl --keys ffc --screenshot shot.png
      Presses f, f and c and writes what is seen then.
)";

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
    std::string rate = "25";
    std::string frames;
    std::string window;
    std::string completion;

    CLI::App app(
        "Shows video frames through one of the two preview helpers of libKestrixPreviewAPI, "
        "and says\nwhat the helper takes them for. Without a display it paints on a virtual "
        "one.");
    app.name("preview_host");
    app.get_formatter()->column_width(36);
    app.get_formatter()->label("Positionals", "Input");
    app.add_option("input", options.input,
                   "A PNG picture, or raw frames in a file or on standard\ninput (-). "
                   "Left out, a moving test pattern")
        ->type_name("FILE");

    app.option_defaults()->group("Frames")->always_capture_default();
    app.add_option("--format", format, "Pixel format, see --list-formats")->type_name("FORMAT");
    app.add_option("--size", size,
                   "Width and height in pixels. Raw frames need it;\n"
                   "a picture has its own, the test pattern 1920x1080")
        ->type_name("WxH");
    app.add_option("--row-bytes", rowBytes,
                   "Bytes from one row to the next.\nLeft out, what the pixels take")
        ->type_name("BYTES");
    app.add_option("--colorspace", colorspace,
                   "What the frames state. With none a helper goes\nby their size")
        ->type_name(namesOf(kColorspaces));
    app.add_flag("--captured", options.captured,
                 "Mark the frames as captured: gl then takes 8-bit\nRGB for studio range");
    app.add_flag("--flip", options.flip, "The first row in memory is the bottom one");
    app.add_option("--right-eye", options.rightEye, "Input of the right eye, for frames in 3D")
        ->type_name("FILE");

    app.option_defaults()->group("Preview");
    app.add_option(
           "--helper", helper,
           "gl: fixed function, converts on the CPU;\ngl3: OpenGL 3.2, converts by a shader")
        ->type_name(namesOf(kHelpers));
    app.add_option("--preview-3d", preview3D, "How the two eyes are shown; default is topbottom")
        ->type_name(namesOf(kPreview3DModes));
    app.add_option("--window", window,
                   "Size of the window in pixels.\nLeft out, that of the picture")
        ->type_name("WxH");

    app.option_defaults()->group("Run");
    app.add_option("--rate", rate, "Frames a second, 0 for as fast as possible")
        ->type_name("NUMBER");
    app.add_option("--frames", frames,
                   "Stop after so many. Left out, all there are;\n"
                   "on a virtual display 10 of what has no end")
        ->type_name("NUMBER");
    app.add_option("--keys", options.keys, "Press these keys, one after each frame")
        ->type_name("KEYS");
    app.add_option("--screenshot", options.screenshot, "Write the last picture painted as PNG")
        ->type_name("FILE");

    app.option_defaults()->group("Information");
    app.set_help_flag("--help", "Print this and exit")->group("Information");
    app.add_flag("--list-formats", options.listFormats, "List the pixel formats and exit");
    app.add_option("--completion", completion, "Print a completion script for the shell and exit")
        ->type_name(kShells);
    app.footer("Keys in the window:\n" + keyList() + "\n" + kExamples);

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        std::cout << app.help();
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what());
    }
    if (!completion.empty()) {
        if (completion != "bash" && completion != "zsh")
            throw UsageError("--completion: '" + completion + "' is none of " + kShells);
        std::cout << completionScript(app, completion);
        return std::nullopt;
    }

    const auto code = formatCode(format);
    if (!code)
        throw UsageError("--format: '" + format + "' is no pixel format, see --list-formats");
    options.format = *code;
    options.helper = choose("--helper", kHelpers, helper);
    options.colorspace = choose("--colorspace", kColorspaces, colorspace);
    options.preview3D = choose("--preview-3d", kPreview3DModes, preview3D);
    if (!size.empty())
        options.size = parseSize("--size", size);
    if (!window.empty())
        options.window = parseSize("--window", window);
    if (!rowBytes.empty())
        options.rowBytes = parseNumber("--row-bytes", rowBytes, kLargestRow);
    if (!frames.empty())
        options.frames = parseNumber("--frames", frames, kMostFrames);
    options.rate = parseRate(rate);
    checkKeys(options.keys);
    if (options.input == "-" && options.rightEye == "-")
        throw UsageError("--right-eye: standard input is the left eye's already");
    return options;
}

std::optional<std::uint32_t> formatCode(const std::string& name)
{
    for (const auto& info : KSX::PixelConversion::kPixelFormats)
        if (info.name == name || std::to_string(info.code) == name)
            return info.code;
    return std::nullopt;
}

} // namespace preview_host
