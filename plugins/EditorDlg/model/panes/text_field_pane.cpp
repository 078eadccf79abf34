#include "model/panes/text_field_pane.h"

#include "model/conversation_editor_wnd.h"
#include "model/panes/settings_dlg.h"
#include "model/undo/undo_command_modify_node.h"

namespace dlg {

TextFieldPane::TextFieldPane(CConversationEditorWnd& window) : window_(window) {
    window_.Document().Edits().AddObserver(this);
}

TextFieldPane::~TextFieldPane() {
    window_.Document().Edits().RemoveObserver(this);
}

bool TextFieldPane::Current() const {
    // A line taken out of the tree (deleted, or reloaded away) is no longer edited here.
    return binding_ && item_ != kNoItem && window_.Document().Tree().Items().IsInTree(item_);
}

bool TextFieldPane::Enabled() const {
    return binding_ && !window_.IsReadOnly();
}

void TextFieldPane::LineRefreshed(TreeItem item, int) {
    if (!writing_ && !filling_ && item == item_ && Current()) Fill();
}

void TextFieldPane::SetSelection(bool root, TreeItem item) {
    const ConversationTree& tree = window_.Document().Tree();
    TreeItem next = root ? tree.RootItem() : item;
    const ConversationNode* node = root ? nullptr : tree.NodeOf(item);
    std::optional<Binding> binding;
    if (next != kNoItem && (root || node)) binding = Bind(root, node);
    if (!binding) next = kNoItem;
    if (next != item_ && Current() && !window_.UndoRunning()) {
        selectOnWrite_ = false;
        Apply(kAllControls, false);
        selectOnWrite_ = true;
    }
    item_ = next;
    binding_ = binding;
    Fill();
}

void TextFieldPane::Fill() {
    filling_ = true;
    text_.clear();
    if (Current()) {
        CTsComPtr<ITsProperty> property =
            FieldOf(window_.Document().Edits(), item_, binding_->field);
        variant stored;
        if (property && SUCCEEDED(property->GetValue(&stored))) text_ = stored.GetString();
    }
    filling_ = false;
    Announce();
}

void TextFieldPane::Announce() {
    ++generation_;
    if (onShow_) onShow_();
}

bool TextFieldPane::Apply(int control, bool) {
    if (control != kAllControls && control != kTextControl) return false;
    // While a load runs, what the box shows belongs to the old tree.
    if (filling_ || !Current() || !window_.Panes().PaneApply()) return false;
    ConversationEdits& edits = window_.Document().Edits();
    CTsComPtr<ITsProperty> property = FieldOf(edits, item_, binding_->field);
    variant stored;
    if (!property || FAILED(property->GetValue(&stored)) || stored.GetString() == text_)
        return false;
    auto command = CUndoCommandModifyNode::ForField(std::u16string(binding_->label), edits, item_,
                                                    binding_->field, variant(kTsTypeString, text_),
                                                    binding_->changeCode, selectOnWrite_);
    return PerformPaneCommand(window_, std::move(command), writing_);
}

}  // namespace dlg
