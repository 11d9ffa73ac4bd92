/// What a pipeline requires of the rows of a picture. It follows from the listed stages. Nothing
/// checks it when a picture is converted; docs/conversions.md lists it for every row of the table.
#pragma once

#include "conversion/pipeline/Pipeline.h"

#include <algorithm>
#include <cstddef>
#include <tuple>

namespace KSX::PixelConversion {

template<class PIPELINE>
struct RowLimits;

template<unsigned BLOCK, class... STAGES, unsigned LINE, class RULES>
struct RowLimits<Pipeline<BLOCK, StageList<STAGES...>, LINE, RULES>> {
    using P = Pipeline<BLOCK, StageList<STAGES...>, LINE, RULES>;
    using First = std::tuple_element_t<0, std::tuple<STAGES...>>;
    using Input = typename First::Input;

    /// A stage that looks ahead reads whole steps if its input lies in groups of the size of its
    /// step. For such a stage, a row always reaches into a second step.
    static constexpr bool kReadsWholeSteps = P::kLooksAhead && Input::kPixels == First::kIn;

    /// The least width of a row, in pixels. The first block of a row runs differently if a stage
    /// looks back, and the last block if a stage looks ahead, so a row must have these blocks. 0 if
    /// a row without pixels is left alone.
    static constexpr unsigned kLeastWidth = P::kLooksBack && P::kLooksAhead ? BLOCK + 1
                                            : P::kLooksBack                 ? BLOCK
                                            : kReadsWholeSteps              ? First::kIn + 1
                                            : P::kLooksAhead                ? 1
                                                                            : 0;

    /// Bytes that are read from the start of a row of `width` pixels: the bytes of its pixels, and
    /// the vector after its last whole block if a stage looks ahead and the row goes on after that
    /// block.
    static constexpr std::size_t bytesRead(unsigned width)
    {
        constexpr std::size_t kBlockBytes = Pixels<Input, BLOCK>::kBytes;
        const std::size_t row = Input::rowBytes(width);
        const unsigned blocks = width / BLOCK;
        const bool looksBehind = P::kLooksAhead && blocks != 0 && width % BLOCK != 0;
        return looksBehind ? std::max(row, blocks * kBlockBytes + kUnitBytes) : row;
    }
};

} // namespace KSX::PixelConversion
