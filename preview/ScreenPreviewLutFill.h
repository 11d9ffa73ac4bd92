/// What the colour tables hold.
#pragma once

#include "preview/ScreenPreviewLut.h"

/// Makes an identity table, `kEntries` entries of R, G, B, A, into that of `id`: the engine's own
/// stages run over it in place, so that the shader shows what a conversion on the CPU would give.
void fillScreenPreviewLut(LutID id, float* table);
