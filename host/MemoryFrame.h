/// A video frame in memory, for hosts that have no capture card to get one from.
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

/// What a `MemoryFrame` is made of. Only the size and the format have to be given.
struct MemoryFrameOptions {
    /// Pixels a line and lines, not negative.
    std::int64_t width = 0;
    std::int64_t height = 0;
    /// Any code; the 30 formats of the engine have a default row size.
    std::uint32_t format = 0;
    /// Bytes from one line to the next. Left out: what a line of the format takes.
    std::optional<std::int64_t> rowBytes{};
    /// `KestrixFrameFlags`.
    std::uint32_t flags = FrameFlagDefault;
    /// What `GetInt` answers for `MetadataColorspace`, a `KestrixColorspaceCode` or anything else.
    /// Left out: the frame has no metadata interface.
    std::optional<std::int64_t> colorspace{};
    /// The frame answers for `IID_IKestrixVideoInputFrame`, and has a registry of providers.
    bool captured = false;
    /// What `Get3DPackingFormat` answers, a `Kestrix3DPackingFormat` or anything else. Left out:
    /// the frame has no 3D interface.
    std::optional<std::uint32_t> packing3D{};
    /// The frame that `GetFrameForRightEye` gives; the new frame holds a reference.
    IKestrixVideoFrame* rightEye = nullptr;
    /// Bytes of the caller's, which must outlive the frame. Left out: the frame has its own, zeroed
    /// and 16-byte aligned.
    void* bytes = nullptr;
};

/// A frame whose bytes lie in memory. One object with all the interfaces that were asked for, so
/// that each of them leads to every other and `IUnknown` is the same pointer from all.
///
/// Made by `create`, ended by the last `Release`. Counts are atomic: references and accesses may be
/// taken and given back on any thread. As with a capture card's frame, `GetBytes` succeeds only
/// while an access is open, and an access closes with the flags that it was opened with.
class MemoryFrame : public IKestrixVideoInputFrame,
                    public IKestrixVideoBuffer,
                    public IKestrixVideoFrameMetadata,
                    public IKestrixVideoFrame3DExtensions,
                    public IKestrixFrameProviderRegistry {
public:
    /// Makes a frame with one reference. Throws `std::invalid_argument` for a negative size or a
    /// format with no default row size where none is given, `std::bad_alloc` where memory is short.
    static Owned<MemoryFrame> create(const MemoryFrameOptions& options);

    MemoryFrame(const MemoryFrame&) = delete;
    MemoryFrame& operator=(const MemoryFrame&) = delete;

    /// The bytes, for the side that made the frame: no access needed.
    std::uint8_t* bytes() { return m_bytes; }

    /// Bytes of all lines.
    std::size_t size() const { return static_cast<std::size_t>(m_rowBytes * m_options.height); }

    /// References held now.
    std::uint32_t references() const { return m_references; }

    /// Accesses open now.
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
