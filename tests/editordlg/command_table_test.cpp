#include <gtest/gtest.h>

#include <set>

#include "model/command_table.h"
#include "support/report_capture.h"

namespace {

using namespace dlg;
using ts::test::ReportCapture;

TEST(CommandTable, RegistersEveryEditorCommandOnceWithItsId) {
    CommandTable table;
    ReportCapture reports;
    BuildConversationEditorCommands(table, {});
    EXPECT_EQ(reports.size(), 0u) << "the editor's own list is consistent";
    const auto& commands = ConversationEditorCommands();
    ASSERT_EQ(commands.size(), 56u);
    EXPECT_EQ(table.Size(), commands.size());
    std::set<std::uint32_t> ids;
    for (const auto& c : commands) {
        EXPECT_TRUE(ids.insert(c.id).second) << "duplicate id " << c.id;
        const CommandRecord* byName = table.FindByName(c.name);
        ASSERT_NE(byName, nullptr);
        EXPECT_EQ(table.FindById(c.id), byName);
        EXPECT_EQ(byName->id, c.id);
        EXPECT_TRUE(byName->category.empty());
        EXPECT_FALSE(byName->isSubmenu);
    }
    EXPECT_EQ(commands.front().id, 40009u);
    EXPECT_EQ(table.FindByName(u"Edit.DialogEditor.Insert.Line.After")->id, 123u);
    EXPECT_EQ(table.FindByName(u"Tools.DialogEditor.Generate.VO.Network")->id, 114u);
    EXPECT_EQ(table.FindByName(u"edit.delete")->id, 40013u) << "names are atoms, found without case";
}

TEST(CommandTable, InconsistentRegistrationsAreReportedAndFirstIdKept) {
    CommandTable table;
    BuildConversationEditorCommands(table, {});
    ReportCapture reports;
    const CommandRecord* cut = table.AddCommand(99999, u"Edit.Cut");
    EXPECT_EQ(cut->id, 40023u);
    EXPECT_EQ(reports.Count(u"The same command has been assigned to multiple IDs"), 1u);

    // An id already held by another command.
    reports.Clear();
    table.AddCommand(40023, u"Edit.Uncut");
    EXPECT_EQ(reports.Count(u"The same ID has been assigned to the multiple commands"), 1u);
    EXPECT_EQ(table.FindByName(u"Edit.Uncut"), nullptr) << "the id's record answered";
}

TEST(CommandTable, MenusFindExistingCommandsAndAddUnknownNames) {
    CommandTable table;
    std::vector<MenuEntry> menus = {
        {MenuEntry::Kind::Popup, u"Dialog", {
            {MenuEntry::Kind::Command, u"Edit.DialogEditor.Insert.Line", {}},
            {MenuEntry::Kind::Separator, u"", {}},
            {MenuEntry::Kind::Popup, u"Highlight", {
                {MenuEntry::Kind::Command, u"View.DialogEditor.Highlight.Plot", {}},
            }},
            {MenuEntry::Kind::Command, u"Tools.SomethingElse", {}},
        }},
    };
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

    // A caption that is also a command's name.
    std::vector<MenuEntry> clash = {{MenuEntry::Kind::Popup, u"Edit.Copy", {}}};
    table.BuildMenus(clash);
    EXPECT_EQ(reports.Count(u"The same command is a submenu and normal command"), 1u);
}

}  // namespace
