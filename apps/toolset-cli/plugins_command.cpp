#include "plugins_command.h"

#include <cstdio>
#include <filesystem>

#include "ts/pluginloader.h"
#include "ts/text.h"

int RunPluginsCommand(const std::string& folderArgument) {
    std::string folder = folderArgument.empty() ? ts::DefaultPluginFolder() : folderArgument;
    std::error_code ec;
    if (!std::filesystem::is_directory(folder, ec)) {
        std::fprintf(stderr, "toolset-cli: the plugins folder \"%s\" does not exist\n",
                     folder.c_str());
        return 1;
    }
    ts::PluginLoader loader;
    loader.Scan(folder);
    loader.LoadAll();

    std::printf("Plugins in %s:\n", folder.c_str());
    if (loader.Plugins().empty()) std::printf("  (none)\n");
    bool allLoaded = true;
    for (const auto& plugin : loader.Plugins()) {
        if (plugin->HasError()) {
            allLoaded = false;
            std::printf("  %s: skipped: %s\n", plugin->FileName().c_str(),
                        ts::Utf16ToUtf8(plugin->Error()).c_str());
            continue;
        }
        std::printf("  %s: %s\n", plugin->FileName().c_str(), ts::PluginStateName(plugin->State()));
        for (const auto& c : plugin->Definition().classes) {
            std::string line =
                "    " + ts::Utf16ToUtf8(c.clsidText) + "  " + ts::Utf16ToUtf8(c.description);
            if (auto flags = c.Attribute(u"tsPlugin.flags"); flags && !flags->empty())
                line += "  [" + ts::Utf16ToUtf8(*flags) + "]";
            for (const auto& pattern : c.patterns) line += "  \"" + ts::Utf16ToUtf8(pattern) + "\"";
            std::printf("%s\n", line.c_str());
        }
    }
    return allLoaded ? 0 : 1;
}
