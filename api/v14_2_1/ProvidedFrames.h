/// The adapters that present a current frame as an old one. `create` attaches an adapter to the
/// frame, and after that a query on the frame returns the adapter.
///
/// `create` may be called on any thread. The first call for a frame attaches the adapter, and later
/// calls find it. No pointer may be null. After a success `out` has a reference to the frame; after
/// a failure it is null.
#pragma once

#include "api/v14_2_1/ProvidedInterface.h"

#include <cstdint>

/// A frame; the adapter is registered with its `IKestrixMutableVideoFrame`.
class CKestrixVideoFrame_v14_2_1 final
    : public CProvidedInterfaceBase<IKestrixVideoFrame, IKestrixVideoFrame_v14_2_1,
                                    CKestrixVideoFrame_v14_2_1> {
public:
    /// `E_UNEXPECTED` if the frame is not mutable, `E_OUTOFMEMORY` if allocation fails, or the
    /// status of a registration that fails.
    static HRESULT create(IKestrixVideoFrame* frame, IKestrixVideoFrame_v14_2_1** out);

    explicit CKestrixVideoFrame_v14_2_1(IKestrixVideoFrame* frame) : CProvidedInterfaceBase(frame)
    {
    }

    HRESULT QueryInterface(REFIID id, void** out) override;
};

/// A mutable frame. The adapter is also attached as a plain old frame. If such an adapter was
/// attached before, it is replaced and destroyed, whatever references exist to it. So callers
/// attach the adapter with more interfaces first.
class CKestrixMutableVideoFrame_v14_2_1 final
    : public CProvidedInterfaceBase<IKestrixMutableVideoFrame, IKestrixMutableVideoFrame_v14_2_1,
                                    CKestrixMutableVideoFrame_v14_2_1> {
public:
    /// Attaches for both interfaces or for none. `E_OUTOFMEMORY` if allocation fails, or the status
    /// of a registration that fails.
    static HRESULT create(IKestrixMutableVideoFrame* frame,
                          IKestrixMutableVideoFrame_v14_2_1** out);

    explicit CKestrixMutableVideoFrame_v14_2_1(IKestrixMutableVideoFrame* frame)
        : CProvidedInterfaceBase(frame)
    {
    }

    HRESULT QueryInterface(REFIID id, void** out) override;

    HRESULT SetFlags(std::uint32_t flags) override;
    HRESULT SetTimecode(std::uint32_t format, IKestrixTimecode* timecode) override;
    HRESULT SetTimecodeFromComponents(std::uint32_t format, std::uint8_t hours,
                                      std::uint8_t minutes, std::uint8_t seconds,
                                      std::uint8_t frames, std::uint32_t flags) override;
    HRESULT SetAncillaryData(IKestrixVideoFrameAncillary* ancillary) override;
    HRESULT SetTimecodeUserBits(std::uint32_t format, std::uint32_t userBits) override;
};

/// A captured frame; the adapter is registered with its `IKestrixFrameProviderRegistry`. The
/// adapter is also attached as a plain old frame and for the old 3D extensions, and replaces
/// earlier adapters as above. Each query makes new extensions.
///
/// If a frame has the registry but is no `IKestrixVideoInputFrame`, its adapter has no frame: it
/// counts no references, and its operations fail.
class CKestrixVideoInputFrame_v14_2_1 final
    : public CProvidedInterfaceBase<IKestrixVideoInputFrame, IKestrixVideoInputFrame_v14_2_1,
                                    CKestrixVideoInputFrame_v14_2_1> {
public:
    /// `E_FAIL` if the frame has no registry, `E_OUTOFMEMORY` if allocation fails, or the status of
    /// a registration that fails: the registrations before it stay.
    static HRESULT create(IKestrixVideoFrame* frame, IKestrixVideoInputFrame_v14_2_1** out);

    explicit CKestrixVideoInputFrame_v14_2_1(IKestrixVideoInputFrame* frame)
        : CProvidedInterfaceBase(frame)
    {
    }

    HRESULT QueryInterface(REFIID id, void** out) override;

    HRESULT GetStreamTime(std::int64_t* time, std::int64_t* duration, std::int64_t scale) override;
    HRESULT GetHardwareReferenceTimestamp(std::int64_t scale, std::int64_t* time,
                                          std::int64_t* duration) override;

private:
    HRESULT query3DExtensions(void** out);
};
