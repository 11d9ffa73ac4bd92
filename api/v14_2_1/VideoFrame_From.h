/// A frame of revision 14.2.1 as a current one.
#pragma once

#include "api/InterfaceRef.h"
#include "api/KestrixPreviewAPI_v14_2_1.h"
#include "api/ReferenceCounted.h"

#include <cstdint>

/// Wraps an old frame, for as long as it has a reference itself. Interfaces that are the same in
/// both revisions are the old frame's own.
///
/// As thread-safe as the old frame.
class CKestrixVideoFrame_From_v14_2_1 final
    : public ReferenceCounted<IKestrixVideoFrame, IKestrixVideoBuffer> {
public:
    /// Gives a current frame with a reference: `old` itself where it is one and says so when
    /// probed, a wrapper otherwise. Null for null, and where memory is short.
    static IKestrixVideoFrame* create(IKestrixVideoFrame_v14_2_1* old);

    /// `E_FAIL` for every query where `old` is null; nothing else may be called then.
    explicit CKestrixVideoFrame_From_v14_2_1(IKestrixVideoFrame_v14_2_1* old) : m_old(old) {}

    HRESULT QueryInterface(REFIID id, void** out) override;

    // IKestrixVideoFrame
    std::int64_t GetWidth() override { return m_old->GetWidth(); }
    std::int64_t GetHeight() override { return m_old->GetHeight(); }
    std::int64_t GetRowBytes() override { return m_old->GetRowBytes(); }
    std::uint32_t GetPixelFormat() override { return m_old->GetPixelFormat(); }
    std::uint32_t GetFlags() override { return m_old->GetFlags(); }
    HRESULT GetTimecode(std::uint32_t format, IKestrixTimecode** out) override
    {
        return m_old->GetTimecode(format, out);
    }
    HRESULT GetAncillaryData(IKestrixVideoFrameAncillary** out) override
    {
        return m_old->GetAncillaryData(out);
    }

    // IKestrixVideoBuffer. The memory of an old frame is always there: nothing is to be opened.
    HRESULT GetBytes(void** out) override { return m_old->GetBytes(out); }
    HRESULT StartAccess(std::uint32_t) override { return S_OK; }
    HRESULT EndAccess(std::uint32_t) override { return S_OK; }

private:
    ~CKestrixVideoFrame_From_v14_2_1() override = default;

    const InterfaceRef<IKestrixVideoFrame_v14_2_1> m_old;
};
