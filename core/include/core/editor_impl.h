#pragma once

#include "core/forwarding.h"
#include "ts/editor.h"
#include "ts/hoststring.h"

// ITsEditor of an editor object T over its window W. Each operation the window offers is
// forwarded to it; one it doesn't offer is E_NOTIMPL. With the window gone every operation but
// the two ignored ones fails with E_FAIL.
template <class T, class W>
class CTsEditorImpl : public ITsEditor {
public:
    HRESULT EnumerateResourceTypes(std::int32_t which, ITsStringEnum** types) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if constexpr (requires { w.EnumerateResourceTypes(which, types); })
                return w.EnumerateResourceTypes(which, types);
            else
                return E_NOTIMPL;
        });
    }

    HRESULT Load(IUnknown* resource) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if constexpr (requires { w.LoadResource(resource); })
                return w.LoadResource(resource);
            else
                return E_NOTIMPL;
        });
    }

    HRESULT GetContent(IUnknown* resource) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if constexpr (requires { w.GetContent(resource); })
                return w.GetContent(resource);
            else
                return E_NOTIMPL;
        });
    }

    HRESULT Attach(std::uint32_t hostCookie, const char16_t* resourceName,
                   std::uint32_t state) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if constexpr (requires { w.AttachResource(hostCookie, resourceName, state); })
                return w.AttachResource(hostCookie, resourceName, state);
            else
                return E_NOTIMPL;
        });
    }

    HRESULT GetState(std::uint32_t* hostCookie, char16_t** resourceName,
                     std::uint32_t* state) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if constexpr (requires { w.GetEditorState(hostCookie, resourceName, state); })
                return w.GetEditorState(hostCookie, resourceName, state);
            else
                return E_NOTIMPL;
        });
    }

    HRESULT SetModified(std::int32_t modified) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if constexpr (requires { w.SetModified(modified != 0); }) {
                w.SetModified(modified != 0);
                return S_OK;
            } else {
                return E_NOTIMPL;
            }
        });
    }

    HRESULT Save(std::uint32_t hostArgument) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if constexpr (requires { w.SaveResource(hostArgument); })
                return w.SaveResource(hostArgument);
            else
                return E_NOTIMPL;
        });
    }

    HRESULT OnActivate(std::int32_t) override { return S_OK; }

    HRESULT GetDisplayName(char16_t** name) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if constexpr (requires { w.DisplayName(); }) {
                if (name) *name = TsAllocString(w.DisplayName());
                return S_OK;
            } else {
                return E_NOTIMPL;
            }
        });
    }

    HRESULT OnHostNotify(std::uint32_t) override { return S_OK; }

    HRESULT ActivateFrame(std::int32_t showCommand) override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            w.ActivateFrame(showCommand);
            return S_OK;
        });
    }

    HRESULT ReportWordCount() override {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if constexpr (requires { w.ReportWordCount(); })
                return w.ReportWordCount();
            else
                return E_NOTIMPL;
        });
    }

private:
    T& Self() { return static_cast<T&>(*this); }
};
