/// Pictures as PNG files.
#pragma once

#include "Options.h"

#include <cstdint>
#include <string>
#include <vector>

namespace preview_host {

/// A picture of 4 bytes per pixel, R G B A, rows from the top.
struct Image {
    Size size;
    std::vector<std::uint8_t> rgba;
};

/// Whether a file begins as PNG files do. Throws `std::runtime_error` if it can't be opened.
bool isPng(const std::string& path);

/// Reads a PNG file of any kind as 8-bit RGBA. Throws `std::runtime_error`.
Image readPng(const std::string& path);

/// Writes `rgb`, 3 bytes per pixel and rows from the bottom, the order of GL. Throws
/// `std::runtime_error`.
void writePng(const std::string& path, Size size, const std::vector<std::uint8_t>& rgb);

} // namespace preview_host
