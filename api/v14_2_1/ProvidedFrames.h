/// The adapters that make a current frame an old one: attached to the frame by `create`, and found
/// by a query from then on.
///
/// `create` may be called from any thread. Of several calls for one frame, the first attaches and
/// the others find. No pointer may be null; `out` is null after a failure and has a reference to
/// the frame else.
#pragma once

#include "api/v14_2_1/ProvidedInterface.h"

#include <cstdint>

/// A frame that takes registrations by its `IKestrixMutableVideoFrame`.
class CKestrixVideoFrame_v14_2_1 final
    : public CProvidedInterfaceBase<IKestrixVideoFrame, IKestrixVideoFrame_v14_2_1,
                                    CKestrixVideoFrame_v14_2_1> {
public:
    /// `E_UNEXPECTED` where the frame is not mutable, `E_OUTOFMEMORY` where memory is short, what
    /// the registration answers where that fails.
    static HRESULT create(IKestrixVideoFrame* frame, IKestrixVideoFrame_v14_2_1** out);

    explicit CKestrixVideoFrame_v14_2_1(IKestrixVideoFrame* frame) : CProvidedInterfaceBase(frame)
    {
    }

    HRESULT QueryInterface(REFIID id, void** out) override;
};

/// A mutable frame: attached as a plain old frame as well, in the place of one that was before.
/// That one ends, whatever references were taken to it, so callers attach the richer adapter first.
class CKestrixMutableVideoFrame_v14_2_1 final
    : public CProvidedInterfaceBase<IKestrixMutableVideoFrame, IKestrixMutableVideoFrame_v14_2_1,
                                    CKestrixMutableVideoFrame_v14_2_1> {
public:
    /// Attaches for both interfaces or for none. `E_OUTOFMEMORY` where memory is short, what the
    /// registration answers where that fails.
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

/// A captured frame, which takes registrations by its `IKestrixFrameProviderRegistry`: attached as
/// a plain old frame and for the old 3D extensions as well, in the place of those that were before,
/// with the same consequence. Extensions are made for every query.
///
/// A frame with the registry that is no `IKestrixVideoInputFrame` gets an adapter that has nothing
/// to give: it counts no references, and what is asked of it fails.
class CKestrixVideoInputFrame_v14_2_1 final
    : public CProvidedInterfaceBase<IKestrixVideoInputFrame, IKestrixVideoInputFrame_v14_2_1,
                                    CKestrixVideoInputFrame_v14_2_1> {
public:
    /// `E_FAIL` where the frame has no registry, `E_OUTOFMEMORY` where memory is short, what the
    /// registration answers where that fails: those made before it stay.
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
