/// Passes the frame of the right eye from one revision to the other.
#include "api/v14_2_1/VideoFrame3DExtensions.h"

#include "api/QueryInterface.h"
#include "api/v14_2_1/ProvidedFrames.h"
#include "api/v14_2_1/VideoFrame_From.h"

#include <new>

IKestrixVideoFrame3DExtensions*
CKestrixVideoFrame3DExtensions_From_v14_2_1::create(IKestrixVideoFrame3DExtensions_v14_2_1* old)
{
    return new (std::nothrow) CKestrixVideoFrame3DExtensions_From_v14_2_1(old);
}

HRESULT CKestrixVideoFrame3DExtensions_From_v14_2_1::QueryInterface(REFIID id, void** out)
{
    return AnswerOrForward<IKestrixVideoFrame3DExtensions>(this, IID_IKestrixVideoFrame3DExtensions,
                                                           m_old.get(), id, out);
}

HRESULT CKestrixVideoFrame3DExtensions_From_v14_2_1::GetFrameForRightEye(IKestrixVideoFrame** out)
{
    if (!out)
        return E_INVALIDARG;
    *out = nullptr;
    InterfaceRef<IKestrixVideoFrame_v14_2_1> right;
    const HRESULT status = m_old->GetFrameForRightEye(right.receive());
    if (status != S_OK || !right)
        return status;
    *out = CKestrixVideoFrame_From_v14_2_1::create(right.get());
    return *out ? status : E_OUTOFMEMORY;
}

IKestrixVideoFrame3DExtensions_v14_2_1*
CKestrixVideoFrame3DExtensions_v14_2_1::create(IKestrixVideoFrame3DExtensions* current)
{
    return new (std::nothrow) CKestrixVideoFrame3DExtensions_v14_2_1(current);
}

HRESULT CKestrixVideoFrame3DExtensions_v14_2_1::QueryInterface(REFIID id, void** out)
{
    return AnswerOrForward<IKestrixVideoFrame3DExtensions_v14_2_1>(
        this, IID_IKestrixVideoFrame3DExtensions_v14_2_1, m_current.get(), id, out);
}

HRESULT
CKestrixVideoFrame3DExtensions_v14_2_1::GetFrameForRightEye(IKestrixVideoFrame_v14_2_1** out)
{
    if (!out)
        return E_INVALIDARG;
    *out = nullptr;
    InterfaceRef<IKestrixVideoFrame> right;
    const HRESULT status = m_current->GetFrameForRightEye(right.receive());
    if (status != S_OK || !right)
        return status;
    InterfaceRef<IKestrixVideoInputFrame_v14_2_1> adapter;
    const HRESULT attached =
        CKestrixVideoInputFrame_v14_2_1::create(right.get(), adapter.receive());
    return adapter ? QueryInto(adapter.get(), IID_IKestrixVideoFrame_v14_2_1, out) : attached;
}
