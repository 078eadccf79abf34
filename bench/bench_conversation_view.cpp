// The conversation editor's view over a generated 50,000-line conversation, offscreen: building
// the tree with the view following it, expanding and collapsing everything, and scrolling a
// page of the fully expanded tree (with painting). Prints rows and rows per second.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QScrollBar>
#include <QTabWidget>

#include "model/conversation_tree.h"
#include "model/tree_view_commands.h"
#include "support/conversation_generator.h"
#include "views/conversation_editor_view.h"

namespace {

constexpr int kLines = 50000;

const CTsComPtr<ITsProperty>& Conversation() {
    static CTsComPtr<ITsProperty> tree = ts::bench::GenerateConversation(kLines);
    return tree;
}

// A tree with its view on screen (offscreen), built once per benchmark.
struct Shown {
    dlg::ConversationTree tree;
    std::unique_ptr<dlg::ConversationEditorView> view;

    explicit Shown(bool withView = true) {
        if (withView) {
            view = std::make_unique<dlg::ConversationEditorView>(tree.Items());
            view->resize(1000, 700);
            view->show();
        }
        Build();
    }
    void Build() {
        std::u16string error;
        if (!tree.Build(Conversation().Get(), error)) std::abort();
        tree.Items().Expand(tree.RootItem(), true);
        Settle();
    }
    // Runs what the view left for its event loop (delayed layouts, paints).
    static void Settle() { QApplication::processEvents(); }
};

void Rows(benchmark::State& state, std::size_t rows) {
    state.counters["rows"] = static_cast<double>(rows);
    state.counters["rows/s"] = benchmark::Counter(static_cast<double>(rows),
                                                  benchmark::Counter::kIsIterationInvariantRate);
}

// Building the tree from the resource, without a view and with one following it.
void BM_LoadTree(benchmark::State& state) {
    Shown shown(state.range(0) != 0);
    for (auto _ : state) shown.Build();
    Rows(state, shown.tree.Items().Size());
}
BENCHMARK(BM_LoadTree)->Arg(0)->Arg(1)->ArgNames({"view"})->Unit(benchmark::kMillisecond);

void BM_ExpandAllCollapseAll(benchmark::State& state) {
    Shown shown;
    dlg::ItemTree& items = shown.tree.Items();
    for (auto _ : state) {
        dlg::RunExpandCommand(items, dlg::ExpandCommand::ExpandAll);
        Shown::Settle();
        dlg::RunExpandCommand(items, dlg::ExpandCommand::CollapseAll);
        Shown::Settle();
    }
    Rows(state, items.Size());
}
BENCHMARK(BM_ExpandAllCollapseAll)->Unit(benchmark::kMillisecond);

void BM_ExpandAll(benchmark::State& state) {
    Shown shown;
    dlg::ItemTree& items = shown.tree.Items();
    for (auto _ : state) {
        state.PauseTiming();
        dlg::RunExpandCommand(items, dlg::ExpandCommand::CollapseAll);
        Shown::Settle();
        state.ResumeTiming();
        dlg::RunExpandCommand(items, dlg::ExpandCommand::ExpandAll);
        Shown::Settle();
    }
    Rows(state, items.Size());
}
BENCHMARK(BM_ExpandAll)->Unit(benchmark::kMillisecond);

// One page down the fully expanded tree, painted; from the top again at the end.
void BM_ScrollPage(benchmark::State& state) {
    Shown shown;
    dlg::RunExpandCommand(shown.tree.Items(), dlg::ExpandCommand::ExpandAll);
    Shown::Settle();
    QTreeView& tree = shown.view->Tree();
    QScrollBar* bar = tree.verticalScrollBar();
    std::size_t pages = 0;
    for (auto _ : state) {
        int next = bar->value() + bar->pageStep();
        bar->setValue(next > bar->maximum() ? 0 : next);
        tree.viewport()->repaint();
        ++pages;
    }
    state.counters["pages"] = static_cast<double>(pages);
    state.counters["rows/page"] = bar->pageStep();
    state.counters["scroll range"] = bar->maximum();
}
BENCHMARK(BM_ScrollPage)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
