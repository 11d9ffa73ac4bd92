/// The headers alone, included twice, in the oldest C++ that hosts build with. They must compile,
/// and the values that cross the boundary must be these.
#include <KestrixPreviewAPI_v14_2_1.h>
#include <KestrixPreviewAPI_v14_2_1.h> // NOLINT(readability-duplicate-include): guarded

static_assert(sizeof(REFIID) == 16, "an id is 16 bytes");
static_assert(sizeof(HRESULT) == 4, "a status is 32 bits");
static_assert(S_OK == 0, "success");
static_assert(static_cast<unsigned>(E_NOTIMPL) == 0x80000001u, "status");
static_assert(static_cast<unsigned>(E_OUTOFMEMORY) == 0x80000002u, "status");
static_assert(static_cast<unsigned>(E_INVALIDARG) == 0x80000003u, "status");
static_assert(static_cast<unsigned>(E_NOINTERFACE) == 0x80000004u, "status");
static_assert(static_cast<unsigned>(E_POINTER) == 0x80000005u, "status");
static_assert(static_cast<unsigned>(E_FAIL) == 0x80000008u, "status");
static_assert(static_cast<unsigned>(E_UNEXPECTED) == 0x8000FFFFu, "status");
static_assert(FrameFlagFlipVertical == 1, "flag");
static_assert(BufferAccessRead == 1 && BufferAccessReadWrite == 3, "flags");
static_assert(ProbeSentinel == 0xBEEF && ProbeReply == 0x0FEE1BAD, "probe");
