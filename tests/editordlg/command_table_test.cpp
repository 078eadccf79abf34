// The command table behind the editor's commands and menus: every name tied to one id, and the
// three inconsistencies a registration can bring reported while the first record stays.
#include <gtest/gtest.h>

#include "model/command_table.h"
#include "support/report_capture.h"

namespace {

using namespace dlg;
using ts::test::ReportCapture;

TEST(CommandTable, TheEditorsCommandsAreConsistentAndFoundByNameOrId) {
    CommandTable table;
    ReportCapture reports;
    BuildConversationEditorCommands(table, {});
    EXPECT_EQ(reports.size(), 0u) << "the editor's own list is consistent";
    ASSERT_EQ(table.Size(), ConversationEditorCommands().size());
    for (const auto& c : ConversationEditorCommands()) {
        const CommandRecord* byName = table.FindByName(c.name);
        ASSERT_NE(byName, nullptr);
        EXPECT_EQ(table.FindById(c.id), byName);
        EXPECT_EQ(byName->id, c.id);
        EXPECT_FALSE(byName->isSubmenu);
    }
    EXPECT_EQ(table.FindByName(u"edit.delete")->id, 40013u) << "names are atoms, without case";
}

TEST(CommandTable, InconsistentRegistrationsAreReportedAndTheFirstRecordKept) {
    CommandTable table;
    BuildConversationEditorCommands(table, {});
    ReportCapture reports;
    EXPECT_EQ(table.AddCommand(99999, u"Edit.Cut")->id, 40023u);
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
