/// The calls to the library.
#include "Preview.h"

#include <initializer_list>
#include <utility>

namespace preview_host {
namespace {

/// Throws an `ERROR` if a call failed; `reasons` lists the meaning of its statuses.
template<class ERROR>
void check(HRESULT status, const std::string& call,
           std::initializer_list<std::pair<HRESULT, const char*>> reasons)
{
    if (status >= 0)
        return;
    for (const auto& [value, words] : reasons)
        if (value == status)
            throw ERROR(call + ": " + words);
    throw ERROR(call + " failed");
}

} // namespace

Preview::Preview(HelperKind kind, std::uint32_t preview3D)
    : m_helper(kind == HelperKind::OpenGL3 ? CreateOpenGL3ScreenPreviewHelper_0002()
                                           : CreateOpenGLScreenPreviewHelper_0002())
{
    if (!m_helper)
        throw std::runtime_error("the library could not make a preview helper");
    check<std::runtime_error>(
        m_helper->InitializeGL(), "InitializeGL",
        {{E_NOTIMPL, "the OpenGL context is older than 3.2"},
         {E_FAIL, "an OpenGL function is missing or a shader does not build"}});
    set3DMode(preview3D);
}

void Preview::set3DMode(std::uint32_t mode)
{
    m_helper->Set3DPreviewFormat(mode);
}

void Preview::setFrame(IKestrixVideoFrame* frame)
{
    check<FrameRefused>(
        m_helper->SetFrame(frame), "SetFrame",
        {{E_INVALIDARG,
          "the helper has no conversion for frames of this format, colourspace and width"},
         {E_OUTOFMEMORY, "out of memory, or a 3D packing that the helper doesn't show"}});
}

void Preview::paint()
{
    check<std::runtime_error>(m_helper->PaintGL(), "PaintGL", {});
}

} // namespace preview_host
