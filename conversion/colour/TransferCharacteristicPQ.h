/// Tables of the perceptual quantiser, between 12-bit code values and luminance in cd/m2 (SMPTE ST
/// 2084, 5). No stage reads them at present; they are for extensions of the engine.
#pragma once

namespace KSX::PixelConversion {

/// Luminance of each code, not below 0.0001.
extern const double kPQOETFToLinear12Bit[4096];

/// The signal, 0 to 1, of luminance in two halves of 16384 entries: a lower one from 0.0001 to
/// `kPQOETFFromLinear12BitLoLUTMax`, with steps of 0.0003 where the curve is steepest, and an upper
/// one from `kPQOETFFromLinear12BitHiLUTMin` to 10000. The limits are entries 1015 and 1016 of the
/// table above. The values are linear interpolations in that table.
extern const double kPQOETFFromLinear12Bit[32768];

constexpr double kPQOETFFromLinear12BitLoLUTMax = 5.001100037312719;
constexpr double kPQOETFFromLinear12BitHiLUTMin = 5.018401140831933;
constexpr int kPQOETFFromLinear12BitIdxMax = 32767;
constexpr int kHalvedLUTIdxMax = 16383;

} // namespace KSX::PixelConversion
