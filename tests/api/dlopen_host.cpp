/// A host that knows nothing of the library but its header and its file: finds both factories,
/// makes both helpers and gives them back, for which no GL context is needed. Takes the library's
/// path; one line and exit status 1 for whatever goes wrong.
#include <KestrixPreviewAPI.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <initializer_list>

namespace {

/// What is wrong, null where all is well.
const char* use(void* library, const char* factory)
{
    void* const symbol = dlsym(library, factory);
    if (!symbol)
        return "not exported";
    CreateScreenPreviewHelperFunction create;
    std::memcpy(&create, &symbol, sizeof(create));

    IKestrixGLScreenPreviewHelper* const helper = create();
    void* same = nullptr;
    if (!helper)
        return "gave no helper";
    if (helper->QueryInterface(IID_IKestrixGLScreenPreviewHelper, &same) != S_OK || same != helper)
        return "the helper does not answer for its own interface";
    if (helper->SetFrame(nullptr) != S_OK ||
        helper->Set3DPreviewFormat(Preview3DSideBySide) != S_OK)
        return "a call across the boundary failed";
    if (helper->Release() != 1 || helper->Release() != 0)
        return "references are not counted";
    return nullptr;
}

} // namespace

int main(int count, char** arguments)
{
    void* const library = count == 2 ? dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (!library) {
        std::fprintf(stderr, "dlopen_host: %s\n", count == 2 ? dlerror() : "takes one library");
        return 1;
    }
    for (const char* factory :
         {"CreateOpenGLScreenPreviewHelper_0002", "CreateOpenGL3ScreenPreviewHelper_0002"})
        if (const char* const fault = use(library, factory)) {
            std::fprintf(stderr, "dlopen_host: %s: %s\n", factory, fault);
            return 1;
        }
    return dlclose(library);
}
