#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "support/test_folders.h"

namespace ts::test {

inline std::string EditorDlgLibrary() {
    return TS_EDITORDLG_LIBRARY;
}
inline std::string FixtureLibrary(const std::string& name) {
    return std::string(TS_PLUGIN_FIXTURE_DIR) + "/lib" + name + ".so";
}

// A plugins folder of the test's own, filled with the libraries a case needs.
class PluginFolder {
public:
    PluginFolder() : path_(MakeTempFolder("ts-plugins")) {}
    ~PluginFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    PluginFolder(const PluginFolder&) = delete;
    PluginFolder& operator=(const PluginFolder&) = delete;

    const std::string& Path() const { return path_; }

    // Copies a library in, under its own name or another one; returns the new path.
    std::string Copy(const std::string& library, std::string asName = {}) {
        if (asName.empty()) asName = std::filesystem::path(library).filename().string();
        std::string target = path_ + "/" + asName;
        std::filesystem::copy_file(library, target,
                                   std::filesystem::copy_options::overwrite_existing);
        return target;
    }
    // Writes a file with the given bytes.
    std::string Write(const std::string& name, const std::string& bytes) {
        std::string target = path_ + "/" + name;
        std::ofstream(target, std::ios::binary) << bytes;
        return target;
    }
    // The first `length` bytes of a library, as a damaged copy would have.
    std::string Truncated(const std::string& library, const std::string& name, std::size_t length) {
        std::ifstream in(library, std::ios::binary);
        std::string bytes(length, '\0');
        in.read(bytes.data(), static_cast<std::streamsize>(length));
        bytes.resize(static_cast<std::size_t>(in.gcount()));
        return Write(name, bytes);
    }

private:
    std::string path_;
};

}  // namespace ts::test
