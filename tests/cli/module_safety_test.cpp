// No command of the host writes over a module: whatever name the target is given, the module
// comes out byte for byte as it went in, and the refusal says why.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli_run.h"
#include "support/test_folders.h"
#include "ts/configuration.h"
#include "ts/resourcestore.h"

namespace {

namespace fs = std::filesystem;
using ts::test::Contains;
using ts::test::ReadWholeFile;
using ts::test::RunToolsetCli;

using ModuleSafety = ts::test::CliDemoModule;

TEST_F(ModuleSafety, AnExportNeverReplacesAModule) {
    std::string other = folder + "/other.tsmod";
    fs::copy_file(demo, other);
    fs::create_symlink("demo.tsmod", folder + "/link.tsmod");
    fs::create_directories(folder + "/sub");
    const std::string bytes = ReadWholeFile(demo);

    struct Case {
        std::string target, message;
    };
    // The store holds the module open here, so its log files exist as well.
    auto store = ts::OpenSqliteStore(demo, {});
    ASSERT_TRUE(store);
    ASSERT_TRUE(fs::exists(demo + "-wal"));
    const Case cases[] = {
        {demo, "is the module \"" + demo + "\" itself"},
        {folder + "/link.tsmod", "itself"},
        {folder + "/sub/../demo.tsmod", "itself"},
        {demo + "-wal", "(one of its working files) itself"},
        {other, "is a toolset module; an export does not write over a module"},
        {folder + "/sub", "could not be written: Is a directory"},
        {folder + "/missing/out.json", "could not be written: No such file or directory"},
        {"/dev/full", "could not be written: No space left on device"},
    };
    for (const auto& c : cases) {
        auto run = RunToolsetCli({"export", demo, "orla_welcome.dlg", c.target});
        EXPECT_EQ(run.exitCode, 1) << c.target;
        EXPECT_TRUE(Contains(run.err, c.message)) << c.target << ": " << run.err;
    }
    store.reset();
    EXPECT_EQ(ReadWholeFile(demo), bytes);
    EXPECT_EQ(ReadWholeFile(other), bytes);
    EXPECT_TRUE(fs::is_symlink(folder + "/link.tsmod"));
    EXPECT_EQ(RunToolsetCli({"check", demo}).exitCode, 0);
    for (const auto& entry : fs::directory_iterator(folder))
        EXPECT_FALSE(Contains(entry.path().string(), ".partial")) << entry.path();

    // A device is written to as it is; an ordinary file is replaced whole.
    EXPECT_EQ(RunToolsetCli({"export", demo, "orla_welcome.dlg", "/dev/null"}).exitCode, 0);
    std::string json = folder + "/orla.json";
    ASSERT_EQ(RunToolsetCli({"export", demo, "orla_welcome.dlg", json}).exitCode, 0);
    EXPECT_TRUE(Contains(ReadWholeFile(json), "\"orla_welcome\""));
}

}  // namespace
