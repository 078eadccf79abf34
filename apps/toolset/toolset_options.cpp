#include "toolset_options.h"

#include <string_view>

namespace toolset {

bool ParseToolsetOptions(int argc, char** argv, ToolsetOptions& options, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        std::string_view arg = argv[i];
        auto value = [&](std::string& out) {
            if (i + 1 >= argc || std::string_view(argv[i + 1]).starts_with("--")) {
                error = std::string(arg) + " needs a value";
                return false;
            }
            out = argv[++i];
            return true;
        };
        if (arg == "--module") {
            if (!value(options.module)) return false;
        } else if (arg == "--open") {
            if (!value(options.open)) return false;
        } else if (arg == "--screenshot") {
            if (!value(options.screenshot)) return false;
        } else if (arg == "--expand-all") {
            options.expandAll = true;
        } else if (arg == "--help" || arg == "-h") {
            options.help = true;
        } else {
            error = "unknown argument: " + std::string(arg);
            return false;
        }
    }
    if (options.module.empty() && (!options.open.empty() || options.expandAll)) {
        error = "--open and --expand-all need --module";
        return false;
    }
    return true;
}

}  // namespace toolset
