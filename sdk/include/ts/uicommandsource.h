#pragma once

#include "ts/stringenum.h"
#include "ts/unknown.h"

// An editor's commands as the host sees them: the source's name, under which the host files
// its commands, and the command bars (tool bars) it shows.
struct ITsUICommandSource : IUnknown {
    TS_INTERFACE_ID("{7ACEF16F-FE68-49E0-87C3-020C3B4B2245}");

    // The name, newly allocated. Without a window: S_FALSE and an empty name.
    virtual HRESULT GetCommandSourceName(char16_t** name) = 0;
    // The names of the command bars, in order.
    virtual HRESULT GetCommandBars(ITsStringEnum** bars) = 0;

protected:
    ~ITsUICommandSource() = default;
};
