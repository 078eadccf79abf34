// The command-line host run as a writer runs it, as a separate program: building the demo module,
// moving resources out and in as JSON, reports, checks of damaged modules and bad input.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "cli_run.h"
#include "ts/resourcestore.h"
#include "ts/text.h"

namespace {

namespace fs = std::filesystem;
using ts::test::Contains;
using ts::test::ReadWholeFile;
using ts::test::RunToolsetCli;
using ToolsetCli = ts::test::CliDemoModule;

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

// Every demo resource goes out in both JSON forms and comes back into empty modules as the same
// bytes: decoding, writing, reading and encoding lose nothing and are stable.
TEST_F(ToolsetCli, ExportAndImportCarryEveryDemoResourceUnchanged) {
    fs::create_directories(folder + "/empty");
    fs::create_directories(folder + "/exact");
    std::string copy = folder + "/copy.tsmod", exactCopy = folder + "/exact.tsmod";
    for (const std::string& module : {copy, exactCopy}) {
        auto made = RunToolsetCli({"module", "create", folder + "/empty", module});
        ASSERT_EQ(made.exitCode, 0) << made.err;
        EXPECT_TRUE(Contains(made.out, "Made the module")) << made.out;
    }
    auto dlg = RunToolsetCli({"list", demo, "dlg"});
    EXPECT_EQ(std::count(dlg.out.begin(), dlg.out.end(), '\n'), 3);
    auto listed = RunToolsetCli({"list", demo});
    ASSERT_EQ(listed.exitCode, 0);
    EXPECT_TRUE(Contains(listed.out, "orla_welcome.dlg  version 1")) << listed.out;
    std::istringstream lines(listed.out);
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        std::string name = line.substr(0, line.find("  "));
        SCOPED_TRACE(name);
        std::string brief = folder + "/" + name + ".json",
                    exact = folder + "/exact/" + name + ".json";
        ASSERT_EQ(RunToolsetCli({"export", demo, name, brief, "--short"}).exitCode, 0);
        ASSERT_EQ(RunToolsetCli({"export", demo, name, exact}).exitCode, 0);
        EXPECT_FALSE(Contains(ReadWholeFile(brief), "\"root\""))
            << "every demo resource has a short form";
        auto imported = RunToolsetCli({"import", copy, brief});
        EXPECT_TRUE(Contains(imported.out, "Imported " + name)) << imported.err;
        EXPECT_EQ(RunToolsetCli({"import", exactCopy, exact}).exitCode, 0);
        EXPECT_EQ(Stored(copy, name), Stored(demo, name));
        EXPECT_EQ(Stored(exactCopy, name), Stored(demo, name));
    }
    EXPECT_GE(count, 14);

    std::string file = folder + "/orla.utc.json";
    auto again = RunToolsetCli({"import", copy, file});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_TRUE(Contains(again.err, "already has the resource \"orla\" (utc); use --replace"))
        << again.err;
    auto replaced = RunToolsetCli({"import", copy, file, "--replace"});
    EXPECT_EQ(replaced.exitCode, 0) << replaced.err;
    EXPECT_TRUE(Contains(RunToolsetCli({"list", copy, "utc"}).out, "orla.utc  version 2"));

    auto checked = RunToolsetCli({"check", copy});
    EXPECT_EQ(checked.exitCode, 0) << checked.err;
    EXPECT_TRUE(Contains(checked.out, "The module is sound")) << checked.out;
}

// The report also holds the demo to what it is for: each conversation shows off starts, links,
// a comment, an ambient branch and lines sent for voice-over.
TEST_F(ToolsetCli, TheReportSummarisesTheModule) {
    auto report = RunToolsetCli({"report", demo});
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
        EXPECT_TRUE(Contains(report.out, part)) << part << "\nin:\n" << report.out;
}

// Damage in one resource is reported for that resource alone; the others still read.
TEST_F(ToolsetCli, CheckFindsDamageWithoutTouchingOtherResources) {
    std::vector<std::uint8_t> orla;
    {
        auto store = ts::OpenSqliteStore(demo, {});
        ASSERT_TRUE(store);
        ASSERT_TRUE(store->ReadResource(u"orla", u"utc", orla));
    }
    std::string bytes = ReadWholeFile(demo);
    auto at = bytes.find(std::string(orla.begin(), orla.end()));
    ASSERT_NE(at, std::string::npos) << "the resource lies whole in one page of the module file";
    bytes[at + orla.size() / 2] ^= 0x20;
    std::ofstream(demo, std::ios::binary | std::ios::trunc) << bytes;
    auto before = fs::last_write_time(demo);

    auto checked = RunToolsetCli({"check", demo});
    EXPECT_EQ(checked.exitCode, 1);
    EXPECT_TRUE(Contains(
        checked.out,
        "damaged  orla.utc: The resource is damaged: its checksum does not match its content"))
        << checked.out;
    EXPECT_TRUE(Contains(checked.out, "ok       brannoc.utc")) << checked.out;
    EXPECT_TRUE(Contains(checked.out, "ok       orla_welcome.dlg")) << checked.out;
    EXPECT_TRUE(Contains(checked.err, "the module is damaged: 1 of 17 resources cannot be read"))
        << checked.err;
    EXPECT_EQ(fs::last_write_time(demo), before);  // a check writes nothing
    EXPECT_EQ(RunToolsetCli({"report", demo}).exitCode, 1);

    auto exported = RunToolsetCli({"export", demo, "orla.utc"});
    EXPECT_EQ(exported.exitCode, 1);
    EXPECT_TRUE(Contains(exported.err, "cannot be read: The resource is damaged")) << exported.err;
    EXPECT_EQ(RunToolsetCli({"export", demo, "brannoc.utc"}).exitCode, 0);
}

TEST_F(ToolsetCli, ATruncatedOrForeignModuleIsReportedNotCrashedOn) {
    std::string bytes = ReadWholeFile(demo);
    for (double keep : {0.6, 0.1}) {
        std::string cut = folder + "/cut.tsmod";
        std::ofstream(cut, std::ios::binary | std::ios::trunc)
            << bytes.substr(0, static_cast<std::size_t>(bytes.size() * keep));
        auto checked = RunToolsetCli({"check", cut});
        EXPECT_EQ(checked.exitCode, 1) << keep << "\n" << checked.out << checked.err;
        EXPECT_TRUE(Contains(checked.out + checked.err, "damaged")) << checked.out << checked.err;
        fs::remove(cut);
    }
    std::string text = folder + "/notes.tsmod";
    std::ofstream(text) << "These are my notes, not a module.\n";
    auto foreign = RunToolsetCli({"check", text});
    EXPECT_EQ(foreign.exitCode, 1);
    EXPECT_TRUE(Contains(foreign.err, "is not a toolset module")) << foreign.err;
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
        {{"list", demo, "dlg", "extra"}, 2, "list takes fewer arguments"},
        {{"export", demo, "orla.utc", "--brief"}, 2, "export does not know the option --brief"},
        {{"module", "delete"}, 2, "the module command is"},
    };
    for (const auto& c : cases) {
        auto run = RunToolsetCli(c.args);
        EXPECT_EQ(run.exitCode, c.exitCode) << c.args[0] << " " << run.err;
        EXPECT_TRUE(Contains(run.err, c.message))
            << c.args[0] << "\n  wanted: " << c.message << "\n  got: " << run.err;
    }
    EXPECT_FALSE(fs::exists(folder + "/new.tsmod"));
    auto help = RunToolsetCli({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(Contains(help.out, "module create SOURCES MODULE"));
}

// The host lists the plugins it finds with each class as the definition states it, read from the
// library file: its id as written, description, flags and patterns.
TEST(ToolsetCliPlugins, ListsTheClassesOfTheConversationEditor) {
    auto run = RunToolsetCli({"plugins"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(Contains(run.out,
                         "  libEditorDlg.so: loaded\n"
                         "    {00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}  Conversation Editor  "
                         "\"ConversationEditor\"\n"
                         "    {6E3D0619-3A01-4d28-A05A-62CED6F22A73}  Conversation Line Preview  "
                         "[ToolWindow]  \"ConversationLinePreview\"\n"))
        << run.out;
    run = RunToolsetCli({"plugins", "/nonexistent/plugins"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(Contains(run.err, "the plugins folder \"/nonexistent/plugins\" does not exist"));
}

}  // namespace
