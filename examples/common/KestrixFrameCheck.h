/// Tells whether a preview helper would show a frame, and how, without painting. Copy it into your
/// host, with KestrixFrameFacts.h.
///
///     const KestrixFrameAnswer answer =
///         KestrixWouldBeShown(KestrixHelperKind::OpenGL3, frame);
///     if (answer.outcome != KestrixFrameAnswer::Shown)
///         log(answer.words);
///
/// `SetFrame` of the OpenGL 3 helper returns `S_OK` for every frame, and paints black if it can't
/// show the frame. This check gives the reason in words. It makes no GL calls, needs no helper and
/// may be used on any thread. For frames of the current interface revision.
///
/// KestrixFrameFacts.h has what depends on the format; it is printed from the helpers' code.
/// Compiles as C++11 and later.
#ifndef KESTRIX_FRAME_CHECK_H
#define KESTRIX_FRAME_CHECK_H

#include "KestrixFrameFacts.h"

#include <KestrixPreviewAPI.h>

#include <cstdint>
#include <string>

#ifdef KESTRIX_NAMESPACE
namespace KESTRIX_NAMESPACE {
#endif

enum class KestrixHelperKind {
    FixedFunction, ///< made by `CreateOpenGLScreenPreviewHelper_0002`
    OpenGL3,       ///< made by `CreateOpenGL3ScreenPreviewHelper_0002`
};

/// The context in which the helper paints. A value that isn't known is not checked.
struct KestrixContextFacts {
    int version = 0;           ///< 10 times the major version plus the minor one: 32 is OpenGL 3.2
    bool fixedPipeline = true; ///< The context is no core profile.
    std::int64_t largestTexture = 0; ///< `GL_MAX_TEXTURE_SIZE`, in texels
};

/// The properties of a frame that are numbers.
struct KestrixFrameProperties {
    std::int64_t width = 0;         ///< pixels
    std::int64_t height = 0;        ///< lines
    std::int64_t rowBytes = 0;      ///< from one line to the next
    std::uint32_t format = 0;       ///< as `GetPixelFormat` returns it
    bool statesColourspace = false; ///< `GetInt` gives a `MetadataColorspace`
    std::uint32_t colourspace = 0;  ///< a `KestrixColorspaceCode` if `statesColourspace`
    bool captured = false;          ///< has `IKestrixVideoInputFrame`
};

/// An answer of `KestrixWouldBeShown`.
struct KestrixFrameAnswer {
    /// What becomes of the frame.
    enum Outcome {
        Shown,    ///< The picture is complete.
        Damaged,  ///< A part of the picture is wrong or missing.
        NotShown, ///< The view is black, or the previous picture stays in it.
    };
    Outcome outcome;        ///< Whether the frame is shown.
    HRESULT setFrameStatus; ///< What `SetFrame` returns, if no allocation fails.
    std::string words;      ///< One line: the colourspace that the helper assumes, or the reason.
};

/// What `helper` does with a frame of these properties, and of one eye, if the frame gives its
/// bytes.
KestrixFrameAnswer KestrixWouldBeShown(KestrixHelperKind helper,
                                       const KestrixFrameProperties& frame,
                                       const KestrixContextFacts& context = KestrixContextFacts());

/// What `helper` does with `frame`. Asks the frame what the helper asks it, and opens and closes a
/// read access. Null is black. `mode` is what the host passes to `Set3DPreviewFormat`.
KestrixFrameAnswer KestrixWouldBeShown(KestrixHelperKind helper, IKestrixVideoFrame* frame,
                                       const KestrixContextFacts& context = KestrixContextFacts(),
                                       std::uint32_t mode = Preview3DDefault);

/// The properties of `frame` as `helper` reads them.
KestrixFrameProperties KestrixPropertiesOf(KestrixHelperKind helper, IKestrixVideoFrame* frame);

/// The colourspace that `helper` assumes, "Rec. 709" for example, and the reason. "no known
/// colourspace" if it assumes none.
std::string KestrixColourspaceOf(KestrixHelperKind helper, const KestrixFrameProperties& frame);

// --- Details -------------------------------------------------------------------------------------

/// \cond
namespace KestrixFrameCheckDetails {

/// One interface of an object, with a reference.
template<class INTERFACE>
class Queried {
public:
    Queried(IUnknown* object, const REFIID& id, bool acceptsAnySuccess = false)
    {
        void* found = nullptr;
        const HRESULT status = object->QueryInterface(id, &found);
        m_object = static_cast<INTERFACE*>(found);
        m_counts = acceptsAnySuccess || status == 0;
    }
    ~Queried()
    {
        if (m_object)
            m_object->Release();
    }
    Queried(const Queried&) = delete;
    Queried& operator=(const Queried&) = delete;

    explicit operator bool() const { return m_object && m_counts; }
    INTERFACE* operator->() const { return m_object; }

private:
    INTERFACE* m_object = nullptr;
    bool m_counts = false;
};

inline KestrixFrameAnswer answer(KestrixFrameAnswer::Outcome outcome, HRESULT status,
                                 const std::string& words)
{
    KestrixFrameAnswer made;
    made.outcome = outcome;
    made.setFrameStatus = status;
    made.words = words;
    return made;
}

inline KestrixFrameAnswer refused(const std::string& why)
{
    return answer(KestrixFrameAnswer::NotShown, KestrixStatusInvalidArgument,
                  "not shown: " + why + "; SetFrame returns E_INVALIDARG");
}

inline KestrixFrameAnswer black(const std::string& why)
{
    return answer(KestrixFrameAnswer::NotShown, 0, "black: " + why);
}

inline std::string nameOf(std::uint32_t format)
{
    if (const KestrixFormatFacts* facts = KestrixFormatFacts::find(format))
        return facts->name;
    std::string name;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const char character = static_cast<char>(format >> shift);
        if (character < ' ' || character > '~')
            return "the code " + std::to_string(format);
        name += character;
    }
    return name;
}

inline std::string sizeOf(const KestrixFrameProperties& frame)
{
    return std::to_string(frame.width) + "x" + std::to_string(frame.height);
}

/// The bytes of the pixels of a line, without what fills up the last group.
inline std::int64_t pixelBytes(const KestrixFormatFacts& facts, std::int64_t width)
{
    return (width * facts.groupBytes + facts.groupPixels - 1) / facts.groupPixels;
}

inline std::string shortRows(const KestrixFormatFacts& facts, const KestrixFrameProperties& frame)
{
    return "rows of " + std::to_string(frame.rowBytes) + " bytes are too short for " +
           std::to_string(frame.width) + " pixels of " + facts.name + ", which need " +
           std::to_string(pixelBytes(facts, frame.width));
}

inline std::string tooLarge(const KestrixFrameProperties& frame, const KestrixContextFacts& context)
{
    return sizeOf(frame) + " with rows of " + std::to_string(frame.rowBytes) +
           " bytes is larger than the textures of this context, " +
           std::to_string(context.largestTexture) + " texels at most";
}

/// The largest size that the helpers accept.
const std::int64_t kMax = 0x7fffffff;

/// A bit of `KestrixFormatFacts::Colourspaces`, 0 if the fixed-function helper knows none.
inline unsigned fixedFunctionColourspace(const KestrixFrameProperties& frame)
{
    if (!frame.statesColourspace)
        return frame.width == 720 ? KestrixFormatFacts::Rec601 : KestrixFormatFacts::Rec709;
    switch (frame.colourspace) {
    case ColorspaceCodeRec601:
        return KestrixFormatFacts::Rec601;
    case ColorspaceCodeRec709:
        return KestrixFormatFacts::Rec709;
    case ColorspaceCodeRec2020:
        return KestrixFormatFacts::Rec2020;
    default:
        return 0;
    }
}

inline std::string openGL3Colourspace(const KestrixFrameProperties& frame)
{
    const std::string bySize = " by size " + sizeOf(frame);
    const bool is625Line = frame.width == 720 && frame.height == 576;
    const bool is525Line = frame.width == 720 && (frame.height == 480 || frame.height == 486);
    const std::string rec601 = is625Line ? "Rec. 601 of 625 lines" : "Rec. 601 of 525 lines";
    switch (frame.statesColourspace ? frame.colourspace : 0) {
    case ColorspaceCodeRec601:
        return rec601 + " as stated and" + bySize;
    case ColorspaceCodeRec709:
        return "Rec. 709 as stated";
    case ColorspaceCodeRec2020:
        return "Rec. 2020 as stated";
    default:
        return (is625Line || is525Line ? rec601 : "Rec. 709") + bySize;
    }
}

inline KestrixFrameAnswer openGL3Answer(const KestrixFrameProperties& frame,
                                        const KestrixContextFacts& context)
{
    if (context.version > 0 && context.version < 32)
        return black("the context is OpenGL " + std::to_string(context.version / 10) + "." +
                     std::to_string(context.version % 10) +
                     ", and the OpenGL 3 helper needs 3.2 or later");
    const KestrixFormatFacts* const facts = KestrixFormatFacts::find(frame.format);
    if (!facts || !facts->openGL3)
        return black("the shader does not know " + nameOf(frame.format) +
                     (facts && facts->standard ? ", the fixed-function helper does" : ""));
    const std::int64_t largestRow = 4 * (kMax / 2);
    if (frame.height < 0 || frame.height > kMax || frame.rowBytes < 0 ||
        frame.rowBytes > largestRow)
        return answer(KestrixFrameAnswer::NotShown, 0,
                      "not shown: the helper does not accept " + std::to_string(frame.height) +
                          " lines of " + std::to_string(frame.rowBytes) + " bytes");
    // Without texels the shader unpacks zeros: black of RGB, green of Y'CbCr.
    const auto empty = [](const std::string& why) {
        return answer(KestrixFrameAnswer::NotShown, 0, "not shown: " + why);
    };
    if (frame.width < 1 || frame.height < 2)
        return empty("of " + sizeOf(frame) +
                     " no line is uploaded; the helper shows the first of every two");
    if (frame.rowBytes < 4)
        return empty(shortRows(*facts, frame));
    if (context.largestTexture > 0 &&
        (frame.rowBytes / 4 > context.largestTexture || frame.height / 2 > context.largestTexture))
        return black(tooLarge(frame, context));
    if (frame.rowBytes < pixelBytes(*facts, frame.width))
        return answer(KestrixFrameAnswer::Damaged, 0, "damaged: " + shortRows(*facts, frame));
    if (frame.rowBytes % 4 != 0)
        return answer(KestrixFrameAnswer::Damaged, 0,
                      "damaged: rows of " + std::to_string(frame.rowBytes) +
                          " bytes, and the OpenGL 3 helper needs a multiple of 4");
    return answer(KestrixFrameAnswer::Shown, 0, "shown as " + openGL3Colourspace(frame));
}

inline KestrixFrameAnswer fixedFunctionAnswer(const KestrixFrameProperties& frame,
                                              const KestrixContextFacts& context)
{
    const unsigned colourspace = fixedFunctionColourspace(frame);
    if (!colourspace)
        return refused("the frame states the colourspace " + nameOf(frame.colourspace) +
                       ", which the helper does not know");
    const KestrixFormatFacts* const facts = KestrixFormatFacts::find(frame.format);
    const unsigned conversions = !facts ? 0 : frame.captured ? facts->captured : facts->standard;
    if (!(conversions & colourspace))
        return refused("no row of the conversions converts " +
                       std::string(frame.captured ? "captured " : "") + nameOf(frame.format) +
                       " to RGBA of Rec. 709, from " +
                       KestrixColourspaceOf(KestrixHelperKind::FixedFunction, frame) +
                       (facts && facts->openGL3 ? "; the OpenGL 3 helper shows it" : ""));

    const std::int64_t lineStep = frame.width > 7679 ? 8 : frame.width > 3839 ? 4 : 2;
    const std::int64_t distance = frame.rowBytes < 0 ? -frame.rowBytes : frame.rowBytes;
    if (frame.width < 0 || frame.width > kMax || frame.height < 0 || frame.height > kMax ||
        frame.rowBytes < -kMax || distance * lineStep > kMax)
        return refused("the helper does not accept " + sizeOf(frame) + " with rows of " +
                       std::to_string(frame.rowBytes) + " bytes");
    if (facts->leastWidth > 1 && frame.width < facts->leastWidth)
        return refused("a row of " + std::to_string(frame.width) + " pixels is too narrow: " +
                       facts->name + " needs a width of " + std::to_string(facts->leastWidth) +
                       " or more" + (facts->openGL3 ? ", the OpenGL 3 helper does not" : ""));
    if (distance < pixelBytes(*facts, frame.width))
        return refused(shortRows(*facts, frame));
    if (!context.fixedPipeline)
        return black("the context has no fixed pipeline, which the helper needs: use a "
                     "compatibility profile, or the OpenGL 3 helper");
    if (frame.width == 0 || frame.height < lineStep)
        return black("of " + sizeOf(frame) +
                     " no line is shown; the helper shows the first of "
                     "every " +
                     std::to_string(lineStep));
    if (context.largestTexture > 0 &&
        (frame.width > context.largestTexture || frame.height / lineStep > context.largestTexture))
        return black(tooLarge(frame, context));
    return answer(KestrixFrameAnswer::Shown, 0,
                  "shown as " + KestrixColourspaceOf(KestrixHelperKind::FixedFunction, frame));
}

/// Why the helper gets no bytes of a frame; empty if it gets them.
inline std::string obstacleToBytes(IKestrixVideoFrame* frame)
{
    const Queried<IKestrixVideoBuffer> buffer(frame, IID_IKestrixVideoBuffer, true);
    if (!buffer)
        return "the frame has no IKestrixVideoBuffer";
    if (buffer->StartAccess(BufferAccessRead) < 0)
        return "StartAccess of the frame's buffer fails";
    void* bytes = nullptr;
    const bool gotBytes = buffer->GetBytes(&bytes) >= 0;
    buffer->EndAccess(BufferAccessRead);
    if (!gotBytes)
        return "GetBytes of the frame's buffer fails";
    return bytes ? "" : "GetBytes of the frame's buffer gives null";
}

/// Why the right eye is left out; empty if it is shown.
inline std::string obstacleToRightEye(KestrixHelperKind helper, const KestrixFrameProperties& left,
                                      IKestrixVideoFrame* right)
{
    const KestrixFrameProperties properties = KestrixPropertiesOf(helper, right);
    if (properties.height != left.height)
        return "it has another size";
    if (helper == KestrixHelperKind::OpenGL3) {
        if (properties.rowBytes != left.rowBytes)
            return "it has other row bytes";
    } else {
        if (properties.width != left.width)
            return "it has another size";
        if (properties.format != left.format ||
            fixedFunctionColourspace(properties) != fixedFunctionColourspace(left))
            return "it has another format or colourspace";
        const KestrixFrameAnswer alone = fixedFunctionAnswer(properties, KestrixContextFacts());
        if (alone.outcome != KestrixFrameAnswer::Shown)
            return alone.words;
    }
    return obstacleToBytes(right);
}

} // namespace KestrixFrameCheckDetails
/// \endcond

inline std::string KestrixColourspaceOf(KestrixHelperKind helper,
                                        const KestrixFrameProperties& frame)
{
    if (helper == KestrixHelperKind::OpenGL3)
        return KestrixFrameCheckDetails::openGL3Colourspace(frame);
    const std::string reason =
        frame.statesColourspace ? " as stated" : " by width " + std::to_string(frame.width);
    switch (KestrixFrameCheckDetails::fixedFunctionColourspace(frame)) {
    case KestrixFormatFacts::Rec601:
        return "Rec. 601" + reason;
    case KestrixFormatFacts::Rec709:
        return "Rec. 709" + reason;
    case KestrixFormatFacts::Rec2020:
        return "Rec. 2020" + reason;
    default:
        return "no known colourspace" + reason;
    }
}

inline KestrixFrameProperties KestrixPropertiesOf(KestrixHelperKind helper,
                                                  IKestrixVideoFrame* frame)
{
    using KestrixFrameCheckDetails::Queried;
    const bool openGL3 = helper == KestrixHelperKind::OpenGL3;

    KestrixFrameProperties properties;
    properties.width = frame->GetWidth();
    properties.height = frame->GetHeight();
    properties.rowBytes = frame->GetRowBytes();
    properties.format = frame->GetPixelFormat();
    if (openGL3) // the helper counts lines of this width
        properties.width = static_cast<std::int32_t>(properties.width);

    const Queried<IKestrixVideoFrameMetadata> metadata(frame, IID_IKestrixVideoFrameMetadata,
                                                       !openGL3);
    std::int64_t code = 0;
    if (metadata) {
        const HRESULT status = metadata->GetInt(MetadataColorspace, &code);
        properties.statesColourspace = openGL3 ? status == 0 : status >= 0;
    }
    if (properties.statesColourspace)
        properties.colourspace = static_cast<std::uint32_t>(code);
    properties.captured = static_cast<bool>(
        Queried<IKestrixVideoInputFrame>(frame, IID_IKestrixVideoInputFrame, true));
    return properties;
}

inline KestrixFrameAnswer KestrixWouldBeShown(KestrixHelperKind helper,
                                              const KestrixFrameProperties& frame,
                                              const KestrixContextFacts& context)
{
    return helper == KestrixHelperKind::OpenGL3
               ? KestrixFrameCheckDetails::openGL3Answer(frame, context)
               : KestrixFrameCheckDetails::fixedFunctionAnswer(frame, context);
}

inline KestrixFrameAnswer KestrixWouldBeShown(KestrixHelperKind helper, IKestrixVideoFrame* frame,
                                              const KestrixContextFacts& context,
                                              std::uint32_t mode)
{
    using namespace KestrixFrameCheckDetails;
    if (!frame)
        return black("there is no frame");

    IKestrixVideoFrame* right = nullptr;
    const bool openGL3 = helper == KestrixHelperKind::OpenGL3;
    if (openGL3 || mode != Preview3DLeftOnly) {
        const Queried<IKestrixVideoFrame3DExtensions> eyes(frame,
                                                           IID_IKestrixVideoFrame3DExtensions);
        if (eyes && !openGL3 && eyes->Get3DPackingFormat() != Packing3DLeftOnly)
            return answer(KestrixFrameAnswer::NotShown, KestrixStatusOutOfMemory,
                          "not shown: the 3D packing is not Packing3DLeftOnly; SetFrame returns "
                          "E_OUTOFMEMORY");
        if (eyes)
            eyes->GetFrameForRightEye(&right);
    }

    const KestrixFrameProperties properties = KestrixPropertiesOf(helper, frame);
    KestrixFrameAnswer result = KestrixWouldBeShown(helper, properties, context);
    if (result.outcome != KestrixFrameAnswer::NotShown) {
        // The fixed-function helper does not read the left eye if it shows the right one alone.
        const bool rightAlone = right && !openGL3 && mode == Preview3DRightOnly;
        const std::string left = rightAlone ? "" : obstacleToBytes(frame);
        const std::string other = right ? obstacleToRightEye(helper, properties, right) : "";
        if (!left.empty())
            result = answer(KestrixFrameAnswer::NotShown, 0, "not shown: " + left);
        else if (!other.empty())
            result = answer(rightAlone ? KestrixFrameAnswer::NotShown : KestrixFrameAnswer::Damaged,
                            0, "the right eye is left out: " + other);
    }
    if (right)
        right->Release();
    return result;
}

#ifdef KESTRIX_NAMESPACE
} // namespace KESTRIX_NAMESPACE
#endif

#endif // KESTRIX_FRAME_CHECK_H
