#pragma once

#include <vector>

#include "core/forwarding.h"
#include "core/string_enum.h"
#include "ts/hoststring.h"
#include "ts/uicommandsource.h"

// ITsUICommandSource of an editor object T over its window W.
template <class T, class W>
class CTsUICommandSourceImpl : public ITsUICommandSource {
public:
    HRESULT GetCommandSourceName(char16_t** name) override {
        if (!name) return E_POINTER;
        *name = nullptr;
        // The host asks for the name while it tears its menus down, after the window may be
        // gone: that is an empty name, not a failure.
        W* window = Self().GetWindow();
        if (!window) {
            *name = TsAllocString(u"");
            return S_FALSE;
        }
        return ts::ForwardToWindow(window, [&](W& w) -> HRESULT {
            if constexpr (requires { w.CommandSourceName(); }) {
                *name = TsAllocString(w.CommandSourceName());
                return S_OK;
            } else {
                return E_NOTIMPL;
            }
        });
    }

    HRESULT GetCommandBars(ITsStringEnum** bars) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if (!bars) return E_POINTER;
            *bars = nullptr;
            if constexpr (requires { w.CommandBarNames(); }) {
                return CTsStringEnum::Create(w.CommandBarNames(), bars);
            } else {
                return E_NOTIMPL;
            }
        });
    }

    HRESULT GetCommands(std::vector<TsCommandItem>* commands) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if (!commands) return E_POINTER;
            commands->clear();
            if constexpr (requires { w.CommandList(); }) {
                *commands = w.CommandList();
                return S_OK;
            } else {
                return E_NOTIMPL;
            }
        });
    }

    HRESULT GetMenus(std::vector<TsCommandItem>* menus) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if (!menus) return E_POINTER;
            menus->clear();
            if constexpr (requires { w.MenuList(); }) {
                *menus = w.MenuList();
                return S_OK;
            } else {
                return E_NOTIMPL;
            }
        });
    }

    HRESULT GetCommandState(std::uint32_t id, std::uint32_t* state) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if (!state) return E_POINTER;
            *state = 0;
            if constexpr (requires { w.CommandState(id, *state); }) {
                return w.CommandState(id, *state) ? S_OK : E_INVALIDARG;
            } else {
                return E_NOTIMPL;
            }
        });
    }

    HRESULT ExecuteCommand(std::uint32_t id) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if constexpr (requires { w.ExecuteCommand(id); }) {
                return w.ExecuteCommand(id);
            } else {
                return E_NOTIMPL;
            }
        });
    }

private:
    T& Self() { return static_cast<T&>(*this); }
};
