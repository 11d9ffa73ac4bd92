/// How an adapter recognises the probe.
#pragma once

#include "api/KestrixPreviewAPI_v14_2_1.h"

/// Whether the out-argument of a query is the value of the probe itself, which some callers pass.
/// It is no address, so nothing may be stored there. `CKestrixVideoFrame_From_v14_2_1` passes the
/// address of such a value instead: adapters pass that query on to their frame.
inline bool IsProbe(void** out)
{
    return reinterpret_cast<std::uintptr_t>(out) == ProbeSentinel;
}
