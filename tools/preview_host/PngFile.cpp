/// PNG files by libpng's simplified interface.
#include "PngFile.h"

#include <png.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace preview_host {

bool isPng(const std::string& path)
{
    std::array<char, 8> start{};
    std::ifstream file(path, std::ios::binary);
    if (!file)
        throw std::runtime_error("can't open " + path + ": " + std::strerror(errno));
    file.read(start.data(), start.size());
    return file && png_sig_cmp(reinterpret_cast<png_const_bytep>(start.data()), 0, 8) == 0;
}

Image readPng(const std::string& path)
{
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    Image image;
    if (png_image_begin_read_from_file(&png, path.c_str())) {
        png.format = PNG_FORMAT_RGBA;
        image.size = {png.width, png.height};
        image.rgba.resize(PNG_IMAGE_SIZE(png));
        png_image_finish_read(&png, nullptr, image.rgba.data(), 0, nullptr);
    }
    if (PNG_IMAGE_FAILED(png))
        throw std::runtime_error("can't read " + path + ": " + png.message);
    return image;
}

void writePng(const std::string& path, Size size, const std::vector<std::uint8_t>& rgb)
{
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    png.width = size.width;
    png.height = size.height;
    png.format = PNG_FORMAT_RGB;
    const auto rowBytes = static_cast<png_int_32>(3 * size.width);
    if (!png_image_write_to_file(&png, path.c_str(), 0, rgb.data(), -rowBytes, nullptr))
        throw std::runtime_error("can't write " + path + ": " + png.message);
}

} // namespace preview_host
