#include "editor_tab.h"

#include <QVBoxLayout>

#include "ts/format.h"
#include "ts/hoststring.h"
#include "ts/unknown.h"

namespace toolset {

namespace {

std::u16string LastErrorOf(ITsResourceManager& resources) {
    CTsHostString text;
    resources.GetLastErrorText(text.Put());
    return std::u16string(text.View());
}

}  // namespace

std::unique_ptr<EditorTab> EditorTab::Open(ts::PluginLoader& loader, ITsResourceManager& resources,
                                           std::u16string_view editorPattern,
                                           std::u16string_view name, std::u16string_view type,
                                           bool readOnly, std::u16string& error) {
    std::unique_ptr<EditorTab> tab(new EditorTab);
    tab->resourceName_ = std::u16string(name) + u"." + std::u16string(type);
    auto fail = [&](std::u16string message) {
        error = std::move(message);
        tab->CloseEditor();
        return nullptr;
    };

    if (FAILED(resources.OpenResource(name, type, tab->resource_.Put())))
        return fail(
            ts::Format(u"%ls cannot be opened: %ls", tab->resourceName_, LastErrorOf(resources)));

    CTsComPtr<IClassFactory> factory;
    if (HRESULT r = loader.GetClassObject(editorPattern, IClassFactory::kIID, factory.PutVoid());
        FAILED(r))
        return fail(ts::Format(u"No editor for %ls could be loaded (error 0x%08X).",
                               tab->resourceName_, static_cast<std::uint32_t>(r)));
    if (FAILED(factory->CreateInstance(nullptr, ITsEditor::kIID, tab->editor_.PutVoid())) ||
        FAILED(tab->editor_->QueryInterface(ITsUIWindow::kIID, tab->window_.PutVoid())))
        return fail(ts::Format(u"The editor for %ls could not be made.", tab->resourceName_));
    tab->editor_->QueryInterface(ITsUICommandSource::kIID, tab->commands_.PutVoid());
    tab->editor_->QueryInterface(ITsUndoRedo::kIID, tab->undo_.PutVoid());
    tab->editor_->QueryInterface(ITsMarkerSource::kIID, tab->markers_.PutVoid());

    // The tab is the editor's frame: its window goes into the frame's layout.
    auto* layout = new QVBoxLayout(tab.get());
    layout->setContentsMargins(0, 0, 0, 0);
    if (FAILED(tab->window_->CreateUIWindow(
            static_cast<TsWindowHandle>(static_cast<QWidget*>(tab.get())))))
        return fail(
            ts::Format(u"The editor for %ls could not make its window.", tab->resourceName_));

    ts::ResourceInfo info;
    if (SUCCEEDED(resources.GetResourceInfo(name, type, &info)) && info.locked) readOnly = true;
    tab->editor_->Attach(0, tab->resourceName_.c_str(), readOnly ? kTsEditorReadOnly : 0);
    HRESULT loaded = tab->editor_->Load(tab->resource_.Get());
    // A load that fails with 1 has told the host why (its "Error" event).
    if (loaded == 1) return fail(u"");
    if (loaded != S_OK)
        return fail(ts::Format(u"%ls could not be shown (error %d).", tab->resourceName_, loaded));
    return tab;
}

EditorTab::~EditorTab() {
    CloseEditor();
}

void EditorTab::CloseEditor() {
    if (window_) window_->CloseUIWindow();
    commands_.Reset();
    undo_.Reset();
    markers_.Reset();
    window_.Reset();
    editor_.Reset();
    resource_.Reset();
}

std::u16string EditorTab::Caption() const {
    CTsHostString name;
    if (!editor_ || FAILED(editor_->GetDisplayName(name.Put()))) return resourceName_;
    std::u16string caption(name.View());
    std::uint32_t state = 0;
    editor_->GetState(nullptr, nullptr, &state);
    if (state & kTsEditorModified) caption += u"*";
    if (state & kTsEditorReadOnly) caption += u" [Read Only]";
    return caption;
}

bool EditorTab::IsModified() const {
    std::uint32_t state = 0;
    return editor_ && SUCCEEDED(editor_->GetState(nullptr, nullptr, &state)) &&
           (state & kTsEditorModified);
}

bool EditorTab::IsEditor(IUnknown* object) const {
    if (!editor_ || !object) return false;
    // Identity is the IUnknown each side answers.
    CTsComPtr<IUnknown> mine, theirs;
    editor_->QueryInterface(IUnknown::kIID, mine.PutVoid());
    object->QueryInterface(IUnknown::kIID, theirs.PutVoid());
    return mine.Get() == theirs.Get();
}

std::u16string EditorTab::CommandSourceName() const {
    CTsHostString name;
    if (!commands_ || FAILED(commands_->GetCommandSourceName(name.Put()))) return {};
    return std::u16string(name.View());
}

std::vector<std::u16string> EditorTab::CommandBars() const {
    std::vector<std::u16string> names;
    CTsComPtr<ITsStringEnum> bars;
    if (!commands_ || FAILED(commands_->GetCommandBars(bars.Put()))) return names;
    for (CTsHostString bar; bars->Next(bar.Put()) == S_OK;) names.emplace_back(bar.View());
    return names;
}

std::uint32_t EditorTab::CommandState(std::uint32_t id) const {
    std::uint32_t state = 0;
    if (!commands_ || FAILED(commands_->GetCommandState(id, &state))) return 0;
    return state;
}

HRESULT EditorTab::Execute(std::uint32_t id) {
    return commands_ ? commands_->ExecuteCommand(id) : E_FAIL;
}

HRESULT EditorTab::GoToLine(int line) {
    // A navigation location names only what it gives: here the line alone.
    return GoToLocation(ts::Format(u"StartLine=%d", line));
}

HRESULT EditorTab::GoToLocation(const std::u16string& location) {
    if (!markers_) return E_NOINTERFACE;
    HRESULT r = markers_->GoToMarker(location.c_str());
    return r == E_NOTIMPL ? E_NOINTERFACE : r;
}

void EditorTab::FocusEditor() {
    // The editor's widgets follow the tab in the window's focus chain.
    for (QWidget* w = nextInFocusChain(); w && w != this && isAncestorOf(w);
         w = w->nextInFocusChain())
        if ((w->focusPolicy() & Qt::TabFocus) && w->isVisibleTo(this) && w->isEnabled()) {
            w->setFocus(Qt::OtherFocusReason);
            return;
        }
    setFocus(Qt::OtherFocusReason);
}

HRESULT EditorTab::Save() {
    return editor_ ? editor_->Save(0) : E_FAIL;
}

}  // namespace toolset
