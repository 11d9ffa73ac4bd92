/// Loads the library again and again: it has to go away each time and leave nothing behind. Takes
/// the library's path and how often; with "live" for a number it loads once and ends with helpers
/// that nobody releases. One line and exit status 1 for whatever goes wrong.
#include <KestrixPreviewAPI.h>

#include <dlfcn.h>
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

namespace {

constexpr int kRoundsToSettle = 10;
/// What may come and go between two rounds, such as pages of the heap; not 1,000 times one helper.
constexpr long kGrowthBytes = 64 * 1024;

/// What a process that ends still holds, as a host's own variables would.
IKestrixGLScreenPreviewHelper* volatile heldAtExit[2];

bool fail(const char* what, const char* why)
{
    std::fprintf(stderr, "loading_host: %s: %s\n", what, why);
    return false;
}

bool mapped()
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find("libKestrixPreviewAPI.so") != std::string::npos)
            return true;
    return false;
}

/// Resident memory that is nobody else's too, in bytes.
long privateBytes()
{
    std::ifstream statm("/proc/self/statm");
    long size = 0;
    long resident = 0;
    long shared = 0;
    statm >> size >> resident >> shared;
    return (resident - shared) * 4096;
}

IKestrixGLScreenPreviewHelper* createHelper(void* library, const char* factory)
{
    void* const symbol = dlsym(library, factory);
    if (!symbol)
        return nullptr;
    CreateScreenPreviewHelperFunction create = nullptr;
    std::memcpy(&create, &symbol, sizeof(create));
    return create();
}

bool useOnce(const char* path, bool release)
{
    IKestrixGLScreenPreviewHelper* volatile* held = heldAtExit;
    void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        return fail("dlopen", dlerror());
    for (const char* factory :
         {"CreateOpenGLScreenPreviewHelper_0002", "CreateOpenGL3ScreenPreviewHelper_0002"}) {
        IKestrixGLScreenPreviewHelper* const helper = createHelper(library, factory);
        if (!helper)
            return fail(factory, "gave no helper");
        if (!release)
            *held++ = helper;
        else if (helper->Release() != 0)
            return fail(factory, "the helper lives on");
    }
    if (!release)
        return true;
    if (dlclose(library) != 0)
        return fail("dlclose", dlerror());
    return !mapped() || fail("dlclose", "the library is still mapped");
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 3)
        return !fail("arguments", "takes a library and a number or \"live\"");
    if (std::strcmp(arguments[2], "live") == 0)
        return !useOnce(arguments[1], false);

    // What the library needs stays, as it would in a host.
    if (!dlopen("libGL.so.1", RTLD_NOW | RTLD_GLOBAL))
        return !fail("libGL", dlerror());
    const int rounds = std::atoi(arguments[2]);
    long settled = 0;
    for (int round = 0; round < rounds; ++round) {
        if (!useOnce(arguments[1], true))
            return 1;
        malloc_trim(0);
        if (round + 1 == kRoundsToSettle)
            settled = privateBytes();
    }
    const long growth = privateBytes() - settled;
    std::printf("%d rounds, %ld bytes grown since round %d\n", rounds, growth, kRoundsToSettle);
    return growth > kGrowthBytes && !fail("memory", "grows");
}
