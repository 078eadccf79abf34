// Editing a generated conversation through undo commands, with the tree view on screen
// (offscreen) and every row expanded: the time from the command to the view having laid out and
// painted the change. The argument is the number of lines.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <map>

#include <QVBoxLayout>

#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "model/editing/tree_edits.h"
#include "model/panes/text_dlg.h"
#include "model/tree_view_commands.h"
#include "model/undo/undo_command_add_remove_nodes.h"
#include "model/undo/undo_command_modify_node.h"
#include "model/undo/undo_command_move_node.h"
#include "support/conversation_generator.h"
#include "support/plot_module.h"
#include "ts/comobject.h"
#include "ts/hostcomponents.h"
#include "ts/hoststring.h"
#include "ts/resourcemanager.h"
#include "ts/searchresults.h"
#include "ts/text.h"
#include "views/conversation_editor_view.h"

namespace {

using namespace dlg;

const CTsComPtr<ITsProperty>& Conversation(int lines) {
    static std::map<int, CTsComPtr<ITsProperty>> made;
    auto& tree = made[lines];
    if (!tree) tree = ts::bench::GenerateConversation(lines);
    return tree;
}

// The toolset's resource object, holding the generated conversation.
class Resource : public CTsComObjectRoot<ITsResource> {
public:
    explicit Resource(ITsProperty* root) : root_(root) {}
    HRESULT GetName(char16_t** name) override {
        *name = TsAllocString(u"generated.dlg");
        return S_OK;
    }
    HRESULT GetRootProperty(ITsProperty** root) override {
        *root = root_.Get();
        (*root)->AddRef();
        return S_OK;
    }
    HRESULT SetRootProperty(ITsProperty* root) override {
        root_ = CTsComPtr<ITsProperty>(root);
        return S_OK;
    }

private:
    CTsComPtr<ITsProperty> root_;
};

// A search results window that only counts, so that Find Links is measured, not a log.
class SearchResults : public CTsComObjectRoot<ITsSearchResults> {
public:
    HRESULT Clear() override { return S_OK; }
    HRESULT AddResult(std::u16string_view, std::u16string_view, std::u16string_view) override {
        ++count;
        return S_OK;
    }
    HRESULT SetStatus(std::u16string_view) override { return S_OK; }
    int count = 0;
};

using EditorObject = CTsComObject<CTsWindowInterface<CConversationEditorWnd>>;

// The conversation editor as the toolset runs it: its window with the tree view in a frame on
// screen (offscreen), every row expanded, validating against a module that holds the plot.
struct Editor {
    ts::bench::PlotModule module;
    QWidget frame;
    CTsComPtr<EditorObject> object = EditorObject::Create();
    CConversationEditorWnd* window = nullptr;

    explicit Editor(int lines) {
        InstallQtEditorView();
        frame.setLayout(new QVBoxLayout);
        frame.resize(1000, 700);
        if (FAILED(object->CreateUIWindow(&frame)) ||
            FAILED(object->Attach(1, u"generated.dlg", 0)))
            std::abort();
        auto resource = CTsComObject<Resource>::Create(Conversation(lines).Get());
        if (object->Load(resource.Get()) != S_OK) std::abort();
        window = object->GetWindow();
        RunExpandCommand(Tree().Items(), ExpandCommand::ExpandAll);
        frame.show();
        Settle();
    }
    ~Editor() { object->CloseUIWindow(); }
    // Runs what the view left for its event loop: delayed layouts, the column fit, painting.
    static void Settle() { QApplication::processEvents(); }

    ConversationTree& Tree() { return window->Document().Tree(); }
    ConversationEdits& Edits() { return window->Document().Edits(); }
    TreeItem Line(std::int32_t treeIndex) { return Edits().ItemAt(treeIndex); }
    // The full NPC line whose branch is nearest to `lines` lines.
    TreeItem BranchOf(std::size_t lines) {
        const ItemTree& items = Tree().Items();
        TreeItem best = kNoItem;
        std::size_t bestDistance = SIZE_MAX;
        for (TreeItem i = items.GetChild(Tree().RootItem()); i != kNoItem;
             i = items.NextInPreOrder(i)) {
            const ConversationNode* node = Tree().NodeOf(i);
            if (!node->isNPC || node->isLink) continue;
            std::size_t size = items.SubtreeSize(i);
            std::size_t distance = size > lines ? size - lines : lines - size;
            if (distance < bestDistance) best = i, bestDistance = distance;
        }
        return best;
    }
    // A line near the middle without children and without links to it, and one of the other
    // kind to put it under.
    TreeItem Leaf(bool npc) {
        const ItemTree& items = Tree().Items();
        for (TreeItem i = Line(std::int32_t(Tree().NodeCount() / 2)); i != kNoItem;
             i = items.NextInPreOrder(i)) {
            const ConversationNode* node = Tree().NodeOf(i);
            if (node->isNPC == npc && !node->isLink && !items.HasChildren(i) &&
                Edits().Links().LinksTo(*node).empty())
                return i;
        }
        std::abort();
    }
    TreeItem LineOfKind(bool npc, std::int32_t from) {
        const ItemTree& items = Tree().Items();
        for (TreeItem i = Line(from); i != kNoItem; i = items.NextInPreOrder(i))
            if (Tree().NodeOf(i)->isNPC == npc && !Tree().NodeOf(i)->isLink) return i;
        std::abort();
    }
    void Select(TreeItem item) { Tree().Items().Select(item); }
    void Run(std::unique_ptr<CTsUndoCommand> command) {
        if (!window->Perform(std::move(command))) std::abort();
        Settle();
    }
    template <class Operation>
    void Do(Operation operation) {
        if (!operation()) std::abort();
        Settle();
    }
    void Undo() {
        if (!window->Undo()) std::abort();
        Settle();
    }
    // Times `operation` (an edit that returns whether it was made), then undoes it untimed.
    template <class Operation>
    void TimeThenUndo(benchmark::State& state, Operation operation) {
        for (auto _ : state) {
            Do(operation);
            state.PauseTiming();
            Undo();
            state.ResumeTiming();
        }
    }
};

void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(2000)->Arg(50000)->ArgName("lines")->Unit(benchmark::kMillisecond);
}

std::unique_ptr<CTsUndoCommand> TextChange(Editor& e, TreeItem item, int n) {
    std::u16string text = u"Edited line " + std::u16string(1, char16_t(u'A' + n % 26));
    return CUndoCommandModifyNode::ForField(u"Text Change", e.Edits(), item, u"Text",
                                            variant(11, std::u16string_view(text)), kChangeText);
}

// A line's text, which its label shows (and the labels of the links to it).
void BM_TextChange(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem item = e.Line(std::int32_t(e.Tree().NodeCount() / 2));
    int n = 0;
    for (auto _ : state) e.Run(TextChange(e, item, n++));
}
BENCHMARK(BM_TextChange)->Apply(Sizes);

void BM_UndoTextChange(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem item = e.Line(std::int32_t(e.Tree().NodeCount() / 2));
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
    TreeItem parent = e.Line(std::int32_t(e.Tree().NodeCount() / 2));
    while (e.Tree().NodeOf(parent)->isLink) parent = e.Tree().Items().GetParent(parent);
    bool npc = !e.Tree().NodeOf(parent)->isNPC;
    e.TimeThenUndo(state, [&] {
        CAgentConversationLine line;
        line.CreateOn(nullptr);
        auto command =
            std::make_unique<CUndoCommandAddRemoveNodes>(u"Insert Line", e.Edits(), true);
        command->AddNode(CUndoCommandAddRemoveNodes::AppendTo(
            e.Edits(), parent, e.Edits().NewLine(npc, std::move(line))));
        return e.window->Perform(std::move(command));
    });
}
BENCHMARK(BM_InsertLine)->Apply(Sizes);

void BM_DeleteBranch(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem branch = e.BranchOf(1000);
    state.counters["branch"] = double(e.Tree().Items().SubtreeSize(branch));
    e.TimeThenUndo(state, [&] {
        return e.window->Perform(
            CUndoCommandAddRemoveNodes::RemovalOf(u"Delete Line", e.Edits(), branch));
    });
}
BENCHMARK(BM_DeleteBranch)->Apply(Sizes);

void BM_UndoDeleteBranch(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem branch = e.BranchOf(1000);
    for (auto _ : state) {
        state.PauseTiming();
        e.Run(CUndoCommandAddRemoveNodes::RemovalOf(u"Delete Line", e.Edits(), branch));
        state.ResumeTiming();
        e.Undo();
    }
}
BENCHMARK(BM_UndoDeleteBranch)->Apply(Sizes);

// The branch goes to the end of the conversation's starts.
void BM_MoveBranch(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem branch = e.BranchOf(1000);
    TreeItem root = e.Tree().RootItem();
    e.TimeThenUndo(state, [&] {
        return e.window->Perform(std::make_unique<CUndoCommandMoveNode>(
            u"Drag Node", e.Edits(),
            CUndoMoveTriple{e.Edits().IndexOf(branch), 0,
                            std::int32_t(e.Tree().Items().ChildCount(root))}));
    });
}
BENCHMARK(BM_MoveBranch)->Apply(Sizes);

// The conversation's default speaker, which every line without a speaker of its own shows.
void BM_RelabelAll(benchmark::State& state) {
    Editor e(int(state.range(0)));
    int n = 0;
    for (auto _ : state) {
        std::u16string speaker = n++ % 2 ? u"innkeeper" : u"OWNER";
        e.Run(CUndoCommandModifyNode::ForField(
            u"Default NPC Speaker Change", e.Edits(), e.Tree().RootItem(), u"DefaultNPCSpeaker",
            variant(11, std::u16string_view(speaker)), kChangeAll, false));
    }
    state.counters["rows"] = double(e.Tree().Items().Size());
}
BENCHMARK(BM_RelabelAll)->Apply(Sizes);

// One line without links to it, with the linked-lines check and the voice-over lookup.
void BM_DeleteLine(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem line = e.Leaf(false);
    e.TimeThenUndo(state, [&] {
        e.Select(line);
        return DeleteSelection(*e.window);
    });
}
BENCHMARK(BM_DeleteLine)->Apply(Sizes);

// A copied line pasted under a line elsewhere (copy made once, as a writer pastes many times).
void BM_PasteLine(benchmark::State& state) {
    Editor e(int(state.range(0)));
    e.Select(e.Leaf(false));
    CopySelection(*e.window);
    TreeItem target = e.LineOfKind(true, 10);
    e.TimeThenUndo(state, [&] {
        e.Select(target);
        return PasteClipboard(*e.window);
    });
}
BENCHMARK(BM_PasteLine)->Apply(Sizes);

void BM_PasteBranch5000(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem branch = e.BranchOf(5000);
    state.counters["branch"] = double(e.Tree().Items().SubtreeSize(branch));
    e.Select(branch);
    CopySelection(*e.window);
    TreeItem target = e.Tree().RootItem();
    e.TimeThenUndo(state, [&] {
        e.Select(target);
        return PasteClipboard(*e.window);
    });
}
BENCHMARK(BM_PasteBranch5000)->Arg(50000)->ArgName("lines")->Unit(benchmark::kMillisecond);

// A line dragged under a line elsewhere.
void BM_MoveLine(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem line = e.Leaf(false);
    TreeItem target = e.LineOfKind(true, 10);
    e.TimeThenUndo(state, [&] { return Drop(*e.window, e.Tree(), line, target, false); });
}
BENCHMARK(BM_MoveLine)->Apply(Sizes);

// The links to the line that has the most.
void BM_FindLinks(benchmark::State& state) {
    Editor e(int(state.range(0)));
    auto results = CTsComObject<SearchResults>::Create();
    TsRegisterHostComponent(kTsSearchResultsName, results.Get());
    TreeItem most = kNoItem;
    std::size_t count = 0;
    for (std::int32_t i = 1; i < std::int32_t(e.Tree().NodeCount()); ++i) {
        ConversationNode* node = e.Tree().NodeAt(i);
        if (!node->isLink && e.Edits().Links().LinksTo(*node).size() > count)
            most = node->treeItem, count = e.Edits().Links().LinksTo(*node).size();
    }
    e.Select(most);
    for (auto _ : state) benchmark::DoNotOptimize(FindLinks(*e.window));
    state.counters["links"] = double(count);
    TsRegisterHostComponent(kTsSearchResultsName, nullptr);
}
BENCHMARK(BM_FindLinks)->Apply(Sizes);

// The pane host with the Dialogue tab on screen: another line selected, its controls filled.
void BM_SelectLineWithPanes(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem first = e.LineOfKind(true, std::int32_t(e.Tree().NodeCount() / 2));
    TreeItem second = e.LineOfKind(true, e.Edits().IndexOf(first) + 1);
    e.Select(first);
    e.window->Panes().SelectTab(kTabDialogue);
    e.Settle();
    int n = 0;
    for (auto _ : state) {
        e.Select(n++ % 2 ? first : second);
        e.Settle();
    }
}
BENCHMARK(BM_SelectLineWithPanes)->Apply(Sizes);

// A text typed in the Dialogue tab and applied: the voice-over check, the string service, the
// "Text Change" group, revalidation, the tree's label and the pane shown again.
void BM_TextChangeInPane(benchmark::State& state) {
    Editor e(int(state.range(0)));
    TreeItem item = e.LineOfKind(true, std::int32_t(e.Tree().NodeCount() / 2));
    e.Select(item);
    e.window->Panes().SelectTab(kTabDialogue);
    auto& pane = *static_cast<CTextDlg*>(e.window->Panes().Pane(kTabDialogue));
    // The module knows the line's string id, as it knows the ids of every stored line.
    std::int32_t id = -1;
    e.Tree().NodeOf(item)->line.GetStringID(id);
    CTsComPtr<ITsResourceManager> manager;
    if (FAILED(TsGetHostComponent(kTsResourceManagerName, ITsResourceManager::kIID,
                                  manager.PutVoid())) ||
        FAILED(manager->SetString(id, 0, u"generated"))) {
        state.SkipWithError("the module does not take the line's string");
        return;
    }
    e.Settle();
    // The editor edits the generated conversation in place, and each run of the benchmark opens
    // it again: the texts go on counting across runs, so that every one is a change.
    static int n = 0;
    for (auto _ : state) {
        pane.Controls().text = u"Edited line " + ts::Utf8ToUtf16(std::to_string(n++));
        if (!pane.Apply(CTextDlg::kText, true)) {
            state.SkipWithError("the text was not applied");
            break;
        }
        e.Settle();
    }
}
BENCHMARK(BM_TextChangeInPane)->Apply(Sizes);

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
