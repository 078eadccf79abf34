#pragma once

#include <cstdint>

#include "ts/guid.h"
#include "ts/result.h"

// Every interface names its id as a static member, so that templates can find it by type.
#define TS_INTERFACE_ID(text) static constexpr IID kIID = ::ts::Guid(text)

template <class T>
constexpr const IID& TsIidOf() {
    return T::kIID;
}

// The root of every interface: the same three slots, in the same order, as the platform's.
// No virtual destructor: objects are destroyed by their own Release.
struct IUnknown {
    TS_INTERFACE_ID("{00000000-0000-0000-C000-000000000046}");
    virtual HRESULT QueryInterface(REFIID iid, void** object) = 0;
    virtual std::uint32_t AddRef() = 0;
    virtual std::uint32_t Release() = 0;

protected:
    ~IUnknown() = default;
};

struct IClassFactory : IUnknown {
    TS_INTERFACE_ID("{00000001-0000-0000-C000-000000000046}");
    virtual HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** object) = 0;
    virtual HRESULT LockServer(bool lock) = 0;

protected:
    ~IClassFactory() = default;
};
