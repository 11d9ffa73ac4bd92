/// A host that knows nothing of the library but its header and its file: finds both factories,
/// makes both helpers, shows nothing with them, and gives them back. Takes the library's path; one
/// line and exit status 1 for whatever goes wrong.
#include <KestrixPreviewAPI.h>

#include <GLFW/glfw3.h>

#include <dlfcn.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

namespace {

bool expect(bool condition, const char* factory, const char* what)
{
    if (!condition)
        std::fprintf(stderr, "dlopen_host: %s: %s\n", factory, what);
    return condition;
}

bool use(void* library, const char* factory)
{
    void* const symbol = dlsym(library, factory);
    if (!expect(symbol != nullptr, factory, "not exported"))
        return false;
    CreateScreenPreviewHelperFunction create;
    std::memcpy(&create, &symbol, sizeof(create));

    IKestrixGLScreenPreviewHelper* const helper = create();
    if (!expect(helper != nullptr, factory, "gave no helper"))
        return false;
    void* same = nullptr;
    return expect(helper->QueryInterface(IID_IKestrixGLScreenPreviewHelper, &same) == S_OK &&
                      same == helper,
                  factory, "the helper does not answer for its own interface") &&
           expect(helper->Release() == 1, factory, "a query gives one reference") &&
           expect(helper->InitializeGL() == S_OK, factory, "InitializeGL failed") &&
           expect(helper->Set3DPreviewFormat(Preview3DSideBySide) == S_OK, factory,
                  "Set3DPreviewFormat failed") &&
           expect(helper->SetFrame(nullptr) == S_OK, factory, "SetFrame failed") &&
           expect(helper->PaintGL() == S_OK, factory, "PaintGL failed") &&
           expect(helper->Release() == 0, factory, "the helper outlives its last reference");
}

bool useInContext(void* library, const char* factory, int major, int minor, int profile)
{
    glfwWindowHint(GLFW_VISIBLE, GLFW_FALSE);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, major);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, minor);
    glfwWindowHint(GLFW_OPENGL_PROFILE, profile);
    GLFWwindow* const window = glfwCreateWindow(64, 64, "dlopen_host", nullptr, nullptr);
    if (!expect(window != nullptr, factory, "no GL context"))
        return false;
    glfwMakeContextCurrent(window);
    const bool good = use(library, factory);
    glfwDestroyWindow(window);
    return good;
}

/// A virtual display starts over when its last client has gone, and refuses the next for a moment.
bool startGLFW()
{
    for (int attempt = 0; attempt < 50; ++attempt) {
        if (glfwInit())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        std::fprintf(stderr, "usage: dlopen_host LIBRARY\n");
        return 1;
    }
    void* const library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        std::fprintf(stderr, "dlopen_host: %s\n", dlerror());
        return 1;
    }
    if (!startGLFW()) {
        std::fprintf(stderr, "dlopen_host: no display\n");
        return 1;
    }
    const bool good = useInContext(library, "CreateOpenGLScreenPreviewHelper_0002", 2, 1,
                                   GLFW_OPENGL_ANY_PROFILE) &&
                      useInContext(library, "CreateOpenGL3ScreenPreviewHelper_0002", 3, 2,
                                   GLFW_OPENGL_CORE_PROFILE);
    // GLFW stays for the little that is left: drivers leave memory behind when they are unloaded.
    dlclose(library);
    return good ? 0 : 1;
}
