// The library's entry points: the host gets class factories of the two editor classes and
// broadcasts its events through them.
#include "core/module.h"
#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "model/conversation_line_preview_wnd.h"
#include "model/plugin_events.h"
#include "ts/plugin.h"
#include "views/conversation_editor_view.h"

namespace {

TsObjectMapEntry gObjectMap[] = {
    TS_OBJECT_ENTRY(CConversationEditorWnd::kClassId, CTsWindowInterface<CConversationEditorWnd>),
    TS_OBJECT_ENTRY(CConversationLinePreviewWnd::kClassId,
                    CTsWindowInterface<CConversationLinePreviewWnd>),
};

// Initialised when the library is loaded; at unload it releases the cached class factories.
CTsModule gModule(gObjectMap);

// Editor windows show themselves through the Qt views when the host runs a widget application.
[[maybe_unused]] const bool gViewsInstalled = (dlg::InstallQtEditorView(), true);

}  // namespace

TS_PLUGIN_EXPORT HRESULT DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
    return TsModuleGetClassObject(&gModule, clsid, iid, object);
}

TS_PLUGIN_EXPORT HRESULT DllSendEvent(TsAtom event, std::uint32_t param1, std::uint32_t param2,
                                      IUnknown* payload) {
    return editordlg::HandlePluginEvent(event, param1, param2, payload);
}
