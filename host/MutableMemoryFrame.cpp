/// The properties of a frame in memory that can be set.
#include "host/MutableMemoryFrame.h"

namespace kestrix::host {

Owned<MutableMemoryFrame> MutableMemoryFrame::create(const MemoryFrameOptions& options)
{
    return Owned<MutableMemoryFrame>(new MutableMemoryFrame(options));
}

HRESULT MutableMemoryFrame::QueryInterface(REFIID id, void** out)
{
    if (!out || id != IID_IKestrixMutableVideoFrame)
        return MemoryFrame::QueryInterface(id, out);
    *out = static_cast<IKestrixMutableVideoFrame*>(this);
    AddRef();
    return S_OK;
}

HRESULT MutableMemoryFrame::SetFlags(std::uint32_t flags)
{
    m_flags = flags;
    return S_OK;
}

HRESULT MutableMemoryFrame::SetTimecode(std::uint32_t, IKestrixTimecode*)
{
    return E_NOTIMPL;
}

HRESULT MutableMemoryFrame::SetTimecodeFromComponents(std::uint32_t, std::uint8_t, std::uint8_t,
                                                      std::uint8_t, std::uint8_t, std::uint32_t)
{
    return E_NOTIMPL;
}

HRESULT MutableMemoryFrame::SetAncillaryData(IKestrixVideoFrameAncillary*)
{
    return E_NOTIMPL;
}

HRESULT MutableMemoryFrame::SetTimecodeUserBits(std::uint32_t, std::uint32_t)
{
    return E_NOTIMPL;
}

} // namespace kestrix::host
