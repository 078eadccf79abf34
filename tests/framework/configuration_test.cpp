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

// The process's configuration as the host builds it: the defaults found through TS_APPDATAPATH,
// then the user's file in the config folder, which overrides single values and whole menu
// sections.
TEST(Configuration, TheUsersFileOverridesTheDefaults) {
    std::string folder = ts::test::MakeTempFolder("ts-config");
    std::ofstream(folder + "/DefaultSettings.xml") << R"(<?xml version="1.0" encoding="UTF-8"?>
<Settings Version="1">
  <Group Name="Common\DlgEditor">
    <Value Key="LinkColor">0.5 0.5 0.5</Value>
    <Value Key="ErrorColor">#FF8000</Value>
    <Value Key="MaxHenchmen"> 4 </Value>
    <Value Key="FXAName">Actors &amp; Co</Value>
    <Value Key="Broken">twelve</Value>
  </Group>
  <Group Name="Environment">
    <Value Key="UseDefaultDatabase">false</Value><Value Key="XBox360AutoCopy">maybe</Value>
  </Group>
  <Menus Name="DialogEditorMenus"><Command Name="Edit.Copy"/></Menus>
  <Menus Name="OtherMenus"><Command Name="Other.Thing"/></Menus>
</Settings>
)";
    ASSERT_TRUE(ts::EnsureFolder(ts::ToolsetConfigFolder()));
    std::ofstream(ts::UserSettingsPath()) << R"(<Settings>
  <Group Name="COMMON\DLGEDITOR"><Value Key="MaxHenchmen">2</Value></Group>
  <Menus Name="DialogEditorMenus">
    <Popup Caption="Edit">
      <Command Name="Edit.Cut"/><Separator/><Popup Caption="More"><Command Name="Edit.Expand"/></Popup>
    </Popup>
  </Menus>
</Settings>)";
    setenv("TS_APPDATAPATH", folder.c_str(), 1);
    ts::ReloadToolsetConfiguration();
    const ts::Configuration& c = ts::ToolsetConfiguration();
    const char16_t* group = u"Common\\DlgEditor";

    TsColour colour;
    ASSERT_TRUE(c.GetColour(u"common\\dlgeditor", u"LINKCOLOR", colour));  // names ignore case
    EXPECT_EQ(colour, (TsColour{0.5f, 0.5f, 0.5f, 1}));
    ASSERT_TRUE(c.GetColour(group, u"ErrorColor", colour));
    EXPECT_EQ(colour, (TsColour{1, 128 / 255.0f, 0, 1}));
    std::int32_t henchmen = 0;
    ASSERT_TRUE(c.GetInt(group, u"MaxHenchmen", henchmen));
    EXPECT_EQ(henchmen, 2);

    // Missing and unreadable values fail and leave the caller's value as it was.
    std::u16string error;
    std::int32_t kept = 99;
    EXPECT_FALSE(c.GetInt(group, u"Nothing", kept, &error));
    EXPECT_EQ(error, u"The settings have no value \"Nothing\" in the group \"Common\\DlgEditor\"");
    EXPECT_FALSE(c.GetInt(group, u"Broken", kept, &error));
    EXPECT_EQ(error, u"The setting \"Broken\" of the group \"Common\\DlgEditor\" (" +
                         ts::Utf8ToUtf16(folder) +
                         u"/DefaultSettings.xml, line 8) is not a whole number: \"twelve\"");
    EXPECT_FALSE(c.GetColour(group, u"MaxHenchmen", colour));
    bool skip = false;
    EXPECT_FALSE(c.GetBool(group, u"FXAName", skip));
    EXPECT_EQ(kept, 99);

    const auto* menus = c.Menus(u"dialogeditormenus");
    ASSERT_TRUE(menus && menus->size() == 1u) << "the user's section replaces the default one";
    const ts::MenuEntry& edit = menus->front();
    EXPECT_EQ(edit.kind, ts::MenuEntry::Kind::Popup);
    EXPECT_EQ(edit.text, u"Edit");
    ASSERT_EQ(edit.entries.size(), 3u);
    EXPECT_EQ(edit.entries[0].text, u"Edit.Cut");
    EXPECT_EQ(edit.entries[1].kind, ts::MenuEntry::Kind::Separator);
    EXPECT_EQ(edit.entries[2].entries.front().text, u"Edit.Expand");
    EXPECT_NE(c.Menus(u"OtherMenus"), nullptr);

    // Environment keys are read when given and keep their defaults otherwise; an unreadable one
    // is reported.
    {
        ts::test::ReportCapture reports;
        auto env = ts::ReadEnvironment(c);
        EXPECT_FALSE(env.UseDefaultDatabase);
        EXPECT_TRUE(env.UseDefaultResourceDatabase);
        EXPECT_EQ(env.XBox360AutoCopy, 0);
        EXPECT_EQ(reports.size(), 1u);
    }

    // The host call gives a value of the wanted type, or says why it cannot.
    CTsComPtr<ITsConfiguration> config;
    ASSERT_EQ(TsGetConfiguration(config.Put()), S_OK);
    variant v;
    ASSERT_EQ(config->ReadValue(group, u"MaxHenchmen", &v, kTsTypeInt, 0), S_OK);
    EXPECT_EQ(v.GetInt(), 2);
    EXPECT_EQ(config->ReadValue(group, u"Missing", &v, kTsTypeInt, 0), TS_E_NOT_FOUND);
    {
        ts::test::ReportCapture reports;
        EXPECT_EQ(config->ReadValue(group, u"Broken", &v, kTsTypeInt, 0), E_INVALIDARG);
        EXPECT_EQ(reports.size(), 1u);
    }
    EXPECT_EQ(config->ReadValue(group, u"MaxHenchmen", &v, kTsTypeVector, 0), E_INVALIDARG);
    std::vector<ts::MenuEntry> entries;  // (the editor's tests read its menus through this call)
    EXPECT_EQ(config->GetMenus(u"NoMenus", &entries), TS_E_NOT_FOUND);

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

TEST(Configuration, AFaultyFileIsRefusedWholeWithItsLine) {
    const std::pair<const char*, const char16_t*> cases[] = {
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
    };
    for (const auto& [xml, words] : cases) {
        ts::Configuration config;
        ASSERT_TRUE(config.LoadText(
            R"(<Settings><Group Name="G"><Value Key="Kept">1</Value></Group></Settings>)", u"d"));
        std::u16string error;
        EXPECT_FALSE(config.LoadText(xml, u"user.xml", &error)) << xml;
        EXPECT_EQ(error.substr(0, std::u16string_view(words).size()), words)
            << xml << "\n  gave: " << U8(error);
        EXPECT_TRUE(config.Has(u"G", u"Kept"));
        EXPECT_FALSE(config.Has(u"G", u"K"));  // nothing of the faulty file is kept
    }
    ts::Configuration config;
    std::u16string error;
    EXPECT_FALSE(config.LoadFile("/nonexistent/Settings.xml", &error));
    EXPECT_EQ(error, u"/nonexistent/Settings.xml: the file cannot be read");
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

}  // namespace
