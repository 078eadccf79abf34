// The command-line host: batch work on a module without a screen.
#include <cstdio>
#include <string_view>

#include "cli.h"
#include "plugins_command.h"
#include "ts/format.h"
#include "ts/framework.h"
#include "ts/hostui.h"
#include "ts/report.h"
#include "ts/text.h"

namespace {

int PrintInfo() {
    std::printf("Mistreach Toolset command-line host %s\n", ts::FrameworkVersion());
    std::printf("Framework services:\n");
    for (const auto& s : ts::FrameworkServices())
        std::printf("  %-12s %s\n", s.name.c_str(), s.description.c_str());
    std::printf("Diagnostic log: %s\n", ts::DiagnosticLogPath().c_str());
    return cli::kOk;
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
        return cli::kOk;
    }
    if (command == "--help" || command == "-h") return cli::Usage(stdout);
    if (command == "info") return PrintInfo();
    if (command == "plugins" && argc <= 3) return RunPluginsCommand(argc == 3 ? argv[2] : "");
    if (command == "module") {
        if (argc < 3 || std::string_view(argv[2]) != "create") {
            std::fprintf(stderr,
                         "toolset-cli: the module command is \"module create SOURCES MODULE\"\n");
            return cli::kUsage;
        }
        return cli::ModuleCreate(cli::Split(argc, argv, 3));
    }
    auto args = cli::Split(argc, argv, 2);
    if (command == "list") return cli::List(args);
    if (command == "export") return cli::Export(args);
    if (command == "import") return cli::Import(args);
    if (command == "check") return cli::Check(args);
    if (command == "report") return cli::Report(args);
    if (command == "validate") return cli::Validate(args);
    cli::Fail(ts::Format(u"unknown command \"%ls\"", ts::MessageText(command)), cli::kUsage);
    return cli::Usage(stderr);
}
