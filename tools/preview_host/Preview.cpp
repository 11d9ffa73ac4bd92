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
    {E_INVALIDARG, "the helper has no conversion for frames of this format, colourspace and width"},
    {E_OUTOFMEMORY, "out of memory, or a 3D packing that the helper doesn't show"},
};

template<std::size_t N>
std::string faultOf(const char* call, HRESULT status, const Reason (&reasons)[N])
{
    for (const Reason& reason : reasons)
        if (reason.status == status)
            return std::string(call) + ": " + reason.words;
    return std::string(call) + " failed";
}

void check(const char* call, HRESULT status)
{
    if (status < 0)
        throw std::runtime_error(faultOf(call, status, kInitializeReasons));
}

} // namespace

Preview::Preview(HelperKind kind, std::uint32_t preview3D)
    : m_helper(kind == HelperKind::OpenGL3 ? CreateOpenGL3ScreenPreviewHelper_0002()
                                           : CreateOpenGLScreenPreviewHelper_0002())
{
    if (!m_helper)
        throw std::runtime_error("the library could not make a preview helper");
    check("InitializeGL", m_helper->InitializeGL());
    set3DMode(preview3D);
}

void Preview::set3DMode(std::uint32_t mode)
{
    m_helper->Set3DPreviewFormat(mode);
}

void Preview::setFrame(IKestrixVideoFrame* frame)
{
    const HRESULT status = m_helper->SetFrame(frame);
    if (status < 0)
        throw FrameRefused(faultOf("SetFrame", status, kSetFrameReasons));
}

void Preview::paint()
{
    check("PaintGL", m_helper->PaintGL());
}

} // namespace preview_host
