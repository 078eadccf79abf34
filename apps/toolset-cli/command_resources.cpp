#include <filesystem>
#include <fstream>
#include <sstream>

#include "agents/resourceschemas.h"
#include "cli.h"
#include "output_file.h"
#include "ts/format.h"
#include "ts/linestrings.h"
#include "ts/resourcecodec.h"
#include "ts/resourcejson.h"
#include "ts/text.h"

namespace cli {

int List(const Arguments& args) {
    if (!Expect(args, "list", 1, 2)) return kUsage;
    auto store = OpenModule(args.words[0], true);
    if (!store) return kFailed;
    std::u16string type = args.words.size() > 1 ? ts::Utf8ToUtf16(args.words[1]) : std::u16string();
    std::vector<ts::ResourceInfo> list;
    if (auto r = store->ListResources(type, list); !r) return Fail(r.message);
    for (const auto& info : list) {
        std::u16string state;
        if (!info.checkedOutBy.empty())
            state += ts::Format(u"  checked out by %ls", info.checkedOutBy);
        if (info.locked) state += u"  locked";
        Print(ts::Format(u"%ls.%ls  version %d  %ld bytes%ls", ts::MessageText(info.name),
                         ts::MessageText(info.type), info.version, static_cast<long>(info.size),
                         state));
    }
    return kOk;
}

int Export(const Arguments& args) {
    if (!Expect(args, "export", 2, 3, {"--short"})) return kUsage;
    std::u16string name, type;
    if (!SplitResourceName(args.words[1], name, type))
        return Fail(
            ts::Format(u"\"%ls\" does not name a resource as NAME.TYPE (for example tavern.dlg)",
                       ts::MessageText(args.words[1])),
            kUsage);
    // Checked before anything is read, so that a refused export has done nothing at all.
    bool toFile = args.words.size() == 3 && args.words[2] != "-";
    if (std::u16string why; toFile && !MayWriteOver(args.words[2], args.words[0], why))
        return Fail(why);
    auto store = OpenModule(args.words[0], true);
    if (!store) return kFailed;
    std::vector<std::uint8_t> bytes;
    ts::ResourceInfo info;
    if (auto r = store->ReadResource(name, type, bytes, &info); !r) return Fail(r.message);
    ts::ResourceDocument doc{info.name, info.type, {}};
    std::u16string error;
    if (!ts::DecodeResource(bytes, doc.root, &error))
        return Fail(
            ts::Format(u"the resource \"%ls\" (%ls) cannot be read: %ls", name, type, error));
    std::string text;
    bool written = args.Has("--short")
                       ? ts::WriteResourceJsonShort(doc, ts::ResourceSchemas(), text, &error)
                       : ts::WriteResourceJson(doc, text, &error);
    if (!written) return Fail(error);
    if (!toFile) {
        std::fwrite(text.data(), 1, text.size(), stdout);
        return std::fflush(stdout) == 0 ? kOk : Fail(u"the output could not be written");
    }
    // Written beside the target and moved over it, so that a failure never leaves half a file.
    if (!WriteWholeFile(args.words[2], text, error)) return Fail(error);
    return kOk;
}

int Import(const Arguments& args) {
    if (!Expect(args, "import", 2, 2, {"--replace"})) return kUsage;
    const std::string& file = args.words[1];
    std::ifstream in(file, std::ios::binary);
    if (!in) return Fail(ts::Format(u"\"%s\" cannot be read", file));
    std::ostringstream text;
    text << in.rdbuf();

    // "tavern.dlg.json" names the resource; the document may name it too.
    ts::ResourceDocument doc;
    std::filesystem::path stem = std::filesystem::path(file).filename();
    if (stem.extension() == ".json") stem = stem.stem();
    if (!stem.extension().empty()) {
        doc.name = ts::Utf8ToUtf16(stem.stem().string());
        doc.type = ts::Utf8ToUtf16(stem.extension().string().substr(1));
    }
    std::u16string error;
    if (!ts::ReadResourceJson(text.str(), doc, &error, ts::ResourceSchemas()))
        return Fail(ts::Format(u"%s: %ls", file, error));
    std::vector<std::uint8_t> bytes;
    if (!ts::EncodeResource(doc.root.Get(), bytes, &error))
        return Fail(ts::Format(u"%s: %ls", file, error));

    auto store = OpenModule(args.words[0], false);
    if (!store) return kFailed;
    ts::ResourceInfo existing;
    bool exists = bool(store->GetResourceInfo(doc.name, doc.type, existing));
    ts::StoreResult r;
    if (exists && !args.Has("--replace"))
        return Fail(ts::Format(
            u"the module already has the resource \"%ls\" (%ls); use --replace to save over it",
            existing.name, existing.type));
    // The texts of the lines go into the module's string table with the resource, as module
    // create stores them, so that their string ids are known to the store.
    ts::StoreBatch batch(*store);
    if (!batch.Started()) return Fail(batch.Started().message);
    r = exists
            ? store->SaveResource(doc.name, doc.type, bytes, ts::kAnyVersion, ts::CurrentUserName())
            : store->CreateResource(doc.name, doc.type, bytes, ts::CurrentUserName());
    if (!r) return Fail(r.message);
    if (r = ts::StoreLineStrings(*store, doc.root.Get()); !r) return Fail(r.message);
    if (r = batch.Commit(); !r) return Fail(r.message);
    Print(ts::Format(u"%ls %ls.%ls (%lu bytes).", exists ? u"Replaced" : u"Imported", doc.name,
                     doc.type, bytes.size()));
    return kOk;
}

}  // namespace cli
