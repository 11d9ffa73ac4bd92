/// The interface of the OpenGL 3 helper: decides what to paint, and when.
#include "preview/GL3ScreenPreview.h"

#include "api/QueryInterface.h"
#include "preview/GL3Functions.h"
#include "preview/GL3Renderer.h"
#include "preview/ScreenPreviewLut.h"

#include <utility>

namespace {

/// How long a paint waits for the GL to read the frame's bytes before it releases the frame.
constexpr GLuint64 kUploadWaitNanoseconds = 10'000'000;

/// The shaders need GLSL 1.50, the version of OpenGL 3.2.
bool contextIsRecentEnough()
{
    GLint major = 0;
    GLint minor = 0;
    gl3.GetIntegerv(GL_MAJOR_VERSION, &major);
    gl3.GetIntegerv(GL_MINOR_VERSION, &minor);
    return major > 3 || (major == 3 && minor >= 2);
}

} // namespace

CGL3ScreenPreview::CGL3ScreenPreview() : m_renderer(std::make_unique<Renderer>())
{
    ScreenPreviewLut::Generate(LutFormat_RGBA32F);
}

CGL3ScreenPreview::~CGL3ScreenPreview()
{
    const std::lock_guard lock(m_mutex);
    // If the entry points are missing, no helper has made a GL object.
    if (gl3.loaded())
        m_renderer->cleanup();
}

HRESULT CGL3ScreenPreview::QueryInterface(REFIID id, void** out)
{
    return AnswerQueryInterface<IKestrixGLScreenPreviewHelper>(
        this, IID_IKestrixGLScreenPreviewHelper, id, out);
}

HRESULT CGL3ScreenPreview::InitializeGL()
{
    const std::lock_guard lock(m_mutex);
    // A failed call leaves objects too.
    if (m_initialised || m_renderer->hasObjects())
        m_renderer->cleanup();

    if (!gl3.load())
        return E_FAIL;
    if (!contextIsRecentEnough())
        return E_NOTIMPL;

    const HRESULT status = m_renderer->init();
    if (status < 0)
        return status;
    m_initialised = true;
    return S_OK;
}

HRESULT CGL3ScreenPreview::SetFrame(IKestrixVideoFrame* frame)
{
    const std::lock_guard lock(m_mutex);
    if (frame != m_frame.get()) {
        m_frame.reset();
        m_frame = InterfaceRef(frame);
    }
    m_frameChanged = true;
    return S_OK;
}

HRESULT CGL3ScreenPreview::Set3DPreviewFormat(std::uint32_t format)
{
    const std::lock_guard lock(m_mutex);
    switch (format) {
    case Preview3DDefault:
    case Preview3DTopBottom:
        m_3DFormat = Preview3DFormat::TopBottom;
        break;
    case Preview3DLeftOnly:
        m_3DFormat = Preview3DFormat::LeftOnly;
        break;
    case Preview3DRightOnly:
        m_3DFormat = Preview3DFormat::RightOnly;
        break;
    case Preview3DSideBySide:
        m_3DFormat = Preview3DFormat::SideBySide;
        break;
    default:
        break;
    }
    return S_OK;
}

HRESULT CGL3ScreenPreview::PaintGL()
{
    std::unique_lock lock(m_mutex);
    if (!m_initialised)
        return E_FAIL;
    const InterfaceRef<IKestrixVideoFrame> frame = m_frame;
    m_frame.reset();
    const bool frameChanged = std::exchange(m_frameChanged, false);
    const Preview3DFormat format = m_3DFormat;
    lock.unlock();

    if (frameChanged && !frame) {
        Renderer::clear();
        return S_OK;
    }

    // An `InitializeGL` after the successful one has failed, and has left nothing to paint with.
    if (!m_renderer->canPaint())
        return S_OK;

    GLsync uploaded = nullptr;
    if (frameChanged) {
        try {
            m_renderer->update(frame.get(), format, uploaded);
        } catch (...) {
            // The frame has thrown. The GL state must be as after every paint.
            m_renderer->paint();
            throw;
        }
    }
    m_renderer->paint();
    if (uploaded) {
        gl3.ClientWaitSync(uploaded, GL_SYNC_FLUSH_COMMANDS_BIT, kUploadWaitNanoseconds);
        gl3.DeleteSync(uploaded);
    }
    return S_OK;
}
