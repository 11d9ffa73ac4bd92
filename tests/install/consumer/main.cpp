/// The smallest host: links the library, makes a helper with each factory, and releases it.
#include <KestrixPreviewAPI.h>
#include <KestrixPreviewAPI_v14_2_1.h>

int main()
{
    IKestrixGLScreenPreviewHelper* const current[] = {CreateOpenGLScreenPreviewHelper_0002(),
                                                      CreateOpenGL3ScreenPreviewHelper_0002()};
    IKestrixGLScreenPreviewHelper_v14_2_1* const old[] = {CreateOpenGLScreenPreviewHelper_0001(),
                                                          CreateOpenGL3ScreenPreviewHelper_0001()};
    for (int i = 0; i < 2; ++i)
        if (!current[i] || current[i]->Release() != 0 || !old[i] || old[i]->Release() != 0)
            return 1;
    return 0;
}
