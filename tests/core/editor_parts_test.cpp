// The small parts of an editor object: plugin flags, resource names, layout places, string
// lists, command bars, and events sent to the host.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>

#include "core/command_source_support.h"
#include "core/host_events.h"
#include "core/layout_places.h"
#include "core/plugin_flags.h"
#include "core/resource_id.h"
#include "core/string_enum.h"
#include "support/report_capture.h"
#include "support/test_folders.h"
#include "ts/environment.h"
#include "ts/events.h"
#include "ts/hoststring.h"
#include "ts/paths.h"
#include "ts/text.h"
#include "ts/uiwindow.h"

namespace {

using ts::test::ReportCapture;

TEST(PluginFlags, EachKnownTokenAddsItsFlagAndUnknownOnesAreReported) {
    struct Case {
        std::u16string attribute;
        std::uint32_t flags;
        std::size_t reports;
    };
    const Case cases[] = {
        {u"", 0, 0},
        {u"SingleInstance,ToolWindow", 0x30000, 0},
        {u"ToolWindow", 0x20000, 0},
        {u"SingleInstance", 0x10000, 0},
        {u" ToolWindow , SingleInstance ", 0x30000, 0},
        {u"ToolWindow,,", 0x20000, 0},
        {u"Floating", 0, 1},
        {u"Floating,ToolWindow,Docked", 0x20000, 2},
        {u"toolwindow", 0, 1},  // tokens are matched exactly
    };
    for (const auto& c : cases) {
        ReportCapture reports;
        EXPECT_EQ(ts::ParsePluginFlags(c.attribute), c.flags) << ts::Utf16ToUtf8(c.attribute);
        EXPECT_EQ(reports.Count(u"Unknown flag in plugin settings"), c.reports)
            << ts::Utf16ToUtf8(c.attribute);
        if (c.reports) {
            EXPECT_EQ(reports.entries()[0].level, 0) << "an assertion report";
        }
    }
}

TEST(ResourceId, ParsesFolderNameAndType) {
    auto id = TsResourceId::Parse(u"act1\\Intro_Talk.DLG");
    EXPECT_EQ(id.folder, u"act1");
    EXPECT_EQ(id.name, u"Intro_Talk");
    EXPECT_EQ(id.type, u"dlg");
    EXPECT_EQ(id.FileName(), u"Intro_Talk.dlg");

    EXPECT_EQ(TsResourceId::Parse(u"a/b/c.tar.gz"), (TsResourceId{u"a/b", u"c.tar", u"gz"}));
    EXPECT_EQ(TsResourceId::Parse(u"plain"), (TsResourceId{u"", u"plain", u""}));
    EXPECT_EQ(TsResourceId::Parse(u".hidden"), (TsResourceId{u"", u".hidden", u""}));
    EXPECT_FALSE(TsResourceId::Parse(u"").IsValid());
    EXPECT_FALSE(TsResourceId::Parse(u"folder/").IsValid());
}

class LayoutPlaces : public ::testing::Test {
protected:
    void SetUp() override {
        if (const char* v = std::getenv("TS_APPDATAPATH")) saved_ = v;
        root_ = ts::test::MakeTempFolder("ts-layouts");
    }
    void TearDown() override {
        if (saved_)
            setenv("TS_APPDATAPATH", saved_->c_str(), 1);
        else
            unsetenv("TS_APPDATAPATH");
        std::filesystem::remove(std::string(std::getenv("XDG_CONFIG_HOME")) + "/user-dirs.dirs");
        std::filesystem::remove_all(root_);
    }
    std::optional<std::string> saved_;
    std::string root_;
};

TEST_F(LayoutPlaces, DefaultLayoutsLiveInTheApplicationDataFolder) {
    setenv("TS_APPDATAPATH", (root_ + "/appdata").c_str(), 1);
    EXPECT_EQ(ts::DefaultLayoutFilePath(), ts::Utf8ToUtf16(root_ + "/appdata/DefaultLayouts.xml"));
    setenv("TS_APPDATAPATH", (root_ + "/appdata/").c_str(), 1);
    EXPECT_EQ(ts::DefaultLayoutFilePath(), ts::Utf8ToUtf16(root_ + "/appdata/DefaultLayouts.xml"));
    unsetenv("TS_APPDATAPATH");
    EXPECT_EQ(ts::DefaultLayoutFilePath(),
              ts::Utf8ToUtf16(ts::ToolsetDataFolder() + "/DefaultLayouts.xml"));

    EXPECT_EQ(ts::DefaultLayoutProfileKey(false, u"Dialog"), u"DefaultLayout\\EditorsDialog");
    EXPECT_EQ(ts::DefaultLayoutProfileKey(true, u"Find"), u"DefaultLayout\\DialogsFind");
}

TEST_F(LayoutPlaces, UserLayoutsLiveInTheDocumentsFolderWhichIsCreated) {
    std::string config = std::getenv("XDG_CONFIG_HOME");
    std::filesystem::create_directories(config);
    std::ofstream(config + "/user-dirs.dirs")
        << "# written by a test\n"
        << "XDG_DESKTOP_DIR=\"$HOME/Desktop\"\n"
        << "XDG_DOCUMENTS_DIR=\"" << root_ << "/My Documents\"\n";
    std::string folder = root_ + "/My Documents/Halvorn/Mistreach/Toolset/";
    ASSERT_FALSE(std::filesystem::exists(folder));
    EXPECT_EQ(ts::UserLayoutFolder(), ts::Utf8ToUtf16(folder));
    EXPECT_TRUE(std::filesystem::is_directory(folder));
    EXPECT_EQ(ts::UserLayoutFilePath(), ts::Utf8ToUtf16(folder + "Layouts3.xml"));

    // "$HOME" in the file is the user's home folder.
    std::ofstream(config + "/user-dirs.dirs") << "XDG_DOCUMENTS_DIR=\"$HOME/Docs\"\n";
    EXPECT_EQ(ts::DocumentsFolder(), std::string(std::getenv("HOME")) + "/Docs");
}

TEST(StringEnum, HandsOutEachTextOnceUntilReset) {
    CTsComPtr<ITsStringEnum> list;
    ASSERT_EQ(CTsStringEnum::Create({u"Conversation", u"Stage"}, list.Put()), S_OK);
    std::uint32_t count = 0;
    ASSERT_EQ(list->GetCount(&count), S_OK);
    EXPECT_EQ(count, 2u);
    CTsHostString item;
    ASSERT_EQ(list->Next(item.Put()), S_OK);
    EXPECT_EQ(item.View(), u"Conversation");
    ASSERT_EQ(list->Next(item.Put()), S_OK);
    EXPECT_EQ(item.View(), u"Stage");
    EXPECT_EQ(list->Next(item.Put()), S_FALSE);
    EXPECT_EQ(item.Get(), nullptr);
    ASSERT_EQ(list->Reset(), S_OK);
    ASSERT_EQ(list->Next(item.Put()), S_OK);
    EXPECT_EQ(item.View(), u"Conversation");
    EXPECT_EQ(list->Next(nullptr), E_POINTER);
    EXPECT_EQ(CTsStringEnum::Create({}, nullptr), E_POINTER);
}

TEST(CommandSourceSupport, SplitsTheCommandBarsAtLineFeeds) {
    struct W;
    EXPECT_EQ(CTsUICommandSourceSupport<W>(u"S", u"DialogEditor\nDialogEditorHighlight")
                  .CommandBarNames(),
              (std::vector<std::u16string>{u"DialogEditor", u"DialogEditorHighlight"}));
    EXPECT_TRUE(CTsUICommandSourceSupport<W>(u"S", u"").CommandBarNames().empty());
    EXPECT_EQ(CTsUICommandSourceSupport<W>(u"S", u"\nOne\n\nTwo\n").CommandBarNames(),
              (std::vector<std::u16string>{u"One", u"Two"}));
}

TEST(HostEvents, PluginEventsReachTheHostsListeners) {
    std::vector<ts::HostEvent> seen;
    int handle = ts::AddHostEventListener([&](const ts::HostEvent& e) { seen.push_back(e); });
    EXPECT_EQ(
        ts::SendHostEvent(ts::events::Error(), ts::events::kError,
                          u"Conversation \"intro\" link refers to a line that does not exist."),
        S_OK);
    EXPECT_EQ(ts::SendHostEvent(ts::events::UserInteraction(), ts::events::kNotice, u""), S_OK);
    EXPECT_EQ(ts::SendHostEvent(0, 0, u"no event"), E_INVALIDARG);
    ts::RemoveHostEventListener(handle);
    EXPECT_EQ(ts::SendHostEvent(ts::events::Error(), ts::events::kError, u"unheard"), S_OK);

    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].event, ts::events::Error());
    EXPECT_EQ(seen[0].flags, 4u);
    EXPECT_EQ(seen[0].text, u"Conversation \"intro\" link refers to a line that does not exist.");
    EXPECT_EQ(seen[1].event, ts::events::UserInteraction());
    EXPECT_EQ(seen[1].flags, 1u);
    EXPECT_EQ(seen[1].text, u"");
}

}  // namespace
