/// Constant vectors that stages share. Their names spell their contents: `v4i_0xff` is 255 in each
/// of 4 lanes of 32 bits, `v8i_0xff` in each of 8 lanes of 16 bits. The name of a mask lists the
/// lanes from the top one down, with x for a clear lane: `v8i_mask_x654x210` has lanes 3 and 7
/// clear and the others set.
#pragma once

#include "conversion/pipeline/Vector.h"

namespace KSX::PixelConversion {

inline constexpr Vector v0 = v4i(0);
inline constexpr Vector vAllSet = v4i(0xffffffff);

inline constexpr Vector v4i_0xff = v4i(0xff);
inline constexpr Vector v4i_0xffff = v4i(0xffff);
inline constexpr Vector v4i_0xff000000 = v4i(0xff000000);
inline constexpr Vector v4i_0xffff0000 = v4i(0xffff0000);
inline constexpr Vector v4i_0x3fff = v4i(0x3fff);
inline constexpr Vector v4i_0x3ff = v4i(0x3ff);
inline constexpr Vector v4i_0x3ff0000 = v4i(0x3ff0000);

inline constexpr Vector v8i_1 = v8i(1);
inline constexpr Vector v8i_0xff = v8i(0xff);
inline constexpr Vector v8i_0x3ff = v8i(0x3ff);
inline constexpr Vector v8i_0xfff = v8i(0xfff);

/// The alpha lanes of `BGRAv8`, and its colour lanes.
inline constexpr Vector v8i_mask_7xxx3xxx = v8i(0, 0, 0, -1, 0, 0, 0, -1);
inline constexpr Vector v8i_mask_x654x210 = v8i(-1, -1, -1, 0, -1, -1, -1, 0);

} // namespace KSX::PixelConversion
