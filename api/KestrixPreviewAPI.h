/// \file
/// Interfaces, codes and factories of libKestrixPreviewAPI, interface revision 0002.
///
/// The library paints video frames into an OpenGL context that the host owns. A host chooses one of
/// two helpers, both an `IKestrixGLScreenPreviewHelper`:
///
/// - `CreateOpenGL3ScreenPreviewHelper_0002`: for a context of OpenGL 3.2 or later, core or
///   compatibility. The helper uploads frames as they are, and a fragment shader unpacks them.
/// - `CreateOpenGLScreenPreviewHelper_0002`: for a legacy context. The helper converts frames to
///   8-bit RGBA on the thread that calls `SetFrame`, and draws them with the fixed pipeline.
///
/// How a host uses a helper:
///
///     IKestrixGLScreenPreviewHelper* helper = CreateOpenGL3ScreenPreviewHelper_0002();
///     // On the GL thread, the context current:
///     helper->InitializeGL();
///     // For every frame, on any thread (OpenGL 3 helper):
///     helper->SetFrame(frame);
///     // Whenever the view is drawn, on the GL thread, after the host has set the viewport:
///     helper->PaintGL();
///     // At the end, on the GL thread, the context still current:
///     helper->Release();
///
/// Rules for every interface here:
///
/// - Ownership is by reference count. A pointer from a factory or an out-argument comes with one
///   reference, which the receiver releases. An in-argument comes without a reference: a callee
///   that keeps it calls `AddRef`. Counts are atomic, so `AddRef` and `Release` may be called on
///   any thread.
/// - Results are status codes: `S_OK` is 0, every failure is negative. No exception leaves an
///   operation.
/// - The order of the operations, and the position of the destructor after or between them, is the
///   binary interface. Never reorder them: callers reach the operations of an object by their
///   position in its table of functions.
/// - Ids are passed by value and compared byte by byte.
/// - Sizes are in pixels, lines and bytes as named. Lines run from the top of the picture unless
///   `FrameFlagFlipVertical` is set.
///
/// Another SDK in the same source file may have macros of the names of the status codes: the header
/// neither uses nor changes them. Compare with the codes of `KestrixStatus` there. If the other SDK
/// has types of the same names, such as its own `IUnknown`, define `KESTRIX_NAMESPACE` as the name
/// of a namespace before the first header of this library, in every file of the program that
/// includes them: all names except the macros are then in that namespace. The binary interface is
/// the same.
///
/// The header needs no other header of the library and compiles as C++11 and later.
#ifndef KESTRIX_PREVIEW_API_H
#define KESTRIX_PREVIEW_API_H

#include <cstdint>
#include <cstring>

/// The version of the library that this header belongs to: major, minor and patch number, and text.
/// The major number is that of the shared object's name.
#define KESTRIX_PREVIEW_API_VERSION_MAJOR 1
#define KESTRIX_PREVIEW_API_VERSION_MINOR 0        ///< new functions
#define KESTRIX_PREVIEW_API_VERSION_PATCH 0        ///< repairs only
#define KESTRIX_PREVIEW_API_VERSION_STRING "1.0.0" ///< all three

#if defined(__GNUC__)
/// Makes a factory visible outside the shared library.
#define KESTRIX_EXPORT __attribute__((visibility("default")))
#else
#define KESTRIX_EXPORT
#endif

#ifdef KESTRIX_NAMESPACE
namespace KESTRIX_NAMESPACE {
#endif

// --- Ids and status codes ------------------------------------------------------------------------

/// The id of an interface: 16 bytes, passed by value.
struct REFIID {
    std::uint8_t bytes[16]; ///< in the order in which an id is written
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

/// The status codes by names that other SDKs do not have. The constants below are the same codes.
enum KestrixStatus : HRESULT {
    KestrixStatusOK = 0,
    KestrixStatusNotImplemented = static_cast<HRESULT>(0x80000001u),
    KestrixStatusOutOfMemory = static_cast<HRESULT>(0x80000002u),
    KestrixStatusInvalidArgument = static_cast<HRESULT>(0x80000003u),
    KestrixStatusNoInterface = static_cast<HRESULT>(0x80000004u),
    KestrixStatusNullPointer = static_cast<HRESULT>(0x80000005u),
    KestrixStatusFailed = static_cast<HRESULT>(0x80000008u),
    KestrixStatusUnexpected = static_cast<HRESULT>(0x8000FFFFu),
};

// Macros of other SDKs with these names would replace the constants in their own declarations.
// clang-format off
#pragma push_macro("S_OK")
#pragma push_macro("E_NOTIMPL")
#pragma push_macro("E_OUTOFMEMORY")
#pragma push_macro("E_INVALIDARG")
#pragma push_macro("E_NOINTERFACE")
#pragma push_macro("E_POINTER")
#pragma push_macro("E_FAIL")
#pragma push_macro("E_UNEXPECTED")
#undef S_OK
#undef E_NOTIMPL
#undef E_OUTOFMEMORY
#undef E_INVALIDARG
#undef E_NOINTERFACE
#undef E_POINTER
#undef E_FAIL
#undef E_UNEXPECTED
// clang-format on

/// Success. Test for it with `status >= 0`.
static const HRESULT S_OK = KestrixStatusOK;

/// The version of the GL context is too low for the helper.
static const HRESULT E_NOTIMPL = KestrixStatusNotImplemented;

/// An allocation failed. The fixed-function helper also returns it if it has no free slot for a
/// frame, or if it does not show frames of this 3D packing.
static const HRESULT E_OUTOFMEMORY = KestrixStatusOutOfMemory;

/// A null out-argument, or a frame that cannot be converted.
static const HRESULT E_INVALIDARG = KestrixStatusInvalidArgument;

/// The object does not have the requested interface.
static const HRESULT E_NOINTERFACE = KestrixStatusNoInterface;

/// A null out-argument of `QueryInterface` or `GetBytes`.
static const HRESULT E_POINTER = KestrixStatusNullPointer;

/// A GL entry point is missing, a shader does not build, `PaintGL` was called before
/// `InitializeGL`, or an object has no bytes.
static const HRESULT E_FAIL = KestrixStatusFailed;

/// A frame does not have an interface that is required.
static const HRESULT E_UNEXPECTED = KestrixStatusUnexpected;

// clang-format off
#pragma pop_macro("S_OK")
#pragma pop_macro("E_NOTIMPL")
#pragma pop_macro("E_OUTOFMEMORY")
#pragma pop_macro("E_INVALIDARG")
#pragma pop_macro("E_NOINTERFACE")
#pragma pop_macro("E_POINTER")
#pragma pop_macro("E_FAIL")
#pragma pop_macro("E_UNEXPECTED")
// clang-format on

/// \name Ids of the interfaces
/// @{

// clang-format off
/// The id of the interface of the same name. Hosts and the library must use the same ids.
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

/// Bits that `IKestrixVideoFrame::GetFlags` returns. The library ignores all other bits.
enum KestrixFrameFlags : std::uint32_t {
    FrameFlagDefault = 0,
    /// The first line in memory is the bottom line of the picture.
    FrameFlagFlipVertical = 1u << 0,
};

/// The argument of `StartAccess` and `EndAccess`, the same for both calls of a pair.
enum KestrixBufferAccessFlags : std::uint32_t {
    BufferAccessRead = 1,
    BufferAccessReadWrite = 3,
};

/// Metadata ids for `IKestrixVideoFrameMetadata::GetInt`.
enum KestrixMetadataID : std::uint32_t {
    /// The frame's colourspace, a `KestrixColorspaceCode`.
    MetadataColorspace = 0x63737063, // "cspc"
};

/// Values of `MetadataColorspace`. If a frame has another value, the fixed-function helper refuses
/// the frame, and the OpenGL 3 helper decides by the frame's size.
enum KestrixColorspaceCode : std::uint32_t {
    ColorspaceCodeRec601 = 0x72363031,  // "r601", ITU-R BT.601-7
    ColorspaceCodeRec709 = 0x72373039,  // "r709", ITU-R BT.709-6
    ColorspaceCodeRec2020 = 0x32303230, // "2020", ITU-R BT.2020-2
};

/// Codes of `IKestrixVideoFrame3DExtensions::Get3DPackingFormat` that the library knows.
enum Kestrix3DPackingFormat : std::uint32_t {
    /// The frame is the left eye, and `GetFrameForRightEye` returns the right eye.
    Packing3DLeftOnly = 0x6c656674, // "left"
};

/// How stereoscopic frames are shown: the argument of `Set3DPreviewFormat`.
enum Kestrix3DPreviewFormat : std::uint32_t {
    Preview3DDefault = 0x64656661,    // "defa", the same as Preview3DTopBottom
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
    /// Stores the object's interface `id` in `out`, with a reference, and returns `S_OK`. If the
    /// object does not have it, stores null and returns `E_NOINTERFACE`.
    virtual HRESULT QueryInterface(REFIID id, void** out) = 0;

    /// Adds a reference. Returns the new count, which is useful in tests only.
    virtual std::uint32_t AddRef() = 0;

    /// Releases a reference. Returns the new count. At 0 the object destroys itself.
    virtual std::uint32_t Release() = 0;

protected:
    // Not virtual: it has no place in the table of functions. Objects are destroyed by `Release`.
    ~IUnknown() = default;
};

/// A frame. Query it for `IKestrixVideoBuffer` to reach its bytes.
class IKestrixVideoFrame : public IUnknown {
public:
    /// Pixels per line.
    virtual std::int64_t GetWidth() = 0;
    /// Lines.
    virtual std::int64_t GetHeight() = 0;
    /// The stride: bytes from one line to the next, at least as many as the pixels of a line need.
    /// The OpenGL 3 helper needs a multiple of 4.
    virtual std::int64_t GetRowBytes() = 0;
    /// The layout of the bytes: a FourCC with its first character in the most significant byte, or
    /// 32 for 8-bit ARGB. docs/formats.md in the sources shows each layout byte by byte. Both
    /// helpers paint "2vuy", "v210", "Ay10", 32, "vRGB", "BGRA", "BGRv", "r210", "R10l", "R10L",
    /// "R10b", "R10B", "R12B", "R12L" and "R12l". The fixed-function helper also paints "RGBA",
    /// "RGB3", "R210" and "R10A".
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

/// The memory of a frame. Its bytes are valid between `StartAccess` and the matching `EndAccess`.
class IKestrixVideoBuffer : public IUnknown {
public:
    /// Stores the address of the first pixel of the first line in memory. The pointer comes without
    /// a reference. All lines can be read, `GetRowBytes` bytes each, and 64 bytes after the last.
    virtual HRESULT GetBytes(void** out) = 0;
    /// Opens an access; `flags` is a `KestrixBufferAccessFlags`. Accesses may nest and overlap.
    virtual HRESULT StartAccess(std::uint32_t flags) = 0;
    /// Closes an access that was opened with the same `flags`.
    virtual HRESULT EndAccess(std::uint32_t flags) = 0;

protected:
    virtual ~IKestrixVideoBuffer() = default;
};

/// An interface of frames that belong to a stereoscopic pair.
class IKestrixVideoFrame3DExtensions : public IUnknown {
public:
    /// How the two eyes are packed: a `Kestrix3DPackingFormat` or another code.
    virtual std::uint32_t Get3DPackingFormat() = 0;
    /// Stores the frame of the right eye, with a reference. If its size, row bytes, format or
    /// colourspace differ from those of the left eye, the picture may be without it. Returns
    /// `E_INVALIDARG` for a null `out`.
    virtual HRESULT GetFrameForRightEye(IKestrixVideoFrame** out) = 0;

protected:
    virtual ~IKestrixVideoFrame3DExtensions() = default;
};

/// Paints frames into the current OpenGL context. The library implements it twice. The factories at
/// the end of this file make the two helpers, and document what they need of a context.
///
/// Threads. Call `InitializeGL`, `PaintGL` and the last `Release` on the GL thread, while the same
/// context is current. For the fixed-function helper, a context that shares its objects will do;
/// the OpenGL 3 helper has a vertex array, which contexts never share.
///
/// - OpenGL 3 helper: `SetFrame` and `Set3DPreviewFormat` may be called on any thread at any time.
///   They wait while `InitializeGL` builds the shaders. `SetFrame` calls `AddRef` and `Release` of
///   frames under the helper's lock: these two must not call the helper, and must not wait for a
///   lock that the host holds when it calls the helper.
/// - Fixed-function helper: no two calls on a helper may run at the same time.
/// - The operations of a frame must not call the helper that calls them. If one does, the picture
///   is undefined, and `SetFrame` of the fixed-function helper returns `E_OUTOFMEMORY` for the
///   second frame. No memory outside the frames is read or written.
///
/// Exceptions. An exception of a frame's operation passes through the helper's operation that
/// called it. The helper holds no lock, reference or access then, and the previous picture stays.
/// `AddRef` and `Release` must not throw. An exception of `EndAccess` is dropped.
///
/// GL state. The helpers never touch viewport, scissor, blending, depth, masks or the framebuffer
/// binding: the quad fills the viewport that the host has set, in the framebuffer that the host has
/// bound. They change the following state.
///
/// - OpenGL 3 helper: program 0, vertex array 0, `GL_ARRAY_BUFFER` 0, the 2D and 3D bindings of
///   texture unit 0 and the 3D binding of unit 1 are 0, unit 0 is active. The helper restores
///   `GL_UNPACK_ROW_LENGTH`. `InitializeGL`, and the first paint after a null frame, clear the
///   colour buffer and set the clear colour to (0, 0, 0, 0). `InitializeGL` leaves its own vertex
///   array bound.
/// - Fixed-function helper: `GL_TEXTURE_2D` is disabled and its binding 0, the current texture
///   coordinate is (0, 0, 0, 1); if there is no frame, only the current colour changes, to black.
///   The helper restores `GL_TEXTURE_ENV_MODE`. It needs unit 0 active, and the identity in all
///   matrices.
/// - Both need, at every call, the initial values in all pixel unpack parameters, and
///   `GL_PIXEL_UNPACK_BUFFER` 0.
///
/// docs/embedding.md in the sources lists the state call by call.
class IKestrixGLScreenPreviewHelper : public IUnknown {
public:
    /// Makes the helper's GL objects in the current context. May be called again, for instance in a
    /// new context. Then it first deletes the names of the earlier objects in the current context.
    /// A new context that does not share objects with the earlier one may have given these names to
    /// objects of the host, which are then deleted: call this operation before the host makes
    /// objects there, or release the helper in the earlier context and make a new one.
    /// After that the fixed-function helper still shows its picture; the OpenGL 3 helper shows
    /// black until the next frame.
    ///
    /// The OpenGL 3 helper returns `E_FAIL` if a GL entry point is missing or a shader does not
    /// build, and `E_NOTIMPL` if the context is older than OpenGL 3.2. The fixed-function helper
    /// always returns `S_OK`.
    virtual HRESULT InitializeGL() = 0;

    /// Paints the newest frame; without a new one it paints the last picture again. The OpenGL 3
    /// helper returns `E_FAIL` before the first successful `InitializeGL`. After an `InitializeGL`
    /// that failed later, it returns `S_OK` and draws nothing.
    ///
    /// If no texture of the driver can have the frame's size, the OpenGL 3 helper paints the
    /// previous picture, and the fixed-function helper paints black.
    virtual HRESULT PaintGL() = 0;

    /// Sets the frame that the next paint shows. Null shows black: in the fixed-function helper
    /// until the next frame; in the OpenGL 3 helper for one paint, which clears to transparent
    /// black. After that paint, the OpenGL 3 helper shows the previous frame again.
    ///
    /// OpenGL 3 helper: keeps a reference until the frame has been painted or replaced, and always
    /// returns `S_OK`. Fixed-function helper: converts at once and keeps no reference. It returns
    /// `E_INVALIDARG` for a frame that it cannot convert or whose row bytes are too few, and
    /// `E_OUTOFMEMORY` if allocation fails or the 3D packing is not `Packing3DLeftOnly`. After a
    /// failure the previous picture stays.
    virtual HRESULT SetFrame(IKestrixVideoFrame* frame) = 0;

    /// Chooses how stereoscopic frames are shown, from the next frame on. `format` is a
    /// `Kestrix3DPreviewFormat`. Always returns `S_OK`.
    virtual HRESULT Set3DPreviewFormat(std::uint32_t format) = 0;

protected:
    virtual ~IKestrixGLScreenPreviewHelper() = default;
};

/// Properties of a frame besides its pixels. Query the frame for this interface. A frame without it
/// counts as Rec. 601 if it is 720 pixels wide (fixed-function helper), or if its size is 720 x
/// 480, 486 or 576 (OpenGL 3 helper), and as Rec. 709 otherwise.
///
/// Only the first operation is part of this revision. An object's table may have more after it.
class IKestrixVideoFrameMetadata : public IUnknown {
public:
    /// Stores the value of `id`, a `KestrixMetadataID`. Returns a negative status if the frame has
    /// no such value.
    virtual HRESULT GetInt(std::uint32_t id, std::int64_t* out) = 0;

protected:
    ~IKestrixVideoFrameMetadata() = default;
};

/// A captured frame. For the library the interface is only a mark: if a frame has it, the
/// fixed-function helper treats its 8-bit RGB as studio range, 16 to 235.
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

/// A frame whose properties can be changed, and to which interfaces can be added.
class IKestrixMutableVideoFrame : public IKestrixVideoFrame {
public:
    /// Sets the value that `GetFlags` returns. The helpers do not call this operation and the next
    /// four. The adapter that presents the frame to a host of revision 14.2.1 calls them.
    virtual HRESULT SetFlags(std::uint32_t flags) = 0;
    /// Sets the timecode of a format. The frame adds a reference to `timecode`.
    virtual HRESULT SetTimecode(std::uint32_t format, IKestrixTimecode* timecode) = 0;
    /// Sets the timecode of a format to a time and a frame number.
    virtual HRESULT SetTimecodeFromComponents(std::uint32_t format, std::uint8_t hours,
                                              std::uint8_t minutes, std::uint8_t seconds,
                                              std::uint8_t frames, std::uint32_t flags) = 0;
    /// Sets the object that `GetAncillaryData` returns.
    virtual HRESULT SetAncillaryData(IKestrixVideoFrameAncillary* ancillary) = 0;
    /// Sets the 32 user bits of a format's timecode.
    virtual HRESULT SetTimecodeUserBits(std::uint32_t format, std::uint32_t userBits) = 0;
    /// From now on `QueryInterface` for `id` on this frame calls `provider`, and the frame has a
    /// reference to it. A null provider removes the registration.
    virtual HRESULT RegisterInterfaceProvider(REFIID id, IUnknown* provider) = 0;

protected:
    ~IKestrixMutableVideoFrame() override = default;
};

/// Adds interfaces to a captured frame, which is not an `IKestrixMutableVideoFrame`.
class IKestrixFrameProviderRegistry : public IUnknown {
public:
    /// The library never calls the first two operations: they belong to the owner of the frames.
    virtual HRESULT Reserved1() = 0;
    /// See `Reserved1`.
    virtual HRESULT Reserved2() = 0;
    /// Like `IKestrixMutableVideoFrame::RegisterInterfaceProvider`.
    virtual HRESULT RegisterInterfaceProvider(REFIID id, IUnknown* provider) = 0;

protected:
    ~IKestrixFrameProviderRegistry() = default;
};

// --- Factories -----------------------------------------------------------------------------------

extern "C" {

/// Makes a helper for a legacy context: OpenGL 1.2 or later with the fixed pipeline, or a
/// compatibility profile. The helper keeps two pictures in memory, each with half of a frame's
/// lines or fewer.
///
/// Returns a reference that the caller owns, or null if allocation fails. Uses no GL, and may be
/// called on any thread.
KESTRIX_EXPORT IKestrixGLScreenPreviewHelper* CreateOpenGLScreenPreviewHelper_0002();

/// Makes a helper for a context of OpenGL 3.2 or later. The first call in a process also makes the
/// colour tables, 8.6 MB that stay until the library is unloaded.
///
/// Returns a reference that the caller owns, or null if allocation fails. Uses no GL, and may be
/// called on any thread.
KESTRIX_EXPORT IKestrixGLScreenPreviewHelper* CreateOpenGL3ScreenPreviewHelper_0002();
}

/// The type of both factories, for hosts that look them up with `dlsym`.
using CreateScreenPreviewHelperFunction = IKestrixGLScreenPreviewHelper* (*)();

#ifdef KESTRIX_NAMESPACE
} // namespace KESTRIX_NAMESPACE
#endif

#endif // KESTRIX_PREVIEW_API_H
