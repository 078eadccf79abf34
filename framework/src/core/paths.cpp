#include "ts/paths.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace ts {

namespace {
std::string XdgFolder(const char* variable, const char* fallbackUnderHome) {
    if (const char* v = std::getenv(variable); v && *v == '/') return v;
    const char* home = std::getenv("HOME");
    std::string base = home && *home ? home : "/tmp";
    return base + "/" + fallbackUnderHome;
}
constexpr const char* kToolsetKey = "/Halvorn/Mistreach/Toolset";
}  // namespace

std::string ToolsetDataFolder() { return XdgFolder("XDG_DATA_HOME", ".local/share") + kToolsetKey; }

std::string ToolsetConfigFolder() { return XdgFolder("XDG_CONFIG_HOME", ".config") + kToolsetKey; }

std::string HostExecutableName() {
    std::error_code ec;
    auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    std::string name = ec ? std::string("toolset") : exe.stem().string();
    return name.empty() ? std::string("toolset") : name;
}

bool EnsureFolder(const std::string& path) {
    std::error_code ec;
    std::filesystem::create_directories(path, ec);
    return std::filesystem::is_directory(path, ec);
}

}  // namespace ts
