// Opening and writing back conversations of 2,000, 50,000 and 200,000 lines in the conversation
// editor, as the toolset does: the resource read from the module and decoded, then the editor's
// Load (tree, labels, colours) and Get content (the three-pass write-back).
// Prints lines per second, and the memory an open conversation holds per line.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <map>

#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "support/conversation_generator.h"
#include "support/tree_size.h"
#include "ts/resourcecodec.h"
#include "ts/resourcemanager.h"

namespace {

using EditorObject = CTsComObject<CTsWindowInterface<CConversationEditorWnd>>;

// One module per size, in the system's temporary folder, holding the generated conversation.
ITsResourceManager& Module(int lines) {
    static std::map<int, CTsComPtr<ITsResourceManager>> modules;
    auto& manager = modules[lines];
    if (!manager) {
        std::string path = ts::bench::FreshModulePath("bench_editor_" + std::to_string(lines));
        std::shared_ptr<ts::ResourceStore> store = ts::OpenSqliteStore(path, {.create = true});
        std::vector<std::uint8_t> bytes;
        ts::EncodeResource(ts::bench::GenerateConversation(lines).Get(), bytes);
        store->CreateResource(u"generated", u"dlg", bytes, u"bench");
        TsCreateResourceManager(store, u"bench", manager.Put());
    }
    return *manager;
}

CTsComPtr<EditorObject> NewEditor() {
    auto editor = EditorObject::Create();
    editor->CreateUIWindow(nullptr);
    editor->Attach(1, u"generated.dlg", 0);
    return editor;
}

// What an open conversation holds per line: the decoded resource (its 40-byte nodes come from
// slabs that an earlier open already put on the free list, so they are counted, not measured)
// and everything the heap gives the editor's tree besides.
double OpenBytesPerLine(int lines) {
    ITsResourceManager& module = Module(lines);
    auto open = [&](CTsComPtr<ITsResource>& resource, CTsComPtr<EditorObject>& editor) {
        module.OpenResource(u"generated", u"dlg", resource.Put());
        editor = NewEditor();
        editor->Load(resource.Get());
    };
    CTsComPtr<ITsResource> resource;
    CTsComPtr<EditorObject> editor;
    open(resource, editor);
    editor->CloseUIWindow();
    editor.Reset();
    resource.Reset();

    std::size_t before = mallinfo2().uordblks;
    open(resource, editor);
    std::size_t heap = mallinfo2().uordblks - before;
    CTsComPtr<ITsProperty> root;
    resource->GetRootProperty(root.Put());
    double perLine =
        static_cast<double>(heap + ts::bench::CountNodes(root.Get()) * ts::bench::kNodeBytes) /
        lines;
    editor->CloseUIWindow();
    return perLine;
}

void Figures(benchmark::State& state, int lines) {
    state.counters["lines/s"] =
        benchmark::Counter(lines, benchmark::Counter::kIsIterationInvariantRate);
}

void BM_LoadConversation(benchmark::State& state) {
    int lines = static_cast<int>(state.range(0));
    ITsResourceManager& module = Module(lines);
    double bytesPerLine = OpenBytesPerLine(lines);
    for (auto _ : state) {
        state.PauseTiming();
        CTsComPtr<EditorObject> editor = NewEditor();
        CTsComPtr<ITsResource> resource;
        state.ResumeTiming();
        if (FAILED(module.OpenResource(u"generated", u"dlg", resource.Put())) ||
            editor->Load(resource.Get()) != S_OK)
            state.SkipWithError("the conversation does not load");
        state.PauseTiming();  // closing is not part of opening
        editor->CloseUIWindow();
        editor.Reset();
        resource.Reset();
        state.ResumeTiming();
    }
    Figures(state, lines);
    state.counters["bytes/line"] = bytesPerLine;
}

void BM_WriteBack(benchmark::State& state) {
    int lines = static_cast<int>(state.range(0));
    CTsComPtr<ITsResource> resource;
    Module(lines).OpenResource(u"generated", u"dlg", resource.Put());
    CTsComPtr<EditorObject> editor = NewEditor();
    if (editor->Load(resource.Get()) != S_OK) state.SkipWithError("the conversation does not load");
    for (auto _ : state)
        if (editor->GetContent(resource.Get()) != S_OK)
            state.SkipWithError("the write-back failed");
    Figures(state, lines);
    editor->CloseUIWindow();
}

void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(2000)->Arg(50000)->Arg(200000)->Unit(benchmark::kMillisecond)->MinTime(1.0);
}

BENCHMARK(BM_LoadConversation)->Apply(Sizes);
BENCHMARK(BM_WriteBack)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
