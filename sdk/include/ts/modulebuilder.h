#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ts/api.h"
#include "ts/recordschema.h"
#include "ts/resourcestore.h"

// Building a module file from a folder of sources, and checking a module for damage.
//
// A sources folder holds:
//   module.json              {"name": "Demo", "moduleId": 1, "description": "..."} (optional)
//   resources/NAME.TYPE.json one resource each, in the exact or the short JSON form
//   tables/NAME.csv          one lookup table each
//   strings.csv              ID,StringID,Language,Text: localized strings (optional)
//   vo_recording_status.csv
//   ID,StringID,ModuleResRefVersionID,SentForRecordingOn,RequiresReRecording
//   localization_status.csv  ID,StringID,ModuleResRefVersionID,ExportedOn,RequiresReTranslation
// (the first column of every CSV file numbers its rows). Dates are "YYYY-MM-DD" (or with
// "THH:MM:SS"), flags true or false. The text of every record
// that has a StringID of 0 or more and a Text (the lines of conversations) is also stored as
// that string, in the record's LanguageID (0 when it has none).
namespace ts {

struct ModuleBuildOptions {
    bool overwrite = false;        // replace an existing module file
    ResourceSchemaLookup schemas;  // for resources written in the short form
    std::u16string user;           // recorded as the author of every resource
};

struct ModuleBuildSummary {
    int resources = 0;
    int tables = 0;
    int strings = 0;
    int statusRecords = 0;
};

// Builds the module at `modulePath` from `sourcesFolder`, all or nothing: the module is written
// under a temporary name and takes its place only when complete. On failure `problems` lists
// every fault found (file, line and what), and no module file is left behind.
TS_API bool BuildModule(const std::string& sourcesFolder, const std::string& modulePath,
                        const ModuleBuildOptions& options, ModuleBuildSummary& summary,
                        std::vector<std::u16string>& problems);

struct ResourceCheck {
    ResourceInfo info;
    bool sound = false;
    std::u16string problem;  // what is wrong when not sound
    std::uint32_t nodes = 0;
};

struct TS_API ModuleCheck {
    std::vector<std::u16string> storeProblems;  // damage of the module file itself
    std::vector<ResourceCheck> resources;
    std::vector<std::u16string> tableProblems;
    std::uint32_t tables = 0;

    bool Sound() const;
};

// Reads every resource and table of the module and decodes it; one damaged resource never
// stops the others being checked. Nothing is written.
TS_API ModuleCheck CheckModule(ResourceStore& store);

}  // namespace ts
