// The plain parts of the desktop toolset: menu texts from command names, the command line,
// which resources the picker offers for a filter, popup menus, the error list, and the undo
// history as the host reads and walks it.
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QTimer>

#include "command_text.h"
#include "error_list.h"
#include "qt_host_ui.h"
#include "toolset_options.h"
#include "ts/hoststring.h"
#include "ts/text.h"
#include "ts/undoredo.h"
#include "undo_history.h"

namespace {

TEST(ToolsetParts, MenuTextsComeFromCommandNames) {
    // The name without its menu and editor parts, in words; runs of capitals stay together.
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"Edit.DialogEditor.Insert.Line.After", u"Insert Line After"},
        {u"Edit.CollapseBranch", u"Collapse Branch"},
        {u"Tools.DialogEditor.Preview.Line.NoVOFaceFX", u"Preview Line No VO Face FX"},
        {u"Single", u"Single"},
    };
    for (const auto& [name, text] : cases)
        EXPECT_EQ(toolset::CommandText(name), text) << ts::Utf16ToUtf8(name);
}

TEST(ToolsetParts, TheCommandLineIsCheckedBeforeAnythingOpens) {
    auto parse = [](std::vector<const char*> args, toolset::ToolsetOptions& options,
                    std::string& error) {
        args.insert(args.begin(), "toolset");
        return toolset::ParseToolsetOptions(int(args.size()), const_cast<char**>(args.data()),
                                            options, error);
    };
    toolset::ToolsetOptions options;
    std::string error;
    ASSERT_TRUE(
        parse({"--module", "m.tsmod", "--open", "a.dlg", "--expand-all", "--screenshot", "s.png"},
              options, error));
    EXPECT_EQ(options.module, "m.tsmod");
    EXPECT_EQ(options.open, "a.dlg");
    EXPECT_EQ(options.screenshot, "s.png");
    EXPECT_TRUE(options.expandAll);

    const std::vector<std::vector<const char*>> wrong = {{"--module"},
                                                         {"--module", "--open", "a.dlg"},
                                                         {"--open", "a.dlg"},
                                                         {"--expand-all"},
                                                         {"extra"}};
    for (const auto& args : wrong) {
        toolset::ToolsetOptions o;
        error.clear();
        EXPECT_FALSE(parse(args, o, error));
        EXPECT_FALSE(error.empty());
    }
}

TEST(ToolsetParts, ThePickerOffersTheFilterTypes) {
    std::vector<ts::ResourceInfo> resources(4);
    resources[0].name = u"scr_a", resources[0].type = u"nss";
    resources[1].name = u"plt_b", resources[1].type = u"plo";
    resources[2].name = u"talk", resources[2].type = u"dlg";
    resources[3].name = u"scr_c", resources[3].type = u"NSS";
    using V = std::vector<std::u16string>;
    EXPECT_EQ(toolset::ResourcesMatching(resources, u"nss"), (V{u"scr_a.nss", u"scr_c.NSS"}));
    EXPECT_EQ(toolset::ResourcesMatching(resources, u"nss;plo"),
              (V{u"scr_a.nss", u"plt_b.plo", u"scr_c.NSS"}));
    EXPECT_EQ(toolset::ResourcesMatching(resources, u"*.dlg"), (V{u"talk.dlg"}));
    EXPECT_EQ(toolset::ResourcesMatching(resources, u"").size(), 4u);
    EXPECT_EQ(toolset::ResourcesMatching(resources, u"*").size(), 4u);
    EXPECT_TRUE(toolset::ResourcesMatching(resources, u"stg").empty());
    // Editors may name a filter by its purpose instead of its types.
    EXPECT_EQ(toolset::ResourcesMatching(resources, u"ScriptFilter"),
              (V{u"scr_a.nss", u"scr_c.NSS"}));
    EXPECT_TRUE(toolset::ResourcesMatching(resources, u"TextureFilter").empty());
}

// A popup menu shows the commands' menu texts in their states and answers with the one taken.
TEST(ToolsetParts, ThePopupMenuShowsCommandsAndAnswersTheOneTaken) {
    toolset::QtHostUi ui(nullptr, {}, {});
    QStringList shown;
    QTimer::singleShot(0, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        for (QAction* action : menu->actions())
            shown << (action->isSeparator() ? QStringLiteral("-")
                                            : action->text() + (action->isEnabled() ? "" : " off") +
                                                  (action->isChecked() ? " checked" : ""));
        menu->setActiveAction(menu->actions().back());
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(menu, &enter);
    });
    EXPECT_EQ(TsPopupMenu({{u"Edit.DialogEditor.Insert.Line", 40009, 0},
                           {},
                           {u"Edit.DialogEditor.JumpToTarget", 124,
                            kTsCommandEnabled | kTsCommandChecked}}),
              124u);
    EXPECT_EQ(shown, (QStringList{"Insert Line off", "-", "Jump To Target checked"}));
}

TEST(ToolsetParts, TheErrorListIsReplacedPerResourceAndSortedByResourceAndLine) {
    using Rows = std::vector<toolset::ErrorListRow>;
    using Names = std::vector<std::u16string>;
    toolset::ErrorList list;
    EXPECT_TRUE(list.Replace(u"Zed.dlg", {{0, u"root"}}));
    EXPECT_TRUE(list.Replace(u"orla.dlg", {{5, u"late"}, {2, u"first"}, {2, u"second"}}));
    EXPECT_TRUE(list.Replace(u"brannoc.dlg", {{1, u"b"}}));
    EXPECT_FALSE(list.Replace(u"nobody.dlg", {}));
    // Names ignore case, so "Zed" sorts after "orla"; one line's faults keep their order.
    const Rows sorted = {{u"brannoc.dlg", 1, u"b"},
                         {u"orla.dlg", 2, u"first"},
                         {u"orla.dlg", 2, u"second"},
                         {u"orla.dlg", 5, u"late"},
                         {u"Zed.dlg", 0, u"root"}};
    EXPECT_EQ(list.Rows(), sorted);
    EXPECT_FALSE(list.Replace(u"orla.dlg", {{2, u"first"}, {2, u"second"}, {5, u"late"}}));

    // A new list replaces the whole of that resource's, whatever the case of its name.
    EXPECT_TRUE(list.Replace(u"ORLA.dlg", {{3, u"moved"}}));
    EXPECT_EQ(list.Rows(), (Rows{sorted[0], {u"ORLA.dlg", 3, u"moved"}, sorted[4]}));
    EXPECT_EQ(list.Resources(), (Names{u"brannoc.dlg", u"ORLA.dlg", u"Zed.dlg"}));
    EXPECT_EQ(list.Filtered(u"orla.DLG"), std::vector<std::size_t>{1});
    EXPECT_EQ(list.Filtered(u""), (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_TRUE(list.Filtered(u"orla").empty());
    EXPECT_TRUE(list.Remove(u"zed.dlg"));
    EXPECT_EQ(list.Resources(), (Names{u"brannoc.dlg", u"ORLA.dlg"}));
}

// An undo stack as an editor answers it, whose command `failOn` fails (the editor then
// clears its history); `answer` E_NOTIMPL stands for an editor without a stack.
class FakeUndoStack : public ITsUndoRedo {
public:
    std::vector<std::u16string> done, redoable;  // oldest first; next to redo first
    std::u16string failOn;
    HRESULT answer = S_OK;

    HRESULT QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    std::uint32_t AddRef() override { return 1; }
    std::uint32_t Release() override { return 1; }
    HRESULT GetUndoCount(std::uint32_t* count) override {
        *count = std::uint32_t(done.size());
        return answer;
    }
    HRESULT GetRedoCount(std::uint32_t* count) override {
        *count = std::uint32_t(redoable.size());
        return answer;
    }
    HRESULT GetUndoLabel(std::uint32_t i, char16_t** label) override {
        if (i >= done.size()) return E_INVALIDARG;
        *label = TsAllocString(done[done.size() - 1 - i]);
        return S_OK;
    }
    HRESULT GetRedoLabel(std::uint32_t i, char16_t** label) override {
        if (i >= redoable.size()) return E_INVALIDARG;
        *label = TsAllocString(redoable[i]);
        return S_OK;
    }
    HRESULT Undo() override { return Move(done, redoable, false); }
    HRESULT Redo() override { return Move(redoable, done, true); }
    HRESULT IsModified(std::int32_t*) override { return E_NOTIMPL; }

private:
    HRESULT Move(std::vector<std::u16string>& from, std::vector<std::u16string>& to,
                 bool fromFront) {
        if (FAILED(answer)) return answer;
        if (from.empty()) return S_FALSE;
        std::u16string label = fromFront ? from.front() : from.back();
        if (label == failOn) {
            done.clear();
            redoable.clear();
            return E_FAIL;
        }
        if (fromFront) {
            from.erase(from.begin());
            to.push_back(label);
        } else {
            from.pop_back();
            to.insert(to.begin(), label);
        }
        return S_OK;
    }
};

TEST(ToolsetParts, TheUndoHistoryIsReadShownAndWalked) {
    using toolset::UndoHistory;
    using State = toolset::UndoHistoryRow::State;
    FakeUndoStack stack;
    stack.done = {u"Insert Line", u"Delete"};
    stack.redoable = {u"Cut & Paste"};
    UndoHistory history;
    ASSERT_TRUE(toolset::ReadUndoHistory(stack, history));
    EXPECT_EQ(history, (UndoHistory{{u"Insert Line", u"Delete"}, {u"Cut & Paste"}}));

    // The start, the done commands with the last current, then the redoable ones.
    EXPECT_EQ(toolset::UndoHistoryRows(history),
              (std::vector<toolset::UndoHistoryRow>{{u"(start of history)", State::Done},
                                                    {u"Insert Line", State::Done},
                                                    {u"Delete", State::Current},
                                                    {u"Cut & Paste", State::Redoable}}));
    EXPECT_EQ(toolset::UndoHistoryRows({}).front().state, State::Current);
    EXPECT_EQ(toolset::StepsToRow(history, 0), -2);
    EXPECT_EQ(toolset::StepsToRow(history, 2), 0);
    EXPECT_EQ(toolset::StepsToRow(history, 3), 1);
    EXPECT_EQ(toolset::UndoMenuText(u"&Redo", history.redoable.front()), u"&Redo Cut && Paste");
    EXPECT_EQ(toolset::UndoMenuText(u"&Undo", u""), u"&Undo");

    // Walking stops where the stack runs out, and says nothing then.
    toolset::UndoWalk walk = toolset::WalkUndoHistory(stack, 3);
    EXPECT_EQ(walk.result, S_FALSE);
    EXPECT_EQ(walk.stepsTaken, 1);
    EXPECT_EQ(toolset::UndoFailureMessage(u"orla.dlg", false, walk), u"");
    EXPECT_EQ(stack.done.size(), 3u);

    // A command that fails stops the walk; the message names it and the history's loss.
    stack.failOn = u"Insert Line";
    walk = toolset::WalkUndoHistory(stack, -3);
    EXPECT_EQ(walk.result, E_FAIL);
    EXPECT_EQ(walk.stepsTaken, 2);
    EXPECT_EQ(walk.failed, u"Insert Line");
    std::u16string message = toolset::UndoFailureMessage(u"orla.dlg", true, walk);
    EXPECT_EQ(message.rfind(u"Undo of \"Insert Line\" failed in orla.dlg.", 0), 0u)
        << ts::Utf16ToUtf8(message);
    EXPECT_NE(message.find(u"cleared its undo history"), std::u16string::npos);
    ASSERT_TRUE(toolset::ReadUndoHistory(stack, history));
    EXPECT_EQ(history, UndoHistory{});

    // An editor without a stack has no history to show.
    stack.answer = E_NOTIMPL;
    EXPECT_FALSE(toolset::ReadUndoHistory(stack, history));
    walk = toolset::WalkUndoHistory(stack, 1);
    EXPECT_EQ(walk.result, E_NOTIMPL);
    EXPECT_NE(toolset::UndoFailureMessage(u"orla.dlg", false, walk).find(u"could not be run"),
              std::u16string::npos);
}

}  // namespace
