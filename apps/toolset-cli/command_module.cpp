#include "agents/resourceschemas.h"
#include "cli.h"
#include "ts/format.h"
#include "ts/modulebuilder.h"

namespace cli {

int ModuleCreate(const Arguments& args) {
    if (!Expect(args, "module create", 2, 2, {"--force"})) return kUsage;
    const std::string& sources = args.words[0];
    const std::string& module = args.words[1];
    ts::ModuleBuildOptions options;
    options.overwrite = args.Has("--force");
    options.schemas = ts::ResourceSchemas();
    options.user = ts::CurrentUserName();
    ts::ModuleBuildSummary summary;
    std::vector<std::u16string> problems;
    if (!ts::BuildModule(sources, module, options, summary, problems)) {
        for (const auto& p : problems) Fail(p);
        if (problems.size() == 1 && problems[0].find(u"already exists") != std::u16string::npos)
            return Fail(u"use --force to replace it");
        return Fail(ts::Format(u"the module was not made (%lu %ls)", problems.size(),
                               problems.size() == 1 ? u"problem" : u"problems"));
    }
    Print(ts::Format(
        u"Made the module \"%s\": %d resources, %d tables, %d strings, %d status records.", module,
        summary.resources, summary.tables, summary.strings, summary.statusRecords));
    return kOk;
}

}  // namespace cli
