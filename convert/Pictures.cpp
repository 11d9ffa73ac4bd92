/// Checks the pictures that callers describe.
#include "convert/Pictures.h"

#include "convert/Structs.h"

#include <cstdint>
#include <limits>

namespace kestrix {

namespace {

/// The bytes of a picture that count: its rows, as numbers.
struct Extent {
    std::size_t first;    ///< address of the row that is lowest in memory
    std::size_t distance; ///< between rows
    std::size_t rowBytes;
    std::uint32_t rows;

    std::size_t end() const { return first + (rows - 1) * distance + rowBytes; }
};

kestrix_status findExtent(const char* name, const kestrix_picture& picture, const Format& format,
                          Extent& extent, const Words& words)
{
    const std::size_t rowBytes = format.rowBytes(picture.width);
    if (rowBytes > kMostRowBytes || picture.height > kMostRows)
        return words.say(KESTRIX_TOO_LARGE,
                         "the %s has %u rows of %zu bytes; the most is %u of %zu", name,
                         picture.height, rowBytes, kMostRows, kMostRowBytes);

    // A single row has no row below it. -row_bytes has no value for the lowest number.
    const std::size_t distance = picture.height == 1 ? rowBytes
                                 : picture.row_bytes < 0
                                     ? std::size_t{0} - static_cast<std::size_t>(picture.row_bytes)
                                     : static_cast<std::size_t>(picture.row_bytes);
    if (distance < rowBytes)
        return words.say(KESTRIX_ROW_BYTES_TOO_SMALL,
                         "a row of the %s needs %zu bytes, and rows lie %zu bytes apart", name,
                         rowBytes, distance);

    const auto begin = reinterpret_cast<std::uintptr_t>(picture.bytes);
    std::size_t needed = 0;
    std::size_t end = 0;
    if (__builtin_mul_overflow(distance, std::size_t{picture.height} - 1, &needed) ||
        __builtin_add_overflow(needed, rowBytes, &needed) ||
        needed > std::size_t{std::numeric_limits<std::ptrdiff_t>::max()} ||
        __builtin_add_overflow(begin, needed, &end))
        return words.say(KESTRIX_TOO_LARGE,
                         "the %s has %u rows that lie %zu bytes apart, which no memory holds", name,
                         picture.height, distance);
    if (needed > picture.size)
        return words.say(KESTRIX_BUFFER_TOO_SMALL, "the %s needs %zu bytes and has %zu", name,
                         needed, picture.size);
    extent = {begin, distance, rowBytes, picture.height};
    return KESTRIX_OK;
}

/// Whether a byte belongs to rows of both pictures.
bool shareBytes(const Extent& a, const Extent& b)
{
    if (a.end() <= b.first || b.end() <= a.first)
        return false;
    // Pictures may be interleaved. Of each row of `a`, look at the first row of `b` that does not
    // end before it.
    for (std::uint32_t row = 0; row < a.rows; ++row) {
        const std::size_t first = a.first + row * a.distance;
        const std::size_t end = first + a.rowBytes;
        std::size_t other = 0;
        if (first >= b.first + b.rowBytes)
            other = (first - b.first - b.rowBytes) / b.distance + 1;
        if (other < b.rows && b.first + other * b.distance < end)
            return true;
    }
    return false;
}

Rows rowsOf(const kestrix_picture& picture, const Extent& extent)
{
    auto* const lowest = static_cast<std::byte*>(picture.bytes);
    if (picture.height == 1)
        return {lowest, 0};
    if (picture.row_bytes >= 0)
        return {lowest, picture.row_bytes};
    return {lowest + (extent.rows - 1) * extent.distance, picture.row_bytes};
}

} // namespace

kestrix_status checkPictures(const kestrix_picture* givenSrc, const kestrix_picture* givenDst,
                             std::uint32_t flags, Pictures& pictures, const Words& words)
{
    kestrix_picture src;
    kestrix_picture dst;
    for (const bool ofSrc : {true, false}) {
        const kestrix_status status = ofSrc ? readStruct(givenSrc, src) : readStruct(givenDst, dst);
        const char* const name = ofSrc ? "source" : "destination";
        if (status == KESTRIX_NULL_POINTER || (status == KESTRIX_OK && !(ofSrc ? src : dst).bytes))
            return words.say(KESTRIX_NULL_POINTER, "the %s is a null pointer", name);
        if (status != KESTRIX_OK)
            return words.say(status, "the %s has a struct_size of no version", name);
    }
    if ((flags & ~std::uint32_t{KESTRIX_CHECK_ONLY}) != 0)
        return words.say(KESTRIX_BAD_FLAGS, "no flags have the value 0x%08x", flags);

    if (const kestrix_status status =
            findRow(src.format, src.colorspace, dst.format, dst.colorspace, pictures.row, words);
        status != KESTRIX_OK)
        return status;
    if (src.width == 0 || src.height == 0 || dst.width == 0 || dst.height == 0)
        return words.say(KESTRIX_EMPTY_PICTURE, "a picture has no pixels: %ux%u to %ux%u",
                         src.width, src.height, dst.width, dst.height);
    if (src.width != dst.width || src.height != dst.height)
        return words.say(KESTRIX_SIZES_DIFFER, "the sizes differ: %ux%u to %ux%u", src.width,
                         src.height, dst.width, dst.height);

    const Conversion conversion = conversionAt(pictures.row, src.height);
    Extent srcExtent;
    Extent dstExtent;
    if (const kestrix_status status = findExtent("source", src, conversion.src, srcExtent, words);
        status != KESTRIX_OK)
        return status;
    if (const kestrix_status status =
            findExtent("destination", dst, conversion.dst, dstExtent, words);
        status != KESTRIX_OK)
        return status;

    pictures.width = src.width;
    pictures.height = src.height;
    pictures.src = rowsOf(src, srcExtent);
    pictures.dst = rowsOf(dst, dstExtent);
    // In place, every group is read before it is written.
    const bool inPlace = pictures.src.top == pictures.dst.top &&
                         pictures.src.step == pictures.dst.step &&
                         conversion.src.info.groupPixels == conversion.dst.info.groupPixels &&
                         conversion.src.info.groupBytes == conversion.dst.info.groupBytes;
    if (!inPlace && shareBytes(srcExtent, dstExtent))
        return words.say(KESTRIX_OVERLAP, "rows of the source and of the destination overlap");
    return KESTRIX_OK;
}

} // namespace kestrix
