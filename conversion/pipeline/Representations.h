/// How pixels lie in vectors: between stages, and in memory. All numbers are for one unit of a
/// vector, 16 bytes.
///
/// Between stages a lane holds one code value, unsigned and not normalised, at the depth that the
/// stages before and after it name. Lane 0 is at the low end of a vector, which has the lowest
/// address in memory. In a name `v8` is 8 lanes of 16 bits and `v4` 4 lanes of 32 bits.
#pragma once

#include "conversion/pipeline/Vector.h"

namespace KSX::PixelConversion {

/// The base of every representation: `PIXELS` pixels lie together in `BYTES` bytes.
template<unsigned BYTES, unsigned PIXELS>
struct Representation {
    static constexpr unsigned kBytes = BYTES;
    static constexpr unsigned kPixels = PIXELS;

    /// Bytes that a row of `width` pixels occupies: whole groups.
    static constexpr unsigned rowBytes(unsigned width)
    {
        return (width + PIXELS - 1) / PIXELS * BYTES;
    }
};

/// Bytes of a format in memory. Formats of the same size share a type, so that a byte swap can
/// follow any pack of its size.
template<unsigned BYTES, unsigned PIXELS = 1>
struct Packed : Representation<BYTES, PIXELS> {
};

/// B, G, R, A of a pixel in 16 bits each, then those of the next pixel. 2 pixels a vector.
struct BGRAv8 : Representation<8, 1> {};

/// Three vectors R, G, B, one pixel per lane of 32 bits, with its value in the low 16 bits. 4
/// pixels.
struct RGBv4 : Representation<12, 1> {};

/// Three vectors R, G, B, one pixel per lane of 16 bits. 8 pixels.
struct RGBv8 : Representation<6, 1> {};

/// 4:2:2. Cb, Y, Cr, Y of a pixel pair in 16 bits each, then those of the next pair. 4 pixels a
/// vector.
struct UYVYv8 : Representation<4, 1> {};

/// 4:4:4. For a pixel pair e, o: Cb(e), Y(e), Cr(e), Y(o), Cb(o), Y(e), Cr(o), Y(o). 2 pixels a
/// vector. Both halves hold both lumas, so that a multiply-and-add of neighbouring lanes needs no
/// further shuffle: the other pixel's luma gets a weight of 0.
struct UYVY444v8 : Representation<8, 1> {};

/// `UYVYv8` of 4 pixels, then a vector with the alpha of each in a lane of 32 bits.
struct UYVYAv8 : Representation<8, 1> {};

/// `UYVY444v8` of 4 pixels, then a vector with the alpha of each in a lane of 32 bits.
struct UYVY444Av8 : Representation<12, 1> {};

/// The vectors of `PIXELS` pixels, passed from stage to stage by value. If the bytes in memory are
/// not a whole number of vectors, the last vector overlaps the one before it and ends at the last
/// byte.
template<class REPRESENTATION, unsigned PIXELS>
struct Pixels {
    static_assert(PIXELS % REPRESENTATION::kPixels == 0, "a group of pixels is split");
    static constexpr unsigned kBytes = PIXELS / REPRESENTATION::kPixels * REPRESENTATION::kBytes;
    static_assert(kBytes >= kUnitBytes, "a unit is not filled");
    static constexpr unsigned kVectors = (kBytes + kUnitBytes - 1) / kUnitBytes;

    /// Where vector `V` begins in memory.
    template<unsigned V>
    static constexpr unsigned offset()
    {
        return (V + 1) * kUnitBytes <= kBytes ? V * kUnitBytes : kBytes - kUnitBytes;
    }

    Vector v[kVectors];

    constexpr Vector& operator[](unsigned i) { return v[i]; }
    constexpr Vector operator[](unsigned i) const { return v[i]; }
};

} // namespace KSX::PixelConversion
