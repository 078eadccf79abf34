#pragma once

#include <functional>
#include <memory>
#include <string>

#include "model/item_tree.h"
#include "model/tree_editing.h"
#include "ts/uiwindow.h"

namespace dlg {

class CSettingsDlg;

// What the editor window shows on screen. The window is plain C++ and drives its view only
// through this interface; the Qt side of the plugin registers the factory that makes one, so
// that the model never includes a widget header and runs without a screen in tests.
class EditorView {
public:
    virtual ~EditorView() = default;
    // The splitter between the tree and the line panes: 0 shows the tree alone (simple view),
    // 2 the tree and the panes.
    virtual void SetPaneMode(int mode) = 0;
    // Puts text on the system clipboard (a copied branch, for pasting into a document).
    virtual void SetClipboardText(const std::u16string& text) = 0;
    // Whether the tree has the keyboard focus: Delete belongs to the tree only then.
    virtual bool TreeHasFocus() const = 0;
    // Shows the pane host beside the tree; called once, after the view is made.
    virtual void ShowPanes(CSettingsDlg& /*host*/) {}
};

// Makes the view of an editor window inside the host's frame `parent`, showing `items`; the
// view edits through `editing`, which outlives it.
using EditorViewFactory = std::function<std::unique_ptr<EditorView>(
    ItemTree& items, TreeEditing& editing, TsWindowHandle parent)>;

// Installs the factory (an empty one removes it) and returns the one it replaces.
EditorViewFactory SetEditorViewFactory(EditorViewFactory factory);

// The view for a new window; null when no factory is installed or the host gave no frame (a
// host without a screen).
std::unique_ptr<EditorView> MakeEditorView(ItemTree& items, TreeEditing& editing,
                                           TsWindowHandle parent);

}  // namespace dlg
