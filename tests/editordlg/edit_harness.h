#pragma once

// An open conversation with an undo stack, as the editor holds one, for tests of edits: every
// command goes apply, check, undo, check the original, redo, check; and the tree's invariants
// can be checked after any step.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

#include "core/undo_support.h"
#include "model/conversation_edits.h"
#include "model/conversation_tree.h"
#include "model/undo/undo_command_add_remove_nodes.h"
#include "model/undo/undo_command_modify_node.h"
#include "model/undo/undo_command_move_node.h"
#include "ts/propertycompare.h"
#include "ts/text.h"

namespace dlg::test {

// The first broken rule of an open tree, or "" when it holds them all: lines alternate NPC and
// player by depth under the root, links have no children and point at lines in the tree of
// their own kind, TreeIndex numbers the items in pre-order, the link index holds exactly the
// links of the tree, and writing back then building again gives the same tree.
inline std::string BrokenRule(const ConversationTree& tree, const ConversationEdits& edits) {
    LineRules rules;
    const ItemTree& items = tree.Items();
    std::int32_t number = 0;
    std::size_t links = 0;
    for (TreeItem item = tree.RootItem(); item != kNoItem; item = items.NextInPreOrder(item)) {
        ConversationNode* node = tree.NodeOf(item);
        std::int32_t expected = number++;
        if (item == tree.RootItem()) continue;
        std::string at = " at TreeIndex " + std::to_string(expected);
        if (!node) return "an item without a node" + at;
        if (node->TreeIndex != expected || tree.NodeAt(expected) != node)
            return "numbering is not pre-order" + at;
        ConversationNode* parent = tree.NodeOf(items.GetParent(item));
        bool npcExpected = parent ? !parent->isNPC : true;
        if (node->isNPC != npcExpected) return "kinds do not alternate" + at;
        if (parent && parent->isLink) return "a link has children" + at;
        bool own = false;
        if (!node->isLink) node->line.GetAmbient(own);
        if (node->isAmbient != (own || (parent && parent->isAmbient)))
            return "a stale ambient flag" + at;
        std::vector<std::u16string> faults;
        if (!node->isLink) rules.CheckLine(*node, faults);
        if (faults != node->faults) return "stale faults" + at;
        if (node->isLink) {
            ++links;
            const ConversationNode* target = node->linkTarget;
            if (!target || target->isLink || target->isNPC != node->isNPC ||
                !items.IsInTree(target->treeItem))
                return "a link does not point at a line of its kind" + at;
            const auto& index = edits.Links().LinksTo(*target);
            if (std::find(index.begin(), index.end(), node) == index.end())
                return "the link index misses a link" + at;
        }
    }
    if (std::size_t(number) != tree.NodeCount()) return "the numbering table has stale entries";
    if (edits.Links().LinkCount() != links) return "the link index holds links not in the tree";

    CAgentConversation out;
    if (!tree.WriteBack(out)) return "write-back failed";
    CTsComPtr<ITsProperty> written(out.GetNode());
    ConversationTree again;
    std::u16string error;
    if (!again.Build(written.Get(), error)) return "the written tree does not load";
    CAgentConversation rewritten;
    if (!again.WriteBack(rewritten)) return "write-back of the reloaded tree failed";
    std::u16string difference;
    if (!ts::PropertyTreesEqual(written.Get(), rewritten.GetNode(), &difference))
        return "write-back then load changes the tree: " + ts::Utf16ToUtf8(difference);
    return {};
}

class OpenConversation {
public:
    explicit OpenConversation(ITsProperty* resource) {
        std::u16string error;
        loaded = tree.Build(resource, error);
        edits.Reindex();
        edits.SetValidation(&validation);
        if (loaded) edits.ValidateAll();
    }

    // The conversation as the host would get it on saving.
    CTsComPtr<ITsProperty> Written() const {
        CAgentConversation out;
        if (!tree.WriteBack(out)) return {};
        return CTsComPtr<ITsProperty>(out.GetNode());
    }

    // The first broken rule of the tree, or "" when it holds them all (see BrokenRule).
    std::string Broken() const;

    // Runs the command through the stack and checks it both ways: applied, `check` holds and
    // the tree is sound; undone, the conversation writes back exactly as before; redone, `check`
    // holds again.
    template <class Check>
    void RoundTrip(std::unique_ptr<CTsUndoCommand> command, Check&& check) {
        ASSERT_TRUE(command);
        CTsComPtr<ITsProperty> before = Written();
        std::size_t depth = stack.UndoCount();
        ASSERT_TRUE(stack.AddCommand(std::move(command), true));
        ASSERT_EQ(stack.UndoCount(), depth + 1);
        check();
        EXPECT_EQ(Broken(), "") << "after doing";
        ASSERT_TRUE(stack.Undo());
        EXPECT_EQ(Broken(), "") << "after undoing";
        std::u16string difference;
        EXPECT_TRUE(ts::PropertyTreesEqual(before.Get(), Written().Get(), &difference))
            << "undo did not restore: " << ts::Utf16ToUtf8(difference);
        ASSERT_TRUE(stack.Redo());
        check();
        EXPECT_EQ(Broken(), "") << "after redoing";
    }

    ConversationTree tree;
    ConversationEdits edits{tree};
    ConversationValidation validation{tree};
    CTsUndoSupportBase stack{kTsDefaultUndoDepth};
    bool loaded = false;
};

inline std::string OpenConversation::Broken() const {
    return BrokenRule(tree, edits);
}

// A new line with `text` appended under `parent`, of the kind that fits there.
inline std::unique_ptr<CUndoCommandAddRemoveNodes> Insertion(OpenConversation& c, TreeItem parent,
                                                             std::u16string text) {
    ConversationNode* p = c.tree.NodeOf(parent);
    CAgentConversationLine line;
    line.CreateOn(nullptr);
    line.SetText(std::move(text));
    auto command = std::make_unique<CUndoCommandAddRemoveNodes>(u"Insert Line", c.edits, true);
    command->AddNode(CUndoCommandAddRemoveNodes::AppendTo(
        c.edits, parent, c.edits.NewLine(!p || !p->isNPC, std::move(line))));
    return command;
}

// Random insertions, removals (with the links into what goes), moves and text changes, undone
// and redone at random; the tree stays sound at every step, undoing everything gives back the
// conversation as loaded and redoing everything the last state.
inline void RandomEdits(OpenConversation& c, std::uint32_t seed, int steps) {
    std::mt19937 random(seed);
    auto pick = [&](std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
    };
    CTsComPtr<ITsProperty> original = c.Written();
    ItemTree& items = c.tree.Items();
    for (int step = 0; step < steps; ++step) {
        std::vector<TreeItem> all;
        for (TreeItem i = c.tree.RootItem(); i != kNoItem; i = items.NextInPreOrder(i))
            all.push_back(i);
        TreeItem item = all[pick(all.size())];
        ConversationNode* node = c.tree.NodeOf(item);
        std::unique_ptr<CTsUndoCommand> command;
        switch (pick(6)) {
            case 0:
                if (!node || !node->isLink)
                    command =
                        Insertion(c, item, u"new " + std::u16string(1, char16_t(u'a' + step % 26)));
                break;
            case 1:
                // The links from outside into the branch go with it, as Delete does.
                if (node)
                    command = CUndoCommandAddRemoveNodes::RemovalOf(u"Delete Line", c.edits, item);
                break;
            case 2: {
                TreeItem parent = all[pick(all.size())];
                bool inside = false;
                for (TreeItem p = parent; p != kNoItem && !inside; p = items.GetParent(p))
                    inside = p == item;
                if (node && !inside && c.edits.FitsUnder(parent, *node))
                    command = std::make_unique<CUndoCommandMoveNode>(
                        u"Drag Node", c.edits,
                        CUndoMoveTriple{c.edits.IndexOf(item), c.edits.IndexOf(parent),
                                        std::int32_t(pick(items.ChildCount(parent) + 1))});
                break;
            }
            case 3:
                if (node)
                    command = CUndoCommandModifyNode::ForField(
                        u"Text Change", c.edits, item, u"Text",
                        variant(11, std::u16string_view(u"edited")), kChangeText);
                break;
            case 4:
                c.stack.Undo();
                break;
            case 5:
                c.stack.Redo();
                break;
        }
        if (command) {
            ASSERT_TRUE(c.stack.AddCommand(std::move(command), true)) << "step " << step;
        }
        ASSERT_EQ(c.Broken(), "") << "step " << step;
    }
    while (c.stack.RedoCount() > 0) ASSERT_TRUE(c.stack.Redo());
    CTsComPtr<ITsProperty> last = c.Written();
    while (c.stack.UndoCount() > 0) ASSERT_TRUE(c.stack.Undo());
    if (c.stack.SavedPosition() == 0) {
        std::u16string difference;
        EXPECT_TRUE(ts::PropertyTreesEqual(original.Get(), c.Written().Get(), &difference))
            << ts::Utf16ToUtf8(difference);
    }
    while (c.stack.RedoCount() > 0) ASSERT_TRUE(c.stack.Redo());
    EXPECT_TRUE(ts::PropertyTreesEqual(last.Get(), c.Written().Get()));
}

}  // namespace dlg::test
