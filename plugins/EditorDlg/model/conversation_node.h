#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "agents/agentconversation.h"
#include "model/item_tree.h"

namespace dlg {

// The record behind every tree item but the root: one line of the conversation, or a link to a
// line that stands elsewhere in the tree.
struct ConversationNode : TreeItemData {
    // Index of the line in NPCLineList (isNPC) or PlayerLineList of the resource it was built
    // from; edits do not keep it (write-back numbers the lines anew).
    std::uint32_t lineIndex = 0;
    // Pre-order number of the item in the whole tree (root 0, links included); -1 until numbered.
    std::int32_t TreeIndex = -1;
    bool isLink = false;
    bool isNPC = false;
    // Set by the label computation when an NPC line is shown as its comment.
    bool isComment = false;
    // The line is ambient, by its own flag or an ambient ancestor line.
    bool isAmbient = false;
    // The line's record; a link shares its target's.
    CAgentConversationLine line;
    TreeItem treeItem = kNoItem;
    // For a link, the node of the line it refers to (never another link).
    ConversationNode* linkTarget = nullptr;
    // Messages of the failed validation rules in rule order, and the same joined with " | " as
    // the tree shows them; both empty when the line is valid.
    std::vector<std::u16string> faults;
    std::u16string errorText;

    // The node whose line this item shows: the target for a link, else itself.
    const ConversationNode& Shown() const { return isLink && linkTarget ? *linkTarget : *this; }
};

}  // namespace dlg
