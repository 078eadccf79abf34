#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "model/conversation_edits.h"
#include "model/conversation_tree.h"
#include "ts/atoms.h"

namespace dlg {

// What the editor holds of one open conversation besides its window: the tree, the cached word
// count, and the resources the conversation refers to, kept per resource type.
class ConversationDocument {
public:
    // The resource types whose references are collected on load, in this order: scripts, plots,
    // stages, cutscenes, areas.
    static const std::u16string_view kReferenceTypes[5];

    // Builds the tree from a conversation's root node; on failure the tree is empty and `error`
    // holds the message for the host.
    bool Load(ITsProperty* root, std::u16string& error);
    bool WriteBack(CAgentConversation& target) const { return tree_.WriteBack(target); }

    ConversationTree& Tree() { return tree_; }
    // Every change of the open conversation goes through here.
    ConversationEdits& Edits() { return edits_; }
    ConversationValidation& Validation() { return validation_; }
    const ConversationTree& Tree() const { return tree_; }
    bool IsLoaded() const { return tree_.RootItem() != kNoItem; }

    // Words of every line of the tree (links and the root count nothing); cached until the next
    // load or a forced recount.
    std::int32_t WordCount(bool force = false);

    // The resources of one type (atom of "nss", "plo", "stg", "cut" or "are") that the
    // conversation or any of its lines names.
    const std::set<std::u16string>& References(TsAtom type) const;
    void CollectReferences();
    void ClearReferences() { references_.clear(); }

    ConversationDocument() { edits_.SetValidation(&validation_); }
    ConversationDocument(const ConversationDocument&) = delete;
    ConversationDocument& operator=(const ConversationDocument&) = delete;

    // After "Refresh": forget the references, validate again (plots and stages may have changed)
    // and recompute every label and colour.
    void Refresh();

private:
    ConversationTree tree_;
    ConversationValidation validation_{tree_};
    ConversationEdits edits_{tree_};
    std::int32_t wordCount_ = -1;
    std::map<TsAtom, std::set<std::u16string>> references_;
};

// Maximal runs of characters that are not white space.
std::int32_t CountWords(std::u16string_view text);

}  // namespace dlg
