// The user's layout file: layouts kept by name, one replaced without touching the others, and a
// damaged or missing file costing only the positions.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/report_capture.h"
#include "support/test_folders.h"
#include "ts/editorlayout.h"
#include "ts/text.h"

TEST(EditorLayout, LayoutsAreKeptByNameAndADamagedFileGivesTheDefaults) {
    std::string folder = ts::test::MakeTempFolder("ts-layouts");
    std::u16string file = ts::Utf8ToUtf16(folder + "/Layouts3.xml");
    EXPECT_TRUE(ts::ReadEditorLayout(file, u"EditorsConversation").empty()) << "no file yet";

    ASSERT_TRUE(ts::WriteEditorLayout(file, u"EditorsConversation",
                                      {{u"WindowSplitter", 640}, {u"TextSplitter", 120}}));
    ASSERT_TRUE(ts::WriteEditorLayout(file, u"Editors<Stage>", {{u"WindowSplitter", 300}}));
    ASSERT_TRUE(ts::WriteEditorLayout(file, u"EditorsConversation", {{u"WindowSplitter", 500}}));
    EXPECT_EQ(ts::ReadEditorLayout(file, u"EditorsConversation"),
              (ts::SplitterPositions{{u"WindowSplitter", 500}}));
    EXPECT_EQ(ts::ReadEditorLayout(file, u"Editors<Stage>"),
              (ts::SplitterPositions{{u"WindowSplitter", 300}}));

    std::ofstream(folder + "/Layouts3.xml") << "<Layouts><Layout Name=\"EditorsConversation\">"
                                               "<Splitter Name=\"WindowSplitter\" Position=\"x\"/>";
    ts::test::ReportCapture reports;
    EXPECT_TRUE(ts::ReadEditorLayout(file, u"EditorsConversation").empty());
    EXPECT_EQ(reports.size(), 1u);
    ASSERT_TRUE(ts::WriteEditorLayout(file, u"EditorsConversation", {{u"WindowSplitter", 10}}));
    EXPECT_EQ(ts::ReadEditorLayout(file, u"EditorsConversation").at(u"WindowSplitter"), 10);
    std::filesystem::remove_all(folder);
}
