/**
 * \file
 * Conversions between packed pixel formats, for programs without a preview.
 *
 * libKestrixPixelConversion has 364 conversions between 30 packed pixel formats, exact to the bit.
 * Every function checks all that it is given, and answers with a status. A program that converts a
 * picture describes the source and the destination:
 *
 *     kestrix_picture src = {sizeof(kestrix_picture), KESTRIX_FORMAT_v210, KESTRIX_COLORSPACE_709,
 *                            1920, 1080, 5120, captured, 1080 * 5120};
 *     kestrix_picture dst = {sizeof(kestrix_picture), KESTRIX_FORMAT_BGRA, KESTRIX_COLORSPACE_709,
 *                            1920, 1080, 7680, shown, 1080 * 7680};
 *     kestrix_status status = kestrix_convert(&src, &dst, 0);
 *     if (status != KESTRIX_OK)
 *         fprintf(stderr, "%s\n", kestrix_status_words(status));
 *
 * Rules for every function here:
 *
 * - Threads: any number of threads may call any function at the same time. The library has no state
 *   that changes. Only kestrix_convert_by_threads starts threads, and they end before it returns.
 * - Memory: the library allocates none and keeps no pointer. Strings that functions return are
 *   constants of the library. Only the rows of the two pictures are read and written: no byte
 *   before, between or after them.
 * - Errors: a function that fails returns a status other than KESTRIX_OK and writes nothing but the
 *   `words` that it was given. No function sets errno, prints, ends the program or throws.
 * - Structs begin with their size. The caller sets `struct_size` to the sizeof that it was compiled
 *   with, also in structs that a function fills. Later versions only add members at the end. Bytes
 *   that the library does not know must be 0 in what it reads, and are set to 0 in what it fills.
 * - Values of enumerations never change. Later versions may add values.
 * - Units: widths in pixels, heights in rows, sizes in bytes. Rows count from the top, from 0.
 *
 * The header stands alone and compiles as C99 and C++11 and later. The processor must have SSSE3.
 */
#ifndef KESTRIX_PIXEL_CONVERSION_H
#define KESTRIX_PIXEL_CONVERSION_H

#include <stddef.h>
#include <stdint.h>

/** The version of the library that this header belongs to: major, minor and patch number, and text.
 *  The major number is that of the shared object's name. kestrix_version tells that of the library
 *  that runs. */
#define KESTRIX_PIXEL_CONVERSION_VERSION_MAJOR 1
#define KESTRIX_PIXEL_CONVERSION_VERSION_MINOR 0        /**< new functions */
#define KESTRIX_PIXEL_CONVERSION_VERSION_PATCH 0        /**< repairs only */
#define KESTRIX_PIXEL_CONVERSION_VERSION_STRING "1.0.0" /**< all three */

#ifdef __cplusplus
extern "C" {
#endif
#ifdef __GNUC__
#pragma GCC visibility push(default)
#endif

/* --- Statuses --------------------------------------------------------------------------------- */

/** What a function answers. */
typedef enum kestrix_status {
    KESTRIX_OK = 0,
    KESTRIX_NULL_POINTER = 1,         /**< a pointer that must not be null is null */
    KESTRIX_BAD_STRUCT_SIZE = 2,      /**< `struct_size` is not that of any version, or unknown
                                           members are not 0 */
    KESTRIX_BAD_FLAGS = 3,            /**< flags that the library does not know */
    KESTRIX_BAD_INDEX = 4,            /**< not below the count */
    KESTRIX_UNKNOWN_FORMAT = 5,       /**< no code or name of a format */
    KESTRIX_UNKNOWN_COLORSPACE = 6,   /**< no value of kestrix_colorspace */
    KESTRIX_NO_CONVERSION = 7,        /**< no conversion between these formats and colourspaces */
    KESTRIX_EMPTY_PICTURE = 8,        /**< a width or height of 0 */
    KESTRIX_SIZES_DIFFER = 9,         /**< source and destination differ in width or height */
    KESTRIX_TOO_LARGE = 10,           /**< a row of more than 2147483647 bytes, more than 2147483647
                                           rows, or a picture larger than the address space */
    KESTRIX_ROW_BYTES_TOO_SMALL = 11, /**< rows would overlap each other */
    KESTRIX_BUFFER_TOO_SMALL = 12,    /**< the picture's rows do not fit into its buffer */
    KESTRIX_OVERLAP = 13,    /**< rows of the destination would overwrite rows of the source */
    KESTRIX_BAD_ROWS = 14,   /**< rows that the picture does not have */
    KESTRIX_BAD_THREADS = 15 /**< a number of threads of 0 */
} kestrix_status;

/** Returns one line in English, without a full stop, that says what `status` means. Never null. */
const char* kestrix_status_words(kestrix_status status);

/** Returns the version of the library that runs, as "1.0.0". */
const char* kestrix_version(void);

/* --- Formats ---------------------------------------------------------------------------------- */

/**
 * The code of a pixel format: a FourCC with its first character in the top byte; 8-bit ARGB is the
 * plain number 32. Names differ in capitals, and capitals matter: r210 is studio range, R210 full.
 */
typedef enum kestrix_format {
    KESTRIX_FORMAT_2vuy = 0x32767579,
    KESTRIX_FORMAT_YUY2 = 0x59555932,
    KESTRIX_FORMAT_v210 = 0x76323130,
    KESTRIX_FORMAT_v212 = 0x76323132,
    KESTRIX_FORMAT_v216 = 0x76323136,
    KESTRIX_FORMAT_ay10 = 0x61793130,
    KESTRIX_FORMAT_Ay10 = 0x41793130,
    KESTRIX_FORMAT_ARGB = 32,
    KESTRIX_FORMAT_vRGB = 0x76524742,
    KESTRIX_FORMAT_BGRA = 0x42475241,
    KESTRIX_FORMAT_BGRv = 0x42475276,
    KESTRIX_FORMAT_BGRX = 0x42475258,
    KESTRIX_FORMAT_RGBA = 0x52474241,
    KESTRIX_FORMAT_RGB3 = 0x52474233,
    KESTRIX_FORMAT_r210 = 0x72323130,
    KESTRIX_FORMAT_R210 = 0x52323130,
    KESTRIX_FORMAT_R10l = 0x5231306c,
    KESTRIX_FORMAT_R10L = 0x5231304c,
    KESTRIX_FORMAT_R10b = 0x52313062,
    KESTRIX_FORMAT_R10B = 0x52313042,
    KESTRIX_FORMAT_R10A = 0x52313041,
    KESTRIX_FORMAT_A04l = 0x4130346c,
    KESTRIX_FORMAT_A04L = 0x4130344c,
    KESTRIX_FORMAT_R12B = 0x52313242,
    KESTRIX_FORMAT_R12L = 0x5231324c,
    KESTRIX_FORMAT_R12l = 0x5231326c,
    KESTRIX_FORMAT_S12L = 0x5331324c,
    KESTRIX_FORMAT_b64a = 0x62363461,
    KESTRIX_FORMAT_L64A = 0x4c363441,
    KESTRIX_FORMAT_l64a = 0x6c363461
} kestrix_format;

/** The samples of a pixel. */
typedef enum kestrix_components {
    KESTRIX_COMPONENTS_YCBCR = 1,
    KESTRIX_COMPONENTS_YCBCRA = 2,
    KESTRIX_COMPONENTS_RGB = 3,
    KESTRIX_COMPONENTS_RGBA = 4
} kestrix_components;

/**
 * The codes of black and white. For n bits, full range runs from 0 to 2^n - 1. Studio range has
 * black at 16 x 2^(n-8) and white at 235 x 2^(n-8), and Cb and Cr around 128 x 2^(n-8) with
 * extremes at 16 and 240 x 2^(n-8) (ITU-R BT.709-6, 3.4; ITU-R BT.601-7, 2.5.3).
 */
typedef enum kestrix_range {
    KESTRIX_RANGE_NONE = 0, /**< of alpha, if the format has none */
    KESTRIX_RANGE_STUDIO = 1,
    KESTRIX_RANGE_FULL = 2
} kestrix_range;

/** How many pixels share Cb and Cr. */
typedef enum kestrix_chroma {
    KESTRIX_CHROMA_NONE = 0, /**< RGB has no chroma */
    KESTRIX_CHROMA_422 = 422 /**< two pixels side by side; sited on the left one, which is even */
} kestrix_chroma;

/** A pixel format. */
typedef struct kestrix_format_info {
    size_t struct_size;    /**< of the caller */
    uint32_t code;         /**< a kestrix_format */
    uint32_t components;   /**< a kestrix_components */
    uint32_t depth;        /**< bits of a sample: 8, 10, 12 or 16 */
    uint32_t range;        /**< a kestrix_range: of all samples but alpha */
    uint32_t alpha_range;  /**< a kestrix_range: of alpha */
    uint32_t chroma;       /**< a kestrix_chroma */
    uint32_t group_pixels; /**< pixels of a group; a row is a whole number of groups */
    uint32_t group_bytes;  /**< bytes of a group */
    const char* name;      /**< four characters, as "v210"; "ARGB" for the code 32 */
    const char* words;     /**< a few words for people, as "10-bit 4:2:2 Y'CbCr, studio range" */
} kestrix_format_info;

/** Returns the number of formats, 30. */
size_t kestrix_format_count(void);

/**
 * Fills `info` with format number `index` of the list, from 0.
 * Errors: KESTRIX_NULL_POINTER, KESTRIX_BAD_STRUCT_SIZE, KESTRIX_BAD_INDEX.
 */
kestrix_status kestrix_format_at(size_t index, kestrix_format_info* info);

/**
 * Fills `info` with the format of code `code`.
 * Errors: KESTRIX_NULL_POINTER, KESTRIX_BAD_STRUCT_SIZE, KESTRIX_UNKNOWN_FORMAT.
 */
kestrix_status kestrix_format_by_code(uint32_t code, kestrix_format_info* info);

/**
 * Fills `info` with the format of the four characters `name`, which end with a null byte. "ARGB" is
 * the format of code 32.
 * Errors: KESTRIX_NULL_POINTER, KESTRIX_BAD_STRUCT_SIZE, KESTRIX_UNKNOWN_FORMAT.
 */
kestrix_status kestrix_format_by_name(const char* name, kestrix_format_info* info);

/**
 * Sets `*row_bytes` to the bytes of a row of `width` pixels: ceil(width / group_pixels) groups.
 * Errors: KESTRIX_NULL_POINTER, KESTRIX_UNKNOWN_FORMAT, KESTRIX_EMPTY_PICTURE, KESTRIX_TOO_LARGE.
 */
kestrix_status kestrix_row_bytes(uint32_t format, uint32_t width, size_t* row_bytes);

/* --- Conversions ------------------------------------------------------------------------------ */

/** The colour encoding of a picture. */
typedef enum kestrix_colorspace {
    KESTRIX_COLORSPACE_601 = 0,                 /**< ITU-R BT.601-7 */
    KESTRIX_COLORSPACE_709 = 1,                 /**< ITU-R BT.709-6 */
    KESTRIX_COLORSPACE_2020 = 2,                /**< ITU-R BT.2020-2 */
    KESTRIX_COLORSPACE_UNSPECIFIED = 0x756e7370 /**< none stated; of a destination: the source's */
} kestrix_colorspace;

/** A conversion: a row of the table. */
typedef struct kestrix_conversion {
    size_t struct_size;      /**< of the caller */
    uint32_t row;            /**< its number in the table, from 0 */
    uint32_t src_format;     /**< a kestrix_format */
    uint32_t src_colorspace; /**< a kestrix_colorspace; unspecified if the conversion is the same in
                                  all colourspaces and changes none */
    uint32_t dst_format;     /**< a kestrix_format */
    uint32_t dst_colorspace; /**< a kestrix_colorspace, as the source's */
    uint32_t lines;          /**< the line standard whose primaries Rec. 601 has here: 625 for
                                  pictures of 576 rows, 525 for all others; 0 if the conversion does
                                  not depend on it */
    uint32_t block;          /**< rows whose width is a multiple of it are converted where they are,
                                  to their ends, without a way through memory of the library */
    uint32_t least_width;    /**< the narrowest row that is converted where it is. Narrower rows are
                                  converted too, through memory of the library, and are slower */
} kestrix_conversion;

/** Returns the number of conversions, 364. */
size_t kestrix_conversion_count(void);

/**
 * Fills `conversion` with row `index` of the table, from 0, for pictures of `height` rows. The
 * height only decides `lines`; 0 stands for any height but 576.
 * Errors: KESTRIX_NULL_POINTER, KESTRIX_BAD_STRUCT_SIZE, KESTRIX_BAD_INDEX.
 */
kestrix_status kestrix_conversion_at(size_t index, uint32_t height, kestrix_conversion* conversion);

/**
 * Finds the conversion from a format and colourspace to others, for pictures of `height` rows, as
 * in kestrix_conversion_at. A colourspace of the destination that is unspecified means that of the
 * source. Fills `conversion`, unless it is null.
 *
 * If there is no conversion, writes one line that says why to `words`, as "no row leads from A04l
 * to RGB3": at most `words_size` bytes with the null byte at the end. `words` may be null if
 * `words_size` is 0. A line has at most KESTRIX_WORDS_SIZE bytes.
 *
 * Errors: KESTRIX_NULL_POINTER, KESTRIX_BAD_STRUCT_SIZE, KESTRIX_UNKNOWN_FORMAT,
 * KESTRIX_UNKNOWN_COLORSPACE, KESTRIX_NO_CONVERSION.
 */
kestrix_status kestrix_find_conversion(uint32_t src_format, uint32_t src_colorspace,
                                       uint32_t dst_format, uint32_t dst_colorspace,
                                       uint32_t height, kestrix_conversion* conversion, char* words,
                                       size_t words_size);

/** Bytes of a buffer that holds any line that a function writes to `words`. */
enum { KESTRIX_WORDS_SIZE = 256 };

/* --- Pictures --------------------------------------------------------------------------------- */

/**
 * A picture in memory.
 *
 * The buffer is the `size` bytes from `bytes` on, whatever the order of the rows. If `row_bytes` is
 * positive, the top row begins at `bytes` and each row `row_bytes` after the one above it. If it is
 * negative, the bottom row begins at `bytes` and each row -`row_bytes` after the one below it. With
 * r bytes of a row (kestrix_row_bytes), |row_bytes| is at least r, and
 * (height - 1) x |row_bytes| + r is at most `size`. A picture of one row may have any row_bytes.
 * Nothing needs an alignment.
 */
typedef struct kestrix_picture {
    size_t struct_size;  /**< of the caller */
    uint32_t format;     /**< a kestrix_format */
    uint32_t colorspace; /**< a kestrix_colorspace */
    uint32_t width;      /**< pixels of a row, from 1 */
    uint32_t height;     /**< rows, from 1 */
    ptrdiff_t row_bytes; /**< bytes from a row to the one below it */
    void* bytes;         /**< the buffer; that of a source is only read */
    size_t size;         /**< bytes of the buffer */
} kestrix_picture;

/** Flags of the functions that convert. They can be added. */
enum {
    KESTRIX_CHECK_ONLY = 1 /**< check everything, convert nothing */
};

/**
 * Converts `src` to `dst`. Both pictures have the same width and height, every width from 1.
 *
 * The destination's bytes are the same for the same pixels, wherever the pictures lie, whatever is
 * around them, and however the rows are shared among calls. At the right end of a row:
 *
 * - A conversion that filters chroma takes the row to go on with its last chroma and last colour.
 *   If an odd row of v212 or v216 ends without a Cr, it has the Cr of the pair before, and 2^(n-1)
 *   at a width of 1.
 * - If the row ends inside a group of the destination, the samples of the pixels that are missing
 *   are written as 0. The Cr of a last even pixel is written.
 *
 * Source and destination may share memory in two cases: no byte belongs to rows of both, or they
 * are the same picture (`bytes`, `row_bytes`) and their groups have the same pixels and bytes.
 *
 * Other threads must not write to rows of the source, or use rows of the destination, meanwhile.
 *
 * Errors: all but KESTRIX_BAD_INDEX, KESTRIX_BAD_ROWS and KESTRIX_BAD_THREADS. The destination is
 * unchanged then. The checks take less than 200 ns, unless the buffers overlap: then a few
 * nanoseconds a row.
 */
kestrix_status kestrix_convert(const kestrix_picture* src, const kestrix_picture* dst,
                               uint32_t flags);

/**
 * Converts the rows `first_row` to `end_row` - 1 of `src`, a whole picture, to the same rows of
 * `dst`. All calls that convert a picture's rows, each row once, do together what kestrix_convert
 * does, to the bit. They may run at the same time on threads of the caller. No rows, `first_row`
 * equal to `end_row`, are not an error.
 *
 * Errors: as kestrix_convert, and KESTRIX_BAD_ROWS unless first_row <= end_row <= height.
 */
kestrix_status kestrix_convert_rows(const kestrix_picture* src, const kestrix_picture* dst,
                                    uint32_t first_row, uint32_t end_row, uint32_t flags);

/**
 * Converts `src` to `dst` as kestrix_convert does, on up to `threads` threads, of which the calling
 * one is one. The others are started for this call and end with it; signals are blocked in them. If
 * the system refuses a thread, the calling one does its work. Fewer threads are used if the picture
 * has too few rows to share. Programs with threads of their own use kestrix_convert_rows.
 *
 * Errors: as kestrix_convert, and KESTRIX_BAD_THREADS.
 */
kestrix_status kestrix_convert_by_threads(const kestrix_picture* src, const kestrix_picture* dst,
                                          uint32_t threads, uint32_t flags);

/**
 * Checks what kestrix_convert checks, converts nothing, and returns the status that it would
 * return. If that is not KESTRIX_OK, writes one line that says what is wrong, with the figures, to
 * `words`, as kestrix_find_conversion does; "the destination needs 8294400 bytes and has 8294399".
 */
kestrix_status kestrix_check(const kestrix_picture* src, const kestrix_picture* dst, uint32_t flags,
                             char* words, size_t words_size);

#ifdef __GNUC__
#pragma GCC visibility pop
#endif
#ifdef __cplusplus
}
#endif

#endif
