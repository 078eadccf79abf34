// Property and group commands on real property nodes, run through the stack as an editor runs
// them: do, check, undo, check the original, redo, check.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/undo_command_group.h"
#include "core/undo_command_property_modify.h"
#include "core/undo_support.h"
#include "support/report_capture.h"
#include "support/variant_print.h"
#include "ts/property.h"

namespace {

using Node = CTsComPtr<ITsProperty>;
using Values = std::vector<variant>;
using Modify = CTsUndoCommandPropertyModify;

// Three integer nodes, the stack their commands go through, and the helpers to build them.
struct UndoCommands : testing::Test {
    static variant Text(std::u16string_view s) { return variant(kTsTypeString, s); }
    static variant Int(std::int32_t i) { return variant(kTsTypeInt, i); }

    static Node MakeNode(std::u16string_view name, std::uint32_t type, variant value = {}) {
        Node n;
        EXPECT_EQ(TsCreateProperty(name, type, 0, n.Put()), S_OK);
        EXPECT_TRUE(value.empty() || SUCCEEDED(n->SetValue(value)));
        return n;
    }
    static Values Read(const std::vector<Node>& nodes) {
        Values values;
        for (const Node& n : nodes) EXPECT_EQ(n->GetValue(&values.emplace_back()), S_OK);
        return values;
    }
    static std::unique_ptr<Modify> Set(const Node& node, variant after,
                                       std::u16string label = u"Change") {
        auto command = Modify::Make(std::move(label), node.Get(), std::move(after));
        EXPECT_TRUE(command);
        return command;
    }
    template <class... Children>
    static std::unique_ptr<CTsUndoCommandGroup> GroupOf(std::unique_ptr<Children>... children) {
        auto group = std::make_unique<CTsUndoCommandGroup>(u"Apply");
        (group->Add(std::move(children)), ...);
        return group;
    }

    // The one harness every command goes through: pushed and run, undone, redone, each time
    // with the nodes it touches checked.
    void ExpectRoundTrip(std::unique_ptr<CTsUndoCommand> command, const std::vector<Node>& nodes,
                         const Values& after) {
        const Values before = Read(nodes);
        ASSERT_TRUE(stack.AddCommand(std::move(command), true));
        EXPECT_EQ(Read(nodes), after) << "done";
        ASSERT_TRUE(stack.Undo());
        EXPECT_EQ(Read(nodes), before) << "undone";
        ASSERT_TRUE(stack.Redo());
        EXPECT_EQ(Read(nodes), after) << "redone";
    }

    Node a = MakeNode(u"A", kTsTypeInt, Int(1)), b = MakeNode(u"B", kTsTypeInt, Int(2)),
         c = MakeNode(u"C", kTsTypeInt, Int(3));
    CTsUndoSupportBase stack{kTsDefaultUndoDepth};
    ts::test::ReportCapture reports;
};
using PropertyModifyCommand = UndoCommands;
using UndoGroup = UndoCommands;

TEST_F(PropertyModifyCommand, SetsOneNodeAndRestoresIt) {
    Node speaker = MakeNode(u"Speaker", kTsTypeString, Text(u"OWNER"));
    auto command = Modify::Make(u"Speaker Change", speaker.Get(), Text(u"orla"), 16);
    ASSERT_TRUE(command);
    EXPECT_EQ(command->Before(), Text(u"OWNER"));
    ExpectRoundTrip(std::move(command), {speaker}, {Text(u"orla")});

    // Nothing to read a before-value from: no node, or a list node.
    EXPECT_FALSE(Modify::Make(u"X", nullptr, Int(1)));
    EXPECT_FALSE(Modify::Make(u"X", MakeNode(u"StartList", kTsTypeList).Get(), Int(1)));

    // Without a node the command is empty and the stack drops it.
    EXPECT_TRUE(stack.AddCommand(std::make_unique<Modify>(u"X", nullptr, Int(0), Int(1)), true));
    EXPECT_EQ(stack.UndoCount(), 1u) << "the speaker change alone";

    // A value the node refuses (another type) fails the command; the node keeps its value.
    EXPECT_FALSE(stack.AddCommand(Set(speaker, Int(3), u"Speaker Change"), true));
    EXPECT_EQ(Read({speaker}), Values{Text(u"orla")});
    EXPECT_EQ(reports.Count(u"Doing \"Speaker Change\" (CTsUndoCommandPropertyModify) failed; the "
                            u"undo history was cleared."),
              1u);
}

TEST_F(PropertyModifyCommand, EditsOfOneNodeMergeIntoOneStep) {
    Node text = MakeNode(u"Text", kTsTypeString, Text(u"Hi"));
    Node twin = MakeNode(u"Text", kTsTypeString, Text(u"Hi"));
    auto first = Set(text, Text(u"H"));
    EXPECT_TRUE(first->CanMerge(*Set(text, Text(u"He"))));
    EXPECT_FALSE(first->CanMerge(*Set(twin, Text(u"He")))) << "an equal node is another node";
    EXPECT_FALSE(first->CanMerge(CTsUndoCommandGroup(u"Group")));

    // Typing "Hello" one letter at a time: one step that goes back to "Hi".
    for (std::u16string typed : {u"H", u"He", u"Hel", u"Hell", u"Hello"}) {
        auto command = Set(text, Text(typed), u"Text Change");
        command->SetUpdateKey(42);
        command->SetMarkedForUpdate(true);
        ASSERT_TRUE(stack.AddCommand(std::move(command), true));
    }
    ASSERT_EQ(stack.UndoCount(), 1u);
    auto& merged = static_cast<Modify&>(*stack.UndoCommandAt(0));
    EXPECT_EQ(merged.Before(), Text(u"Hi"));
    EXPECT_EQ(merged.After(), Text(u"Hello"));
}

TEST_F(UndoGroup, RunsItsChildrenForwardAndUndoesThemBackward) {
    // The same node twice: only undoing in reverse brings back its first value.
    ExpectRoundTrip(GroupOf(Set(a, Int(10)), Set(b, Int(20)),
                            std::make_unique<Modify>(u"Change", a, Int(10), Int(30))),
                    {a, b}, {Int(30), Int(20)});
}

TEST_F(UndoGroup, AChildThatFailsLeavesTheNodesAsTheGroupFoundThem) {
    // Doing: b refuses the text; the first child is turned back, the last never runs.
    EXPECT_FALSE(
        stack.AddCommand(GroupOf(Set(a, Int(10)), Set(b, Text(u"twenty")), Set(c, Int(30))), true));
    EXPECT_EQ(Read({a, b, c}), (Values{Int(1), Int(2), Int(3)}));
    EXPECT_EQ(reports.Count(u"Doing \"Apply\" (CTsUndoCommandGroup) failed; the undo history was "
                            u"cleared."),
              1u);

    // Undoing: b refuses its before-value; the last child is done again, the first stays done.
    ASSERT_TRUE(stack.AddCommand(
        GroupOf(Set(a, Int(10)), std::make_unique<Modify>(u"Change", b, Text(u"two"), Int(20)),
                Set(c, Int(30))),
        true));
    EXPECT_FALSE(stack.Undo());
    EXPECT_EQ(Read({a, b, c}), (Values{Int(10), Int(20), Int(30)}));
    EXPECT_EQ(stack.UndoCount() + stack.RedoCount(), 0u);
}

// A command named by one letter that merges with the commands whose names it lists, and notes
// the one it merged with.
struct Fits : CTsUndoCommand {
    Fits(char name, std::string fits) : CTsUndoCommand(std::u16string(1, name)), fits(fits) {}
    bool Do(CTsUndoSupportBase&) override { return true; }
    bool Undo(CTsUndoSupportBase&) override { return true; }
    bool CanMerge(const CTsUndoCommand& other) const override {
        return fits.find(static_cast<char>(other.Label()[0])) != std::string::npos;
    }
    bool Merge(CTsUndoCommand& other) override {
        mergedWith = static_cast<char>(other.Label()[0]);
        return CanMerge(other);
    }
    std::string fits;
    char mergedWith = '-';
};

TEST_F(UndoGroup, MergesWhenEveryChildFindsAPartnerOfItsOwn) {
    // Children x and y against others named by letters; the partners x and y merge with.
    const struct {
        const char *xFits, *yFits, *others, *partners;
    } cases[] = {{"p", "q", "pq", "pq"},
                 {"pq", "p", "pq", "qp"},   // p must go to y, though x comes first
                 {"p", "p", "pq", "--"},    // two children, one partner
                 {"pq", "pq", "p", "--"}};  // counts differ
    for (const auto& k : cases) {
        SCOPED_TRACE(std::string(k.xFits) + " " + k.yFits + " " + k.others);
        auto group =
            GroupOf(std::make_unique<Fits>('x', k.xFits), std::make_unique<Fits>('y', k.yFits));
        CTsUndoCommandGroup others(u"Others");
        for (const char* n = k.others; *n; ++n) others.Add(std::make_unique<Fits>(*n, ""));
        const bool merges = k.partners[0] != '-';
        EXPECT_EQ(group->CanMerge(others), merges);
        EXPECT_EQ(group->Merge(others), merges);
        EXPECT_EQ(std::string({static_cast<Fits&>(group->Child(0)).mergedWith,
                               static_cast<Fits&>(group->Child(1)).mergedWith}),
                  k.partners);
    }

    // A pane applying the same two fields twice: one step, in any order of its children.
    for (int round : {1, 2}) {
        auto apply = round == 1 ? GroupOf(Set(a, Int(10)), Set(b, Int(10)))
                                : GroupOf(Set(b, Int(20)), Set(a, Int(20)));
        apply->SetUpdateKey(5);
        apply->SetMarkedForUpdate(true);
        ASSERT_TRUE(stack.AddCommand(std::move(apply), true));
    }
    EXPECT_EQ(stack.UndoCount(), 1u);
    EXPECT_EQ(Read({a, b}), (Values{Int(20), Int(20)}));
    ASSERT_TRUE(stack.Undo());
    EXPECT_EQ(Read({a, b}), (Values{Int(1), Int(2)}));
}

}  // namespace
