/* The header alone, as C and as C++. */
#include <KestrixPixelConversion.h>

/* Sizes and values are the binary interface of programs that were built before. */
typedef char picture_is_48_bytes[sizeof(kestrix_picture) == 48 ? 1 : -1];
typedef char conversion_is_40_bytes[sizeof(kestrix_conversion) == 40 ? 1 : -1];
typedef char format_is_56_bytes[sizeof(kestrix_format_info) == 56 ? 1 : -1];
typedef char status_is_an_int[sizeof(kestrix_status) == sizeof(int) ? 1 : -1];
typedef char last_status_is_15[KESTRIX_BAD_THREADS == 15 ? 1 : -1];
