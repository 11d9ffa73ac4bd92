/// Small frames of both revisions, and old frames attached to current ones.
#pragma once

#include "api/v14_2_1/ProvidedFrames.h"
#include "host/OldMemoryFrame.h"
#include "tests/common/TestFrame.h"

namespace kestrix::test {

using Old = IKestrixVideoFrame_v14_2_1;

/// Makes a frame that is the left eye of `rightEye`, if that is not null.
template<class FRAME, class OPTIONS>
host::Owned<FRAME> frameWithEye(OPTIONS options, decltype(options.rightEye) rightEye)
{
    options.rightEye = rightEye;
    if (rightEye)
        options.packing3D = Packing3DLeftOnly;
    return FRAME::create(options);
}

template<class FRAME = host::OldMemoryFrame>
host::Owned<FRAME> oldFrame(Old* rightEye = nullptr)
{
    return frameWithEye<FRAME>(host::OldMemoryFrameOptions{.width = 16, .height = 8, .format = 32},
                               rightEye);
}

template<class FRAME = TestFrame>
host::Owned<FRAME> capturedFrame(IKestrixVideoFrame* rightEye = nullptr)
{
    return frameWithEye<FRAME>(host::MemoryFrameOptions{.width = 16,
                                                        .height = 8,
                                                        .format = 32,
                                                        .colorspace = ColorspaceCodeRec709,
                                                        .captured = true},
                               rightEye);
}

/// Calls the `create` of an adapter, with the interface of `frame` that it takes.
template<class CURRENT, class OLD>
HRESULT attachBy(HRESULT (*create)(CURRENT*, OLD**), host::MemoryFrame* frame,
                 host::Owned<Old>& out)
{
    OLD* adapter = nullptr;
    const HRESULT status = create(dynamic_cast<CURRENT*>(frame), &adapter);
    out.reset(adapter);
    return status;
}

/// Attaches an `ADAPTER` to `frame`. `out` is null after a failure.
template<class ADAPTER>
HRESULT attach(host::MemoryFrame* frame, host::Owned<Old>& out)
{
    return attachBy(&ADAPTER::create, frame, out);
}

} // namespace kestrix::test
