#include "model/tree_editing.h"

#include "model/conversation_editor_wnd.h"
#include "model/editing/tree_edits.h"
#include "model/editor_commands.h"
#include "model/tree_context_menu.h"

namespace dlg {

namespace {

class WindowTreeEditing final : public TreeEditing {
public:
    explicit WindowTreeEditing(CConversationEditorWnd& window) : window_(window) {}

    const ConversationTree& Tree() const override { return window_.Document().Tree(); }
    Placement DropPlacement(const ConversationTree& sourceTree, TreeItem source, TreeItem drop,
                            bool shift) override {
        return dlg::DropPlacement(window_, sourceTree, source, drop, shift);
    }
    bool Drop(const ConversationTree& sourceTree, TreeItem source, TreeItem drop,
              bool shift) override {
        return dlg::Drop(window_, sourceTree, source, drop, shift);
    }
    std::uint32_t CommandState(std::uint32_t id) override {
        std::uint32_t state = 0;
        return window_.CommandState(id, state) ? state : 0;
    }
    bool RunCommand(std::uint32_t id) override { return window_.ExecuteCommand(id) == S_OK; }
    bool ShowContextMenu() override { return ShowTreeContextMenu(window_); }

private:
    CConversationEditorWnd& window_;
};

}  // namespace

std::unique_ptr<TreeEditing> MakeTreeEditing(CConversationEditorWnd& window) {
    return std::make_unique<WindowTreeEditing>(window);
}

}  // namespace dlg
