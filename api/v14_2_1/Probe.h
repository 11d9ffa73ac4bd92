/// The probe as an adapter answers it.
#pragma once

#include "api/KestrixPreviewAPI_v14_2_1.h"

/// Whether the out-argument of a query is the probe itself, as some callers pass it. It is no
/// address and must not be written to. The library's own probe, `CKestrixVideoFrame_From_v14_2_1`,
/// passes the address of one: adapters don't answer that, they hand it on to their frame.
inline bool IsProbe(void** out)
{
    return reinterpret_cast<std::uintptr_t>(out) == ProbeSentinel;
}
