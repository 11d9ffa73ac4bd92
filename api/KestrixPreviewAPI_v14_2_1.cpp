/// The factories of revision 14.2.1.
#include "api/KestrixPreviewAPI_v14_2_1.h"

#include "api/InterfaceRef.h"
#include "api/v14_2_1/GLScreenPreviewHelper.h"

#include <new>

namespace {

/// The body of both factories. `createCurrent` is the exported factory of the current revision. If
/// a host defines a factory of the same name, the helper of that one is wrapped.
IKestrixGLScreenPreviewHelper_v14_2_1* createHelper(CreateScreenPreviewHelperFunction createCurrent)
{
    InterfaceRef<IKestrixGLScreenPreviewHelper> current;
    *current.receive() = createCurrent();
    if (!current)
        return nullptr;
    return new (std::nothrow) CKestrixGLScreenPreviewHelper_v14_2_1(current.get());
}

} // namespace

IKestrixGLScreenPreviewHelper_v14_2_1* CreateOpenGLScreenPreviewHelper_0001()
{
    return createHelper(CreateOpenGLScreenPreviewHelper_0002);
}

IKestrixGLScreenPreviewHelper_v14_2_1* CreateOpenGL3ScreenPreviewHelper_0001()
{
    return createHelper(CreateOpenGL3ScreenPreviewHelper_0002);
}
