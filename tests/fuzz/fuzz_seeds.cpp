// Writes the seed corpus of the fuzz targets from the demo module's sources:
//   fuzz_seeds DEMO_SOURCES CORPUS
// makes CORPUS/decode (each resource encoded), CORPUS/text (the JSON, CSV and settings files) and
// CORPUS/dlg (the conversations as JSON). Beside them go seeds large enough to reach the paths
// whose cost grows with the input: a table 100,000 columns wide, an object of 100,000 keys, and
// conversations whose lines are each owned twice, 24 and 1,000 levels deep.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "agents/resourceschemas.h"
#include "support/doubling_chain.h"
#include "ts/resourcecodec.h"
#include "ts/resourcejson.h"
#include "ts/text.h"

namespace fs = std::filesystem;

namespace {

void Write(const fs::path& file, const std::string& text) {
    std::ofstream(file, std::ios::binary) << text;
}

std::string WideTable(int columns) {
    std::string header = "ID", row = "1";
    for (int c = 1; c < columns; ++c) {
        header += ",C" + std::to_string(c);
        row += "," + std::to_string(c);
    }
    return header + "\n" + row + "\n";
}

std::string ManyKeys(int keys) {
    std::string text =
        R"({"resource": "keys", "type": "dlg", "root": {"name": "Root", "type": "list")";
    for (int k = 0; k < keys; ++k) text += ",\"k" + std::to_string(k) + "\": " + std::to_string(k);
    return text + "}}";
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: fuzz_seeds DEMO_SOURCES CORPUS\n");
        return 2;
    }
    fs::path sources = argv[1], corpus = argv[2];
    fs::create_directories(corpus / "decode");
    fs::create_directories(corpus / "text");
    fs::create_directories(corpus / "dlg");
    Write(corpus / "text" / "wide.csv", WideTable(100000));
    Write(corpus / "text" / "many_keys.json", ManyKeys(100000));
    Write(corpus / "dlg" / "chain24.dlg.json", ts::test::DoublingChain("chain", 24));
    Write(corpus / "dlg" / "chain1000.dlg.json", ts::test::DoublingChain("chain", 1000));
    int written = 0;
    for (const auto& entry : fs::recursive_directory_iterator(sources)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream in(entry.path(), std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        std::string name = entry.path().filename().string();
        fs::copy_file(entry.path(), corpus / "text" / name, fs::copy_options::overwrite_existing);
        if (entry.path().extension() != ".json" || name == "module.json") continue;
        if (name.ends_with(".dlg.json"))
            fs::copy_file(entry.path(), corpus / "dlg" / name,
                          fs::copy_options::overwrite_existing);
        ts::ResourceDocument doc;
        std::vector<std::uint8_t> bytes;
        if (!ts::ReadResourceJson(text.str(), doc, nullptr, ts::ResourceSchemas()) ||
            !ts::EncodeResource(doc.root.Get(), bytes)) {
            std::fprintf(stderr, "fuzz_seeds: %s could not be encoded\n", name.c_str());
            return 1;
        }
        std::ofstream(corpus / "decode" / (name + ".bin"), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        ++written;
    }
    return written > 0 ? 0 : 1;
}
