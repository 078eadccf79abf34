// The editor's undo commands on real conversation trees: each one applied, undone and redone
// through the stack (edit_harness.h), bad records refused with nothing changed, random edit
// sequences that keep the tree sound, and chains and parents far larger than any conversation.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "edit_harness.h"
#include "model/tree_view_commands.h"
#include "model/undo/undo_command_add_remove_nodes.h"
#include "model/undo/undo_command_modify_node.h"
#include "model/undo/undo_command_modify_property_group.h"
#include "model/undo/undo_command_move_node.h"
#include "model/undo/undo_modify_animation.h"
#include "support/conversation_builder.h"
#include "support/report_capture.h"

namespace {

using namespace dlg;
using dlg::test::Insertion;
using dlg::test::OpenConversation;
using dlg::test::RandomEdits;
using ts::test::ConversationBuilder;

// A guard asks the player's business: two answers, one of which comes back to the start by a
// link; a second start with an answer of its own.
struct Guard : ConversationBuilder {
    Guard() {
        std::uint32_t halt = Npc(u"Halt!", u"guard");
        std::uint32_t trade = Player(u"Trade.");
        std::uint32_t leave = Player(u"Goodbye.");
        std::uint32_t market = Npc(u"Market's east.");
        std::uint32_t again = Player(u"Again?");
        std::uint32_t idle = Npc(u"Hm.");
        Start(halt);
        NpcTo(halt, trade);
        NpcTo(halt, leave);
        PlayerTo(trade, market);
        NpcTo(market, again);
        PlayerTo(again, halt, true);
        Start(idle);
    }
};

TreeItem Find(const OpenConversation& c, std::u16string_view label) {
    const ItemTree& items = c.tree.Items();
    for (TreeItem i = c.tree.RootItem(); i != kNoItem; i = items.NextInPreOrder(i))
        if (items.GetText(i) == label && !c.tree.NodeOf(i)->isLink) return i;
    return kNoItem;
}

std::u16string Outline(const OpenConversation& c) {
    std::u16string out;
    const ItemTree& items = c.tree.Items();
    for (TreeItem i = items.GetChild(c.tree.RootItem()); i != kNoItem;
         i = items.NextInPreOrder(i)) {
        for (TreeItem p = items.GetParent(i); p != c.tree.RootItem(); p = items.GetParent(p))
            out += u" ";
        out += (c.tree.NodeOf(i)->isLink ? u"->" : u"") + items.GetText(i) + u"|";
    }
    return out;
}

std::unique_ptr<CUndoCommandAddRemoveNodes> Removal(OpenConversation& c, TreeItem item,
                                                    std::vector<TreeItem> links = {}) {
    auto command = std::make_unique<CUndoCommandAddRemoveNodes>(u"Delete Line", c.edits, false);
    for (TreeItem link : links)
        command->AddLink(CUndoCommandAddRemoveNodes::RecordOf(c.edits, link));
    command->AddNode(CUndoCommandAddRemoveNodes::RecordOf(c.edits, item));
    return command;
}

// Moves `item` under the line numbered `parent`, to `row` among its children.
std::unique_ptr<CUndoCommandMoveNode> Move(OpenConversation& c, TreeItem item, std::int32_t parent,
                                           std::int32_t row) {
    return std::make_unique<CUndoCommandMoveNode>(
        u"Drag Node", c.edits, CUndoMoveTriple{c.edits.IndexOf(item), parent, row});
}

TEST(UndoCommands, EachCommandAppliesUndoesAndRedoesOnTheTree) {
    Guard g;
    OpenConversation c(g.Resource());
    ASSERT_TRUE(c.loaded);
    ASSERT_EQ(c.Broken(), "");
    const std::u16string start = Outline(c);
    EXPECT_EQ(start,
              u"[guard] Halt!| Trade.|  [[OWNER]] Market's east.|   Again?|    ->[guard] Halt!|"
              u" Goodbye. [END DIALOGUE]|[[OWNER]] Hm.|");

    // A new player line goes last under its NPC line and shows as the end of the dialogue.
    TreeItem halt = Find(c, u"[guard] Halt!");
    c.RoundTrip(Insertion(c, halt, u"Who's asking?"), [&] {
        EXPECT_EQ(c.tree.Items().GetText(c.tree.Items().GetLastChild(halt)),
                  u"Who's asking? [END DIALOGUE]");
    });
    // Undone while the new line is selected, the selection goes back to the line above it.
    c.tree.Items().Select(c.tree.Items().GetLastChild(halt));
    ASSERT_TRUE(c.stack.Undo());
    EXPECT_EQ(c.tree.Items().GetSelection(), halt);
    ASSERT_TRUE(c.stack.Redo());
    // Its parent-to-be had no children: "Hm." takes a first answer; the line's label is the
    // same, and the answer's label ends the dialogue.
    TreeItem idle = Find(c, u"[[OWNER]] Hm.");
    c.RoundTrip(Insertion(c, idle, u""), [&] { EXPECT_EQ(c.tree.Items().ChildCount(idle), 1u); });

    // Removing a branch takes its lines along; the link inside it goes too.
    TreeItem trade = Find(c, u"Trade.");
    c.RoundTrip(Removal(c, trade), [&] {
        EXPECT_EQ(Outline(c),
                  u"[guard] Halt!| Goodbye. [END DIALOGUE]| Who's asking? [END DIALOGUE]|"
                  u"[[OWNER]] Hm.| [END DIALOGUE]|");
        EXPECT_EQ(c.edits.Links().LinkCount(), 0u);
    });
    ASSERT_TRUE(c.stack.Undo());

    // A link is inserted like a line; a line that a link elsewhere points at goes only together
    // with that link, and both come back.
    TreeItem link = c.tree.Items().GetChild(Find(c, u"Again?"));
    TreeItem leave = Find(c, u"Goodbye. [END DIALOGUE]");
    auto linking = std::make_unique<CUndoCommandAddRemoveNodes>(u"Paste", c.edits, true);
    linking->AddNode(CUndoCommandAddRemoveNodes::AppendTo(c.edits, idle,
                                                          c.edits.NewLink(*c.tree.NodeOf(leave))));
    ASSERT_TRUE(c.stack.AddCommand(std::move(linking), true));
    TreeItem toLeave = c.tree.Items().GetLastChild(idle);
    EXPECT_EQ(c.tree.Items().GetText(toLeave), u"Goodbye. [END DIALOGUE]");
    c.RoundTrip(Removal(c, leave, {toLeave}), [&] { EXPECT_EQ(c.edits.Links().LinkCount(), 1u); });
    ASSERT_TRUE(c.stack.Undo());
    ASSERT_TRUE(c.stack.Undo());

    // Moving "Goodbye." before "Trade."; then the market branch under "Goodbye.".
    c.RoundTrip(Move(c, leave, c.edits.IndexOf(halt), 0), [&] {
        EXPECT_EQ(c.tree.Items().GetChild(halt), leave);
        EXPECT_EQ(c.tree.Items().GetSelection(), leave);
    });
    TreeItem market = Find(c, u"[[OWNER]] Market's east.");
    c.RoundTrip(Move(c, market, c.edits.IndexOf(leave), -1), [&] {
        EXPECT_EQ(c.tree.Items().GetText(leave), u"Goodbye.");
        EXPECT_EQ(c.tree.Items().GetText(trade), u"Trade. [END DIALOGUE]");
    });

    // A text change shows in the line's label and in the link that shows it.
    c.RoundTrip(
        CUndoCommandModifyNode::ForField(u"Text Change", c.edits, halt, u"Text",
                                         variant(11, std::u16string_view(u"Stop!")), kChangeText),
        [&] {
            EXPECT_EQ(c.tree.Items().GetText(halt), u"[guard] Stop!");
            EXPECT_EQ(c.tree.Items().GetText(link), u"[guard] Stop!");
        });
    // The default speaker shows on every line without a speaker of its own.
    c.RoundTrip(CUndoCommandModifyNode::ForField(
                    u"Default NPC Speaker Change", c.edits, c.tree.RootItem(), u"DefaultNPCSpeaker",
                    variant(11, std::u16string_view(u"innkeeper")), kChangeAll, false),
                [&] { EXPECT_EQ(c.tree.Items().GetText(idle), u"[[innkeeper]] Hm."); });
    // An ambient line colours its branch.
    c.RoundTrip(CUndoCommandModifyNode::ForField(u"Ambient Change", c.edits, halt, u"Ambient",
                                                 variant(15, true), kChangeAmbient),
                [&] { EXPECT_TRUE(c.tree.NodeOf(market)->isAmbient); });

    // Several fields in one step, and an animation change that names its animation.
    auto group = std::make_unique<CUndoCommandModifyPropertyGroup>(
        u"Text Change", c.edits, c.edits.IndexOf(idle), kChangeText);
    group->Add(CTsUndoCommandPropertyModify::Make(u"Requires String ID Change",
                                                  FieldOf(c.edits, idle, u"StringID").Get(),
                                                  variant(5, std::int32_t(42))));
    group->Add(CTsUndoCommandPropertyModify::Make(u"Requires Text Change",
                                                  FieldOf(c.edits, idle, u"Text").Get(),
                                                  variant(11, std::u16string_view(u"Hmm?"))));
    c.RoundTrip(std::move(group), [&] {
        EXPECT_EQ(c.tree.Items().GetText(idle), u"[[innkeeper]] Hmm?");
        EXPECT_EQ(c.tree.Items().GetSelection(), idle);
    });
    struct Heard : ConversationEditObserver {
        void AnimationChanged(TreeItem item, std::uint32_t number,
                              const std::u16string& tag) override {
            heard.push_back({item, number, tag});
        }
        std::vector<std::tuple<TreeItem, std::uint32_t, std::u16string>> heard;
    } observer;
    c.edits.AddObserver(&observer);
    auto animation = std::make_unique<CUndoModifyAnimation>(
        u"Animation Change", c.edits, c.edits.IndexOf(halt), kChangeNone, 2, u"guard");
    animation->Add(CTsUndoCommandPropertyModify::Make(
        u"Animation Change", FieldOf(c.edits, halt, u"LockAnimations").Get(), variant(15, true)));
    c.RoundTrip(std::move(animation), [] {});
    ASSERT_EQ(observer.heard.size(), 3u);
    EXPECT_EQ(observer.heard[2], std::make_tuple(halt, 2u, std::u16string(u"guard")));
    c.edits.RemoveObserver(&observer);

    // Everything undone, the conversation is as it was loaded.
    while (c.stack.UndoCount() > 0) ASSERT_TRUE(c.stack.Undo());
    EXPECT_EQ(Outline(c), start);
}

TEST(UndoCommands, RecordsThatDoNotMatchTheTreeFailAndChangeNothing) {
    Guard g;
    OpenConversation c(g.Resource());
    TreeItem halt = Find(c, u"[guard] Halt!");
    TreeItem again = Find(c, u"Again?");
    TreeItem idle = Find(c, u"[[OWNER]] Hm.");
    auto linking = std::make_unique<CUndoCommandAddRemoveNodes>(u"Paste", c.edits, true);
    linking->AddNode(CUndoCommandAddRemoveNodes::AppendTo(
        c.edits, idle, c.edits.NewLink(*c.tree.NodeOf(Find(c, u"Goodbye. [END DIALOGUE]")))));
    ASSERT_TRUE(c.stack.AddCommand(std::move(linking), true));
    CTsComPtr<ITsProperty> before = c.Written();
    const std::u16string outline = Outline(c);

    // A record gone stale: the command's first record changed by `tweak`.
    auto stale = [](auto command, void (*tweak)(CUndoNodeRecord&)) {
        tweak(const_cast<CUndoNodeRecord&>(command->Nodes()[0]));
        return command;
    };
    const std::pair<const char*, std::function<std::unique_ptr<CTsUndoCommand>()>> cases[] = {
        {"a stale index",
         [&] { return stale(Removal(c, again), [](CUndoNodeRecord& r) { r.treeIndex = 999; }); }},
        {"a wrong position",
         [&] { return stale(Removal(c, again), [](CUndoNodeRecord& r) { r.position = 3; }); }},
        {"a line a link elsewhere still points at",
         [&] { return Removal(c, Find(c, u"Goodbye. [END DIALOGUE]")); }},
        {"an insertion past the last child",
         [&] {
             return stale(Insertion(c, again, u"x"), [](CUndoNodeRecord& r) { r.position = 5; });
         }},
        {"a player line under a player line",
         [&] {
             CAgentConversationLine line;
             line.CreateOn(nullptr);
             auto command =
                 std::make_unique<CUndoCommandAddRemoveNodes>(u"Insert Line", c.edits, true);
             command->AddNode(CUndoCommandAddRemoveNodes::AppendTo(c.edits, again,
                                                                   c.edits.NewLine(false, line)));
             return command;
         }},
        {"a move into its own branch", [&] { return Move(c, halt, c.edits.IndexOf(again), 0); }},
        {"a move to a parent that does not exist", [&] { return Move(c, again, 500, 0); }},
    };
    for (const auto& [what, make] : cases) {
        SCOPED_TRACE(what);
        ASSERT_TRUE(c.stack.AddCommand(Insertion(c, halt, u"Kept"), true));
        ASSERT_TRUE(c.stack.Undo());
        ts::test::ReportCapture reports;
        EXPECT_FALSE(c.stack.AddCommand(make(), true));
        EXPECT_EQ(c.stack.UndoCount() + c.stack.RedoCount(), 0u) << "the history is cleared";
        bool named = false;
        for (const auto& e : reports.entries())
            named |= e.message.find(u"CUndoCommand") != std::u16string::npos;
        EXPECT_TRUE(named) << "a report names the command";
        EXPECT_EQ(Outline(c), outline);
        std::u16string difference;
        EXPECT_TRUE(ts::PropertyTreesEqual(before.Get(), c.Written().Get(), &difference))
            << ts::Utf16ToUtf8(difference);
        EXPECT_EQ(c.Broken(), "");
    }
}

// A conversation of `lines` lines with random shape and links back to earlier lines.
struct RandomConversation : ConversationBuilder {
    RandomConversation(int lines, std::uint32_t seed) {
        std::mt19937 random(seed);
        std::vector<std::pair<bool, std::uint32_t>> placed{{true, Npc(u"start")}};
        Start(0);
        for (int i = 1; i < lines; ++i) {
            auto [npc, index] =
                placed[std::uniform_int_distribution<std::size_t>(0, placed.size() - 1)(random)];
            std::u16string text = u"line " + std::u16string(1, char16_t(u'A' + i % 26));
            std::uint32_t child = npc ? Player(text) : Npc(text);
            npc ? NpcTo(index, child) : PlayerTo(index, child);
            placed.push_back({!npc, child});
            // Now and then a link back to an earlier line of the other kind.
            if (random() % 5 == 0) {
                for (auto [k, target] : placed)
                    if (k == npc && target != index) {
                        npc ? PlayerTo(child, target, true) : NpcTo(child, target, true);
                        break;
                    }
            }
        }
    }
};

TEST(UndoCommands, RandomEditSequencesKeepTheTreeSound) {
    for (std::uint32_t seed : {1u, 2u, 3u}) {
        SCOPED_TRACE(seed);
        RandomConversation r(60, seed);
        OpenConversation c(r.Resource());
        ASSERT_TRUE(c.loaded);
        ASSERT_EQ(c.Broken(), "");
        RandomEdits(c, seed, 80);
    }
}

// A chain far deeper than any conversation, and a line with a great many answers: every pass over
// the tree is a loop, never recursion.
TEST(UndoCommands, DeepChainsAndWideParentsLoadEditAndUndo) {
    // TS_DEEP_CHAIN makes it deeper (500000 is checked before a release).
    const char* depth = std::getenv("TS_DEEP_CHAIN");
    const std::uint32_t kDepth = depth ? std::uint32_t(std::strtoul(depth, nullptr, 10)) : 100000;
    ConversationBuilder chain;
    CAgentConversationLine prototype;
    prototype.CreateOn(nullptr);
    CAgentConversationTransition step;
    step.CreateOn(nullptr);
    for (std::uint32_t i = 0; i < kDepth; ++i) {
        CTsComPtr<ITsProperty> line, transition;
        ASSERT_TRUE(SUCCEEDED(prototype.GetNode()->Clone(kTsCloneDeep, line.Put())));
        chain.conversation.AddItemToPropertyList(
            line.Get(), TsAddAtom(i % 2 ? u"PlayerLineList" : u"NPCLineList"));
        if (i + 1 < kDepth) {
            ASSERT_TRUE(SUCCEEDED(step.GetNode()->Clone(kTsCloneDeep, transition.Put())));
            CAgentConversationTransition t;
            t.Bind(transition.Get());
            t.SetLineIndex(std::int32_t((i + 1) / 2));
            CAgentConversationLine l;
            l.Bind(line.Get());
            l.AddItemToPropertyList(transition.Get(), TsAddAtom(u"TransitionList"));
        }
    }
    chain.Start(0);
    OpenConversation c(chain.Resource());
    ASSERT_TRUE(c.loaded);
    EXPECT_EQ(c.tree.NodeCount(), kDepth + 1);
    RunExpandCommand(c.tree.Items(), ExpandCommand::ExpandAll);
    RunExpandCommand(c.tree.Items(), ExpandCommand::CollapseAll);
    TreeItem head = c.tree.Items().GetChild(c.tree.RootItem());
    ASSERT_TRUE(c.stack.AddCommand(Removal(c, head), true));
    EXPECT_EQ(c.tree.NodeCount(), 1u);
    ASSERT_TRUE(c.stack.Undo());
    EXPECT_EQ(c.tree.NodeCount(), kDepth + 1);
    ASSERT_TRUE(c.stack.Redo());
    c.stack.ClearHistory();  // the removed chain is freed here, without recursion
    EXPECT_EQ(c.tree.Items().Size(), 1u);

    // 50,000 answers: the first one moves to the end and back.
    ConversationBuilder wide;
    std::uint32_t npc = wide.Npc(u"Choose.");
    wide.Start(npc);
    for (std::uint32_t i = 0; i < 50000; ++i) {
        CTsComPtr<ITsProperty> line;
        ASSERT_TRUE(SUCCEEDED(prototype.GetNode()->Clone(kTsCloneDeep, line.Put())));
        wide.conversation.AddItemToPropertyList(line.Get(), TsAddAtom(u"PlayerLineList"));
        wide.NpcTo(npc, i);
    }
    OpenConversation w(wide.Resource());
    ASSERT_TRUE(w.loaded);
    TreeItem choose = w.tree.Items().GetChild(w.tree.RootItem());
    TreeItem first = w.tree.Items().GetChild(choose);
    ASSERT_TRUE(w.stack.AddCommand(Move(w, first, w.edits.IndexOf(choose), 49999), true));
    EXPECT_EQ(w.tree.Items().GetLastChild(choose), first);
    EXPECT_EQ(w.edits.IndexOf(first), 50001);
    ASSERT_TRUE(w.stack.Undo());
    EXPECT_EQ(w.tree.Items().GetChild(choose), first);
    EXPECT_EQ(w.edits.IndexOf(first), 2);
}

}  // namespace
