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

Node MakeNode(std::u16string_view name, std::uint32_t type, variant value = {}) {
    Node n;
    EXPECT_EQ(TsCreateProperty(name, type, 0, n.Put()), S_OK);
    if (!value.empty()) {
        EXPECT_EQ(n->SetValue(value), S_OK);
    }
    return n;
}

variant Text(std::u16string_view s) {
    return variant(kTsTypeString, s);
}
variant Int(std::int32_t i) {
    return variant(kTsTypeInt, i);
}

Values Read(const std::vector<Node>& nodes) {
    Values values;
    for (const Node& n : nodes) {
        values.emplace_back();
        EXPECT_EQ(n->GetValue(&values.back()), S_OK);
    }
    return values;
}

std::unique_ptr<CTsUndoCommandPropertyModify> Set(const Node& node, variant after,
                                                  std::u16string label = u"Change") {
    auto command =
        CTsUndoCommandPropertyModify::Make(std::move(label), node.Get(), std::move(after));
    EXPECT_TRUE(command);
    return command;
}

// The one harness every command goes through: pushed and run, undone, redone, each time with
// the nodes it touches checked.
void ExpectRoundTrip(std::unique_ptr<CTsUndoCommand> command, const std::vector<Node>& nodes,
                     const Values& after) {
    CTsUndoSupportBase stack(kTsDefaultUndoDepth);
    const Values before = Read(nodes);
    ASSERT_TRUE(stack.AddCommand(std::move(command), true));
    EXPECT_EQ(Read(nodes), after) << "done";
    ASSERT_TRUE(stack.Undo());
    EXPECT_EQ(Read(nodes), before) << "undone";
    ASSERT_TRUE(stack.Redo());
    EXPECT_EQ(Read(nodes), after) << "redone";
}

TEST(PropertyModifyCommand, SetsOneNodeAndRestoresIt) {
    Node speaker = MakeNode(u"Speaker", kTsTypeString, Text(u"OWNER"));
    auto command =
        CTsUndoCommandPropertyModify::Make(u"Speaker Change", speaker.Get(), Text(u"orla"), 16);
    ASSERT_TRUE(command);
    EXPECT_EQ(command->Property().Get(), speaker.Get());
    EXPECT_EQ(command->Before(), Text(u"OWNER"));
    EXPECT_EQ(command->After(), Text(u"orla"));
    EXPECT_EQ(command->ChangeFlags(), 16u);
    ExpectRoundTrip(std::move(command), {speaker}, {Text(u"orla")});

    // Nothing to read a before-value from.
    EXPECT_FALSE(CTsUndoCommandPropertyModify::Make(u"X", nullptr, Int(1)));
    Node list = MakeNode(u"StartList", kTsTypeList);
    EXPECT_FALSE(CTsUndoCommandPropertyModify::Make(u"X", list.Get(), Int(1)));

    // Without a node the command is empty and the stack keeps nothing.
    CTsUndoSupportBase stack(kTsDefaultUndoDepth);
    EXPECT_TRUE(stack.AddCommand(
        std::make_unique<CTsUndoCommandPropertyModify>(u"X", nullptr, Int(0), Int(1)), true));
    EXPECT_EQ(stack.UndoCount(), 0u);

    // A value the node refuses (another type) fails the command; the node keeps its value.
    ts::test::ReportCapture reports;
    EXPECT_FALSE(stack.AddCommand(Set(speaker, Int(3), u"Speaker Change"), true));
    EXPECT_EQ(Read({speaker}), Values{Text(u"orla")});
    EXPECT_EQ(reports.Count(u"Doing \"Speaker Change\" (CTsUndoCommandPropertyModify) failed; the "
                            u"undo history was cleared."),
              1u);
}

TEST(PropertyModifyCommand, EditsOfOneNodeMergeIntoOneStep) {
    Node text = MakeNode(u"Text", kTsTypeString, Text(u"Hi"));
    Node twin = MakeNode(u"Text", kTsTypeString, Text(u"Hi"));
    auto first = Set(text, Text(u"H"));
    EXPECT_TRUE(first->CanMerge(*Set(text, Text(u"He"))));
    EXPECT_FALSE(first->CanMerge(*Set(twin, Text(u"He")))) << "an equal node is another node";
    EXPECT_FALSE(first->CanMerge(CTsUndoCommandGroup(u"Group")));

    // Typing "Hello" one letter at a time: one step back to "Hi".
    CTsUndoSupportBase stack(kTsDefaultUndoDepth);
    for (std::u16string typed : {u"H", u"He", u"Hel", u"Hell", u"Hello"}) {
        auto command = Set(text, Text(typed), u"Text Change");
        command->SetUpdateKey(42);
        command->SetMarkedForUpdate(true);
        ASSERT_TRUE(stack.AddCommand(std::move(command), true));
    }
    EXPECT_EQ(stack.UndoCount(), 1u);
    auto& merged = static_cast<CTsUndoCommandPropertyModify&>(*stack.UndoCommandAt(0));
    EXPECT_EQ(merged.Before(), Text(u"Hi"));
    EXPECT_EQ(merged.After(), Text(u"Hello"));
    ASSERT_TRUE(stack.Undo());
    EXPECT_EQ(Read({text}), Values{Text(u"Hi")});
}

TEST(UndoGroup, RunsItsChildrenForwardAndUndoesThemBackward) {
    Node a = MakeNode(u"A", kTsTypeInt, Int(1)), b = MakeNode(u"B", kTsTypeInt, Int(2));
    auto group = std::make_unique<CTsUndoCommandGroup>(u"Apply");
    group->Add(Set(a, Int(10)));
    group->Add(Set(b, Int(20)));
    // The same node twice: only undoing in reverse brings back its first value.
    group->Add(std::make_unique<CTsUndoCommandPropertyModify>(u"Change", a, Int(10), Int(30)));
    ExpectRoundTrip(std::move(group), {a, b}, {Int(30), Int(20)});
}

TEST(UndoGroup, AChildThatFailsLeavesTheNodesAsTheGroupFoundThem) {
    Node a = MakeNode(u"A", kTsTypeInt, Int(1)), b = MakeNode(u"B", kTsTypeInt, Int(2)),
         c = MakeNode(u"C", kTsTypeInt, Int(3));
    ts::test::ReportCapture reports;
    CTsUndoSupportBase stack(kTsDefaultUndoDepth);

    // Doing: the middle child's value is refused; the first is turned back, the last never runs.
    auto group = std::make_unique<CTsUndoCommandGroup>(u"Apply");
    group->Add(Set(a, Int(10)));
    group->Add(Set(b, Text(u"twenty")));
    group->Add(Set(c, Int(30)));
    EXPECT_FALSE(stack.AddCommand(std::move(group), true));
    EXPECT_EQ(Read({a, b, c}), (Values{Int(1), Int(2), Int(3)}));
    EXPECT_EQ(reports.Count(u"Doing \"Apply\" (CTsUndoCommandGroup) failed; the undo history was "
                            u"cleared."),
              1u);

    // Undoing: the middle child's before-value is refused; the last one is done again.
    group = std::make_unique<CTsUndoCommandGroup>(u"Apply");
    group->Add(Set(a, Int(10)));
    group->Add(std::make_unique<CTsUndoCommandPropertyModify>(u"Change", b, Text(u"two"), Int(20)));
    group->Add(Set(c, Int(30)));
    ASSERT_TRUE(stack.AddCommand(std::move(group), true));
    EXPECT_FALSE(stack.Undo());
    EXPECT_EQ(Read({a, b, c}), (Values{Int(10), Int(20), Int(30)}));
    EXPECT_EQ(stack.UndoCount() + stack.RedoCount(), 0u);
}

// A command that merges with the commands whose names it lists.
class Fits : public CTsUndoCommand {
public:
    Fits(char name, std::string fits) : CTsUndoCommand(u"Fits"), name_(name), fits_(fits) {}
    bool Do(CTsUndoSupportBase&) override { return true; }
    bool Undo(CTsUndoSupportBase&) override { return true; }
    bool CanMerge(const CTsUndoCommand& other) const override {
        const auto* f = dynamic_cast<const Fits*>(&other);
        return f && fits_.find(f->name_) != std::string::npos;
    }
    bool Merge(CTsUndoCommand& other) override {
        if (!CanMerge(other)) return false;
        mergedWith = static_cast<Fits&>(other).name_;
        return true;
    }
    char mergedWith = 0;

private:
    char name_;
    std::string fits_;
};

std::unique_ptr<CTsUndoCommandGroup> GroupOf(std::vector<std::unique_ptr<CTsUndoCommand>> list) {
    auto group = std::make_unique<CTsUndoCommandGroup>(u"Group");
    for (auto& child : list) group->Add(std::move(child));
    return group;
}

TEST(UndoGroup, MergesWhenEveryChildFindsAPartnerOfItsOwn) {
    // x fits p and q, y only p: the pairing must give p to y, though x comes first.
    auto pair = [](std::string xFits, std::string yFits) {
        std::vector<std::unique_ptr<CTsUndoCommand>> list;
        list.push_back(std::make_unique<Fits>('x', xFits));
        list.push_back(std::make_unique<Fits>('y', yFits));
        return GroupOf(std::move(list));
    };
    auto others = [](std::string names) {
        std::vector<std::unique_ptr<CTsUndoCommand>> list;
        for (char n : names) list.push_back(std::make_unique<Fits>(n, ""));
        return GroupOf(std::move(list));
    };
    auto group = pair("pq", "p");
    ASSERT_TRUE(group->Merge(*others("pq")));
    EXPECT_EQ(static_cast<Fits&>(group->Child(0)).mergedWith, 'q');
    EXPECT_EQ(static_cast<Fits&>(group->Child(1)).mergedWith, 'p');
    EXPECT_FALSE(pair("p", "p")->CanMerge(*others("pq"))) << "two children, one partner";
    EXPECT_FALSE(pair("pq", "pq")->CanMerge(*others("p"))) << "counts differ";
    EXPECT_FALSE(pair("p", "p")->Merge(*others("pq")));

    // A pane applying the same two fields twice: one step, in any order of its children.
    Node a = MakeNode(u"A", kTsTypeInt, Int(1)), b = MakeNode(u"B", kTsTypeInt, Int(2));
    CTsUndoSupportBase stack(kTsDefaultUndoDepth);
    for (int round : {1, 2}) {
        auto apply = std::make_unique<CTsUndoCommandGroup>(u"Apply");
        apply->Add(Set(round == 1 ? a : b, Int(10 * round)));
        apply->Add(Set(round == 1 ? b : a, Int(10 * round)));
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
