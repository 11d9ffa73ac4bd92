/// Makes, fills and draws with the GL objects of the OpenGL 3 helper.
#include "preview/GL3Renderer.h"

#include "api/ScopedBufferBytes.h"
#include "preview/ShaderFormats.h"
#include "preview/TextureSize.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <utility>

namespace {

// The texture units of the shader's samplers.
constexpr GLint kFrameUnit = 0;
constexpr GLint kLutUnit = 1;

constexpr auto kLutEdge = static_cast<GLsizei>(ScreenPreviewLut::kEdge);

// With these limits the size of both eyes, side by side or one above the other, fits in a GLsizei.
constexpr std::int64_t kMaxHeight = std::numeric_limits<GLsizei>::max();
constexpr std::int64_t kMaxRowBytes = std::int64_t{4} * (std::numeric_limits<GLsizei>::max() / 2);

struct Vertex {
    GLfloat position[3];
    GLfloat texture[2];
};

/// The whole viewport, the texture's first row at the top.
constexpr Vertex kQuad[] = {
    {{-1, -1, 0}, {0, 1}},
    {{1, -1, 0}, {1, 1}},
    {{1, 1, 0}, {1, 0}},
    {{-1, 1, 0}, {0, 0}},
};
constexpr GLushort kQuadIndices[] = {0, 1, 2, 2, 3, 0};

void bindTexture(GLint unit, GLenum target, GLuint texture)
{
    gl3.ActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
    gl3.BindTexture(target, texture);
}

/// Filtering and edges of the texture that is bound to `target`.
void setSampling(GLenum target)
{
    gl3.TexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl3.TexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl3.TexParameteri(target, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl3.TexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

/// How the words of a frame become texels. A format that the shader does not know is uploaded too.
GLenum texelType(std::uint32_t pixelFormat)
{
    const ShaderFormat* const format = findShaderFormat(pixelFormat);
    return format ? format->texelType : GL_UNSIGNED_INT_8_8_8_8_REV;
}

/// How many eyes are beside each other in the picture, and how many above each other.
GLsizei eyesAcross(Preview3DFormat format)
{
    return format == Preview3DFormat::SideBySide ? 2 : 1;
}

GLsizei eyesDown(Preview3DFormat format)
{
    return format == Preview3DFormat::TopBottom ? 2 : 1;
}

/// The frame's `KestrixColorspaceCode`, 0 if it has none.
std::uint32_t colourspaceCode(IKestrixVideoFrame* frame)
{
    std::int64_t code = 0;
    InterfaceRef<IKestrixVideoFrameMetadata> metadata;
    if (metadata.query(frame, IID_IKestrixVideoFrameMetadata) == S_OK && metadata &&
        metadata->GetInt(MetadataColorspace, &code) != S_OK)
        code = 0;
    return static_cast<std::uint32_t>(code);
}

/// The right eye that belongs to `frame`, null if there is none.
InterfaceRef<IKestrixVideoFrame> rightEye(IKestrixVideoFrame* frame)
{
    InterfaceRef<IKestrixVideoFrame> right;
    InterfaceRef<IKestrixVideoFrame3DExtensions> extensions;
    if (extensions.query(frame, IID_IKestrixVideoFrame3DExtensions) == S_OK && extensions)
        extensions->GetFrameForRightEye(right.receive());
    return right;
}

} // namespace

HRESULT CGL3ScreenPreview::Renderer::init()
{
    clear();
    gl3.GenVertexArrays(1, &m_vertexArray);
    gl3.BindVertexArray(m_vertexArray);

    if (!m_program.build())
        return E_FAIL;
    makeQuad();
    makeFrameTexture();
    makeLutTexture();

    m_program.findUniforms();
    return S_OK;
}

void CGL3ScreenPreview::Renderer::makeQuad()
{
    gl3.GenBuffers(1, &m_vertexBuffer);
    gl3.BindBuffer(GL_ARRAY_BUFFER, m_vertexBuffer);
    gl3.BufferData(GL_ARRAY_BUFFER, sizeof(kQuad), kQuad, GL_STATIC_DRAW);
    m_program.setAttribute("vPosition", 3, sizeof(Vertex), offsetof(Vertex, position));
    m_program.setAttribute("vTexCoord", 2, sizeof(Vertex), offsetof(Vertex, texture));
    gl3.BindBuffer(GL_ARRAY_BUFFER, 0);

    gl3.GenBuffers(1, &m_indexBuffer);
    gl3.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indexBuffer);
    gl3.BufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof(kQuadIndices), kQuadIndices, GL_STATIC_DRAW);
    gl3.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void CGL3ScreenPreview::Renderer::makeFrameTexture()
{
    gl3.GenTextures(1, &m_frameTexture);
    bindTexture(0, GL_TEXTURE_2D, m_frameTexture);
    setSampling(GL_TEXTURE_2D);
    m_program.setSampler("fTex", kFrameUnit);
    bindTexture(0, GL_TEXTURE_2D, 0);
}

void CGL3ScreenPreview::Renderer::makeLutTexture()
{
    gl3.GenTextures(1, &m_lutTexture);
    bindTexture(0, GL_TEXTURE_3D, m_lutTexture);
    setSampling(GL_TEXTURE_3D);
    gl3.TexImage3D(GL_TEXTURE_3D, 0, GL_RGBA, kLutEdge, kLutEdge, kLutEdge, 0, GL_RGBA, GL_FLOAT,
                   ScreenPreviewLut::Get(m_lutID, LutFormat_RGBA32F));
    m_program.setSampler("fLut", kLutUnit);
    bindTexture(0, GL_TEXTURE_3D, 0);
}

void CGL3ScreenPreview::Renderer::cleanup()
{
    m_width = 0;
    m_height = 0;
    m_pixelFormat = 0;
    m_rowBytes = 0;
    m_lutID = LutID_YCbCr_709;

    gl3.DeleteTextures(1, &m_lutTexture);
    m_lutTexture = 0;
    gl3.DeleteTextures(1, &m_frameTexture);
    m_frameTexture = 0;
    gl3.DeleteBuffers(1, &m_indexBuffer);
    m_indexBuffer = 0;
    gl3.DeleteBuffers(1, &m_vertexBuffer);
    m_vertexBuffer = 0;
    m_program.cleanup();
    gl3.DeleteVertexArrays(1, &m_vertexArray);
    m_vertexArray = 0;
}

void CGL3ScreenPreview::Renderer::clear()
{
    gl3.ClearColor(0, 0, 0, 0);
    gl3.Clear(GL_COLOR_BUFFER_BIT);
}

void CGL3ScreenPreview::Renderer::update(IKestrixVideoFrame* frame, Preview3DFormat format,
                                         GLsync& fence)
{
    const std::uint32_t colourspace = colourspaceCode(frame);
    const std::int64_t height = frame->GetHeight();
    const std::int64_t rowBytes = frame->GetRowBytes();
    bool changed = adoptProperties(frame, height, rowBytes);
    selectLut(colourspace);

    if (height < 0 || height > kMaxHeight || rowBytes < 0 || rowBytes > kMaxRowBytes)
        return;
    const auto texelsPerRow = static_cast<GLsizei>(rowBytes / 4);
    const auto rows = static_cast<GLsizei>(height / 2);
    const std::shared_ptr<void> left = ReadableFrameBytes(frame);
    if (!left)
        return;
    m_flip = (frame->GetFlags() & FrameFlagFlipVertical) != 0;

    const InterfaceRef<IKestrixVideoFrame> rightFrame = rightEye(frame);
    std::shared_ptr<void> right;
    if (rightFrame) {
        changed |= m_3DFormat != format;
        m_3DFormat = format;
        // Both eyes are uploaded with the size of the left one.
        if (rightFrame->GetHeight() == height && rightFrame->GetRowBytes() == rowBytes)
            right = ReadableFrameBytes(rightFrame.get());
    }
    // This is not a change: one eye is shown in the storage that was made for two.
    if (!right)
        m_3DFormat = Preview3DFormat::LeftOnly;

    if (!textureFits(texelsPerRow * eyesAcross(m_3DFormat), rows * eyesDown(m_3DFormat),
                     gl3.GetIntegerv)) {
        m_rowBytes = -1; // the storage does not have this frame's size
        return;
    }
    bindTexture(kFrameUnit, GL_TEXTURE_2D, m_frameTexture);
    uploadEyes(left.get(), right.get(), texelsPerRow, rows, changed);
    fence = gl3.FenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    bindTexture(kFrameUnit, GL_TEXTURE_2D, 0);
}

bool CGL3ScreenPreview::Renderer::adoptProperties(IKestrixVideoFrame* frame, std::int64_t height,
                                                  std::int64_t rowBytes)
{
    const auto adopt = [](auto& field, auto value) { return std::exchange(field, value) != value; };
    bool changed = adopt(m_width, static_cast<std::int32_t>(frame->GetWidth()));
    changed |= adopt(m_height, static_cast<std::int32_t>(height));
    changed |= adopt(m_pixelFormat, frame->GetPixelFormat());
    changed |= adopt(m_rowBytes, rowBytes);
    return changed;
}

void CGL3ScreenPreview::Renderer::selectLut(std::uint32_t colourspaceCode)
{
    const LutID id =
        ScreenPreviewLut::GetID(static_cast<unsigned>(m_width), static_cast<unsigned>(m_height),
                                m_pixelFormat, colourspaceCode);
    if (id == m_lutID)
        return;

    bindTexture(kLutUnit, GL_TEXTURE_3D, m_lutTexture);
    gl3.TexSubImage3D(GL_TEXTURE_3D, 0, 0, 0, 0, kLutEdge, kLutEdge, kLutEdge, GL_RGBA, GL_FLOAT,
                      ScreenPreviewLut::Get(id, LutFormat_RGBA32F));
    m_lutID = id;
    bindTexture(kLutUnit, GL_TEXTURE_3D, 0);
}

void CGL3ScreenPreview::Renderer::uploadEyes(const void* left, const void* right,
                                             GLsizei texelsPerRow, GLsizei rows, bool makeStorage)
{
    const GLsizei across = eyesAcross(m_3DFormat);
    const GLsizei down = eyesDown(m_3DFormat);
    const GLenum type = texelType(m_pixelFormat);
    const auto upload = [&](const void* eye, GLint x, GLint y) {
        gl3.TexSubImage2D(GL_TEXTURE_2D, 0, x, y, texelsPerRow, rows, GL_BGRA, type, eye);
    };

    // For GL, two lines of the frame are one row. It reads the first half of each row, which is
    // every second line.
    GLint unpackRowLength = 0;
    gl3.GetIntegerv(GL_UNPACK_ROW_LENGTH, &unpackRowLength);
    gl3.PixelStorei(GL_UNPACK_ROW_LENGTH, 2 * texelsPerRow);

    if (makeStorage)
        gl3.TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, texelsPerRow * across, rows * down, 0, GL_BGRA,
                       type, nullptr);
    // The right eye is beside or below the left one. If it is alone, it is at 0, 0.
    if (m_3DFormat != Preview3DFormat::RightOnly)
        upload(left, 0, 0);
    if (m_3DFormat != Preview3DFormat::LeftOnly)
        upload(right, texelsPerRow * (across - 1), rows * (down - 1));

    gl3.PixelStorei(GL_UNPACK_ROW_LENGTH, unpackRowLength);
}

void CGL3ScreenPreview::Renderer::paint()
{
    const GLfloat pictureWidth =
        static_cast<GLfloat>(m_width) * static_cast<GLfloat>(eyesAcross(m_3DFormat));
    const GLfloat pictureHeight =
        static_cast<GLfloat>(m_height) * 0.5F * static_cast<GLfloat>(eyesDown(m_3DFormat));

    m_program.use();
    bindTexture(kFrameUnit, GL_TEXTURE_2D, m_frameTexture);
    bindTexture(kLutUnit, GL_TEXTURE_3D, m_lutTexture);

    m_program.setPicture(m_pixelFormat, pictureWidth, pictureHeight, m_flip,
                         static_cast<GLint>(m_3DFormat));

    gl3.BindVertexArray(m_vertexArray);
    gl3.BindBuffer(GL_ARRAY_BUFFER, m_vertexBuffer);
    gl3.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, m_indexBuffer);
    gl3.DrawElements(GL_TRIANGLES, std::size(kQuadIndices), GL_UNSIGNED_SHORT, nullptr);

    gl3.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    gl3.BindBuffer(GL_ARRAY_BUFFER, 0);
    gl3.BindVertexArray(0);
    bindTexture(kLutUnit, GL_TEXTURE_3D, 0);
    bindTexture(kFrameUnit, GL_TEXTURE_2D, 0);
    gl3.UseProgram(0);
}
