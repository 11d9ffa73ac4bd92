/// Wraps old frames and passes them to the current helper.
#include "api/v14_2_1/GLScreenPreviewHelper.h"

#include "api/QueryInterface.h"
#include "api/v14_2_1/VideoFrame_From.h"

HRESULT CKestrixGLScreenPreviewHelper_v14_2_1::QueryInterface(REFIID id, void** out)
{
    return AnswerOrForward<IKestrixGLScreenPreviewHelper_v14_2_1>(
        this, IID_IKestrixGLScreenPreviewHelper_v14_2_1, m_current.get(), id, out);
}

HRESULT CKestrixGLScreenPreviewHelper_v14_2_1::SetFrame(IKestrixVideoFrame_v14_2_1* frame)
{
    InterfaceRef<IKestrixVideoFrame> current;
    *current.receive() = CKestrixVideoFrame_From_v14_2_1::create(frame);
    return m_current->SetFrame(current.get());
}
