/// What a rule can require of a stage. Each concept reads what the stage declares about itself.
#pragma once

#include "conversion/pipeline/Representations.h"

#include <concepts>

namespace KSX::PixelConversion::fast {

/// Unpacks pixels of 4 bytes to `RGBv4`, and names the byte of each component.
template<class STAGE>
concept UnpacksBytesToRGBv4 = std::same_as<typename STAGE::Output, RGBv4> && requires
{
    STAGE::kByteOf;
};

/// Unpacks pixels of 4 bytes to `BGRAv8`, and names the byte of each component.
template<class STAGE>
concept UnpacksBytesToBGRAv8 = std::same_as<typename STAGE::Output, BGRAv8> && requires
{
    STAGE::kByteOf;
};

/// Packs `RGBv4` to pixels of 4 bytes with an opaque alpha, and names the byte of each component
/// and of alpha.
template<class STAGE>
concept PacksRGBv4ToBytes = std::same_as<typename STAGE::Input, RGBv4> && requires
{
    STAGE::kByteOf;
};

/// Unpacks words of 10-bit RGB to `RGBv4`.
template<class STAGE>
concept UnpacksRGB10 = std::same_as<typename STAGE::Output, RGBv4> && requires
{
    STAGE::kLowestBit;
    STAGE::kBigEndian;
};

/// Packs `RGBv4` to words of 10-bit RGB.
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

/// Packs signed lanes, limited to 0 to `LARGEST`.
template<class STAGE, int LARGEST>
concept SaturatesTo = std::same_as<typename STAGE::Output, Packed<4>> && requires
{
    requires STAGE::kLargestCode == LARGEST;
};

/// Gives codes within the range of their depth if the codes that it takes are within theirs. Alpha
/// does not count. The range of luma and chroma is their whole depth. A stage that does not declare
/// this may leave the range.
template<class STAGE>
concept KeepsRange = STAGE::kRange != Range::Any;

/// Gives codes within the range of their depth for any input.
template<class STAGE>
concept GivesRange = STAGE::kRange == Range::Given;

} // namespace KSX::PixelConversion::fast
