// The conversation tree on screen edited as a writer edits it, offscreen: dragging lines with the
// mouse (moves, links with Shift, copies from another editor, refused places), the editing keys
// and the context menu, each through the editor window's commands and undo stack.
#include <gtest/gtest.h>

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QLineEdit>
#include <QMimeData>
#include <QScrollBar>
#include <QSplitter>
#include <QTest>
#include <QVBoxLayout>

#include "core/layout_places.h"
#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "model/dlg_editor_settings.h"
#include "model/editing/node_clipboard.h"
#include "model/editor_commands.h"
#include "support/conversation_editor_object.h"
#include "support/demo_module_fixture.h"
#include "support/qt_environment.h"
#include "support/scripted_ui.h"
#include "ts/editorlayout.h"
#include "views/conversation_editor_view.h"
#include "views/item_drag_data.h"

namespace {

using dlg::TreeItem;
using namespace dlg::command_id;

class TreeViewEditing : public ts::test::DemoModuleTest {
protected:
    // An editor in a frame of its own, shown, with every line open.
    struct Editor {
        QWidget frame;
        CTsComPtr<ts::test::ConversationEditorObject> object;
        CConversationEditorWnd* window = nullptr;
        dlg::ConversationTreeView* tree = nullptr;

        TreeItem Item(std::int32_t index) const { return window->Document().Edits().ItemAt(index); }
        QPoint At(TreeItem item) const {
            QModelIndex index = tree->Model().IndexOf(item);
            tree->scrollTo(index);
            return tree->visualRect(index).center();
        }
        std::u16string LastLabel() const {
            return window->UndoCount() ? window->UndoCommandAt(0)->Label() : u"";
        }
    };

    void TearDown() override {
        for (auto& editor : editors_) editor->object->CloseUIWindow();
        editors_.clear();
        dlg::NodeClipboard::Process().Clear();
        DemoModuleTest::TearDown();
    }

    Editor& Open(std::u16string_view name) {
        auto editor = std::make_unique<Editor>();
        editor->frame.setLayout(new QVBoxLayout);
        editor->frame.resize(500, 800);
        editor->object = ts::test::OpenConversationEditor(*manager_, name, 0, &editor->frame);
        editor->window = editor->object->GetWindow();
        editor->tree = editor->frame.findChild<dlg::ConversationTreeView*>();
        EXPECT_NE(editor->tree, nullptr);
        editor->frame.show();
        editor->window->ExecuteCommand(kExpandAll);
        editors_.push_back(std::move(editor));
        return *editors_.back();
    }

    // Presses the mouse on `item` and moves it away until the tree starts a drag; the drag's
    // data, or null when none started.
    static std::unique_ptr<QMimeData> StartDrag(Editor& from, TreeItem item) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // earlier drags
        QWidget* viewport = from.tree->viewport();
        QPoint start = from.At(item);
        QTest::mousePress(viewport, Qt::LeftButton, {}, start);
        // Sideways, so that the cursor stays off the branch marks of other rows.
        QTest::mouseMove(viewport, start + QPoint(2, 0));
        QTest::mouseMove(viewport, start + QPoint(40, 0));
        QTest::mouseRelease(viewport, Qt::LeftButton, {}, start + QPoint(40, 0));
        // Offscreen the platform ends the drag at once and deletes it soon after; the events
        // below carry the same data for as long as they need it.
        QDrag* drag = from.tree->findChild<QDrag*>();
        const dlg::ItemDragData* data = drag ? dlg::ItemDragData::From(drag->mimeData()) : nullptr;
        if (!data) return nullptr;
        EXPECT_EQ(data->Item(), item);
        return std::make_unique<dlg::ItemDragData>(data->Source(), data->Item());
    }
    // Carries a drag over `item` of `to` (or to `at`) as the platform does: an enter, then a
    // move; whether the place takes it.
    static bool DragOver(Editor& to, const QMimeData* data, TreeItem item,
                         Qt::KeyboardModifiers keys = {}) {
        return DragTo(to, data, to.At(item), keys);
    }
    static bool DragTo(Editor& to, const QMimeData* data, QPoint at,
                       Qt::KeyboardModifiers keys = {}) {
        constexpr auto actions = Qt::MoveAction | Qt::CopyAction | Qt::LinkAction;
        QDragEnterEvent enter(at, actions, data, Qt::LeftButton, keys);
        QApplication::sendEvent(to.tree->viewport(), &enter);
        QDragMoveEvent move(at, actions, data, Qt::LeftButton, keys);
        QApplication::sendEvent(to.tree->viewport(), &move);
        return enter.isAccepted() && move.isAccepted();
    }
    static bool Drop(Editor& to, const QMimeData* data, TreeItem item,
                     Qt::KeyboardModifiers keys = {}) {
        QDropEvent drop(to.At(item), Qt::MoveAction | Qt::CopyAction | Qt::LinkAction, data,
                        Qt::LeftButton, keys);
        QApplication::sendEvent(to.tree->viewport(), &drop);
        return drop.isAccepted();
    }

    // Whether the row of `item` is drawn in the selection's colour.
    static bool DrawnHighlighted(Editor& e, TreeItem item) {
        QRect row = e.tree->visualRect(e.tree->Model().IndexOf(item));
        QImage picture = e.tree->viewport()->grab().toImage();
        return QColor(picture.pixel(row.right() - 2, row.center().y())) ==
               e.tree->palette().color(QPalette::Highlight);
    }
    void FocusTree(Editor& e) {
        e.frame.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&e.frame));
        e.tree->setFocus();
        ASSERT_TRUE(e.tree->hasFocus());
    }

    ts::test::ScriptedUi ui_;
    std::vector<std::unique_ptr<Editor>> editors_;
};

// orla_welcome by TreeIndex: 1 start "Back again", 3 "Work? Talk to Brannoc", 13 "Not tonight.",
// 23 the start "Storm's coming"; the first start's third reply is "Goodbye.".
TEST_F(TreeViewEditing, DraggingALineMovesItLinksItWithShiftAndCopiesItIntoAnotherEditor) {
    Editor& e = Open(u"orla_welcome");
    dlg::ItemTree& items = e.window->Document().Tree().Items();
    TreeItem goodbye = items.ChildAt(e.Item(1), 2), storm = e.Item(23);

    auto data = StartDrag(e, goodbye);
    ASSERT_NE(data, nullptr);
    EXPECT_TRUE(DragOver(e, data.get(), storm));
    EXPECT_EQ(e.tree->DropItem(), storm);
    EXPECT_TRUE(DrawnHighlighted(e, storm));
    EXPECT_TRUE(Drop(e, data.get(), storm));
    EXPECT_EQ(e.tree->DropItem(), dlg::kNoItem);
    EXPECT_FALSE(DrawnHighlighted(e, storm));
    EXPECT_EQ(items.GetParent(goodbye), storm);
    EXPECT_EQ(e.LastLabel(), u"Drag Node");
    ASSERT_TRUE(e.window->Undo());
    EXPECT_EQ(items.GetParent(goodbye), e.Item(1));

    // Refused: the first start into its own branch; the place is not taken and a drop there
    // (which the platform would not even send) changes nothing.
    std::size_t depth = e.window->UndoCount();
    data = StartDrag(e, e.Item(1));
    ASSERT_NE(data, nullptr);
    EXPECT_FALSE(DragOver(e, data.get(), e.Item(3)));
    EXPECT_FALSE(Drop(e, data.get(), e.Item(3)));
    EXPECT_EQ(e.window->UndoCount(), depth);
    // The root is never dragged, and a drag from elsewhere is not even followed.
    EXPECT_EQ(StartDrag(e, e.window->Document().Tree().RootItem()), nullptr);
    QMimeData foreign;
    foreign.setData(QStringLiteral("application/x-mistreach-conversation-item"), "1 2");
    EXPECT_FALSE(DragOver(e, &foreign, storm));

    // With Shift, links; the drag direction setting (off) puts a link to the line dropped on
    // under the dragged one.
    TreeItem work = e.Item(3), notTonight = e.Item(13);
    data = StartDrag(e, work);
    ASSERT_TRUE(DragOver(e, data.get(), notTonight, Qt::ShiftModifier));
    ASSERT_TRUE(Drop(e, data.get(), notTonight, Qt::ShiftModifier));
    EXPECT_EQ(e.LastLabel(), u"Paste");
    const dlg::ConversationNode* link =
        e.window->Document().Tree().NodeOf(items.ChildAt(work, items.ChildCount(work) - 1));
    ASSERT_TRUE(link && link->isLink);
    EXPECT_EQ(link->linkTarget->treeItem, notTonight);

    // Into another editor the line is copied; the editor it came from keeps it.
    Editor& other = Open(u"brannoc_caravan");
    std::size_t lines = other.window->Document().Tree().NodeCount();
    data = StartDrag(e, storm);
    ASSERT_TRUE(DragOver(other, data.get(), other.window->Document().Tree().RootItem()));
    ui_.Answer(IDYES);  // the storm bark is already with the voice actors
    ASSERT_TRUE(Drop(other, data.get(), other.window->Document().Tree().RootItem()));
    EXPECT_EQ(other.LastLabel(), u"Paste");
    EXPECT_GT(other.window->Document().Tree().NodeCount(), lines);
    EXPECT_EQ(items.GetParent(storm), e.window->Document().Tree().RootItem());
}

TEST_F(TreeViewEditing, ADragHeldStillOpensAClosedLineAndScrollsAtTheEdge) {
    Editor& e = Open(u"orla_welcome");
    dlg::ItemTree& items = e.window->Document().Tree().Items();
    TreeItem back = e.Item(1);
    items.Expand(back, false);
    auto data = StartDrag(e, e.Item(23));
    ASSERT_TRUE(DragOver(e, data.get(), back));
    EXPECT_TRUE(QTest::qWaitFor([&] { return items.IsExpanded(back); }));
    EXPECT_TRUE(e.tree->isExpanded(e.tree->Model().IndexOf(back)));

    e.frame.resize(500, 160);
    QCoreApplication::processEvents();
    QScrollBar* bar = e.tree->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 2);
    bar->setValue(0);
    DragTo(e, data.get(), QPoint(20, e.tree->viewport()->height() - 3));
    EXPECT_TRUE(QTest::qWaitFor([&] { return bar->value() >= 2; }));
    QDragLeaveEvent leave;
    QApplication::sendEvent(e.tree->viewport(), &leave);
    int stopped = bar->value();
    QTest::qWait(250);
    EXPECT_EQ(bar->value(), stopped);
}

// orla_welcome: 18 is a link to "I'm looking for work." (2).
TEST_F(TreeViewEditing, KeysAndTheContextMenuRunTheEditingCommands) {
    Editor& e = Open(u"orla_welcome");
    dlg::ItemTree& items = e.window->Document().Tree().Items();
    FocusTree(e);
    TreeItem work = e.Item(3), notTonight = e.Item(13), link = e.Item(18), looking = e.Item(2);
    auto key = [&](Qt::Key k, Qt::KeyboardModifiers keys = {}) {
        std::size_t depth = e.window->UndoCount();
        QTest::keyClick(e.tree, k, keys);
        return e.window->UndoCount() > depth ? e.LastLabel() : u"";
    };

    items.Select(notTonight);
    EXPECT_EQ(key(Qt::Key_Insert), u"Insert Line");
    EXPECT_EQ(items.GetParent(items.GetSelection()), notTonight);
    EXPECT_EQ(key(Qt::Key_Delete), u"Delete Line");
    items.Select(work);
    EXPECT_EQ(key(Qt::Key_C, Qt::ControlModifier), u"");
    items.Select(notTonight);
    ui_.Answer(IDYES);  // Brannoc's line is recorded already
    EXPECT_EQ(key(Qt::Key_V, Qt::ControlModifier), u"Paste");
    EXPECT_EQ(items.GetParent(items.GetSelection()), notTonight);
    EXPECT_EQ(key(Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier), u"Paste");
    EXPECT_TRUE(e.window->Document().Tree().NodeOf(items.GetSelection())->isLink);
    EXPECT_EQ(key(Qt::Key_X, Qt::ControlModifier), u"Delete Line");
    // Delete is the tree's only while the tree has the focus.
    QLineEdit elsewhere(&e.frame);
    elsewhere.show();
    elsewhere.setFocus();
    items.Select(notTonight);
    EXPECT_EQ(key(Qt::Key_Delete), u"");

    // The menu is about the line clicked: on a link, nothing goes under it and Paste has nothing
    // to paste; the command chosen runs.
    FocusTree(e);
    dlg::NodeClipboard::Process().Clear();
    ui_.Choose(kJumpToTarget);
    QContextMenuEvent click(QContextMenuEvent::Mouse, e.At(link),
                            e.tree->viewport()->mapToGlobal(e.At(link)));
    QApplication::sendEvent(e.tree->viewport(), &click);
    ASSERT_EQ(ui_.menus.size(), 1u);
    EXPECT_TRUE(ui_.showingWhileShown);
    EXPECT_FALSE(TsIsPopupMenuShowing());
    std::vector<std::pair<std::uint32_t, bool>> shown;
    for (const TsPopupMenuItem& item : ui_.menus[0])
        shown.emplace_back(item.id, item.state & kTsCommandEnabled);
    // clang-format off
    EXPECT_EQ(shown, (std::vector<std::pair<std::uint32_t, bool>>{
        {kInsertLine, false}, {kInsertLineAfter, true}, {0, false},
        {kCut, true}, {kCopy, true}, {kPaste, false}, {kPasteAsLink, false}, {0, false},
        {kDelete, true}, {0, false}, {kFindLinks, true}, {kJumpToTarget, true}}));
    // clang-format on
    EXPECT_EQ(ui_.menus[0][1].name, u"Edit.DialogEditor.Insert.Line.After");
    EXPECT_EQ(items.GetSelection(), looking);

    // A disabled entry chosen does nothing; an enabled one runs.
    std::size_t depth = e.window->UndoCount();
    ui_.Choose(kPaste);
    QApplication::sendEvent(e.tree->viewport(), &click);
    EXPECT_EQ(e.window->UndoCount(), depth);
    ui_.Choose(kInsertLine);
    QContextMenuEvent onWork(QContextMenuEvent::Mouse, e.At(work),
                             e.tree->viewport()->mapToGlobal(e.At(work)));
    QApplication::sendEvent(e.tree->viewport(), &onWork);
    EXPECT_EQ(e.LastLabel(), u"Insert Line");
    EXPECT_EQ(items.GetParent(items.GetSelection()), work);
}

// The user moves the splitter between the tree and the panes; the next editor opens with it
// there, and the layout file has it.
TEST_F(TreeViewEditing, TheSplitterStaysWhereTheUserLeftIt) {
    Editor& e = Open(u"orla_welcome");
    auto* splitter = e.frame.findChild<QSplitter*>(QStringLiteral("WindowSplitter"));
    ASSERT_NE(splitter, nullptr);
    QList<int> sizes = splitter->sizes();
    ASSERT_EQ(sizes.size(), 2);
    int total = sizes[0] + sizes[1];
    splitter->setSizes({total / 3, total - total / 3});
    emit splitter->splitterMoved(total / 3, 1);
    e.object->CloseUIWindow();
    editors_.clear();
    EXPECT_EQ(ts::ReadEditorLayout(ts::UserLayoutFilePath(), u"EditorsConversation")
                  .at(u"WindowSplitter"),
              total / 3);

    Editor& again = Open(u"brannoc_caravan");
    auto* reopened = again.frame.findChild<QSplitter*>(QStringLiteral("WindowSplitter"));
    ASSERT_NE(reopened, nullptr);
    EXPECT_EQ(reopened->sizes().value(0), total / 3);
}

}  // namespace
