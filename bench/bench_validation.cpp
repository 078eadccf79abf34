// Validation of a generated conversation against a module holding its plot, without a view: a
// full run (ambient flags and every line's rules), and what one text edit costs in validation
// (the edit's own line, and the error list gathered for the host). The argument is the number
// of lines.
#include <benchmark/benchmark.h>

#include <cstdlib>

#include "core/undo_support.h"
#include "model/conversation_edits.h"
#include "model/undo/undo_command_modify_node.h"
#include "support/conversation_generator.h"
#include "support/plot_module.h"

namespace {

using namespace dlg;

struct Open {
    ConversationTree tree;
    ConversationValidation validation{tree};
    ConversationEdits edits{tree};
    CTsUndoSupportBase stack{kTsDefaultUndoDepth};

    explicit Open(int lines) {
        std::u16string error;
        if (!tree.Build(ts::bench::GenerateConversation(lines).Get(), error)) std::abort();
        edits.Reindex();
        edits.SetValidation(&validation);
        edits.ValidateAll();
    }
};

void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(2000)->Arg(50000)->ArgName("lines")->Unit(benchmark::kMillisecond);
}

void BM_FullValidation(benchmark::State& state) {
    ts::bench::PlotModule module;
    Open open(int(state.range(0)));
    for (auto _ : state) {
        // Forget the results so that every line's state is stored anew, as after a load.
        state.PauseTiming();
        for (std::size_t i = 1; i < open.tree.NodeCount(); ++i) {
            ConversationNode* node = open.tree.NodeAt(std::int32_t(i));
            node->faults.clear();
            node->errorText.clear();
        }
        state.ResumeTiming();
        open.edits.ValidateAll();
    }
    state.counters["faulty"] = double(open.validation.FaultyCount());
}
BENCHMARK(BM_FullValidation)->Apply(Sizes);

// The effective ambient flags of every line, top-down: the tree is built with them, and a
// change of a conversation default recomputes them before validating.
void BM_AmbientFlags(benchmark::State& state) {
    Open open(int(state.range(0)));
    for (auto _ : state) open.tree.UpdateAmbient(open.tree.RootItem());
}
BENCHMARK(BM_AmbientFlags)->Apply(Sizes);

// A text edit that makes its line too long and the next that makes it short again: the command
// with its validation, and the error list as the window hands it to the host.
void BM_TextEditRevalidation(benchmark::State& state) {
    ts::bench::PlotModule module;
    Open open(int(state.range(0)));
    TreeItem item = open.edits.ItemAt(std::int32_t(open.tree.NodeCount() / 2));
    while (!open.tree.NodeOf(item) || open.tree.NodeOf(item)->isLink)
        item = open.tree.Items().NextInPreOrder(item);
    const std::u16string texts[2] = {std::u16string(300, u'x'), u"Short again."};
    int n = 0;
    std::size_t entries = 0;
    for (auto _ : state) {
        auto command = CUndoCommandModifyNode::ForField(
            u"Text Change", open.edits, item, u"Text",
            variant(11, std::u16string_view(texts[n++ % 2])), kChangeText);
        if (!open.stack.AddCommand(std::move(command), true)) std::abort();
        if (open.validation.TakeChanged()) entries = open.validation.Errors().size();
    }
    state.counters["entries"] = double(entries);
}
BENCHMARK(BM_TextEditRevalidation)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
