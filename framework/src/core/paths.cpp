#include "ts/paths.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>
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

namespace ts {

namespace {
// The value of XDG_DOCUMENTS_DIR in a user-dirs.dirs file: `XDG_DOCUMENTS_DIR="$HOME/Docs"`.
std::string DocumentsFromUserDirs(const std::string& file, const std::string& home) {
    std::ifstream in(file);
    std::string line;
    constexpr std::string_view kKey = "XDG_DOCUMENTS_DIR=";
    while (std::getline(in, line)) {
        std::string_view v(line);
        while (!v.empty() && (v.front() == ' ' || v.front() == '\t')) v.remove_prefix(1);
        if (!v.starts_with(kKey)) continue;
        v.remove_prefix(kKey.size());
        if (v.size() < 2 || v.front() != '"') return {};
        v.remove_prefix(1);
        auto end = v.find('"');
        if (end == std::string_view::npos) return {};
        v = v.substr(0, end);
        std::string path;
        if (v.starts_with("$HOME")) {
            path = home + std::string(v.substr(5));
        } else {
            path = std::string(v);
        }
        // A documents folder set to the home folder itself means "none"; use the usual one.
        if (path.empty() || path.front() != '/' || path == home || path == home + "/") return {};
        return path;
    }
    return {};
}
}  // namespace

std::string DocumentsFolder() {
    const char* homeVar = std::getenv("HOME");
    std::string home = homeVar && *homeVar ? homeVar : "/tmp";
    std::string configHome = XdgFolder("XDG_CONFIG_HOME", ".config");
    std::string fromFile = DocumentsFromUserDirs(configHome + "/user-dirs.dirs", home);
    return fromFile.empty() ? home + "/Documents" : fromFile;
}

}  // namespace ts
