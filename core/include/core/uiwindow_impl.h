#pragma once

#include "core/forwarding.h"
#include "core/plugin_flags.h"
#include "ts/hoststring.h"
#include "ts/uiwindow.h"

// ITsUIWindow of an editor object T over its window W. Making and closing the window and the
// plugin-flag query work without a window; the layout queries need one.
template <class T, class W>
class CTsUIWindowImpl : public ITsUIWindow {
public:
    HRESULT CreateUIWindow(TsWindowHandle parent) override { return Self().MakeWindow(parent); }
    HRESULT CloseUIWindow() override { return Self().DestroyWindow() ? S_OK : E_FAIL; }

    HRESULT GetPluginFlags(std::uint32_t* flags) override {
        if (!flags) return E_POINTER;
        *flags = ts::PluginFlagsOf(W::kClassId);
        return S_OK;
    }

    HRESULT GetLayoutFile(TsLayoutFile which, char16_t** path) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if (!path) return E_POINTER;
            *path = nullptr;
            if constexpr (requires { w.LayoutFile(which); }) {
                if (which != TsLayoutFile::Default && which != TsLayoutFile::User)
                    return E_INVALIDARG;
                *path = TsAllocString(w.LayoutFile(which));
                return S_OK;
            } else {
                return E_NOTIMPL;
            }
        });
    }

    HRESULT GetDefaultLayoutKey(const char16_t* layoutName, char16_t** key) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if (!key) return E_POINTER;
            *key = nullptr;
            if constexpr (requires { w.DefaultLayoutKey(std::u16string_view()); }) {
                *key = TsAllocString(w.DefaultLayoutKey(layoutName ? layoutName : u""));
                return S_OK;
            } else {
                return E_NOTIMPL;
            }
        });
    }

private:
    T& Self() { return static_cast<T&>(*this); }
};
