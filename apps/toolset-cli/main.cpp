// The command-line host: batch work on a module without a screen.
#include <cstdio>
#include <cstring>
#include <string_view>

#include "plugins_command.h"
#include "ts/framework.h"
#include "ts/hostui.h"
#include "ts/report.h"

namespace {

int PrintUsage(std::FILE* to) {
    std::fputs(
        "Usage: toolset-cli [--version | --help | info | plugins [folder]]\n"
        "  info       print the framework's version and the services it offers\n"
        "  plugins    load the plugins of a folder (default: the host's) and list their classes\n"
        "  --version  print the version\n",
        to);
    return to == stdout ? 0 : 2;
}

int PrintInfo() {
    std::printf("Mistreach Toolset command-line host %s\n", ts::FrameworkVersion());
    std::printf("Framework services:\n");
    for (const auto& s : ts::FrameworkServices())
        std::printf("  %-12s %s\n", s.name.c_str(), s.description.c_str());
    std::printf("Diagnostic log: %s\n", ts::DiagnosticLogPath().c_str());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    // Messages meant for the user go to the terminal; batch work never waits for an answer.
    auto console = ts::MakeConsoleHostUi(stderr);
    ts::SetHostUi(console.get());
    if (argc < 2) return PrintInfo();
    std::string_view command = argv[1];
    if (command == "--version") {
        std::printf("%s\n", ts::FrameworkVersion());
        return 0;
    }
    if (command == "--help" || command == "-h") return PrintUsage(stdout);
    if (command == "info") return PrintInfo();
    if (command == "plugins" && argc <= 3) return RunPluginsCommand(argc == 3 ? argv[2] : "");
    std::fprintf(stderr, "toolset-cli: unknown command \"%s\"\n", argv[1]);
    return PrintUsage(stderr);
}
