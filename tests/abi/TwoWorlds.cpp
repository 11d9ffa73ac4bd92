/// A host that uses another SDK with like names too. Compiled with the headers in both orders, with
/// and without types of the same names.
#ifdef OTHER_WORLD_FIRST
#include "OtherWorld.h"
#endif
#include <KestrixCheckedHelper.h>
#include <KestrixPreviewAPI_v14_2_1.h>
#ifndef OTHER_WORLD_FIRST
#include "OtherWorld.h"
#endif

#ifdef KESTRIX_NAMESPACE
namespace ours = KESTRIX_NAMESPACE;
#else
namespace ours {
using ::HRESULT;
using ::IKestrixVideoBuffer;
using ::IUnknown;
using ::KestrixStatusFailed;
using ::REFIID;
} // namespace ours
#endif

static_assert(E_FAIL == static_cast<int>(0x90000006), "the macros are those of the other SDK");
static_assert(static_cast<unsigned>(ours::KestrixStatusFailed) == 0x80000008u, "and this is ours");
static_assert(sizeof(ours::HRESULT) == 4 && sizeof(ours::REFIID) == 16, "our types");

/// An object as a host writes it.
class Buffer final : public ours::IKestrixVideoBuffer {
public:
    ours::HRESULT QueryInterface(ours::REFIID, void**) override { return S_OK; }
    std::uint32_t AddRef() override { return 1; }
    std::uint32_t Release() override { return 1; }
    ours::HRESULT GetBytes(void**) override { return ours::KestrixStatusFailed; }
    ours::HRESULT StartAccess(std::uint32_t) override { return 0; }
    ours::HRESULT EndAccess(std::uint32_t) override { return 0; }
};

ours::IUnknown* makeBuffer();
ours::IUnknown* makeBuffer()
{
    return new Buffer;
}
