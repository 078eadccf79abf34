#pragma once

#include <cstdint>
#include <vector>

#include "model/conversation_tree.h"
#include "model/link_index.h"
#include "model/numbering_tracker.h"
#include "model/validation/conversation_validation.h"

namespace dlg {

// What a change of a line's fields means for the tree's display. The codes of fields shown in a
// label redraw the line and every link to it; kChangeAll redraws the whole tree (a conversation
// default that many labels show).
enum LineChange : int {
    kChangeNone = 0,
    kChangeAll = 1,
    kChangeText = 11,
    kChangeSpeaker = 16,
    kChangeComment = 33,
    kChangeAmbient = 35,  // the line and its subtree change colour
    kChangeLabel = 37,    // any other field the label shows
};

// What the rest of the editor hears of the edits (panes, validation): each after the tree shows
// the change.
class ConversationEditObserver {
public:
    virtual ~ConversationEditObserver() = default;
    // Fields of the item's line changed (change code as in LineChange).
    virtual void LineRefreshed(TreeItem /*item*/, int /*changeCode*/) {}
    // Lines came, went or moved; the tree is numbered again. Renumbered says how the numbers
    // changed; every observer hears it before any hears StructureChanged.
    virtual void Renumbered(const NumberingChange& /*change*/) {}
    virtual void StructureChanged() {}
    // An animation of the selected line's track changed.
    virtual void AnimationChanged(TreeItem /*item*/, std::uint32_t /*animation*/,
                                  const std::u16string& /*tag*/) {}
};

// The one way the conversation is changed: undo commands call it, never the item tree or a
// widget. It keeps the link index current, renumbers once per edit, refreshes the labels and
// colours the change can affect, and hands the view each edit as one batch.
//
// Items are addressed by TreeIndex (root 0), as undo commands store them.
class ConversationEdits {
public:
    explicit ConversationEdits(ConversationTree& tree) : tree_(tree) {}
    ConversationEdits(const ConversationEdits&) = delete;
    ConversationEdits& operator=(const ConversationEdits&) = delete;

    // Observers hear the edits in the order they were added; each is added once.
    void AddObserver(ConversationEditObserver* observer);
    void RemoveObserver(ConversationEditObserver* observer);
    // Validation follows every edit: the lines a field change touches, the subtrees that came in
    // or moved (their ambient flags may be new), and everything when a conversation default
    // changed.
    void SetValidation(ConversationValidation* validation) { validation_ = validation; }
    // Validates the whole conversation and redraws what changed (after a load or a refresh);
    // the effective ambient flags must be current.
    void ValidateAll();
    ConversationTree& Tree() { return tree_; }
    const ConversationTree& Tree() const { return tree_; }
    const LinkIndex& Links() const { return links_; }
    // After the tree was built: indexes every link (one walk).
    void Reindex();

    // The item numbered `treeIndex` (0 the root); kNoItem when there is none.
    TreeItem ItemAt(std::int32_t treeIndex) const;
    // The number of an item in the tree (0 the root); -1 when it is not in the tree.
    std::int32_t IndexOf(TreeItem item) const;
    // The number the first item after `item`'s subtree has (the node count when none).
    std::int32_t IndexAfterSubtree(TreeItem item) const;

    // An edit: what changes in between reaches the view as one batch and is renumbered once,
    // at the end. Edits nest; the outermost end does the work.
    void BeginEdit();
    void EndEdit();

    // Structure, inside an edit. Detach takes a subtree out (the caller keeps it); Attach puts
    // one back as the child at `row` and takes it over; Move carries a subtree to `row` of a new
    // parent, counted without the item itself. Each refuses what would break the tree: an item
    // that is not in it, a child of a link, kinds that do not alternate.
    DetachedSubtree Detach(TreeItem item);
    bool Attach(DetachedSubtree&& subtree, TreeItem parent, std::size_t row);
    bool Move(TreeItem item, TreeItem parent, std::size_t row);
    // Whether a node of `child`'s kind can stand under `parent` (the root item or a line).
    bool FitsUnder(TreeItem parent, const ConversationNode& child) const;

    // New items outside the tree, for commands to attach: a line with its own record, or a link
    // to a line of the tree.
    DetachedSubtree NewLine(bool npc, CAgentConversationLine line);
    DetachedSubtree NewLink(ConversationNode& target);

    // After a field of the item numbered `treeIndex` (-1: the selected item) changed: selects it
    // when asked, then redraws what the change code says. False when there is no such item.
    bool RefreshNode(std::int32_t treeIndex, int changeCode, bool select);
    // Label and colours of an item and of every link to its line.
    void RefreshLine(TreeItem item);
    // An animation of the selected line changed: tells the observer.
    void AnimationChanged(std::uint32_t animation, const std::u16string& tag);

private:
    void Touch(TreeItem item) { touched_.push_back(item); }
    // Validates `top`'s subtree; the items whose state changed go to `redraw_`.
    void ValidateSubtree(TreeItem top);
    template <class F>
    void Notify(F&& tell);

    ConversationTree& tree_;
    std::vector<ConversationEditObserver*> observers_;
    ConversationValidation* validation_ = nullptr;
    LinkIndex links_;
    NumberingTracker numbering_;
    int depth_ = 0;
    bool renumber_ = false;
    std::vector<TreeItem> touched_;   // items whose own label may change
    std::vector<TreeItem> attached_;  // tops of subtrees that came in or moved
    std::vector<TreeItem> redraw_;    // lines whose faults changed: they and their links
};

}  // namespace dlg
