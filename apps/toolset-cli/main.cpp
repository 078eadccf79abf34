// The command-line host: batch work on a module without a screen.
#include <cstdio>
#include <cstring>
#include <string_view>

#include "ts/framework.h"
#include "ts/report.h"

namespace {

int PrintUsage(std::FILE* to) {
    std::fputs(
        "Usage: toolset-cli [--version | --help | info]\n"
        "  info       print the framework's version and the services it offers\n"
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
    if (argc < 2) return PrintInfo();
    std::string_view command = argv[1];
    if (command == "--version") {
        std::printf("%s\n", ts::FrameworkVersion());
        return 0;
    }
    if (command == "--help" || command == "-h") return PrintUsage(stdout);
    if (command == "info") return PrintInfo();
    std::fprintf(stderr, "toolset-cli: unknown command \"%s\"\n", argv[1]);
    return PrintUsage(stderr);
}
