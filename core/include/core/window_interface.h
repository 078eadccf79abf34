#pragma once

#include <array>
#include <memory>

#include "core/command_source_impl.h"
#include "core/editor_impl.h"
#include "core/forwarding.h"
#include "core/marker_source_impl.h"
#include "core/options_source_impl.h"
#include "core/uiwindow_impl.h"
#include "core/undo_redo_impl.h"
#include "ts/editorinterfaces.h"
#include "ts/resource.h"

// The editor object the host creates for an editor class: it answers the host's twenty editor
// interfaces, in the order below, and owns its window W once the host has had it made. Each
// interface's operations are forwarded to the window; with the window gone they fail with
// E_FAIL.
//
// W declares `static constexpr CLSID kClassId`, is constructed from (CTsWindowInterface<W>&,
// TsWindowHandle parent), derives from CTsFrameWnd, and may take events through
// OnEvent(TsAtom, std::uint32_t, std::uint32_t, ITsResource*).
template <class W>
class CTsWindowInterface : public CTsUIWindowImpl<CTsWindowInterface<W>, W>,
                           public CTsUICommandSourceImpl<CTsWindowInterface<W>, W>,
                           public CTsEditorImpl<CTsWindowInterface<W>, W>,
                           public ITsExportSource,
                           public CTsMarkerSourceImpl<CTsWindowInterface<W>, W>,
                           public ITsFindReplaceSource,
                           public ITsHelpSource,
                           public CTsOptionsSourceImpl<CTsWindowInterface<W>, W>,
                           public ITsCurrentState,
                           public CTsUndoRedoImpl<CTsWindowInterface<W>, W>,
                           public ITsObjectInspectorSource,
                           public ITsIcon,
                           public ITsIdle,
                           public ITsFindReplaceWindow,
                           public ITsResourceDiff,
                           public ITsEditorDetect,
                           public ITsEditorExporter,
                           public ITsPreview,
                           public ITsSoundPlayerSource,
                           public ITsConversationLinePreview {
public:
    using Window = W;

    // clang-format off
    static constexpr std::array<IID, 20> kInterfaceOrder = {
        ITsUIWindow::kIID,         ITsUICommandSource::kIID,   ITsEditor::kIID,
        ITsExportSource::kIID,     ITsMarkerSource::kIID,      ITsFindReplaceSource::kIID,
        ITsHelpSource::kIID,       ITsOptionsSource::kIID,     ITsCurrentState::kIID,
        ITsUndoRedo::kIID,         ITsObjectInspectorSource::kIID, ITsIcon::kIID,
        ITsIdle::kIID,             ITsFindReplaceWindow::kIID, ITsResourceDiff::kIID,
        ITsEditorDetect::kIID,     ITsEditorExporter::kIID,    ITsPreview::kIID,
        ITsSoundPlayerSource::kIID, ITsConversationLinePreview::kIID};
    // clang-format on

    CTsWindowInterface() = default;
    ~CTsWindowInterface() { window_.reset(); }
    CTsWindowInterface(const CTsWindowInterface&) = delete;
    CTsWindowInterface& operator=(const CTsWindowInterface&) = delete;

    W* GetWindow() const { return window_.get(); }

    // S_FALSE when the window exists already.
    HRESULT MakeWindow(TsWindowHandle parent) {
        if (window_) return S_FALSE;
        try {
            window_ = std::make_unique<W>(*this, parent);
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
        return S_OK;
    }
    // False when there was no window.
    bool DestroyWindow() {
        if (!window_) return false;
        window_.reset();
        return true;
    }

    // An event from the window's sink: handed to the window while it exists.
    void OnEvent(TsAtom event, std::uint32_t param1, std::uint32_t param2, ITsResource* resource) {
        if constexpr (requires(W & w) { w.OnEvent(event, param1, param2, resource); }) {
            if (window_) window_->OnEvent(event, param1, param2, resource);
        }
    }

protected:
    HRESULT InternalQueryInterface(REFIID iid, void** object) {
        if (!object) return E_POINTER;
        *object = nullptr;
        if (iid == IUnknown::kIID) {
            *object = static_cast<IUnknown*>(static_cast<ITsUIWindow*>(this));
        } else if (!OfferFirstOf<ITsUIWindow, ITsUICommandSource, ITsEditor, ITsExportSource,
                                 ITsMarkerSource, ITsFindReplaceSource, ITsHelpSource,
                                 ITsOptionsSource, ITsCurrentState, ITsUndoRedo,
                                 ITsObjectInspectorSource, ITsIcon, ITsIdle, ITsFindReplaceWindow,
                                 ITsResourceDiff, ITsEditorDetect, ITsEditorExporter, ITsPreview,
                                 ITsSoundPlayerSource, ITsConversationLinePreview>(iid, object)) {
            return E_NOINTERFACE;
        }
        static_cast<ITsUIWindow*>(this)->AddRef();
        return S_OK;
    }

private:
    template <class... I>
    bool OfferFirstOf(REFIID iid, void** object) {
        return ((iid == I::kIID ? (*object = static_cast<I*>(this), true) : false) || ...);
    }

    std::unique_ptr<W> window_;
};
