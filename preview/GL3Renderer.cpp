/// Makes, fills and draws with the GL objects of the OpenGL 3 helper.
#include "preview/GL3Renderer.h"

#include "api/ScopedBufferBytes.h"
#include "preview/PreviewShaders.h"
#include "preview/ShaderFormats.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace {

// Texture units, as the samplers of the shader have them.
constexpr GLint kFrameUnit = 0;
constexpr GLint kLutUnit = 1;

constexpr auto kLutEdge = static_cast<GLsizei>(ScreenPreviewLut::kEdge);

// Two eyes side by side, or one above the other, are still of a size that the GL can be told.
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

void setSampler(GLuint program, const char* name, GLint unit)
{
    gl3.UseProgram(program);
    gl3.Uniform1i(gl3.GetUniformLocation(program, name), unit);
    gl3.UseProgram(0);
}

/// Fetches the log of a build that failed, for whoever traces GL calls; the library shows no text.
/// A shader's or a program's log by `getInfoLog`.
void fetchLog(GLuint name, PFNGLGETSHADERINFOLOGPROC getInfoLog)
{
    // Asked of a program too, which is an error to the GL and leaves the length at 0.
    GLint length = 0;
    gl3.GetShaderiv(name, GL_INFO_LOG_LENGTH, &length);
    if (length <= 0)
        return;
    const std::unique_ptr<GLchar[]> log(new (std::nothrow)
                                            GLchar[static_cast<std::size_t>(length)]);
    if (log)
        getInfoLog(name, length, nullptr, log.get());
}

bool compileShader(GLuint& shader, GLenum type, const GLchar* source)
{
    shader = gl3.CreateShader(type);
    gl3.ShaderSource(shader, 1, &source, nullptr);
    gl3.CompileShader(shader);

    GLint compiled = GL_FALSE;
    gl3.GetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled == GL_FALSE)
        fetchLog(shader, gl3.GetShaderInfoLog);
    return compiled != GL_FALSE;
}

/// Points the attribute `name` at its floats within a `Vertex` of the bound array buffer.
void setAttribute(GLuint program, const char* name, GLint components, std::size_t offset)
{
    const auto location = static_cast<GLuint>(gl3.GetAttribLocation(program, name));
    gl3.EnableVertexAttribArray(location);
    gl3.VertexAttribPointer(
        location, components, GL_FLOAT, GL_TRUE, sizeof(Vertex),
        reinterpret_cast<const void*>(offset)); // NOLINT(performance-no-int-to-ptr): GL takes it so
    gl3.EnableVertexAttribArray(location);
}

/// How the words of a frame become texels. A format that the shader does not know is uploaded too.
GLenum texelType(std::uint32_t pixelFormat)
{
    const ShaderFormat* const format = findShaderFormat(pixelFormat);
    return format ? format->texelType : GL_UNSIGNED_INT_8_8_8_8_REV;
}

/// The frame's `KestrixColorspaceCode`, 0 where it tells none.
std::uint32_t colourspaceCode(IKestrixVideoFrame* frame)
{
    std::int64_t code = 0;
    InterfaceRef<IKestrixVideoFrameMetadata> metadata;
    if (metadata.query(frame, IID_IKestrixVideoFrameMetadata) == S_OK && metadata &&
        metadata->GetInt(MetadataColorspace, &code) != S_OK)
        code = 0;
    return static_cast<std::uint32_t>(code);
}

/// The right eye of the pair that `frame` is the left eye of, null for a frame by itself.
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

    const HRESULT status = makeProgram();
    if (status < 0)
        return status;
    makeQuad();
    makeFrameTexture();
    makeLutTexture();

    m_pixelFormatLocation = gl3.GetUniformLocation(m_program, "fPixelFormat");
    m_frameSizeLocation = gl3.GetUniformLocation(m_program, "fFrameSize");
    m_3DFormatLocation = gl3.GetUniformLocation(m_program, "v3DFormat");
    m_flipLocation = gl3.GetUniformLocation(m_program, "vFlip");
    return S_OK;
}

HRESULT CGL3ScreenPreview::Renderer::makeProgram()
{
    if (!compileShader(m_vertexShader, GL_VERTEX_SHADER, kVertexShader) ||
        !compileShader(m_fragmentShader, GL_FRAGMENT_SHADER, kFragmentShader))
        return E_FAIL;

    m_program = gl3.CreateProgram();
    gl3.AttachShader(m_program, m_vertexShader);
    gl3.AttachShader(m_program, m_fragmentShader);
    gl3.LinkProgram(m_program);

    GLint linked = GL_FALSE;
    gl3.GetProgramiv(m_program, GL_LINK_STATUS, &linked);
    if (linked == GL_FALSE) {
        fetchLog(m_program, gl3.GetProgramInfoLog);
        return E_FAIL;
    }
    return S_OK;
}

void CGL3ScreenPreview::Renderer::makeQuad()
{
    gl3.GenBuffers(1, &m_vertexBuffer);
    gl3.BindBuffer(GL_ARRAY_BUFFER, m_vertexBuffer);
    gl3.BufferData(GL_ARRAY_BUFFER, sizeof(kQuad), kQuad, GL_STATIC_DRAW);
    setAttribute(m_program, "vPosition", 3, offsetof(Vertex, position));
    setAttribute(m_program, "vTexCoord", 2, offsetof(Vertex, texture));
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
    setSampler(m_program, "fTex", kFrameUnit);
    bindTexture(0, GL_TEXTURE_2D, 0);
}

void CGL3ScreenPreview::Renderer::makeLutTexture()
{
    gl3.GenTextures(1, &m_lutTexture);
    bindTexture(0, GL_TEXTURE_3D, m_lutTexture);
    setSampling(GL_TEXTURE_3D);
    gl3.TexImage3D(GL_TEXTURE_3D, 0, GL_RGBA, kLutEdge, kLutEdge, kLutEdge, 0, GL_RGBA, GL_FLOAT,
                   ScreenPreviewLut::Get(m_lutID, LutFormat_RGBA32F));
    setSampler(m_program, "fLut", kLutUnit);
    bindTexture(0, GL_TEXTURE_3D, 0);
}

void CGL3ScreenPreview::Renderer::cleanup()
{
    m_pixelFormatLocation = 0;
    m_frameSizeLocation = 0;
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
    gl3.DeleteProgram(m_program);
    m_program = 0;
    gl3.DeleteShader(m_fragmentShader);
    m_fragmentShader = 0;
    gl3.DeleteShader(m_vertexShader);
    m_vertexShader = 0;
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
    const std::shared_ptr<void> left = ReadableFrameBytes(frame);
    if (!left)
        return;
    m_flip = (frame->GetFlags() & FrameFlagFlipVertical) != 0;

    const InterfaceRef<IKestrixVideoFrame> rightFrame = rightEye(frame);
    std::shared_ptr<void> right;
    if (rightFrame) {
        changed |= m_3DFormat != format;
        m_3DFormat = format;
        // Both eyes are uploaded with the left one's size.
        if (rightFrame->GetHeight() == height && rightFrame->GetRowBytes() == rowBytes)
            right = ReadableFrameBytes(rightFrame.get());
    }
    // Not a change: storage that was made for two eyes is kept for one.
    if (!right)
        m_3DFormat = Preview3DFormat::LeftOnly;

    bindTexture(kFrameUnit, GL_TEXTURE_2D, m_frameTexture);
    uploadEyes(left.get(), right.get(), texelsPerRow, changed);
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
                                             GLsizei texelsPerRow, bool makeStorage)
{
    const GLsizei rows = m_height / 2;
    const GLsizei eyesAcross = m_3DFormat == Preview3DFormat::SideBySide ? 2 : 1;
    const GLsizei eyesDown = m_3DFormat == Preview3DFormat::TopBottom ? 2 : 1;
    const GLenum type = texelType(m_pixelFormat);
    const auto upload = [&](const void* eye, GLint x, GLint y) {
        gl3.TexSubImage2D(GL_TEXTURE_2D, 0, x, y, texelsPerRow, rows, GL_BGRA, type, eye);
    };

    // Rows of twice the frame's length, of which the first half is taken: every second line.
    GLint unpackRowLength = 0;
    gl3.GetIntegerv(GL_UNPACK_ROW_LENGTH, &unpackRowLength);
    gl3.PixelStorei(GL_UNPACK_ROW_LENGTH, 2 * texelsPerRow);

    if (makeStorage)
        gl3.TexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, texelsPerRow * eyesAcross, rows * eyesDown, 0,
                       GL_BGRA, type, nullptr);
    // The right eye lies behind the left one, across or down, or at 0, 0 when it is alone.
    if (m_3DFormat != Preview3DFormat::RightOnly)
        upload(left, 0, 0);
    if (m_3DFormat != Preview3DFormat::LeftOnly)
        upload(right, texelsPerRow * (eyesAcross - 1), rows * (eyesDown - 1));

    gl3.PixelStorei(GL_UNPACK_ROW_LENGTH, unpackRowLength);
}

void CGL3ScreenPreview::Renderer::paint()
{
    const GLfloat eyesAcross = m_3DFormat == Preview3DFormat::SideBySide ? 2 : 1;
    const GLfloat eyesDown = m_3DFormat == Preview3DFormat::TopBottom ? 2 : 1;
    const GLfloat pictureWidth = static_cast<GLfloat>(m_width) * eyesAcross;
    const GLfloat pictureHeight = static_cast<GLfloat>(m_height) * 0.5F * eyesDown;

    gl3.UseProgram(m_program);
    bindTexture(kFrameUnit, GL_TEXTURE_2D, m_frameTexture);
    bindTexture(kLutUnit, GL_TEXTURE_3D, m_lutTexture);

    gl3.Uniform1ui(m_pixelFormatLocation, m_pixelFormat);
    gl3.Uniform2f(m_frameSizeLocation, pictureWidth, pictureHeight);
    gl3.Uniform1i(m_flipLocation, m_flip ? 1 : 0);
    gl3.Uniform1i(m_3DFormatLocation, static_cast<GLint>(m_3DFormat));

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
