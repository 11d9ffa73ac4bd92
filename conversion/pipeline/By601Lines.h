/// Chooses between the two sets of primaries of Rec. 601.
#pragma once

namespace KSX::PixelConversion {

/// The height of a picture of 625 lines. Only the height of a picture says which primaries of Rec.
/// 601 it has, those for 625 lines or those for 525.
constexpr unsigned kPALHeight = 576;

/// Takes the place of a pipeline if the conversion changes primaries to or from Rec. 601. `PAL` is
/// the pipeline for the primaries of 625 lines. `NTSC` is the pipeline for those of 525 lines, and
/// serves every other height too.
template<class PAL, class NTSC>
struct By601Lines;

} // namespace KSX::PixelConversion
