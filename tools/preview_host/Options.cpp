/// The options, and how their values are read.
#include "Options.h"

#include "Keys.h"

#include "conversion/PixelFormats.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <iomanip>
#include <iostream>

namespace preview_host {
namespace {

using namespace KSX::PixelConversion;

/// Every OpenGL that can be expected has textures of this width and height.
constexpr unsigned kLargestSide = 16384;
constexpr double kFastestRate = 1000;
constexpr std::uint64_t kMostFrames = 1000000000;
/// The engine takes larger row sizes for negative ones.
constexpr unsigned kLargestRow = 0x7fffffff;

/// Both shells have a general completion that reads `--help`.
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
      The test pattern in a window, 1920x1080 BGRA at 25 frames a second.
  preview_host --format v210 --colorspace 2020 picture.png
      A picture as 10-bit YUV frames that state Rec. 2020.
  ffmpeg -i clip.mov -f rawvideo -pix_fmt uyvy422 - |
      preview_host --helper gl --format 2vuy --size 1920x1080 -
      Raw video from a pipe through the fixed-function helper.
  preview_host --helper gl --keys ffc --screenshot shot.png
      Presses f, f and c and writes the picture that is shown then.
)";

/// Reads all of `text` as a number of `least` to `most`; nothing if it is none.
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

/// Adds an option whose text `read` turns into a value, or into nothing if it is not good. `fault`
/// says that then.
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
    fault << "no number of " << least << " to " << most;
    const auto read = [=](const std::string& text) { return readNumber(text, least, most); };
    return add(app, name, target, read, fault.str(), description)->type_name("NUMBER");
}

void addSize(CLI::App& app, const std::string& name, std::optional<Size>& target,
             const std::string& description)
{
    const std::string fault = "no WIDTHxHEIGHT of 1 to " + std::to_string(kLargestSide) + " each";
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
    return add(app, name, target, read, "none of " + names, description)->type_name(names);
}

void listFormats()
{
    for (const auto& info : kPixelFormats)
        std::cout << info.name << "  " << std::left << std::setw(25) << info.engineName
                  << std::right << std::setw(2) << info.groupBytes << " bytes for "
                  << info.groupPixels << (info.groupPixels == 1 ? " pixel\n" : " pixels\n");
}

} // namespace

std::optional<Options> parseOptions(int argc, char** argv)
{
    Options options;
    bool isListWanted = false;
    const char* completion = nullptr;

    CLI::App app(
        "Shows video frames through one of the two preview helpers of libKestrixPreviewAPI, "
        "and prints\nwhat the helper decides about them. Without a display it paints on a virtual "
        "one.");
    app.name("preview_host");
    app.get_formatter()->column_width(36);
    app.get_formatter()->label("Positionals", "Input");
    app.add_option("input", options.input,
                   "A PNG picture, or raw frames in a file or on standard\ninput (-). "
                   "If not given, a moving test pattern")
        ->type_name("FILE");

    app.option_defaults()->group("Frames");
    add(app, "--format", options.format, readFormat, "no pixel format, see --list-formats",
        "Pixel format, see --list-formats")
        ->type_name("FORMAT")
        ->default_str("BGRA");
    addSize(app, "--size", options.size,
            "Width and height in pixels. Raw frames need it;\n"
            "a picture has its own, the test pattern 1920x1080");
    addNumber(app, "--row-bytes", options.rowBytes, 1U, kLargestRow,
              "Bytes from one row to the next.\nIf not given, what the pixels take")
        ->type_name("BYTES");
    addNamed(app, "--colorspace", options.colorspace, kColorspaces,
             "What the frames state. With none a helper decides\nby their size")
        ->default_str("none");
    app.add_flag("--captured", options.captured,
                 "Mark the frames as captured: gl then takes 8-bit\nRGB for studio range");
    app.add_flag("--flip", options.flip, "The first row in memory is the bottom one");
    app.add_option("--right-eye", options.rightEye, "Input of the right eye, for frames in 3D")
        ->type_name("FILE");

    app.option_defaults()->group("Preview");
    addNamed(app, "--helper", options.helper, kHelpers,
             "gl: fixed function, converts on the CPU;\ngl3: OpenGL 3.2, converts by a shader")
        ->default_str("gl3");
    addNamed(app, "--preview-3d", options.preview3D, kPreview3DModes,
             "How the two eyes are shown; default is topbottom")
        ->default_str("default");
    addSize(app, "--window", options.window,
            "Size of the window in pixels.\nIf not given, that of the picture");

    app.option_defaults()->group("Run");
    addNumber(app, "--rate", options.rate, 0.0, kFastestRate,
              "Frames a second, 0 for as fast as possible")
        ->default_str("25");
    addNumber(app, "--frames", options.frames, std::uint64_t{1}, kMostFrames,
              "Stop after so many. If not given, all frames;\n"
              "on a virtual display 10 of an input without end");
    app.add_option("--keys", options.keys, "Press these keys, one after each frame")
        ->type_name("KEYS");
    app.add_option("--screenshot", options.screenshot, "Write the last picture painted as PNG")
        ->type_name("FILE");

    app.option_defaults()->group("Information");
    const CLI::Option* help =
        app.set_help_flag("--help", "Print this and exit")->group("Information");
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
            throw UsageError(std::string("--keys: '") + key + "' is no key, see --help");
    if (options.input == "-" && options.rightEye == "-")
        throw UsageError("--right-eye: standard input is the left eye's already");
    if (isListWanted)
        listFormats();
    if (completion)
        std::cout << completion;
    return isListWanted || completion ? std::nullopt : std::optional(options);
}

} // namespace preview_host
