/// A host that knows nothing of the library but its headers and its file: finds all factories,
/// makes a helper by each and gives it back, for which no GL context is needed. Takes the library's
/// path; one line and exit status 1 for whatever goes wrong.
#include <KestrixPreviewAPI_v14_2_1.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstring>

namespace {

void* s_library = nullptr;
int s_callsOfOwnFactory = 0;

template<class Helper>
Helper* createHelper(const char* factory)
{
    void* const symbol = dlsym(s_library, factory);
    if (!symbol)
        return nullptr;
    Helper* (*create)() = nullptr;
    std::memcpy(&create, &symbol, sizeof(create));
    return create();
}

/// What is wrong, null where all is well.
template<class Helper>
const char* use(const char* factory, REFIID id)
{
    Helper* const helper = createHelper<Helper>(factory);
    void* same = nullptr;
    if (!helper)
        return "not exported, or gave no helper";
    if (helper->QueryInterface(id, &same) != S_OK || same != helper)
        return "the helper does not answer for its own interface";
    if (helper->SetFrame(nullptr) != S_OK ||
        helper->Set3DPreviewFormat(Preview3DSideBySide) != S_OK)
        return "a call across the boundary failed";
    if (helper->Release() != 1 || helper->Release() != 0)
        return "references are not counted";
    return nullptr;
}

template<class Helper>
bool works(const char* factory, REFIID id)
{
    const char* const fault = use<Helper>(factory, id);
    if (fault)
        std::fprintf(stderr, "dlopen_host: %s: %s\n", factory, fault);
    return !fault;
}

bool worksWithCurrent(const char* factory)
{
    return works<IKestrixGLScreenPreviewHelper>(factory, IID_IKestrixGLScreenPreviewHelper);
}

bool worksWithOld(const char* factory)
{
    return works<IKestrixGLScreenPreviewHelper_v14_2_1>(factory,
                                                        IID_IKestrixGLScreenPreviewHelper_v14_2_1);
}

} // namespace

/// Comes before the library's own of that name, as a host's may: old helpers have to be made by it.
IKestrixGLScreenPreviewHelper* CreateOpenGL3ScreenPreviewHelper_0002()
{
    ++s_callsOfOwnFactory;
    return createHelper<IKestrixGLScreenPreviewHelper>("CreateOpenGL3ScreenPreviewHelper_0002");
}

int main(int count, char** arguments)
{
    s_library = count == 2 ? dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    if (!s_library) {
        std::fprintf(stderr, "dlopen_host: %s\n", count == 2 ? dlerror() : "takes one library");
        return 1;
    }
    if (!worksWithCurrent("CreateOpenGLScreenPreviewHelper_0002") ||
        !worksWithCurrent("CreateOpenGL3ScreenPreviewHelper_0002") ||
        !worksWithOld("CreateOpenGLScreenPreviewHelper_0001") ||
        !worksWithOld("CreateOpenGL3ScreenPreviewHelper_0001"))
        return 1;
    if (s_callsOfOwnFactory != 1) {
        std::fprintf(stderr, "dlopen_host: the exported factory was passed by\n");
        return 1;
    }
    return dlclose(s_library);
}
