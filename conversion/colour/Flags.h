/// Template arguments that the names of stages carry.
#pragma once

namespace KSX::PixelConversion {

/// How a fixed-point result is cut to its integer.
enum PrecisionFlag {
    kFast = 0,  ///< P0: towards minus infinity
    kExact = 1, ///< P1: half up
};
constexpr PrecisionFlag P0 = kFast;
constexpr PrecisionFlag P1 = kExact;

/// Where 4:2:2 chroma is sited. There is one place: on the even pixel (ITU-R BT.709-6, 3.4).
enum PixelCenterFlag { kCoSited = 0 };
constexpr PixelCenterFlag C0 = kCoSited;

/// The lanes of a stage that exists in two arrangements.
enum VectorTypeFlag {
    kRGBLanes = 0,  ///< V0: 32 bits, as in `RGBv4`
    kBGRALanes = 1, ///< V1: 16 bits, as in `BGRAv8`
};
constexpr VectorTypeFlag V0 = kRGBLanes;
constexpr VectorTypeFlag V1 = kBGRALanes;

/// The form of a stage. There is one: vectors.
enum SseFlag { kVectors = 1 };

} // namespace KSX::PixelConversion
