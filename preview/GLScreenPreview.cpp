/// Converts frames on the CPU and paints them with the fixed pipeline.
#include "preview/GLScreenPreview.h"

#include "api/InterfaceRef.h"
#include "api/QueryInterface.h"
#include "api/ScopedBufferBytes.h"
#include "conversion/PixelFormats.h"
#include "preview/GLProcAddress.h"

#include <GL/glext.h>

#include <bit>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <mutex>
#include <type_traits>

using namespace KSX::PixelConversion;

namespace {

constexpr std::size_t kAlignment = 16;
constexpr unsigned kBytesPerPixel = 4;

// What pixel buffers need; all else is in the GL library by name.
PFNGLGENBUFFERSPROC s_glGenBuffers;
PFNGLBINDBUFFERPROC s_glBindBuffer;
PFNGLBUFFERDATAPROC s_glBufferData;
PFNGLBUFFERSUBDATAPROC s_glBufferSubData;
PFNGLDELETEBUFFERSPROC s_glDeleteBuffers;
PFNGLGETBUFFERPARAMETERIVPROC s_glGetBufferParameteriv;
PFNGLMAPBUFFERPROC s_glMapBuffer;
PFNGLUNMAPBUFFERPROC s_glUnmapBuffer;

/// Helpers of several contexts may be initialised on several threads.
std::mutex s_procsMutex;

/// Looks the entry points up once; true when all are there. They are of use together only, so where
/// one is missing the first is forgotten, and the next call looks again. A helper calls them after
/// it was told true here, and then nothing writes them any more.
bool wglInitGLExtProcs()
{
    const std::lock_guard lock(s_procsMutex);
    if (s_glGenBuffers)
        return true;

    bool found = true;
    const auto lookUp = [&found](auto& function, const char* name) {
        function = glProcAddress<std::remove_reference_t<decltype(function)>>(name);
        found = found && function;
    };
    lookUp(s_glGenBuffers, "glGenBuffers");
    lookUp(s_glBindBuffer, "glBindBuffer");
    lookUp(s_glBufferData, "glBufferData");
    lookUp(s_glBufferSubData, "glBufferSubData");
    lookUp(s_glDeleteBuffers, "glDeleteBuffers");
    lookUp(s_glGetBufferParameteriv, "glGetBufferParameteriv");
    lookUp(s_glMapBuffer, "glMapBuffer");
    lookUp(s_glUnmapBuffer, "glUnmapBuffer");
    if (!found)
        s_glGenBuffers = nullptr;
    return found;
}

/// Rounds up to a power of two; 0 where that takes a 33rd bit.
unsigned ceil_pow2(unsigned n)
{
    return static_cast<unsigned>(std::bit_ceil(std::uint64_t{n}));
}

/// Binary logarithm of the step from one line that is shown to the next: a preview has no use for
/// more than some 540 lines.
unsigned lineShiftForWidth(unsigned width)
{
    if (width > 7679)
        return 3;
    if (width > 3839)
        return 2;
    return 1;
}

/// The widths that the engine's conversion of `format` to RGBA is good for begin here. Chroma
/// between two samples is rebuilt with what follows, and formats of whole groups follow a step at a
/// time.
std::int64_t leastWidth(PixelFormat format)
{
    switch (format) {
    case PixelFormat_v210:
        return 13;
    case PixelFormat_Ay10:
        return 5;
    default:
        return 0;
    }
}

/// Uploads to the bound texture. `pixels` is an offset where a pixel buffer is bound.
void upload(const FrameTextureBuffer& slot, bool makeStorage, const void* pixels)
{
    const auto width = static_cast<GLsizei>(slot.textureWidth);
    const auto height = static_cast<GLsizei>(slot.textureHeight);
    if (makeStorage)
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, width, height, 0, slot.format, slot.type, pixels);
    else
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, slot.format, slot.type, pixels);
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

/// Draws the slot's picture, its first line at the top, whatever colour is current.
void drawTexture(const FrameTextureBuffer& slot)
{
    const GLfloat s =
        static_cast<GLfloat>(slot.frameWidth) / static_cast<GLfloat>(slot.textureWidth);
    const GLfloat t =
        static_cast<GLfloat>(slot.frameHeight) / static_cast<GLfloat>(slot.textureHeight);

    GLint environmentMode = 0;
    glGetTexEnviv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, &environmentMode);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_DECAL);
    glBindTexture(GL_TEXTURE_2D, slot.texture);

    glBegin(GL_QUADS);
    glTexCoord2f(0, t);
    glVertex2f(-1, -1);
    glTexCoord2f(s, t);
    glVertex2f(1, -1);
    glTexCoord2f(s, 0);
    glVertex2f(1, 1);
    glTexCoord2f(0, 0);
    glVertex2f(-1, 1);
    glEnd();

    glBindTexture(GL_TEXTURE_2D, 0);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, environmentMode);
}

} // namespace

/// Each is asked for once and then held to, as nothing keeps a frame from answering otherwise next.
struct CGLScreenPreview::FrameLines {
    explicit FrameLines(IKestrixVideoFrame* frame)
        : width(frame->GetWidth()),
          height(frame->GetHeight()),
          rowBytes(frame->GetRowBytes())
    {
    }

    /// Whether every `lineStep`th line can be read as `format`: the engine counts in 32 bits, and
    /// pixels that lie in a line of the frame's memory.
    [[nodiscard]] bool holds(PixelFormat format, int lineStep) const
    {
        constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
        const PixelFormatInfo* const info = findPixelFormat(format);
        if (!info || width < leastWidth(format) || width < 0 || width > kMax || height < 0 ||
            height > kMax || rowBytes < -kMax || rowBytes > kMax)
            return false;
        const std::int64_t distance = std::abs(rowBytes);
        return distance * lineStep <= kMax &&
               distance * info->groupPixels >= width * info->groupBytes;
    }

    std::int64_t width;
    std::int64_t height;
    std::int64_t rowBytes;
};

CGLScreenPreview::CGLScreenPreview()
{
    m_slots[0].next = &m_slots[1];
}

CGLScreenPreview::~CGLScreenPreview()
{
    for (const FrameTextureBuffer& slot : m_slots) {
        // Goes over both slots each time round; a name that is gone is none to the GL.
        deletePixelBuffers();
        std::free(slot.bytes);
    }
}

void CGLScreenPreview::deletePixelBuffers()
{
    if (!m_pixelBuffers)
        return;
    for (const FrameTextureBuffer& slot : m_slots)
        if (slot.pixelBuffer)
            s_glDeleteBuffers(1, &slot.pixelBuffer);
}

HRESULT CGLScreenPreview::QueryInterface(REFIID id, void** out)
{
    return AnswerQueryInterface<IKestrixGLScreenPreviewHelper>(
        this, IID_IKestrixGLScreenPreviewHelper, id, out);
}

std::uint32_t CGLScreenPreview::AddRef()
{
    return static_cast<std::uint32_t>(++m_referenceCount);
}

std::uint32_t CGLScreenPreview::Release()
{
    const std::uint64_t count = --m_referenceCount;
    if (count == 0)
        delete this;
    return static_cast<std::uint32_t>(count);
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
        // Not the first time, and maybe another context: pictures are uploaded anew.
        if (slot.texture)
            glDeleteTextures(1, &slot.texture);
        slot.texture = 0;
        slot.updateTexture = true;
        if (m_pixelBuffers)
            s_glGenBuffers(1, &slot.pixelBuffer);
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
    FrameTextureBuffer* const slot = m_free;
    if (!slot)
        return E_OUTOFMEMORY;

    InterfaceRef<IKestrixVideoFrame3DExtensions> extensions;
    InterfaceRef<IKestrixVideoFrame> right;
    if (m_3DFormat != Preview3DLeftOnly &&
        extensions.query(frame, IID_IKestrixVideoFrame3DExtensions) == S_OK && extensions) {
        if (extensions->Get3DPackingFormat() != Packing3DLeftOnly)
            return E_OUTOFMEMORY;
        extensions->GetFrameForRightEye(right.receive());
    }

    const FrameLines lines(frame);
    const auto width = static_cast<unsigned>(lines.width);
    const auto height = static_cast<unsigned>(lines.height);
    const unsigned lineShift = lineShiftForWidth(width);
    const bool rightOnly = right && m_3DFormat == Preview3DRightOnly;
    unsigned pictureWidth = width;
    unsigned pictureHeight = height;
    if (right && !rightOnly) {
        if (m_3DFormat == Preview3DSideBySide)
            pictureWidth *= 2;
        else
            pictureHeight *= 2;
    }
    pictureHeight >>= lineShift;
    slot->updateTexture = true;

    const unsigned textureWidth = m_nonPowerOfTwo ? pictureWidth : ceil_pow2(pictureWidth);
    const unsigned textureHeight = m_nonPowerOfTwo ? pictureHeight : ceil_pow2(pictureHeight);

    const int lineStep = 1 << lineShift;
    if (!setup(frame, PixelFormat_RGBA) || !lines.holds(previewFormat(), lineStep))
        return E_INVALIDARG;
    // A slot's rows hold pixels only, with no room for the padding that a frame's may have.
    limitCopiedRowBytes(std::uint64_t{width} * kBytesPerPixel);

    if (pictureWidth == 0 || pictureHeight == 0) {
        makeReady(nullptr);
        return S_OK;
    }
    unsigned rowBytes = 0;
    if (!ReAllocTexture(slot, &rowBytes, textureWidth, kBytesPerPixel, textureHeight))
        return E_OUTOFMEMORY;

    if (rightOnly)
        DrawFrameToTexture(right.get(), FrameLines(right.get()), nullptr, slot->bytes, width,
                           height, rowBytes, kBytesPerPixel, lineStep);
    else
        DrawFrameToTexture(frame, lines, right.get(), slot->bytes, width, height, rowBytes,
                           kBytesPerPixel, lineStep);

    slot->frameWidth = pictureWidth;
    slot->frameHeight = pictureHeight;
    if (slot->textureWidth != textureWidth || slot->textureHeight != textureHeight ||
        slot->format != GL_RGBA || slot->type != GL_UNSIGNED_BYTE) {
        slot->reallocateTexture = true;
        slot->textureWidth = textureWidth;
        slot->textureHeight = textureHeight;
        slot->format = GL_RGBA;
        slot->type = GL_UNSIGNED_BYTE;
    }

    m_free = slot->next;
    slot->next = nullptr;
    makeReady(slot);
    return S_OK;
}

void CGLScreenPreview::makeReady(FrameTextureBuffer* slot)
{
    if (m_ready) {
        m_ready->next = m_free;
        m_free = m_ready;
    }
    m_ready = slot;
}

bool CGLScreenPreview::ReAllocTexture(FrameTextureBuffer* slot, unsigned* rowBytes, unsigned width,
                                      unsigned bytesPerPixel, unsigned height)
{
    *rowBytes = width * bytesPerPixel;
    const std::uint64_t size = std::uint64_t{width} * bytesPerPixel * height;
    // A size of 0 is that of a side which has no power of two above it.
    if (size != 0 && slot->bytes && slot->size >= size)
        return true;

    std::free(slot->bytes);
    slot->bytes = nullptr;
    slot->size = 0;
    if (size == 0 || size > std::numeric_limits<std::uint32_t>::max())
        return false;
    void* bytes = nullptr;
    if (posix_memalign(&bytes, kAlignment, size) != 0)
        return false;
    // Black, should it be shown before a picture was drawn into all of it.
    std::memset(bytes, 0, size);
    slot->bytes = bytes;
    slot->size = static_cast<std::uint32_t>(size);
    return true;
}

void CGLScreenPreview::DrawFrameToTexture(IKestrixVideoFrame* left, const FrameLines& leftLines,
                                          IKestrixVideoFrame* right, void* destination,
                                          unsigned width, unsigned height,
                                          unsigned destinationRowBytes, unsigned bytesPerPixel,
                                          int lineStep)
{
    drawEye(left, leftLines, width, height, destination, destinationRowBytes, lineStep);
    if (!right)
        return;

    // The right eye goes the way that the left one was set up for.
    const FrameLines rightLines(right);
    if (right->GetPixelFormat() != previewFormat() ||
        frameColourspace(right) != previewColourspace())
        return;
    const std::size_t rows = height / static_cast<unsigned>(lineStep);
    const std::size_t offset = m_3DFormat == Preview3DSideBySide
                                   ? std::size_t{width} * bytesPerPixel
                                   : rows * destinationRowBytes;
    drawEye(right, rightLines, width, height, static_cast<std::byte*>(destination) + offset,
            destinationRowBytes, lineStep);
}

void CGLScreenPreview::drawEye(IKestrixVideoFrame* frame, const FrameLines& lines, unsigned width,
                               unsigned height, void* destination, unsigned destinationRowBytes,
                               int lineStep)
{
    if (lines.width != width || lines.height != height || !lines.holds(previewFormat(), lineStep))
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
    // A stride of several lines passes over those between.
    render(width, height / static_cast<unsigned>(lineStep), destination, destinationRowBytes,
           source, static_cast<unsigned>(sourceRowBytes * lineStep));
}

HRESULT CGLScreenPreview::PaintGL()
{
    if (!m_ready) {
        drawBlack();
        return S_OK;
    }
    glEnable(GL_TEXTURE_2D);
    if (m_ready->updateTexture)
        updateTexture(*m_ready);
    drawTexture(*m_ready);
    glDisable(GL_TEXTURE_2D);
    return S_OK;
}

void CGLScreenPreview::updateTexture(FrameTextureBuffer& slot) const
{
    slot.updateTexture = false;
    if (slot.reallocateTexture) {
        slot.reallocateTexture = false;
        if (slot.texture)
            glDeleteTextures(1, &slot.texture);
        slot.texture = 0;
    }

    const bool makeStorage = slot.texture == 0;
    if (makeStorage)
        glGenTextures(1, &slot.texture);
    glBindTexture(GL_TEXTURE_2D, slot.texture);
    if (makeStorage) {
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP);
    }

    if (!m_pixelBuffers)
        upload(slot, makeStorage, slot.bytes);
    else if (!uploadThroughPixelBuffer(slot, makeStorage) && makeStorage)
        slot.reallocateTexture = true; // it has no storage yet
}

bool CGLScreenPreview::uploadThroughPixelBuffer(const FrameTextureBuffer& slot, bool makeStorage)
{
    s_glBindBuffer(GL_PIXEL_UNPACK_BUFFER, slot.pixelBuffer);
    // New storage each time, so that the driver need not wait for an upload that is under way.
    s_glBufferData(GL_PIXEL_UNPACK_BUFFER, slot.size, nullptr, GL_STREAM_DRAW);
    void* const mapped = s_glMapBuffer(GL_PIXEL_UNPACK_BUFFER, GL_WRITE_ONLY);
    if (mapped) {
        // Rows below the picture are left out.
        const std::size_t rowBytes = slot.size / slot.textureHeight;
        std::memcpy(mapped, slot.bytes, rowBytes * slot.frameHeight);
        s_glUnmapBuffer(GL_PIXEL_UNPACK_BUFFER);
        upload(slot, makeStorage, nullptr);
    }
    s_glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    return mapped != nullptr;
}
