#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "agents/agentconversation.h"
#include "model/conversation_node.h"
#include "model/item_tree.h"

namespace dlg {

// The open conversation as a tree: the root item carries the conversation's own record, every
// other item a ConversationNode. Built from the resource on load, written back into it when the
// host asks for the content.
class ConversationTree {
public:
    ConversationTree() = default;
    ConversationTree(const ConversationTree&) = delete;
    ConversationTree& operator=(const ConversationTree&) = delete;

    // Rebuilds the tree from a conversation resource's root node. On failure the tree is empty
    // and `error` holds the message for the user.
    bool Build(ITsProperty* resource, std::u16string& error);
    // Writes the conversation as it stands into a new resource tree and binds `target` to it:
    // lines copied in depth-first order, links rewritten to their targets' new indices, starts
    // and transitions made anew. The open conversation is not touched, and the result shares
    // nothing with it; on failure `target` is left unbound. Needs a current numbering.
    bool WriteBack(CAgentConversation& target) const;

    ItemTree& Items() { return items_; }
    const ItemTree& Items() const { return items_; }
    TreeItem RootItem() const { return items_.GetRootItem(); }
    CAgentConversation& Root() { return root_; }
    const CAgentConversation& Root() const { return root_; }

    // The node of an item; null for the root or an unknown item. The reporting form reports
    // "Unable to get node address" when there is none.
    ConversationNode* NodeOf(TreeItem item) const;
    ConversationNode* RequireNode(TreeItem item) const;
    // The node numbered `treeIndex`, after the last renumbering; null for the root (0).
    ConversationNode* NodeAt(std::int32_t treeIndex) const;
    std::size_t NodeCount() const { return byTreeIndex_.size(); }

    // Pre-order numbering of the whole tree (root 0); rebuilds the per-node table.
    void Renumber();

    // Label and colours of one node, of an item's subtree (pre-order), or of the whole tree.
    std::u16string LabelOf(ConversationNode& node) const;
    void RefreshItem(TreeItem item);
    void RefreshSubtree(TreeItem item);
    void RefreshAll() { RefreshSubtree(RootItem()); }
    // Colours alone, of the whole tree, after the settings changed.
    void RefreshAllColours();

    // What validation found wrong with the conversation's own record (as a line's faults).
    std::vector<std::u16string>& RootFaults() { return rootFaults_; }
    const std::vector<std::u16string>& RootFaults() const { return rootFaults_; }
    std::u16string& RootErrorText() { return rootErrorText_; }

    // Effective ambient flags, top-down from an item.
    void UpdateAmbient(TreeItem item);

    // The first item after `item`'s subtree in pre-order.
    TreeItem SubtreeEnd(TreeItem item) const;

private:
    ConversationNode* InsertLine(TreeItem parent, std::uint32_t index, bool npc, bool link,
                                 std::vector<ConversationNode*>& npcTable,
                                 std::vector<ConversationNode*>& playerTable,
                                 std::vector<ConversationNode*>& pendingLinks);
    void RefreshColours(TreeItem item);

    ItemTree items_;
    CAgentConversation root_;
    std::vector<std::u16string> rootFaults_;
    std::u16string rootErrorText_;
    std::vector<ConversationNode*> byTreeIndex_;  // index = TreeIndex; [0] is the root (null)
};

}  // namespace dlg
