#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/forwarding.h"
#include "ts/hoststring.h"
#include "ts/markersource.h"

// ITsMarkerSource of an editor object T over its window W: the window's markers when W keeps
// them (CTsMarkerSourceSupport) and goes to them (GoToMarker), E_NOTIMPL when it does not (the
// line preview), E_FAIL with the window gone.
template <class T, class W>
class CTsMarkerSourceImpl : public ITsMarkerSource {
public:
    HRESULT GetMarkerCount(std::uint32_t* count) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if (!count) return E_POINTER;
            *count = 0;
            if constexpr (requires { w.MarkerCount(); }) {
                *count = static_cast<std::uint32_t>(w.MarkerCount());
                return S_OK;
            } else {
                return E_NOTIMPL;
            }
        });
    }

    HRESULT GetMarker(std::uint32_t index, char16_t** location, char16_t** text,
                      char16_t** category) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            for (char16_t** out : {location, text, category})
                if (out) *out = nullptr;
            if constexpr (requires(std::u16string * s) { w.ReadMarker(index, s, s, s); }) {
                std::u16string where, shown, kind;
                if (!w.ReadMarker(index, &where, &shown, &kind)) return E_INVALIDARG;
                if (location) *location = TsAllocString(where);
                if (text) *text = TsAllocString(shown);
                if (category) *category = TsAllocString(kind);
                return S_OK;
            } else {
                return E_NOTIMPL;
            }
        });
    }

    HRESULT GoToMarker(const char16_t* location) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if (!location) return E_POINTER;
            if constexpr (requires(std::u16string_view v) { w.GoToMarker(v); })
                return w.GoToMarker(std::u16string_view(location));
            else
                return E_NOTIMPL;
        });
    }

private:
    T& Self() { return static_cast<T&>(*this); }
};
