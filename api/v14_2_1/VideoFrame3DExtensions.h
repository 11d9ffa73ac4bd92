/// Adapters for the stereoscopic extensions of a frame, in both directions.
///
/// Both count their own references. They handle queries for their own id, and pass all others to
/// the extensions that they wrap.
#pragma once

#include "api/InterfaceRef.h"
#include "api/KestrixPreviewAPI_v14_2_1.h"
#include "api/ReferenceCounted.h"

#include <cstdint>

/// Extensions of revision 14.2.1 as current ones.
class CKestrixVideoFrame3DExtensions_From_v14_2_1 final
    : public ReferenceCounted<IKestrixVideoFrame3DExtensions> {
public:
    /// Wraps `old`. Null if allocation fails.
    static IKestrixVideoFrame3DExtensions* create(IKestrixVideoFrame3DExtensions_v14_2_1* old);

    HRESULT QueryInterface(REFIID id, void** out) override;
    std::uint32_t Get3DPackingFormat() override { return m_old->Get3DPackingFormat(); }

    /// Stores the wrapped old frame. `E_OUTOFMEMORY` if allocation of the wrapper fails.
    HRESULT GetFrameForRightEye(IKestrixVideoFrame** out) override;

private:
    explicit CKestrixVideoFrame3DExtensions_From_v14_2_1(
        IKestrixVideoFrame3DExtensions_v14_2_1* old)
        : m_old(old)
    {
    }
    ~CKestrixVideoFrame3DExtensions_From_v14_2_1() override = default;

    const InterfaceRef<IKestrixVideoFrame3DExtensions_v14_2_1> m_old;
};

/// Current extensions as those of revision 14.2.1.
class CKestrixVideoFrame3DExtensions_v14_2_1 final
    : public ReferenceCounted<IKestrixVideoFrame3DExtensions_v14_2_1> {
public:
    /// Wraps `current`. Null if allocation fails.
    static IKestrixVideoFrame3DExtensions_v14_2_1* create(IKestrixVideoFrame3DExtensions* current);

    HRESULT QueryInterface(REFIID id, void** out) override;
    std::uint32_t Get3DPackingFormat() override { return m_current->Get3DPackingFormat(); }

    /// Stores the adapter of the current frame. `CKestrixVideoInputFrame_v14_2_1::create` finds or
    /// attaches it; its failures are returned.
    HRESULT GetFrameForRightEye(IKestrixVideoFrame_v14_2_1** out) override;

private:
    explicit CKestrixVideoFrame3DExtensions_v14_2_1(IKestrixVideoFrame3DExtensions* current)
        : m_current(current)
    {
    }
    ~CKestrixVideoFrame3DExtensions_v14_2_1() override = default;

    const InterfaceRef<IKestrixVideoFrame3DExtensions> m_current;
};
