/// The contents of the colour tables.
#pragma once

#include "preview/ScreenPreviewLut.h"

/// Turns an identity table, `kEntries` entries of R, G, B, A, into the table `id`. The engine's own
/// stages run over it in place, so the shader shows the colours of a conversion on the CPU.
void fillScreenPreviewLut(LutID id, float* table);
