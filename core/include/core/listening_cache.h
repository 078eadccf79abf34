#pragma once

#include "core/event_sink.h"
#include "ts/events.h"

// A map that empties itself when the host says its contents may be stale: on "Refresh",
// "RefreshNoArt" and "ClosingEnvironment". It owns its event sink, advised to the host while
// the cache lives.
template <class M>
class CEventListeningCache {
public:
    CEventListeningCache() : connection_(this) {}
    CEventListeningCache(const CEventListeningCache&) = delete;
    CEventListeningCache& operator=(const CEventListeningCache&) = delete;

    M& Map() { return map_; }
    const M& Map() const { return map_; }
    M* operator->() { return &map_; }
    const M* operator->() const { return &map_; }

    ITsEventSink* GetSink() const { return connection_.GetSink(); }

    void OnEvent(TsAtom event, std::uint32_t, std::uint32_t, ITsResource*) {
        if (event == ts::events::Refresh() || event == ts::events::RefreshNoArt() ||
            event == ts::events::ClosingEnvironment())
            map_.clear();
    }

private:
    M map_;
    // Declared after the map: the sink is cut off before the map goes.
    CTsEventSinkConnection<CEventListeningCache> connection_;
};
