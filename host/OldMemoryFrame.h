/// A frame in memory for hosts of interface revision 14.2.1.
#pragma once

#include "api/KestrixPreviewAPI_v14_2_1.h"
#include "host/FrameBytes.h"
#include "host/Owned.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace kestrix::host {

/// The properties of an `OldMemoryFrame`. Only size and format are required.
struct OldMemoryFrameOptions {
    /// Pixels per line and lines, not negative.
    std::int64_t width = 0;
    std::int64_t height = 0;
    /// Any code; the 30 formats of the engine have a default row size.
    std::uint32_t format = 0;
    /// Bytes from one line to the next. If not given: the size of a line of the format.
    std::optional<std::int64_t> rowBytes{};
    /// `KestrixFrameFlags`.
    std::uint32_t flags = FrameFlagDefault;
    /// What `Get3DPackingFormat` returns. If not given: the frame has no 3D interface.
    std::optional<std::uint32_t> packing3D{};
    /// The frame that `GetFrameForRightEye` returns; the new frame adds a reference.
    IKestrixVideoFrame_v14_2_1* rightEye = nullptr;
};

/// A frame with zeroed bytes of its own. They are valid without an access.
///
/// Made by `create`, deleted by the last `Release`, on any thread.
class OldMemoryFrame : public IKestrixVideoFrame_v14_2_1,
                       public IKestrixVideoFrame3DExtensions_v14_2_1 {
public:
    /// Makes a frame with one reference. Throws `std::invalid_argument` for a negative size and for
    /// an unknown format without row bytes, `std::bad_alloc` if allocation fails.
    static Owned<OldMemoryFrame> create(const OldMemoryFrameOptions& options);

    OldMemoryFrame(const OldMemoryFrame&) = delete;
    OldMemoryFrame& operator=(const OldMemoryFrame&) = delete;

    /// The bytes, for the code that makes the frame.
    std::uint8_t* bytes() { return m_bytes.get(); }

    /// The number of references.
    std::uint32_t references() const { return m_references; }

    // IUnknown
    HRESULT QueryInterface(REFIID id, void** out) override;
    std::uint32_t AddRef() override { return ++m_references; }
    std::uint32_t Release() override;

    // IKestrixVideoFrame_v14_2_1
    std::int64_t GetWidth() override { return m_options.width; }
    std::int64_t GetHeight() override { return m_options.height; }
    std::int64_t GetRowBytes() override { return m_rowBytes; }
    std::uint32_t GetPixelFormat() override { return m_options.format; }
    std::uint32_t GetFlags() override { return m_options.flags; }
    HRESULT GetBytes(void** out) override;
    HRESULT GetTimecode(std::uint32_t format, IKestrixTimecode** out) override;
    HRESULT GetAncillaryData(IKestrixVideoFrameAncillary** out) override;

    // IKestrixVideoFrame3DExtensions_v14_2_1
    std::uint32_t Get3DPackingFormat() override { return m_options.packing3D.value_or(0); }
    HRESULT GetFrameForRightEye(IKestrixVideoFrame_v14_2_1** out) override;

protected:
    explicit OldMemoryFrame(const OldMemoryFrameOptions& options);
    ~OldMemoryFrame() override = default;

private:
    const OldMemoryFrameOptions m_options;
    const std::int64_t m_rowBytes;
    const Owned<IKestrixVideoFrame_v14_2_1> m_rightEye;
    const FrameBytes m_bytes;
    std::atomic<std::uint32_t> m_references{1};
};

} // namespace kestrix::host
