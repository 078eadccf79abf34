#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/report_capture.h"
#include "support/test_folders.h"
#include "ts/comptr.h"
#include "ts/configuration.h"
#include "ts/paths.h"
#include "ts/text.h"

namespace {

std::string U8(const std::u16string& s) {
    return ts::Utf16ToUtf8(s);
}

constexpr const char* kDefaults = R"(<?xml version="1.0" encoding="UTF-8"?>
<Settings Version="1">
  <Group Name="Common\DlgEditor">
    <Value Key="LinkColor">0.5 0.5 0.5</Value>
    <Value Key="ErrorColor">#FF8000</Value>
    <Value Key="MaxHenchmen"> 4 </Value>
    <Value Key="FXAName">Actors &amp; Co</Value>
    <Value Key="Broken">twelve</Value>
  </Group>
  <Menus Name="DialogEditorMenus">
    <Popup Caption="Edit">
      <Command Name="Edit.Cut"/>
      <Separator/>
      <Popup Caption="More"><Command Name="Edit.Expand"/></Popup>
    </Popup>
  </Menus>
  <Menus Name="OtherMenus"><Command Name="Other.Thing"/></Menus>
</Settings>
)";

TEST(Configuration, ReadsTypedValuesAndLetsTheUserOverrideThem) {
    ts::Configuration c;
    std::u16string error;
    ASSERT_TRUE(c.LoadText(kDefaults, u"DefaultSettings.xml", &error)) << U8(error);
    const char16_t* group = u"Common\\DlgEditor";

    TsColour colour;
    ASSERT_TRUE(c.GetColour(u"common\\dlgeditor", u"LINKCOLOR", colour));  // names ignore case
    EXPECT_EQ(colour, (TsColour{0.5f, 0.5f, 0.5f, 1}));
    ASSERT_TRUE(c.GetColour(group, u"ErrorColor", colour));
    EXPECT_EQ(colour, (TsColour{1, 128 / 255.0f, 0, 1}));
    std::int32_t henchmen = 0;
    ASSERT_TRUE(c.GetInt(group, u"MaxHenchmen", henchmen));
    EXPECT_EQ(henchmen, 4);

    // Missing and unreadable values fail and leave the caller's value as it was.
    std::int32_t kept = 99;
    EXPECT_FALSE(c.GetInt(group, u"Nothing", kept, &error));
    EXPECT_EQ(error, u"The settings have no value \"Nothing\" in the group \"Common\\DlgEditor\"");
    EXPECT_FALSE(c.GetInt(group, u"Broken", kept, &error));
    EXPECT_EQ(error,
              u"The setting \"Broken\" of the group \"Common\\DlgEditor\" "
              u"(DefaultSettings.xml, line 8) is not a whole number: \"twelve\"");
    EXPECT_FALSE(c.GetColour(group, u"MaxHenchmen", colour));
    bool skip = false;
    EXPECT_FALSE(c.GetBool(group, u"FXAName", skip));
    EXPECT_EQ(kept, 99);

    const auto* menus = c.Menus(u"dialogeditormenus");
    ASSERT_TRUE(menus && menus->size() == 1u);
    const ts::MenuEntry& edit = menus->front();
    EXPECT_EQ(edit.kind, ts::MenuEntry::Kind::Popup);
    EXPECT_EQ(edit.text, u"Edit");
    ASSERT_EQ(edit.entries.size(), 3u);
    EXPECT_EQ(edit.entries[0].text, u"Edit.Cut");
    EXPECT_EQ(edit.entries[1].kind, ts::MenuEntry::Kind::Separator);
    EXPECT_EQ(edit.entries[2].entries.front().text, u"Edit.Expand");
    EXPECT_EQ(c.Menus(u"Nothing"), nullptr);

    // The user's file changes one value and one menu section; the rest stays.
    ASSERT_TRUE(c.LoadText(R"(<Settings>
        <Group Name="COMMON\DLGEDITOR"><Value Key="MaxHenchmen">2</Value></Group>
        <Menus Name="DialogEditorMenus"><Command Name="Edit.Copy"/></Menus>
    </Settings>)",
                           u"Settings.xml", &error))
        << U8(error);
    ASSERT_TRUE(c.GetInt(group, u"MaxHenchmen", henchmen));
    EXPECT_EQ(henchmen, 2);
    EXPECT_TRUE(c.Has(group, u"LinkColor"));
    ASSERT_EQ(c.Menus(u"DialogEditorMenus")->size(), 1u);
    EXPECT_EQ(c.Menus(u"DialogEditorMenus")->front().text, u"Edit.Copy");
    EXPECT_NE(c.Menus(u"OtherMenus"), nullptr);
}

TEST(Configuration, AFaultyFileIsRefusedWholeWithItsLine) {
    struct Case {
        const char* xml;
        const char16_t* error;
    };
    const Case cases[] = {
        {R"(<Settings><Group Name="G"><Value Key="K">1</Value></Group>)",
         u"user.xml, line 1, column "},
        {"<Settings>\n<Group Name=\"G\">\n<Vaule Key=\"K\">1</Vaule></Group></Settings>",
         u"user.xml, line 3: <Vaule> is not expected here"},
        {R"(<Settings><Group><Value Key="K">1</Value></Group></Settings>)",
         u"user.xml, line 1: <Group> needs the attribute \"Name\""},
        {R"(<Settings><Group Name="G" Colour="x"/></Settings>)",
         u"user.xml, line 1: <Group> has no attribute \"Colour\""},
        {R"(<Settings Version="2"/>)",
         u"user.xml, line 1: the settings are of version 2; this toolset reads version 1"},
        {"<Preferences/>", u"user.xml, line 1: the root element is <Preferences>"},
        {"<Settings>\nloose text</Settings>", u"user.xml, line 2: text outside a <Value>"},
        {R"(<Settings><Menus Name="M"><Command/></Menus></Settings>)",
         u"user.xml, line 1: <Command> needs the attribute \"Name\""},
        {R"(<Settings><Group Name="G"><Value Key="A">1<Value Key="B"/></Value></Group></Settings>)",
         u"user.xml, line 1: <Value> is not expected here"},
    };
    for (const auto& c : cases) {
        ts::Configuration config;
        ASSERT_TRUE(config.LoadText(
            R"(<Settings><Group Name="G"><Value Key="Kept">1</Value></Group></Settings>)", u"d"));
        std::u16string error;
        EXPECT_FALSE(config.LoadText(c.xml, u"user.xml", &error)) << c.xml;
        EXPECT_EQ(error.substr(0, std::u16string_view(c.error).size()), c.error)
            << c.xml << "\n  gave: " << U8(error);
        EXPECT_TRUE(config.Has(u"G", u"Kept"));
        EXPECT_FALSE(config.Has(u"G", u"K"));  // nothing of the faulty file is kept
    }
    ts::Configuration config;
    std::u16string error;
    EXPECT_FALSE(config.LoadFile("/nonexistent/Settings.xml", &error));
    EXPECT_EQ(error, u"/nonexistent/Settings.xml: the file cannot be read");
}

TEST(Configuration, EnvironmentKeysAreReadOrKeepTheirDefaults) {
    ts::Configuration c;
    ASSERT_TRUE(c.LoadText(R"(<Settings><Group Name="Environment">
        <Value Key="Role">Writer</Value>
        <Value Key="UseDefaultDatabase">false</Value>
        <Value Key="XBox360AutoCopy">maybe</Value>
    </Group></Settings>)",
                           u"x"));
    ts::test::ReportCapture reports;
    auto env = ts::ReadEnvironment(c);
    EXPECT_EQ(env.Role, u"Writer");
    EXPECT_FALSE(env.UseDefaultDatabase);
    EXPECT_TRUE(env.UseDefaultResourceDatabase);  // not given: its default
    EXPECT_EQ(env.XBox360AutoCopy, 0);            // unreadable: reported, default kept
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports.entries()[0].level, static_cast<int>(ReportLevel::Warning));
}

// The shipped defaults give the editors working values.
TEST(Configuration, TheShippedDefaultsAreReadable) {
    ts::Configuration c;
    std::u16string error;
    ASSERT_TRUE(c.LoadFile(ts::ApplicationDataFolder() + "/DefaultSettings.xml", &error))
        << U8(error);
    TsColour colour;
    for (const char16_t* key : {u"ErrorColor", u"VORecordedColor", u"SafeFrameOuterColor",
                                u"SafeFrameActionColor", u"SafeFrameTitleColor", u"LinkColor",
                                u"PCColor", u"NPCColor", u"NPCCommentColor", u"AmbientColor"})
        EXPECT_TRUE(c.GetColour(u"Common\\DlgEditor", key, colour, &error)) << U8(error);
    std::int32_t henchmen = 0;
    EXPECT_TRUE(c.GetInt(u"Common\\DlgEditor", u"MaxHenchmen", henchmen));
    EXPECT_GT(henchmen, 0);
    float ratio = 0;
    EXPECT_TRUE(c.GetFloat(u"Common\\DlgEditor", u"SafeFrameAspectRatio", ratio));
}

// The host call over the process's configuration, with the defaults found through
// TS_APPDATAPATH and the user's file in the config folder.
TEST(Configuration, HostCallsReadTheDefaultsAndTheUsersFile) {
    std::string folder = ts::test::MakeTempFolder("ts-config");
    std::ofstream(folder + "/DefaultSettings.xml") << kDefaults;
    ASSERT_TRUE(ts::EnsureFolder(ts::ToolsetConfigFolder()));
    std::ofstream(ts::UserSettingsPath())
        << R"(<Settings><Group Name="Common\DlgEditor"><Value Key="MaxHenchmen">6</Value></Group></Settings>)";
    setenv("TS_APPDATAPATH", folder.c_str(), 1);
    ts::ReloadToolsetConfiguration();

    CTsComPtr<ITsConfiguration> config;
    ASSERT_EQ(TsGetConfiguration(config.Put()), S_OK);
    const char16_t* group = u"Common\\DlgEditor";
    variant v;
    ASSERT_EQ(config->ReadValue(group, u"MaxHenchmen", &v, kTsTypeInt, 0), S_OK);
    EXPECT_EQ(v.GetInt(), 6);
    EXPECT_EQ(config->ReadValue(group, u"Missing", &v, kTsTypeInt, 0), TS_E_NOT_FOUND);
    {
        ts::test::ReportCapture reports;
        EXPECT_EQ(config->ReadValue(group, u"Broken", &v, kTsTypeInt, 0), E_INVALIDARG);
        EXPECT_EQ(reports.size(), 1u);
    }
    EXPECT_EQ(config->ReadValue(group, u"MaxHenchmen", &v, kTsTypeVector, 0), E_INVALIDARG);
    std::vector<ts::MenuEntry> menus;
    ASSERT_EQ(config->GetMenus(u"DialogEditorMenus", &menus), S_OK);
    EXPECT_EQ(menus.front().text, u"Edit");
    EXPECT_EQ(config->GetMenus(u"NoMenus", &menus), TS_E_NOT_FOUND);

    // A broken user file is reported, and the defaults apply.
    std::ofstream(ts::UserSettingsPath()) << "<Settings><Group Name=\"x\">";
    {
        ts::test::ReportCapture reports;
        ts::ReloadToolsetConfiguration();
        ASSERT_EQ(reports.size(), 1u);
        EXPECT_NE(reports.entries()[0].message.find(u"Your settings file could not be read"),
                  std::u16string::npos);
    }
    ASSERT_EQ(config->ReadValue(group, u"MaxHenchmen", &v, kTsTypeInt, 0), S_OK);
    EXPECT_EQ(v.GetInt(), 4);

    unsetenv("TS_APPDATAPATH");
    std::filesystem::remove(ts::UserSettingsPath());
    ts::ReloadToolsetConfiguration();
    std::filesystem::remove_all(folder);
}

}  // namespace
