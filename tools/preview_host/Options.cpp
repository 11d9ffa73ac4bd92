/// The options, and how their values are read.
#include "Options.h"

#include "FormatList.h"
#include "Keys.h"

#include "conversion/PixelFormats.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <iostream>

namespace preview_host {
namespace {

using namespace KSX::PixelConversion;

/// Every current OpenGL driver has textures of this width and height.
constexpr unsigned kLargestSide = 16384;
constexpr double kFastestRate = 1000;
constexpr std::uint64_t kMostFrames = 1000000000;
/// The engine treats larger row sizes as negative ones.
constexpr unsigned kLargestRow = 0x7fffffff;

/// Both shells have a generic completion that reads `--help`.
constexpr Named<const char*> kCompletions[] = {
    {"bash", "complete -F _longopt preview_host\n"},
    {"zsh", "#compdef preview_host\n"
            "# As a file on fpath this is the completion itself. Sourced, it makes it known.\n"
            "if [ \"$funcstack[1]\" = _preview_host ]; then\n"
            "    _gnu_generic\n"
            "else\n"
            "    compdef _gnu_generic preview_host\n"
            "fi\n"},
};

constexpr const char* kExamples = R"(Examples:
  preview_host
      The test pattern in a window, 1920x1080 BGRA at 25 frames per second.
  preview_host --format v210 --colorspace 2020 picture.png
      A picture as 10-bit YUV frames that state Rec. 2020.
  ffmpeg -i clip.mov -f rawvideo -pix_fmt uyvy422 - |
      preview_host --helper gl --format 2vuy --size 1920x1080 -
      Raw video from a pipe through the fixed-function helper.
  preview_host --helper gl --keys ffc --screenshot shot.png
      Presses f, f and c, and then writes the picture that is shown.
)";

/// Reads all of `text` as a number from `least` to `most`; nothing if it is not such a number.
template<class NUMBER>
std::optional<NUMBER> readNumber(std::string_view text, NUMBER least, NUMBER most)
{
    NUMBER value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool all = error == std::errc() && end == text.data() + text.size();
    return all && value >= least && value <= most ? std::optional(value) : std::nullopt;
}

std::optional<Size> readSize(std::string_view text)
{
    const std::size_t cross = std::min(text.find('x'), text.size());
    const auto width = readNumber(text.substr(0, cross), 1U, kLargestSide);
    const auto height = readNumber(text.substr(std::min(cross + 1, text.size())), 1U, kLargestSide);
    return width && height ? std::optional(Size{*width, *height}) : std::nullopt;
}

/// A format by its name or its code.
std::optional<std::uint32_t> readFormat(std::string_view text)
{
    const auto code = readNumber<std::uint32_t>(text, 0, UINT32_MAX);
    const PixelFormatInfo* format = code ? findPixelFormat(*code) : nullptr;
    if (!format)
        format = findPixelFormat(text);
    return format ? std::optional<std::uint32_t>(format->code) : std::nullopt;
}

/// Adds an option. `read` converts its text to a value, or to nothing if the text is invalid;
/// `fault` is the message for this case.
CLI::Option* add(CLI::App& app, const std::string& name, auto& target, auto read,
                 const std::string& fault, const std::string& description)
{
    const auto store = [=, &target](const std::string& text) {
        const auto value = read(text);
        if (!value)
            throw UsageError(name + ": '" + text + "' is " + fault);
        target = *value;
    };
    return app.add_option_function<std::string>(name, store, description);
}

CLI::Option* addNumber(CLI::App& app, const std::string& name, auto& target, auto least, auto most,
                       const std::string& description)
{
    std::ostringstream fault;
    fault << "not a number from " << least << " to " << most;
    const auto read = [=](const std::string& text) { return readNumber(text, least, most); };
    return add(app, name, target, read, fault.str(), description)->type_name("NUMBER");
}

void addSize(CLI::App& app, const std::string& name, std::optional<Size>& target,
             const std::string& description)
{
    const std::string fault = "not a WIDTHxHEIGHT, each from 1 to " + std::to_string(kLargestSide);
    add(app, name, target, readSize, fault, description)->type_name("WxH");
}

/// The value is one of the names in a table.
template<class VALUE, std::size_t N>
CLI::Option* addNamed(CLI::App& app, const std::string& name, auto& target,
                      const Named<VALUE> (&table)[N], const std::string& description)
{
    std::string names;
    for (const auto& entry : table)
        names.append(names.empty() ? "" : "|").append(entry.name);
    const auto read = [&table](const std::string& text) -> std::optional<VALUE> {
        for (const auto& entry : table)
            if (text == entry.name)
                return entry.value;
        return std::nullopt;
    };
    return add(app, name, target, read, "not one of " + names, description)->type_name(names);
}

} // namespace

std::optional<Options> parseOptions(int argc, char** argv)
{
    Options options;
    bool isListWanted = false;
    bool isVersionWanted = false;
    const char* completion = nullptr;

    CLI::App app(
        "Shows video frames with one of the two preview helpers of libKestrixPreviewAPI, and "
        "prints\nwhat the helper decides about them. If there is no display, it uses a virtual "
        "one.");
    app.name("preview_host");
    app.get_formatter()->column_width(36);
    app.get_formatter()->label("Positionals", "Input");
    app.add_option("input", options.input,
                   "A PNG picture, or raw frames in a file or on standard\ninput (-). "
                   "Default: a moving test pattern")
        ->type_name("FILE");

    app.option_defaults()->group("Frames");
    add(app, "--format", options.format, readFormat, "not a pixel format, see --list-formats",
        "Pixel format, see --list-formats")
        ->type_name("FORMAT")
        ->default_str("BGRA");
    addSize(app, "--size", options.size,
            "Width and height in pixels. Required for raw frames;\n"
            "default: that of the picture, or 1920x1080");
    addNumber(app, "--row-bytes", options.rowBytes, 1U, kLargestRow,
              "Bytes from one row to the next.\nDefault: the bytes that the pixels need")
        ->type_name("BYTES");
    addNamed(app, "--colorspace", options.colorspace, kColorspaces,
             "The colourspace that the frames state. If none,\nthe helper decides by their size")
        ->default_str("none");
    app.add_flag("--captured", options.captured,
                 "Mark the frames as captured: gl then treats 8-bit\nRGB as studio range");
    app.add_flag("--flip", options.flip, "The first row in memory is the bottom one");
    app.add_option("--right-eye", options.rightEye, "Input for the right eye, for 3D frames")
        ->type_name("FILE");

    app.option_defaults()->group("Preview");
    addNamed(app, "--helper", options.helper, kHelpers,
             "gl: fixed function, converts on the CPU;\ngl3: OpenGL 3.2, converts with a shader")
        ->default_str("gl3");
    addNamed(app, "--preview-3d", options.preview3D, kPreview3DModes,
             "How the two eyes are shown;\nthe mode default is the same as topbottom")
        ->default_str("default");
    addSize(app, "--window", options.window,
            "Size of the window in pixels.\nDefault: the size of the picture");

    app.option_defaults()->group("Run");
    addNumber(app, "--rate", options.rate, 0.0, kFastestRate,
              "Frames per second; 0: as fast as possible")
        ->default_str("25");
    addNumber(app, "--frames", options.frames, std::uint64_t{1}, kMostFrames,
              "Stop after this number of frames. Default: all frames;\n"
              "on a virtual display, 10 of an input without end");
    app.add_option("--keys", options.keys, "Press these keys, one after each frame")
        ->type_name("KEYS");
    app.add_option("--screenshot", options.screenshot,
                   "Write the last painted picture to a PNG file")
        ->type_name("FILE");

    app.option_defaults()->group("Information");
    const CLI::Option* help =
        app.set_help_flag("--help", "Print the options and keys and exit")->group("Information");
    app.add_flag("--version", isVersionWanted, "Print the version and exit");
    app.add_flag("--list-formats", isListWanted, "List the pixel formats and exit");
    addNamed(app, "--completion", completion, kCompletions,
             "Print a completion script for the shell and exit");
    app.footer("Keys in the window:\n" + keyList() + "\n" + kExamples);

    try {
        app.parse(argc, argv);
    } catch (const std::runtime_error& error) {
        if (help->empty())
            throw UsageError(error.what());
    }
    if (!help->empty()) {
        std::cout << app.help();
        return std::nullopt;
    }
    for (const char key : options.keys)
        if (!findKey(key))
            throw UsageError(std::string("--keys: '") + key + "' is not a key, see --help");
    if (options.input == "-" && options.rightEye == "-")
        throw UsageError("--right-eye: standard input is already the input of the left eye");
    if (isVersionWanted)
        std::cout << "preview_host " KESTRIX_VERSION "\n";
    if (isListWanted)
        listFormats(std::cout);
    if (completion)
        std::cout << completion;
    return isVersionWanted || isListWanted || completion ? std::nullopt : std::optional(options);
}

} // namespace preview_host
