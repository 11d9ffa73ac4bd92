/// Decides which old frames are wrapped, and handles the wrapper's queries.
#include "api/v14_2_1/VideoFrame_From.h"

#include "api/QueryInterface.h"
#include "api/v14_2_1/Probe.h"
#include "api/v14_2_1/VideoFrame3DExtensions.h"

#include <new>

namespace {

/// Whether the object is a current frame too, and knows the probe.
bool understandsProbe(IKestrixVideoFrame_v14_2_1* frame)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a value to compare with, not an address
    void* const sentinel = reinterpret_cast<void*>(ProbeSentinel);
    void* answer = sentinel;
    const HRESULT status = frame->QueryInterface(IID_IUnknown, &answer);
    if (status < 0)
        return false;
    if (answer != sentinel) {
        // The frame does not know the probe and has answered the query.
        if (answer)
            static_cast<IUnknown*>(answer)->Release();
        return false;
    }
    return status == ProbeReply;
}

} // namespace

IKestrixVideoFrame* CKestrixVideoFrame_From_v14_2_1::create(IKestrixVideoFrame_v14_2_1* old)
{
    if (!old)
        return nullptr;
    if (understandsProbe(old)) {
        IKestrixVideoFrame* current = nullptr;
        if (QueryInto(old, IID_IKestrixVideoFrame, &current) >= 0)
            return current;
    }
    return new (std::nothrow) CKestrixVideoFrame_From_v14_2_1(old);
}

HRESULT CKestrixVideoFrame_From_v14_2_1::QueryInterface(REFIID id, void** out)
{
    if (!out)
        return E_POINTER;
    if (IsProbe(out))
        return ProbeReply;
    if (!m_old)
        return E_FAIL;

    *out = nullptr;
    if (IsIUnknown(id) || id == IID_IKestrixVideoFrame)
        return AnswerWith<IKestrixVideoFrame>(this, out);
    if (id == IID_IKestrixVideoBuffer)
        return AnswerWith<IKestrixVideoBuffer>(this, out);
    if (id == IID_IKestrixVideoFrame3DExtensions) {
        InterfaceRef<IKestrixVideoFrame3DExtensions_v14_2_1> old;
        old.query(m_old.get(), IID_IKestrixVideoFrame3DExtensions_v14_2_1);
        if (old) {
            *out = CKestrixVideoFrame3DExtensions_From_v14_2_1::create(old.get());
            return *out ? S_OK : E_OUTOFMEMORY;
        }
    }
    return m_old->QueryInterface(id, out);
}
