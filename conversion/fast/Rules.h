/// Every rule that puts other stages in the place of those that an entry lists. Rules are tried
/// from top to bottom. docs/pipelines.md is printed from them: it lists the stages that run for
/// each row of the table, and the rows that each rule serves.
#pragma once

#include "conversion/colour/BitDepth.h"
#include "conversion/fast/Concepts.h"
#include "conversion/fast/Deep.h"
#include "conversion/fast/Primaries.h"
#include "conversion/fast/RGB10.h"
#include "conversion/fast/RGB12.h"
#include "conversion/fast/RGB8.h"
#include "conversion/fast/RGBToYUV.h"
#include "conversion/fast/Rescale.h"
#include "conversion/fast/V210.h"
#include "conversion/fast/YUV8.h"
#include "conversion/fast/YUVA.h"
#include "conversion/fast/YUVToRGB.h"
#include "conversion/pipeline/Rewriting.h"

#include <tuple>

namespace KSX::PixelConversion {

namespace fast {

// --- Bytes to bytes ------------------------------------------------------------------------------

/// Bytes in one order to bytes in another, without components in between.
struct ReorderBytes {
    template<UnpacksBytesToRGBv4 UNPACK, PacksRGBv4ToBytes PACK>
    static StageList<REORDER_OPAQUE_BYTES<UNPACK, PACK>> form(StageList<UNPACK, PACK>);
};

/// Bytes directly to 3 bytes a pixel: the listed stages add an alpha and drop it again.
struct DropAlpha {
    template<UnpacksBytesToRGBv4 UNPACK>
    static StageList<
        details::PACK_BYTES_TO_RGB<UNPACK::kByteOf[0], UNPACK::kByteOf[1], UNPACK::kByteOf[2]>>
        form(StageList<UNPACK, PACK_RGBv4_TO_RGBA, PACK_RGBA_TO_RGB>);
};

/// One byte order of 4:2:2 to the other.
struct ExchangeBytes {
    static StageList<EXCHANGE_BYTES> form(StageList<UNPACK_UYVY_TO_UYVYv8, PACK_UYVYv8_TO_YUY2>);
    static StageList<EXCHANGE_BYTES> form(StageList<UNPACK_YUY2_TO_UYVYv8, PACK_UYVYv8_TO_UYVY>);
};

/// Bytes in full range to 8-bit 4:2:2.
struct BytesTo422 {
    template<UnpacksBytesToBGRAv8 UNPACK, class STUDIO>
    static StageList<BYTES_TO_422<FullRange<8, STUDIO>, UNPACK, 0>>
        form(StageList<UNPACK, BGRAv8_TO_UYVYv8<FullRange<8, STUDIO>, 8, 8, P1, C0>,
                       PACK_UYVYv8_TO_UYVY>);
    template<UnpacksBytesToBGRAv8 UNPACK, class STUDIO>
    static StageList<BYTES_TO_422<FullRange<8, STUDIO>, UNPACK, 1>>
        form(StageList<UNPACK, BGRAv8_TO_UYVYv8<FullRange<8, STUDIO>, 8, 8, P1, C0>,
                       PACK_UYVYv8_TO_YUY2>);
};

// --- Between bytes and words ---------------------------------------------------------------------

/// Bytes to words of 10-bit RGB, with zeros in the low bits.
struct BytesToRGB10 {
    template<UnpacksBytesToRGBv4 UNPACK, PacksRGB10 PACK>
    static StageList<BYTES_TO_RGB10<UNPACK, PACK>>
        form(StageList<UNPACK, RGBv4_BITDEPTH<2, 16>, PACK>);
    static StageList<BYTES_TO_RGB10<UNPACK_BGRA_TO_RGBv4, PACK_RGBv4_TO_R210>>
        form(StageList<UNPACK_BGRA_TO_RGBv8, RGBv8_BITDEPTH<2, 16>, PACK_RGBv8_TO_R210>);
};

/// Bytes in full range to words of 10-bit RGB with video levels.
struct BytesToStudioRGB10 {
    template<UnpacksBytesToRGBv4 UNPACK, PacksRGB10 PACK>
    static StageList<BYTES_TO_STUDIO_RGB10<UNPACK, PACK>>
        form(StageList<UNPACK, RGBv4_RESCALE<8, true, 10, false, P1>, PACK>);
    static StageList<BYTES_TO_STUDIO_RGB10<UNPACK_BGRA_TO_RGBv4, PACK_RGBv4_TO_R210>> form(
        StageList<UNPACK_BGRA_TO_RGBv8, RGBv8_RESCALE<8, true, 10, false, P1>, PACK_RGBv8_TO_R210>);
};

/// Words of 10-bit RGB to bytes, rounded.
struct RGB10ToBytes {
    template<UnpacksRGB10 UNPACK, PacksRGBv4ToBytes PACK>
    static StageList<RGB10_TO_BYTES<UNPACK, PACK>>
        form(StageList<UNPACK, RGBv4_BITDEPTH<-2, 16>, PACK>);
    static StageList<RGB10_TO_BYTES<UNPACK_R210_TO_RGBv4, PACK_RGBv4_TO_BGRA>>
        form(StageList<UNPACK_R210_TO_RGBv8, RGBv8_BITDEPTH<-2, 16>, PACK_RGBv8_TO_BGRA>);
};

/// Words of 10-bit RGB with video levels to bytes in full range.
struct StudioRGB10ToBytes {
    template<UnpacksRGB10 UNPACK, PacksRGBv4ToBytes PACK>
    static StageList<STUDIO_RGB10_TO_BYTES<UNPACK, PACK>>
        form(StageList<UNPACK, RGBv4_RESCALE<10, false, 8, true, P1>, PACK>);
    static StageList<STUDIO_RGB10_TO_BYTES<UNPACK_R210_TO_RGBv4, PACK_RGBv4_TO_BGRA>> form(
        StageList<UNPACK_R210_TO_RGBv8, RGBv8_RESCALE<10, false, 8, true, P1>, PACK_RGBv8_TO_BGRA>);
};

/// Bytes to groups of 12-bit RGB, with zeros in the low bits.
struct BytesToRGB12 {
    template<class ORDER>
    static StageList<BGRA_TO_R12L> form(StageList<UNPACK_BGRA_TO_BGRAv8, BGRAv8_BITDEPTH<4, 16>,
                                                  PACK_BGRAv8_TO_R12L_SSSE3_T<ORDER>>);
    template<class ORDER>
    static StageList<BGRA_TO_R12B> form(StageList<UNPACK_BGRA_TO_BGRAv8, BGRAv8_BITDEPTH<4, 16>,
                                                  PACK_BGRAv8_TO_R12B_SSSE3_T<ORDER>>);
};

/// 8-bit 4:2:2 to v210, with zeros in the low bits.
struct UYVYToV210 {
    static StageList<UYVY_TO_V210>
        form(StageList<UNPACK_UYVY_TO_UYVYv8, UYVYv8_BITDEPTH<2, 16>, PACK_UYVYv8_TO_V210>);
};

// --- Rounding while samples are at the top of their lanes ----------------------------------------

struct V210To8Bits {
    static StageList<UNPACK_V210_TO_8BIT_UYVYv8, PACK_UYVYv8_TO_UYVY>
        form(StageList<UNPACK_V210_TO_UYVYv8, UYVYv8_BITDEPTH<-2, 16>, PACK_UYVYv8_TO_UYVY>);
};

struct RGB12To8Bits {
    template<class ORDER, SaturatesTo<255> PACK>
    static StageList<UNPACK_R12L_TO_8BIT_BGRAv8<ORDER, 4095>, PACK>
        form(StageList<UNPACK_R12L_TO_BGRAv8_SSSE3_T<ORDER, 4095>, BGRAv8_BITDEPTH<-4, 16>, PACK>);
    template<class ORDER, SaturatesTo<255> PACK>
    static StageList<UNPACK_R12B_TO_8BIT_BGRAv8<ORDER, 4095>, PACK>
        form(StageList<UNPACK_R12B_TO_BGRAv8_SSSE3_T<ORDER, 4095>, BGRAv8_BITDEPTH<-4, 16>, PACK>);
};

/// 16 bits to 8. Saturation gives the limit that the pack sets.
struct DeepRGBTo8Bits {
    template<SaturatesTo<255> PACK>
    static StageList<BGRAv8_ROUND_TO_8_BITS, PACK> form(StageList<BGRAv8_BITDEPTH<-8, 16>, PACK>);
};

/// v212 and v216 to 10 bits. Saturation gives the limit that the pack sets.
struct Deep422To10Bits {
    static StageList<UYVYv8_ROUND_TO_10_BITS, PACK_UYVYv8_TO_V210>
        form(StageList<UNPACK_V212_TO_UYVYv8, UYVYv8_BITDEPTH<-2, 16>, PACK_UYVYv8_TO_V210>);
    static StageList<UYVYv8_ROUND_TO_10_BITS, PACK_UYVYv8_TO_V210>
        form(StageList<UYVYv8_BITDEPTH<-6, 16>, PACK_UYVYv8_TO_V210>);
};

// --- Limits and multiplications that the codes make needless -------------------------------------

/// Full-range codes of 8 bits need only one rounding multiplication.
struct RescaleOfBytes {
    template<GivesBytes UNPACK, int OUT_BITS, bool OUT_FULL>
    requires(RescaleBytes<OUT_BITS, OUT_FULL>::kFits) //
        static StageList<UNPACK, BGRAv8_RESCALE_BYTES<OUT_BITS, OUT_FULL>> form(
            StageList<UNPACK, BGRAv8_RESCALE<8, true, OUT_BITS, OUT_FULL, P1>>);
};

/// Codes within 10 bits need no limit in the pack to v210.
struct NoLimitToV210 {
    template<GivesRange A>
    static StageList<A, details::PACK_LIMITED_UYVYv8_TO_V210>
        form(StageList<A, PACK_UYVYv8_TO_V210>);
    template<GivesRange A, KeepsRange B>
    static StageList<A, B, details::PACK_LIMITED_UYVYv8_TO_V210>
        form(StageList<A, B, PACK_UYVYv8_TO_V210>);
    template<GivesRange A, KeepsRange B, KeepsRange C>
    static StageList<A, B, C, details::PACK_LIMITED_UYVYv8_TO_V210>
        form(StageList<A, B, C, PACK_UYVYv8_TO_V210>);
};

// --- Changes of primaries ------------------------------------------------------------------------

/// A change of primaries at 8 bits. The other rules remove the pack and the unpack that bytes do
/// not need.
struct PrimariesThroughBytes {
    template<VectorTypeFlag V, class MATRIX>
    static StageList<PACK_BGRAv8_TO_BGRA, PrimariesInBytes<MATRIX, 2>, UNPACK_BGRA_TO_BGRAv8>
        form(StageList<COLOURSPACE_CONV_BGRAv8<Rec709OETF<8, V>, MATRIX, Rec709OETF<8, V>>>);
    template<VectorTypeFlag V, class MATRIX>
    static StageList<PACK_RGBv4_TO_BGRA, PrimariesInBytes<MATRIX, 0>, UNPACK_BGRA_TO_RGBv4>
        form(StageList<COLOURSPACE_CONV_RGBv4<Rec709OETF<8, V>, MATRIX, Rec709OETF<8, V>>>);
};

/// Bytes that come as BGRA or ARGB.
struct PrimariesFromBytes {
    template<class MATRIX, int LAST, class UNPACK, class PACK>
    static StageList<PrimariesInBytes<MATRIX, LAST, UNPACK, PACK>>
        form(StageList<UNPACK_BGRA_TO_BGRAv8, PACK_BGRAv8_TO_BGRA,
                       PrimariesInBytes<MATRIX, LAST, UNPACK, PACK>>);
    template<class MATRIX, int LAST, class PACK>
    static StageList<PrimariesInBytes<MATRIX, LAST, UNPACK_ARGB_TO_RGBv4, PACK>>
        form(StageList<UNPACK_ARGB_TO_BGRAv8, PACK_BGRAv8_TO_BGRA,
                       PrimariesInBytes<MATRIX, LAST, UNPACK_BGRA_TO_RGBv4, PACK>>);
};

/// Bytes that go out as BGRA or RGBA. Before `RGBv4` alpha is 255, so the pack after it need not
/// set it again.
struct PrimariesToBytes {
    template<class MATRIX, int LAST, class UNPACK>
    static StageList<PrimariesInBytes<MATRIX, LAST, UNPACK>>
        form(StageList<PrimariesInBytes<MATRIX, LAST, UNPACK>, UNPACK_BGRA_TO_BGRAv8,
                       PACK_BGRAv8_TO_BGRA>);
    template<class MATRIX, int LAST, class UNPACK>
    static StageList<PrimariesInBytes<MATRIX, LAST, UNPACK, PACK_RGBv4_TO_RGBA>>
        form(StageList<PrimariesInBytes<MATRIX, LAST, UNPACK>, UNPACK_BGRA_TO_BGRAv8,
                       PACK_BGRAv8_TO_RGBA>);
    template<class MATRIX, PacksRGBv4ToBytes PACK>
    static StageList<PrimariesInBytes<MATRIX, 0, UNPACK_BGRA_TO_RGBv4, PACK>>
        form(StageList<PrimariesInBytes<MATRIX, 0>, UNPACK_BGRA_TO_RGBv4, PACK>);
};

/// Bytes that go on as `BGRAv8`. The stages after it set alpha or ignore it.
struct PrimariesToBGRAv8 {
    template<class MATRIX>
    static StageList<PrimariesInBytes<MATRIX, 0>, UNPACK_BGRA_TO_BGRAv8>
        form(StageList<PrimariesInBytes<MATRIX, 0>, UNPACK_BGRA_TO_RGBv4, RGBv4_TO_BGRAv8>);
};

/// A change of primaries at 10 bits.
struct PrimariesByTables {
    template<class MATRIX>
    requires(givesLightInRange<MATRIX>()) //
        static StageList<
            BGRAv8_LIMIT_TO_10_BITS,
            Alone<COLOURSPACE_CONV_10BIT_BGRAv8<
                MATRIX>>> form(StageList<COLOURSPACE_CONV_BGRAv8<Rec709OETF<10, V1>, MATRIX,
                                                                 Rec709OETF<10, V1>>>);
};

// --- Planes --------------------------------------------------------------------------------------

/// The matrix to video levels and the stretch to full range in one stage. The pack sets the limits.
struct MatrixToFullRange {
    template<class RANGE, int A, int B, SaturatesTo<(1 << B) - 1> PACK>
    static StageList<YUVv8_TO_FULL_RGBv8<RANGE, A, B>, PACK>
        form(StageList<YUVv8_TO_RGBv8<RANGE, A, A>, RGBv8_RESCALE<A, false, B, true, P1>, PACK>);
};

/// The forms on planes of single stages, for the rule `OnPlanes`.
namespace planes {

struct Bytes {
    template<UnpacksBytesToRGBv4 UNPACK>
    static StageList<
        details::UNPACK_BYTES_TO_RGBv8<UNPACK::kByteOf[0], UNPACK::kByteOf[1], UNPACK::kByteOf[2]>>
        form(StageList<UNPACK>);
    template<PacksRGBv4ToBytes PACK>
    static StageList<details::PACK_RGBv8_TO_BYTES<PACK::kByteOf[0], PACK::kByteOf[1],
                                                  PACK::kByteOf[2], PACK::kByteOf[3]>>
        form(StageList<PACK>);
};

struct BytesWithAlpha {
    static StageList<PACK_RGBAv8_TO_BYTES<2, 1, 0, 3>> form(StageList<PACK_BGRAv8_TO_BGRA>);
    static StageList<PACK_RGBAv8_TO_BYTES<0, 1, 2, 3>> form(StageList<PACK_BGRAv8_TO_RGBA>);
};

struct RGB10 {
    template<UnpacksRGB10 UNPACK>
    static StageList<details::UNPACK_RGB10_TO_RGBv8<UNPACK::kLowestBit, UNPACK::kBigEndian>>
        form(StageList<UNPACK>);
    template<PacksRGB10 PACK>
    static StageList<details::PACK_RGBv8_TO_RGB10<PACK::kLowestBit, PACK::kBigEndian>>
        form(StageList<PACK>);
};

struct YUV422 {
    template<SseFlag S>
    static StageList<UNPACK_422_TO_YUVv8<0>> form(StageList<UNPACK_UYVY_TO_UYVY444v8_T<S>>);
    template<SseFlag S>
    static StageList<UNPACK_422_TO_YUVv8<1>> form(StageList<UNPACK_YUY2_TO_UYVY444v8_T<S>>);
    template<SseFlag S>
    static StageList<UNPACK_V210_TO_YUVv8> form(StageList<UNPACK_V210_TO_UYVY444v8_T<S>>);
};

struct YUVA {
    template<PixelCenterFlag C>
    static StageList<UNPACK_YUVA_TO_YUVAv8> form(StageList<UNPACK_YUVA<C>>);
    template<class RANGE, bool FULLA, PrecisionFlag P, PixelCenterFlag C>
    static StageList<YUVAv8_TO_RGBAv8<RANGE, FULLA, P>>
        form(StageList<YUVA_TO_BGRAv8<RANGE, FULLA, P, C>>);
};

struct Matrix {
    template<class RANGE, int A, int B>
    requires(kIsStudioRange<RANGE>) static StageList<YUVv8_TO_RGBv8<RANGE, A, B>> form(
        StageList<UYVY444v8_TO_RGBv4<RANGE, A, B, P1>>);
};

struct Depth {
    template<int SHIFT, int WIDTH>
    static StageList<RGBv8_BITDEPTH<SHIFT, WIDTH>> form(StageList<RGBv4_BITDEPTH<SHIFT, WIDTH>>);
};

struct Levels {
    template<int IN_BITS, bool IN_FULL, int OUT_BITS, bool OUT_FULL, PrecisionFlag P>
    static RGBv8_RESCALE<IN_BITS, IN_FULL, OUT_BITS, OUT_FULL, P>
    onRGBv8(const RGBv4_RESCALE<IN_BITS, IN_FULL, OUT_BITS, OUT_FULL, P>&);

    /// Fits `RGBv4_RESCALE` and the classes derived from it.
    template<class RESCALE>
    static StageList<decltype(onRGBv8(std::declval<RESCALE>()))> form(StageList<RESCALE>);
};

struct Regroup {
    static StageList<RGBv8_TO_BGRAv8> form(StageList<RGBv4_TO_BGRAv8>);
};

using Rules = RuleList<Bytes, BytesWithAlpha, RGB10, YUV422, YUVA, Matrix, Depth, Levels, Regroup>;

template<class STAGE, class RULE, class... RULES>
consteval auto find(RuleList<RULE, RULES...>)
{
    if constexpr (Fits<RULE, StageList<STAGE>>)
        return std::type_identity<RULE>{};
    else if constexpr (sizeof...(RULES) != 0)
        return find<STAGE>(RuleList<RULES...>{});
    else
        return std::type_identity<void>{};
}

/// The rule that fits one stage; void if there is none.
template<class STAGE>
using RuleFor = typename decltype(find<STAGE>(Rules{}))::type;

template<class LIST>
struct OnlyStage;
template<class STAGE>
struct OnlyStage<StageList<STAGE>> {
    using type = STAGE;
};

/// The form on planes of a stage that has a rule.
template<class STAGE>
using Form = typename OnlyStage<FormBy<RuleFor<STAGE>, StageList<STAGE>>>::type;

} // namespace planes

/// A run of stages that all have a form on planes runs on planes. Its first stage takes, and its
/// last stage gives, the same representation in both forms.
struct OnPlanes {
    template<class... RUN>
    static consteval bool fits()
    {
        if constexpr (sizeof...(RUN) >= 2 && (!std::is_void_v<planes::RuleFor<RUN>> && ...)) {
            using First = std::tuple_element_t<0, std::tuple<RUN...>>;
            using Last = std::tuple_element_t<sizeof...(RUN) - 1, std::tuple<RUN...>>;
            return std::same_as<typename First::Input, typename planes::Form<First>::Input> &&
                   std::same_as<typename Last::Output, typename planes::Form<Last>::Output>;
        } else {
            return false;
        }
    }

    template<class... RUN>
    requires(fits<RUN...>()) static StageList<planes::Form<RUN>...> form(StageList<RUN...>);
};

} // namespace fast

/// If two rules fit the same run, the one listed first is taken.
struct FastRules
    : RuleList<fast::ReorderBytes, fast::DropAlpha, fast::ExchangeBytes, fast::BytesTo422,
               fast::BytesToRGB10, fast::BytesToStudioRGB10, fast::RGB10ToBytes,
               fast::StudioRGB10ToBytes, fast::BytesToRGB12, fast::UYVYToV210, fast::V210To8Bits,
               fast::RGB12To8Bits, fast::DeepRGBTo8Bits, fast::Deep422To10Bits,
               fast::RescaleOfBytes, fast::NoLimitToV210, fast::PrimariesThroughBytes,
               fast::PrimariesFromBytes, fast::PrimariesToBytes, fast::PrimariesToBGRAv8,
               fast::PrimariesByTables, fast::MatrixToFullRange, fast::OnPlanes> {};

} // namespace KSX::PixelConversion
