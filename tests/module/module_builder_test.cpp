#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "agents/resourceschemas.h"
#include "support/test_folders.h"
#include "ts/modulebuilder.h"
#include "ts/text.h"

namespace {

namespace fs = std::filesystem;

std::string U8(const std::u16string& s) {
    return ts::Utf16ToUtf8(s);
}

class ModuleBuilder : public ::testing::Test {
protected:
    std::string root = ts::test::MakeTempFolder("ts-build");
    std::string sources = root + "/sources";
    std::string module = root + "/out.tsmod";

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

    bool Build(std::vector<std::u16string>& problems, bool overwrite = false) {
        ts::ModuleBuildOptions options;
        options.overwrite = overwrite;
        options.schemas = ts::ResourceSchemas();
        options.user = u"builder";
        ts::ModuleBuildSummary summary;
        return ts::BuildModule(sources, module, options, summary, problems);
    }

    std::u16string All(const std::vector<std::u16string>& problems) {
        std::u16string all;
        for (const auto& p : problems) all += p + u"\n";
        return all;
    }

    bool LeftoverFiles() {
        for (const auto& entry : fs::directory_iterator(root))
            if (entry.path().filename().string().find(".partial") != std::string::npos) return true;
        return false;
    }
};

TEST_F(ModuleBuilder, BuildsEverythingTheSourcesHold) {
    ts::ModuleBuildOptions options;
    options.schemas = ts::ResourceSchemas();
    options.user = u"builder";
    ts::ModuleBuildSummary summary;
    std::vector<std::u16string> problems;
    ASSERT_TRUE(ts::BuildModule(sources, module, options, summary, problems)) << U8(All(problems));
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
    std::vector<std::u16string> problems;
    EXPECT_FALSE(Build(problems));
    std::u16string all = All(problems);
    for (const char16_t* expected : {
             u"resources/broken.dlg.json: line 1, column 42: expected a key in double quotes",
             u"resources/typo.plo.json: line 1, column 26: a plot has no field \"StatusLst\"",
             u"resources/noext.json: the file name does not give the resource type",
             u"resources/other.dlg.json: the string id 10 (language 0) has two different texts: "
             u"\"Ships out.\" here and "
             u"\"Ships in.\" in resources/docks.dlg.json (docks)",
             u"tables/poses.csv: line 3: the row id 1 is used twice (first on line 2)",
             u"localization_status.csv: row 1: Could not store the localization status of string "
             u"99: the module has no "
             u"such string id",
             u"localization_status.csv: row 2: \"soon\" is not a date (YYYY-MM-DD)",
         })
        EXPECT_NE(all.find(expected), std::u16string::npos)
            << "missing: " << U8(expected) << "\nin:\n"
            << U8(all);
    EXPECT_EQ(problems.size(), 7u) << U8(all);
    EXPECT_FALSE(fs::exists(module));
    EXPECT_FALSE(LeftoverFiles());
}

TEST_F(ModuleBuilder, ReplacesAModuleOnlyWhenAskedAndOnlyWhole) {
    std::vector<std::u16string> problems;
    ASSERT_TRUE(Build(problems)) << U8(All(problems));
    auto size = fs::file_size(module);

    EXPECT_FALSE(Build(problems));
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_NE(problems[0].find(u"already exists"), std::u16string::npos);

    // A faulty rebuild leaves the earlier module as it was.
    Write("resources/bad.dlg.json", "{");
    EXPECT_FALSE(Build(problems, true));
    EXPECT_EQ(fs::file_size(module), size);
    EXPECT_TRUE(ts::OpenSqliteStore(module, {}));

    fs::remove(sources + "/resources/bad.dlg.json");
    Write("resources/extra.nss.json", R"({"fields": {}})");
    ASSERT_TRUE(Build(problems, true)) << U8(All(problems));
    auto store = ts::OpenSqliteStore(module, {});
    ASSERT_TRUE(store);
    ts::ResourceInfo info;
    EXPECT_TRUE(store->GetResourceInfo(u"extra", u"nss", info));

    std::vector<std::u16string> none;
    EXPECT_FALSE(ts::BuildModule(root + "/nowhere", root + "/x.tsmod", {},
                                 *std::make_unique<ts::ModuleBuildSummary>(), none));
    ASSERT_EQ(none.size(), 1u);
    EXPECT_NE(none[0].find(u"does not exist"), std::u16string::npos);
}

}  // namespace
