// The conversation editor as the host drives it: attach, load a conversation resource, read the
// tree, get the content back, run its commands, count words and follow the host's events. Saving
// is driven with the demo module's tag table (demo_conversations_test.cpp).
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "model/editor_commands.h"
#include "support/conversation_builder.h"
#include "support/fake_resource.h"
#include "support/report_capture.h"
#include "support/scripted_ui.h"
#include "ts/environment.h"
#include "ts/events.h"
#include "ts/telemetry.h"
#include "ts/text.h"

namespace {

using EditorObject = CTsComObject<CTsWindowInterface<CConversationEditorWnd>>;
using ts::test::ConversationBuilder;
using ts::test::FakeResource;
using namespace dlg::command_id;

// Tree indices: 1 hello, 2 room, 3 price, 4 link to bye, 5 bye, 6 guard (a second start).
struct Story : ConversationBuilder {
    Story() {
        std::uint32_t hello = Npc(u"Well met, traveller.", u"innkeeper");
        std::uint32_t room = Player(u"I need a room for the night.");
        std::uint32_t bye = Player(u"Goodbye.");
        std::uint32_t price = Npc(u"Five <emp>silver</emp> a night.");
        std::uint32_t guard = Npc(u"Move along.", u"guard");
        Start(hello);
        Start(guard);
        NpcTo(hello, room);
        NpcTo(hello, bye);
        PlayerTo(room, price);
        NpcTo(price, bye, true);
        conversation.SetEndConversationScriptURI(u"inn_end");
        Line(true, price).SetConditionPlotURI(u"inn_plot");
        Line(true, price).SetStageURI(u"inn_stage");
    }
};

// commands.tsv: the expected commands in registration order, one "id<TAB>name" a line.
std::vector<std::pair<std::uint32_t, std::u16string>> ExpectedCommands() {
    std::ifstream in(TS_EDITORDLG_TEST_DATA "/commands.tsv");
    std::vector<std::pair<std::uint32_t, std::u16string>> commands;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        auto tab = line.find('\t');
        commands.emplace_back(std::stoul(line.substr(0, tab)),
                              ts::Utf8ToUtf16(line.substr(tab + 1)));
    }
    return commands;
}

class ConversationEditor : public ::testing::Test {
protected:
    void SetUp() override {
        object_ = EditorObject::Create();
        ASSERT_EQ(object_->CreateUIWindow(nullptr), S_OK);
        wnd_ = object_->GetWindow();
        ASSERT_EQ(object_->Attach(1, u"inn_talk.dlg", 0), S_OK);
        resource_ = CTsComObject<FakeResource>::Create(u"inn_talk.dlg");
        resource_->SetRootProperty(story_.Resource());
    }
    dlg::ConversationTree& Tree() { return wnd_->Document().Tree(); }
    dlg::ItemTree& Items() { return Tree().Items(); }
    dlg::TreeItem Item(std::int32_t treeIndex) { return Tree().NodeAt(treeIndex)->treeItem; }
    std::u16string Text(int treeIndex) { return Items().GetText(Item(treeIndex)); }
    std::uint32_t State(std::uint32_t id) {
        std::uint32_t state = 0xDEAD;
        EXPECT_EQ(object_->GetCommandState(id, &state), S_OK);
        return state;
    }

    Story story_;
    CTsComPtr<EditorObject> object_;
    CTsComPtr<FakeResource> resource_;
    CConversationEditorWnd* wnd_ = nullptr;
};

TEST_F(ConversationEditor, LoadsAndShowsTheConversation) {
    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);
    EXPECT_EQ(Items().GetSelection(), Items().GetRootItem());
    EXPECT_TRUE(Items().IsExpanded(Items().GetRootItem()));
    EXPECT_EQ(Text(1), u"[innkeeper] Well met, traveller.");
    EXPECT_EQ(Text(3), u"[[OWNER]] Five <emp>silver</emp> a night.");
    EXPECT_EQ(Text(4), u"Goodbye. [END DIALOGUE]") << "a link shows its target's label";
    EXPECT_FALSE(wnd_->IsModified());
    EXPECT_TRUE(wnd_->IsLoaded());

    auto& doc = wnd_->Document();
    EXPECT_EQ(doc.References(TsAddAtom(u"nss")), (std::set<std::u16string>{u"inn_end"}));
    EXPECT_EQ(doc.References(TsAddAtom(u"plo")), (std::set<std::u16string>{u"inn_plot"}));
    EXPECT_EQ(doc.References(TsAddAtom(u"stg")), (std::set<std::u16string>{u"inn_stage"}));
    EXPECT_TRUE(doc.References(TsAddAtom(u"cut")).empty());

    // Loading again without a resource object keeps the tree and marks it modified.
    ASSERT_EQ(object_->Load(nullptr), S_OK);
    EXPECT_EQ(Text(1), u"[innkeeper] Well met, traveller.");
    EXPECT_TRUE(wnd_->IsModified());
}

// The host edits through the editor's commands and its undo stack; what it gets back is a copy
// it may change at will, and a write-back that fails leaves everything as it was.
TEST_F(ConversationEditor, TheHostUndoesEditsAndGetsACopyOfTheConversation) {
    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);
    CTsComPtr<ITsUndoRedo> undo;
    ASSERT_EQ(object_->QueryInterface(ITsUndoRedo::kIID, undo.PutVoid()), S_OK);
    std::uint32_t count = 9;
    ASSERT_EQ(undo->GetUndoCount(&count), S_OK);
    EXPECT_EQ(count, 0u);

    Items().Select(Item(1));
    ASSERT_EQ(object_->ExecuteCommand(dlg::command_id::kInsertLine), S_OK);
    EXPECT_TRUE(wnd_->IsModified());
    EXPECT_EQ(wnd_->Caption(), u"inn_talk.dlg*");
    CTsHostString label;
    ASSERT_EQ(undo->GetUndoLabel(0, label.Put()), S_OK);
    EXPECT_EQ(std::u16string(label.Get()), u"Insert Line");
    const std::size_t grown = Items().Size();
    ASSERT_EQ(undo->Undo(), S_OK);
    EXPECT_EQ(Items().Size(), grown - 1);
    EXPECT_FALSE(wnd_->IsModified()) << "back at the loaded state";
    EXPECT_EQ(wnd_->Caption(), u"inn_talk.dlg");
    ASSERT_EQ(undo->Redo(), S_OK);
    EXPECT_EQ(undo->Redo(), S_FALSE);

    // The content goes into any resource object, inserted line and all; other objects are not
    // resources. The copy: changing it changes nothing in the editor.
    auto other = CTsComObject<ts::test::OtherPayload>::Create();
    EXPECT_EQ(object_->GetContent(other.Get()), E_NOTIMPL);
    auto out = CTsComObject<FakeResource>::Create(u"copy.dlg");
    ASSERT_EQ(object_->GetContent(out.Get()), S_OK);
    CTsComPtr<ITsProperty> root;
    ASSERT_EQ(out->GetRootProperty(root.Put()), S_OK);
    CAgentConversation written;
    written.Bind(root.Get());
    EXPECT_EQ(written.NPCLineListCount(), 3u);
    EXPECT_EQ(written.PlayerLineListCount(), 3u);
    CTsComPtr<ITsProperty> first;
    ASSERT_TRUE(written.GetNPCLineListItem(0, first));
    CAgentConversationLine line;
    line.Bind(first.Get());
    ASSERT_TRUE(line.SetText(u"Changed by the host"));
    ASSERT_TRUE(written.SetDefaultNPCSpeaker(u"host"));
    ASSERT_EQ(object_->Load(nullptr), S_OK);  // from the editor's own tree
    EXPECT_EQ(Text(1), u"[innkeeper] Well met, traveller.");

    // A write-back that fails (a line whose transitions cannot be read) leaves the host's object
    // as it was, and the editor's tree too.
    ASSERT_EQ(object_->GetContent(out.Get()), S_OK);
    CTsComPtr<ITsProperty> kept;
    ASSERT_EQ(out->GetRootProperty(kept.Put()), S_OK);
    dlg::ConversationNode* node = Tree().NodeOf(Item(1));
    CTsComPtr<ITsProperty> transitions;
    ASSERT_TRUE(node->line.FindProperty(TsAddAtom(u"TransitionList"), 0, transitions));
    ASSERT_EQ(node->line.GetNode()->RemoveChild(transitions.Get()), S_OK);
    const std::u16string before = Text(1);
    {
        ts::test::ReportCapture reports;
        EXPECT_EQ(object_->GetContent(out.Get()), E_FAIL);
    }
    CTsComPtr<ITsProperty> after;
    ASSERT_EQ(out->GetRootProperty(after.Put()), S_OK);
    EXPECT_EQ(after.Get(), kept.Get());
    EXPECT_EQ(Text(1), before);
    EXPECT_EQ(Items().Size(), grown);
}

TEST_F(ConversationEditor, DamagedConversationsFailTheLoadWithTheHostsErrorEvent) {
    ConversationBuilder dangling;  // a link to a player line that has no full item
    std::uint32_t npc = dangling.Npc(u"Hm?");
    dangling.Player(u"orphan");
    dangling.Start(npc);
    dangling.NpcTo(npc, 0, true);
    ConversationBuilder outOfRange;
    outOfRange.Start(4);
    ConversationBuilder cycle;  // owned children that lead back to their own ancestor
    std::uint32_t a = cycle.Npc(u"a");
    std::uint32_t b = cycle.Player(u"b");
    cycle.Start(a);
    cycle.NpcTo(a, b);
    cycle.PlayerTo(b, a);
    const std::pair<ConversationBuilder*, std::u16string> cases[] = {
        {&dangling,
         u"PC link refers to source ID [0] which does not exist.  This is a toolset bug."},
        {&outOfRange, u"NPC line [4] does not exist: the conversation is damaged."},
        {&cycle, u"NPC line [0] contains itself: the conversation is damaged."}};
    for (const auto& [damaged, message] : cases) {
        resource_->SetRootProperty(damaged->Resource());
        std::vector<ts::HostEvent> sent;
        int listener = ts::AddHostEventListener([&](const ts::HostEvent& e) { sent.push_back(e); });
        EXPECT_EQ(object_->Load(resource_.Get()), 1);
        ts::RemoveHostEventListener(listener);
        ASSERT_EQ(sent.size(), 1u);
        EXPECT_EQ(sent[0].event, ts::events::Error());
        EXPECT_EQ(sent[0].flags, ts::events::kError);
        EXPECT_EQ(sent[0].text, message);
        EXPECT_EQ(Items().Size(), 0u) << "nothing is shown";
        EXPECT_FALSE(wnd_->IsLoaded());
    }
}

TEST_F(ConversationEditor, WordCountIsCachedUntilTheNextLoadAndSentAsTelemetry) {
    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);
    // 3 + 7 + 1 + 4 + 2 words; the link adds nothing.
    EXPECT_EQ(wnd_->Document().WordCount(), 17);
    Tree().NodeAt(1)->line.SetText(u"Hi.");
    EXPECT_EQ(wnd_->Document().WordCount(), 17) << "cached";
    EXPECT_EQ(wnd_->Document().WordCount(true), 15);
    std::filesystem::remove(ts::TelemetryLogPath());
    ASSERT_EQ(object_->ReportWordCount(), S_OK);
    std::stringstream read;
    read << std::ifstream(ts::TelemetryLogPath()).rdbuf();
    std::string log = read.str();
    EXPECT_NE(log.find("\tEUTS\tCCWC\t15\n"), std::string::npos) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1);

    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);
    EXPECT_EQ(wnd_->Document().WordCount(), 15) << "recounted after a load";
    EXPECT_EQ(dlg::CountWords(u"  two\twords\u00a0three \n"), 3);

    // A record that can't be written fails the host's call.
    std::filesystem::remove(ts::TelemetryLogPath());
    std::filesystem::create_directories(ts::TelemetryLogPath());
    EXPECT_EQ(object_->ReportWordCount(), E_FAIL);
    std::filesystem::remove(ts::TelemetryLogPath());
}

TEST_F(ConversationEditor, CaptionAndLabelsFollowTheStateAndTheRefreshEvents) {
    ASSERT_EQ(object_->Attach(5, u"quests/Intro_Talk.DLG", 0), S_OK);
    EXPECT_EQ(wnd_->Caption(), u"Intro_Talk.dlg");
    ASSERT_EQ(object_->SetModified(1), S_OK);
    EXPECT_EQ(wnd_->Caption(), u"Intro_Talk.dlg*");
    ASSERT_EQ(object_->Attach(5, u"quests/Intro_Talk.DLG", kTsEditorReadOnly), S_OK);
    EXPECT_EQ(wnd_->Caption(), u"Intro_Talk.dlg* [Read Only]")
        << "attaching again does not drop the editor's own modified flag";
    ASSERT_EQ(object_->SetModified(0), S_OK);
    EXPECT_EQ(wnd_->Caption(), u"Intro_Talk.dlg [Read Only]");

    // An edit of a loaded read-only resource does not make it modified.
    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);
    wnd_->NoteEdited();
    EXPECT_FALSE(wnd_->IsModified());
    ASSERT_EQ(object_->Attach(5, u"quests/Intro_Talk.DLG", 0), S_OK);
    wnd_->NoteEdited();
    EXPECT_TRUE(wnd_->IsModified());
    ASSERT_EQ(object_->SetModified(0), S_OK);

    // Only the refresh events relabel the tree, restore the caption and forget the references.
    Tree().NodeAt(1)->line.SetSpeaker(u"barmaid");
    wnd_->SetCaption(u"stale");
    ts::BroadcastToEventSinks(ts::events::OptionsChange(), 0, 0, nullptr);
    EXPECT_EQ(Text(1), u"[innkeeper] Well met, traveller.");
    EXPECT_EQ(wnd_->Caption(), u"stale");
    ts::BroadcastToEventSinks(ts::events::RefreshNoArt(), 0, 0, nullptr);
    EXPECT_EQ(Text(1), u"[barmaid] Well met, traveller.");
    EXPECT_EQ(wnd_->Caption(), u"Intro_Talk.dlg");
    EXPECT_TRUE(wnd_->Document().References(TsAddAtom(u"nss")).empty());
    wnd_->SetCaption(u"stale");
    ts::BroadcastToEventSinks(ts::events::Refresh(), 0, 0, nullptr);
    EXPECT_EQ(wnd_->Caption(), u"Intro_Talk.dlg");
}

TEST_F(ConversationEditor, TheHostGetsEveryCommandInOrderAndTheMenusOfDialogEditor) {
    std::vector<TsCommandItem> commands;
    ASSERT_EQ(object_->GetCommands(&commands), S_OK);
    const auto expected = ExpectedCommands();
    ASSERT_EQ(expected.size(), 56u);
    ASSERT_EQ(commands.size(), expected.size()) << "every name of the default menus is a command";
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(commands[i].id, expected[i].first) << i;
        EXPECT_EQ(commands[i].name, expected[i].second) << i;
    }

    // The menus Edit, View and Tools; every entry finds a registered command.
    std::vector<TsCommandItem> menus;
    ASSERT_EQ(object_->GetMenus(&menus), S_OK);
    ASSERT_EQ(menus.size(), 3u);
    EXPECT_EQ(menus[0].name + menus[1].name + menus[2].name, u"EditViewTools");
    EXPECT_EQ(menus[0].children[0].id, 40009u);
    auto walk = [&](auto&& self, const std::vector<TsCommandItem>& items) -> void {
        for (const auto& item : items) {
            EXPECT_TRUE(item.isSubmenu || item.IsSeparator() || item.id != kTsNoCommandId);
            self(self, item.children);
        }
    };
    walk(walk, menus);

    // Commands go by id; an id the editor does not know is refused.
    std::uint32_t state = 0;
    EXPECT_EQ(object_->GetCommandState(12345, &state), E_INVALIDARG);
    EXPECT_EQ(object_->ExecuteCommand(12345), E_INVALIDARG);
    EXPECT_EQ(object_->GetCommandState(kExpandAll, nullptr), E_POINTER);
}

TEST_F(ConversationEditor, CommandsAreEnabledWhereTheirActionIsPossible) {
    EXPECT_EQ(State(kExpandAll), 0u) << "nothing loaded";
    EXPECT_EQ(object_->ExecuteCommand(kExpandAll), S_FALSE);
    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);

    // The root, selected and open one level after the load.
    const std::set<std::uint32_t> onRoot = {
        kCollapse,   kExpandBranch,          kCollapseBranch, kExpandAll,      kCollapseAll,
        kSimpleView, kCountNPCLinesInBranch, kInsertLine,     kInsertLineAfter, kCopy};
    for (const auto& [id, name] : ExpectedCommands()) {
        std::uint32_t expected = onRoot.contains(id) ? kTsCommandEnabled : 0u;
        EXPECT_EQ(State(id), expected) << ts::Utf16ToUtf8(name);
        if (!expected) {
            EXPECT_EQ(object_->ExecuteCommand(id), S_FALSE);
        }
    }

    // Expanding everything opens every line with children, with redrawing back on after.
    ASSERT_EQ(object_->ExecuteCommand(kExpandAll), S_OK);
    for (dlg::TreeItem i = Items().GetRootItem(); i != dlg::kNoItem; i = Items().NextInPreOrder(i))
        EXPECT_TRUE(Items().IsExpanded(i) || !Items().HasChildren(i));
    EXPECT_TRUE(Items().RedrawOn());

    // A link has no children; jumping selects its target's full item.
    ASSERT_TRUE(Tree().NodeOf(Item(4))->isLink);
    Items().Select(Item(4));
    EXPECT_EQ(State(kJumpToTarget), kTsCommandEnabled);
    EXPECT_EQ(State(kExpand), 0u);
    EXPECT_EQ(State(kCollapse), 0u);
    ASSERT_EQ(object_->ExecuteCommand(kJumpToTarget), S_OK);
    EXPECT_EQ(Items().GetSelection(), Item(5));
    EXPECT_EQ(State(kJumpToTarget), 0u) << "not a link";

    // A plain collapse leaves the branch below open.
    Items().Select(Item(1));
    ASSERT_EQ(object_->ExecuteCommand(kCollapse), S_OK);
    EXPECT_FALSE(Items().IsExpanded(Item(1)));
    EXPECT_TRUE(Items().IsExpanded(Item(2)));
    EXPECT_EQ(State(kExpand), kTsCommandEnabled);
    EXPECT_EQ(State(kCollapse), 0u);

    ASSERT_EQ(object_->ExecuteCommand(kSimpleView), S_OK);
    EXPECT_EQ(State(kSimpleView), kTsCommandEnabled | kTsCommandChecked);
    EXPECT_TRUE(wnd_->SimpleView());

    ASSERT_EQ(object_->ExecuteCommand(kCollapseAll), S_OK);
    EXPECT_EQ(Items().GetSelection(), Items().GetRootItem());
    for (dlg::TreeItem i = Items().GetRootItem(); i != dlg::kNoItem; i = Items().NextInPreOrder(i))
        EXPECT_FALSE(Items().IsExpanded(i));

    // Counting the NPC lines of the selected branch tells the user.
    ts::test::ScriptedUi ui;
    ASSERT_EQ(object_->ExecuteCommand(kCountNPCLinesInBranch), S_OK);
    Items().Select(Item(6));
    ASSERT_EQ(object_->ExecuteCommand(kCountNPCLinesInBranch), S_OK);
    ASSERT_EQ(ui.shown().size(), 2u);
    EXPECT_EQ(ui.shown()[0].text, u"This branch holds 3 NPC lines.");
    EXPECT_EQ(ui.shown()[0].caption, u"inn_talk.dlg");
    EXPECT_EQ(ui.shown()[1].text, u"This branch holds 1 NPC line.");
}

}  // namespace
