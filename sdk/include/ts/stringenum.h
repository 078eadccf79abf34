#pragma once

#include <cstdint>

#include "ts/unknown.h"

// A list of texts handed between host and plugin, read one at a time.
struct ITsStringEnum : IUnknown {
    TS_INTERFACE_ID("{74D5EC81-2797-4F3F-BA91-33D902963E1F}");

    // S_OK and the next text as a newly allocated string; S_FALSE and null after the last one.
    virtual HRESULT Next(char16_t** item) = 0;
    // Starts again from the first text.
    virtual HRESULT Reset() = 0;
    virtual HRESULT GetCount(std::uint32_t* count) = 0;

protected:
    ~ITsStringEnum() = default;
};
