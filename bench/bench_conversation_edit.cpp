// Editing a generated conversation through undo commands, with the tree view on screen
// (offscreen) and every row expanded: the time from the command to the view having laid out and
// painted the change. The argument is the number of lines.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <map>

#include "core/undo_support.h"
#include "model/conversation_edits.h"
#include "model/tree_view_commands.h"
#include "model/undo/undo_command_add_remove_nodes.h"
#include "model/undo/undo_command_modify_node.h"
#include "model/undo/undo_command_move_node.h"
#include "support/conversation_generator.h"
#include "support/plot_module.h"
#include "views/conversation_editor_view.h"

namespace {

using namespace dlg;

const CTsComPtr<ITsProperty>& Conversation(int lines) {
    static std::map<int, CTsComPtr<ITsProperty>> made;
    auto& tree = made[lines];
    if (!tree) tree = ts::bench::GenerateConversation(lines);
    return tree;
}

// An open conversation with its undo stack and its view, fully expanded, validated after every
// edit against a module that holds its plot.
struct Editor {
    ts::bench::PlotModule module;
    ConversationTree tree;
    ConversationValidation validation{tree};
    ConversationEdits edits{tree};
    CTsUndoSupportBase stack{kTsDefaultUndoDepth};
    std::unique_ptr<ConversationEditorView> view;

    explicit Editor(int lines) {
        view = std::make_unique<ConversationEditorView>(tree.Items());
        view->resize(1000, 700);
        view->show();
        std::u16string error;
        if (!tree.Build(Conversation(lines).Get(), error)) std::abort();
        edits.Reindex();
        edits.SetValidation(&validation);
        edits.ValidateAll();
        RunExpandCommand(tree.Items(), ExpandCommand::ExpandAll);
        Settle();
    }
    // Runs what the view left for its event loop: delayed layouts, the column fit, painting.
    static void Settle() { QApplication::processEvents(); }

    TreeItem Line(std::int32_t treeIndex) const { return edits.ItemAt(treeIndex); }
    // The full NPC line whose branch is nearest to `lines` lines.
    TreeItem BranchOf(std::size_t lines) const {
        const ItemTree& items = tree.Items();
        TreeItem best = kNoItem;
        std::size_t bestDistance = SIZE_MAX;
        for (TreeItem i = items.GetChild(tree.RootItem()); i != kNoItem;
             i = items.NextInPreOrder(i)) {
            const ConversationNode* node = tree.NodeOf(i);
            if (!node->isNPC || node->isLink) continue;
            std::size_t size = items.SubtreeSize(i);
            std::size_t distance = size > lines ? size - lines : lines - size;
            if (distance < bestDistance) best = i, bestDistance = distance;
        }
        return best;
    }
    void Run(std::unique_ptr<CTsUndoCommand> command) {
        if (!stack.AddCommand(std::move(command), true)) std::abort();
        Publish();
        Settle();
    }
    void Undo() {
        if (!stack.Undo()) std::abort();
        Publish();
        Settle();
    }
    // What the window hands the host after a command whose faults or numbering changed.
    void Publish() {
        if (validation.TakeChanged()) benchmark::DoNotOptimize(validation.Errors());
    }
};

void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(2000)->Arg(50000)->ArgName("lines")->Unit(benchmark::kMillisecond);
}

std::unique_ptr<CTsUndoCommand> TextChange(Editor& e, TreeItem item, int n) {
    std::u16string text = u"Edited line " + std::u16string(1, char16_t(u'A' + n % 26));
    return CUndoCommandModifyNode::ForField(u"Text Change", e.edits, item, u"Text",
                                            variant(11, std::u16string_view(text)), kChangeText);
}

// A line's text, which its label shows (and the labels of the links to it).
void BM_TextChange(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem item = e.Line(std::int32_t(e.tree.NodeCount() / 2));
    int n = 0;
    for (auto _ : state) e.Run(TextChange(e, item, n++));
}
BENCHMARK(BM_TextChange)->Apply(Sizes);

void BM_UndoTextChange(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem item = e.Line(std::int32_t(e.tree.NodeCount() / 2));
    int n = 0;
    for (auto _ : state) {
        state.PauseTiming();
        e.Run(TextChange(e, item, n++));
        state.ResumeTiming();
        e.Undo();
    }
}
BENCHMARK(BM_UndoTextChange)->Apply(Sizes);

// A new line at the end of a line's answers, in the middle of the conversation.
void BM_InsertLine(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem parent = e.Line(std::int32_t(e.tree.NodeCount() / 2));
    while (e.tree.NodeOf(parent)->isLink) parent = e.tree.Items().GetParent(parent);
    bool npc = !e.tree.NodeOf(parent)->isNPC;
    for (auto _ : state) {
        CAgentConversationLine line;
        line.CreateOn(nullptr);
        auto command = std::make_unique<CUndoCommandAddRemoveNodes>(u"Insert Line", e.edits, true);
        command->AddNode(CUndoCommandAddRemoveNodes::AppendTo(
            e.edits, parent, e.edits.NewLine(npc, std::move(line))));
        e.Run(std::move(command));
        state.PauseTiming();
        e.Undo();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_InsertLine)->Apply(Sizes);

void BM_DeleteBranch(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem branch = e.BranchOf(1000);
    state.counters["branch"] = double(e.tree.Items().SubtreeSize(branch));
    for (auto _ : state) {
        e.Run(CUndoCommandAddRemoveNodes::RemovalOf(u"Delete Line", e.edits, branch));
        state.PauseTiming();
        e.Undo();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_DeleteBranch)->Apply(Sizes);

void BM_UndoDeleteBranch(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem branch = e.BranchOf(1000);
    for (auto _ : state) {
        state.PauseTiming();
        e.Run(CUndoCommandAddRemoveNodes::RemovalOf(u"Delete Line", e.edits, branch));
        state.ResumeTiming();
        e.Undo();
    }
}
BENCHMARK(BM_UndoDeleteBranch)->Apply(Sizes);

// The branch goes to the end of the conversation's starts.
void BM_MoveBranch(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem branch = e.BranchOf(1000);
    TreeItem root = e.tree.RootItem();
    for (auto _ : state) {
        e.Run(std::make_unique<CUndoCommandMoveNode>(
            u"Drag Node", e.edits,
            CUndoMoveTriple{e.edits.IndexOf(branch), 0,
                            std::int32_t(e.tree.Items().ChildCount(root))}));
        state.PauseTiming();
        e.Undo();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_MoveBranch)->Apply(Sizes);

// The conversation's default speaker, which every line without a speaker of its own shows.
void BM_RelabelAll(benchmark::State& state) {
    Editor e(int(state.range(0)));
    int n = 0;
    for (auto _ : state) {
        std::u16string speaker = n++ % 2 ? u"innkeeper" : u"OWNER";
        e.Run(CUndoCommandModifyNode::ForField(
            u"Default NPC Speaker Change", e.edits, e.tree.RootItem(), u"DefaultNPCSpeaker",
            variant(11, std::u16string_view(speaker)), kChangeAll, false));
    }
    state.counters["rows"] = double(e.tree.Items().Size());
}
BENCHMARK(BM_RelabelAll)->Apply(Sizes);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
