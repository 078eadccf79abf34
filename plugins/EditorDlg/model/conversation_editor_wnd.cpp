#include "model/conversation_editor_wnd.h"

#include <algorithm>

#include "core/com_error.h"
#include "core/host_events.h"
#include "core/string_enum.h"
#include "model/dlg_editor_settings.h"
#include "model/editing/node_clipboard.h"
#include "model/editor_commands.h"
#include "model/editor_layout.h"
#include "model/known_tags.h"
#include "model/plugin_events.h"
#include "model/tree_view_commands.h"
#include "ts/editorhost.h"
#include "ts/environment.h"
#include "ts/events.h"
#include "ts/format.h"
#include "ts/hoststring.h"
#include "ts/hostui.h"
#include "ts/telemetry.h"
#include "ts/text.h"

namespace {

constexpr std::uint32_t kTelemetryCategory = TsFourCC("EUTS");
constexpr std::uint32_t kTelemetryWordCount = TsFourCC("CCWC");

}  // namespace

CConversationEditorWnd::CConversationEditorWnd(CTsWindowInterface<CConversationEditorWnd>& owner,
                                               TsWindowHandle parent)
    : CTsEditorLayoutSupport(false),
      CTsUICommandSourceSupport(std::u16string(kCommandSourceName), std::u16string(kCommandBars)),
      parent_(parent),
      owner_(&owner),
      events_(&owner) {
    dlg::LoadDlgEditorSettings();
    menus_ = dlg::BuildConversationEditorCommands(
        commands_, dlg::ReadMenuDescription(dlg::kConversationEditorMenus));
    panes_ = std::make_unique<dlg::CSettingsDlg>(
        document_.Tree(), [this](int tab) { return dlg::MakeLinePane(*this, tab); });
    panes_->SetCommentsPane(dlg::MakeCommentsPane(*this));
    document_.Tree().Items().SetSelectionFollower([this](dlg::TreeItem item) {
        panes_->SetSelection(item != dlg::kNoItem && item == document_.Tree().RootItem(), item);
    });
    editing_ = dlg::MakeTreeEditing(*this);
    view_ = dlg::MakeEditorView(document_.Tree().Items(), *editing_, parent);
    if (view_) view_->ShowPanes(*panes_);
    document_.Edits().AddObserver(&Markers());
    RefreshStateDisplay();
}

CConversationEditorWnd::~CConversationEditorWnd() {
    document_.Tree().Items().SetSelectionFollower({});
    ClearHistory();
    document_.Edits().RemoveObserver(&Markers());
    dlg::NodeClipboard::Process().ForgetTree(document_.Tree());
    // Splitters move only on screen; the next editor opens as the user left this one.
    if (view_) dlg::EditorLayout::Process().Save();
    // The host lists the faults of open conversations only.
    if (IsLoaded()) TsReplaceError(DisplayName(), {});
}

void CConversationEditorWnd::PublishErrors(bool always) {
    if (document_.Validation().TakeChanged() || always)
        TsReplaceError(DisplayName(), document_.Validation().Errors());
}

void CConversationEditorWnd::UndoEnd(int, bool) {
    undoRunning_ = false;
    UndoHistoryChanged();
    PublishErrors(false);
}

void CConversationEditorWnd::UndoHistoryChanged() {
    if (IsLoaded()) SetModified(!IsReadOnly() && (unsavedBeforeHistory_ || IsModifiedSinceSave()));
}

bool CConversationEditorWnd::Perform(std::unique_ptr<CTsUndoCommand> command) {
    if (!command || IsReadOnly() || !document_.IsLoaded()) return false;
    return AddCommand(std::move(command), true);
}

bool CConversationEditorWnd::PerformDone(std::unique_ptr<CTsUndoCommand> command) {
    if (!command || IsReadOnly() || !document_.IsLoaded()) return false;
    return AddCommand(std::move(command), false);
}

std::vector<TsCommandItem> CConversationEditorWnd::CommandList() const {
    return dlg::CommandItems(commands_);
}

std::vector<TsCommandItem> CConversationEditorWnd::MenuList() const {
    return dlg::MenuItems(menus_);
}

bool CConversationEditorWnd::CommandState(std::uint32_t id, std::uint32_t& state) {
    if (!commands_.FindById(id)) return false;
    state = dlg::CommandStateOf(*this, id);
    return true;
}

HRESULT CConversationEditorWnd::ExecuteCommand(std::uint32_t id) {
    if (!commands_.FindById(id)) return E_INVALIDARG;
    return dlg::RunCommand(*this, id) ? S_OK : S_FALSE;
}

bool CConversationEditorWnd::MayChangeFaults(ITsResource* resource) const {
    CTsHostString name;
    if (!resource || FAILED(resource->GetName(name.Put()))) return true;
    std::u16string_view text = name.View();
    std::u16string_view type = text.substr(std::min(text.size(), text.rfind(u'.') + 1));
    for (std::u16string_view read : {u"plo", u"stg", u"utc"})
        if (ts::EqualsIgnoreAsciiCase(type, read)) return true;
    return false;
}

HRESULT CConversationEditorWnd::EnumerateResourceTypes(std::int32_t which, ITsStringEnum** types) {
    std::vector<std::u16string> names;
    if (which == kTsEditableResourceTypes) names.emplace_back(kResourceType);
    return CTsStringEnum::Create(std::move(names), types);
}

HRESULT CConversationEditorWnd::LoadResource(IUnknown* resource) {
    bool reloading = IsLoaded();
    CTsComPtr<ITsProperty> root;
    if (resource) {
        CTsComPtr<ITsResource> host;
        if (FAILED(resource->QueryInterface(ITsResource::kIID, host.PutVoid())) ||
            FAILED(host->GetRootProperty(root.Put())))
            return E_INVALIDARG;
    } else {
        // Again from the open conversation: its current state is what the tree holds.
        CAgentConversation current;
        if (!document_.IsLoaded() || !document_.WriteBack(current)) return E_INVALIDARG;
        root = CTsComPtr<ITsProperty>(current.GetNode());
    }

    // The history and the markers belong to the tree they were made on.
    ClearHistory();
    Markers().Clear();
    // Nothing a pane shows of the old tree is written into the new one.
    panes_->SetPaneApply(false);
    std::u16string error;
    if (!document_.Load(root.Get(), error)) {
        ts::SendHostEvent(ts::events::Error(), ts::events::kError, error);
        return 1;
    }
    CTsComPtr<ITsEnvironment> environment;
    if (FAILED(TsGetEnvironment(environment.Put()))) return -1;
    document_.CollectReferences();
    if (auto tags = dlg::LoadKnownTags()) knownTags_ = std::move(*tags);
    dlg::ItemTree& items = document_.Tree().Items();
    items.Select(items.GetRootItem());
    items.Expand(items.GetRootItem(), true);
    panes_->SetPaneApply(true);

    unsavedBeforeHistory_ = reloading && !resource && !IsReadOnly();
    SetModified(unsavedBeforeHistory_);
    SetLoaded(true);
    PublishErrors(true);
    return S_OK;
}

HRESULT CConversationEditorWnd::GetContent(IUnknown* resource) {
    CTsComPtr<ITsResource> host;
    if (!resource || FAILED(resource->QueryInterface(ITsResource::kIID, host.PutVoid())))
        return E_NOTIMPL;
    CAgentConversation written;
    if (!document_.IsLoaded() || !document_.WriteBack(written)) return E_FAIL;
    return host->SetRootProperty(written.GetNode());
}

HRESULT CConversationEditorWnd::SaveResource(std::uint32_t hostArgument) {
    if (dlg::ConversationNode* node =
            document_.Tree().NodeOf(document_.Tree().Items().GetSelection())) {
        std::u16string text;
        node->Shown().line.GetText(text);
        if (!dlg::TextTagsAreValid(text, knownTags_)) {
            TsMessageBox(u"Line contains unmatched or malformed tags, please edit", u"",
                         MB_OK | MB_ICONERROR);
            return E_FAIL;
        }
    }
    HRESULT saved = TsSaveEditor(EditorObject(), hostArgument);
    if (saved != S_OK) return saved;
    document_.Tree().RefreshAll();
    unsavedBeforeHistory_ = false;
    MarkUndoSaved();
    SetModified(false);
    RefreshStateDisplay();
    return S_OK;
}

HRESULT CConversationEditorWnd::ReportWordCount() {
    SendWordCount(document_.WordCount());
    return S_OK;
}

IUnknown* CConversationEditorWnd::EditorObject() const {
    return static_cast<ITsEditor*>(owner_);
}

HRESULT CConversationEditorWnd::GoToMarker(std::u16string_view location) {
    auto lines = static_cast<std::int32_t>(document_.Tree().NodeCount());
    if (!Markers().Select(location, lines)) return E_INVALIDARG;
    dlg::ItemTree& items = document_.Tree().Items();
    dlg::TreeItem item = document_.Edits().ItemAt(Markers().Selection()->startLine);
    items.Select(item);
    items.EnsureVisible(item);
    return S_OK;
}

int CConversationEditorWnd::ToggleSimpleView() {
    simpleView_ = !simpleView_;
    int mode = simpleView_ ? 0 : 2;
    if (view_) view_->SetPaneMode(mode);
    return mode;
}

void CConversationEditorWnd::SendWordCount(std::int32_t count) {
    if (FAILED(TsSendTelemetry(kTelemetryCategory, kTelemetryWordCount, ts::Format(u"%d", count))))
        throw ts::ComError(E_FAIL);
}

void CConversationEditorWnd::RefreshStateDisplay() {
    std::u16string caption = DisplayName();
    if (IsModified()) caption += u"*";
    if (IsReadOnly()) caption += u" [Read Only]";
    SetCaption(std::move(caption));
}

void CConversationEditorWnd::OnEvent(TsAtom event, std::uint32_t param1, std::uint32_t,
                                     ITsResource* resource) {
    if (event == ts::events::Refresh() || event == ts::events::RefreshNoArt()) {
        document_.Refresh();
        RefreshStateDisplay();
        PublishErrors(false);
    } else if (editordlg::IsValueCacheFlushEvent(event)) {
        // A plot, stage or creature may have changed under the conversation's references.
        if (document_.IsLoaded() && MayChangeFaults(resource)) {
            document_.Edits().ValidateAll();
            PublishErrors(false);
        }
    } else if (event == ts::events::OptionsChange() && param1 == TsFindAtom(kOptionsName)) {
        dlg::LoadDlgEditorSettings();
        if (document_.IsLoaded()) document_.Tree().RefreshAllColours();
    }
}
