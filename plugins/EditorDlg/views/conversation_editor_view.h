#pragma once

#include <QPointer>
#include <QSplitter>

#include "model/editor_view.h"
#include "views/conversation_tree_view.h"

class QTabWidget;

namespace dlg {

// The conversation editor on screen: the splitter "WindowSplitter" between the tree and the
// line panes.
class ConversationEditorView : public QSplitter {
    Q_OBJECT
public:
    ConversationEditorView(ItemTree& items, QWidget* parent = nullptr);

    ConversationTreeView& Tree() const { return *tree_; }
    QTabWidget& Panes() const { return *panes_; }
    // 0: the tree alone; 2: the tree and the panes.
    void SetPaneMode(int mode);
    // Shows the editor's pane host in the tab widget.
    void ShowPanes(CSettingsDlg& host);

private:
    ItemTreeModel* model_;
    ConversationTreeView* tree_;
    // The tabs over the comments pane.
    QWidget* side_;
    QTabWidget* panes_;
};

// Installs the factory through which editor windows make their ConversationEditorView inside
// the host's frame (TsWindowHandle is the frame's QWidget*). The view goes into the frame's
// layout when it has one.
void InstallQtEditorView();

}  // namespace dlg
