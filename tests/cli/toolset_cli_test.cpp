#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "run_cli.h"
#include "support/test_folders.h"
#include "ts/configuration.h"
#include "ts/resourcestore.h"

namespace {

namespace fs = std::filesystem;
using ts::test::CliRun;
using ts::test::RunCli;

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string Slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

// The demo module made by the host, as a writer would make it.
class ToolsetCli : public ::testing::Test {
protected:
    std::string folder = ts::test::MakeTempFolder("ts-cli");
    std::string demo = folder + "/demo.tsmod";

    void SetUp() override {
        CliRun made = RunCli({"module", "create", ts::ApplicationDataFolder() + "/demo", demo});
        ASSERT_EQ(made.exitCode, 0) << made.err;
        EXPECT_TRUE(Has(made.out, "Made the module")) << made.out;
    }
    void TearDown() override { fs::remove_all(folder); }

    // An empty module to import into.
    std::string EmptyModule(const std::string& name) {
        std::string sources = folder + "/" + name + "-sources";
        fs::create_directories(sources);
        std::string path = folder + "/" + name + ".tsmod";
        EXPECT_EQ(RunCli({"module", "create", sources, path}).exitCode, 0);
        return path;
    }

    std::vector<std::string> ResourceNames(const std::string& module) {
        std::vector<std::string> names;
        std::istringstream lines(RunCli({"list", module}).out);
        for (std::string line; std::getline(lines, line);)
            names.push_back(line.substr(0, line.find("  ")));
        return names;
    }
};

TEST_F(ToolsetCli, ExportAndImportCarryEveryDemoResourceUnchanged) {
    CliRun listed = RunCli({"list", demo});
    ASSERT_EQ(listed.exitCode, 0);
    EXPECT_TRUE(Has(listed.out, "orla_welcome.dlg  version 1")) << listed.out;
    CliRun dlg = RunCli({"list", demo, "dlg"});
    EXPECT_EQ(std::count(dlg.out.begin(), dlg.out.end(), '\n'), 2);

    std::string copy = EmptyModule("copy");
    auto names = ResourceNames(demo);
    ASSERT_GE(names.size(), 14u);
    for (const std::string& name : names) {
        SCOPED_TRACE(name);
        std::string file = folder + "/" + name + ".json";
        CliRun exported = RunCli({"export", demo, name, file, "--short"});
        ASSERT_EQ(exported.exitCode, 0) << exported.err;
        CliRun imported = RunCli({"import", copy, file});
        ASSERT_EQ(imported.exitCode, 0) << imported.err;
        EXPECT_TRUE(Has(imported.out, "Imported " + name)) << imported.out;
        // The exact form shows every name, flag, attribute and value: both modules agree.
        CliRun original = RunCli({"export", demo, name});
        CliRun copied = RunCli({"export", copy, name});
        ASSERT_EQ(original.exitCode, 0);
        EXPECT_EQ(original.out, copied.out);
        EXPECT_EQ(Slurp(file), RunCli({"export", copy, name, "--short"}).out);
    }

    std::string file = folder + "/orla.utc.json";
    CliRun again = RunCli({"import", copy, file});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_TRUE(Has(again.err, "already has the resource \"orla\" (utc); use --replace"))
        << again.err;
    CliRun replaced = RunCli({"import", copy, file, "--replace"});
    EXPECT_EQ(replaced.exitCode, 0) << replaced.err;
    EXPECT_TRUE(Has(RunCli({"list", copy, "utc"}).out, "orla.utc  version 2"));

    CliRun checked = RunCli({"check", copy});
    EXPECT_EQ(checked.exitCode, 0) << checked.err;
    EXPECT_TRUE(Has(checked.out, "The module is sound")) << checked.out;
}

TEST_F(ToolsetCli, TheReportSummarisesTheModule) {
    CliRun report = RunCli({"report", demo});
    ASSERT_EQ(report.exitCode, 0) << report.err;
    EXPECT_TRUE(Has(report.out, "Module \"Demo: The Drowned Lantern\" (id 1)")) << report.out;
    EXPECT_TRUE(Has(report.out, "dlg (conversation): 2"));
    EXPECT_TRUE(Has(report.out, "orla_welcome  (version 1,"));
    EXPECT_TRUE(Has(report.out,
                    "3 starts, 10 NPC and 10 player lines, 5 links, 1 comment, 1 ambient branch, 6 "
                    "sent for voice-over"));
    EXPECT_TRUE(Has(report.out, "toolset_dlglang: 3 rows, 3 columns"));
    EXPECT_TRUE(Has(report.out, "Check: every resource and table reads back whole."));
}

// Damage in one resource is reported for that resource alone; the others still read.
TEST_F(ToolsetCli, CheckFindsDamageWithoutTouchingOtherResources) {
    std::vector<std::uint8_t> orla;
    {
        auto store = ts::OpenSqliteStore(demo, {});
        ASSERT_TRUE(store);
        ASSERT_TRUE(store->ReadResource(u"orla", u"utc", orla));
    }
    std::string bytes = Slurp(demo);
    auto at = bytes.find(std::string(orla.begin(), orla.end()));
    ASSERT_NE(at, std::string::npos) << "the resource lies whole in one page of the module file";
    bytes[at + orla.size() / 2] ^= 0x20;
    std::ofstream(demo, std::ios::binary | std::ios::trunc) << bytes;
    auto before = fs::last_write_time(demo);

    CliRun checked = RunCli({"check", demo});
    EXPECT_EQ(checked.exitCode, 1);
    EXPECT_TRUE(
        Has(checked.out,
            "damaged  orla.utc: The resource is damaged: its checksum does not match its content"))
        << checked.out;
    EXPECT_TRUE(Has(checked.out, "ok       brannoc.utc")) << checked.out;
    EXPECT_TRUE(Has(checked.out, "ok       orla_welcome.dlg")) << checked.out;
    EXPECT_TRUE(Has(checked.err, "the module is damaged: 1 of 16 resources cannot be read"))
        << checked.err;
    EXPECT_EQ(fs::last_write_time(demo), before);  // a check writes nothing
    EXPECT_EQ(RunCli({"report", demo}).exitCode, 1);

    CliRun exported = RunCli({"export", demo, "orla.utc"});
    EXPECT_EQ(exported.exitCode, 1);
    EXPECT_TRUE(Has(exported.err, "cannot be read: The resource is damaged")) << exported.err;
    EXPECT_EQ(RunCli({"export", demo, "brannoc.utc"}).exitCode, 0);
}

TEST_F(ToolsetCli, ATruncatedOrForeignModuleIsReportedNotCrashedOn) {
    std::string bytes = Slurp(demo);
    for (double keep : {0.6, 0.1}) {
        std::string cut = folder + "/cut.tsmod";
        std::ofstream(cut, std::ios::binary | std::ios::trunc)
            << bytes.substr(0, static_cast<std::size_t>(bytes.size() * keep));
        CliRun checked = RunCli({"check", cut});
        EXPECT_EQ(checked.exitCode, 1) << keep << "\n" << checked.out << checked.err;
        EXPECT_TRUE(Has(checked.out + checked.err, "damaged")) << checked.out << checked.err;
        fs::remove(cut);
    }
    std::string text = folder + "/notes.tsmod";
    std::ofstream(text) << "These are my notes, not a module.\n";
    CliRun foreign = RunCli({"check", text});
    EXPECT_EQ(foreign.exitCode, 1);
    EXPECT_TRUE(Has(foreign.err, "is not a toolset module")) << foreign.err;
}

TEST_F(ToolsetCli, BadInputGetsAClearMessageAndAnExitCode) {
    struct Case {
        std::vector<std::string> args;
        int exitCode;
        std::string message;
    };
    std::string bad = folder + "/bad.dlg.json";
    std::ofstream(bad) << "{\"fields\": {\"NPCLineList\": [{\"Txt\": \"hello\"}]}}";
    std::string sources = folder + "/broken-sources";
    fs::create_directories(sources + "/tables");
    std::ofstream(sources + "/tables/poses.csv") << "ID,Label\n1,\"Stand\n";
    const Case cases[] = {
        {{"list", folder + "/missing.tsmod"}, 1, "does not exist"},
        {{"export", demo, "nothing.dlg"}, 1, "There is no resource \"nothing\" of type \"dlg\""},
        {{"export", demo, "orla_welcome"}, 2, "does not name a resource as NAME.TYPE"},
        {{"import", demo, bad},
         1,
         "bad.dlg.json: line 1, column 37: a conversation line has no field \"Txt\""},
        {{"import", demo, folder + "/nothing.json"}, 1, "cannot be read"},
        {{"module", "create", sources, folder + "/new.tsmod"},
         1,
         "tables/poses.csv: line 2: a quoted cell is not closed"},
        {{"module", "create", ts::ApplicationDataFolder() + "/demo", demo},
         1,
         "use --force to replace it"},
        {{"check"}, 2, "check takes more arguments"},
        {{"list", demo, "dlg", "extra"}, 2, "list takes fewer arguments"},
        {{"export", demo, "orla.utc", "--brief"}, 2, "export does not know the option --brief"},
        {{"frobnicate"}, 2, "unknown command \"frobnicate\""},
        {{"module", "delete"}, 2, "the module command is"},
    };
    for (const auto& c : cases) {
        CliRun run = RunCli(c.args);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.args[0] << " " << run.err;
        EXPECT_TRUE(Has(run.err, c.message))
            << c.args[0] << "\n  wanted: " << c.message << "\n  got: " << run.err;
    }
    EXPECT_FALSE(fs::exists(folder + "/new.tsmod"));
    CliRun help = RunCli({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(Has(help.out, "module create SOURCES MODULE"));
}

}  // namespace
