// The command table behind the editor's commands and menus: the three inconsistencies a
// registration can bring reported while the first record stays, and menus built over it. The
// editor's own list is held against data/commands.tsv through the host (conversation_editor_test).
#include <gtest/gtest.h>

#include "model/command_table.h"
#include "support/report_capture.h"

namespace {

using namespace dlg;
using ts::test::ReportCapture;

TEST(CommandTable, InconsistentRegistrationsAreReportedAndTheFirstRecordKept) {
    CommandTable table;
    BuildConversationEditorCommands(table, {});
    ReportCapture reports;
    // Names are atoms, found without regard to case.
    EXPECT_EQ(table.AddCommand(99999, u"edit.cut")->id, 40023u);
    EXPECT_EQ(reports.Count(u"The same command has been assigned to multiple IDs"), 1u);
    table.AddCommand(40023, u"Edit.Uncut");
    EXPECT_EQ(reports.Count(u"The same ID has been assigned to the multiple commands"), 1u);
    EXPECT_EQ(table.FindByName(u"Edit.Uncut"), nullptr) << "the id's record answered";
    table.BuildMenus({{MenuEntry::Kind::Popup, u"Edit.Copy", {}}});  // a caption that is a command
    EXPECT_EQ(reports.Count(u"The same command is a submenu and normal command"), 1u);
    EXPECT_EQ(reports.size(), 3u);
}

TEST(CommandTable, MenusFindExistingCommandsAndAddUnknownNames) {
    CommandTable table;
    using K = MenuEntry::Kind;
    const std::vector<MenuEntry> menus = {
        {K::Popup,
         u"Dialog",
         {{K::Command, u"Edit.DialogEditor.Insert.Line", {}},
          {K::Separator, u"", {}},
          {K::Popup, u"Highlight", {{K::Command, u"View.DialogEditor.Highlight.Plot", {}}}},
          {K::Command, u"Tools.SomethingElse", {}}}}};
    ReportCapture reports;
    auto top = BuildConversationEditorCommands(table, menus);
    EXPECT_EQ(reports.size(), 0u);
    ASSERT_EQ(top.size(), 1u);
    const CommandRecord* dialog = top[0];
    EXPECT_TRUE(dialog->isSubmenu);
    EXPECT_EQ(dialog->id, kNoCommandId);
    ASSERT_EQ(dialog->children.size(), 4u);
    EXPECT_EQ(dialog->children[0]->id, 40009u) << "the menu entry found the registered command";
    EXPECT_EQ(dialog->children[1], nullptr) << "separator";
    EXPECT_EQ(dialog->children[2]->children[0]->id, 40030u);
    EXPECT_EQ(dialog->children[3]->id, kNoCommandId) << "known by name only";
    EXPECT_EQ(table.FindByName(u"Tools.SomethingElse"), dialog->children[3]);
}

}  // namespace
