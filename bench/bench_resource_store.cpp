// Encoding, decoding, saving and reading conversations of 2,000, 50,000 and 200,000 lines.
// Prints lines per second and bytes per line (encoded, and in memory once decoded).
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <map>

#include "support/conversation_generator.h"
#include "support/tree_size.h"
#include "ts/resourcecodec.h"
#include "ts/resourcestore.h"

namespace {

// Each size is generated once and kept for every benchmark that uses it.
const CTsComPtr<ITsProperty>& Conversation(int lines) {
    static std::map<int, CTsComPtr<ITsProperty>> made;
    auto& tree = made[lines];
    if (!tree) tree = ts::bench::GenerateConversation(lines);
    return tree;
}

const std::vector<std::uint8_t>& Encoded(int lines) {
    static std::map<int, std::vector<std::uint8_t>> made;
    auto& bytes = made[lines];
    if (bytes.empty()) ts::EncodeResource(Conversation(lines).Get(), bytes);
    return bytes;
}

void Figures(benchmark::State& state, int lines, std::size_t bytes) {
    state.counters["lines/s"] =
        benchmark::Counter(lines, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["bytes/line"] = static_cast<double>(bytes) / lines;
}

void BM_Encode(benchmark::State& state) {
    int lines = static_cast<int>(state.range(0));
    const auto& tree = Conversation(lines);
    std::vector<std::uint8_t> bytes;
    for (auto _ : state) {
        ts::EncodeResource(tree.Get(), bytes);
        benchmark::DoNotOptimize(bytes.data());
    }
    Figures(state, lines, bytes.size());
}

// The memory a decoded tree holds: its nodes (40-byte blocks carved from slabs) and what they
// allocate besides (texts, child arrays). A first decode fills the slabs' free lists, so that the
// measured one allocates only the latter from the heap.
double TreeBytesPerLine(int lines) {
    const auto& bytes = Encoded(lines);
    CTsComPtr<ITsProperty> root;
    ts::DecodeResource(bytes, root);
    root.Reset();
    std::size_t before = mallinfo2().uordblks;
    ts::DecodeResource(bytes, root);
    std::size_t heap = mallinfo2().uordblks - before;
    return static_cast<double>(heap + ts::bench::CountNodes(root.Get()) * ts::bench::kNodeBytes) /
           lines;
}

void BM_Decode(benchmark::State& state) {
    int lines = static_cast<int>(state.range(0));
    const auto& bytes = Encoded(lines);
    double treeBytes = TreeBytesPerLine(lines);
    for (auto _ : state) {
        CTsComPtr<ITsProperty> root;
        if (!ts::DecodeResource(bytes, root))
            state.SkipWithError("the conversation does not decode");
        state.PauseTiming();  // freeing the tree is not part of reading it
        root.Reset();
        state.ResumeTiming();
    }
    Figures(state, lines, bytes.size());
    state.counters["tree bytes/line"] = treeBytes;
}

// A fresh module per size, in the system's temporary folder.
ts::ResourceStore& Store(int lines) {
    static std::map<int, std::unique_ptr<ts::ResourceStore>> stores;
    auto& store = stores[lines];
    if (!store) {
        std::string path = ts::bench::FreshModulePath("bench_store_" + std::to_string(lines));
        store = ts::OpenSqliteStore(path, {.create = true});
        store->CreateResource(u"generated", u"dlg", Encoded(lines), u"bench");
    }
    return *store;
}

void BM_StoreSave(benchmark::State& state) {
    int lines = static_cast<int>(state.range(0));
    const auto& bytes = Encoded(lines);
    ts::ResourceStore& store = Store(lines);
    for (auto _ : state)
        if (!store.SaveResource(u"generated", u"dlg", bytes, ts::kAnyVersion, u"bench"))
            state.SkipWithError("the save failed");
    Figures(state, lines, bytes.size());
}

void BM_StoreRead(benchmark::State& state) {
    int lines = static_cast<int>(state.range(0));
    ts::ResourceStore& store = Store(lines);
    std::vector<std::uint8_t> bytes;
    for (auto _ : state)
        if (!store.ReadResource(u"generated", u"dlg", bytes))
            state.SkipWithError("the read failed");
    Figures(state, lines, bytes.size());
}

// Reading a conversation as the editor does: from the store, then decoded.
void BM_StoreReadAndDecode(benchmark::State& state) {
    int lines = static_cast<int>(state.range(0));
    ts::ResourceStore& store = Store(lines);
    std::vector<std::uint8_t> bytes;
    for (auto _ : state) {
        CTsComPtr<ITsProperty> root;
        if (!store.ReadResource(u"generated", u"dlg", bytes) || !ts::DecodeResource(bytes, root))
            state.SkipWithError("the read failed");
        state.PauseTiming();
        root.Reset();
        state.ResumeTiming();
    }
    Figures(state, lines, bytes.size());
}

void Sizes(benchmark::internal::Benchmark* b) {
    // At least a second each, so that the first round's page faults do not stand for the whole.
    b->Arg(2000)->Arg(50000)->Arg(200000)->Unit(benchmark::kMillisecond)->MinTime(1.0);
}

BENCHMARK(BM_Encode)->Apply(Sizes);
BENCHMARK(BM_Decode)->Apply(Sizes);
BENCHMARK(BM_StoreSave)->Apply(Sizes);
BENCHMARK(BM_StoreRead)->Apply(Sizes);
BENCHMARK(BM_StoreReadAndDecode)->Apply(Sizes);

}  // namespace

BENCHMARK_MAIN();
