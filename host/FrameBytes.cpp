/// Sizes and memory of frames.
#include "host/FrameBytes.h"

#include "conversion/PixelFormats.h"

#include <cstring>
#include <new>
#include <stdexcept>

namespace kestrix::host {
namespace {

constexpr std::align_val_t kAlignment{16};

} // namespace

void FreeFrameBytes::operator()(std::uint8_t* bytes) const
{
    ::operator delete(bytes, kAlignment);
}

FrameBytes allocateFrameBytes(std::int64_t rowBytes, std::int64_t height)
{
    if (rowBytes < 0)
        throw std::invalid_argument("a frame with its own bytes can't have negative row bytes");
    std::int64_t lines = 0;
    std::int64_t size = 0;
    if (__builtin_mul_overflow(rowBytes, height, &lines) ||
        __builtin_add_overflow(lines, kReadableBehind, &size))
        throw std::bad_alloc();
    void* bytes = ::operator new(static_cast<std::size_t>(size), kAlignment);
    std::memset(bytes, 0, static_cast<std::size_t>(size));
    return FrameBytes(static_cast<std::uint8_t*>(bytes));
}

std::int64_t frameRowBytes(std::int64_t width, std::int64_t height, std::uint32_t format,
                           std::optional<std::int64_t> rowBytes)
{
    if (width < 0 || height < 0)
        throw std::invalid_argument("a frame can't have a negative size");
    if (rowBytes)
        return *rowBytes;
    const auto* info = KSX::PixelConversion::findPixelFormat(format);
    if (!info)
        throw std::invalid_argument("a frame of an unknown format needs its row bytes");
    return static_cast<std::int64_t>(
        KSX::PixelConversion::rowBytes(*info, static_cast<std::size_t>(width)));
}

} // namespace kestrix::host
