#include "editor_check.h"

#include <filesystem>

#include "ts/editor.h"
#include "ts/environment.h"
#include "ts/events.h"
#include "ts/format.h"
#include "ts/hostcomponents.h"
#include "ts/hoststring.h"
#include "ts/text.h"
#include "ts/uiwindow.h"

namespace cli {

namespace {

std::u16string_view EditorPatternFor(std::u16string_view type) {
    if (ts::EqualsIgnoreAsciiCase(type, u"dlg")) return u"ConversationEditor";
    return {};
}

}  // namespace

EditorCheck::~EditorCheck() {
    if (listener_) ts::RemoveHostEventListener(listener_);
    if (resources_) TsRegisterHostComponent(kTsResourceManagerName, nullptr);
    resources_.Reset();
}

bool EditorCheck::Start(std::shared_ptr<ts::ResourceStore> store, std::u16string& error) {
    std::string folder = ts::DefaultPluginFolder();
    std::error_code ec;
    if (!std::filesystem::is_directory(folder, ec) || loader_.Scan(folder) == 0) {
        error = ts::Format(u"the editors cannot be tried: there are no plugins in \"%s\"", folder);
        return false;
    }
    if (FAILED(
            TsCreateResourceManager(std::move(store), ts::CurrentUserName(), resources_.Put()))) {
        error = u"the editors cannot be tried: the module cannot be served to them";
        return false;
    }
    TsRegisterHostComponent(kTsResourceManagerName, resources_.Get());
    // An editor that refuses a resource tells the host why in an "Error" event.
    listener_ = ts::AddHostEventListener([this](const ts::HostEvent& event) {
        if (event.event == ts::events::Error()) lastError_ = event.text;
    });
    return true;
}

bool EditorCheck::HasEditor(std::u16string_view type) {
    return !EditorPatternFor(type).empty();
}

bool EditorCheck::Open(std::u16string_view name, std::u16string_view type, std::u16string& problem,
                       const std::function<void()>& whileOpen) {
    std::u16string_view pattern = EditorPatternFor(type);
    if (pattern.empty()) return true;
    CTsComPtr<ITsResource> resource;
    if (FAILED(resources_->OpenResource(name, type, resource.Put()))) {
        CTsHostString text;
        resources_->GetLastErrorText(text.Put());
        problem = std::u16string(text.View());
        return false;
    }
    CTsComPtr<ITsEditor> editor;
    CTsComPtr<ITsUIWindow> window;
    if (HRESULT r = loader_.CreateInstance(pattern, ITsEditor::kIID, editor.PutVoid()); FAILED(r)) {
        problem = ts::Format(u"no editor for it could be loaded (error 0x%08X)",
                             static_cast<std::uint32_t>(r));
        return false;
    }
    // Without a screen the editor makes no view; its tree is built all the same.
    if (FAILED(editor->QueryInterface(ITsUIWindow::kIID, window.PutVoid())) ||
        FAILED(window->CreateUIWindow(nullptr))) {
        problem = u"its editor could not be made";
        return false;
    }
    std::u16string file = std::u16string(name) + u"." + std::u16string(type);
    lastError_.clear();
    editor->Attach(0, file.c_str(), kTsEditorReadOnly);
    HRESULT loaded = editor->Load(resource.Get());
    if (loaded == S_OK && whileOpen) whileOpen();
    window->CloseUIWindow();
    if (loaded == S_OK) return true;
    problem = !lastError_.empty()
                  ? lastError_
                  : ts::Format(u"its editor refused it (error %d)", static_cast<int>(loaded));
    return false;
}

}  // namespace cli
