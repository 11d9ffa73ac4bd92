/// The interfaces of a frame in memory.
#include "host/MemoryFrame.h"

#include "conversion/PixelFormats.h"

#include <cstring>
#include <new>
#include <stdexcept>

namespace kestrix::host {
namespace {

constexpr std::align_val_t kAlignment{16};

std::int64_t rowBytesOf(const MemoryFrameOptions& options)
{
    if (options.width < 0 || options.height < 0)
        throw std::invalid_argument("a frame can't have a negative size");
    if (options.rowBytes)
        return *options.rowBytes;
    const auto* format = KSX::PixelConversion::findPixelFormat(options.format);
    if (!format)
        throw std::invalid_argument("a frame of an unknown format needs its row bytes");
    return static_cast<std::int64_t>(
        KSX::PixelConversion::rowBytes(*format, static_cast<std::size_t>(options.width)));
}

std::uint8_t* allocate(std::int64_t rowBytes, std::int64_t height)
{
    if (rowBytes < 0)
        throw std::invalid_argument("a frame with its own bytes can't have negative row bytes");
    std::int64_t lines = 0;
    std::int64_t size = 0;
    if (__builtin_mul_overflow(rowBytes, height, &lines) ||
        __builtin_add_overflow(lines, MemoryFrame::kReadableBehind, &size))
        throw std::bad_alloc();
    void* bytes = ::operator new(static_cast<std::size_t>(size), kAlignment);
    std::memset(bytes, 0, static_cast<std::size_t>(size));
    return static_cast<std::uint8_t*>(bytes);
}

} // namespace

void MemoryFrame::FreeBytes::operator()(std::uint8_t* bytes) const
{
    ::operator delete(bytes, kAlignment);
}

Owned<MemoryFrame> MemoryFrame::create(const MemoryFrameOptions& options)
{
    return Owned<MemoryFrame>(new MemoryFrame(options));
}

MemoryFrame::MemoryFrame(const MemoryFrameOptions& options)
    : m_options(options),
      m_rowBytes(rowBytesOf(options)),
      m_rightEye(share(options.rightEye)),
      m_ownBytes(options.bytes ? nullptr : allocate(m_rowBytes, options.height)),
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
    else {
        *out = nullptr;
        return E_NOINTERFACE;
    }
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

} // namespace kestrix::host
