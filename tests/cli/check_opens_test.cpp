// check loads every conversation in the conversation editor, so a conversation that decodes but
// that the editor refuses is reported, not passed; validate reports it as a fault.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "cli_run.h"
#include "support/doubling_chain.h"
#include "support/test_folders.h"
#include "ts/configuration.h"

namespace {

namespace fs = std::filesystem;
using ts::test::Contains;
using ts::test::RunToolsetCli;

TEST(CheckOpens, AConversationTheEditorRefusesFailsTheCheck) {
    std::string folder = ts::test::MakeTempFolder("ts-cli-check");
    std::string module = folder + "/demo.tsmod";
    ASSERT_EQ(
        RunToolsetCli({"module", "create", ts::ApplicationDataFolder() + "/demo", module}).exitCode,
        0);
    auto sound = RunToolsetCli({"check", module});
    EXPECT_EQ(sound.exitCode, 0) << sound.out << sound.err;
    EXPECT_TRUE(Contains(sound.out, "ok       orla_welcome.dlg")) << sound.out;

    for (int levels : {4, 20}) {
        std::string file = folder + "/chain" + std::to_string(levels) + ".dlg.json";
        std::ofstream(file) << ts::test::DoublingChain("chain" + std::to_string(levels), levels);
        auto imported = RunToolsetCli({"import", module, file});
        ASSERT_EQ(imported.exitCode, 0) << imported.err;
    }
    auto checked = RunToolsetCli({"check", module});
    EXPECT_EQ(checked.exitCode, 1);
    EXPECT_TRUE(Contains(checked.out, "ok       chain4.dlg")) << checked.out;
    EXPECT_TRUE(Contains(checked.out,
                         "refused  chain20.dlg: its editor cannot open it: The "
                         "conversation cannot be opened"))
        << checked.out;
    EXPECT_TRUE(Contains(checked.out, "owned by more than one line: NPC line [1] (2 owners)"));
    EXPECT_TRUE(Contains(checked.err,
                         "the module has problems: 1 of 19 resources cannot be opened in their "
                         "editor"))
        << checked.err;

    // To validate, a conversation the editor cannot open is a fault of its own.
    auto validated = RunToolsetCli({"validate", module, "chain20.dlg", "chain4.dlg"});
    EXPECT_EQ(validated.exitCode, 1);
    EXPECT_TRUE(Contains(validated.out,
                         "chain20.dlg:0: cannot be opened: The conversation cannot be opened"))
        << validated.out;
    EXPECT_TRUE(Contains(validated.err, "1 fault in 1 of 2 conversations")) << validated.err;
    fs::remove_all(folder);
}

}  // namespace
