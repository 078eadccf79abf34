#pragma once

#include "ts/unknown.h"

// An editor with option pages: the name of its pages and of its settings section.
struct ITsOptionsSource : IUnknown {
    TS_INTERFACE_ID("{CFEDC2A0-F801-4333-8000-661856D6E51F}");

    // Newly allocated.
    virtual HRESULT GetOptionsName(char16_t** name) = 0;

protected:
    ~ITsOptionsSource() = default;
};
