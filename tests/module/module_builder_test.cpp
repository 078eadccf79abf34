// Building a module file from a folder of sources: what it stores, every fault it reports, and
// that a failed build leaves no module, or the earlier one, behind. Then the demo module built from
// data/demo: what its conversations refer to exists, but for the deliberately faulty lines. The
// command-line host's tests (tests/cli) carry every demo resource through JSON and back, check
// what each conversation shows off (starts, links, comments, ambient branches, voice-over)
// through the report, and what validation finds through validate.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "agents/agentconversation.h"
#include "agents/resourceschemas.h"
#include "support/demo_module.h"
#include "support/test_folders.h"
#include "ts/modulebuilder.h"
#include "ts/resourcecodec.h"
#include "ts/text.h"

namespace {

namespace fs = std::filesystem;

class ModuleBuilder : public ::testing::Test {
protected:
    std::string root = ts::test::MakeTempFolder("ts-build");
    std::string sources = root + "/sources";
    std::string module = root + "/out.tsmod";
    ts::ModuleBuildSummary summary;
    std::vector<std::u16string> problems;

    void SetUp() override {
        Write("module.json", R"({"name": "Harbour", "moduleId": 7})");
        Write(
            "resources/plt_harbour.plo.json",
            R"({"fields": {"StatusList": [{"Flag": 0, "Name": "ARRIVED"}, {"Flag": 1, "Name": "LEFT"}]}})");
        Write("resources/docks.dlg.json", R"({"fields": {
            "StartList": [{"LineIndex": 0}],
            "NPCLineList": [{"StringID": 10, "Text": "Ships in.", "ConditionPlotURI": "plt_harbour", "ConditionPlotFlag": 0}],
            "PlayerLineList": []}})");
        Write("tables/toolset_dlglang.csv",
              "ID,LanguageName\n0,English\n1,Fran\xC3\xA7"
              "ais\n");
        Write("strings.csv", "ID,StringID,Language,Text\n1,10,1,Des navires.\n");
        Write("vo_recording_status.csv",
              "ID,StringID,ModuleResRefVersionID,SentForRecordingOn,RequiresReRecording\n1,10,1,"
              "2024-01-02,false\n");
    }
    void TearDown() override { fs::remove_all(root); }

    void Write(const std::string& name, const std::string& text) {
        fs::create_directories(fs::path(sources + "/" + name).parent_path());
        std::ofstream(sources + "/" + name, std::ios::binary | std::ios::trunc) << text;
    }

    bool Build(bool overwrite = false) {
        ts::ModuleBuildOptions options;
        options.overwrite = overwrite;
        options.schemas = ts::ResourceSchemas();
        options.user = u"builder";
        problems.clear();
        return ts::BuildModule(sources, module, options, summary, problems);
    }

    std::string AllProblems() const {
        std::u16string all;
        for (const auto& p : problems) all += p + u"\n";
        return ts::Utf16ToUtf8(all);
    }

    bool LeftoverFiles() {
        for (const auto& entry : fs::directory_iterator(root))
            if (entry.path().filename().string().find(".partial") != std::string::npos) return true;
        return false;
    }
};

TEST_F(ModuleBuilder, BuildsEverythingTheSourcesHold) {
    ASSERT_TRUE(Build()) << AllProblems();
    EXPECT_EQ(summary.resources, 2);
    EXPECT_EQ(summary.tables, 1);
    EXPECT_EQ(summary.strings, 2);  // the line's own text and its translation
    EXPECT_EQ(summary.statusRecords, 1);
    EXPECT_FALSE(LeftoverFiles());

    auto store = ts::OpenSqliteStore(module, {});
    ASSERT_TRUE(store);
    ts::ModuleInfo info;
    ASSERT_TRUE(store->GetModuleInfo(info));
    EXPECT_EQ(info.name, u"Harbour");
    EXPECT_EQ(info.moduleId, 7);
    std::u16string text;
    ASSERT_TRUE(store->GetString(10, 0, text));
    EXPECT_EQ(text, u"Ships in.");
    ASSERT_TRUE(store->GetString(10, 1, text));
    EXPECT_EQ(text, u"Des navires.");
    ts::ResourceInfo resource;
    ASSERT_TRUE(store->GetResourceInfo(u"docks", u"dlg", resource));
    EXPECT_EQ(resource.modifiedBy, u"builder");
}

TEST_F(ModuleBuilder, ReportsEveryFaultAndLeavesNoModuleBehind) {
    Write("resources/broken.dlg.json", "{\"fields\": {\"NPCLineList\": [{\"Text\": \"a\",}]}}");
    Write("resources/typo.plo.json", R"({"fields": {"StatusLst": []}})");
    Write("resources/noext.json", R"({"fields": {}})");
    Write("resources/other.dlg.json",
          R"({"fields": {"NPCLineList": [{"StringID": 10, "Text": "Ships out."}]}})");
    Write("tables/poses.csv", "ID,Label\n1,Stand\n1,Sit\n");
    Write("localization_status.csv",
          "ID,StringID,ModuleResRefVersionID,ExportedOn,RequiresReTranslation\n1,99,1,2024-01-02,"
          "false\n2,10,1,soon,false\n");
    EXPECT_FALSE(Build());
    std::string all = AllProblems();
    for (const char* expected : {
             "resources/broken.dlg.json: line 1, column 42: expected a key in double quotes",
             "resources/typo.plo.json: line 1, column 26: a plot has no field \"StatusLst\"",
             "resources/noext.json: the file name does not give the resource type",
             "resources/other.dlg.json: the string id 10 (language 0) has two different texts: "
             "\"Ships out.\" here and \"Ships in.\" in resources/docks.dlg.json (docks)",
             "tables/poses.csv: line 3: the row id 1 is used twice (first on line 2)",
             "localization_status.csv: row 1: Could not store the localization status of string "
             "99: the module has no such string id",
             "localization_status.csv: row 2: \"soon\" is not a date (YYYY-MM-DD)",
         })
        EXPECT_NE(all.find(expected), std::string::npos) << "missing: " << expected << "\nin:\n"
                                                         << all;
    EXPECT_EQ(problems.size(), 7u) << all;
    EXPECT_FALSE(fs::exists(module));
    EXPECT_FALSE(LeftoverFiles());
}

TEST_F(ModuleBuilder, ReplacesAModuleOnlyWhenAskedAndOnlyWhole) {
    ASSERT_TRUE(Build()) << AllProblems();
    auto size = fs::file_size(module);
    EXPECT_FALSE(Build());
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_NE(problems[0].find(u"already exists"), std::u16string::npos);

    // A faulty rebuild leaves the earlier module as it was.
    Write("resources/bad.dlg.json", "{");
    EXPECT_FALSE(Build(true));
    EXPECT_EQ(fs::file_size(module), size);
    EXPECT_TRUE(ts::OpenSqliteStore(module, {}));

    fs::remove(sources + "/resources/bad.dlg.json");
    Write("resources/extra.nss.json", R"({"fields": {}})");
    ASSERT_TRUE(Build(true)) << AllProblems();
    auto store = ts::OpenSqliteStore(module, {});
    ASSERT_TRUE(store);
    ts::ResourceInfo info;
    EXPECT_TRUE(store->GetResourceInfo(u"extra", u"nss", info));

    sources = root + "/nowhere";
    EXPECT_FALSE(Build(true));
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_NE(problems[0].find(u"does not exist"), std::u16string::npos);
}

using Node = CTsComPtr<ITsProperty>;

std::string U8(const std::u16string& s) {
    return ts::Utf16ToUtf8(s);
}

// Every resource a demo conversation names, as the editor collects them for its reference lists,
// exists in the module with the type the field calls for, except on the lines that say they are
// deliberately faulty (toolset-cli validate's test holds what validation finds on them).
TEST_F(ModuleBuilder, TheDemoConversationsReferToWhatExists) {
    ASSERT_TRUE(ts::test::BuildDemoModule(module));
    auto store = ts::OpenSqliteStore(module, {});
    ASSERT_TRUE(store);
    auto Load = [&](std::u16string_view name, std::u16string_view type) {
        std::vector<std::uint8_t> bytes;
        Node root;
        EXPECT_TRUE(store->ReadResource(name, type, bytes)) << U8(std::u16string(name));
        EXPECT_TRUE(ts::DecodeResource(bytes, root));
        return root;
    };
    using C = CAgentConversation;
    using L = CAgentConversationLine;
    const std::pair<bool (C::*)(std::u16string&) const, const char16_t*> conversationFields[] = {
        {&C::GetEndConversationScriptURI, u"nss"},
        {&C::GetEndConversationPlotURI, u"plo"},
        {&C::GetStageURI, u"stg"},
        {&C::GetPreviewAreaURI, u"are"}};
    const std::pair<bool (L::*)(std::u16string&) const, const char16_t*> lineFields[] = {
        {&L::GetConditionScriptURI, u"nss"}, {&L::GetActionScriptURI, u"nss"},
        {&L::GetConditionPlotURI, u"plo"},   {&L::GetActionPlotURI, u"plo"},
        {&L::GetStageURI, u"stg"},           {&L::GetCustomCutsceneURI, u"cut"},
        {&L::GetPreviewAreaURI, u"are"}};
    int references = 0, faulty = 0;
    auto mustExist = [&](bool read, const std::u16string& name, const char16_t* type) {
        ts::ResourceInfo info;
        EXPECT_TRUE(read);
        if (name.empty()) return;
        ++references;
        EXPECT_TRUE(store->GetResourceInfo(name, type, info)) << U8(name) << "." << U8(type);
    };

    std::vector<ts::ResourceInfo> conversations;
    ASSERT_TRUE(store->ListResources(u"dlg", conversations));
    ASSERT_GE(conversations.size(), 3u);
    for (const auto& info : conversations) {
        SCOPED_TRACE(U8(info.name));
        Node root = Load(info.name, u"dlg");
        C conversation(root.Get());
        std::u16string value, comment;
        for (const auto& [get, type] : conversationFields)
            mustExist((conversation.*get)(value), value, type);
        for (bool npc : {true, false}) {
            std::uint32_t count =
                npc ? conversation.NPCLineListCount() : conversation.PlayerLineListCount();
            for (std::uint32_t i = 0; i < count; ++i) {
                Node node;
                ASSERT_TRUE(npc ? conversation.GetNPCLineListItem(i, node)
                                : conversation.GetPlayerLineListItem(i, node));
                L line(node.Get());
                if (line.GetEditorComment(comment) && comment.starts_with(u"Deliberately faulty")) {
                    ++faulty;
                    continue;
                }
                for (const auto& [get, type] : lineFields)
                    mustExist((line.*get)(value), value, type);
            }
        }
    }
    EXPECT_GE(references, 15) << "the lines that name resources were read";
    EXPECT_GE(faulty, 9) << "faulty_examples.dlg";
}

}  // namespace
