// Importing a conversation keeps the module's string table in step with its lines, as building
// the module does: the ids become known to the store and hold the lines' texts.
#include <gtest/gtest.h>

#include <fstream>

#include "cli_run.h"
#include "ts/resourcestore.h"
#include "ts/text.h"

namespace {

using ts::test::RunToolsetCli;

class ImportStrings : public ts::test::CliDemoModule {
protected:
    std::string Conversation(const std::string& greeting) {
        std::string file = folder + "/ferry.dlg.json";
        std::ofstream(file) << R"({"resource": "ferry", "type": "dlg", "fields": {
            "StartList": [{"LineIndex": 0}],
            "NPCLineList": [{"StringID": 7001, "Text": ")"
                            << greeting
                            << R"(", "TransitionList": [{"IsLink": false, "LineIndex": 0}]}],
            "PlayerLineList": [{"StringID": 7002, "LanguageID": 1, "Text": "Two, please.", "Speaker": "PLAYER"}]}})";
        return file;
    }
    std::u16string Text(std::int32_t id, std::int32_t language) {
        auto store = ts::OpenSqliteStore(demo, {});
        std::u16string text;
        EXPECT_TRUE(store && store->GetString(id, language, text)) << id;
        return text;
    }
};

TEST_F(ImportStrings, ImportedLinesKeepTheirIdsAndTextsInTheStringTable) {
    auto imported = RunToolsetCli({"import", demo, Conversation("Fares are a copper each.")});
    ASSERT_EQ(imported.exitCode, 0) << imported.err;
    EXPECT_EQ(Text(7001, 0), u"Fares are a copper each.");
    EXPECT_EQ(Text(7002, 1), u"Two, please.");
    {
        auto store = ts::OpenSqliteStore(demo, {});
        std::int32_t valid = 0;
        ASSERT_TRUE(store->ValidateStringId(7002, valid));
        EXPECT_EQ(valid, 7002);
        // New ids come after the imported ones.
        ASSERT_TRUE(store->ValidateStringId(-1, valid));
        EXPECT_EQ(valid, 7003);
    }

    // Replacing the conversation replaces the texts.
    auto replaced =
        RunToolsetCli({"import", demo, Conversation("Fares went up. Two coppers."), "--replace"});
    ASSERT_EQ(replaced.exitCode, 0) << replaced.err;
    EXPECT_EQ(Text(7001, 0), u"Fares went up. Two coppers.");
}

}  // namespace
