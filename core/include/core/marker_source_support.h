#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "core/host_events.h"
#include "ts/events.h"
#include "ts/unknown.h"

// The markers of a window W, kept in a Store, as the host's error list reads them. Every change
// the Store reports is announced to the host as "MarkersChange" (flags kNotice, no text); the
// payload is W's editor object when W names it (IUnknown* EditorObject()), so that the host
// knows whose markers to read again.
//
// Store keeps the markers and tells of their changes:
//   std::size_t Count() const;
//   std::u16string LocationText(std::size_t) const, DisplayText(...) const, Category(...) const;
//   void SetChangeListener(std::function<void()>);
// Going to a marker is W's own (HRESULT GoToMarker(std::u16string_view location)): what a
// location names, and how it is shown, only the window knows.
template <class W, class Store>
class CTsMarkerSourceSupport {
public:
    CTsMarkerSourceSupport() {
        markers_.SetChangeListener([this] { Announce(); });
    }
    CTsMarkerSourceSupport(const CTsMarkerSourceSupport&) = delete;
    CTsMarkerSourceSupport& operator=(const CTsMarkerSourceSupport&) = delete;

    Store& Markers() { return markers_; }
    const Store& Markers() const { return markers_; }

    std::size_t MarkerCount() const { return markers_.Count(); }
    // The texts of marker `index` into the outputs that are given; false out of range.
    bool ReadMarker(std::size_t index, std::u16string* location, std::u16string* text,
                    std::u16string* category) const {
        if (index >= markers_.Count()) return false;
        if (location) *location = markers_.LocationText(index);
        if (text) *text = markers_.DisplayText(index);
        if (category) *category = markers_.Category(index);
        return true;
    }

private:
    void Announce() {
        IUnknown* payload = nullptr;
        if constexpr (requires(W & w) { w.EditorObject(); })
            payload = static_cast<W&>(*this).EditorObject();
        ts::SendHostEvent(ts::events::MarkersChange(), ts::events::kNotice, {}, payload);
    }

    Store markers_;
};
