/// Pipelines of plain arithmetic in the shapes that are hard on a compiler: blocks of several
/// groups, state that passes from block to block, a look at the bytes behind. They are compiled as
/// entries are, for the check of hot loops.
#include "conversion/Convert.h"

namespace KSX::PixelConversion {

namespace {

/// Adds to every lane; `PIXELS` a step.
template<unsigned PIXELS>
class ADD : public Kernel<PIXELS, PIXELS> {
public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, PIXELS> step(const Pixels<Input, PIXELS>& in) const
    {
        auto out = in;
        for (__m128i& vector : out.v)
            vector = _mm_add_epi16(vector, _mm_set1_epi16(PIXELS));
        return out;
    }
};

/// The mean of each pixel and the one before it.
class MEAN_WITH_BEFORE : public Kernel<4, 4> {
public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 4> firstStep(const Pixels<Input, 4>& in)
    {
        m_before = _mm_slli_si128(in[0], 12);
        return step(in);
    }

    KSX_INLINE Pixels<Output, 4> step(const Pixels<Input, 4>& in)
    {
        const __m128i shifted =
            _mm_or_si128(_mm_slli_si128(in[0], 4), _mm_srli_si128(m_before, 12));
        m_before = in[0];
        return {{_mm_avg_epu8(in[0], shifted)}};
    }

private:
    __m128i m_before;
};

/// The mean of each pixel and the one behind it.
class MEAN_WITH_BEHIND : public Kernel<8, 8> {
public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    KSX_INLINE Pixels<Output, 8> step(const Pixels<Input, 8>& in, __m128i next) const
    {
        const __m128i first = _mm_or_si128(_mm_srli_si128(in[0], 4), _mm_slli_si128(in[1], 12));
        const __m128i second = _mm_or_si128(_mm_srli_si128(in[1], 4), _mm_slli_si128(next, 12));
        return {{_mm_avg_epu8(in[0], first), _mm_avg_epu8(in[1], second)}};
    }

    KSX_INLINE Pixels<Output, 8> lastStep(const Pixels<Input, 8>& in) const
    {
        return step(in, _mm_srli_si128(in[1], 12));
    }
};

} // namespace

// A walker and its stages end in one function each, which the check finds by its name.
ConversionSignature Convert_Artificial_24;
ConversionSignature Convert_Artificial_48;
ConversionSignature Convert_Artificial_LooksBack;
ConversionSignature Convert_Artificial_LooksAhead;
ConversionSignature Convert_Artificial_LooksBothWays;

CONVERSION(Convert_Artificial_24, BIND<ADD<12>, ADD<8>>)
CONVERSION(Convert_Artificial_48, BIND3<ADD<16>, ADD<12>, ADD<4>>)
CONVERSION(Convert_Artificial_LooksBack, BIND3<ADD<4>, MEAN_WITH_BEFORE, ADD<8>>)
CONVERSION(Convert_Artificial_LooksAhead, BIND<MEAN_WITH_BEHIND, ADD<4>>)
CONVERSION(Convert_Artificial_LooksBothWays, BIND3<MEAN_WITH_BEHIND, MEAN_WITH_BEFORE, ADD<12>>)

} // namespace KSX::PixelConversion
