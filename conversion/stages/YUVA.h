/// Stages of 10-bit 4:2:2 with a key: ay10 (10YUVA422_BE_SMPTE), whose alpha has video levels, and
/// Ay10 (10YUVA422_BE_SMPTE_FullA), whose alpha is full range. A pixel is one big-endian word.
///
///     bits    31 30   29..20   19..10   9..0
///             spare   alpha    chroma   Y
///
/// Chroma is Cb on even pixels and Cr on odd ones, of the pair that they share. Spare bits are
/// ignored when read and 0 when written. A row is written in whole groups of 4 pixels.
#pragma once

#include "conversion/colour/ChromaReconstruction.h"
#include "conversion/colour/Flags.h"
#include "conversion/pipeline/Kernel.h"
#include "conversion/pipeline/VectorConstants.h"

namespace KSX::PixelConversion {

namespace details {

/// The samples of 4 words as `UYVYv8`, without alpha.
KSX_INLINE Vector yuvOf(Vector words)
{
    return bitOr(bitAnd(shiftRightU32(words, 10), v4i_0x3ff),
                 bitAnd(shiftLeft32(words, 16), v4i_0x3ff0000));
}

} // namespace details

/// Unpacks ay10 or Ay10 to UYVYv8, dropping alpha. 4 pixels a step: 16 bytes in, 1 vector out.
/// Plain.
class UNPACK_YUVA_TO_UYVYv8 : public Kernel<4, 4> {
public:
    static constexpr Range kRange = Range::Given;
    using Input = Packed<4>;
    using Output = UYVYv8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{details::yuvOf(reverseBytes32(in[0]))}};
    }
};

/// Unpacks ay10 or Ay10 to 4:4:4 with alpha. 4 pixels a step: 16 bytes in, 3 vectors out. Looks
/// ahead, and reads whole steps: if a row ends inside a step, its last odd pixel averages with the
/// pair that comes next in memory.
template<PixelCenterFlag C>
class UNPACK_YUVA : public Kernel<4, 4> {
    static_assert(C == C0);

public:
    using Input = Packed<16, 4>;
    using Output = UYVY444Av8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in, Vector next) const
    {
        const Vector words = reverseBytes32(in[0]);
        return unpack(words, details::yuvOf(words), details::yuvOf(reverseBytes32(next)));
    }

    KSX_INLINE Pixels<Output, 4> lastStep(const Pixels<Input, 4>& in) const
    {
        const Vector words = reverseBytes32(in[0]);
        const Vector yuv = details::yuvOf(words);
        return unpack(words, yuv, repeatLastPair(yuv));
    }

private:
    KSX_INLINE static Pixels<Output, 4> unpack(Vector words, Vector yuv, Vector next)
    {
        const auto pixels = rebuildChroma(yuv, next);
        return {{pixels[0], pixels[1], bitAnd(shiftRightU32(words, 20), v4i_0x3ff)}};
    }
};

/// Adds an alpha of 1023 to UYVYv8. In Ay10 this is opaque. In ay10 opaque is 940, and readers
/// limit alpha to that, so 1023 is opaque there too. 4 pixels a step: 1 vector in, 2 out. Plain.
class UYVYv8_TO_YUVA : public Kernel<4, 4> {
public:
    using Input = UYVYv8;
    using Output = UYVYAv8;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        return {{in[0], v4i_0x3ff}};
    }
};

/// Packs 10-bit 4:2:2 with alpha to ay10 or Ay10, each sample limited to 0 to 1023 as a signed
/// value. 4 pixels a step: 2 vectors in, 16 bytes out. Plain.
class PACK_YUVA : public Kernel<4, 4> {
public:
    using Input = UYVYAv8;
    using Output = Packed<16, 4>;

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in) const
    {
        const Vector yuv = max16(min16(in[0], v8i_0x3ff), v0);
        const Vector alpha = max16(min16(in[1], v4i_0x3ff), v0);
        // Chroma from the lower half of a lane, Y from the upper one.
        constexpr Vector weights = v4i(1 << 16 | 1024);
        return {{reverseBytes32(bitOr(mulAddPairs16(yuv, weights), shiftLeft32(alpha, 20)))}};
    }
};

} // namespace KSX::PixelConversion
