/// The interfaces of a frame in memory.
#include "host/MemoryFrame.h"

namespace kestrix::host {

Owned<MemoryFrame> MemoryFrame::create(const MemoryFrameOptions& options)
{
    return Owned<MemoryFrame>(new MemoryFrame(options));
}

MemoryFrame::MemoryFrame(const MemoryFrameOptions& options)
    : m_options(options),
      m_rowBytes(frameRowBytes(options.width, options.height, options.format, options.rowBytes)),
      m_rightEye(share(options.rightEye)),
      m_ownBytes(options.bytes ? nullptr : allocateFrameBytes(m_rowBytes, options.height)),
      m_bytes(options.bytes ? static_cast<std::uint8_t*>(options.bytes) : m_ownBytes.get())
{
}

MemoryFrame::~MemoryFrame() = default;

HRESULT MemoryFrame::QueryInterface(REFIID id, void** out)
{
    if (!out)
        return E_POINTER;

    if (id == IID_IUnknown || id == IID_IKestrixVideoFrame)
        *out = static_cast<IKestrixVideoFrame*>(this);
    else if (id == IID_IKestrixVideoBuffer)
        *out = static_cast<IKestrixVideoBuffer*>(this);
    else if (id == IID_IKestrixVideoFrameMetadata && m_options.colorspace)
        *out = static_cast<IKestrixVideoFrameMetadata*>(this);
    else if (id == IID_IKestrixVideoFrame3DExtensions && m_options.packing3D)
        *out = static_cast<IKestrixVideoFrame3DExtensions*>(this);
    else if (id == IID_IKestrixVideoInputFrame && m_options.captured)
        *out = static_cast<IKestrixVideoInputFrame*>(this);
    else if (id == IID_IKestrixFrameProviderRegistry && m_options.captured)
        *out = static_cast<IKestrixFrameProviderRegistry*>(this);
    else
        return m_providers.query(id, out);
    AddRef();
    return S_OK;
}

std::uint32_t MemoryFrame::AddRef()
{
    return ++m_references;
}

std::uint32_t MemoryFrame::Release()
{
    const std::uint32_t left = --m_references;
    if (left == 0)
        delete this;
    return left;
}

HRESULT MemoryFrame::GetTimecode(std::uint32_t, IKestrixTimecode** out)
{
    if (out)
        *out = nullptr;
    return E_NOTIMPL;
}

HRESULT MemoryFrame::GetAncillaryData(IKestrixVideoFrameAncillary** out)
{
    if (out)
        *out = nullptr;
    return E_NOTIMPL;
}

HRESULT MemoryFrame::GetStreamTime(std::int64_t*, std::int64_t*, std::int64_t)
{
    return E_NOTIMPL;
}

HRESULT MemoryFrame::GetHardwareReferenceTimestamp(std::int64_t, std::int64_t*, std::int64_t*)
{
    return E_NOTIMPL;
}

HRESULT MemoryFrame::GetBytes(void** out)
{
    if (!out)
        return E_POINTER;
    *out = openAccesses() > 0 ? m_bytes : nullptr;
    return *out ? S_OK : E_FAIL;
}

HRESULT MemoryFrame::StartAccess(std::uint32_t flags)
{
    std::atomic<int>* open = openAccessesWith(flags);
    if (!open)
        return E_INVALIDARG;
    ++*open;
    return S_OK;
}

HRESULT MemoryFrame::EndAccess(std::uint32_t flags)
{
    std::atomic<int>* open = openAccessesWith(flags);
    if (!open)
        return E_INVALIDARG;
    if (--*open >= 0)
        return S_OK;
    ++*open;
    return E_FAIL;
}

std::atomic<int>* MemoryFrame::openAccessesWith(std::uint32_t flags)
{
    switch (flags) {
    case BufferAccessRead:
        return &m_openReads;
    case BufferAccessReadWrite:
        return &m_openReadWrites;
    default:
        return nullptr;
    }
}

HRESULT MemoryFrame::GetInt(std::uint32_t id, std::int64_t* out)
{
    if (!out)
        return E_POINTER;
    if (id != MetadataColorspace || !m_options.colorspace)
        return E_INVALIDARG;
    *out = *m_options.colorspace;
    return S_OK;
}

std::uint32_t MemoryFrame::Get3DPackingFormat()
{
    return m_options.packing3D.value_or(0);
}

HRESULT MemoryFrame::GetFrameForRightEye(IKestrixVideoFrame** out)
{
    if (!out)
        return E_INVALIDARG;
    *out = share(m_rightEye.get()).release();
    return *out ? S_OK : E_FAIL;
}

HRESULT MemoryFrame::RegisterInterfaceProvider(REFIID id, IUnknown* provider)
{
    return m_providers.add(id, provider);
}

} // namespace kestrix::host
