// The pane host and the text pane driven as the window and the view drive them, on the demo
// module: tabs for each kind of selection, the commit before a tab change, and every control of
// the "Dialogue" tab with its checks, questions and undo steps.
#include <gtest/gtest.h>

#include "core/undo_command_group.h"
#include "core/window_interface.h"
#include "edit_harness.h"
#include "model/conversation_editor_wnd.h"
#include "model/editing/node_clipboard.h"
#include "model/editing/tree_edits.h"
#include "model/line_properties.h"
#include "model/panes/comment_panes.h"
#include "model/panes/root_dlg.h"
#include "model/panes/slide_show_dlg.h"
#include "model/panes/text_dlg.h"
#include "model/validation/replacement_check.h"
#include "support/demo_module_fixture.h"
#include "support/scripted_ui.h"
#include "ts/comobject.h"

namespace {

using EditorObject = CTsComObject<CTsWindowInterface<CConversationEditorWnd>>;
using dlg::CTextDlg;
using dlg::TreeItem;

class Panes : public ts::test::DemoModuleTest {
protected:
    void TearDown() override {
        for (auto& editor : editors_) editor->CloseUIWindow();
        dlg::NodeClipboard::Process().Clear();
        DemoModuleTest::TearDown();
    }

    CConversationEditorWnd& Open(std::u16string_view name) {
        CTsComPtr<ITsResource> resource;
        EXPECT_EQ(manager_->OpenResource(name, u"dlg", resource.Put()), S_OK);
        auto editor = EditorObject::Create();
        EXPECT_EQ(editor->CreateUIWindow(nullptr), S_OK);
        EXPECT_EQ(editor->Attach(1, (std::u16string(name) + u".dlg").c_str(), 0), S_OK);
        EXPECT_EQ(editor->Load(resource.Get()), S_OK);
        editors_.push_back(editor);
        return *editor->GetWindow();
    }
    // The first item, in tree order, whose node passes `test`.
    template <class Test>
    static TreeItem Find(CConversationEditorWnd& w, Test test) {
        const dlg::ConversationTree& tree = w.Document().Tree();
        for (TreeItem i = tree.RootItem(); i != dlg::kNoItem; i = tree.Items().NextInPreOrder(i))
            if (const dlg::ConversationNode* node = tree.NodeOf(i); node && test(*node)) return i;
        ADD_FAILURE() << "no such line";
        return dlg::kNoItem;
    }
    static TreeItem Line(CConversationEditorWnd& w, std::u16string_view textStart) {
        return Find(w, [&](const dlg::ConversationNode& n) {
            std::u16string text;
            n.line.GetText(text);
            return !n.isLink && text.starts_with(textStart);
        });
    }
    static CTextDlg& Dialogue(CConversationEditorWnd& w) {
        w.Panes().SelectTab(dlg::kTabDialogue);
        return *static_cast<CTextDlg*>(w.Panes().Pane(dlg::kTabDialogue));
    }
    static std::vector<std::u16string> Tabs(CConversationEditorWnd& w) {
        std::vector<std::u16string> texts;
        for (int tab : w.Panes().Strip()) texts.emplace_back(dlg::kPaneTabs[tab].text);
        return texts;
    }
    template <class T>
    static T Field(CConversationEditorWnd& w, TreeItem item, std::u16string_view field) {
        variant value;
        EXPECT_EQ(dlg::FieldOf(w.Document().Edits(), item, field)->GetValue(&value), S_OK);
        if constexpr (std::is_same_v<T, bool>)
            return value.GetBool();
        else if constexpr (std::is_same_v<T, std::int32_t>)
            return value.GetInt();
        else
            return std::u16string(value.GetString());
    }

    ts::test::ScriptedUi ui_;
    std::vector<CTsComPtr<EditorObject>> editors_;
};

TEST_F(Panes, TabsFollowTheSelectionAndKeepTheShownTab) {
    CConversationEditorWnd& w = Open(u"orla_welcome");
    dlg::ItemTree& items = w.Document().Tree().Items();
    // Loading selects the root.
    using V = std::vector<std::u16string>;
    EXPECT_EQ(Tabs(w), (V{u"Global Settings", u"Plots and Scripting", u"Cinematics", u"Preview"}));
    EXPECT_EQ(w.Panes().ShownTab(), dlg::kTabGlobalSettings);

    TreeItem npc = Line(w, u"Work? Talk to Brannoc");
    items.Select(npc);
    EXPECT_EQ(Tabs(w), (V{u"Dialogue", u"Plots and Scripting", u"Localization", u"Editing",
                          u"Cinematics", u"Animation", u"Slide Show"}));
    // Global Settings went away: the first tab is shown.
    EXPECT_EQ(w.Panes().ShownTab(), dlg::kTabDialogue);
    EXPECT_TRUE(Dialogue(w).Enabled());

    TreeItem start = Line(w, u"Back again");
    items.Select(start);
    EXPECT_EQ(Tabs(w), (V{u"Dialogue", u"Plots and Scripting", u"Localization", u"Editing",
                          u"Cinematics", u"Animation", u"Preview", u"Slide Show"}));
    TreeItem player = Line(w, u"I'm looking for work.");
    items.Select(player);
    EXPECT_EQ(Tabs(w), (V{u"Dialogue", u"Plots and Scripting", u"Localization", u"Editing"}));
    // A link to a start line previews like the start line.
    items.Select(start);
    ASSERT_TRUE(dlg::CopySelection(w));
    items.Select(Line(w, u"Goodbye."));
    ASSERT_TRUE(dlg::PasteClipboardAsLink(w));
    TreeItem linkToStart = Find(w, [&](const dlg::ConversationNode& n) {
        return n.isLink && n.linkTarget && n.linkTarget->treeItem == start;
    });
    items.Select(linkToStart);
    EXPECT_EQ(Tabs(w), (V{u"Dialogue", u"Plots and Scripting", u"Localization", u"Editing",
                          u"Cinematics", u"Animation", u"Preview", u"Slide Show"}));

    // The root after an NPC line: Plots and Scripting stays when it was shown, ...
    items.Select(npc);
    EXPECT_TRUE(w.Panes().SelectTab(dlg::kTabPlotsAndScripting));
    EXPECT_FALSE(w.Panes().SelectTab(dlg::kTabPlotsAndScripting));  // already shown
    EXPECT_FALSE(w.Panes().SelectTab(dlg::kTabGlobalSettings));     // not offered
    items.Select(w.Document().Tree().RootItem());
    EXPECT_EQ(Tabs(w), (V{u"Global Settings", u"Plots and Scripting", u"Cinematics", u"Preview"}));
    EXPECT_EQ(w.Panes().ShownTab(), dlg::kTabPlotsAndScripting);
    // ... otherwise Global Settings is chosen.
    items.Select(npc);
    w.Panes().SelectTab(dlg::kTabAnimation);
    items.Select(w.Document().Tree().RootItem());
    EXPECT_EQ(w.Panes().ShownTab(), dlg::kTabGlobalSettings);
    // The Dialogue pane lost its line when it was hidden.
    EXPECT_FALSE(static_cast<CTextDlg*>(w.Panes().Pane(dlg::kTabDialogue))->Enabled());

    items.Select(dlg::kNoItem);
    EXPECT_TRUE(w.Panes().Strip().empty());
    EXPECT_EQ(w.Panes().ShownTab(), -1);
    EXPECT_FALSE(w.Panes().SelectTab(dlg::kTabDialogue));

    // Find and replace goes to the first pane that edits the field.
    items.Select(npc);
    w.Panes().SelectTab(dlg::kTabEditing);
    EXPECT_EQ(w.Panes().RouteFindReplace(dlg::kPropSpeaker), dlg::kTabDialogue);
    EXPECT_EQ(w.Panes().ShownTab(), dlg::kTabDialogue);
    EXPECT_EQ(w.Panes().RouteFindReplace(dlg::kPropComment), -1);
}

TEST_F(Panes, APaneCommitsBeforeTheTabChangesOnlyWhileTheSwitchIsOn) {
    CConversationEditorWnd& w = Open(u"orla_welcome");
    TreeItem line = Line(w, u"Welcome to the Drowned");
    w.Document().Tree().Items().Select(line);
    CTextDlg& pane = Dialogue(w);
    pane.Controls().narration = true;
    w.Panes().SetPaneApply(false);
    w.Panes().SelectTab(dlg::kTabEditing);
    EXPECT_EQ(w.UndoCount(), 0u);
    EXPECT_FALSE(Field<bool>(w, line, u"Narration"));

    w.Panes().SetPaneApply(true);
    w.Panes().SelectTab(dlg::kTabDialogue);
    pane.Controls().narration = true;
    w.Panes().SelectTab(dlg::kTabEditing);
    ASSERT_EQ(w.UndoCount(), 1u);
    EXPECT_EQ(w.UndoCommandAt(0)->Label(), u"Narration Change");
    EXPECT_TRUE(Field<bool>(w, line, u"Narration"));
}

TEST_F(Panes, EachControlWritesOnlyWhatChangedWithItsLabel) {
    CConversationEditorWnd& w = Open(u"orla_welcome");
    TreeItem line = Line(w, u"It floods twice");
    w.Document().Tree().Items().Select(line);
    CTextDlg& pane = Dialogue(w);
    EXPECT_EQ(pane.Controls().speaker, u"(default)");
    EXPECT_EQ(pane.Controls().listener, u"(default)");
    // Filling applies nothing, and applying what is stored writes nothing.
    EXPECT_FALSE(pane.Apply(dlg::LinePane::kAllControls, true));
    EXPECT_EQ(w.UndoCount(), 0u);

    struct Case {
        int control;
        std::function<void(CTextDlg::Values&)> set;
        std::u16string label;
        std::u16string field;
    };
    const Case cases[] = {
        {CTextDlg::kReTranslation, [](auto& v) { v.reTranslation = true; },
         u"Requires ReTranslation Change", u"TextRequiresReTranslation"},
        {CTextDlg::kReRecord, [](auto& v) { v.reRecord = true; }, u"Requires VO ReRecord Change",
         u"TextRequiresReRecording"},
        {CTextDlg::kNoVoInGame, [](auto& v) { v.noVoInGame = true; }, u"No VO In Game Change",
         u"NoVOInGame"},
        {CTextDlg::kNarration, [](auto& v) { v.narration = true; }, u"Narration Change",
         u"Narration"},
        {CTextDlg::kLanguage, [](auto& v) { v.language = 1; }, u"Language Change", u"LanguageID"},
        {CTextDlg::kIcon, [](auto& v) { v.icon = 1; }, u"Icon Change", u"Icon"},
        {CTextDlg::kFastPath, [](auto& v) { v.fastPath = 3; }, u"fast path change", u"FastPath"},
        {CTextDlg::kListener, [](auto& v) { v.listener = u"prevSpeaker"; }, u"Listener Change",
         u"Listener"},
        {CTextDlg::kSpeaker, [](auto& v) { v.speaker = u"owner"; }, u"Speaker Change", u"Speaker"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ts::Utf16ToUtf8(c.label));
        std::size_t depth = w.UndoCount();
        c.set(pane.Controls());
        EXPECT_TRUE(pane.Apply(c.control, true));
        ASSERT_EQ(w.UndoCount(), depth + 1);
        EXPECT_EQ(w.UndoCommandAt(0)->Label(), c.label);
        EXPECT_FALSE(pane.Apply(c.control, true));  // nothing differs now
        EXPECT_EQ(w.UndoCount(), depth + 1);
    }
    EXPECT_EQ(Field<std::u16string>(w, line, u"Speaker"), u"OWNER");
    EXPECT_EQ(Field<std::u16string>(w, line, u"Listener"), u"PREVSPEAKER");
    EXPECT_EQ(Field<std::int32_t>(w, line, u"FastPath"), 3);

    // A creature's tag in any case is stored in lower case; "(default)" as empty.
    pane.Controls().speaker = u"Harbour_Guard";
    EXPECT_TRUE(pane.Apply(CTextDlg::kSpeaker, true));
    EXPECT_EQ(Field<std::u16string>(w, line, u"Speaker"), u"harbour_guard");
    pane.Controls().speaker = u"(default)";
    EXPECT_TRUE(pane.Apply(CTextDlg::kSpeaker, true));
    EXPECT_EQ(Field<std::u16string>(w, line, u"Speaker"), u"");

    // Bad input: the field stays, the typed value stays in the control, nothing else happens.
    std::size_t depth = w.UndoCount();
    pane.Controls().speaker = u"Nobody_Here";
    EXPECT_FALSE(pane.Apply(CTextDlg::kSpeaker, true));
    ASSERT_FALSE(ui_.shown().empty());
    EXPECT_EQ(ui_.shown().back().text, u"'Nobody_Here' is not a valid tag.");
    EXPECT_EQ(ui_.shown().back().style, MB_OK | MB_ICONERROR);
    EXPECT_EQ(pane.Controls().speaker, u"Nobody_Here");
    std::size_t shown = ui_.shown().size();
    EXPECT_FALSE(pane.Apply(CTextDlg::kSpeaker, false));  // no messages: none shown
    EXPECT_EQ(ui_.shown().size(), shown);
    pane.Controls().speaker = u"(default)";
    pane.Controls().language = 77;  // no such row
    EXPECT_FALSE(pane.Apply(CTextDlg::kLanguage, true));
    pane.Controls().fastPath = 12;
    EXPECT_FALSE(pane.Apply(CTextDlg::kFastPath, true));
    EXPECT_EQ(w.UndoCount(), depth);
    EXPECT_EQ(Field<std::int32_t>(w, line, u"LanguageID"), 1);

    // A player line speaks as the player whatever the combo says.
    TreeItem player = Line(w, u"Quite a place");
    w.Document().Tree().Items().Select(player);
    EXPECT_EQ(pane.SpeakerChoices(), std::vector<std::u16string>{u"PLAYER"});
    pane.Controls().speaker = u"orla";
    EXPECT_FALSE(pane.Apply(CTextDlg::kSpeaker, true));
    EXPECT_EQ(Field<std::u16string>(w, player, u"Speaker"), u"PLAYER");

    // The speaker list offers the module's creatures and henchmen.
    w.Document().Tree().Items().Select(line);
    auto speakers = pane.SpeakerChoices();
    EXPECT_EQ(speakers.front(), u"(default)");
    EXPECT_NE(std::find(speakers.begin(), speakers.end(), u"orla"), speakers.end());
    EXPECT_NE(std::find(speakers.begin(), speakers.end(), u"HENCH:wren"), speakers.end());
}

TEST_F(Panes, ChangingTheTextAsksAboutVoiceOverOnceAndUndoesInOneStep) {
    CConversationEditorWnd& w = Open(u"orla_welcome");
    dlg::ItemTree& items = w.Document().Tree().Items();

    // Sent for recording, not flagged: the question, No keeps everything as it was.
    TreeItem sent = Line(w, u"Back again");
    items.Select(sent);
    CTextDlg& pane = Dialogue(w);
    EXPECT_EQ(pane.VoStatus(), u"Sent for VO Recording on 2024-03-11.");
    EXPECT_TRUE(pane.VoSent());
    EXPECT_EQ(pane.TranslationStatus(), u"Sent for translation on 2024-02-20.");
    CTsComPtr<ITsProperty> before(w.Document().Tree().NodeOf(sent)->line.GetNode());
    CAgentConversation original;
    ASSERT_TRUE(w.Document().WriteBack(original));

    pane.Controls().text = u"Back so soon?";
    ui_.Answer(IDNO);
    EXPECT_FALSE(pane.Apply(CTextDlg::kText, true));
    ASSERT_EQ(ui_.shown().size(), 1u);
    EXPECT_EQ(ui_.shown()[0].text, dlg::VoGuard::kLineQuestion);
    EXPECT_EQ(ui_.shown()[0].style, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2);
    EXPECT_EQ(pane.Controls().text, Field<std::u16string>(w, sent, u"Text"));
    EXPECT_EQ(w.UndoCount(), 0u);

    // Yes: one "Text Change" of the two flags, the string id and the text, in that order.
    pane.Controls().text = u"Back so soon?";
    ui_.Answer(IDYES);
    EXPECT_TRUE(pane.Apply(CTextDlg::kText, true));
    ASSERT_EQ(w.UndoCount(), 1u);
    auto* group = dynamic_cast<const CTsUndoCommandGroup*>(w.UndoCommandAt(0));
    ASSERT_TRUE(group);
    EXPECT_EQ(group->Label(), u"Text Change");
    ASSERT_EQ(group->Count(), 4u);
    const char16_t* labels[] = {u"Requires ReTranslation Change", u"Requires VO ReRecord Change",
                                u"Requires String ID Change", u"Requires Text Change"};
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(group->Child(i).Label(), labels[i]);
    EXPECT_EQ(Field<std::u16string>(w, sent, u"Text"), u"Back so soon?");
    EXPECT_EQ(Field<std::int32_t>(w, sent, u"StringID"), 1001);  // its own id is kept
    EXPECT_TRUE(Field<bool>(w, sent, u"TextRequiresReRecording"));
    EXPECT_TRUE(pane.Controls().reRecord && pane.Controls().reTranslation);
    EXPECT_TRUE(pane.TakeRefreshRequest());
    EXPECT_FALSE(pane.TakeRefreshRequest());

    // The line now needs re-recording anyway: no question on the next change ...
    pane.Controls().text = u"Back already?";
    EXPECT_TRUE(pane.Apply(CTextDlg::kText, true));
    EXPECT_EQ(ui_.shown().size(), 2u);
    // ... and undoing both changes restores text, string id and both flags.
    ASSERT_TRUE(w.Undo());
    ASSERT_TRUE(w.Undo());
    // The pane shows what undo restored, and applying it again writes nothing.
    EXPECT_EQ(pane.Controls().text, Field<std::u16string>(w, sent, u"Text"));
    EXPECT_FALSE(pane.Controls().reRecord);
    EXPECT_FALSE(pane.Apply(dlg::LinePane::kAllControls, true));
    CAgentConversation undone;
    ASSERT_TRUE(w.Document().WriteBack(undone));
    std::u16string difference;
    EXPECT_TRUE(ts::PropertyTreesEqual(original.GetNode(), undone.GetNode(), &difference))
        << ts::Utf16ToUtf8(difference);

    // Confirmed once, never asked again for that line while the editor is open.
    items.Select(sent);
    pane.Controls().text = u"Back again, then.";
    EXPECT_TRUE(pane.Apply(CTextDlg::kText, true));
    EXPECT_EQ(ui_.shown().size(), 2u);

    // A line already flagged for re-recording never asks.
    TreeItem flagged = Line(w, u"They say the lighthouse");
    items.Select(flagged);
    pane.Controls().text = u"The lighthouse is dark.";
    EXPECT_TRUE(pane.Apply(CTextDlg::kText, true));
    EXPECT_EQ(ui_.shown().size(), 2u);
    EXPECT_EQ(pane.VoStatus(), u"Sent for VO Recording on 2024-03-11.  Requires re-recording.");
    // Nor does one whose recording status already asks for a new recording.
    pane.Controls().reRecord = false;
    ASSERT_TRUE(pane.Apply(CTextDlg::kReRecord, true));
    pane.Controls().text = u"The lighthouse is dark again.";
    EXPECT_TRUE(pane.Apply(CTextDlg::kText, true));
    EXPECT_EQ(ui_.shown().size(), 2u);

    // Malformed markup is refused with the pane's message and stays in the control.
    pane.Controls().text = u"The <i>lighthouse is dark.";
    std::size_t depth = w.UndoCount();
    EXPECT_FALSE(pane.Apply(CTextDlg::kText, true));
    EXPECT_EQ(ui_.shown().back().text, dlg::kMalformedTagsPaneMessage);
    EXPECT_EQ(pane.Controls().text, u"The <i>lighthouse is dark.");
    EXPECT_EQ(w.UndoCount(), depth);
}

TEST_F(Panes, ALineWithoutAnIdOrSharingOneGetsAFreshIdAndAFailingServiceWritesNothing) {
    CConversationEditorWnd& w = Open(u"orla_welcome");
    dlg::ItemTree& items = w.Document().Tree().Items();
    TreeItem fresh = Find(w, [](const dlg::ConversationNode& n) {
        std::int32_t id = 0;
        n.line.GetStringID(id);
        return !n.isLink && id == -1;
    });
    items.Select(fresh);
    CTextDlg& pane = Dialogue(w);
    EXPECT_EQ(pane.VoStatus(), u"Not VO Recorded yet.");
    EXPECT_EQ(pane.TranslationStatus(), u"Not translated yet.");
    pane.Controls().text = u"Hm.";
    EXPECT_TRUE(pane.Apply(CTextDlg::kText, true));
    std::int32_t issued = Field<std::int32_t>(w, fresh, u"StringID");
    EXPECT_GT(issued, 1109);

    // A second line with the same id (as a copy has) gets an id of its own on its first edit.
    TreeItem other = Line(w, u"Goodbye.");
    auto copyId = CUndoCommandModifyNode::ForField(u"x", w.Document().Edits(), other, u"StringID",
                                                   variant(kTsTypeInt, issued), dlg::kChangeNone);
    ASSERT_TRUE(w.Perform(std::move(copyId)));
    items.Select(other);
    pane.Controls().text = u"Farewell.";
    EXPECT_TRUE(pane.Apply(CTextDlg::kText, true));
    EXPECT_GT(Field<std::int32_t>(w, other, u"StringID"), issued);

    // A copy pasted within the conversation: the first of the two edited gets a new id, and the
    // other then keeps its own.
    TreeItem original = Line(w, u"Not tonight.");
    items.Select(original);
    ASSERT_TRUE(dlg::CopySelection(w));
    items.Select(Line(w, u"Storm's coming"));
    ASSERT_TRUE(dlg::PasteClipboard(w));
    TreeItem pasted = Find(w, [&](const dlg::ConversationNode& n) {
        std::u16string text;
        n.line.GetText(text);
        return !n.isLink && n.treeItem != original && text == u"Not tonight.";
    });
    items.Select(pasted);
    pane.Controls().text = u"Not tonight, Orla.";
    EXPECT_TRUE(pane.Apply(CTextDlg::kText, true));
    EXPECT_NE(Field<std::int32_t>(w, pasted, u"StringID"), 1106);
    items.Select(original);
    pane.Controls().text = u"Not tonight, thank you.";
    EXPECT_TRUE(pane.Apply(CTextDlg::kText, true));
    EXPECT_EQ(Field<std::int32_t>(w, original, u"StringID"), 1106);

    // An id the module never issued is refused by the service: nothing is written.
    TreeItem stray = Line(w, u"Thanks, Orla.");
    ASSERT_TRUE(
        w.Perform(CUndoCommandModifyNode::ForField(u"x", w.Document().Edits(), stray, u"StringID",
                                                   variant(kTsTypeInt, 999999), dlg::kChangeNone)));
    items.Select(stray);
    std::size_t before = w.UndoCount();
    pane.Controls().text = u"Thank you, Orla.";
    EXPECT_FALSE(pane.Apply(CTextDlg::kText, true));
    EXPECT_EQ(w.UndoCount(), before);
    EXPECT_EQ(Field<std::u16string>(w, stray, u"Text"), u"Thanks, Orla.");

    // Without the string service the text is not written; the control keeps it.
    CloseModule();
    std::size_t depth = w.UndoCount();
    pane.Controls().text = u"Safe travels.";
    EXPECT_FALSE(pane.Apply(CTextDlg::kText, true));
    EXPECT_EQ(w.UndoCount(), depth);
    EXPECT_EQ(Field<std::u16string>(w, other, u"Text"), u"Farewell.");
    EXPECT_EQ(pane.Controls().text, u"Safe travels.");
    OpenModule();
}

TEST_F(Panes, ALineCopiedIntoAnotherConversationGetsItsOwnIdAndSavingStoresTheText) {
    CConversationEditorWnd& orla = Open(u"orla_welcome");
    CConversationEditorWnd& brannoc = Open(u"brannoc_caravan");
    TreeItem goodbye = Line(orla, u"Goodbye.");
    orla.Document().Tree().Items().Select(goodbye);
    ASSERT_TRUE(dlg::CopySelection(orla));
    brannoc.Document().Tree().Items().Select(Line(brannoc, u"Then drink your ale"));
    ASSERT_TRUE(dlg::PasteClipboard(brannoc));
    TreeItem copy = Line(brannoc, u"Goodbye.");
    ASSERT_EQ(Field<std::int32_t>(brannoc, copy, u"StringID"), 1107);
    auto save = [&](CConversationEditorWnd& w, std::u16string_view name) {
        CTsComPtr<ITsResource> resource;
        ASSERT_EQ(manager_->OpenResource(name, u"dlg", resource.Put()), S_OK);
        ASSERT_EQ(w.GetContent(resource.Get()), S_OK);
        ASSERT_EQ(manager_->SaveResource(resource.Get()), S_OK);
    };
    save(brannoc, u"brannoc_caravan");

    // The stored brannoc_caravan uses 1107 too: whichever line changes first gets a new id.
    orla.Document().Tree().Items().Select(goodbye);
    CTextDlg& orlaPane = Dialogue(orla);
    orlaPane.Controls().text = u"Goodbye, Orla.";
    ASSERT_TRUE(orlaPane.Apply(CTextDlg::kText, true));
    std::int32_t orlaId = Field<std::int32_t>(orla, goodbye, u"StringID");
    EXPECT_NE(orlaId, 1107);

    brannoc.Document().Tree().Items().Select(copy);
    CTextDlg& brannocPane = Dialogue(brannoc);
    brannocPane.Controls().text = u"Farewell, Brannoc.";
    ASSERT_TRUE(brannocPane.Apply(CTextDlg::kText, true));
    std::int32_t brannocId = Field<std::int32_t>(brannoc, copy, u"StringID");
    EXPECT_NE(brannocId, 1107);
    EXPECT_NE(brannocId, orlaId);

    // A line whose id no other conversation uses keeps it.
    TreeItem own = Line(brannoc, u"Forty crowns.");
    brannoc.Document().Tree().Items().Select(own);
    brannocPane.Controls().text = u"Fifty crowns.";
    ASSERT_TRUE(brannocPane.Apply(CTextDlg::kText, true));
    EXPECT_EQ(Field<std::int32_t>(brannoc, own, u"StringID"), 2004);

    // Saving puts the lines' texts into the module's string table under their ids.
    save(brannoc, u"brannoc_caravan");
    char16_t* text = nullptr;
    ASSERT_EQ(manager_->GetString(brannocId, 0, &text), S_OK);
    EXPECT_EQ(std::u16string(text), u"Farewell, Brannoc.");
    TsFreeString(text);
    ASSERT_EQ(manager_->GetString(2004, 0, &text), S_OK);
    EXPECT_EQ(std::u16string(text), u"Fifty crowns.");
    TsFreeString(text);
}

TEST_F(Panes, ControlsApplyWhenTheSelectionMovesOnWithoutMovingItBack) {
    CConversationEditorWnd& w = Open(u"orla_welcome");
    dlg::ItemTree& items = w.Document().Tree().Items();
    TreeItem first = Line(w, u"Welcome to the Drowned");
    TreeItem second = Line(w, u"Quite a place");
    items.Select(first);
    CTextDlg& pane = Dialogue(w);
    pane.Controls().noVoInGame = true;
    items.Select(second);
    EXPECT_EQ(items.GetSelection(), second);
    EXPECT_TRUE(Field<bool>(w, first, u"NoVOInGame"));
    EXPECT_EQ(pane.Item(), second);
    EXPECT_FALSE(pane.Controls().noVoInGame);

    // An undo that selects another line runs alone: what the pane holds is not applied then.
    items.Select(first);
    pane.Controls().noVoInGame = false;
    ASSERT_TRUE(pane.Apply(CTextDlg::kNoVoInGame, true));
    ASSERT_EQ(w.UndoCount(), 2u);
    items.Select(second);
    pane.Controls().narration = true;
    ASSERT_TRUE(w.Undo());
    EXPECT_EQ(items.GetSelection(), first);
    EXPECT_EQ(w.UndoCount(), 1u);
    EXPECT_EQ(w.RedoCount(), 1u);
    EXPECT_FALSE(Field<bool>(w, second, u"Narration"));
    EXPECT_TRUE(Field<bool>(w, first, u"NoVOInGame"));

    // A line deleted while shown leaves the pane; what it held is not written anywhere.
    TreeItem leaf = Line(w, u"Goodbye.");
    items.Select(leaf);
    pane.Controls().narration = true;
    ui_.Answer(IDYES);
    ASSERT_TRUE(dlg::DeleteSelection(w));
    EXPECT_NE(pane.Item(), leaf);
    EXPECT_EQ(w.UndoCommandAt(0)->Label(), u"Delete Line");
    ASSERT_TRUE(w.Undo());
    EXPECT_FALSE(Field<bool>(w, leaf, u"Narration"));
}

TEST_F(Panes, GlobalSettingsWriteTheConversationDefaultsAndFlags) {
    using dlg::CRootDlg;
    CConversationEditorWnd& w = Open(u"orla_welcome");
    dlg::ItemTree& items = w.Document().Tree().Items();
    TreeItem root = w.Document().Tree().RootItem();
    ASSERT_EQ(w.Panes().ShownTab(), dlg::kTabGlobalSettings);
    auto& pane = *static_cast<CRootDlg*>(w.Panes().Pane(dlg::kTabGlobalSettings));
    EXPECT_TRUE(pane.Enabled());
    EXPECT_EQ(pane.Controls().Tag(CRootDlg::kNpcSpeaker),
              Field<std::u16string>(w, root, u"DefaultNPCSpeaker"));
    EXPECT_FALSE(pane.Apply(dlg::LinePane::kAllControls, true));
    EXPECT_EQ(w.UndoCount(), 0u);

    // Each check box writes its own field under its own label, once.
    for (int c = CRootDlg::kAmbientSoundSet; c <= CRootDlg::kLastControl; ++c) {
        const CRootDlg::ControlInfo& info = CRootDlg::Info(c);
        SCOPED_TRACE(ts::Utf16ToUtf8(info.label));
        std::size_t depth = w.UndoCount();
        bool before = Field<bool>(w, root, info.field);
        pane.Controls().Box(c) = !before;
        EXPECT_TRUE(pane.Apply(c, true));
        ASSERT_EQ(w.UndoCount(), depth + 1);
        EXPECT_EQ(w.UndoCommandAt(0)->Label(), info.label);
        EXPECT_EQ(Field<bool>(w, root, info.field), !before);
        EXPECT_FALSE(pane.Apply(c, true));
        EXPECT_EQ(w.UndoCount(), depth + 1);
    }
    EXPECT_EQ(w.UndoCommandAt(3)->Label(), u"RoboZelt Locked Change");

    // A lock toggled twice: two steps that cancel out, and undoing shows each state again.
    std::size_t depth = w.UndoCount();
    bool locked = Field<bool>(w, root, u"AllCameraLocked");
    pane.Controls().Box(CRootDlg::kCameraLocked) = !locked;
    ASSERT_TRUE(pane.Apply(CRootDlg::kCameraLocked, true));
    pane.Controls().Box(CRootDlg::kCameraLocked) = locked;
    ASSERT_TRUE(pane.Apply(CRootDlg::kCameraLocked, true));
    ASSERT_EQ(w.UndoCount(), depth + 2);
    EXPECT_EQ(Field<bool>(w, root, u"AllCameraLocked"), locked);
    ASSERT_TRUE(w.Undo());
    EXPECT_EQ(Field<bool>(w, root, u"AllCameraLocked"), !locked);
    EXPECT_EQ(pane.Controls().Box(CRootDlg::kCameraLocked), !locked);
    ASSERT_TRUE(w.Undo());
    EXPECT_EQ(Field<bool>(w, root, u"AllCameraLocked"), locked);
    EXPECT_EQ(pane.Controls().Box(CRootDlg::kCameraLocked), locked);

    // The tag boxes take the speaker and listener rules of the Dialogue tab (one implementation,
    // refusals tested there): keywords in capitals, other tags in lower case, "(default)" empty.
    const struct {
        int control;
        std::u16string typed, stored, label;
    } tags[] = {
        {CRootDlg::kNpcSpeaker, u"Harbour_Guard", u"harbour_guard", u"Default NPC Speaker Change"},
        {CRootDlg::kNpcSpeaker, u"Owner", u"OWNER", u"Default NPC Speaker Change"},
        {CRootDlg::kNpcListener, u"prevSpeaker", u"PREVSPEAKER", u"Default NPC Listener Change"},
        {CRootDlg::kPcListener, u"(default)", u"", u"Default PC Listener Change"},
    };
    for (const auto& t : tags) {
        SCOPED_TRACE(ts::Utf16ToUtf8(t.typed));
        pane.Controls().Tag(t.control) = t.typed;
        EXPECT_TRUE(pane.Apply(t.control, true));
        EXPECT_EQ(w.UndoCommandAt(0)->Label(), t.label);
        EXPECT_EQ(Field<std::u16string>(w, root, CRootDlg::Info(t.control).field), t.stored);
    }
    depth = w.UndoCount();

    // Moving to a line applies what the boxes show, leaving the selection on the line.
    pane.Controls().Tag(CRootDlg::kNpcListener) = u"PLAYER";
    pane.Controls().Box(CRootDlg::kOwnerIsHenchman) = !Field<bool>(w, root, u"OwnerIsHenchman");
    TreeItem line = Line(w, u"Welcome to the Drowned");
    items.Select(line);
    EXPECT_EQ(items.GetSelection(), line);
    EXPECT_EQ(w.UndoCount(), depth + 2);
    EXPECT_EQ(Field<std::u16string>(w, root, u"DefaultNPCListener"), u"PLAYER");
    EXPECT_FALSE(pane.Enabled());
    EXPECT_FALSE(pane.Apply(dlg::LinePane::kAllControls, true));
}

TEST_F(Panes, CommentsFollowTheSelectionAndLinksShowNothingEditable) {
    CConversationEditorWnd& w = Open(u"orla_welcome");
    dlg::ItemTree& items = w.Document().Tree().Items();
    TreeItem root = w.Document().Tree().RootItem();
    auto& comments = *static_cast<dlg::TextFieldPane*>(w.Panes().CommentsPane());
    EXPECT_EQ(comments.Title(), u"Conversation Synopsis");
    EXPECT_TRUE(comments.Enabled());
    EXPECT_EQ(comments.Text(), Field<std::u16string>(w, root, u"Comment"));
    EXPECT_FALSE(comments.Apply(dlg::LinePane::kAllControls, true));
    comments.Text() = u"Orla sizes up a stranger.";
    EXPECT_TRUE(comments.Apply(dlg::TextFieldPane::kTextControl, true));
    EXPECT_EQ(w.UndoCommandAt(0)->Label(), u"Conversation Synopsis Change");
    EXPECT_EQ(Field<std::u16string>(w, root, u"Comment"), u"Orla sizes up a stranger.");
    EXPECT_FALSE(comments.Apply(dlg::TextFieldPane::kTextControl, true));

    // A line's scripting comment is applied when the selection moves on, which stays put.
    TreeItem line = Line(w, u"Welcome to the Drowned");
    TreeItem other = Line(w, u"Quite a place");
    items.Select(line);
    EXPECT_EQ(comments.Title(), u"Scripting Comments");
    comments.Text() = u"Checks the dues plot first.";
    items.Select(other);
    EXPECT_EQ(items.GetSelection(), other);
    EXPECT_EQ(w.UndoCommandAt(0)->Label(), u"Comments Change");
    EXPECT_EQ(Field<std::u16string>(w, line, u"Comment"), u"Checks the dues plot first.");
    EXPECT_EQ(Field<std::u16string>(w, root, u"Comment"), u"Orla sizes up a stranger.");
    // Undo shows the stored comment again.
    items.Select(line);
    ASSERT_TRUE(w.Undo());
    EXPECT_EQ(comments.Text(), u"");

    // While the window's pane-apply switch is off, nothing is written.
    std::size_t depth = w.UndoCount();
    w.Panes().SetPaneApply(false);
    comments.Text() = u"typed during a load";
    EXPECT_FALSE(comments.Apply(dlg::LinePane::kAllControls, true));
    items.Select(other);
    w.Panes().SetPaneApply(true);
    EXPECT_EQ(w.UndoCount(), depth);
    EXPECT_EQ(Field<std::u16string>(w, line, u"Comment"), u"");

    // A link: empty and disabled, and nothing it held is written anywhere.
    items.Select(line);
    ASSERT_TRUE(dlg::CopySelection(w));
    items.Select(Line(w, u"Goodbye."));
    ASSERT_TRUE(dlg::PasteClipboardAsLink(w));
    TreeItem link = Find(w, [&](const dlg::ConversationNode& n) {
        return n.isLink && n.linkTarget && n.linkTarget->treeItem == line;
    });
    items.Select(link);
    EXPECT_FALSE(comments.HasField());
    EXPECT_FALSE(comments.Enabled());
    EXPECT_EQ(comments.Title(), u"");
    depth = w.UndoCount();
    comments.Text() = u"not for a link";
    EXPECT_FALSE(comments.Apply(dlg::LinePane::kAllControls, true));
    items.Select(line);
    EXPECT_EQ(w.UndoCount(), depth);
    for (int tab : {dlg::kTabLocalization, dlg::kTabEditing, dlg::kTabSlideShow}) {
        items.Select(link);
        w.Panes().SelectTab(tab);
        EXPECT_FALSE(static_cast<dlg::TextFieldPane*>(w.Panes().Pane(tab))->Enabled()) << tab;
    }
}

TEST_F(Panes, LineCommentsAndTheSlideShowTextureWriteWithTheirLabels) {
    CConversationEditorWnd& w = Open(u"orla_welcome");
    TreeItem line = Line(w, u"Welcome to the Drowned");
    w.Document().Tree().Items().Select(line);
    struct Case {
        int tab;
        std::u16string title, field, label;
    };
    const Case cases[] = {
        {dlg::kTabLocalization, u"Voice Over Comment", u"VoiceOverComment",
         u"Voice Over Comment Change"},
        {dlg::kTabEditing, u"Editor Comment", u"EditorComment", u"Comment Change"},
        {dlg::kTabSlideShow, u"Slide show texture", u"SlideShowTexture",
         u"Slide Show Texture Change"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ts::Utf16ToUtf8(c.label));
        ASSERT_TRUE(w.Panes().SelectTab(c.tab));
        auto& pane = *static_cast<dlg::TextFieldPane*>(w.Panes().Pane(c.tab));
        EXPECT_EQ(pane.Title(), c.title);
        EXPECT_FALSE(pane.Apply(dlg::LinePane::kAllControls, true));
        std::size_t depth = w.UndoCount();
        pane.Text() = u"tex_" + c.field;
        EXPECT_TRUE(pane.Apply(dlg::TextFieldPane::kTextControl, true));
        ASSERT_EQ(w.UndoCount(), depth + 1);
        EXPECT_EQ(w.UndoCommandAt(0)->Label(), c.label);
        EXPECT_EQ(Field<std::u16string>(w, line, c.field), u"tex_" + c.field);
        EXPECT_FALSE(pane.Apply(dlg::TextFieldPane::kTextControl, true));
    }

    // Browsing: the picker for textures, the pick shown as NAME.TYPE and applied; a cancel
    // changes nothing.
    auto& slides = *static_cast<dlg::CSlideShowDlg*>(w.Panes().Pane(dlg::kTabSlideShow));
    ui_.Pick(u"harbour_dusk.tga");
    EXPECT_TRUE(slides.Browse());
    ASSERT_EQ(ui_.pickers.size(), 1u);
    EXPECT_EQ(ui_.pickers[0].first, u"Select a Texture");
    EXPECT_EQ(ui_.pickers[0].second, u"TextureFilter");
    EXPECT_EQ(slides.Text(), u"harbour_dusk.tga");
    EXPECT_EQ(Field<std::u16string>(w, line, u"SlideShowTexture"), u"harbour_dusk.tga");
    std::size_t depth = w.UndoCount();
    EXPECT_FALSE(slides.Browse());
    EXPECT_EQ(w.UndoCount(), depth);
    EXPECT_EQ(slides.Text(), u"harbour_dusk.tga");
    // A player line has no slide show.
    w.Document().Tree().Items().Select(Line(w, u"Quite a place"));
    EXPECT_FALSE(slides.HasField());
}

TEST(PaneDates, DayCountsReadAsCalendarDates) {
    EXPECT_EQ(dlg::FormatDay(0), u"1899-12-30");
    EXPECT_EQ(dlg::FormatDay(45362), u"2024-03-11");
    EXPECT_EQ(dlg::FormatDay(60.5), u"1900-02-28");
    EXPECT_EQ(dlg::FormatDay(61), u"1900-03-01");
}

}  // namespace
