/// The calls to the library.
#include "Preview.h"

namespace preview_host {
namespace {

/// Why a call failed, in words, where the status has a meaning of its own for it.
struct Reason {
    HRESULT status;
    const char* words;
};

constexpr Reason kInitializeReasons[] = {
    {E_NOTIMPL, "the OpenGL context is older than 3.2"},
    {E_FAIL, "an OpenGL function is missing or a shader does not build"},
};

constexpr Reason kSetFrameReasons[] = {
    {E_INVALIDARG, "the helper has no conversion for frames of this format and colourspace"},
    {E_OUTOFMEMORY, "out of memory, or a 3D packing that the helper doesn't show"},
};

template<std::size_t N>
void check(const char* call, HRESULT status, const Reason (&reasons)[N])
{
    if (status >= 0)
        return;
    for (const Reason& reason : reasons)
        if (reason.status == status)
            throw std::runtime_error(std::string(call) + ": " + reason.words);
    throw std::runtime_error(std::string(call) + " failed");
}

} // namespace

Preview::Preview(HelperKind kind, std::uint32_t preview3D)
    : m_helper(kind == HelperKind::OpenGL3 ? CreateOpenGL3ScreenPreviewHelper_0002()
                                           : CreateOpenGLScreenPreviewHelper_0002())
{
    if (!m_helper)
        throw std::runtime_error("the library could not make a preview helper");
    check("InitializeGL", m_helper->InitializeGL(), kInitializeReasons);
    m_helper->Set3DPreviewFormat(preview3D);
}

void Preview::setFrame(IKestrixVideoFrame* frame)
{
    const HRESULT status = m_setFrameTime.time([&] { return m_helper->SetFrame(frame); });
    check("SetFrame", status, kSetFrameReasons);
}

void Preview::paint()
{
    const HRESULT status = m_paintTime.time([&] { return m_helper->PaintGL(); });
    check("PaintGL", status, kInitializeReasons);
}

} // namespace preview_host
