/// What a pipeline asks of the rows that it is run over, as its stages have it. Nothing checks that
/// when a picture is converted; docs/conversions.md has it for every row of the table.
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

    /// A stage that looks ahead takes the bytes of a row as whole steps where they come in groups
    /// of its own size. To such a stage a row always reaches into a second step.
    static constexpr bool kReadsWholeSteps = P::kLooksAhead && Input::kPixels == First::kIn;

    /// Pixels of the narrowest row. The first block of a row has a form of its own where a stage
    /// looks back, the last one where a stage looks ahead. 0 where a row of none is left alone.
    static constexpr unsigned kLeastWidth = P::kLooksBack && P::kLooksAhead ? BLOCK + 1
                                            : P::kLooksBack                 ? BLOCK
                                            : kReadsWholeSteps              ? First::kIn + 1
                                            : P::kLooksAhead                ? 1
                                                                            : 0;

    /// Bytes that are read from the start of a row of `width` pixels: those of its pixels, and the
    /// vector behind its last whole block where a stage looks there and the row goes on.
    static constexpr std::size_t bytesRead(unsigned width)
    {
        constexpr std::size_t kBlockBytes = Pixels<Input, BLOCK>::kBytes;
        const std::size_t row = Input::rowBytes(width);
        const unsigned blocks = width / BLOCK;
        const bool looksBehind = P::kLooksAhead && blocks != 0 && width % BLOCK != 0;
        return looksBehind ? std::max(row, blocks * kBlockBytes + sizeof(Vector)) : row;
    }
};

} // namespace KSX::PixelConversion
