// Writes the seed corpus of the fuzz targets from the demo module's sources:
//   fuzz_seeds DEMO_SOURCES CORPUS
// makes CORPUS/decode (each resource encoded) and CORPUS/text (the JSON, CSV and settings files).
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "agents/resourceschemas.h"
#include "ts/resourcecodec.h"
#include "ts/resourcejson.h"
#include "ts/text.h"

namespace fs = std::filesystem;

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: fuzz_seeds DEMO_SOURCES CORPUS\n");
        return 2;
    }
    fs::path sources = argv[1], corpus = argv[2];
    fs::create_directories(corpus / "decode");
    fs::create_directories(corpus / "text");
    int written = 0;
    for (const auto& entry : fs::recursive_directory_iterator(sources)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream in(entry.path(), std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        std::string name = entry.path().filename().string();
        fs::copy_file(entry.path(), corpus / "text" / name, fs::copy_options::overwrite_existing);
        if (entry.path().extension() != ".json" || name == "module.json") continue;
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
