// The editor's commands as the host reaches them through ITsUICommandSource: the full list in
// order, the menus of "DialogEditor", and which commands run on which selection.
#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "model/editor_commands.h"
#include "support/conversation_builder.h"
#include "support/fake_resource.h"
#include "support/scripted_ui.h"
#include "ts/text.h"

namespace {

using EditorObject = CTsComObject<CTsWindowInterface<CConversationEditorWnd>>;
using namespace dlg::command_id;

// commands.tsv: the expected commands, one "id<TAB>name" a line.
std::vector<TsCommandItem> ExpectedCommands() {
    std::ifstream in(TS_EDITORDLG_TEST_DATA "/commands.tsv");
    std::vector<TsCommandItem> commands;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        auto tab = line.find('\t');
        commands.push_back({ts::Utf8ToUtf16(line.substr(tab + 1)),
                            static_cast<std::uint32_t>(std::stoul(line.substr(0, tab))),
                            false,
                            {}});
    }
    return commands;
}

class EditorCommands : public ::testing::Test {
protected:
    void SetUp() override {
        object_ = EditorObject::Create();
        ASSERT_EQ(object_->CreateUIWindow(nullptr), S_OK);
        wnd_ = object_->GetWindow();
        ASSERT_EQ(object_->Attach(1, u"market.dlg", 0), S_OK);
        // Root -> "Fresh fish!" -> "How much?" -> "Two coins." -> link to "How much?".
        std::uint32_t fish = story_.Npc(u"Fresh fish!", u"monger");
        std::uint32_t much = story_.Player(u"How much?");
        std::uint32_t coins = story_.Npc(u"Two coins.", u"monger");
        std::uint32_t bye = story_.Npc(u"Move along.", u"guard");
        story_.Start(fish);
        story_.Start(bye);
        story_.NpcTo(fish, much);
        story_.PlayerTo(much, coins);
        story_.NpcTo(coins, much, true);
        resource_ = CTsComObject<ts::test::FakeResource>::Create(u"market.dlg");
        resource_->SetRootProperty(story_.Resource());
    }
    std::uint32_t State(std::uint32_t id) {
        std::uint32_t state = 0xDEAD;
        EXPECT_EQ(object_->GetCommandState(id, &state), S_OK);
        return state;
    }
    dlg::ItemTree& Items() { return wnd_->Document().Tree().Items(); }
    dlg::TreeItem Item(std::int32_t treeIndex) {
        return wnd_->Document().Tree().NodeAt(treeIndex)->treeItem;
    }

    ts::test::ConversationBuilder story_;
    CTsComPtr<EditorObject> object_;
    CTsComPtr<ts::test::FakeResource> resource_;
    CConversationEditorWnd* wnd_ = nullptr;
};

TEST_F(EditorCommands, TheHostGetsEveryCommandInOrderAndTheMenusOfDialogEditor) {
    std::vector<TsCommandItem> commands;
    ASSERT_EQ(object_->GetCommands(&commands), S_OK);
    std::vector<TsCommandItem> expected = ExpectedCommands();
    ASSERT_EQ(expected.size(), 56u);
    ASSERT_EQ(commands.size(), expected.size()) << "every name of the default menus is a command";
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(commands[i].id, expected[i].id) << i;
        EXPECT_EQ(commands[i].name, expected[i].name) << i;
    }

    std::vector<TsCommandItem> menus;
    ASSERT_EQ(object_->GetMenus(&menus), S_OK);
    ASSERT_EQ(menus.size(), 3u);
    EXPECT_EQ(menus[0].name, u"Edit");
    EXPECT_TRUE(menus[0].isSubmenu);
    EXPECT_EQ(menus[0].id, kTsNoCommandId);
    EXPECT_EQ(menus[0].children[0].id, 40009u) << "menu entries find the registered command";
    EXPECT_TRUE(menus[0].children[2].IsSeparator());
    EXPECT_EQ(menus[1].name, u"View");
    EXPECT_EQ(menus[2].name, u"Tools");
    std::set<std::uint32_t> inMenus;
    auto collect = [&](auto&& self, const std::vector<TsCommandItem>& items) -> void {
        for (const auto& item : items) {
            if (!item.isSubmenu && !item.IsSeparator()) inMenus.insert(item.id);
            self(self, item.children);
        }
    };
    collect(collect, menus);
    EXPECT_FALSE(inMenus.contains(kTsNoCommandId)) << "no menu entry is unknown to the table";

    // Commands go by id; an id the editor does not know is refused.
    std::uint32_t state = 0;
    EXPECT_EQ(object_->GetCommandState(12345, &state), E_INVALIDARG);
    EXPECT_EQ(object_->ExecuteCommand(12345), E_INVALIDARG);
    EXPECT_EQ(object_->GetCommandState(kExpandAll, nullptr), E_POINTER);
}

TEST_F(EditorCommands, CommandsAreEnabledWhereTheirActionIsPossible) {
    EXPECT_EQ(State(kExpandAll), 0u) << "nothing loaded";
    EXPECT_EQ(object_->ExecuteCommand(kExpandAll), S_FALSE);
    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);

    // The root, selected and open one level after the load.
    const std::set<std::uint32_t> onRoot = {
        kCollapse,    kExpandBranch, kCollapseBranch,       kExpandAll,
        kCollapseAll, kSimpleView,   kCountNPCLinesInBranch};
    for (const auto& command : ExpectedCommands()) {
        std::uint32_t expected = onRoot.contains(command.id) ? kTsCommandEnabled : 0u;
        EXPECT_EQ(State(command.id), expected) << ts::Utf16ToUtf8(command.name);
        if (!expected) {
            EXPECT_EQ(object_->ExecuteCommand(command.id), S_FALSE);
        }
    }

    // Expanding everything opens the lines with children; the link has none.
    ASSERT_EQ(object_->ExecuteCommand(kExpandAll), S_OK);
    EXPECT_TRUE(Items().IsExpanded(Item(2)));
    dlg::TreeItem link = Item(4);
    ASSERT_TRUE(wnd_->Document().Tree().NodeOf(link)->isLink);
    Items().Select(link);
    EXPECT_EQ(State(kJumpToTarget), kTsCommandEnabled);
    EXPECT_EQ(State(kExpand), 0u);
    EXPECT_EQ(State(kCollapse), 0u);
    ASSERT_EQ(object_->ExecuteCommand(kJumpToTarget), S_OK);
    EXPECT_EQ(Items().GetSelection(), Item(2)) << "the target's full item";
    EXPECT_EQ(State(kJumpToTarget), 0u);

    Items().Select(Item(1));
    ASSERT_EQ(object_->ExecuteCommand(kCollapse), S_OK);
    EXPECT_FALSE(Items().IsExpanded(Item(1)));
    EXPECT_EQ(State(kExpand), kTsCommandEnabled);
    EXPECT_EQ(State(kCollapse), 0u);

    EXPECT_EQ(State(kSimpleView), kTsCommandEnabled);
    ASSERT_EQ(object_->ExecuteCommand(kSimpleView), S_OK);
    EXPECT_EQ(State(kSimpleView), kTsCommandEnabled | kTsCommandChecked);
    EXPECT_TRUE(wnd_->SimpleView());

    ASSERT_EQ(object_->ExecuteCommand(kCollapseAll), S_OK);
    EXPECT_EQ(Items().GetSelection(), Items().GetRootItem());
    EXPECT_FALSE(Items().IsExpanded(Items().GetRootItem()));
}

TEST_F(EditorCommands, CountingTheNPCLinesOfABranchTellsTheUser) {
    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);
    const dlg::ConversationTree& tree = wnd_->Document().Tree();
    EXPECT_EQ(dlg::CountNPCLines(tree, tree.RootItem()), 3) << "links count nothing";
    EXPECT_EQ(dlg::CountNPCLines(tree, Item(1)), 2);
    EXPECT_EQ(dlg::CountNPCLines(tree, Item(4)), 0);
    EXPECT_EQ(dlg::CountNPCLines(tree, Item(5)), 1) << "the second start alone";

    ts::test::ScriptedUi ui;
    Items().Select(Item(5));
    ASSERT_EQ(object_->ExecuteCommand(kCountNPCLinesInBranch), S_OK);
    ASSERT_EQ(ui.shown().size(), 1u);
    EXPECT_EQ(ui.shown()[0].text, u"This branch holds 1 NPC line.");
    EXPECT_EQ(ui.shown()[0].caption, u"market.dlg");
    Items().Select(tree.RootItem());
    ASSERT_EQ(object_->ExecuteCommand(kCountNPCLinesInBranch), S_OK);
    EXPECT_EQ(ui.shown()[1].text, u"This branch holds 3 NPC lines.");
}

}  // namespace
