// `toolset-cli validate` over a module of generated conversations, as a build pipeline runs it:
// the program started, every conversation opened in the editor and validated, the faults
// printed. The argument is the number of conversations (2,000 lines each).
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

#include "support/conversation_generator.h"
#include "support/plot_module.h"

namespace {

void BM_ValidateModule(benchmark::State& state) {
    ts::bench::PlotModule module;
    const int conversations = int(state.range(0));
    for (int i = 0; i < conversations; ++i) {
        std::string digits = std::to_string(i);
        CTsComPtr<ITsResource> created;
        if (FAILED(module.Manager().CreateResource(
                u"generated_" + std::u16string(digits.begin(), digits.end()), u"dlg",
                ts::bench::GenerateConversation(2000, std::uint32_t(i + 1)).Get(), created.Put())))
            std::abort();
    }
    // The generated texts break the length rules here and there, so faults are expected: exit 1.
    std::string command =
        std::string(TS_CLI_PATH) + " validate '" + module.Path() + "' > /dev/null 2>&1";
    for (auto _ : state) {
        int status = std::system(command.c_str());
        if (!WIFEXITED(status) || WEXITSTATUS(status) > 1) std::abort();
    }
    state.counters["conversations"] = conversations;
}
BENCHMARK(BM_ValidateModule)
    ->Arg(100)
    ->ArgName("conversations")
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
