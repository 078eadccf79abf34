#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "support/report_capture.h"
#include "support/test_folders.h"
#include "ts/paths.h"
#include "ts/report.h"

namespace {

// The log lives in "logs" under the data folder, named after this test program; a line holds the
// time, the level's name, the source and the message with its quotes doubled.
TEST(Report, AppendsToTheLogNamedAfterTheHost) {
    std::string log = ts::DiagnosticLogPath();
    EXPECT_EQ(log, ts::ToolsetDataFolder() + "/logs/framework_tests.log");
    std::filesystem::remove(log);

    ts::test::ReportCapture reports;
    EXPECT_EQ(Report(ReportLevel::Error, "engine2da", 7, u"Say \"hello\" to \u00e9"), S_OK);
    EXPECT_EQ(Report(9, "x", 1, u"second"), S_OK);

    std::stringstream file;
    file << std::ifstream(log, std::ios::binary).rdbuf();
    std::string text = file.str();
    EXPECT_NE(text.find(", ERROR, \"engine2da\", 7, \"Say \"\"hello\"\" to \xc3\xa9\"\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find(", UNKNOWN, \"x\", 1, \"second\"\n"), std::string::npos) << text;
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2);
    EXPECT_EQ(text.find(", "), 23u) << "after a time such as 2026-11-22 07:00:00.000";
    EXPECT_STREQ(ReportLevelName(-1), "UNKNOWN");
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports.entries()[0].sourceFile, "engine2da");
    EXPECT_EQ(reports.entries()[0].line, 7);
}

TEST(Report, FailsWhenTheLogCannotBeOpenedButStillNotifies) {
    const char* saved = std::getenv("XDG_DATA_HOME");
    std::string savedValue = saved ? saved : "";
    // A plain file where the data folder should be: no folder, no log.
    std::string root = ts::test::MakeTempFolder("ts-report");
    std::ofstream(root + "/blocked") << "not a folder";
    setenv("XDG_DATA_HOME", (root + "/blocked").c_str(), 1);

    ts::test::ReportCapture reports;
    EXPECT_EQ(Report(ReportLevel::Warning, "AgentBase", 1, u"lost"), E_FAIL);
    EXPECT_EQ(reports.size(), 1u) << "listeners still hear of the report";

    setenv("XDG_DATA_HOME", savedValue.c_str(), 1);
    std::filesystem::remove_all(root);
    EXPECT_EQ(Report(ReportLevel::Info, "AgentBase", 2, u"back"), S_OK);
}

}  // namespace
