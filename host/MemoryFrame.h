/// A video frame in memory, for hosts without a capture card.
#pragma once

#include "api/KestrixPreviewAPI.h"
#include "host/FrameBytes.h"
#include "host/InterfaceProviders.h"
#include "host/Owned.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace kestrix::host {

/// The properties of a `MemoryFrame`. Only size and format are required.
struct MemoryFrameOptions {
    /// Pixels per line and lines, not negative.
    std::int64_t width = 0;
    std::int64_t height = 0;
    /// Any code; the 30 formats of the engine have a default row size.
    std::uint32_t format = 0;
    /// Bytes from one line to the next. If not given: the size of a line of the format.
    std::optional<std::int64_t> rowBytes{};
    /// `KestrixFrameFlags`.
    std::uint32_t flags = FrameFlagDefault;
    /// What `GetInt` returns for `MetadataColorspace`, a `KestrixColorspaceCode` or any other
    /// number. If not given: the frame has no metadata interface.
    std::optional<std::int64_t> colorspace{};
    /// The frame has `IID_IKestrixVideoInputFrame` and a registry of providers.
    bool captured = false;
    /// What `Get3DPackingFormat` returns, a `Kestrix3DPackingFormat` or any other number. If not
    /// given: the frame has no 3D interface.
    std::optional<std::uint32_t> packing3D{};
    /// The frame that `GetFrameForRightEye` returns; the new frame adds a reference.
    IKestrixVideoFrame* rightEye = nullptr;
    /// Bytes of the caller, which must outlive the frame. If not given: the frame has its own
    /// bytes, zeroed and 16-byte aligned.
    void* bytes = nullptr;
};

/// A frame in memory. One object has all interfaces of the frame: each of them can be queried for
/// every other one, and all give the same pointer for `IUnknown`.
///
/// Made by `create`, deleted by the last `Release`. Counts are atomic, so any thread may add and
/// release references, and open and close accesses. As with a frame of a capture card, `GetBytes`
/// succeeds only while an access is open, and an access is closed with the flags that opened it.
class MemoryFrame : public IKestrixVideoInputFrame,
                    public IKestrixVideoBuffer,
                    public IKestrixVideoFrameMetadata,
                    public IKestrixVideoFrame3DExtensions,
                    public IKestrixFrameProviderRegistry {
public:
    /// Makes a frame with one reference. Throws `std::invalid_argument` for a negative size and for
    /// an unknown format without row bytes, `std::bad_alloc` if allocation fails.
    static Owned<MemoryFrame> create(const MemoryFrameOptions& options);

    MemoryFrame(const MemoryFrame&) = delete;
    MemoryFrame& operator=(const MemoryFrame&) = delete;

    /// The bytes, for the code that makes the frame; no access is needed.
    std::uint8_t* bytes() { return m_bytes; }

    /// Bytes of all lines.
    std::size_t size() const { return static_cast<std::size_t>(m_rowBytes * m_options.height); }

    /// The number of references.
    std::uint32_t references() const { return m_references; }

    /// The number of open accesses.
    int openAccesses() const { return m_openReads + m_openReadWrites; }

    // IUnknown
    HRESULT QueryInterface(REFIID id, void** out) override;
    std::uint32_t AddRef() override;
    std::uint32_t Release() override;

    // IKestrixVideoFrame
    std::int64_t GetWidth() override { return m_options.width; }
    std::int64_t GetHeight() override { return m_options.height; }
    std::int64_t GetRowBytes() override { return m_rowBytes; }
    std::uint32_t GetPixelFormat() override { return m_options.format; }
    std::uint32_t GetFlags() override { return m_options.flags; }
    HRESULT GetTimecode(std::uint32_t format, IKestrixTimecode** out) override;
    HRESULT GetAncillaryData(IKestrixVideoFrameAncillary** out) override;

    // IKestrixVideoInputFrame
    HRESULT GetStreamTime(std::int64_t* time, std::int64_t* duration, std::int64_t scale) override;
    HRESULT GetHardwareReferenceTimestamp(std::int64_t scale, std::int64_t* time,
                                          std::int64_t* duration) override;

    // IKestrixVideoBuffer
    HRESULT GetBytes(void** out) override;
    HRESULT StartAccess(std::uint32_t flags) override;
    HRESULT EndAccess(std::uint32_t flags) override;

    // IKestrixVideoFrameMetadata
    HRESULT GetInt(std::uint32_t id, std::int64_t* out) override;

    // IKestrixVideoFrame3DExtensions
    std::uint32_t Get3DPackingFormat() override;
    HRESULT GetFrameForRightEye(IKestrixVideoFrame** out) override;

    // IKestrixFrameProviderRegistry
    HRESULT Reserved1() override { return E_NOTIMPL; }
    HRESULT Reserved2() override { return E_NOTIMPL; }
    HRESULT RegisterInterfaceProvider(REFIID id, IUnknown* provider) override;

protected:
    explicit MemoryFrame(const MemoryFrameOptions& options);
    ~MemoryFrame() override;

private:
    std::atomic<int>* openAccessesWith(std::uint32_t flags);

    const MemoryFrameOptions m_options;
    const std::int64_t m_rowBytes;
    const Owned<IKestrixVideoFrame> m_rightEye;
    const FrameBytes m_ownBytes;
    std::uint8_t* const m_bytes;
    InterfaceProviders m_providers;
    std::atomic<std::uint32_t> m_references{1};
    std::atomic<int> m_openReads{0};
    std::atomic<int> m_openReadWrites{0};
};

} // namespace kestrix::host
