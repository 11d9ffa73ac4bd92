/// The functions of the C interface.
#include "convert/KestrixPixelConversion.h"

#include "convert/Conversions.h"
#include "convert/ConvertRows.h"
#include "convert/Formats.h"
#include "convert/Pictures.h"
#include "convert/Structs.h"
#include "convert/Threads.h"

#include <iterator>

using namespace kestrix;
using KSX::PixelConversion::findPixelFormat;
using KSX::PixelConversion::kConversionCount;
using KSX::PixelConversion::kPixelFormats;
using KSX::PixelConversion::PixelFormatInfo;

namespace {

kestrix_status fillFormat(const PixelFormatInfo* format, kestrix_format_info* info)
{
    if (!format)
        return KESTRIX_UNKNOWN_FORMAT;
    fillStruct(tell(formatAt(static_cast<std::size_t>(format - kPixelFormats))), info);
    return KESTRIX_OK;
}

/// A pointer that may be null only if there is no room.
bool isBuffer(const Words& words)
{
    return words.text != nullptr || words.size == 0;
}

kestrix_status convertRows(const kestrix_picture* src, const kestrix_picture* dst,
                           std::uint32_t firstRow, const std::uint32_t* endRow,
                           std::uint32_t threads, std::uint32_t flags)
{
    Pictures pictures;
    const kestrix_status status = checkPictures(src, dst, flags, pictures, {});
    if (status != KESTRIX_OK)
        return status;
    const std::uint32_t end = endRow ? *endRow : pictures.height;
    if (firstRow > end || end > pictures.height)
        return KESTRIX_BAD_ROWS;
    if (threads == 0)
        return KESTRIX_BAD_THREADS;
    if ((flags & KESTRIX_CHECK_ONLY) != 0)
        return KESTRIX_OK;
    const RowConverter converter(conversionAt(pictures.row, pictures.height), pictures.width);
    if (threads == 1)
        converter.convert(pictures.src, pictures.dst, firstRow, end);
    else
        convertByThreads(converter, pictures, threads);
    return KESTRIX_OK;
}

} // namespace

const char* kestrix_status_words(kestrix_status status)
{
    switch (status) {
    case KESTRIX_OK:
        return "success";
    case KESTRIX_NULL_POINTER:
        return "a pointer is null";
    case KESTRIX_BAD_STRUCT_SIZE:
        return "the struct_size of a struct is not that of any version";
    case KESTRIX_BAD_FLAGS:
        return "the flags have bits that have no meaning";
    case KESTRIX_BAD_INDEX:
        return "the index is not below the count";
    case KESTRIX_UNKNOWN_FORMAT:
        return "there is no such pixel format";
    case KESTRIX_UNKNOWN_COLORSPACE:
        return "there is no such colourspace";
    case KESTRIX_NO_CONVERSION:
        return "there is no conversion between these formats and colourspaces";
    case KESTRIX_EMPTY_PICTURE:
        return "the picture has no pixels";
    case KESTRIX_SIZES_DIFFER:
        return "source and destination differ in width or height";
    case KESTRIX_TOO_LARGE:
        return "the picture is too large";
    case KESTRIX_ROW_BYTES_TOO_SMALL:
        return "the rows of a picture lie closer together than a row is long";
    case KESTRIX_BUFFER_TOO_SMALL:
        return "a buffer is too small for its picture";
    case KESTRIX_OVERLAP:
        return "rows of the source and of the destination overlap";
    case KESTRIX_BAD_ROWS:
        return "the picture does not have these rows";
    case KESTRIX_BAD_THREADS:
        return "the number of threads is 0";
    }
    return "there is no such status";
}

const char* kestrix_version()
{
    return KESTRIX_VERSION;
}

size_t kestrix_format_count()
{
    return std::size(kPixelFormats);
}

kestrix_status kestrix_format_at(size_t index, kestrix_format_info* info)
{
    if (const kestrix_status status = canFill(info); status != KESTRIX_OK)
        return status;
    if (index >= std::size(kPixelFormats))
        return KESTRIX_BAD_INDEX;
    return fillFormat(&kPixelFormats[index], info);
}

kestrix_status kestrix_format_by_code(uint32_t code, kestrix_format_info* info)
{
    const kestrix_status status = canFill(info);
    return status == KESTRIX_OK ? fillFormat(findPixelFormat(code), info) : status;
}

kestrix_status kestrix_format_by_name(const char* name, kestrix_format_info* info)
{
    if (!name)
        return KESTRIX_NULL_POINTER;
    const kestrix_status status = canFill(info);
    return status == KESTRIX_OK ? fillFormat(findPixelFormat(std::string_view(name)), info)
                                : status;
}

kestrix_status kestrix_row_bytes(uint32_t format, uint32_t width, size_t* row_bytes)
{
    if (!row_bytes)
        return KESTRIX_NULL_POINTER;
    const PixelFormatInfo* const info = findPixelFormat(format);
    if (!info)
        return KESTRIX_UNKNOWN_FORMAT;
    if (width == 0)
        return KESTRIX_EMPTY_PICTURE;
    const std::size_t bytes = rowBytes(*info, width);
    if (bytes > kMostRowBytes)
        return KESTRIX_TOO_LARGE;
    *row_bytes = bytes;
    return KESTRIX_OK;
}

size_t kestrix_conversion_count()
{
    return kConversionCount;
}

kestrix_status kestrix_conversion_at(size_t index, uint32_t height, kestrix_conversion* conversion)
{
    if (const kestrix_status status = canFill(conversion); status != KESTRIX_OK)
        return status;
    if (index >= kConversionCount)
        return KESTRIX_BAD_INDEX;
    fillStruct(tell(conversionAt(static_cast<unsigned>(index), height)), conversion);
    return KESTRIX_OK;
}

kestrix_status kestrix_find_conversion(uint32_t src_format, uint32_t src_colorspace,
                                       uint32_t dst_format, uint32_t dst_colorspace,
                                       uint32_t height, kestrix_conversion* conversion, char* text,
                                       size_t text_size)
{
    const Words words{text, text_size};
    if (!isBuffer(words))
        return KESTRIX_NULL_POINTER;
    if (const kestrix_status status = conversion ? canFill(conversion) : KESTRIX_OK;
        status != KESTRIX_OK)
        return words.say(status, "%s", kestrix_status_words(status));
    unsigned row = 0;
    const kestrix_status status =
        findRow(src_format, src_colorspace, dst_format, dst_colorspace, row, words);
    if (status == KESTRIX_OK && conversion)
        fillStruct(tell(conversionAt(row, height)), conversion);
    return status;
}

kestrix_status kestrix_convert(const kestrix_picture* src, const kestrix_picture* dst,
                               uint32_t flags)
{
    return convertRows(src, dst, 0, nullptr, 1, flags);
}

kestrix_status kestrix_convert_rows(const kestrix_picture* src, const kestrix_picture* dst,
                                    uint32_t first_row, uint32_t end_row, uint32_t flags)
{
    return convertRows(src, dst, first_row, &end_row, 1, flags);
}

kestrix_status kestrix_convert_by_threads(const kestrix_picture* src, const kestrix_picture* dst,
                                          uint32_t threads, uint32_t flags)
{
    return convertRows(src, dst, 0, nullptr, threads, flags);
}

kestrix_status kestrix_check(const kestrix_picture* src, const kestrix_picture* dst, uint32_t flags,
                             char* text, size_t text_size)
{
    const Words words{text, text_size};
    if (!isBuffer(words))
        return KESTRIX_NULL_POINTER;
    Pictures pictures;
    return checkPictures(src, dst, flags, pictures, words);
}
