/// The interfaces of an old frame in memory.
#include "host/OldMemoryFrame.h"

namespace kestrix::host {

Owned<OldMemoryFrame> OldMemoryFrame::create(const OldMemoryFrameOptions& options)
{
    return Owned<OldMemoryFrame>(new OldMemoryFrame(options));
}

OldMemoryFrame::OldMemoryFrame(const OldMemoryFrameOptions& options)
    : m_options(options),
      m_rowBytes(frameRowBytes(options.width, options.height, options.format, options.rowBytes)),
      m_rightEye(share(options.rightEye)),
      m_bytes(allocateFrameBytes(m_rowBytes, options.height))
{
}

HRESULT OldMemoryFrame::QueryInterface(REFIID id, void** out)
{
    if (!out)
        return E_POINTER;

    if (id == IID_IUnknown || id == IID_IKestrixVideoFrame_v14_2_1)
        *out = static_cast<IKestrixVideoFrame_v14_2_1*>(this);
    else if (id == IID_IKestrixVideoFrame3DExtensions_v14_2_1 && m_options.packing3D)
        *out = static_cast<IKestrixVideoFrame3DExtensions_v14_2_1*>(this);
    else {
        *out = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

std::uint32_t OldMemoryFrame::Release()
{
    const std::uint32_t left = --m_references;
    if (left == 0)
        delete this;
    return left;
}

HRESULT OldMemoryFrame::GetBytes(void** out)
{
    if (!out)
        return E_POINTER;
    *out = m_bytes.get();
    return S_OK;
}

HRESULT OldMemoryFrame::GetTimecode(std::uint32_t, IKestrixTimecode** out)
{
    if (out)
        *out = nullptr;
    return E_NOTIMPL;
}

HRESULT OldMemoryFrame::GetAncillaryData(IKestrixVideoFrameAncillary** out)
{
    if (out)
        *out = nullptr;
    return E_NOTIMPL;
}

HRESULT OldMemoryFrame::GetFrameForRightEye(IKestrixVideoFrame_v14_2_1** out)
{
    if (!out)
        return E_INVALIDARG;
    *out = share(m_rightEye.get()).release();
    return *out ? S_OK : E_FAIL;
}

} // namespace kestrix::host
