/// \file
/// Interfaces, codes and factories of libKestrixPreviewAPI, interface revision 0002.
///
/// The library paints video frames into an OpenGL context that the host owns. A host picks one of
/// two helpers, both an `IKestrixGLScreenPreviewHelper`:
///
/// - `CreateOpenGL3ScreenPreviewHelper_0002`: for a context of OpenGL 3.2 or later, core or
///   compatibility. Frames are uploaded as they are and unpacked by a fragment shader.
/// - `CreateOpenGLScreenPreviewHelper_0002`: for a legacy context. Frames are converted to 8-bit
///   RGBA on the thread that calls `SetFrame` and drawn by the fixed pipeline.
///
/// Set-up of a host:
///
///     IKestrixGLScreenPreviewHelper* helper = CreateOpenGL3ScreenPreviewHelper_0002();
///     // On the GL thread, the context current:
///     helper->InitializeGL();
///     // For every frame, on any thread (CGL3ScreenPreview):
///     helper->SetFrame(frame);
///     // Whenever the view is drawn, on the GL thread, the viewport set by the host:
///     helper->PaintGL();
///     // At the end, on the GL thread, the context still current:
///     helper->Release();
///
/// Rules that hold for every interface here:
///
/// - Ownership is by reference count. What a factory or an out-argument gives carries one reference
///   that the receiver releases. An in-argument carries none: a callee that keeps it calls
///   `AddRef`. Counts are atomic, so `AddRef` and `Release` may come from any thread.
/// - Results are status codes: `S_OK` is 0, every failure is negative. No exception leaves an
///   operation.
/// - The order of the operations, and the place of the destructor after or between them, is the
///   binary interface. Never reorder; objects on either side are reached by position in the table.
/// - Ids are passed by value and compared byte by byte.
/// - Sizes are in pixels, lines and bytes as named. Rows run from the top of the picture unless
///   `FrameFlagFlipVertical` is set.
///
/// The header stands alone and compiles as C++11 and later.
#ifndef KESTRIX_PREVIEW_API_H
#define KESTRIX_PREVIEW_API_H

#include <cstdint>
#include <cstring>

#if defined(__GNUC__)
/// What the factories are marked with.
#define KESTRIX_EXPORT __attribute__((visibility("default")))
#else
#define KESTRIX_EXPORT
#endif

// --- Ids and status codes ------------------------------------------------------------------------

/// The id of an interface: 16 bytes, passed by value.
struct REFIID {
    std::uint8_t bytes[16]; ///< as they are written, from the first to the last
};

/// Whether all bytes are equal.
inline bool operator==(const REFIID& a, const REFIID& b)
{
    return std::memcmp(a.bytes, b.bytes, sizeof(a.bytes)) == 0;
}

/// Whether any byte differs.
inline bool operator!=(const REFIID& a, const REFIID& b)
{
    return !(a == b);
}

/// A status: `S_OK` or a negative code.
using HRESULT = std::int32_t;

/// Success. Tell it from failure by `status >= 0`.
static const HRESULT S_OK = 0;

/// The GL context's version is too low for the helper.
static const HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80000001u);

/// An allocation failed. Of the fixed-function helper also: it has no free slot for a frame, or the
/// frame's 3D packing is not one that it shows.
static const HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x80000002u);

/// A null out-argument, or a frame for which no conversion exists.
static const HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80000003u);

/// The object does not have the interface that was asked for.
static const HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80000004u);

/// A null out-argument of `QueryInterface` or `GetBytes`.
static const HRESULT E_POINTER = static_cast<HRESULT>(0x80000005u);

/// A GL entry point is missing, a shader could not be built, `PaintGL` came before `InitializeGL`,
/// or an object has no bytes to give.
static const HRESULT E_FAIL = static_cast<HRESULT>(0x80000008u);

/// A frame lacks an interface that it has to have.
static const HRESULT E_UNEXPECTED = static_cast<HRESULT>(0x8000FFFFu);

/// \name Ids of the interfaces
/// @{

// clang-format off
/// The id of the interface of that name. A frame and the library have to agree on it.
static const REFIID IID_IUnknown = {{
    0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
static const REFIID IID_IKestrixVideoFrame = {{
    0xa1, 0x70, 0x65, 0xf5, 0x52, 0xc2, 0x4a, 0xcf, 0x80, 0xef, 0x8f, 0xa9, 0x46, 0x01, 0x00, 0x4b}};
static const REFIID IID_IKestrixVideoBuffer = {{
    0x17, 0x77, 0x8e, 0x83, 0x5e, 0xfe, 0x4e, 0xdf, 0xa3, 0x0a, 0x66, 0x68, 0xb3, 0x0c, 0x97, 0x67}};
static const REFIID IID_IKestrixVideoFrame3DExtensions = {{
    0x9c, 0x32, 0xc3, 0x68, 0x5b, 0x40, 0x4d, 0x62, 0xbc, 0x40, 0xeb, 0x50, 0x1d, 0x16, 0x8c, 0x71}};
static const REFIID IID_IKestrixGLScreenPreviewHelper = {{
    0xdb, 0x11, 0xc7, 0x0f, 0x66, 0x14, 0x4c, 0x89, 0xb4, 0xba, 0xd2, 0xf1, 0xbc, 0x79, 0xeb, 0x13}};
static const REFIID IID_IKestrixVideoFrameMetadata = {{
    0x9a, 0xea, 0x63, 0xb0, 0x5b, 0x1f, 0x4b, 0xd0, 0xa7, 0x2a, 0x7d, 0x44, 0x3c, 0x0c, 0x6b, 0xd1}};
static const REFIID IID_IKestrixVideoInputFrame = {{
    0xb3, 0xa1, 0xc0, 0x53, 0xbf, 0x9b, 0x43, 0xa5, 0x92, 0xa1, 0x36, 0x49, 0x52, 0x2c, 0x8b, 0x41}};
static const REFIID IID_IKestrixMutableVideoFrame = {{
    0x1d, 0xbf, 0x01, 0x2c, 0x3b, 0x5a, 0x44, 0xd5, 0xa6, 0x09, 0x5a, 0xf6, 0x3e, 0xea, 0x61, 0x0b}};
static const REFIID IID_IKestrixFrameProviderRegistry = {{
    0x7f, 0xd8, 0xa3, 0x7a, 0xfe, 0x46, 0x42, 0x3a, 0xb0, 0x53, 0xf9, 0x07, 0xe2, 0xd9, 0x3c, 0x29}};
// clang-format on

/// @}

// --- Flags and codes -----------------------------------------------------------------------------

/// Answer bits of `IKestrixVideoFrame::GetFlags`. The library ignores all others.
enum KestrixFrameFlags : std::uint32_t {
    FrameFlagDefault = 0,
    /// The lines are stored from the bottom of the picture upwards.
    FrameFlagFlipVertical = 1u << 0,
};

/// What `StartAccess` and `EndAccess` take, both calls of a pair the same.
enum KestrixBufferAccessFlags : std::uint32_t {
    BufferAccessRead = 1,
    BufferAccessReadWrite = 3,
};

/// Metadata ids for `IKestrixVideoFrameMetadata::GetInt`.
enum KestrixMetadataID : std::uint32_t {
    /// The frame's colourspace, a `KestrixColorspaceCode`.
    MetadataColorspace = 0x63737063, // "cspc"
};

/// Values of `MetadataColorspace`. For any other the fixed-function helper refuses the frame, and
/// the OpenGL 3 helper goes by its size.
enum KestrixColorspaceCode : std::uint32_t {
    ColorspaceCodeRec601 = 0x72363031,  // "r601", ITU-R BT.601-7
    ColorspaceCodeRec709 = 0x72373039,  // "r709", ITU-R BT.709-6
    ColorspaceCodeRec2020 = 0x32303230, // "2020", ITU-R BT.2020-2
};

/// Answers of `IKestrixVideoFrame3DExtensions::Get3DPackingFormat` that the library knows.
enum Kestrix3DPackingFormat : std::uint32_t {
    /// The frame is the left eye, and `GetFrameForRightEye` has the right one.
    Packing3DLeftOnly = 0x6c656674, // "left"
};

/// What `Set3DPreviewFormat` takes.
enum Kestrix3DPreviewFormat : std::uint32_t {
    Preview3DDefault = 0x64656661,    // "defa": as Preview3DTopBottom
    Preview3DLeftOnly = 0x6c656674,   // "left"
    Preview3DRightOnly = 0x72696768,  // "righ"
    Preview3DSideBySide = 0x73696465, // "side"
    Preview3DTopBottom = 0x746f7062,  // "topb"
};

// --- Interfaces ----------------------------------------------------------------------------------

class IKestrixTimecode;
class IKestrixVideoFrameAncillary;

/// The base of every interface.
class IUnknown {
public:
    /// Stores the object's interface `id` in `out`, with a reference, and answers `S_OK`; or stores
    /// null and answers `E_NOINTERFACE`.
    virtual HRESULT QueryInterface(REFIID id, void** out) = 0;

    /// Adds a reference; answers the new count, which is good for tests only.
    virtual std::uint32_t AddRef() = 0;

    /// Gives a reference back; answers the new count. With the last one the object ends.
    virtual std::uint32_t Release() = 0;
};

/// A frame. Its bytes are reached by querying it for `IKestrixVideoBuffer`.
class IKestrixVideoFrame : public IUnknown {
public:
    /// Pixels a line.
    virtual std::int64_t GetWidth() = 0;
    /// Lines.
    virtual std::int64_t GetHeight() = 0;
    /// Bytes from one line to the next, at least those of its pixels. The OpenGL 3 helper counts in
    /// words: a multiple of 4.
    virtual std::int64_t GetRowBytes() = 0;
    /// The layout of the bytes: a FourCC with its first character in the top byte, or 32 for 8-bit
    /// ARGB; docs/formats.md of the sources has them byte by byte. Both helpers paint "2vuy",
    /// "v210", "Ay10", 32, "vRGB", "BGRA", "BGRv", "r210", "R10l", "R10L", "R10b", "R10B", "R12B",
    /// "R12L" and "R12l"; the fixed-function helper also "RGBA", "RGB3", "R210" and "R10A".
    virtual std::uint32_t GetPixelFormat() = 0;
    /// `KestrixFrameFlags`.
    virtual std::uint32_t GetFlags() = 0;
    /// Not called by the library.
    virtual HRESULT GetTimecode(std::uint32_t format, IKestrixTimecode** out) = 0;
    /// Not called by the library.
    virtual HRESULT GetAncillaryData(IKestrixVideoFrameAncillary** out) = 0;

protected:
    virtual ~IKestrixVideoFrame() = default;
};

/// The memory of a frame. Bytes are valid between `StartAccess` and the matching `EndAccess`.
class IKestrixVideoBuffer : public IUnknown {
public:
    /// Stores the address of the top-left pixel of the first line in memory. No reference is given.
    /// All lines can be read, of `GetRowBytes` bytes each, and 64 bytes past the last.
    virtual HRESULT GetBytes(void** out) = 0;
    /// Opens an access; `flags` is a `KestrixBufferAccessFlags`. Accesses may nest and overlap.
    virtual HRESULT StartAccess(std::uint32_t flags) = 0;
    /// Closes an access that was opened with the same `flags`.
    virtual HRESULT EndAccess(std::uint32_t flags) = 0;

protected:
    virtual ~IKestrixVideoBuffer() = default;
};

/// Present on a frame that belongs to a stereoscopic pair.
class IKestrixVideoFrame3DExtensions : public IUnknown {
public:
    /// How the two eyes lie in the frame: a `Kestrix3DPackingFormat` or any other code.
    virtual std::uint32_t Get3DPackingFormat() = 0;
    /// Stores the right eye's frame, with a reference; it must have the size, the row bytes, the
    /// format and the colourspace of the left one, or it may be left out of the picture.
    /// `E_INVALIDARG` for a null `out`.
    virtual HRESULT GetFrameForRightEye(IKestrixVideoFrame** out) = 0;

protected:
    virtual ~IKestrixVideoFrame3DExtensions() = default;
};

/// Paints frames into the current OpenGL context. Implemented by the library; made by the factories
/// at the end of this file, which tell what the two implementations need of a context.
///
/// Threads. `InitializeGL`, `PaintGL` and the last `Release` belong to the GL thread, with the same
/// context (or one that shares its objects) current. `SetFrame` and `Set3DPreviewFormat` of the
/// OpenGL 3 helper may come from any thread at any time, and wait while `InitializeGL` builds the
/// shaders; those of the fixed-function helper must not run at the same time as any other call on
/// the helper. `SetFrame` calls the frames' `AddRef` and `Release` under the helper's lock: these
/// must not call the helper, nor wait for a lock under which the host calls it.
///
/// GL state. Viewport, scissor, blending, depth, masks and the framebuffer binding are never
/// touched: the quad fills the viewport that the host has set, in the framebuffer that it has
/// bound. A host that draws by itself has to expect the following state changed.
///
/// - OpenGL 3 helper: program 0, vertex array 0, `GL_ARRAY_BUFFER` 0, the 2D and 3D bindings of
///   texture unit 0 and the 3D binding of unit 1 zero, unit 0 active. `GL_UNPACK_ROW_LENGTH` is
///   restored. `InitializeGL`, and the first paint after a null frame, clear the colour buffer and
///   set the clear colour to (0, 0, 0, 0). `InitializeGL` leaves its own vertex array bound.
/// - Fixed-function helper, whose unit 0 must be active: `GL_TEXTURE_2D` disabled, its binding 0,
///   the current texture coordinate (0, 0, 0, 1); the current colour black where there was no
///   frame. `GL_TEXTURE_ENV_MODE` is restored. Matrices must be the identity.
/// - Both: pixel unpack parameters must have their initial values when a helper is called, and
///   `GL_PIXEL_UNPACK_BUFFER` must be 0.
///
/// docs/embedding.md has it call by call.
class IKestrixGLScreenPreviewHelper : public IUnknown {
public:
    /// Makes the helper's GL objects in the current context. May be called again, say in a new
    /// context: what was made before is deleted by its names in the context that is current then.
    /// The fixed-function helper goes on with its picture; the other one is black until the next
    /// frame.
    /// `E_FAIL` where a GL entry point is missing or a shader does not build, `E_NOTIMPL` where the
    /// context is older than OpenGL 3.2; the fixed-function helper always answers `S_OK`.
    virtual HRESULT InitializeGL() = 0;

    /// Paints the newest frame, or the one before again if there is no newer. `E_FAIL` from the
    /// OpenGL 3 helper before a first successful `InitializeGL`.
    virtual HRESULT PaintGL() = 0;

    /// Hands over the frame to show next; null shows black, at the next paint (the OpenGL 3 helper
    /// clears to transparent black, and goes back to the frame before if painted again).
    ///
    /// OpenGL 3 helper: keeps a reference until the frame has been painted or replaced, always
    /// `S_OK`. Fixed-function helper: converts at once and keeps no reference; `E_INVALIDARG` for a
    /// frame that it can't convert or whose row bytes don't hold a line, `E_OUTOFMEMORY` where
    /// there is no memory or the 3D packing is not `Packing3DLeftOnly`. After a failure the picture
    /// before stays.
    virtual HRESULT SetFrame(IKestrixVideoFrame* frame) = 0;

    /// Chooses how stereoscopic frames are shown, a `Kestrix3DPreviewFormat`; from the next frame
    /// on. Always `S_OK`.
    virtual HRESULT Set3DPreviewFormat(std::uint32_t format) = 0;

protected:
    virtual ~IKestrixGLScreenPreviewHelper() = default;
};

/// What is known of a frame beside its pixels. Reached from a frame. One without it counts as
/// Rec. 601 where it is 720 pixels wide (fixed-function helper), or 720 x 480, 486 or 576 (OpenGL 3
/// helper), and as Rec. 709 otherwise.
///
/// Only the first operation is part of this revision; an object's table may go on after it.
class IKestrixVideoFrameMetadata : public IUnknown {
public:
    /// Stores the value of `id`, a `KestrixMetadataID`. A negative status where there is none.
    virtual HRESULT GetInt(std::uint32_t id, std::int64_t* out) = 0;
};

/// A captured frame. The current revision uses it as a mark only: the fixed-function helper takes
/// 8-bit RGB of a frame that answers for this id as studio range, 16 to 235.
class IKestrixVideoInputFrame : public IKestrixVideoFrame {
public:
    /// Not called by the library.
    virtual HRESULT GetStreamTime(std::int64_t* time, std::int64_t* duration,
                                  std::int64_t scale) = 0;
    /// Not called by the library.
    virtual HRESULT GetHardwareReferenceTimestamp(std::int64_t scale, std::int64_t* time,
                                                  std::int64_t* duration) = 0;

protected:
    ~IKestrixVideoInputFrame() override = default;
};

/// A frame whose properties can be set, and to which interfaces can be added.
class IKestrixMutableVideoFrame : public IKestrixVideoFrame {
public:
    /// Sets what `GetFlags` answers. This and the next four are not called by the library, but by
    /// the adapter that hands the frame to a host of revision 14.2.1.
    virtual HRESULT SetFlags(std::uint32_t flags) = 0;
    /// Sets the timecode of a format to an object, of which the frame takes a reference.
    virtual HRESULT SetTimecode(std::uint32_t format, IKestrixTimecode* timecode) = 0;
    /// Sets the timecode of a format to a time of day and a frame number.
    virtual HRESULT SetTimecodeFromComponents(std::uint32_t format, std::uint8_t hours,
                                              std::uint8_t minutes, std::uint8_t seconds,
                                              std::uint8_t frames, std::uint32_t flags) = 0;
    /// Sets what `GetAncillaryData` answers.
    virtual HRESULT SetAncillaryData(IKestrixVideoFrameAncillary* ancillary) = 0;
    /// Sets the 32 user bits of a format's timecode.
    virtual HRESULT SetTimecodeUserBits(std::uint32_t format, std::uint32_t userBits) = 0;
    /// From now on `QueryInterface` for `id` on this frame is answered by `provider`, to which the
    /// frame holds a reference. A null provider takes the registration back.
    virtual HRESULT RegisterInterfaceProvider(REFIID id, IUnknown* provider) = 0;

protected:
    ~IKestrixMutableVideoFrame() override = default;
};

/// Where interfaces are added to a captured frame, which is not an `IKestrixMutableVideoFrame`.
class IKestrixFrameProviderRegistry : public IUnknown {
public:
    /// The first two operations belong to the side that owns the frames; the library never calls
    /// them.
    virtual HRESULT Reserved1() = 0;
    /// See `Reserved1`.
    virtual HRESULT Reserved2() = 0;
    /// As `IKestrixMutableVideoFrame::RegisterInterfaceProvider`.
    virtual HRESULT RegisterInterfaceProvider(REFIID id, IUnknown* provider) = 0;
};

// --- Factories -----------------------------------------------------------------------------------

extern "C" {

/// Makes a helper for a legacy context, OpenGL 1.2 or later with the fixed pipeline (a
/// compatibility profile will do). Two frame slots are kept in memory, at half of a frame's lines
/// or less.
///
/// Gives a reference that the caller owns, or null where memory is short. Touches no GL and may be
/// called on any thread.
KESTRIX_EXPORT IKestrixGLScreenPreviewHelper* CreateOpenGLScreenPreviewHelper_0002();

/// Makes a helper for a context of OpenGL 3.2 or later. The first call in a process also makes the
/// colour tables, 8.6 MB that stay until the library is unloaded.
///
/// Gives a reference that the caller owns, or null where memory is short. Touches no GL and may be
/// called on any thread.
KESTRIX_EXPORT IKestrixGLScreenPreviewHelper* CreateOpenGL3ScreenPreviewHelper_0002();
}

/// The type of both factories, for hosts that look them up with `dlsym`.
using CreateScreenPreviewHelperFunction = IKestrixGLScreenPreviewHelper* (*)();

#endif // KESTRIX_PREVIEW_API_H
