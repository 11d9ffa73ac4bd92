/// The entry functions that are written, by source format in the order of the source files.
#pragma once

namespace KSX::PixelConversion {

/// What every entry is; see `ConversionFunction`.
using ConversionSignature = void(unsigned width, unsigned height, void* dst, unsigned dstRowBytes,
                                 void* src, unsigned srcRowBytes);

// From 8ARGB_FULL
ConversionSignature Convert_8ARGB_FULL_To_8BGRA_FULL;
ConversionSignature Convert_8ARGB_FULL_To_8BGRA_FULL_Scalar;
ConversionSignature Convert_8ARGB_FULL_To_8RGBA_FULL;
ConversionSignature Convert_8ARGB_FULL_To_8RGB_FULL;

// From 8BGRA_FULL
ConversionSignature Convert_8BGRA_FULL_To_8ARGB_FULL;
ConversionSignature Convert_8BGRA_FULL_To_8ARGB_FULL_Scalar;
ConversionSignature Convert_8BGRA_FULL_To_8RGBA_FULL;
ConversionSignature Convert_8BGRA_FULL_To_8RGB_FULL;

// From 8RGBA_FULL
ConversionSignature Convert_8RGBA_FULL_To_8ARGB_FULL;
ConversionSignature Convert_8RGBA_FULL_To_8BGRA_FULL;
ConversionSignature Convert_8RGBA_FULL_To_8RGB_FULL;

// From 8RGB_FULL
ConversionSignature Convert_8RGB_FULL_To_8ARGB_FULL;
ConversionSignature Convert_8RGB_FULL_To_8BGRA_FULL;
ConversionSignature Convert_8RGB_FULL_To_8RGBA_FULL;

} // namespace KSX::PixelConversion
