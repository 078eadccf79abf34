#pragma once

#include "core/forwarding.h"
#include "ts/hoststring.h"
#include "ts/optionssource.h"

// ITsOptionsSource of an editor object T over its window W.
template <class T, class W>
class CTsOptionsSourceImpl : public ITsOptionsSource {
public:
    HRESULT GetOptionsName(char16_t** name) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if (!name) return E_POINTER;
            *name = nullptr;
            if constexpr (requires { w.OptionsName(); }) {
                *name = TsAllocString(w.OptionsName());
                return S_OK;
            } else {
                return E_NOTIMPL;
            }
        });
    }

private:
    T& Self() { return static_cast<T&>(*this); }
};
