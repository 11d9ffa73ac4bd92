/// Enumerations for the template parameters of stages.
#pragma once

namespace KSX::PixelConversion {

/// How a fixed-point result becomes an integer.
enum PrecisionFlag {
    P0 = 0, ///< truncated towards minus infinity
    P1 = 1, ///< rounded, half up
};

/// Where 4:2:2 chroma is sited. There is only one place: on the even pixel (ITU-R BT.709-6, 3.4).
enum PixelCenterFlag { C0 = 0 };

/// The lanes of a stage that exists in two arrangements.
enum VectorTypeFlag {
    V0 = 0, ///< of 32 bits, as in `RGBv4`
    V1 = 1, ///< of 16 bits, as in `BGRAv8`, `RGBv8` and `UYVYv8`
};

/// The form of a stage. There is only one: vectors.
enum SseFlag { kVectors = 1 };

} // namespace KSX::PixelConversion
