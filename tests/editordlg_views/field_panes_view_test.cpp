// The one-field panes on screen, offscreen: the comments box below the tabs writes when the
// focus leaves it, and the slide-show texture's browse button applies the picked texture.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "model/panes/pane_tabs.h"
#include "support/conversation_editor_object.h"
#include "support/demo_module_fixture.h"
#include "support/qt_environment.h"
#include "support/scripted_ui.h"
#include "views/conversation_editor_view.h"

namespace {

using dlg::TreeItem;

class FieldPanesView : public ts::test::DemoModuleTest {
protected:
    void TearDown() override {
        if (object_) object_->CloseUIWindow();
        DemoModuleTest::TearDown();
    }
    CConversationEditorWnd& Open() {
        frame_.setLayout(new QVBoxLayout);
        frame_.resize(900, 700);
        object_ = ts::test::OpenConversationEditor(*manager_, u"orla_welcome", 0, &frame_);
        frame_.show();
        return *object_->GetWindow();
    }
    // The first line, in tree order, that is no link and whose text starts with `start`.
    static TreeItem Line(CConversationEditorWnd& w, std::u16string_view start) {
        const dlg::ConversationTree& tree = w.Document().Tree();
        for (TreeItem i = tree.RootItem(); i != dlg::kNoItem; i = tree.Items().NextInPreOrder(i)) {
            const dlg::ConversationNode* node = tree.NodeOf(i);
            std::u16string text;
            if (node && !node->isLink && (node->line.GetText(text), text.starts_with(start)))
                return i;
        }
        ADD_FAILURE() << "no such line";
        return dlg::kNoItem;
    }
    static void Leave(QWidget* control) {
        QFocusEvent out(QEvent::FocusOut);
        QApplication::sendEvent(control, &out);
    }

    ts::test::ScriptedUi ui_;
    QWidget frame_;
    CTsComPtr<ts::test::ConversationEditorObject> object_;
};

TEST_F(FieldPanesView, TheCommentsBoxWritesWhenLeftAndTheTextureIsPicked) {
    CConversationEditorWnd& w = Open();
    auto* comments = frame_.findChild<QWidget*>(QStringLiteral("Comments"));
    ASSERT_NE(comments, nullptr);
    auto* title = comments->findChild<QLabel*>(QStringLiteral("FieldTitle"));
    auto* box = comments->findChild<QPlainTextEdit*>(QStringLiteral("FieldText"));
    ASSERT_TRUE(title && box);
    EXPECT_EQ(title->text(), QStringLiteral("Conversation Synopsis"));

    TreeItem line = Line(w, u"Welcome to the Drowned");
    w.Document().Tree().Items().Select(line);
    EXPECT_EQ(title->text(), QStringLiteral("Scripting Comments"));
    EXPECT_TRUE(box->toPlainText().isEmpty());
    box->setPlainText(QStringLiteral("Checks the dues plot first."));
    Leave(box);
    ASSERT_EQ(w.UndoCount(), 1u);
    EXPECT_EQ(w.UndoCommandAt(0)->Label(), u"Comments Change");
    // Undo shows the stored comment in the box again.
    ASSERT_TRUE(w.Undo());
    EXPECT_TRUE(box->toPlainText().isEmpty());

    ASSERT_TRUE(w.Panes().SelectTab(dlg::kTabSlideShow));
    auto* page = frame_.findChild<QWidget*>(QStringLiteral("Slide Show"));
    ASSERT_NE(page, nullptr);
    auto* texture = page->findChild<QLineEdit*>(QStringLiteral("FieldText"));
    auto* browse = page->findChild<QPushButton*>(QStringLiteral("Browse"));
    ASSERT_TRUE(texture && browse);
    ui_.Pick(u"harbour_dusk.tga");
    browse->click();
    EXPECT_EQ(texture->text(), QStringLiteral("harbour_dusk.tga"));
    EXPECT_EQ(w.UndoCommandAt(0)->Label(), u"Slide Show Texture Change");
    // Typed and left: written once.
    texture->setFocus();
    QTest::keyClicks(texture, QStringLiteral("_2"));
    Leave(texture);
    EXPECT_EQ(w.UndoCount(), 2u);
    std::u16string stored;
    w.Document().Tree().NodeOf(line)->line.GetSlideShowTexture(stored);
    EXPECT_EQ(stored, u"harbour_dusk.tga_2");
}

}  // namespace
