#pragma once

#include <cstdint>

#include "ts/atoms.h"
#include "ts/unknown.h"

// A receiver of the host's broadcast events (resource refreshed or saved, options changed, the
// environment closing). The host holds the sinks that were advised to it (TsAdviseEventSink).
struct ITsEventSink : IUnknown {
    TS_INTERFACE_ID("{5CC67D2D-7E87-47DB-BE32-4E2156FF5D02}");

    // The event is its name's atom; the payload is optional and the sink asks it for what it needs.
    virtual HRESULT OnEvent(TsAtom event, std::uint32_t param1, std::uint32_t param2,
                            IUnknown* payload) = 0;

protected:
    ~ITsEventSink() = default;
};
