#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/conversation_tree.h"
#include "model/validation/line_rules.h"
#include "ts/hostui.h"

namespace dlg {

// Keeps the faults of the open conversation: runs the rules over the root and the lines it is
// asked to, stores what they say on each node, and remembers that the error list changed so the
// window can publish it once per edit.
class ConversationValidation {
public:
    explicit ConversationValidation(ConversationTree& tree,
                                    CValueCache& cache = CValueCache::Process())
        : tree_(tree), rules_(cache) {}

    // The root or a line (a link has no state of its own: it shows its target's). True when the
    // item's faults changed, and so its colours and those of the links to it.
    bool Validate(TreeItem item);
    // Every item of `top`'s subtree, pre-order; the items whose faults changed are appended to
    // `changed`. Effective ambient flags must be current.
    void ValidateSubtree(TreeItem top, std::vector<TreeItem>& changed);

    // Whether the error list changed since the last call (faults of an item, or the numbering
    // its entries carry); clears the mark.
    bool TakeChanged();
    // Lines came, went or moved: the entries' numbers are stale even where no fault changed.
    void NumberingChanged() { changed_ = true; }
    // Every fault of the conversation: the root's first (line 0), then the lines' in tree
    // order, one entry per failed rule, each with the line's TreeIndex. Needs a current numbering.
    std::vector<ts::ErrorEntry> Errors() const;
    // Number of lines (and the root) that carry a fault.
    std::size_t FaultyCount() const;

    LineRules& Rules() { return rules_; }

private:
    ConversationTree& tree_;
    LineRules rules_;
    bool changed_ = false;
    std::vector<std::u16string> found_;  // reused so that a run allocates little
};

}  // namespace dlg
