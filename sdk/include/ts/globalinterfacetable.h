#pragma once

#include <cstdint>

#include "ts/api.h"
#include "ts/unknown.h"

// The process's table of interface pointers registered for use from anywhere in the process,
// with the platform's identity and operations.
struct IGlobalInterfaceTable : IUnknown {
    TS_INTERFACE_ID("{00000146-0000-0000-C000-000000000046}");

    // Holds a reference to `object` until the cookie is revoked. Cookies are never 0.
    virtual HRESULT RegisterInterfaceInGlobal(IUnknown* object, REFIID iid,
                                              std::uint32_t* cookie) = 0;
    virtual HRESULT RevokeInterfaceFromGlobal(std::uint32_t cookie) = 0;
    // A new reference to the registered object's interface `iid`; E_INVALIDARG for an unknown
    // cookie.
    virtual HRESULT GetInterfaceFromGlobal(std::uint32_t cookie, REFIID iid, void** object) = 0;

protected:
    ~IGlobalInterfaceTable() = default;
};

// The process's table (one per process, made on first request); a new reference.
TS_API HRESULT TsCreateGlobalInterfaceTable(IGlobalInterfaceTable** table);
