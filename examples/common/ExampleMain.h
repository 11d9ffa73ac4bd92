/// Code that the examples share and that a host replaces by its own: options, errors, a picture
/// file.
///
///     EXAMPLE [--size WIDTHxHEIGHT] [--frames N] [--png FILE] [--detach]
///
/// The window has the given size in the toolkit's units. It stays until it is closed, or until N
/// frames have been painted; then the last picture in the framebuffer is written to FILE. If N is
/// 0, there is no signal, and the example paints without a frame. `--detach` moves the view to
/// another window after half of the frames, in the examples that can do so.
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
    int frames = -1; // no limit
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

/// Sets the alpha of the bound framebuffer to 1. Without a frame the OpenGL 3 helper clears to
/// alpha 0, and a compositor would show what is behind the picture.
inline void makeOpaque()
{
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_TRUE);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

/// Writes the bound framebuffer, if the options name a file.
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

/// Runs an example; an exception becomes one line and a non-zero status.
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
