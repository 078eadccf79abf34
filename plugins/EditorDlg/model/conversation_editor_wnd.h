#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/command_source_support.h"
#include "core/editor_support.h"
#include "core/event_sink.h"
#include "core/frame_wnd.h"
#include "core/layout_support.h"
#include "core/marker_source_support.h"
#include "core/undo_support.h"
#include "core/window_interface.h"
#include "model/command_table.h"
#include "model/conversation_document.h"
#include "model/editing/vo_guard.h"
#include "model/editor_view.h"
#include "model/line_markers.h"
#include "model/panes/line_panes.h"
#include "model/panes/settings_dlg.h"
#include "model/text_tags.h"
#include "ts/guid.h"
#include "ts/resource.h"
#include "ts/stringenum.h"
#include "ts/uicommandsource.h"
#include "ts/uiwindow.h"

// The conversation editor's window: the editor state the host reads and writes, the command
// source identity, the layout places, the markers, the undo stack, and the event sink through
// which host events reach it.
class CConversationEditorWnd
    : public CTsFrameWnd,
      public CTsEditorSupport<CConversationEditorWnd>,
      public CTsEditorLayoutSupport<CConversationEditorWnd>,
      public CTsUICommandSourceSupport<CConversationEditorWnd>,
      public CTsMarkerSourceSupport<CConversationEditorWnd, dlg::LineMarkers>,
      public CTsUndoSupport<CConversationEditorWnd> {
public:
    static constexpr CLSID kClassId = ts::Guid("{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}");
    static constexpr std::u16string_view kCommandSourceName = u"DLGEditor";
    static constexpr std::u16string_view kCommandBars = u"DialogEditor\nDialogEditorHighlight";
    // The editor's option pages and its settings section.
    static constexpr std::u16string_view kOptionsName = u"DlgEditor";
    static constexpr std::u16string_view kResourceType = u"Conversation";
    // The splitters whose positions the saved layout records.
    static constexpr std::u16string_view kWindowSplitter = u"WindowSplitter";
    static constexpr std::u16string_view kTextSplitter = u"TextSplitter";

    CConversationEditorWnd(CTsWindowInterface<CConversationEditorWnd>& owner,
                           TsWindowHandle parent);
    // The undo commands refer to the document, so they go before it.
    ~CConversationEditorWnd();

    TsWindowHandle Parent() const { return parent_; }
    ITsEventSink* GetEventSink() const { return events_.GetSink(); }

    // ITsEditor operations of this editor.
    HRESULT EnumerateResourceTypes(std::int32_t which, ITsStringEnum** types);
    // Builds the tree from the host's resource object (or, without one, again from the open
    // conversation). Returns 1 when the conversation cannot be shown (the host is sent "Error"),
    // -1 when the host environment is missing.
    HRESULT LoadResource(IUnknown* resource);
    // Writes the tree back and hands it to the resource object; E_NOTIMPL when the object is not
    // a resource.
    HRESULT GetContent(IUnknown* resource);
    // Refused with a message while the selected line's markup is broken; otherwise the host
    // saves, and the labels are recomputed.
    HRESULT SaveResource(std::uint32_t hostArgument);
    HRESULT ReportWordCount();

    dlg::ConversationDocument& Document() { return document_; }
    // The markup tags line text may use: read from the module's tag table on each load, or given
    // by a host without a resource manager.
    void SetKnownTags(dlg::TextTagSet tags) { knownTags_ = std::move(tags); }
    const dlg::TextTagSet& KnownTags() const { return knownTags_; }
    // The pane host beside the tree; it follows the tree's selection.
    dlg::CSettingsDlg& Panes() { return *panes_; }
    bool SimpleView() const { return simpleView_; }
    // "View.DialogEditor.SimpleView": returns the splitter's pane mode, 0 on and 2 off.
    int ToggleSimpleView();

    // Records a word count in the host's telemetry as decimal text; raises ComError(E_FAIL)
    // when the host can't record it.
    void SendWordCount(std::int32_t count);

    // ITsUICommandSource: the command table (built once, with the menus of "DialogEditor"), the
    // state of a command on the selection, and running one by id.
    const dlg::CommandTable& Commands() const { return commands_; }
    std::vector<TsCommandItem> CommandList() const;
    std::vector<TsCommandItem> MenuList() const;
    bool CommandState(std::uint32_t id, std::uint32_t& state);
    HRESULT ExecuteCommand(std::uint32_t id);

    // The window's view, when the host gave it a frame to show it in.
    dlg::EditorView* View() const { return view_.get(); }

    std::u16string OptionsName() const { return std::u16string(kOptionsName); }

    // The caption: the resource's name, "*" while modified, " [Read Only]" when read-only.
    void RefreshStateDisplay();

    // The undo stack's news: the modified state follows the stack's saved position.
    void UndoBegin(int) { undoRunning_ = true; }
    void UndoEnd(int direction, bool added);
    // While the stack runs, undoes or redoes a command (which may move the selection), panes
    // must not start commands of their own.
    bool UndoRunning() const { return undoRunning_; }
    void UndoHistoryChanged();
    // Runs a command of the open conversation through the undo stack; false for a read-only
    // editor, an editor with nothing loaded, or a command that failed.
    bool Perform(std::unique_ptr<CTsUndoCommand> command);
    // Registers a command whose change is already made (a paste); undo takes it back.
    bool PerformDone(std::unique_ptr<CTsUndoCommand> command);
    // The questions that guard voice-over already sent, with what the user answered so far.
    dlg::VoGuard& Vo() { return vo_; }

    void OnEvent(TsAtom event, std::uint32_t param1, std::uint32_t param2, ITsResource* resource);

    // Hands the host the conversation's error list when it changed since the last time (or
    // `always`).
    void PublishErrors(bool always);

    // ITsMarkerSource: selects the line a location text names (its first line) and keeps the
    // location as the markers' selection, with its field and characters for find and replace.
    // E_INVALIDARG when the text is malformed or names no line of the open conversation.
    HRESULT GoToMarker(std::u16string_view location);

private:
    // The editor object that answers the host for this window.
    IUnknown* EditorObject() const;
    // Whether an event about `resource` can change what validation finds: one of the kinds
    // the rules read, or an event about no resource in particular.
    bool MayChangeFaults(ITsResource* resource) const;

    TsWindowHandle parent_;
    CTsWindowInterface<CConversationEditorWnd>* owner_;
    dlg::ConversationDocument document_;
    dlg::TextTagSet knownTags_;
    dlg::VoGuard vo_;
    bool simpleView_ = false;
    bool undoRunning_ = false;
    // Set when the conversation was reloaded from unsaved changes, which no undo step records.
    bool unsavedBeforeHistory_ = false;
    dlg::CommandTable commands_;
    std::vector<dlg::CommandRecord*> menus_;
    // Its panes refer to the document; the view shows it and goes first.
    std::unique_ptr<dlg::CSettingsDlg> panes_;
    // The view's way back to the window's editing; it outlives the view.
    std::unique_ptr<dlg::TreeEditing> editing_;
    // After the document: the view follows its item tree and goes first.
    std::unique_ptr<dlg::EditorView> view_;
    CTsEventSinkConnection<CTsWindowInterface<CConversationEditorWnd>> events_;
};
