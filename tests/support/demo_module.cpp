#include "support/demo_module.h"

#include <gtest/gtest.h>

#include "agents/resourceschemas.h"
#include "ts/configuration.h"
#include "ts/modulebuilder.h"
#include "ts/text.h"

namespace ts::test {

bool BuildDemoModule(const std::string& path) {
    ModuleBuildOptions options;
    options.schemas = ResourceSchemas();
    options.user = u"demo";
    ModuleBuildSummary summary;
    std::vector<std::u16string> problems;
    bool built = BuildModule(ApplicationDataFolder() + "/demo", path, options, summary, problems);
    for (const auto& p : problems) ADD_FAILURE() << Utf16ToUtf8(p);
    return built;
}

}  // namespace ts::test
