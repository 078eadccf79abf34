// The desktop toolset driven as a writer drives it, offscreen: open the demo module, find a
// conversation in the palette, open it, read it, expand, collapse and follow links, undo, go
// through the faults in the Error List, and keep pictures of the window.
#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFocusEvent>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QTabWidget>
#include <QTreeView>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "command_menus.h"
#include "editor_tab.h"
#include "error_list_dock.h"
#include "log_dock.h"
#include "main_window.h"
#include "qt_host_ui.h"
#include "resource_palette.h"
#include "screenshot.h"
#include "search_results_dock.h"
#include "support/conversation_builder.h"
#include "support/demo_module.h"
#include "support/qt_environment.h"
#include "support/scripted_ui.h"
#include "support/test_folders.h"
#include "ts/resourcecodec.h"
#include "ts/text.h"
#include "undo_history_dock.h"

namespace {

[[maybe_unused]] auto* const gQt = ::testing::AddGlobalTestEnvironment(new ts::test::QtEnvironment);

const QColor kNpc(255, 0, 0), kPlayer(0, 0, 255), kLink(127, 127, 127), kComment(0, 127, 0);
const QColor kAmbient(255, 229, 255);

class ToolsetWindow : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folder_ = new std::string(ts::test::MakeTempFolder("ts-toolset"));
        ASSERT_TRUE(ts::test::BuildDemoModule(DemoPath()));
    }
    static void TearDownTestSuite() {
        std::filesystem::remove_all(*folder_);
        delete folder_;
    }
    static std::string DemoPath() { return *folder_ + "/demo.tsmod"; }
    // A copy of the demo module this test may change.
    static std::string CopyOfDemo(const std::string& name) {
        std::string path = *folder_ + "/" + name + ".tsmod";
        std::filesystem::copy_file(DemoPath(), path,
                                   std::filesystem::copy_options::overwrite_existing);
        return path;
    }

    QTreeView& Tree() {
        auto* tree =
            window.ActiveEditor()->findChild<QTreeView*>(QStringLiteral("ConversationTree"));
        EXPECT_NE(tree, nullptr);
        return *tree;
    }
    // The first index, in pre-order, whose text starts with `prefix`.
    static QModelIndex Find(QAbstractItemModel& model, const QString& prefix,
                            const QModelIndex& under = {}) {
        for (int row = 0; row < model.rowCount(under); ++row) {
            QModelIndex index = model.index(row, 0, under);
            if (index.data().toString().startsWith(prefix)) return index;
            if (QModelIndex found = Find(model, prefix, index); found.isValid()) return found;
        }
        return {};
    }
    static QColor Foreground(const QModelIndex& i) {
        return i.data(Qt::ForegroundRole).value<QColor>();
    }
    static int VisibleRows(QTreeView& tree) {
        int rows = 0;
        for (QModelIndex i = tree.model()->index(0, 0); i.isValid(); i = tree.indexBelow(i)) ++rows;
        return rows;
    }
    static int AllRows(QAbstractItemModel& model, const QModelIndex& under = {}) {
        int rows = model.rowCount(under);
        for (int row = 0; row < model.rowCount(under); ++row)
            rows += AllRows(model, model.index(row, 0, under));
        return rows;
    }
    // `index`'s place in a pre-order walk of the whole tree, the first item 0; -1 when absent.
    static int PreOrderNumber(QAbstractItemModel& model, const QModelIndex& index) {
        int number = 0;
        std::function<bool(const QModelIndex&)> walk = [&](const QModelIndex& under) {
            for (int row = 0; row < model.rowCount(under); ++row) {
                QModelIndex at = model.index(row, 0, under);
                if (at == index) return true;
                ++number;
                if (walk(at)) return true;
            }
            return false;
        };
        return walk({}) ? number : -1;
    }
    // Every item's text in pre-order: the tree's shape and contents in one comparable value.
    static QStringList Texts(QAbstractItemModel& model, const QModelIndex& under = {}) {
        QStringList texts;
        for (int row = 0; row < model.rowCount(under); ++row) {
            QModelIndex index = model.index(row, 0, under);
            texts << index.data().toString() << Texts(model, index);
        }
        return texts;
    }
    bool Enabled(const char16_t* command) {
        window.RefreshState();
        QAction* action = window.Commands().Action(command);
        EXPECT_NE(action, nullptr) << QString::fromStdU16String(command).toStdString();
        return action && action->isEnabled();
    }

    // A picture of the whole window, for the documentation, under the build's screenshots folder.
    void KeepPicture(const char* name) {
        QString shot = QStringLiteral(TS_SCREENSHOT_DIR "/") + QLatin1String(name);
        QFile::remove(shot);
        ASSERT_TRUE(toolset::SaveScreenshot(window, shot));
        EXPECT_EQ(QImage(shot).size(), window.size());
    }

    static std::string* folder_;
    toolset::MainWindow window{false};
};
std::string* ToolsetWindow::folder_ = nullptr;

TEST_F(ToolsetWindow, AWriterOpensTheDemoAndReadsAConversation) {
    window.show();
    ASSERT_TRUE(window.OpenModule(QString::fromStdString(DemoPath())));

    // The palette groups the module's resources by type; the filter keeps matching names.
    window.Palette().SetFilter(QStringLiteral("orla"));
    EXPECT_EQ(window.Palette().VisibleResources(), (QStringList{"orla_welcome.dlg", "orla.utc"}));
    window.Palette().SetFilter({});
    EXPECT_EQ(window.Palette().VisibleResources().size(), 17);

    ASSERT_TRUE(window.OpenResource(QStringLiteral("orla_welcome"), QStringLiteral("dlg")));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("orla_welcome.dlg - Mistreach Toolset"));
    EXPECT_TRUE(window.Log().Text().contains(QStringLiteral("Opened orla_welcome.dlg")));
    EXPECT_EQ(window.Errors().Count(), 0);
    EXPECT_FALSE(window.UndoAction()->isEnabled() || window.RedoAction()->isEnabled());
    // Opening it again shows the same tab.
    EXPECT_TRUE(window.OpenResource(QStringLiteral("ORLA_WELCOME.dlg")));
    EXPECT_EQ(window.EditorCount(), 1);

    // The editor's window sits in the tab: the splitter, the tree and the panes, which offer
    // the root's tabs (Global Settings shown; tabs whose pane is still to come are empty,
    // disabled pages).
    auto* splitter = window.ActiveEditor()->findChild<QSplitter*>(QStringLiteral("WindowSplitter"));
    ASSERT_NE(splitter, nullptr);
    auto* panes = splitter->findChild<QTabWidget*>(QStringLiteral("LinePanes"));
    ASSERT_NE(panes, nullptr);
    ASSERT_EQ(panes->count(), 4);
    EXPECT_EQ(panes->tabText(0), QStringLiteral("Global Settings"));
    EXPECT_EQ(panes->tabText(3), QStringLiteral("Preview"));
    EXPECT_TRUE(panes->currentWidget()->isEnabled());
    EXPECT_FALSE(panes->widget(3)->isEnabled());
    QTreeView& tree = Tree();
    QAbstractItemModel& model = *tree.model();

    // Loaded: the root is selected and open one level, showing the three starts.
    QModelIndex root = model.index(0, 0);
    EXPECT_EQ(root.data().toString(), QStringLiteral("Root"));
    EXPECT_EQ(tree.currentIndex(), root);
    ASSERT_EQ(model.rowCount(root), 3);
    QModelIndex first = model.index(0, 0, root);
    EXPECT_EQ(first.data().toString(),
              "[[OWNER]] Back again, love? The fire's still warm and the stew is nearly edible.");
    EXPECT_EQ(Foreground(first), kNpc);
    EXPECT_EQ(VisibleRows(tree), 4);
    EXPECT_FALSE(root.data(Qt::ForegroundRole).isValid()) << "the root keeps the system colours";

    // Commands reach the editor by id; those for later work are there but disabled.
    EXPECT_FALSE(Enabled(u"Edit.DialogEditor.FindLinks"));
    EXPECT_FALSE(Enabled(u"Edit.DialogEditor.JumpToTarget")) << "the root is no link";
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.ExpandAll")));
    EXPECT_EQ(VisibleRows(tree), AllRows(model)) << "every item shows";

    QModelIndex comment = Find(model, QStringLiteral("[COMMENT] Rooms are not in the game yet."));
    EXPECT_EQ(Foreground(comment), kComment);
    EXPECT_EQ(Foreground(Find(model, QStringLiteral("I'd like a room for the night."))), kPlayer);
    QModelIndex storm = Find(model, QStringLiteral("[[OWNER]] Storm's coming"));
    EXPECT_EQ(storm.data(Qt::BackgroundRole).value<QColor>(), kAmbient);
    EXPECT_FALSE(first.data(Qt::BackgroundRole).isValid());

    // A link, under "It floods twice a year", shows its target's text in the link colour.
    QModelIndex floods = Find(model, QStringLiteral("[[OWNER]] It floods twice a year"));
    QModelIndex link = Find(model, QStringLiteral("I'm looking for work."), floods);
    ASSERT_TRUE(link.isValid());
    EXPECT_EQ(Foreground(link), kLink);

    // Selecting in the view selects in the editor: jumping to the target moves the view there.
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.CollapseAll")));
    EXPECT_EQ(VisibleRows(tree), 1);
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.ExpandAll")));
    tree.setCurrentIndex(link);
    EXPECT_TRUE(Enabled(u"Edit.DialogEditor.JumpToTarget"));
    EXPECT_FALSE(Enabled(u"Edit.Expand")) << "a link has no children";
    auto inView = [&tree](const QModelIndex& index) {
        QRect shown = tree.visualRect(index);
        return shown.top() >= 0 && shown.bottom() <= tree.viewport()->height();
    };
    window.resize(1000, 480);
    QApplication::processEvents();
    tree.scrollToBottom();
    ASSERT_FALSE(inView(Find(model, QStringLiteral("I'm looking for work."), first)));
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.DialogEditor.JumpToTarget")));
    QModelIndex target = tree.currentIndex();
    EXPECT_EQ(target.data().toString(), QStringLiteral("I'm looking for work."));
    EXPECT_EQ(target.parent(), first);
    EXPECT_TRUE(inView(target)) << "scrolled into view";
    window.resize(1280, 800);

    // Collapsing in the view reaches the editor: its commands see the branch closed.
    tree.setCurrentIndex(first);
    tree.collapse(first);
    EXPECT_FALSE(Enabled(u"Edit.Collapse"));
    EXPECT_TRUE(Enabled(u"Edit.Expand"));
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.ExpandBranch")));
    EXPECT_TRUE(tree.isExpanded(first));
    EXPECT_TRUE(tree.isExpanded(target));

    // Simple view shows the tree alone; the command is checked while it is on.
    ASSERT_TRUE(window.RunCommand(QStringLiteral("View.DialogEditor.SimpleView")));
    EXPECT_FALSE(panes->isVisibleTo(window.ActiveEditor()));
    EXPECT_TRUE(window.Commands().Action(u"View.DialogEditor.SimpleView")->isChecked());
    ASSERT_TRUE(window.RunCommand(QStringLiteral("View.DialogEditor.SimpleView")));
    EXPECT_TRUE(panes->isVisibleTo(window.ActiveEditor()));

    // The editor's menus join the host's: its Edit entries follow Undo and Redo; Tools is its own.
    auto texts = [](const QList<QAction*>& actions) {
        QStringList out;
        for (QAction* action : actions) out << action->text().remove(QLatin1Char('&'));
        return out;
    };
    EXPECT_EQ(texts(window.menuBar()->actions()), (QStringList{"File", "Edit", "View", "Tools"}));
    EXPECT_EQ(texts(window.menuBar()->actions()[1]->menu()->actions()).mid(0, 5),
              (QStringList{"Undo", "Redo", "", "Insert Line", "Insert Line After"}));

    // The picture: the first start open to its second level.
    window.RunCommand(QStringLiteral("Edit.CollapseAll"));
    window.RunCommand(QStringLiteral("Edit.Expand"));
    tree.setCurrentIndex(first);
    window.RunCommand(QStringLiteral("Edit.ExpandBranch"));
    KeepPicture("toolset_orla_welcome.png");

    window.CloseCurrent();
    EXPECT_EQ(window.EditorCount(), 0);
    EXPECT_EQ(window.windowTitle(), QStringLiteral("demo.tsmod - Mistreach Toolset"));
}

TEST_F(ToolsetWindow, ADamagedResourceIsReportedAndTheToolsetGoesOn) {
    std::string path = CopyOfDemo("damaged");
    ts::StoreResult result;
    auto store = ts::OpenSqliteStore(path, {}, &result);
    ASSERT_TRUE(store);
    std::vector<std::uint8_t> junk(64, 0x5A);
    ASSERT_TRUE(store->SaveResource(u"brannoc_caravan", u"dlg", junk, ts::kAnyVersion, u"demo"));
    // A conversation that decodes but whose start names a line it does not have.
    ts::test::ConversationBuilder broken;
    broken.Npc(u"Alone.");
    broken.Start(4);
    std::vector<std::uint8_t> bytes;
    ASSERT_TRUE(ts::EncodeResource(broken.Resource(), bytes));
    ASSERT_TRUE(store->CreateResource(u"broken_start", u"dlg", bytes, u"demo"));

    ts::test::ScriptedUi ui;
    ASSERT_TRUE(window.OpenModule(QString::fromStdString(path)));
    // Undecodable bytes, then a conversation the editor refuses through its "Error" event: one
    // error message each, naming the resource or the fault.
    const std::pair<QString, std::u16string> refused[] = {
        {QStringLiteral("brannoc_caravan.dlg"), u"brannoc_caravan.dlg"},
        {QStringLiteral("broken_start.dlg"), u"does not exist"}};
    for (const auto& [name, says] : refused) {
        EXPECT_FALSE(window.OpenResource(name));
        ASSERT_FALSE(ui.shown().empty());
        EXPECT_EQ(ui.shown().back().style & kTsMessageBoxIcon, MB_ICONERROR);
        EXPECT_NE(ui.shown().back().text.find(says), std::u16string::npos)
            << ts::Utf16ToUtf8(ui.shown().back().text);
    }
    EXPECT_EQ(ui.shown().size(), 2u);
    EXPECT_EQ(window.EditorCount(), 0);

    // The others open and save as usual: a new version in the store, the editor still open.
    ASSERT_TRUE(window.OpenResource(QStringLiteral("orla_welcome.dlg")));
    ts::ResourceInfo before, after;
    ASSERT_TRUE(store->GetResourceInfo(u"orla_welcome", u"dlg", before));
    EXPECT_TRUE(window.SaveCurrent());
    ASSERT_TRUE(store->GetResourceInfo(u"orla_welcome", u"dlg", after));
    EXPECT_EQ(after.version, before.version + 1);
    EXPECT_EQ(window.EditorCount(), 1);
    EXPECT_EQ(window.windowTitle(), QStringLiteral("orla_welcome.dlg - Mistreach Toolset"));
    EXPECT_EQ(ui.shown().size(), 2u);
}

TEST_F(ToolsetWindow, UndoAndRedoFollowTheEditorsHistoryAndItsSavePoint) {
    ts::test::ScriptedUi ui;
    ASSERT_TRUE(window.OpenModule(QString::fromStdString(CopyOfDemo("undo"))));
    ASSERT_TRUE(window.OpenResource(QStringLiteral("orla_welcome.dlg")));
    QAction& undo = *window.UndoAction();
    QAction& redo = *window.RedoAction();
    EXPECT_EQ(undo.shortcuts(), QList<QKeySequence>{QKeySequence(QStringLiteral("Ctrl+Z"))});
    EXPECT_EQ(redo.shortcuts(), (QList<QKeySequence>{QKeySequence(QStringLiteral("Ctrl+Shift+Z")),
                                                     QKeySequence(QStringLiteral("Ctrl+Y"))}));
    QListWidget& history = window.History().List();
    auto rows = [&history] {
        QStringList texts;
        for (int i = 0; i < history.count(); ++i) texts << history.item(i)->text();
        return texts;
    };
    auto expectState = [&](bool modified, int current, int redoable) {
        EXPECT_EQ(window.windowTitle(),
                  modified ? QStringLiteral("orla_welcome.dlg* - Mistreach Toolset")
                           : QStringLiteral("orla_welcome.dlg - Mistreach Toolset"));
        EXPECT_EQ(history.currentRow(), current);
        const QColor grey = history.palette().color(QPalette::Disabled, QPalette::Text);
        for (int i = 0; i < history.count(); ++i) {
            EXPECT_EQ(history.item(i)->font().bold(), i == current) << "row " << i;
            EXPECT_EQ(history.item(i)->foreground().color() == grey,
                      i >= history.count() - redoable)
                << "row " << i;
        }
    };
    EXPECT_EQ(rows(), QStringList{"(start of history)"});
    expectState(false, 0, 0);

    // Two lines inserted under the first start: the tree grows, Undo names the command.
    QTreeView& tree = Tree();
    QAbstractItemModel& model = *tree.model();
    const QStringList opened = Texts(model);
    tree.setCurrentIndex(model.index(0, 0, model.index(0, 0)));
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.DialogEditor.Insert.Line")));
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.DialogEditor.Insert.Line")));
    const QStringList inserted = Texts(model);
    EXPECT_EQ(inserted.size(), opened.size() + 2);
    EXPECT_TRUE(undo.isEnabled());
    EXPECT_EQ(undo.text(), QStringLiteral("&Undo Insert Line"));
    EXPECT_FALSE(redo.isEnabled());
    EXPECT_EQ(redo.text(), QStringLiteral("&Redo"));
    EXPECT_EQ(rows(), (QStringList{"(start of history)", "Insert Line", "Insert Line"}));
    expectState(true, 2, 0);
    // The picture: the new lines selected in the tree, the history in its dock.
    window.History().raise();
    KeepPicture("toolset_undo_history.png");

    // Undone twice, as the menu does: the tree as it was, and unmodified again.
    undo.trigger();
    undo.trigger();
    window.RefreshState();
    EXPECT_EQ(Texts(model), opened);
    EXPECT_FALSE(undo.isEnabled());
    EXPECT_EQ(undo.text(), QStringLiteral("&Undo"));
    EXPECT_TRUE(redo.isEnabled());
    EXPECT_EQ(redo.text(), QStringLiteral("&Redo Insert Line"));
    EXPECT_EQ(rows().size(), 3);
    expectState(false, 0, 2);

    redo.trigger();
    EXPECT_EQ(Texts(model).size(), opened.size() + 1);
    expectState(true, 1, 1);
    // Choosing the last row in the history redoes up to it.
    history.setCurrentRow(2);
    EXPECT_EQ(Texts(model), inserted);
    EXPECT_FALSE(redo.isEnabled());
    expectState(true, 2, 0);

    // Saving moves the save point: undoing from there is a change, coming back is not.
    ASSERT_TRUE(window.SaveCurrent());
    expectState(false, 2, 0);
    undo.trigger();
    expectState(true, 1, 1);
    history.setCurrentRow(2);
    expectState(false, 2, 0);
    // The start row undoes everything; the document then differs from the saved one.
    history.setCurrentRow(0);
    EXPECT_EQ(Texts(model), opened);
    expectState(true, 0, 2);
    EXPECT_FALSE(window.Log().Text().contains(QStringLiteral("failed")));

    // Closing asks about the undone changes; with no editor there is no history.
    EXPECT_TRUE(ui.shown().empty());
    ui.Answer(IDNO);
    window.CloseCurrent();
    EXPECT_EQ(ui.shown().size(), 1u);
    EXPECT_EQ(rows(), QStringList{});
    EXPECT_FALSE(history.isEnabled() || undo.isEnabled() || redo.isEnabled());
}

TEST_F(ToolsetWindow, TheErrorListFollowsTheEditorsAndLeadsToTheirLines) {
    // Error lists reach the window through the host user interface, as in the toolset; nobody
    // is there to answer a dialog.
    toolset::QtHostUi ui(
        &window, {}, {},
        [this](std::u16string_view resource, const std::vector<ts::ErrorEntry>& errors) {
            window.ReplaceErrors(resource, errors);
        });
    ui.AnswerOnTerminal(stderr);
    window.show();
    window.activateWindow();  // the keyboard goes where the user goes
    QApplication::processEvents();
    ASSERT_TRUE(window.OpenModule(QString::fromStdString(CopyOfDemo("errors"))));
    toolset::ErrorListDock& errors = window.Errors();
    auto shown = [&errors] {
        std::string text;
        for (int row = 0; row < errors.Count(); ++row) {
            const toolset::ErrorListRow& r = errors.ShownRow(row);
            text += ts::Utf16ToUtf8(r.resource) + ":" + std::to_string(r.line) + ": " +
                    ts::Utf16ToUtf8(r.message) + "\n";
        }
        return text;
    };
    auto lines = [&errors] {
        std::vector<int> numbers;
        for (int row = 0; row < errors.Count(); ++row) numbers.push_back(errors.ShownRow(row).line);
        return numbers;
    };

    // A clean conversation lists nothing; the faulty one what toolset-cli validate prints.
    ASSERT_TRUE(window.OpenResource(QStringLiteral("orla_welcome.dlg")));
    EXPECT_EQ(errors.Count(), 0);
    ASSERT_TRUE(window.OpenResource(QStringLiteral("faulty_examples.dlg")));
    std::stringstream expected;
    expected << std::ifstream(TS_FAULTY_EXAMPLES).rdbuf();
    EXPECT_EQ(shown(), expected.str());
    EXPECT_EQ(errors.windowTitle(), QStringLiteral("Error List (10)"));

    // Another resource's rows sort first; the filter shows one resource's.
    window.ReplaceErrors(u"another.dlg", {{3, u"Made up"}});
    EXPECT_EQ(errors.Count(), 11);
    EXPECT_EQ(errors.ShownRow(0).resource, u"another.dlg");
    auto* choices = errors.findChild<QComboBox*>(QStringLiteral("ErrorListFilter"));
    ASSERT_NE(choices, nullptr);
    ASSERT_EQ(choices->count(), 3);
    EXPECT_EQ(choices->itemText(2), QStringLiteral("faulty_examples.dlg"));
    emit choices->activated(2);
    EXPECT_EQ(shown(), expected.str());
    window.ReplaceErrors(u"another.dlg", {});
    EXPECT_EQ(choices->count(), 2);

    // Enter on a row shows the conversation's tab with the row's line selected (the tree's
    // pre-order number of the current item, the root 0).
    ASSERT_TRUE(window.OpenResource(QStringLiteral("orla_welcome.dlg")));
    QTreeView& list = errors.View();
    list.setCurrentIndex(list.model()->index(8, 0));
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(&list, &enter);
    ASSERT_EQ(window.ActiveEditor()->ResourceName(), u"faulty_examples.dlg");
    QAbstractItemModel& tree = *Tree().model();
    EXPECT_EQ(PreOrderNumber(tree, Tree().currentIndex()), 14);
    EXPECT_TRUE(Tree().hasFocus()) << "the keyboard goes with the user, to the editor";
    // The picture: the faulty conversation beside its faults, the chosen one's line selected.
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.ExpandAll")));
    errors.raise();
    KeepPicture("toolset_error_list.png");

    // The list follows the editor at once: deleting the line takes its fault away and undo
    // brings it back; a line inserted under line 1 moves the faults after it down by one.
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.Delete")));
    EXPECT_EQ(lines(), (std::vector<int>{0, 2, 4, 5, 6, 7, 9, 11, 15}));
    window.UndoAction()->trigger();
    EXPECT_EQ(shown(), expected.str());
    Tree().setCurrentIndex(tree.index(0, 0, tree.index(0, 0)));
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.DialogEditor.Insert.Line")));
    EXPECT_EQ(lines(), (std::vector<int>{0, 2, 5, 6, 7, 8, 10, 12, 15, 17}));
    window.UndoAction()->trigger();
    EXPECT_EQ(shown(), expected.str());

    // Closing the conversation takes its faults away.
    window.CloseCurrent();
    EXPECT_EQ(errors.Count(), 0);
    EXPECT_EQ(errors.windowTitle(), QStringLiteral("Error List"));
}

TEST_F(ToolsetWindow, FindLinksListsTheLinksAndLeadsToThem) {
    toolset::QtHostUi ui(&window, {}, {});
    ui.AnswerOnTerminal(stderr);
    ASSERT_TRUE(window.OpenModule(QString::fromStdString(DemoPath())));
    ASSERT_TRUE(window.OpenResource(QStringLiteral("orla_welcome.dlg")));
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.ExpandAll")));
    QAbstractItemModel& tree = *Tree().model();
    Tree().setCurrentIndex(Find(tree, QStringLiteral("I'm looking for work.")));
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.DialogEditor.FindLinks")));

    toolset::SearchResultsDock& results = window.SearchResults();
    ASSERT_EQ(results.Results().size(), 1u);
    EXPECT_EQ(results.Results()[0].location, u"StartLine=18");
    EXPECT_EQ(results.View().item(0)->text(), QStringLiteral("(18) : I'm looking for work."));
    EXPECT_EQ(results.Status(), QStringLiteral("Search complete, 1 links found."));
    EXPECT_TRUE(results.isVisibleTo(&window));

    emit results.View().itemActivated(results.View().item(0));
    EXPECT_EQ(PreOrderNumber(tree, Tree().currentIndex()), 18);
}

TEST(ToolsetLayout, TheWindowComesBackWhereTheUserLeftIt) {
    {
        toolset::MainWindow window(true);
        window.show();
        window.resize(900, 640);
        window.Log().hide();
        window.History().setFloating(true);
        window.close();
    }
    toolset::MainWindow again(true);
    EXPECT_EQ(again.size(), QSize(900, 640));
    EXPECT_TRUE(again.Log().isHidden());
    EXPECT_TRUE(again.History().isFloating());
}

}  // namespace

// A writer picks a line, types a new text and speaker in the Dialogue tab, and takes both back
// from the Edit menu.
TEST_F(ToolsetWindow, TheDialogueTabWritesTextAndSpeakerAndTheEditMenuUndoesThem) {
    ts::test::ScriptedUi ui;
    window.show();
    ASSERT_TRUE(window.OpenModule(QString::fromStdString(CopyOfDemo("textpane"))));
    ASSERT_TRUE(window.OpenResource(QStringLiteral("orla_welcome.dlg")));
    ASSERT_TRUE(window.RunCommand(QStringLiteral("Edit.ExpandAll")));
    QTreeView& tree = Tree();
    QAbstractItemModel& model = *tree.model();
    const QStringList opened = Texts(model);
    tree.setCurrentIndex(Find(model, QStringLiteral("[[OWNER]] It floods twice")));

    auto* panes = window.ActiveEditor()->findChild<QTabWidget*>(QStringLiteral("LinePanes"));
    ASSERT_NE(panes, nullptr);
    ASSERT_EQ(panes->count(), 7);
    EXPECT_EQ(panes->tabText(panes->currentIndex()), QStringLiteral("Dialogue"));
    auto* text = panes->findChild<QPlainTextEdit*>(QStringLiteral("LineText"));
    auto* speaker = panes->findChild<QComboBox*>(QStringLiteral("Speaker"));
    auto* vo = panes->findChild<QLabel*>(QStringLiteral("VoStatus"));
    ASSERT_TRUE(text && speaker && vo);
    EXPECT_TRUE(text->isEnabled());
    EXPECT_TRUE(text->toPlainText().startsWith(QStringLiteral("It floods twice a year")));
    EXPECT_EQ(speaker->currentText(), QStringLiteral("(default)"));
    EXPECT_EQ(vo->text(), QStringLiteral("Not VO Recorded yet."));
    EXPECT_NE(panes->findChild<QSplitter*>(QStringLiteral("TextSplitter")), nullptr);

    // Typed, then the focus leaves each control: one undo step each.
    auto leave = [](QWidget* control) {
        QFocusEvent out(QEvent::FocusOut);
        QApplication::sendEvent(control, &out);
    };
    text->setPlainText(QStringLiteral("It floods in <i>spring</i>, and the roof sings."));
    leave(text);
    speaker->setEditText(QStringLiteral("Harbour_Guard"));
    leave(speaker->lineEdit());
    QAction& undo = *window.UndoAction();
    // The toolset names the command on its state timer, as when the writer opens the menu.
    window.RefreshState();
    EXPECT_EQ(undo.text(), QStringLiteral("&Undo Speaker Change"));
    QModelIndex line = Find(model, QStringLiteral("[harbour_guard] It floods in"));
    ASSERT_TRUE(line.isValid()) << Texts(model).join('\n').toStdString();
    EXPECT_EQ(speaker->currentText(), QStringLiteral("harbour_guard"));
    QString shot = QStringLiteral(TS_SCREENSHOT_DIR "/toolset_text_pane.png");
    QFile::remove(shot);
    ASSERT_TRUE(toolset::SaveScreenshot(window, shot));

    undo.trigger();
    window.RefreshState();
    EXPECT_EQ(undo.text(), QStringLiteral("&Undo Text Change"));
    EXPECT_EQ(speaker->currentText(), QStringLiteral("(default)"));
    undo.trigger();
    window.RefreshState();
    EXPECT_EQ(Texts(model), opened);
    EXPECT_TRUE(text->toPlainText().startsWith(QStringLiteral("It floods twice a year")));
    EXPECT_FALSE(undo.isEnabled());
}

// A writer changes the conversation's default speaker and locks the cameras in the Global
// Settings tab, and takes both back from the Edit menu.
TEST_F(ToolsetWindow, TheGlobalSettingsTabWritesDefaultsAndLocksAndTheEditMenuUndoesThem) {
    ts::test::ScriptedUi ui;
    window.show();
    ASSERT_TRUE(window.OpenModule(QString::fromStdString(CopyOfDemo("rootpane"))));
    ASSERT_TRUE(window.OpenResource(QStringLiteral("orla_welcome.dlg")));
    QTreeView& tree = Tree();
    QAbstractItemModel& model = *tree.model();
    const QStringList opened = Texts(model);
    auto* panes = window.ActiveEditor()->findChild<QTabWidget*>(QStringLiteral("LinePanes"));
    ASSERT_NE(panes, nullptr);
    EXPECT_EQ(panes->tabText(panes->currentIndex()), QStringLiteral("Global Settings"));
    auto* speaker = panes->findChild<QComboBox*>(QStringLiteral("DefaultNPCSpeaker"));
    auto* cameras = panes->findChild<QCheckBox*>(QStringLiteral("AllCameraLocked"));
    ASSERT_TRUE(speaker && cameras);
    EXPECT_EQ(speaker->currentText(), QStringLiteral("OWNER"));
    EXPECT_FALSE(cameras->isChecked());
    // Below the tabs, the comments pane shows the conversation's synopsis.
    auto* comments = window.ActiveEditor()->findChild<QWidget*>(QStringLiteral("Comments"));
    ASSERT_NE(comments, nullptr);
    EXPECT_EQ(comments->findChild<QLabel*>(QStringLiteral("FieldTitle"))->text(),
              QStringLiteral("Conversation Synopsis"));
    EXPECT_TRUE(comments->isEnabled());

    speaker->setEditText(QStringLiteral("Harbour_Guard"));
    QFocusEvent out(QEvent::FocusOut);
    QApplication::sendEvent(speaker->lineEdit(), &out);
    EXPECT_EQ(speaker->currentText(), QStringLiteral("harbour_guard"));
    // Every line that speaks by default shows the new default.
    EXPECT_TRUE(Find(model, QStringLiteral("[[harbour_guard]] Back again")).isValid())
        << Texts(model).join('\n').toStdString();
    cameras->click();
    QAction& undo = *window.UndoAction();
    window.RefreshState();
    EXPECT_EQ(undo.text(), QStringLiteral("&Undo Camera Locked Change"));
    QString shot = QStringLiteral(TS_SCREENSHOT_DIR "/toolset_global_settings.png");
    QFile::remove(shot);
    ASSERT_TRUE(toolset::SaveScreenshot(window, shot));

    undo.trigger();
    window.RefreshState();
    EXPECT_FALSE(cameras->isChecked());
    EXPECT_EQ(undo.text(), QStringLiteral("&Undo Default NPC Speaker Change"));
    undo.trigger();
    window.RefreshState();
    EXPECT_EQ(speaker->currentText(), QStringLiteral("OWNER"));
    EXPECT_EQ(Texts(model), opened);
    EXPECT_FALSE(undo.isEnabled());
}
