#include "model/insert_line.h"

namespace dlg {

std::unique_ptr<CUndoCommandAddRemoveNodes> MakeInsertLine(ConversationEdits& edits, bool after,
                                                           std::u16string& message) {
    ConversationTree& tree = edits.Tree();
    const ItemTree& items = tree.Items();
    TreeItem selected = items.GetSelection();
    if (selected == kNoItem) {
        message = u"Please select a conversation node";
        return nullptr;
    }
    TreeItem root = tree.RootItem();
    TreeItem parent = after && selected != root ? items.GetParent(selected) : selected;
    const ConversationNode* p = tree.NodeOf(parent);
    if (parent != root && (!p || p->isLink)) {
        message = u"Unable to add node due to NULL parent node pointer";
        return nullptr;
    }

    bool npc = parent == root || !p->isNPC;
    CAgentConversationLine line;
    if (!line.CreateOn(nullptr)) return nullptr;
    std::u16string speaker = npc ? u"" : u"PLAYER", listener;
    TreeItem grandparent = parent == root ? kNoItem : items.GetParent(parent);
    if (const ConversationNode* g = tree.NodeOf(grandparent); g && grandparent != root) {
        g->line.GetSpeaker(speaker);
        g->line.GetListener(listener);
    }
    line.SetSpeaker(speaker);
    line.SetListener(listener);

    auto command = std::make_unique<CUndoCommandAddRemoveNodes>(u"Insert Line", edits, true);
    command->AddNode(
        CUndoCommandAddRemoveNodes::AppendTo(edits, parent, edits.NewLine(npc, std::move(line))));
    return command;
}

}  // namespace dlg
