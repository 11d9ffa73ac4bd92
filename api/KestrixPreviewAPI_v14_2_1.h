/// Interfaces and factories of libKestrixPreviewAPI for hosts of revision 14.2.1.
///
/// Such a host includes only this header, and works without a rebuild. The helper that it gets
/// wraps a helper of the current revision, and wraps the host's frames before it passes them on.
/// For the host nothing changes.
///
/// The revision differs from the current one in how a host reaches a frame's memory: `GetBytes` is
/// an operation of the frame itself, the bytes are valid as long as the frame, and there is no
/// buffer interface and no access to open. All else is as in KestrixPreviewAPI.h: the rules for
/// ownership, status codes, table order and threads, the statuses, the codes, `IUnknown`, and what
/// each operation does.
///
/// The header compiles as C++11 and later.
#ifndef KESTRIX_PREVIEW_API_V14_2_1_H
#define KESTRIX_PREVIEW_API_V14_2_1_H

#include "KestrixPreviewAPI.h"

#include <cstdint>

#ifdef KESTRIX_NAMESPACE
namespace KESTRIX_NAMESPACE {
#endif

// clang-format off
static const REFIID IID_IKestrixVideoFrame_v14_2_1 = {{
    0x49, 0x3d, 0xf1, 0x4e, 0x36, 0x51, 0x41, 0xf1, 0x89, 0x26, 0x1a, 0xa1, 0x9b, 0x48, 0x50, 0x75}};
static const REFIID IID_IKestrixMutableVideoFrame_v14_2_1 = {{
    0xc4, 0x09, 0x19, 0xed, 0x79, 0xb2, 0x42, 0x4c, 0x9f, 0x27, 0xc8, 0x71, 0xc6, 0x4b, 0xf0, 0xbf}};
static const REFIID IID_IKestrixVideoInputFrame_v14_2_1 = {{
    0xab, 0xde, 0x26, 0x33, 0x08, 0x24, 0x45, 0xbf, 0xaf, 0x70, 0x03, 0xf6, 0x11, 0xeb, 0xd8, 0xae}};
static const REFIID IID_IKestrixVideoFrame3DExtensions_v14_2_1 = {{
    0x22, 0xed, 0x22, 0xbd, 0x8e, 0xca, 0x45, 0x52, 0x9b, 0x68, 0x04, 0x89, 0xea, 0x14, 0x9a, 0x26}};
static const REFIID IID_IKestrixGLScreenPreviewHelper_v14_2_1 = {{
    0x3a, 0x69, 0x65, 0xbb, 0xb5, 0x1f, 0x4b, 0x98, 0xa4, 0xd9, 0x17, 0xe3, 0xf1, 0x31, 0xd0, 0xd2}};
// clang-format on

// --- The probe -----------------------------------------------------------------------------------

/// Before the library wraps an old frame, it tests whether the object is a current frame too: it
/// queries for `IUnknown` with an out-argument that points to this value.
static const std::uintptr_t ProbeSentinel = 0xBEEF;

/// The status that a current frame returns if it knows the probe. The frame leaves the value
/// unchanged and adds no reference. The library then queries it for `IKestrixVideoFrame`, and uses
/// the result.
static const HRESULT ProbeReply = 0x0FEE1BAD;

// --- Interfaces ----------------------------------------------------------------------------------

/// A frame with its memory.
class IKestrixVideoFrame_v14_2_1 : public IUnknown {
public:
    virtual std::int64_t GetWidth() = 0;
    virtual std::int64_t GetHeight() = 0;
    virtual std::int64_t GetRowBytes() = 0;
    virtual std::uint32_t GetPixelFormat() = 0;
    virtual std::uint32_t GetFlags() = 0;
    /// Stores the address of the first pixel of the first line in memory, which is valid as long as
    /// the frame. Returns `E_POINTER` for a null `out`.
    virtual HRESULT GetBytes(void** out) = 0;
    virtual HRESULT GetTimecode(std::uint32_t format, IKestrixTimecode** out) = 0;
    virtual HRESULT GetAncillaryData(IKestrixVideoFrameAncillary** out) = 0;

protected:
    virtual ~IKestrixVideoFrame_v14_2_1() = default;
};

/// A frame whose properties can be changed.
class IKestrixMutableVideoFrame_v14_2_1 : public IKestrixVideoFrame_v14_2_1 {
public:
    virtual HRESULT SetFlags(std::uint32_t flags) = 0;
    virtual HRESULT SetTimecode(std::uint32_t format, IKestrixTimecode* timecode) = 0;
    virtual HRESULT SetTimecodeFromComponents(std::uint32_t format, std::uint8_t hours,
                                              std::uint8_t minutes, std::uint8_t seconds,
                                              std::uint8_t frames, std::uint32_t flags) = 0;
    virtual HRESULT SetAncillaryData(IKestrixVideoFrameAncillary* ancillary) = 0;
    virtual HRESULT SetTimecodeUserBits(std::uint32_t format, std::uint32_t userBits) = 0;

protected:
    ~IKestrixMutableVideoFrame_v14_2_1() override = default;
};

/// A captured frame.
class IKestrixVideoInputFrame_v14_2_1 : public IKestrixVideoFrame_v14_2_1 {
public:
    virtual HRESULT GetStreamTime(std::int64_t* time, std::int64_t* duration,
                                  std::int64_t scale) = 0;
    virtual HRESULT GetHardwareReferenceTimestamp(std::int64_t scale, std::int64_t* time,
                                                  std::int64_t* duration) = 0;

protected:
    ~IKestrixVideoInputFrame_v14_2_1() override = default;
};

/// An interface of frames that belong to a stereoscopic pair.
class IKestrixVideoFrame3DExtensions_v14_2_1 : public IUnknown {
public:
    virtual std::uint32_t Get3DPackingFormat() = 0;
    /// Stores the frame of the right eye, with a reference. Returns `E_INVALIDARG` for a null
    /// `out`.
    virtual HRESULT GetFrameForRightEye(IKestrixVideoFrame_v14_2_1** out) = 0;

protected:
    virtual ~IKestrixVideoFrame3DExtensions_v14_2_1() = default;
};

/// Paints frames into the current OpenGL context. The rules of `IKestrixGLScreenPreviewHelper`
/// apply. A query for that interface on the library's helper succeeds too.
class IKestrixGLScreenPreviewHelper_v14_2_1 : public IUnknown {
public:
    virtual HRESULT InitializeGL() = 0;
    virtual HRESULT PaintGL() = 0;
    /// Sets the frame that the next paint shows; null shows black. If allocation of the wrapper
    /// fails, the frame counts as null.
    virtual HRESULT SetFrame(IKestrixVideoFrame_v14_2_1* frame) = 0;
    virtual HRESULT Set3DPreviewFormat(std::uint32_t format) = 0;

protected:
    virtual ~IKestrixGLScreenPreviewHelper_v14_2_1() = default;
};

// --- Factories -----------------------------------------------------------------------------------

extern "C" {

/// Makes a helper for a legacy context, as `CreateOpenGLScreenPreviewHelper_0002` does.
KESTRIX_EXPORT IKestrixGLScreenPreviewHelper_v14_2_1* CreateOpenGLScreenPreviewHelper_0001();

/// Makes a helper for a context of OpenGL 3.2 or later, as `CreateOpenGL3ScreenPreviewHelper_0002`
/// does.
KESTRIX_EXPORT IKestrixGLScreenPreviewHelper_v14_2_1* CreateOpenGL3ScreenPreviewHelper_0001();
}

/// The type of both factories, for hosts that look them up with `dlsym`.
using CreateScreenPreviewHelperFunction_v14_2_1 = IKestrixGLScreenPreviewHelper_v14_2_1* (*)();

#ifdef KESTRIX_NAMESPACE
} // namespace KESTRIX_NAMESPACE
#endif

#endif // KESTRIX_PREVIEW_API_V14_2_1_H
