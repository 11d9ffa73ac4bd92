/// An invented SDK whose names are like those of the library: macros for its status codes, and, if
/// `OTHER_WORLD_TYPES` is defined, types of the same names.
#pragma once

#define S_OK 0
#define E_NOTIMPL ((int)0x90000001)
#define E_OUTOFMEMORY ((int)0x90000002)
#define E_INVALIDARG ((int)0x90000003)
#define E_NOINTERFACE ((int)0x90000004)
#define E_POINTER ((int)0x90000005)
#define E_FAIL ((int)0x90000006)
#define E_UNEXPECTED ((int)0x90000007)

#ifdef OTHER_WORLD_TYPES
typedef long HRESULT;
struct REFIID {
    unsigned words[4];
};
static const REFIID IID_IUnknown = {{1, 2, 3, 4}};
class IUnknown {
public:
    virtual HRESULT QueryInterface(const REFIID& id, void** out) = 0;
    virtual unsigned long AddRef() = 0;
    virtual unsigned long Release() = 0;

protected:
    virtual ~IUnknown() = default;
};
#endif
