#pragma once

#include <string_view>

#include "ts/unknown.h"

// The host's search results window, registered as a host component under
// kTsSearchResultsName. Editors list what a search found there; the user goes to a result by
// its location, which the host hands back to the editor of the result's resource (its marker
// source) to show.
struct ITsSearchResults : IUnknown {
    TS_INTERFACE_ID("{66385B70-9602-4B4E-93AC-FD0E4375E03D}");

    // Brings the window up and empties it for a new search.
    virtual HRESULT Clear() = 0;
    // One result: the resource it is in ("NAME.TYPE"), where in it (a marker location text),
    // and the text the user reads.
    virtual HRESULT AddResult(std::u16string_view resource, std::u16string_view location,
                              std::u16string_view text) = 0;
    // The line under the results ("Search complete, 3 links found.").
    virtual HRESULT SetStatus(std::u16string_view text) = 0;

protected:
    ~ITsSearchResults() = default;
};

inline constexpr std::u16string_view kTsSearchResultsName = u"SearchResultsWindow";
