/// The preview helper for hosts of revision 14.2.1.
#pragma once

#include "api/InterfaceRef.h"
#include "api/KestrixPreviewAPI_v14_2_1.h"
#include "api/ReferenceCounted.h"

#include <cstdint>

/// Wraps a current helper, and wraps the frames that it passes to that helper. Counts its own
/// references. Handles queries for its own id, and passes all others to the current helper.
///
/// The rules for threads and the GL context are those of the current helper.
class CKestrixGLScreenPreviewHelper_v14_2_1 final
    : public ReferenceCounted<IKestrixGLScreenPreviewHelper_v14_2_1> {
public:
    /// Adds a reference to `current`, which is not null.
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
