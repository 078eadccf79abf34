// The command-line host run as a writer runs it, as a separate program: building the demo module,
// moving resources out and in as JSON, reports, checks of damaged modules and bad input.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/test_folders.h"
#include "ts/configuration.h"
#include "ts/resourcestore.h"
#include "ts/text.h"

namespace {

namespace fs = std::filesystem;

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string Slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

struct CliRun {
    int exitCode = -1;
    std::string out, err;
};

// Runs the command-line host with these arguments, each quoted for the shell (none holds a
// quote), waits for it and collects what it printed. A crash gives -1 or a code above 128, never
// one of the host's own (0, 1, 2).
CliRun RunCli(const std::vector<std::string>& args) {
    static const std::string folder = ts::test::MakeTempFolder("ts-cli-output");
    std::string command = "'" TS_CLI_PATH "'";
    for (const auto& a : args) command += " '" + a + "'";
    int status = std::system((command + " >" + folder + "/out 2>" + folder + "/err").c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Slurp(folder + "/out"),
            Slurp(folder + "/err")};
}

// The bytes a module stores for the resource NAME.TYPE.
std::vector<std::uint8_t> Stored(const std::string& module, const std::string& name) {
    auto store = ts::OpenSqliteStore(module, {});
    std::u16string resource = ts::Utf8ToUtf16(name);
    auto dot = resource.rfind(u'.');
    std::vector<std::uint8_t> bytes;
    EXPECT_TRUE(store &&
                store->ReadResource(resource.substr(0, dot), resource.substr(dot + 1), bytes))
        << module << ": " << name;
    return bytes;
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
};

// Every demo resource goes out in both JSON forms and comes back into empty modules as the same
// bytes: decoding, writing, reading and encoding lose nothing and are stable.
TEST_F(ToolsetCli, ExportAndImportCarryEveryDemoResourceUnchanged) {
    fs::create_directories(folder + "/empty");
    fs::create_directories(folder + "/exact");
    std::string copy = folder + "/copy.tsmod", exactCopy = folder + "/exact.tsmod";
    for (const std::string& module : {copy, exactCopy})
        ASSERT_EQ(RunCli({"module", "create", folder + "/empty", module}).exitCode, 0);
    CliRun dlg = RunCli({"list", demo, "dlg"});
    EXPECT_EQ(std::count(dlg.out.begin(), dlg.out.end(), '\n'), 3);
    CliRun listed = RunCli({"list", demo});
    ASSERT_EQ(listed.exitCode, 0);
    EXPECT_TRUE(Has(listed.out, "orla_welcome.dlg  version 1")) << listed.out;
    std::istringstream lines(listed.out);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        std::string name = line.substr(0, line.find("  "));
        SCOPED_TRACE(name);
        std::string brief = folder + "/" + name + ".json",
                    exact = folder + "/exact/" + name + ".json";
        ASSERT_EQ(RunCli({"export", demo, name, brief, "--short"}).exitCode, 0);
        ASSERT_EQ(RunCli({"export", demo, name, exact}).exitCode, 0);
        EXPECT_FALSE(Has(Slurp(brief), "\"root\"")) << "every demo resource has a short form";
        CliRun imported = RunCli({"import", copy, brief});
        EXPECT_TRUE(Has(imported.out, "Imported " + name)) << imported.err;
        EXPECT_EQ(RunCli({"import", exactCopy, exact}).exitCode, 0);
        EXPECT_EQ(Stored(copy, name), Stored(demo, name));
        EXPECT_EQ(Stored(exactCopy, name), Stored(demo, name));
    }
    EXPECT_GE(count, 14);

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

// The report also holds the demo to what it is for: each conversation shows off starts, links,
// a comment, an ambient branch and lines sent for voice-over.
TEST_F(ToolsetCli, TheReportSummarisesTheModule) {
    CliRun report = RunCli({"report", demo});
    ASSERT_EQ(report.exitCode, 0) << report.err;
    for (const char* part : {
             "Module \"Demo: The Drowned Lantern\" (id 1)",
             "dlg (conversation): 3",
             "orla_welcome  (version 1,",
             "3 starts, 10 NPC and 10 player lines, 5 links, 1 comment, 1 ambient branch, 6 sent "
             "for voice-over",
             "4 starts, 10 NPC and 8 player lines, 2 links, 1 comment, 1 ambient branch, 3 sent "
             "for voice-over",
             "Tables: 8",
             "toolset_dlglang: 3 rows, 3 columns",
             "Strings: 55 texts of 49 string ids in 3 languages; 9 voice-over and 5 localization "
             "status records",
             "Check: every resource and table reads back whole.",
         })
        EXPECT_TRUE(Has(report.out, part)) << part << "\nin:\n" << report.out;
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
    EXPECT_TRUE(Has(checked.err, "the module is damaged: 1 of 17 resources cannot be read"))
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

// The host lists the plugins it finds with each class as the definition states it, read from the
// library file: its id as written, description, flags and patterns.
TEST(ToolsetCliPlugins, ListsTheClassesOfTheConversationEditor) {
    CliRun run = RunCli({"plugins"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(Has(run.out,
                    "  libEditorDlg.so: loaded\n"
                    "    {00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}  Conversation Editor  "
                    "\"ConversationEditor\"\n"
                    "    {6E3D0619-3A01-4d28-A05A-62CED6F22A73}  Conversation Line Preview  "
                    "[ToolWindow]  \"ConversationLinePreview\"\n"))
        << run.out;
    run = RunCli({"plugins", "/nonexistent/plugins"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(Has(run.err, "the plugins folder \"/nonexistent/plugins\" does not exist"));
}

}  // namespace
