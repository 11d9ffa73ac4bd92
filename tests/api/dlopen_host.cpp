/// A host that knows nothing of the library but its headers and its file, and needs no GL context.
///
///     dlopen_host LIBRARY          all four factories: makes a helper by each and gives it back
///     dlopen_host LIBRARY ROUNDS   loads the library again and again: nothing of it may stay
///     dlopen_host LIBRARY live     ends with helpers that were not released
///
/// Any failure gives one line and exit status 1.
#include <KestrixPreviewAPI_v14_2_1.h>

#include <dlfcn.h>
#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

namespace {

using Current = IKestrixGLScreenPreviewHelper;
using Old = IKestrixGLScreenPreviewHelper_v14_2_1;

constexpr int kRoundsToSettle = 10;
/// Room for pages of the heap, which may come and go. A leak of one helper a round is larger.
constexpr long kGrowthBytes = 64 * 1024;

void* s_library = nullptr;
int s_callsOfOwnFactory = 0;
/// Helpers that a process still holds at its end, as a host's variables may.
Current* volatile s_heldAtExit[2];

bool fail(const char* what, const char* why)
{
    std::fprintf(stderr, "dlopen_host: %s: %s\n", what, why);
    return false;
}

bool load(const char* path)
{
    s_library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    return s_library || fail("dlopen", dlerror());
}

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

template<class Helper>
bool use(const char* factory, REFIID id)
{
    Helper* const helper = createHelper<Helper>(factory);
    void* same = nullptr;
    if (!helper)
        return fail(factory, "not exported, or gave no helper");
    if (helper->QueryInterface(id, &same) != S_OK || same != helper)
        return fail(factory, "the helper does not answer for its own interface");
    if (helper->SetFrame(nullptr) != S_OK ||
        helper->Set3DPreviewFormat(Preview3DSideBySide) != S_OK)
        return fail(factory, "a call across the boundary failed");
    if (helper->Release() != 1 || helper->Release() != 0)
        return fail(factory, "references are not counted");
    return true;
}

bool useAll()
{
    const REFIID current = IID_IKestrixGLScreenPreviewHelper;
    const REFIID old = IID_IKestrixGLScreenPreviewHelper_v14_2_1;
    return use<Current>("CreateOpenGLScreenPreviewHelper_0002", current) &&
           use<Current>("CreateOpenGL3ScreenPreviewHelper_0002", current) &&
           use<Old>("CreateOpenGLScreenPreviewHelper_0001", old) &&
           use<Old>("CreateOpenGL3ScreenPreviewHelper_0001", old) &&
           (s_callsOfOwnFactory == 1 || fail("the exported factory", "was passed by"));
}

bool mapped()
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find("libKestrixPreviewAPI.so") != std::string::npos)
            return true;
    return false;
}

/// Resident memory that is not shared, in bytes.
long privateBytes()
{
    std::ifstream statm("/proc/self/statm");
    long size = 0, resident = 0, shared = 0;
    statm >> size >> resident >> shared;
    return (resident - shared) * 4096;
}

bool loadAgainAndAgain(const char* path, int rounds)
{
    // What the library needs stays, as it would in a host.
    if (!dlopen("libGL.so.1", RTLD_NOW | RTLD_GLOBAL))
        return fail("libGL", dlerror());
    long settled = 0;
    for (int round = 1; round <= rounds; ++round) {
        s_callsOfOwnFactory = 0;
        if (!load(path) || !useAll())
            return false;
        if (dlclose(s_library) != 0 || mapped())
            return fail("dlclose", "the library is still mapped");
        malloc_trim(0);
        if (round == kRoundsToSettle)
            settled = privateBytes();
    }
    const long growth = privateBytes() - settled;
    std::printf("%d rounds, %ld bytes grown since round %d\n", rounds, growth, kRoundsToSettle);
    return growth <= kGrowthBytes || fail("memory", "grows");
}

bool endWithLiveHelpers(const char* path)
{
    if (!load(path))
        return false;
    s_heldAtExit[0] = createHelper<Current>("CreateOpenGLScreenPreviewHelper_0002");
    s_heldAtExit[1] = createHelper<Current>("CreateOpenGL3ScreenPreviewHelper_0002");
    return (s_heldAtExit[0] && s_heldAtExit[1]) || fail("a factory", "gave no helper");
}

} // namespace

/// Comes before the library's own of that name, as a host's may: old helpers have to be made by it.
Current* CreateOpenGL3ScreenPreviewHelper_0002()
{
    ++s_callsOfOwnFactory;
    return createHelper<Current>("CreateOpenGL3ScreenPreviewHelper_0002");
}

int main(int count, char** arguments)
{
    if (count < 2)
        return !fail("arguments", "takes a library, and a number or \"live\"");
    if (count == 2)
        return !(load(arguments[1]) && useAll() && dlclose(s_library) == 0);
    if (std::strcmp(arguments[2], "live") == 0)
        return !endWithLiveHelpers(arguments[1]);
    return !loadAgainAndAgain(arguments[1], std::atoi(arguments[2]));
}
