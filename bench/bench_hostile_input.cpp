// Reading input built to be expensive: a CSV header of 10,000 to 1,000,000 columns, a JSON object
// of as many keys, and conversations whose lines are each owned twice, 20 and 1,000 levels deep
// (opened in the conversation tree, which refuses them). Every figure should grow in step with
// the input: items per second stays flat across the sizes.
#include <benchmark/benchmark.h>

#include <string>

#include "agents/resourceschemas.h"
#include "model/conversation_tree.h"
#include "support/doubling_chain.h"
#include "ts/gametable.h"
#include "ts/resourcejson.h"

namespace {

void Figures(benchmark::State& state, std::int64_t items) {
    state.counters["items/s"] = benchmark::Counter(static_cast<double>(items),
                                                   benchmark::Counter::kIsIterationInvariantRate);
}

void BM_CsvWideHeader(benchmark::State& state) {
    std::string csv = "ID";
    for (std::int64_t c = 1; c < state.range(0); ++c) csv += ",Column" + std::to_string(c);
    csv += "\n";
    for (auto _ : state) {
        ts::GameTable table;
        if (!ts::GameTable::FromCsv(u"wide", csv, table)) state.SkipWithError("refused");
    }
    Figures(state, state.range(0));
}
BENCHMARK(BM_CsvWideHeader)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_JsonManyKeys(benchmark::State& state) {
    std::string json =
        R"({"resource": "keys", "type": "dlg", "root": {"name": "Root", "type": "list")";
    for (std::int64_t k = 0; k < state.range(0); ++k) json += ",\"k" + std::to_string(k) + "\": 0";
    json += "}}";
    for (auto _ : state) {
        ts::ResourceDocument doc;
        std::u16string error;
        // Refused at the first unknown key, after the whole object was read and checked.
        if (ts::ReadResourceJson(json, doc, &error)) state.SkipWithError("read");
    }
    Figures(state, state.range(0));
}
BENCHMARK(BM_JsonManyKeys)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_DoublyOwnedChain(benchmark::State& state) {
    ts::ResourceDocument doc;
    std::u16string error;
    if (!ts::ReadResourceJson(ts::test::DoublingChain("chain", state.range(0)), doc, &error,
                              ts::ResourceSchemas())) {
        state.SkipWithError("the chain cannot be read");
        return;
    }
    for (auto _ : state) {
        dlg::ConversationTree tree;
        if (tree.Build(doc.root.Get(), error)) state.SkipWithError("opened");
    }
    Figures(state, state.range(0) * 3);
}
BENCHMARK(BM_DoublyOwnedChain)->Arg(20)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
