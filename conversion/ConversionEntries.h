/// The entry functions that are written, by source format in the order of the source files.
#pragma once

namespace KSX::PixelConversion {

/// What every entry is; see `ConversionFunction`.
using ConversionSignature = void(unsigned width, unsigned height, void* dst, unsigned dstRowBytes,
                                 void* src, unsigned srcRowBytes);

// From 8YUV422
ConversionSignature Convert_8YUV422_To_8YUY422;
ConversionSignature Convert_8YUV422_SD_To_8ARGB_FULL;
ConversionSignature Convert_8YUV422_HD_To_8ARGB_FULL;
ConversionSignature Convert_8YUV422_SD_To_8BGRA_FULL;
ConversionSignature Convert_8YUV422_HD_To_8BGRA_FULL;
ConversionSignature Convert_8YUV422_2020_To_8BGRA_FULL;
ConversionSignature Convert_8YUV422_SD_To_8RGBA_FULL;
ConversionSignature Convert_8YUV422_HD_To_8RGBA_FULL;
ConversionSignature Convert_8YUV422_SD_To_8RGB_FULL;
ConversionSignature Convert_8YUV422_HD_To_8RGB_FULL;

// From 8YUY422
ConversionSignature Convert_8YUY422_To_8YUV422;

// From 8ARGB_FULL
ConversionSignature Convert_8ARGB_FULL_To_8BGRA_FULL;
ConversionSignature Convert_8ARGB_FULL_To_8BGRA_FULL_Scalar;
ConversionSignature Convert_8ARGB_FULL_To_8RGBA_FULL;
ConversionSignature Convert_8ARGB_FULL_To_8RGB_FULL;
ConversionSignature Convert_8ARGB_FULL_To_8YUV422_SD;
ConversionSignature Convert_8ARGB_FULL_To_8YUV422_HD;

// From 8BGRA_FULL
ConversionSignature Convert_8BGRA_FULL_To_8ARGB_FULL;
ConversionSignature Convert_8BGRA_FULL_To_8ARGB_FULL_Scalar;
ConversionSignature Convert_8BGRA_FULL_To_8RGBA_FULL;
ConversionSignature Convert_8BGRA_FULL_To_8RGB_FULL;
ConversionSignature Convert_8BGRA_FULL_To_8ARGB_SMPTE;
ConversionSignature Convert_8BGRA_FULL_To_8BGRA_SMPTE;
ConversionSignature Convert_8BGRA_FULL_To_8YUV422_SD;
ConversionSignature Convert_8BGRA_FULL_To_8YUV422_HD;
ConversionSignature Convert_8BGRA_FULL_To_8YUV422_2020;

// From 8ARGB_SMPTE
ConversionSignature Convert_8ARGB_SMPTE_To_8BGRA_FULL;
ConversionSignature Convert_8ARGB_SMPTE_To_8RGBA_FULL;

// From 8BGRA_SMPTE
ConversionSignature Convert_8BGRA_SMPTE_To_8BGRA_FULL;
ConversionSignature Convert_8BGRA_SMPTE_To_8RGBA_FULL;

// From 8RGBA_FULL
ConversionSignature Convert_8RGBA_FULL_To_8ARGB_FULL;
ConversionSignature Convert_8RGBA_FULL_To_8BGRA_FULL;
ConversionSignature Convert_8RGBA_FULL_To_8RGB_FULL;
ConversionSignature Convert_8RGBA_FULL_To_8YUV422_SD;
ConversionSignature Convert_8RGBA_FULL_To_8YUV422_HD;

// From 8RGB_FULL
ConversionSignature Convert_8RGB_FULL_To_8ARGB_FULL;
ConversionSignature Convert_8RGB_FULL_To_8BGRA_FULL;
ConversionSignature Convert_8RGB_FULL_To_8RGBA_FULL;
ConversionSignature Convert_8RGB_FULL_To_8YUV422_SD;
ConversionSignature Convert_8RGB_FULL_To_8YUV422_HD;

} // namespace KSX::PixelConversion
