/// How a conversion tells the two sets of primaries of Rec. 601 apart.
#pragma once

namespace KSX::PixelConversion {

/// The height of a picture of 625 lines. Nothing but the height tells the primaries of Rec. 601
/// for 625 lines from those for 525.
constexpr unsigned kPALHeight = 576;

/// Stands in the place of a pipeline where the conversion changes to or from Rec. 601: `PAL` has
/// the primaries of 625 lines, `NTSC` those of 525, which serve every other height too.
template<class PAL, class NTSC>
struct By601Lines;

} // namespace KSX::PixelConversion
