#pragma once

#include <cstdint>

#include "ts/unknown.h"

// An editor's markers as the host's error list shows them: places in the edited resource, each
// with a location text, a display text and a category. The host reads them again when the
// editor sends "MarkersChange", and leads the user back to a place by handing its location text
// to GoToMarker. Location texts are the editor's own; the host only keeps and returns them.
struct ITsMarkerSource : IUnknown {
    TS_INTERFACE_ID("{9FB5A610-75CE-41E6-AA56-2D7420CDEB68}");

    virtual HRESULT GetMarkerCount(std::uint32_t* count) = 0;
    // Marker `index` (0 the first): its location, display text and category, each newly
    // allocated (TsFreeString). An output the caller does not want may be null. E_INVALIDARG for
    // an index out of range.
    virtual HRESULT GetMarker(std::uint32_t index, char16_t** location, char16_t** text,
                              char16_t** category) = 0;
    // Shows the place a zero-terminated location text names (a marker's, or one built for
    // navigation): S_OK, or E_INVALIDARG when the text is malformed or names nothing in the
    // open resource.
    virtual HRESULT GoToMarker(const char16_t* location) = 0;

protected:
    ~ITsMarkerSource() = default;
};
