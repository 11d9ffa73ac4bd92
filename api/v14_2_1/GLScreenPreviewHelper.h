/// A preview helper as hosts of revision 14.2.1 know it.
#pragma once

#include "api/InterfaceRef.h"
#include "api/KestrixPreviewAPI_v14_2_1.h"
#include "api/ReferenceCounted.h"

#include <cstdint>

/// Wraps a current helper and the frames on their way to it. Counts its own references, and answers
/// for its own id only; all other queries go to the current helper.
///
/// Threads and GL context as with the current helper.
class CKestrixGLScreenPreviewHelper_v14_2_1 final
    : public ReferenceCounted<IKestrixGLScreenPreviewHelper_v14_2_1> {
public:
    /// Takes a reference of its own to `current`, which is not null.
    explicit CKestrixGLScreenPreviewHelper_v14_2_1(IKestrixGLScreenPreviewHelper* current)
        : m_current(current)
    {
    }

    HRESULT QueryInterface(REFIID id, void** out) override;
    HRESULT InitializeGL() override { return m_current->InitializeGL(); }
    HRESULT PaintGL() override { return m_current->PaintGL(); }
    HRESULT SetFrame(IKestrixVideoFrame_v14_2_1* frame) override;
    HRESULT Set3DPreviewFormat(std::uint32_t format) override
    {
        return m_current->Set3DPreviewFormat(format);
    }

private:
    ~CKestrixGLScreenPreviewHelper_v14_2_1() override = default;

    const InterfaceRef<IKestrixGLScreenPreviewHelper> m_current;
};
