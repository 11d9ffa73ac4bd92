/// All that a host can see of the headers, for abidw to write down. It is a library of its own,
/// because the released library has no debug information and mentions only what the factories use.
///
/// Api.ExportedNames checks that the real library has the same factories.
#include <KestrixPreviewAPI_v14_2_1.h>

extern "C" {

KESTRIX_EXPORT void interfaces(IKestrixVideoFrame*, IKestrixVideoBuffer*,
                               IKestrixVideoFrame3DExtensions*, IKestrixGLScreenPreviewHelper*,
                               IKestrixVideoFrameMetadata*, IKestrixVideoInputFrame*,
                               IKestrixMutableVideoFrame*, IKestrixFrameProviderRegistry*)
{
}

KESTRIX_EXPORT void interfaces_v14_2_1(IKestrixVideoFrame_v14_2_1*,
                                       IKestrixMutableVideoFrame_v14_2_1*,
                                       IKestrixVideoInputFrame_v14_2_1*,
                                       IKestrixVideoFrame3DExtensions_v14_2_1*,
                                       IKestrixGLScreenPreviewHelper_v14_2_1*)
{
}

KESTRIX_EXPORT void codes(KestrixFrameFlags, KestrixBufferAccessFlags, KestrixMetadataID,
                          KestrixColorspaceCode, Kestrix3DPackingFormat, Kestrix3DPreviewFormat)
{
}

KESTRIX_EXPORT IKestrixGLScreenPreviewHelper* CreateOpenGLScreenPreviewHelper_0002()
{
    return nullptr;
}

KESTRIX_EXPORT IKestrixGLScreenPreviewHelper* CreateOpenGL3ScreenPreviewHelper_0002()
{
    return nullptr;
}

KESTRIX_EXPORT IKestrixGLScreenPreviewHelper_v14_2_1* CreateOpenGLScreenPreviewHelper_0001()
{
    return nullptr;
}

KESTRIX_EXPORT IKestrixGLScreenPreviewHelper_v14_2_1* CreateOpenGL3ScreenPreviewHelper_0001()
{
    return nullptr;
}
}
