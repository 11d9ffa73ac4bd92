/// The engine a second time, in a namespace of its own and without rules: what conversions mean.
#pragma once

namespace kestrix::test {

/// The function in row `row` of the table, which runs the stages as the entry lists them.
void (*listedConversion(unsigned row))(unsigned width, unsigned height, void* dst,
                                       unsigned dstRowBytes, void* src, unsigned srcRowBytes);

} // namespace kestrix::test
