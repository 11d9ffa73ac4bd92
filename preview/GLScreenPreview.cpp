/// Converts frames on the CPU and paints them with the fixed pipeline.
#include "preview/GLScreenPreview.h"

#include "api/InterfaceRef.h"
#include "api/QueryInterface.h"
#include "api/ScopedBufferBytes.h"
#include "conversion/PixelFormats.h"

#include <bit>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

using namespace KSX::PixelConversion;

namespace {

/// Rounds up to a power of two; 0 if that needs a 33rd bit.
unsigned ceil_pow2(unsigned n)
{
    return static_cast<unsigned>(std::bit_ceil(std::uint64_t{n}));
}

/// Binary logarithm of the step from one line that is shown to the next. A preview needs about 540
/// lines at most.
unsigned lineShiftForWidth(unsigned width)
{
    if (width > 7679)
        return 3;
    if (width > 3839)
        return 2;
    return 1;
}

void drawBlack()
{
    glColor3f(0, 0, 0);
    glBegin(GL_QUADS);
    glVertex2f(-1, -1);
    glVertex2f(1, -1);
    glVertex2f(1, 1);
    glVertex2f(-1, 1);
    glEnd();
}

} // namespace

/// A frame's sizes and the layout of its lines. They are read only once, because the frame may
/// return other values the next time.
struct CGLScreenPreview::FrameLines {
    explicit FrameLines(IKestrixVideoFrame* frame)
        : width(frame->GetWidth()),
          height(frame->GetHeight()),
          rowBytes(frame->GetRowBytes())
    {
    }

    /// Whether the engine can read every `lineStep`th line as `format`: the sizes fit in its 32
    /// bits, and the pixels fit in a line of the frame's memory.
    [[nodiscard]] bool holds(PixelFormat format, int lineStep) const
    {
        constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
        const PixelFormatInfo* const info = findPixelFormat(format);
        if (!info || width < 0 || width > kMax || height < 0 || height > kMax || rowBytes < -kMax ||
            rowBytes > kMax)
            return false;
        // A picture without pixels is not converted, so a least width of 1 refuses no frame.
        const unsigned least = leastWidthToRGB(format);
        if (least > 1 && width < least)
            return false;
        const std::int64_t distance = std::abs(rowBytes);
        return distance * lineStep <= kMax &&
               distance * info->groupPixels >= width * info->groupBytes;
    }

    std::int64_t width;
    std::int64_t height;
    std::int64_t rowBytes;
};

/// The plan of a picture: what is drawn of a frame, and where. It is computed before a slot is
/// changed. The numbers are valid only if `lines` can be read in the frame's format.
struct CGLScreenPreview::PicturePlan {
    /// `rightEye` is null for a frame without one. `nonPowerOfTwo`: textures may have any size.
    PicturePlan(IKestrixVideoFrame* frame, IKestrixVideoFrame* rightEye, std::uint32_t format3D,
                bool nonPowerOfTwo)
        : left(frame),
          right(rightEye),
          lines(frame),
          rightOnly(rightEye && format3D == Preview3DRightOnly)
    {
        const unsigned lineShift = lineShiftForWidth(eyeWidth());
        lineStep = 1 << lineShift;

        const bool bothEyes = right && !rightOnly;
        const bool sideBySide = format3D == Preview3DSideBySide;
        const auto lineCount = static_cast<unsigned>(lines.height);
        width = bothEyes && sideBySide ? 2 * eyeWidth() : eyeWidth();
        height = (bothEyes && !sideBySide ? 2 * lineCount : lineCount) >> lineShift;
        textureWidth = nonPowerOfTwo ? width : ceil_pow2(width);
        textureHeight = nonPowerOfTwo ? height : ceil_pow2(height);
        rightOffset = sideBySide ? eyeRowBytes() : std::size_t{eyeRows()} * rowBytes();
    }

    /// The size of one eye: its pixels per row, the rows that are drawn, and the bytes of a row.
    [[nodiscard]] unsigned eyeWidth() const { return static_cast<unsigned>(lines.width); }
    [[nodiscard]] unsigned eyeRows() const
    {
        return static_cast<unsigned>(lines.height) / static_cast<unsigned>(lineStep);
    }
    [[nodiscard]] std::size_t eyeRowBytes() const
    {
        return std::size_t{eyeWidth()} * FrameTextureBuffer::kBytesPerPixel;
    }

    /// From one row of the picture to the next, in bytes.
    [[nodiscard]] unsigned rowBytes() const
    {
        return textureWidth * FrameTextureBuffer::kBytesPerPixel;
    }

    [[nodiscard]] bool isEmpty() const { return width == 0 || height == 0; }

    IKestrixVideoFrame* left;
    IKestrixVideoFrame* right;
    /// The lines of `left`. An eye of another size is left out.
    FrameLines lines;
    bool rightOnly;
    /// Every `lineStep`th line is shown.
    int lineStep;
    /// The picture with all its eyes, in pixels and rows.
    unsigned width;
    unsigned height;
    unsigned textureWidth;
    unsigned textureHeight;
    /// Where the right eye begins if both are shown, in bytes.
    std::size_t rightOffset;
};

/// The free slot that a frame is drawn into, if there is one. While it is taken, nobody else takes
/// a slot: the helper has only one conversion at a time. A slot that has not become ready is free
/// again at the end.
class CGLScreenPreview::TakenSlot {
public:
    explicit TakenSlot(CGLScreenPreview& helper) : m_helper(helper)
    {
        if (helper.m_slotIsTaken || !helper.m_free)
            return;
        m_slot = helper.m_free;
        helper.m_free = m_slot->next;
        helper.m_slotIsTaken = true;
    }
    ~TakenSlot() { giveBack(); }
    TakenSlot(const TakenSlot&) = delete;
    TakenSlot& operator=(const TakenSlot&) = delete;

    [[nodiscard]] FrameTextureBuffer* slot() const { return m_slot; }

    void giveBack()
    {
        if (!m_slot)
            return;
        if (m_slot != m_helper.m_ready)
            m_helper.makeFree(m_slot);
        m_helper.m_slotIsTaken = false;
        m_slot = nullptr;
    }

private:
    CGLScreenPreview& m_helper;
    FrameTextureBuffer* m_slot = nullptr;
};

CGLScreenPreview::CGLScreenPreview()
{
    m_slots[0].next = &m_slots[1];
}

CGLScreenPreview::~CGLScreenPreview()
{
    for (const FrameTextureBuffer& slot : m_slots) {
        // Deletes the buffers of both slots each time. GL ignores names that are deleted.
        deletePixelBuffers();
        std::free(slot.bytes);
    }
}

void CGLScreenPreview::deletePixelBuffers() const
{
    if (!m_pixelBuffers)
        return;
    for (const FrameTextureBuffer& slot : m_slots)
        slot.deletePixelBuffer();
}

HRESULT CGLScreenPreview::QueryInterface(REFIID id, void** out)
{
    return AnswerQueryInterface<IKestrixGLScreenPreviewHelper>(
        this, IID_IKestrixGLScreenPreviewHelper, id, out);
}

HRESULT CGLScreenPreview::InitializeGL()
{
    const auto* extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    if (!extensions)
        extensions = "";
    if (std::strstr(extensions, "GL_ARB_texture_non_power_of_two"))
        m_nonPowerOfTwo = true;
    deletePixelBuffers();
    if (std::strstr(extensions, "GL_ARB_pixel_buffer_object"))
        m_pixelBuffers = true;
    m_pixelBuffers = m_pixelBuffers && wglInitGLExtProcs();

    for (FrameTextureBuffer& slot : m_slots) {
        // A later call, maybe in another context: the picture must be uploaded again.
        if (slot.texture)
            glDeleteTextures(1, &slot.texture);
        slot.texture = 0;
        slot.updateTexture = true;
        if (m_pixelBuffers)
            slot.makePixelBuffer();
    }
    return S_OK;
}

HRESULT CGLScreenPreview::Set3DPreviewFormat(std::uint32_t format)
{
    m_3DFormat = format;
    return S_OK;
}

HRESULT CGLScreenPreview::SetFrame(IKestrixVideoFrame* frame)
{
    if (!frame) {
        makeReady(nullptr);
        return S_OK;
    }
    TakenSlot taken(*this);
    if (!taken.slot())
        return E_OUTOFMEMORY;

    InterfaceRef<IKestrixVideoFrame3DExtensions> extensions;
    InterfaceRef<IKestrixVideoFrame> right;
    if (m_3DFormat != Preview3DLeftOnly &&
        extensions.query(frame, IID_IKestrixVideoFrame3DExtensions) == S_OK && extensions) {
        if (extensions->Get3DPackingFormat() != Packing3DLeftOnly)
            return E_OUTOFMEMORY;
        extensions->GetFrameForRightEye(right.receive());
    }

    const PicturePlan plan(frame, right.get(), m_3DFormat, m_nonPowerOfTwo);
    // A slot's rows contain only pixels, with no room for the padding that a frame's rows may have.
    if (!setup(frame, PixelFormat_RGBA, plan.eyeRowBytes()) ||
        !plan.lines.holds(previewFormat(), plan.lineStep))
        return E_INVALIDARG;
    if (plan.isEmpty()) {
        taken.giveBack();
        makeReady(nullptr);
        return S_OK;
    }

    FrameTextureBuffer& slot = *taken.slot();
    if (!slot.ReAllocTexture(plan.textureWidth, plan.textureHeight))
        return E_OUTOFMEMORY;
    DrawFrameToTexture(plan, static_cast<std::byte*>(slot.bytes));
    slot.setSizes(plan.width, plan.height, plan.textureWidth, plan.textureHeight);
    makeReady(&slot);
    return S_OK;
}

void CGLScreenPreview::makeReady(FrameTextureBuffer* slot)
{
    if (m_ready)
        makeFree(m_ready);
    m_ready = slot;
}

void CGLScreenPreview::makeFree(FrameTextureBuffer* slot)
{
    slot->next = m_free;
    m_free = slot;
}

void CGLScreenPreview::DrawFrameToTexture(const PicturePlan& plan, std::byte* destination) const
{
    if (plan.rightOnly) {
        drawEye(plan, plan.right, FrameLines(plan.right), destination);
        return;
    }
    drawEye(plan, plan.left, plan.lines, destination);
    if (!plan.right)
        return;

    // `setup` looked at the left eye only, and the right eye is converted in the same way.
    const FrameLines rightLines(plan.right);
    if (plan.right->GetPixelFormat() == previewFormat() &&
        frameColourspace(plan.right) == previewColourspace())
        drawEye(plan, plan.right, rightLines, destination + plan.rightOffset);
}

void CGLScreenPreview::drawEye(const PicturePlan& plan, IKestrixVideoFrame* frame,
                               const FrameLines& lines, std::byte* destination) const
{
    if (lines.width != plan.lines.width || lines.height != plan.lines.height ||
        !lines.holds(previewFormat(), plan.lineStep))
        return;
    const std::shared_ptr<void> bytes = ReadableFrameBytes(frame);
    if (!bytes)
        return;
    auto* source = static_cast<std::byte*>(bytes.get());
    std::int64_t sourceRowBytes = lines.rowBytes;
    if (frame->GetFlags() & FrameFlagFlipVertical) {
        source += (lines.height - 1) * sourceRowBytes;
        sourceRowBytes = -sourceRowBytes;
    }
    // A stride of several lines skips the lines between.
    render(plan.eyeWidth(), plan.eyeRows(), destination, plan.rowBytes(), source,
           static_cast<unsigned>(sourceRowBytes * plan.lineStep));
}

HRESULT CGLScreenPreview::PaintGL()
{
    if (!m_ready || !m_ready->fits()) {
        drawBlack();
        return S_OK;
    }
    glEnable(GL_TEXTURE_2D);
    m_ready->upload(m_pixelBuffers);
    m_ready->draw();
    glDisable(GL_TEXTURE_2D);
    return S_OK;
}
