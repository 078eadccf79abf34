#include "model/validation/conversation_validation.h"

namespace dlg {

namespace {

std::u16string Joined(const std::vector<std::u16string>& messages) {
    std::u16string text;
    for (const std::u16string& message : messages) {
        if (!text.empty()) text += u" | ";
        text += message;
    }
    return text;
}

// Stores a run's messages; true when they differ from what was stored.
bool Store(std::vector<std::u16string>& found, std::vector<std::u16string>& faults,
           std::u16string& text) {
    if (found == faults) return false;
    faults.assign(found.begin(), found.end());
    text = Joined(faults);
    return true;
}

}  // namespace

bool ConversationValidation::Validate(TreeItem item) {
    found_.clear();
    bool changed = false;
    if (item == tree_.RootItem()) {
        rules_.CheckRoot(tree_.Root(), found_);
        changed = Store(found_, tree_.RootFaults(), tree_.RootErrorText());
    } else if (ConversationNode* node = tree_.NodeOf(item); node && !node->isLink) {
        rules_.CheckLine(*node, found_);
        changed = Store(found_, node->faults, node->errorText);
    }
    changed_ = changed_ || changed;
    return changed;
}

void ConversationValidation::ValidateSubtree(TreeItem top, std::vector<TreeItem>& changed) {
    const ItemTree& items = tree_.Items();
    TreeItem end = tree_.SubtreeEnd(top);
    for (TreeItem item = top; item != kNoItem && item != end; item = items.NextInPreOrder(item))
        if (Validate(item)) changed.push_back(item);
}

bool ConversationValidation::TakeChanged() {
    bool changed = changed_;
    changed_ = false;
    return changed;
}

std::vector<ts::ErrorEntry> ConversationValidation::Errors() const {
    std::vector<ts::ErrorEntry> errors;
    for (const std::u16string& message : tree_.RootFaults()) errors.push_back({0, message});
    for (std::size_t i = 1; i < tree_.NodeCount(); ++i) {
        const ConversationNode* node = tree_.NodeAt(static_cast<std::int32_t>(i));
        if (!node || node->faults.empty()) continue;
        for (const std::u16string& message : node->faults)
            errors.push_back({node->TreeIndex, message});
    }
    return errors;
}

std::size_t ConversationValidation::FaultyCount() const {
    std::size_t count = tree_.RootFaults().empty() ? 0 : 1;
    for (std::size_t i = 1; i < tree_.NodeCount(); ++i) {
        const ConversationNode* node = tree_.NodeAt(static_cast<std::int32_t>(i));
        if (node && !node->faults.empty()) ++count;
    }
    return count;
}

}  // namespace dlg
