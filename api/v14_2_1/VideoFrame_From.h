/// Presents a frame of revision 14.2.1 as a current one.
#pragma once

#include "api/InterfaceRef.h"
#include "api/KestrixPreviewAPI_v14_2_1.h"
#include "api/ReferenceCounted.h"

#include <cstdint>

/// Wraps an old frame, and keeps a reference to it. Queries for interfaces that are the same in
/// both revisions go to the old frame.
///
/// As thread-safe as the old frame.
class CKestrixVideoFrame_From_v14_2_1 final
    : public ReferenceCounted<IKestrixVideoFrame, IKestrixVideoBuffer> {
public:
    /// Returns a current frame with a reference: `old` itself if the probe shows that it is one, or
    /// else a wrapper. Null for null, and if allocation fails.
    static IKestrixVideoFrame* create(IKestrixVideoFrame_v14_2_1* old);

    /// If `old` is null, every query returns `E_FAIL`, and nothing else may be called.
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

    // IKestrixVideoBuffer. The memory of an old frame can always be used: there is no access to
    // open.
    HRESULT GetBytes(void** out) override { return m_old->GetBytes(out); }
    HRESULT StartAccess(std::uint32_t) override { return S_OK; }
    HRESULT EndAccess(std::uint32_t) override { return S_OK; }

private:
    ~CKestrixVideoFrame_From_v14_2_1() override = default;

    const InterfaceRef<IKestrixVideoFrame_v14_2_1> m_old;
};
