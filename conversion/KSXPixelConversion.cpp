/// The table of conversions, its lookup, and the copy that is a conversion in it.
#include "conversion/KSXPixelConversion.h"

#include "conversion/ConversionEntries.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>

namespace KSX::PixelConversion {

namespace {

// Short names for the columns of the table.
constexpr Colorspace Any = ColorspaceUnspecified;
constexpr Colorspace R601 = Colorspace601;
constexpr Colorspace R709 = Colorspace709;
constexpr Colorspace R2020 = Colorspace2020;

constexpr PixelFormat k2vuy = PixelFormat_2vuy;
constexpr PixelFormat kYUY2 = PixelFormat_YUY2;
constexpr PixelFormat kv210 = PixelFormat_v210;
constexpr PixelFormat kv212 = PixelFormat_v212;
constexpr PixelFormat kv216 = PixelFormat_v216;
constexpr PixelFormat kay10 = PixelFormat_ay10;
constexpr PixelFormat kAy10 = PixelFormat_Ay10;
constexpr PixelFormat kARGB = PixelFormat_ARGB;
constexpr PixelFormat kvRGB = PixelFormat_vRGB;
constexpr PixelFormat kBGRA = PixelFormat_BGRA;
constexpr PixelFormat kBGRv = PixelFormat_BGRv;
constexpr PixelFormat kBGRX = PixelFormat_BGRX;
constexpr PixelFormat kRGBA = PixelFormat_RGBA;
constexpr PixelFormat kRGB3 = PixelFormat_RGB3;
constexpr PixelFormat kr210 = PixelFormat_r210;
constexpr PixelFormat kR210 = PixelFormat_R210;
constexpr PixelFormat kR10l = PixelFormat_R10l;
constexpr PixelFormat kR10L = PixelFormat_R10L;
constexpr PixelFormat kR10b = PixelFormat_R10b;
constexpr PixelFormat kR10B = PixelFormat_R10B;
constexpr PixelFormat kR10A = PixelFormat_R10A;
constexpr PixelFormat kA04l = PixelFormat_A04l;
constexpr PixelFormat kA04L = PixelFormat_A04L;
constexpr PixelFormat kR12B = PixelFormat_R12B;
constexpr PixelFormat kR12L = PixelFormat_R12L;
constexpr PixelFormat kR12l = PixelFormat_R12l;
constexpr PixelFormat kS12L = PixelFormat_S12L;
constexpr PixelFormat kb64a = PixelFormat_b64a;
constexpr PixelFormat kL64A = PixelFormat_L64A;
constexpr PixelFormat kl64a = PixelFormat_l64a;

} // namespace

// clang-format off
constexpr ConversionEntry conversions[kConversionCount] = {
    // source,     destination,  entry

    // row 0: from 2vuy
    {k2vuy, Any,   kYUY2, Any,   Convert_8YUV422_To_8YUY422},

    // row 1: from YUY2
    {kYUY2, Any,   k2vuy, Any,   Convert_8YUY422_To_8YUV422},

    // row 2: from 2vuy
    // The only change of colourspace to YUY2. Row 3 is the only one from YUY2.
    {k2vuy, R709,  kYUY2, R601,  Convert_8YUV422_HD_To_8YUY422_SD},

    // row 3: from YUY2
    {kYUY2, R601,  k2vuy, R709,  Convert_8YUY422_SD_To_8YUV422_HD},

    // rows 4 to 41: from 2vuy
    // Rows 7 to 9 repeat row 6 for each colourspace and are never reached: row 6 serves them all.
    {k2vuy, Any,   kv210, Any,   Convert_8YUV422_To_10YUV422_LE},
    {k2vuy, Any,   kay10, Any,   Convert_8YUV422_TO_10YUVA422_BE},
    {k2vuy, Any,   kAy10, Any,   Convert_8YUV422_TO_10YUVA422_BE_FullA},
    {k2vuy, R601,  kAy10, R601,  Convert_8YUV422_TO_10YUVA422_BE_FullA},
    {k2vuy, R709,  kAy10, R709,  Convert_8YUV422_TO_10YUVA422_BE_FullA},
    {k2vuy, R2020, kAy10, R2020, Convert_8YUV422_TO_10YUVA422_BE_FullA},
    {k2vuy, R601,  kARGB, R601,  Convert_8YUV422_SD_To_8ARGB_FULL},
    {k2vuy, R709,  kARGB, R709,  Convert_8YUV422_HD_To_8ARGB_FULL},
    {k2vuy, R601,  kRGB3, R601,  Convert_8YUV422_SD_To_8RGB_FULL},
    {k2vuy, R709,  kRGB3, R709,  Convert_8YUV422_HD_To_8RGB_FULL},
    {k2vuy, R601,  kBGRA, R709,  Convert_8YUV422_601_To_8BGRA_FULL_709},
    {k2vuy, R2020, kBGRA, R709,  Convert_8YUV422_2020_To_8BGRA_FULL_709},
    {k2vuy, R601,  kBGRA, R601,  Convert_8YUV422_SD_To_8BGRA_FULL},
    {k2vuy, R709,  kBGRA, R709,  Convert_8YUV422_HD_To_8BGRA_FULL},
    {k2vuy, R2020, kBGRA, R2020, Convert_8YUV422_2020_To_8BGRA_FULL},
    {k2vuy, R601,  kr210, R601,  Convert_8YUV422_SD_To_10XRGB_BE_SMPTE},
    {k2vuy, R709,  kr210, R709,  Convert_8YUV422_HD_To_10XRGB_BE_SMPTE},
    {k2vuy, R2020, kr210, R2020, Convert_8YUV422_2020_To_10XRGB_BE_SMPTE},
    {k2vuy, R601,  kR210, R601,  Convert_8YUV422_SD_To_10XRGB_BE_FULL},
    {k2vuy, R709,  kR210, R709,  Convert_8YUV422_HD_To_10XRGB_BE_FULL},
    {k2vuy, R601,  kRGBA, R709,  Convert_8YUV422_601_To_8RGBA_FULL_709},
    {k2vuy, R2020, kRGBA, R709,  Convert_8YUV422_2020_To_8RGBA_FULL_709},
    {k2vuy, R601,  kRGBA, R601,  Convert_8YUV422_SD_To_8RGBA_FULL},
    {k2vuy, R709,  kRGBA, R709,  Convert_8YUV422_HD_To_8RGBA_FULL},
    {k2vuy, R601,  kR10l, R601,  Convert_8YUV422_SD_To_10RGBX_LE_SMPTE},
    {k2vuy, R709,  kR10l, R709,  Convert_8YUV422_HD_To_10RGBX_LE_SMPTE},
    {k2vuy, R2020, kR10l, R2020, Convert_8YUV422_2020_To_10RGBX_LE_SMPTE},
    {k2vuy, R601,  kR10b, R601,  Convert_8YUV422_SD_To_10RGBX_BE_SMPTE},
    {k2vuy, R709,  kR10b, R709,  Convert_8YUV422_HD_To_10RGBX_BE_SMPTE},
    {k2vuy, R2020, kR10b, R2020, Convert_8YUV422_2020_To_10RGBX_BE_SMPTE},
    {k2vuy, R601,  kR10L, R601,  Convert_8YUV422_SD_To_10RGBX_LE_FULL},
    {k2vuy, R709,  kR10L, R709,  Convert_8YUV422_HD_To_10RGBX_LE_FULL},
    {k2vuy, R2020, kR10L, R2020, Convert_8YUV422_2020_To_10RGBX_LE_FULL},
    {k2vuy, R601,  kR10B, R601,  Convert_8YUV422_SD_To_10RGBX_BE_FULL},
    {k2vuy, R709,  kR10B, R709,  Convert_8YUV422_HD_To_10RGBX_BE_FULL},
    {k2vuy, R2020, kR10B, R2020, Convert_8YUV422_2020_To_10RGBX_BE_FULL},
    {k2vuy, R601,  kR10A, R601,  Convert_8YUV422_SD_To_10RGBA_BE_FULL},
    {k2vuy, R709,  kR10A, R709,  Convert_8YUV422_HD_To_10RGBA_BE_FULL},

    // rows 42 to 78: from v210
    // Rows 44 to 46 repeat row 43, as rows 7 to 9 repeat row 6.
    {kv210, Any,   k2vuy, Any,   Convert_10YUV422_LE_To_8YUV422},
    {kv210, Any,   kAy10, Any,   Convert_10YUV422_LE_TO_10YUVA422_BE_FullA},
    {kv210, R601,  kAy10, R601,  Convert_10YUV422_LE_TO_10YUVA422_BE_FullA},
    {kv210, R709,  kAy10, R709,  Convert_10YUV422_LE_TO_10YUVA422_BE_FullA},
    {kv210, R2020, kAy10, R2020, Convert_10YUV422_LE_TO_10YUVA422_BE_FullA},
    {kv210, R601,  kARGB, R601,  Convert_10YUV422_LE_SD_To_8ARGB_FULL},
    {kv210, R709,  kARGB, R709,  Convert_10YUV422_LE_HD_To_8ARGB_FULL},
    {kv210, R601,  kRGB3, R601,  Convert_10YUV422_LE_SD_To_8RGB_FULL},
    {kv210, R709,  kRGB3, R709,  Convert_10YUV422_LE_HD_To_8RGB_FULL},
    {kv210, R601,  kBGRA, R709,  Convert_10YUV422_LE_601_To_8BGRA_FULL_709},
    {kv210, R2020, kBGRA, R709,  Convert_10YUV422_LE_2020_To_8BGRA_FULL_709},
    {kv210, R601,  kBGRA, R601,  Convert_10YUV422_LE_SD_To_8BGRA_FULL},
    {kv210, R709,  kBGRA, R709,  Convert_10YUV422_LE_HD_To_8BGRA_FULL},
    {kv210, R2020, kBGRA, R2020, Convert_10YUV422_LE_2020_To_8BGRA_FULL},
    {kv210, R601,  kr210, R601,  Convert_10YUV422_LE_SD_To_10XRGB_BE_SMPTE},
    {kv210, R709,  kr210, R709,  Convert_10YUV422_LE_HD_To_10XRGB_BE_SMPTE},
    {kv210, R2020, kr210, R2020, Convert_10YUV422_LE_2020_To_10XRGB_BE_SMPTE},
    {kv210, R601,  kR210, R601,  Convert_10YUV422_LE_SD_To_10XRGB_BE_FULL},
    {kv210, R709,  kR210, R709,  Convert_10YUV422_LE_HD_To_10XRGB_BE_FULL},
    {kv210, R601,  kRGBA, R709,  Convert_10YUV422_LE_601_To_8RGBA_FULL_709},
    {kv210, R2020, kRGBA, R709,  Convert_10YUV422_LE_2020_To_8RGBA_FULL_709},
    {kv210, R601,  kRGBA, R601,  Convert_10YUV422_LE_SD_To_8RGBA_FULL},
    {kv210, R709,  kRGBA, R709,  Convert_10YUV422_LE_HD_To_8RGBA_FULL},
    {kv210, R601,  kR10l, R601,  Convert_10YUV422_LE_SD_To_10RGBX_LE_SMPTE},
    {kv210, R709,  kR10l, R709,  Convert_10YUV422_LE_HD_To_10RGBX_LE_SMPTE},
    {kv210, R2020, kR10l, R2020, Convert_10YUV422_LE_2020_To_10RGBX_LE_SMPTE},
    {kv210, R601,  kR10b, R601,  Convert_10YUV422_LE_SD_To_10RGBX_BE_SMPTE},
    {kv210, R709,  kR10b, R709,  Convert_10YUV422_LE_HD_To_10RGBX_BE_SMPTE},
    {kv210, R2020, kR10b, R2020, Convert_10YUV422_LE_2020_To_10RGBX_BE_SMPTE},
    {kv210, R601,  kR10L, R601,  Convert_10YUV422_LE_SD_To_10RGBX_LE_FULL},
    {kv210, R709,  kR10L, R709,  Convert_10YUV422_LE_HD_To_10RGBX_LE_FULL},
    {kv210, R2020, kR10L, R2020, Convert_10YUV422_LE_2020_To_10RGBX_LE_FULL},
    {kv210, R601,  kR10B, R601,  Convert_10YUV422_LE_SD_To_10RGBX_BE_FULL},
    {kv210, R709,  kR10B, R709,  Convert_10YUV422_LE_HD_To_10RGBX_BE_FULL},
    {kv210, R2020, kR10B, R2020, Convert_10YUV422_LE_2020_To_10RGBX_BE_FULL},
    {kv210, R601,  kR10A, R601,  Convert_10YUV422_LE_SD_To_10RGBA_BE_FULL},
    {kv210, R709,  kR10A, R709,  Convert_10YUV422_LE_HD_To_10RGBA_BE_FULL},

    // rows 79 to 80: from v212
    // v212 and v216 both have 16-bit samples, which are copied between them as they are.
    {kv212, Any,   kv210, Any,   Convert_12YUV422_LE_To_10YUV422_LE},
    {kv212, Any,   kv216, Any,   CopyWithoutConversion},

    // rows 81 to 82: from v216
    {kv216, Any,   kv210, Any,   Convert_16YUV422_LE_To_10YUV422_LE},
    {kv216, Any,   kv212, Any,   CopyWithoutConversion},

    // rows 83 to 85: from ay10
    {kay10, R601,  kBGRA, R601,  Convert_10YUVA422_BE_SMPTE_SD_To_8BGRA_FULL},
    {kay10, R709,  kBGRA, R709,  Convert_10YUVA422_BE_SMPTE_HD_To_8BGRA_FULL},
    {kay10, R2020, kBGRA, R2020, Convert_10YUVA422_BE_2020_To_8BGRA_FULL},

    // rows 86 to 97: from Ay10
    // Rows 87 to 89 repeat row 86, as rows 7 to 9 repeat row 6.
    {kAy10, Any,   kv210, Any,   Convert_10YUVA422_BE_SMPTE_FullA_To_10YUV422_LE},
    {kAy10, R601,  kv210, R601,  Convert_10YUVA422_BE_SMPTE_FullA_To_10YUV422_LE},
    {kAy10, R709,  kv210, R709,  Convert_10YUVA422_BE_SMPTE_FullA_To_10YUV422_LE},
    {kAy10, R2020, kv210, R2020, Convert_10YUVA422_BE_SMPTE_FullA_To_10YUV422_LE},
    {kAy10, R601,  kBGRA, R601,  Convert_10YUVA422_BE_SMPTE_FullA_SD_To_8BGRA_FULL},
    {kAy10, R601,  kBGRA, R709,  Convert_10YUVA422_BE_SMPTE_FullA_SD_To_8BGRA_FULL_709},
    {kAy10, R2020, kBGRA, R709,  Convert_10YUVA422_BE_SMPTE_FullA_2020_To_8BGRA_FULL_709},
    {kAy10, R709,  kBGRA, R709,  Convert_10YUVA422_BE_SMPTE_FullA_HD_To_8BGRA_FULL},
    {kAy10, R2020, kBGRA, R2020, Convert_10YUVA422_BE_SMPTE_FullA_2020_To_8BGRA_FULL},
    {kAy10, R601,  kRGBA, R601,  Convert_10YUVA422_BE_SMPTE_FullA_SD_To_8RGBA_FULL},
    {kAy10, R709,  kRGBA, R709,  Convert_10YUVA422_BE_SMPTE_FullA_HD_To_8RGBA_FULL},
    {kAy10, R2020, kRGBA, R2020, Convert_10YUVA422_BE_SMPTE_FullA_2020_To_8RGBA_FULL},

    // rows 98 to 114: from 32
    {kARGB, R601,  k2vuy, R601,  Convert_8ARGB_FULL_To_8YUV422_SD},
    {kARGB, R709,  k2vuy, R709,  Convert_8ARGB_FULL_To_8YUV422_HD},
    {kARGB, R601,  kv210, R601,  Convert_8ARGB_FULL_To_10YUV422_LE_SD},
    {kARGB, R709,  kv210, R709,  Convert_8ARGB_FULL_To_10YUV422_LE_HD},
    {kARGB, R601,  kBGRA, R709,  Convert_8ARGB_FULL_601_To_8BGRA_FULL_709},
    {kARGB, R2020, kBGRA, R709,  Convert_8ARGB_FULL_2020_To_8BGRA_FULL_709},
    {kARGB, Any,   kBGRA, Any,   Convert_8ARGB_FULL_To_8BGRA_FULL},
    {kARGB, Any,   kr210, Any,   Convert_8ARGB_FULL_To_10XRGB_BE_SMPTE},
    {kARGB, Any,   kR210, Any,   Convert_8ARGB_FULL_To_10XRGB_BE_FULL},
    {kARGB, R601,  kRGBA, R709,  Convert_8ARGB_FULL_601_To_8RGBA_FULL_709},
    {kARGB, R2020, kRGBA, R709,  Convert_8ARGB_FULL_2020_To_8RGBA_FULL_709},
    {kARGB, Any,   kRGBA, Any,   Convert_8ARGB_FULL_To_8RGBA_FULL},
    {kARGB, Any,   kR10l, Any,   Convert_8ARGB_FULL_To_10RGBX_LE_SMPTE},
    {kARGB, Any,   kR10b, Any,   Convert_8ARGB_FULL_To_10RGBX_BE_SMPTE},
    {kARGB, Any,   kR10L, Any,   Convert_8ARGB_FULL_To_10RGBX_LE_FULL},
    {kARGB, Any,   kR10B, Any,   Convert_8ARGB_FULL_To_10RGBX_BE_FULL},
    {kARGB, Any,   kR10A, Any,   Convert_8ARGB_FULL_To_10RGBA_BE_FULL},

    // rows 115 to 157: from BGRA
    {kBGRA, R709,  k2vuy, R2020, Convert_8BGRA_FULL_709_To_8YUV422_2020},
    {kBGRA, R601,  k2vuy, R601,  Convert_8BGRA_FULL_To_8YUV422_SD},
    {kBGRA, R601,  k2vuy, R709,  Convert_8BGRA_FULL_601_To_8YUV422_HD},
    {kBGRA, R709,  k2vuy, R601,  Convert_8BGRA_FULL_709_To_8YUV422_SD},
    {kBGRA, R601,  k2vuy, R2020, Convert_8BGRA_FULL_601_To_8YUV422_2020},
    {kBGRA, R2020, k2vuy, R601,  Convert_8BGRA_FULL_2020_To_8YUV422_SD},
    {kBGRA, R2020, k2vuy, R709,  Convert_8BGRA_FULL_2020_To_8YUV422_HD},
    {kBGRA, R709,  k2vuy, R709,  Convert_8BGRA_FULL_To_8YUV422_HD},
    {kBGRA, R2020, k2vuy, R2020, Convert_8BGRA_FULL_To_8YUV422_2020},
    {kBGRA, R601,  kv210, R601,  Convert_8BGRA_FULL_To_10YUV422_LE_SD},
    {kBGRA, R709,  kv210, R709,  Convert_8BGRA_FULL_To_10YUV422_LE_HD},
    {kBGRA, R2020, kv210, R2020, Convert_8BGRA_FULL_To_10YUV422_LE_2020},
    {kBGRA, R601,  kay10, R601,  Convert_8BGRA_FULL_To_10YUVA422_BE_SMPTE_SD},
    {kBGRA, R709,  kay10, R709,  Convert_8BGRA_FULL_To_10YUVA422_BE_SMPTE_HD},
    {kBGRA, R2020, kay10, R2020, Convert_8BGRA_FULL_To_10YUVA422_BE_2020},
    {kBGRA, R601,  kAy10, R601,  Convert_8BGRA_FULL_To_10YUVA422_BE_SMPTE_FullA_SD},
    {kBGRA, R709,  kAy10, R709,  Convert_8BGRA_FULL_To_10YUVA422_BE_SMPTE_FullA_HD},
    {kBGRA, R2020, kAy10, R2020, Convert_8BGRA_FULL_To_10YUVA422_BE_SMPTE_FullA_2020},
    {kBGRA, Any,   kARGB, Any,   Convert_8BGRA_FULL_To_8ARGB_FULL},
    {kBGRA, Any,   kvRGB, Any,   Convert_8BGRA_FULL_To_8ARGB_SMPTE},
    {kBGRA, R709,  kBGRv, R2020, Convert_8BGRA_FULL_709_To_8BGRA_SMPTE_2020},
    {kBGRA, Any,   kBGRv, Any,   Convert_8BGRA_FULL_To_8BGRA_SMPTE},
    {kBGRA, Any,   kr210, Any,   Convert_8BGRA_FULL_To_10XRGB_BE_SMPTE},
    {kBGRA, Any,   kR210, Any,   Convert_8BGRA_FULL_To_10XRGB_BE_FULL},
    {kBGRA, R601,  kRGBA, R709,  Convert_8BGRA_FULL_601_To_8RGBA_FULL_709},
    {kBGRA, R2020, kRGBA, R709,  Convert_8BGRA_FULL_2020_To_8RGBA_FULL_709},
    {kBGRA, Any,   kS12L, Any,   Convert_8BGRA_FULL_To_S12L},
    {kBGRA, Any,   kRGBA, Any,   Convert_8BGRA_FULL_To_8RGBA_FULL},
    {kBGRA, Any,   kR10l, Any,   Convert_8BGRA_FULL_To_10RGBX_LE_SMPTE},
    {kBGRA, Any,   kR10b, Any,   Convert_8BGRA_FULL_To_10RGBX_BE_SMPTE},
    {kBGRA, Any,   kR10L, Any,   Convert_8BGRA_FULL_To_10RGBX_LE_FULL},
    {kBGRA, Any,   kR10B, Any,   Convert_8BGRA_FULL_To_10RGBX_BE_FULL},
    {kBGRA, Any,   kR10A, Any,   Convert_8BGRA_FULL_To_10RGBA_BE_FULL},
    {kBGRA, Any,   kA04l, Any,   Convert_8BGRA_FULL_To_10BGRA_LE_SMPTE},
    {kBGRA, Any,   kA04L, Any,   Convert_8BGRA_FULL_To_10BGRA_LE_FULL},
    {kBGRA, Any,   kR12L, Any,   Convert_8BGRA_FULL_To_12RGBX_LE_FULL},
    {kBGRA, Any,   kR12B, Any,   Convert_8BGRA_FULL_To_12RGBX_BE_FULL},
    {kBGRA, R601,  kBGRA, R709,  Convert_8BGRA_FULL_601_To_8BGRA_FULL_709},
    {kBGRA, R601,  kBGRA, R2020, Convert_8BGRA_FULL_601_To_8BGRA_FULL_2020},
    {kBGRA, R2020, kBGRA, R601,  Convert_8BGRA_FULL_2020_To_8BGRA_FULL_601},
    {kBGRA, R2020, kBGRA, R709,  Convert_8BGRA_FULL_2020_To_8BGRA_FULL_709},
    {kBGRA, R709,  kBGRA, R2020, Convert_8BGRA_FULL_709_To_8BGRA_FULL_2020},
    {kBGRA, R709,  kBGRA, R601,  Convert_8BGRA_FULL_709_To_8BGRA_FULL_601},

    // rows 158 to 163: from BGRX
    {kBGRX, R601,  kay10, R601,  Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_SD},
    {kBGRX, R709,  kay10, R709,  Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_HD},
    {kBGRX, R2020, kay10, R2020, Convert_8BGRX_FULL_To_10YUVA422_BE_2020},
    {kBGRX, R601,  kAy10, R601,  Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_FullA_SD},
    {kBGRX, R709,  kAy10, R709,  Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_FullA_HD},
    {kBGRX, R2020, kAy10, R2020, Convert_8BGRX_FULL_To_10YUVA422_BE_SMPTE_FullA_2020},

    // rows 164 to 169: from vRGB
    {kvRGB, R601,  kBGRA, R709,  Convert_8ARGB_SMPTE_601_To_8BGRA_FULL_709},
    {kvRGB, R2020, kBGRA, R709,  Convert_8ARGB_SMPTE_2020_To_8BGRA_FULL_709},
    {kvRGB, Any,   kBGRA, Any,   Convert_8ARGB_SMPTE_To_8BGRA_FULL},
    {kvRGB, R601,  kRGBA, R709,  Convert_8ARGB_SMPTE_601_To_8RGBA_FULL_709},
    {kvRGB, R2020, kRGBA, R709,  Convert_8ARGB_SMPTE_2020_To_8RGBA_FULL_709},
    {kvRGB, Any,   kRGBA, Any,   Convert_8ARGB_SMPTE_To_8RGBA_FULL},

    // rows 170 to 177: from BGRv
    {kBGRv, R709,  k2vuy, R2020, Convert_8BGRA_SMPTE_709_To_8YUV422_2020},
    {kBGRv, R601,  kBGRA, R709,  Convert_8BGRA_SMPTE_601_To_8BGRA_FULL_709},
    {kBGRv, R2020, kBGRA, R709,  Convert_8BGRA_SMPTE_2020_To_8BGRA_FULL_709},
    {kBGRv, Any,   kBGRA, Any,   Convert_8BGRA_SMPTE_To_8BGRA_FULL},
    {kBGRv, R709,  kBGRv, R2020, Convert_8BGRA_SMPTE_709_To_8BGRA_SMPTE_2020},
    {kBGRv, R601,  kRGBA, R709,  Convert_8BGRA_SMPTE_601_To_8RGBA_FULL_709},
    {kBGRv, R2020, kRGBA, R709,  Convert_8BGRA_SMPTE_2020_To_8RGBA_FULL_709},
    {kBGRv, Any,   kRGBA, Any,   Convert_8BGRA_SMPTE_To_8RGBA_FULL},

    // rows 178 to 195: from r210
    {kr210, R601,  k2vuy, R601,  Convert_10XRGB_BE_SMPTE_To_8YUV422_SD},
    {kr210, R709,  k2vuy, R709,  Convert_10XRGB_BE_SMPTE_To_8YUV422_HD},
    {kr210, R601,  kv210, R601,  Convert_10XRGB_BE_SMPTE_To_10YUV422_LE_SD},
    {kr210, R709,  kv210, R709,  Convert_10XRGB_BE_SMPTE_To_10YUV422_LE_HD},
    {kr210, R2020, kv210, R2020, Convert_10XRGB_BE_SMPTE_To_10YUV422_LE_2020},
    {kr210, Any,   kARGB, Any,   Convert_10XRGB_BE_SMPTE_To_8ARGB_FULL},
    {kr210, Any,   kRGB3, Any,   Convert_10XRGB_BE_SMPTE_To_8RGB_FULL},
    {kr210, R2020, kBGRA, R709,  Convert_10XRGB_BE_SMPTE_2020_To_8BGRA_FULL_709},
    {kr210, Any,   kBGRA, Any,   Convert_10XRGB_BE_SMPTE_To_8BGRA_FULL},
    {kr210, R2020, kRGBA, R709,  Convert_10XRGB_BE_SMPTE_2020_To_8RGBA_FULL_709},
    {kr210, Any,   kRGBA, Any,   Convert_10XRGB_BE_SMPTE_To_8RGBA_FULL},
    {kr210, Any,   kR10l, Any,   Convert_10XRGB_BE_SMPTE_To_10RGBX_LE_SMPTE},
    {kr210, Any,   kR10b, Any,   Convert_10XRGB_BE_SMPTE_To_10RGBX_BE_SMPTE},
    {kr210, Any,   kR10L, Any,   Convert_10XRGB_BE_SMPTE_To_10RGBX_LE_FULL},
    {kr210, Any,   kR10B, Any,   Convert_10XRGB_BE_SMPTE_To_10RGBX_BE_FULL},
    {kr210, Any,   kR10A, Any,   Convert_10XRGB_BE_SMPTE_To_10RGBA_BE_FULL},
    {kr210, Any,   kR210, Any,   Convert_10XRGB_BE_SMPTE_To_10XRGB_BE_FULL},
    {kr210, Any,   kl64a, Any,   Convert_10XRGB_BE_SMPTE_To_16ARGB_LE_SMPTE},

    // rows 196 to 210: from R210
    // Row 209 repeats row 205 and is never reached.
    {kR210, R601,  k2vuy, R601,  Convert_10XRGB_BE_FULL_To_8YUV422_SD},
    {kR210, R709,  k2vuy, R709,  Convert_10XRGB_BE_FULL_To_8YUV422_HD},
    {kR210, R601,  kv210, R601,  Convert_10XRGB_BE_FULL_To_10YUV422_LE_SD},
    {kR210, R709,  kv210, R709,  Convert_10XRGB_BE_FULL_To_10YUV422_LE_HD},
    {kR210, Any,   kARGB, Any,   Convert_10XRGB_BE_FULL_To_8ARGB_FULL},
    {kR210, Any,   kRGB3, Any,   Convert_10XRGB_BE_FULL_To_8RGB_FULL},
    {kR210, Any,   kBGRA, Any,   Convert_10XRGB_BE_FULL_To_8BGRA_FULL},
    {kR210, Any,   kRGBA, Any,   Convert_10XRGB_BE_FULL_To_8RGBA_FULL},
    {kR210, Any,   kR10l, Any,   Convert_10XRGB_BE_FULL_To_10RGBX_LE_SMPTE},
    {kR210, Any,   kR10b, Any,   Convert_10XRGB_BE_FULL_To_10RGBX_BE_SMPTE},
    {kR210, Any,   kR10L, Any,   Convert_10XRGB_BE_FULL_To_10RGBX_LE_FULL},
    {kR210, Any,   kR10B, Any,   Convert_10XRGB_BE_FULL_To_10RGBX_BE_FULL},
    {kR210, Any,   kR10A, Any,   Convert_10XRGB_BE_FULL_To_10RGBA_BE_FULL},
    {kR210, Any,   kR10b, Any,   Convert_10XRGB_BE_FULL_To_10RGBX_BE_SMPTE},
    {kR210, Any,   kr210, Any,   Convert_10XRGB_BE_FULL_To_10XRGB_BE_SMPTE},

    // rows 211 to 229: from RGBA
    {kRGBA, R601,  k2vuy, R601,  Convert_8RGBA_FULL_To_8YUV422_SD},
    {kRGBA, R709,  k2vuy, R709,  Convert_8RGBA_FULL_To_8YUV422_HD},
    {kRGBA, R601,  kv210, R601,  Convert_8RGBA_FULL_To_10YUV422_LE_SD},
    {kRGBA, R709,  kv210, R709,  Convert_8RGBA_FULL_To_10YUV422_LE_HD},
    {kRGBA, R601,  kay10, R601,  Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_SD},
    {kRGBA, R709,  kay10, R709,  Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_HD},
    {kRGBA, R601,  kAy10, R601,  Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_FullA_SD},
    {kRGBA, R709,  kAy10, R709,  Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_FullA_HD},
    {kRGBA, R2020, kAy10, R2020, Convert_8RGBA_FULL_To_10YUVA422_BE_SMPTE_FullA_2020},
    {kRGBA, Any,   kARGB, Any,   Convert_8RGBA_FULL_To_8ARGB_FULL},
    {kRGBA, Any,   kRGB3, Any,   Convert_8RGBA_FULL_To_8RGB_FULL},
    {kRGBA, Any,   kBGRA, Any,   Convert_8RGBA_FULL_To_8BGRA_FULL},
    {kRGBA, Any,   kr210, Any,   Convert_8RGBA_FULL_To_10XRGB_BE_SMPTE},
    {kRGBA, Any,   kR210, Any,   Convert_8RGBA_FULL_To_10XRGB_BE_FULL},
    {kRGBA, Any,   kR10l, Any,   Convert_8RGBA_FULL_To_10RGBX_LE_SMPTE},
    {kRGBA, Any,   kR10b, Any,   Convert_8RGBA_FULL_To_10RGBX_BE_SMPTE},
    {kRGBA, Any,   kR10L, Any,   Convert_8RGBA_FULL_To_10RGBX_LE_FULL},
    {kRGBA, Any,   kR10B, Any,   Convert_8RGBA_FULL_To_10RGBX_BE_FULL},
    {kRGBA, Any,   kR10A, Any,   Convert_8RGBA_FULL_To_10RGBA_BE_FULL},

    // rows 230 to 243: from RGB3
    {kRGB3, R601,  k2vuy, R601,  Convert_8RGB_FULL_To_8YUV422_SD},
    {kRGB3, R709,  k2vuy, R709,  Convert_8RGB_FULL_To_8YUV422_HD},
    {kRGB3, R601,  kv210, R601,  Convert_8RGB_FULL_To_10YUV422_LE_SD},
    {kRGB3, R709,  kv210, R709,  Convert_8RGB_FULL_To_10YUV422_LE_HD},
    {kRGB3, Any,   kARGB, Any,   Convert_8RGB_FULL_To_8ARGB_FULL},
    {kRGB3, Any,   kRGBA, Any,   Convert_8RGB_FULL_To_8RGBA_FULL},
    {kRGB3, Any,   kBGRA, Any,   Convert_8RGB_FULL_To_8BGRA_FULL},
    {kRGB3, Any,   kr210, Any,   Convert_8RGB_FULL_To_10XRGB_BE_SMPTE},
    {kRGB3, Any,   kR210, Any,   Convert_8RGB_FULL_To_10XRGB_BE_FULL},
    {kRGB3, Any,   kR10l, Any,   Convert_8RGB_FULL_To_10RGBX_LE_SMPTE},
    {kRGB3, Any,   kR10b, Any,   Convert_8RGB_FULL_To_10RGBX_BE_SMPTE},
    {kRGB3, Any,   kR10L, Any,   Convert_8RGB_FULL_To_10RGBX_LE_FULL},
    {kRGB3, Any,   kR10B, Any,   Convert_8RGB_FULL_To_10RGBX_BE_FULL},
    {kRGB3, Any,   kR10A, Any,   Convert_8RGB_FULL_To_10RGBA_BE_FULL},

    // rows 244 to 259: from R10l
    {kR10l, R601,  k2vuy, R601,  Convert_10RGBX_LE_SMPTE_To_8YUV422_SD},
    {kR10l, R709,  k2vuy, R709,  Convert_10RGBX_LE_SMPTE_To_8YUV422_HD},
    {kR10l, R601,  kv210, R601,  Convert_10RGBX_LE_SMPTE_To_10YUV422_LE_SD},
    {kR10l, R709,  kv210, R709,  Convert_10RGBX_LE_SMPTE_To_10YUV422_LE_HD},
    {kR10l, Any,   kARGB, Any,   Convert_10RGBX_LE_SMPTE_To_8ARGB_FULL},
    {kR10l, Any,   kRGB3, Any,   Convert_10RGBX_LE_SMPTE_To_8RGB_FULL},
    {kR10l, R2020, kBGRA, R709,  Convert_10RGBX_LE_SMPTE_2020_To_8BGRA_FULL_709},
    {kR10l, Any,   kBGRA, Any,   Convert_10RGBX_LE_SMPTE_To_8BGRA_FULL},
    {kR10l, Any,   kr210, Any,   Convert_10RGBX_LE_SMPTE_To_10XRGB_BE_SMPTE},
    {kR10l, Any,   kR210, Any,   Convert_10RGBX_LE_SMPTE_To_10XRGB_BE_FULL},
    {kR10l, R2020, kRGBA, R709,  Convert_10RGBX_LE_SMPTE_2020_To_8RGBA_FULL_709},
    {kR10l, Any,   kRGBA, Any,   Convert_10RGBX_LE_SMPTE_To_8RGBA_FULL},
    {kR10l, Any,   kR10b, Any,   Convert_10RGBX_LE_SMPTE_To_10RGBX_BE_SMPTE},
    {kR10l, Any,   kR10L, Any,   Convert_10RGBX_LE_SMPTE_To_10RGBX_LE_FULL},
    {kR10l, Any,   kR10B, Any,   Convert_10RGBX_LE_SMPTE_To_10RGBX_BE_FULL},
    {kR10l, Any,   kR10A, Any,   Convert_10RGBX_LE_SMPTE_To_10RGBA_BE_FULL},

    // row 260: from r210
    // Apart from the other rows of r210; order matters only among rows with the same two formats.
    {kr210, R601,  kBGRA, R709,  Convert_10XRGB_BE_SMPTE_601_To_8BGRA_FULL_709},

    // rows 261 to 276: from R10b
    {kR10b, R601,  k2vuy, R601,  Convert_10RGBX_BE_SMPTE_To_8YUV422_SD},
    {kR10b, R709,  k2vuy, R709,  Convert_10RGBX_BE_SMPTE_To_8YUV422_HD},
    {kR10b, R601,  kv210, R601,  Convert_10RGBX_BE_SMPTE_To_10YUV422_LE_SD},
    {kR10b, R709,  kv210, R709,  Convert_10RGBX_BE_SMPTE_To_10YUV422_LE_HD},
    {kR10b, Any,   kARGB, Any,   Convert_10RGBX_BE_SMPTE_To_8ARGB_FULL},
    {kR10b, Any,   kRGB3, Any,   Convert_10RGBX_BE_SMPTE_To_8RGB_FULL},
    {kR10b, R2020, kBGRA, R709,  Convert_10RGBX_BE_SMPTE_2020_To_8BGRA_FULL_709},
    {kR10b, Any,   kBGRA, Any,   Convert_10RGBX_BE_SMPTE_To_8BGRA_FULL},
    {kR10b, Any,   kr210, Any,   Convert_10RGBX_BE_SMPTE_To_10XRGB_BE_SMPTE},
    {kR10b, Any,   kR210, Any,   Convert_10RGBX_BE_SMPTE_To_10XRGB_BE_FULL},
    {kR10b, R2020, kRGBA, R709,  Convert_10RGBX_BE_SMPTE_2020_To_8RGBA_FULL_709},
    {kR10b, Any,   kRGBA, Any,   Convert_10RGBX_BE_SMPTE_To_8RGBA_FULL},
    {kR10b, Any,   kR10l, Any,   Convert_10RGBX_BE_SMPTE_To_10RGBX_LE_SMPTE},
    {kR10b, Any,   kR10L, Any,   Convert_10RGBX_BE_SMPTE_To_10RGBX_LE_FULL},
    {kR10b, Any,   kR10B, Any,   Convert_10RGBX_BE_SMPTE_To_10RGBX_BE_FULL},
    {kR10b, Any,   kR10A, Any,   Convert_10RGBX_BE_SMPTE_To_10RGBA_BE_FULL},

    // rows 277 to 292: from R10L
    {kR10L, R601,  k2vuy, R601,  Convert_10RGBX_LE_FULL_To_8YUV422_SD},
    {kR10L, R709,  k2vuy, R709,  Convert_10RGBX_LE_FULL_To_8YUV422_HD},
    {kR10L, R601,  kv210, R601,  Convert_10RGBX_LE_FULL_To_10YUV422_LE_SD},
    {kR10L, R709,  kv210, R709,  Convert_10RGBX_LE_FULL_To_10YUV422_LE_HD},
    {kR10L, Any,   kARGB, Any,   Convert_10RGBX_LE_FULL_To_8ARGB_FULL},
    {kR10L, Any,   kRGB3, Any,   Convert_10RGBX_LE_FULL_To_8RGB_FULL},
    {kR10L, R2020, kBGRA, R709,  Convert_10RGBX_LE_FULL_2020_To_8BGRA_FULL_709},
    {kR10L, Any,   kBGRA, Any,   Convert_10RGBX_LE_FULL_To_8BGRA_FULL},
    {kR10L, Any,   kr210, Any,   Convert_10RGBX_LE_FULL_To_10XRGB_BE_SMPTE},
    {kR10L, Any,   kR210, Any,   Convert_10RGBX_LE_FULL_To_10XRGB_BE_FULL},
    {kR10L, R2020, kRGBA, R709,  Convert_10RGBX_LE_FULL_2020_To_8RGBA_FULL_709},
    {kR10L, Any,   kRGBA, Any,   Convert_10RGBX_LE_FULL_To_8RGBA_FULL},
    {kR10L, Any,   kR10l, Any,   Convert_10RGBX_LE_FULL_To_10RGBX_LE_SMPTE},
    {kR10L, Any,   kR10b, Any,   Convert_10RGBX_LE_FULL_To_10RGBX_BE_SMPTE},
    {kR10L, Any,   kR10B, Any,   Convert_10RGBX_LE_FULL_To_10RGBX_BE_FULL},
    {kR10L, Any,   kR10A, Any,   Convert_10RGBX_LE_FULL_To_10RGBA_BE_FULL},

    // rows 293 to 308: from R10B
    {kR10B, R601,  k2vuy, R601,  Convert_10RGBX_BE_FULL_To_8YUV422_SD},
    {kR10B, R709,  k2vuy, R709,  Convert_10RGBX_BE_FULL_To_8YUV422_HD},
    {kR10B, R601,  kv210, R601,  Convert_10RGBX_BE_FULL_To_10YUV422_LE_SD},
    {kR10B, R709,  kv210, R709,  Convert_10RGBX_BE_FULL_To_10YUV422_LE_HD},
    {kR10B, Any,   kARGB, Any,   Convert_10RGBX_BE_FULL_To_8ARGB_FULL},
    {kR10B, Any,   kRGB3, Any,   Convert_10RGBX_BE_FULL_To_8RGB_FULL},
    {kR10B, R2020, kBGRA, R709,  Convert_10RGBX_BE_FULL_2020_To_8BGRA_FULL_709},
    {kR10B, Any,   kBGRA, Any,   Convert_10RGBX_BE_FULL_To_8BGRA_FULL},
    {kR10B, Any,   kr210, Any,   Convert_10RGBX_BE_FULL_To_10XRGB_BE_SMPTE},
    {kR10B, Any,   kR210, Any,   Convert_10RGBX_BE_FULL_To_10XRGB_BE_FULL},
    {kR10B, R2020, kRGBA, R709,  Convert_10RGBX_BE_FULL_2020_To_8RGBA_FULL_709},
    {kR10B, Any,   kRGBA, Any,   Convert_10RGBX_BE_FULL_To_8RGBA_FULL},
    {kR10B, Any,   kR10l, Any,   Convert_10RGBX_BE_FULL_To_10RGBX_LE_SMPTE},
    {kR10B, Any,   kR10b, Any,   Convert_10RGBX_BE_FULL_To_10RGBX_BE_SMPTE},
    {kR10B, Any,   kR10L, Any,   Convert_10RGBX_BE_FULL_To_10RGBX_LE_FULL},
    {kR10B, Any,   kR10A, Any,   Convert_10RGBX_BE_FULL_To_10RGBA_BE_FULL},

    // rows 309 to 324: from R10A
    // The entries of R10B, which ignore the two low bits. Row 324 is not a copy: it sets them.
    {kR10A, R601,  k2vuy, R601,  Convert_10RGBX_BE_FULL_To_8YUV422_SD},
    {kR10A, R709,  k2vuy, R709,  Convert_10RGBX_BE_FULL_To_8YUV422_HD},
    {kR10A, R601,  kv210, R601,  Convert_10RGBX_BE_FULL_To_10YUV422_LE_SD},
    {kR10A, R709,  kv210, R709,  Convert_10RGBX_BE_FULL_To_10YUV422_LE_HD},
    {kR10A, Any,   kARGB, Any,   Convert_10RGBX_BE_FULL_To_8ARGB_FULL},
    {kR10A, Any,   kRGB3, Any,   Convert_10RGBX_BE_FULL_To_8RGB_FULL},
    {kR10A, R2020, kBGRA, R709,  Convert_10RGBX_BE_FULL_2020_To_8BGRA_FULL_709},
    {kR10A, Any,   kBGRA, Any,   Convert_10RGBX_BE_FULL_To_8BGRA_FULL},
    {kR10A, Any,   kr210, Any,   Convert_10RGBX_BE_FULL_To_10XRGB_BE_SMPTE},
    {kR10A, Any,   kR210, Any,   Convert_10RGBX_BE_FULL_To_10XRGB_BE_FULL},
    {kR10A, R2020, kRGBA, R709,  Convert_10RGBX_BE_FULL_2020_To_8RGBA_FULL_709},
    {kR10A, Any,   kRGBA, Any,   Convert_10RGBX_BE_FULL_To_8RGBA_FULL},
    {kR10A, Any,   kR10l, Any,   Convert_10RGBX_BE_FULL_To_10RGBX_LE_SMPTE},
    {kR10A, Any,   kR10b, Any,   Convert_10RGBX_BE_FULL_To_10RGBX_BE_SMPTE},
    {kR10A, Any,   kR10L, Any,   Convert_10RGBX_BE_FULL_To_10RGBX_LE_FULL},
    {kR10A, Any,   kR10A, Any,   Convert_10RGBX_BE_FULL_To_10RGBA_BE_FULL},

    // rows 325 to 328: from A04l
    {kA04l, R709,  kv210, R2020, Convert_10BGRA_LE_SMPTE_709_To_10YUV422_LE_2020},
    {kA04l, R709,  kr210, R2020, Convert_10BGRA_LE_SMPTE_709_To_10XRGB_BE_SMPTE_2020},
    {kA04l, R709,  kR10l, R2020, Convert_10BGRA_LE_SMPTE_709_To_10RGBX_LE_SMPTE_2020},
    {kA04l, R709,  kR10b, R2020, Convert_10BGRA_LE_SMPTE_709_To_10RGBX_BE_SMPTE_2020},

    // rows 329 to 330: from A04L
    {kA04L, R709,  kR10L, R2020, Convert_10BGRA_LE_FULL_709_To_10RGBX_LE_FULL_2020},
    {kA04L, R709,  kR10B, R2020, Convert_10BGRA_LE_FULL_709_To_10RGBX_BE_FULL_2020},

    // rows 331 to 339: from R12B
    {kR12B, R601,  k2vuy, R601,  Convert_12RGB_BE_FULL_To_8YUV422_SD},
    {kR12B, R709,  k2vuy, R709,  Convert_12RGB_BE_FULL_To_8YUV422_HD},
    {kR12B, R601,  kv210, R601,  Convert_12RGB_BE_FULL_To_10YUV422_LE_SD},
    {kR12B, R709,  kv210, R709,  Convert_12RGB_BE_FULL_To_10YUV422_LE_HD},
    {kR12B, Any,   kARGB, Any,   Convert_12RGB_BE_FULL_To_8ARGB_FULL},
    {kR12B, R2020, kBGRA, R709,  Convert_12RGB_BE_FULL_2020_To_8BGRA_FULL_709},
    {kR12B, Any,   kBGRA, Any,   Convert_12RGB_BE_FULL_To_8BGRA_FULL},
    {kR12B, R2020, kRGBA, R709,  Convert_12RGB_BE_FULL_2020_To_8RGBA_FULL_709},
    {kR12B, Any,   kRGBA, Any,   Convert_12RGB_BE_FULL_To_8RGBA_FULL},

    // rows 340 to 348: from R12L
    {kR12L, R601,  k2vuy, R601,  Convert_12RGB_LE_FULL_To_8YUV422_SD},
    {kR12L, R709,  k2vuy, R709,  Convert_12RGB_LE_FULL_To_8YUV422_HD},
    {kR12L, R601,  kv210, R601,  Convert_12RGB_LE_FULL_To_10YUV422_LE_SD},
    {kR12L, R709,  kv210, R709,  Convert_12RGB_LE_FULL_To_10YUV422_LE_HD},
    {kR12L, Any,   kARGB, Any,   Convert_12RGB_LE_FULL_To_8ARGB_FULL},
    {kR12L, R2020, kBGRA, R709,  Convert_12RGB_LE_FULL_2020_To_8BGRA_FULL_709},
    {kR12L, Any,   kBGRA, Any,   Convert_12RGB_LE_FULL_To_8BGRA_FULL},
    {kR12L, R2020, kRGBA, R709,  Convert_12RGB_LE_FULL_2020_To_8RGBA_FULL_709},
    {kR12L, Any,   kRGBA, Any,   Convert_12RGB_LE_FULL_To_8RGBA_FULL},

    // row 349: from b64a
    // The rows from here on were added later.
    {kb64a, Any,   kBGRA, Any,   Convert_16ARGB_BE_FULL_To_8BGRA_FULL},

    // rows 350 to 351: from 2vuy
    {k2vuy, R601,  k2vuy, R709,  Convert_8YUV422_601_To_8YUV422_709},
    {k2vuy, R709,  k2vuy, R601,  Convert_8YUV422_709_To_8YUV422_601},

    // rows 352 to 353: from v210
    {kv210, R601,  kv210, R709,  Convert_10YUV422_LE_601_To_10YUV422_LE_709},
    {kv210, R709,  kv210, R601,  Convert_10YUV422_LE_709_To_10YUV422_LE_601},

    // row 354: from BGRA
    {kBGRA, Any,   kR12l, Any,   Convert_8BGRA_FULL_To_12RGBX_LE_SMPTE},

    // row 355: from R12B
    {kR12B, Any,   kL64A, Any,   Convert_12RGB_BE_FULL_To_16ARGB_LE_FULL},

    // row 356: from R12L
    {kR12L, Any,   kL64A, Any,   Convert_12RGB_LE_FULL_To_16ARGB_LE_FULL},

    // rows 357 to 361: from R12l
    {kR12l, R2020, kBGRA, R709,  Convert_12RGB_LE_SMPTE_2020_To_8BGRA_FULL_709},
    {kR12l, Any,   kBGRA, Any,   Convert_12RGB_LE_SMPTE_To_8BGRA_FULL},
    {kR12l, R2020, kRGBA, R709,  Convert_12RGB_LE_SMPTE_2020_To_8RGBA_FULL_709},
    {kR12l, Any,   kRGBA, Any,   Convert_12RGB_LE_SMPTE_To_8RGBA_FULL},
    {kR12l, Any,   kb64a, Any,   Convert_12RGB_LE_SMPTE_To_16ARGB_BE_FULL},

    // rows 362 to 363: from b64a
    {kb64a, Any,   kR12B, Any,   Convert_16ARGB_BE_FULL_To_12RGB_BE_FULL},
    {kb64a, Any,   kR12L, Any,   Convert_16ARGB_BE_FULL_To_12RGB_LE_FULL},
};
// clang-format on

static_assert(std::all_of(std::begin(conversions), std::end(conversions), [](const auto& row) {
    return (row.srcColorspace == ColorspaceUnspecified) ==
           (row.dstColorspace == ColorspaceUnspecified);
}));

// If the list of initialisers is too short, the last rows are all zero.
static_assert(std::all_of(std::begin(conversions), std::end(conversions),
                          [](const auto& row) { return row.srcFormat != PixelFormat{}; }));

ConversionFunction GetConversionFunction(PixelFormat srcFormat, PixelFormat dstFormat,
                                         Colorspace srcColorspace, Colorspace dstColorspace)
{
    const Colorspace target =
        dstColorspace == ColorspaceUnspecified ? srcColorspace : dstColorspace;

    for (const ConversionEntry& row : conversions) {
        if (row.srcFormat != srcFormat || row.dstFormat != dstFormat)
            continue;
        const bool anyColorspace = row.srcColorspace == ColorspaceUnspecified;
        const bool sameColorspaces =
            row.srcColorspace == srcColorspace && row.dstColorspace == target;
        // A row for any colourspace does not change the colourspace.
        if (sameColorspaces || (anyColorspace && target == srcColorspace))
            return row.function;
    }
    return nullptr;
}

void CopyWithoutConversion(unsigned /*width*/, unsigned height, void* dst, unsigned dstRowBytes,
                           void* src, unsigned srcRowBytes)
{
    auto* dstRow = static_cast<std::byte*>(dst);
    const auto* srcRow = static_cast<const std::byte*>(src);
    for (int row = 0; row < static_cast<int>(height); ++row) {
        std::memcpy(dstRow, srcRow, dstRowBytes);
        dstRow += dstRowBytes;
        srcRow += static_cast<int>(srcRowBytes);
    }
}

} // namespace KSX::PixelConversion
