/// A frame in memory whose properties can be set.
#pragma once

#include "host/MemoryFrame.h"

#include <atomic>

namespace kestrix::host {

/// A `MemoryFrame` with the interface of frames that a host makes for playout. Its flags can be
/// set; it has no timecode or ancillary data. Providers of interfaces can be registered with it.
class MutableMemoryFrame : public MemoryFrame, public IKestrixMutableVideoFrame {
public:
    /// As `MemoryFrame::create`.
    static Owned<MutableMemoryFrame> create(const MemoryFrameOptions& options);

    // IUnknown and IKestrixVideoFrame, for both bases
    HRESULT QueryInterface(REFIID id, void** out) override;
    std::uint32_t AddRef() override { return MemoryFrame::AddRef(); }
    std::uint32_t Release() override { return MemoryFrame::Release(); }
    std::int64_t GetWidth() override { return MemoryFrame::GetWidth(); }
    std::int64_t GetHeight() override { return MemoryFrame::GetHeight(); }
    std::int64_t GetRowBytes() override { return MemoryFrame::GetRowBytes(); }
    std::uint32_t GetPixelFormat() override { return MemoryFrame::GetPixelFormat(); }
    std::uint32_t GetFlags() override { return m_flags; }
    HRESULT GetTimecode(std::uint32_t format, IKestrixTimecode** out) override
    {
        return MemoryFrame::GetTimecode(format, out);
    }
    HRESULT GetAncillaryData(IKestrixVideoFrameAncillary** out) override
    {
        return MemoryFrame::GetAncillaryData(out);
    }

    // IKestrixMutableVideoFrame
    HRESULT SetFlags(std::uint32_t flags) override;
    HRESULT SetTimecode(std::uint32_t format, IKestrixTimecode* timecode) override;
    HRESULT SetTimecodeFromComponents(std::uint32_t format, std::uint8_t hours,
                                      std::uint8_t minutes, std::uint8_t seconds,
                                      std::uint8_t frames, std::uint32_t flags) override;
    HRESULT SetAncillaryData(IKestrixVideoFrameAncillary* ancillary) override;
    HRESULT SetTimecodeUserBits(std::uint32_t format, std::uint32_t userBits) override;
    HRESULT RegisterInterfaceProvider(REFIID id, IUnknown* provider) override
    {
        return MemoryFrame::RegisterInterfaceProvider(id, provider);
    }

protected:
    explicit MutableMemoryFrame(const MemoryFrameOptions& options)
        : MemoryFrame(options),
          m_flags(options.flags)
    {
    }
    ~MutableMemoryFrame() override = default;

private:
    std::atomic<std::uint32_t> m_flags;
};

} // namespace kestrix::host
