#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "ts/api.h"
#include "ts/atoms.h"
#include "ts/eventsink.h"
#include "ts/unknown.h"

// The host environment: what a plugin talks to when it has something to tell the host.
struct ITsEnvironment : IUnknown {
    TS_INTERFACE_ID("{431F3429-6726-47CF-ACAD-E1A042418DA7}");

    // Sends a plugin event ("Error", "SearchResult", ...) to the host. `text` is null or a host
    // string (TsAllocString) that stays the sender's: the host copies whatever it keeps.
    virtual HRESULT SendEvent(TsAtom event, std::uint32_t flags, const char16_t* text,
                              IUnknown* payload) = 0;

protected:
    ~ITsEnvironment() = default;
};

TS_API HRESULT TsGetEnvironment(ITsEnvironment** environment);

// Sinks advised here receive the host's broadcasts until they are unadvised. The host keeps a
// reference to each advised sink. Cookies are never 0.
TS_API HRESULT TsAdviseEventSink(ITsEventSink* sink, std::uint32_t* cookie);
TS_API HRESULT TsUnadviseEventSink(std::uint32_t cookie);

namespace ts {

// An event a plugin sent to the host, as host code sees it.
struct HostEvent {
    TsAtom event = 0;
    std::uint32_t flags = 0;
    std::u16string text;
    IUnknown* payload = nullptr;  // valid during the call only
};
using HostEventListener = std::function<void(const HostEvent&)>;

// Host code (error list, search results, log window) listens for the events plugins send.
// Returns a handle for RemoveHostEventListener.
TS_API int AddHostEventListener(HostEventListener listener);
TS_API void RemoveHostEventListener(int handle);

// Delivers a host event to every sink advised when the call starts; a sink unadvised during
// the broadcast still gets it. Sinks' results are ignored.
TS_API void BroadcastToEventSinks(TsAtom event, std::uint32_t param1, std::uint32_t param2,
                                  IUnknown* payload);
TS_API std::size_t AdvisedEventSinkCount();

}  // namespace ts
