// toolset-cli validate runs the conversation editor's own validation over the demo module: the
// faulty conversation gives exactly the faults predicted for it, the others none.
#include <gtest/gtest.h>

#include "cli_run.h"

namespace {

using ts::test::CliDemoModule;
using ts::test::Contains;
using ts::test::ReadWholeFile;
using ts::test::RunToolsetCli;

TEST_F(CliDemoModule, ValidatePrintsEachFaultAndSaysWhetherAnyWasFound) {
    auto all = RunToolsetCli({"validate", demo});
    EXPECT_EQ(all.exitCode, 1) << all.err;
    EXPECT_EQ(all.out, ReadWholeFile(TS_FAULTY_EXAMPLES));
    EXPECT_EQ(all.err, "toolset-cli: 10 faults in 1 of 3 conversations\n");

    // Named ones only, in any case, each once.
    auto clean = RunToolsetCli(
        {"validate", demo, "orla_welcome.dlg", "BRANNOC_CARAVAN.dlg", "brannoc_caravan.dlg"});
    EXPECT_EQ(clean.exitCode, 0) << clean.err;
    EXPECT_EQ(clean.out, "");
    EXPECT_EQ(clean.err, "toolset-cli: no faults in 2 conversations\n");

    // Every name is checked before anything is validated.
    const std::pair<std::vector<std::string>, std::string> wrong[] = {
        {{"validate", demo, "orla_welcome.dlg", "nothing.dlg"},
         "There is no resource \"nothing\" of type \"dlg\""},
        {{"validate", demo, "orla.utc"}, "\"orla.utc\" does not name a conversation as NAME.dlg"},
        {{"validate"}, "validate takes more arguments"},
    };
    for (const auto& [args, message] : wrong) {
        auto run = RunToolsetCli(args);
        EXPECT_EQ(run.exitCode, 2) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_TRUE(Contains(run.err, message)) << run.err;
    }
}

}  // namespace
