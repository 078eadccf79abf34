#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "json/json_document.h"
#include "json/json_values.h"
#include "ts/format.h"
#include "ts/linestrings.h"
#include "ts/modulebuilder.h"
#include "ts/resourcecodec.h"
#include "ts/resourcejson.h"
#include "ts/text.h"

namespace ts {

namespace fs = std::filesystem;

namespace {

bool ReadFile(const fs::path& path, std::string& text) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    std::ostringstream s;
    s << in.rdbuf();
    text = s.str();
    return !in.bad();
}

std::vector<fs::path> FilesIn(const fs::path& folder, std::string_view extension) {
    std::vector<fs::path> files;
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator(folder, ec))
        if (entry.is_regular_file() && entry.path().extension() == extension)
            files.push_back(entry.path());
    std::sort(files.begin(),
              files.end());  // a stable order, so that messages and modules don't vary
    return files;
}

std::u16string Shown(const fs::path& path, const fs::path& root) {
    std::error_code ec;
    auto relative = fs::relative(path, root, ec);
    return MessageText((ec || relative.empty() ? path : relative).string(), 200);
}

class Builder {
public:
    Builder(const fs::path& sources, ResourceStore& store, const ModuleBuildOptions& options,
            ModuleBuildSummary& summary, std::vector<std::u16string>& problems)
        : sources_(sources),
          store_(store),
          options_(options),
          summary_(summary),
          problems_(problems) {}

    void Build() {
        ModuleProperties();
        Tables();
        Resources();
        Strings();
        Status(u"vo_recording_status.csv", true);
        Status(u"localization_status.csv", false);
    }

private:
    void Problem(const fs::path& file, const std::u16string& what) {
        problems_.push_back(Shown(file, sources_) + u": " + what);
    }
    void Problem(const std::u16string& what) { problems_.push_back(what); }

    void ModuleProperties() {
        ModuleInfo info;
        fs::path folder = fs::absolute(sources_).lexically_normal();
        if (folder.filename().empty()) folder = folder.parent_path();
        info.name = Utf8ToUtf16(folder.filename().string());  // unless module.json names it
        fs::path file = sources_ / "module.json";
        std::error_code ec;
        if (fs::exists(file, ec)) {
            std::string text;
            json::Document doc;
            std::u16string error;
            if (!ReadFile(file, text)) return Problem(file, u"the file cannot be read");
            if (!doc.Parse(text, &error)) return Problem(file, error);
            const json::Value& root = doc.Root();
            if (!root.IsObject())
                return Problem(
                    file, u"expected an object with \"name\", \"moduleId\" and \"description\"");
            for (std::uint32_t i = 0; i < doc.MemberCount(root); ++i) {
                auto m = doc.MemberAt(root, i);
                variant v;
                std::u16string problem;
                std::uint32_t type = m.key == u"moduleId" ? kTsTypeInt : kTsTypeString;
                if (m.key != u"name" && m.key != u"moduleId" && m.key != u"description")
                    return Problem(
                        file,
                        Format(u"%ls: unknown key \"%ls\" (expected name, moduleId, description)",
                               doc.Where(*m.value), MessageText(m.key)));
                if (!json::ReadValue(doc, *m.value, type, v, problem))
                    return Problem(file, Format(u"%ls: \"%ls\": %ls", doc.Where(*m.value),
                                                MessageText(m.key), problem));
                if (m.key == u"name")
                    info.name = v.GetString();
                else if (m.key == u"moduleId")
                    info.moduleId = v.GetInt();
                else
                    info.description = v.GetString();
            }
        }
        if (auto r = store_.SetModuleInfo(info); !r) Problem(r.message);
    }

    void Tables() {
        for (const fs::path& file : FilesIn(sources_ / "tables", ".csv")) {
            std::string text;
            if (!ReadFile(file, text)) {
                Problem(file, u"the file cannot be read");
                continue;
            }
            GameTable table;
            std::u16string error;
            if (!GameTable::FromCsv(Utf8ToUtf16(file.stem().string()), text, table, &error)) {
                Problem(file, error);
                continue;
            }
            if (auto r = store_.ImportTable(table); !r)
                Problem(file, r.message);
            else
                ++summary_.tables;
        }
    }

    void Resources() {
        for (const fs::path& file : FilesIn(sources_ / "resources", ".json")) {
            // "tavern.dlg.json": the resource "tavern" of type "dlg".
            fs::path stem = file.stem();
            ResourceDocument doc{
                Utf8ToUtf16(stem.stem().string()), Utf8ToUtf16(stem.extension().string()), {}};
            if (!doc.type.empty()) doc.type.erase(0, 1);
            if (doc.type.empty()) {
                Problem(file,
                        u"the file name does not give the resource type (name it NAME.TYPE.json, "
                        u"as tavern.dlg.json)");
                continue;
            }
            std::string text;
            std::u16string error;
            if (!ReadFile(file, text)) {
                Problem(file, u"the file cannot be read");
                continue;
            }
            if (!ReadResourceJson(text, doc, &error, options_.schemas)) {
                Problem(file, error);
                continue;
            }
            std::vector<std::uint8_t> bytes;
            if (!EncodeResource(doc.root.Get(), bytes, &error)) {
                Problem(file, error);
                continue;
            }
            if (auto r = store_.CreateResource(doc.name, doc.type, bytes, options_.user); !r) {
                Problem(file, r.message);
                continue;
            }
            ++summary_.resources;
            CollectLineStrings(doc.root.Get(), file, doc.name);
        }
    }

    // Records that carry a StringID and a Text (the lines of conversations) keep their text in the
    // module's string table too.
    void CollectLineStrings(ITsProperty* root, const fs::path& file,
                            const std::u16string& resource) {
        std::vector<LineString> lines;
        ts::CollectLineStrings(root, lines);
        for (const LineString& line : lines)
            AddString(line.stringId, line.language, line.text,
                      Format(u"%ls (%ls)", Shown(file, sources_), resource), file);
    }

    void AddString(std::int32_t id, std::int32_t language, const std::u16string& text,
                   const std::u16string& where, const fs::path& file) {
        auto [it, added] = strings_.try_emplace({id, language}, text, where);
        if (!added && it->second.first != text)
            Problem(file, Format(u"the string id %d (language %d) has two different texts: \"%ls\" "
                                 u"here and \"%ls\" in %ls",
                                 id, language, MessageText(text), MessageText(it->second.first),
                                 it->second.second));
    }

    // A CSV file of the sources folder with the given columns, or null when it is absent or faulty.
    bool ReadCsv(const std::u16string& name, std::initializer_list<const char16_t*> columns,
                 GameTable& table, std::vector<std::size_t>& index) {
        fs::path file = sources_ / Utf16ToUtf8(name);
        std::error_code ec;
        if (!fs::exists(file, ec)) return false;
        std::string text;
        std::u16string error;
        if (!ReadFile(file, text)) {
            Problem(file, u"the file cannot be read");
            return false;
        }
        std::u16string tableName = Utf8ToUtf16(file.stem().string());
        if (!GameTable::FromCsv(tableName, text, table, &error)) {
            Problem(file, error);
            return false;
        }
        index.clear();
        for (const char16_t* column : columns) {
            std::size_t c;
            if (!table.FindColumn(column, c, &error)) {
                Problem(file, Format(u"the column \"%ls\" is missing", column));
                return false;
            }
            index.push_back(c);
        }
        return true;
    }

    void Strings() {
        GameTable table;
        std::vector<std::size_t> c;
        fs::path file = sources_ / "strings.csv";
        if (ReadCsv(u"strings.csv", {u"StringID", u"Language", u"Text"}, table, c)) {
            // The first column is a row id of its own: several rows may share a string id.
            for (std::size_t row = 0; row < table.RowCount(); ++row) {
                std::int32_t id, language;
                std::u16string text, error;
                if (!table.GetInt(row, c[0], id, &error) ||
                    !table.GetInt(row, c[1], language, &error) ||
                    !table.GetText(row, c[2], text, &error)) {
                    Problem(file, error);
                    continue;
                }
                if (id < 0) {
                    Problem(file, Format(u"row %d: string ids are not negative", table.RowId(row)));
                    continue;
                }
                AddString(id, language, text, Shown(file, sources_), file);
            }
        }
        for (const auto& [key, value] : strings_) {
            if (auto r = store_.SetString(key.first, key.second, value.first); !r)
                Problem(r.message);
            else
                ++summary_.strings;
        }
    }

    void Status(const std::u16string& name, bool voice) {
        GameTable table;
        std::vector<std::size_t> c;
        fs::path file = sources_ / Utf16ToUtf8(name);
        std::initializer_list<const char16_t*> vo = {u"StringID", u"ModuleResRefVersionID",
                                                     u"SentForRecordingOn", u"RequiresReRecording"};
        std::initializer_list<const char16_t*> loc = {u"StringID", u"ModuleResRefVersionID",
                                                      u"ExportedOn", u"RequiresReTranslation"};
        if (!ReadCsv(name, voice ? vo : loc, table, c)) return;
        for (std::size_t row = 0; row < table.RowCount(); ++row) {
            std::int32_t id = 0, version = 0;
            std::u16string date, flag, error;
            if (!table.GetInt(row, c[0], id, &error) || !table.GetInt(row, c[1], version, &error) ||
                !table.GetText(row, c[2], date, &error) ||
                !table.GetText(row, c[3], flag, &error)) {
                Problem(file, error);
                continue;
            }
            double days = 0;
            if (!date.empty() && !json::ParseDate(date, days)) {
                Problem(file, Format(u"row %d: \"%ls\" is not a date (YYYY-MM-DD)",
                                     table.RowId(row), MessageText(date)));
                continue;
            }
            if (flag != u"true" && flag != u"false") {
                Problem(file, Format(u"row %d: \"%ls\" is neither true nor false", table.RowId(row),
                                     MessageText(flag)));
                continue;
            }
            StoreResult r =
                voice ? store_.SetVORecordingStatus({id, version, days, flag == u"true"})
                      : store_.SetLocalizationStatus({id, version, days, flag == u"true"});
            if (!r)
                Problem(file, Format(u"row %d: %ls", table.RowId(row), r.message));
            else
                ++summary_.statusRecords;
        }
    }

    fs::path sources_;
    ResourceStore& store_;
    const ModuleBuildOptions& options_;
    ModuleBuildSummary& summary_;
    std::vector<std::u16string>& problems_;
    std::map<std::pair<std::int32_t, std::int32_t>, std::pair<std::u16string, std::u16string>>
        strings_;
};

void RemoveModuleFiles(const std::string& path) {
    std::error_code ec;
    for (const char* suffix : {"", "-wal", "-shm", "-journal"}) fs::remove(path + suffix, ec);
}

}  // namespace

bool BuildModule(const std::string& sourcesFolder, const std::string& modulePath,
                 const ModuleBuildOptions& options, ModuleBuildSummary& summary,
                 std::vector<std::u16string>& problems) {
    summary = {};
    problems.clear();
    std::error_code ec;
    if (!fs::is_directory(sourcesFolder, ec)) {
        problems.push_back(Format(u"The sources folder \"%s\" does not exist", sourcesFolder));
        return false;
    }
    if (fs::exists(modulePath, ec) && !options.overwrite) {
        problems.push_back(Format(u"The module file \"%s\" already exists", modulePath));
        return false;
    }
    std::string partial = modulePath + ".partial";
    RemoveModuleFiles(partial);
    {
        StoreResult opened;
        auto store = OpenSqliteStore(partial, {.create = true}, &opened);
        if (!store) {
            problems.push_back(opened.message);
            return false;
        }
        StoreBatch batch(*store);
        if (!batch.Started()) {
            problems.push_back(batch.Started().message);
        } else {
            Builder(sourcesFolder, *store, options, summary, problems).Build();
            if (problems.empty()) {
                if (auto r = batch.Commit(); !r) problems.push_back(r.message);
            }
        }
    }  // closed, so that the module is whole in its one file
    if (!problems.empty()) {
        RemoveModuleFiles(partial);
        return false;
    }
    // A log left by an earlier module of that name must not be replayed into this one.
    for (const char* suffix : {"-wal", "-shm"}) fs::remove(modulePath + suffix, ec);
    fs::rename(partial, modulePath, ec);
    if (ec) {
        problems.push_back(
            Format(u"The module could not be written to \"%s\": %s", modulePath, ec.message()));
        RemoveModuleFiles(partial);
        return false;
    }
    return true;
}

}  // namespace ts
