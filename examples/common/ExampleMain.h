/// What the examples have in common and a host has in its own way: options, errors, a picture file.
///
///     EXAMPLE [--size WIDTHxHEIGHT] [--frames N] [--png FILE] [--detach]
///
/// The window has the given size in the toolkit's units and stays until it is closed, or until N
/// frames have been painted, the last of which goes into FILE as it stands in the framebuffer. With
/// N of 0 there is no signal: what is painted is the missing frame. `--detach`, where an example
/// can, has the view change to another window after half of the frames.
#pragma once

#include <KestrixPreviewAPI.h>

#include <GL/gl.h>
#include <png.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

struct ExampleOptions {
    int width = 960;
    int height = 540;
    int frames = -1; // no end
    std::string png;
    bool detach = false;

    bool signal() const { return frames != 0; }
    bool ends(int painted) const { return frames >= 0 && painted >= frames; }
};

inline ExampleOptions parseOptions(int count, char** arguments)
{
    ExampleOptions options;
    for (int i = 1; i < count; ++i) {
        const std::string name = arguments[i];
        const char* value = i + 1 < count ? arguments[i + 1] : "";
        char rest = 0;
        bool good = false;
        if (name == "--detach") {
            options.detach = good = true;
            continue;
        }
        if (name == "--size")
            good = std::sscanf(value, "%dx%d%c", &options.width, &options.height, &rest) == 2 &&
                   options.width > 0 && options.height > 0;
        else if (name == "--frames")
            good = std::sscanf(value, "%d%c", &options.frames, &rest) == 1 && options.frames >= 0;
        else if (name == "--png")
            good = !(options.png = value).empty();
        if (!good)
            throw std::runtime_error(
                "takes --size WIDTHxHEIGHT, --frames N, --png FILE and --detach");
        ++i;
    }
    if (!options.png.empty() && options.frames < 0)
        options.frames = 1;
    return options;
}

inline void check(HRESULT status, const char* call)
{
    if (status < 0)
        throw std::runtime_error(std::string(call) + " failed");
}

/// Writes the bound framebuffer, if a file was asked for.
inline void writePng(const ExampleOptions& options, int width, int height)
{
    if (options.png.empty())
        return;
    std::vector<unsigned char> pixels(static_cast<std::size_t>(4) * width * height);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    png_image image;
    std::memset(&image, 0, sizeof(image));
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    image.format = PNG_FORMAT_RGBA;
    // OpenGL has the bottom row first.
    if (!png_image_write_to_file(&image, options.png.c_str(), 0, pixels.data(), -4 * width,
                                 nullptr))
        throw std::runtime_error("can't write " + options.png + ": " + image.message);
}

/// Runs an example; what it throws becomes one line and a non-zero status.
inline int exampleMain(const char* name, int count, char** arguments,
                       void (*run)(const ExampleOptions&))
{
    try {
        run(parseOptions(count, arguments));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", name, error.what());
        return 1;
    }
}
