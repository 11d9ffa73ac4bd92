/// What a rule can ask of a stage, from what the stage says of itself.
#pragma once

#include "conversion/pipeline/Representations.h"

#include <concepts>

namespace KSX::PixelConversion::fast {

/// Cuts pixels of 4 bytes into `RGBv4`, each component from the byte that the stage names.
template<class STAGE>
concept UnpacksBytesToRGBv4 = std::same_as<typename STAGE::Output, RGBv4> && requires
{
    STAGE::kByteOf;
};

/// Joins `RGBv4` to pixels of 4 bytes, each component and an opaque alpha at the byte that the
/// stage names.
template<class STAGE>
concept PacksRGBv4ToBytes = std::same_as<typename STAGE::Input, RGBv4> && requires
{
    STAGE::kByteOf;
};

/// Cuts words of 10-bit RGB into `RGBv4`.
template<class STAGE>
concept UnpacksRGB10 = std::same_as<typename STAGE::Output, RGBv4> && requires
{
    STAGE::kLowestBit;
    STAGE::kBigEndian;
};

/// Joins `RGBv4` to words of 10-bit RGB.
template<class STAGE>
concept PacksRGB10 = std::same_as<typename STAGE::Input, RGBv4> && requires
{
    STAGE::kLowestBit;
    STAGE::kBigEndian;
};

/// Gives codes of 0 to 255 in every lane, whatever bytes it reads.
template<class STAGE>
concept GivesBytes = std::same_as<typename STAGE::Input, Packed<4>> && requires
{
    requires STAGE::kLargestCode == 255;
};

/// A pack that limits signed lanes to 0 and `LARGEST`.
template<class STAGE, int LARGEST>
concept SaturatesTo = std::same_as<typename STAGE::Output, Packed<4>> && requires
{
    requires STAGE::kLargestCode == LARGEST;
};

/// Given codes within the range of their depth, gives codes within the range of theirs. Alpha is
/// left out, and luma and chroma have the whole of their depth as range. A stage that does not say
/// so may leave the range.
template<class STAGE>
concept KeepsRange = STAGE::kRange != Range::Any;

/// Gives codes within the range of their depth whatever it is given.
template<class STAGE>
concept GivesRange = STAGE::kRange == Range::Given;

} // namespace KSX::PixelConversion::fast
