/// The factories.
#include "api/KestrixPreviewAPI.h"

#include "api/ScreenPreviewFactories.h"
#include "preview/GL3ScreenPreview.h"
#include "preview/GLScreenPreview.h"

namespace {

/// The body of every factory. If anything fails inside, the host gets null.
template<class Helper>
IKestrixGLScreenPreviewHelper* createHelper() noexcept
{
    try {
        return new Helper;
    } catch (...) {
        return nullptr;
    }
}

} // namespace

IKestrixGLScreenPreviewHelper* CreateOpenGLScreenPreviewHelper_Head() noexcept
{
    return createHelper<CGLScreenPreview>();
}

IKestrixGLScreenPreviewHelper* CreateOpenGL3ScreenPreviewHelper_Head() noexcept
{
    return createHelper<CGL3ScreenPreview>();
}

IKestrixGLScreenPreviewHelper* CreateOpenGLScreenPreviewHelper_0002()
{
    return CreateOpenGLScreenPreviewHelper_Head();
}

IKestrixGLScreenPreviewHelper* CreateOpenGL3ScreenPreviewHelper_0002()
{
    return CreateOpenGL3ScreenPreviewHelper_Head();
}
