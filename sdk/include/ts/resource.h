#pragma once

#include "ts/property.h"
#include "ts/unknown.h"

// The host's handle on one resource of the resource database: an editor reads the resource's
// property tree from it and hands the edited tree back through it.
struct ITsResource : IUnknown {
    TS_INTERFACE_ID("{4A7D8A46-4CD3-46E3-B10E-DC80FA6B382D}");

    // The resource's name with its type, such as "intro_talk.dlg"; a newly allocated string.
    virtual HRESULT GetName(char16_t** name) = 0;
    // The root of the resource's property tree (a new reference).
    virtual HRESULT GetRootProperty(ITsProperty** root) = 0;
    // Replaces the resource's property tree by `root`.
    virtual HRESULT SetRootProperty(ITsProperty* root) = 0;

protected:
    ~ITsResource() = default;
};
