// The editor's preferences: colours as the tree shows them, and the values read from the
// configuration store at window creation and again on "OptionsChange" for the editor's own section.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "model/dlg_editor_settings.h"
#include "support/conversation_builder.h"
#include "support/fake_resource.h"
#include "support/test_folders.h"
#include "ts/configuration.h"
#include "ts/events.h"
#include "ts/paths.h"

namespace {

using dlg::SettingsColour;
using dlg::ToScreenColour;
using EditorObject = CTsComObject<CTsWindowInterface<CConversationEditorWnd>>;

// Points the toolset at a defaults file of the test's own, and at a user's file it can rewrite.
class SettingsStore : public ::testing::Test {
protected:
    void SetUp() override {
        folder_ = ts::test::MakeTempFolder("ts-dlgsettings");
        ASSERT_TRUE(ts::EnsureFolder(ts::ToolsetConfigFolder()));
        setenv("TS_APPDATAPATH", folder_.c_str(), 1);
        WriteDefaults("");
        WriteUser("");
        dlg::TheDlgEditorSettings() = dlg::DlgEditorSettings();
    }
    void TearDown() override {
        unsetenv("TS_APPDATAPATH");
        std::filesystem::remove(ts::UserSettingsPath());
        ts::ReloadToolsetConfiguration();
        dlg::LoadDlgEditorSettings();
        std::filesystem::remove_all(folder_);
    }
    void WriteDefaults(const std::string& values) {
        Write(folder_ + "/DefaultSettings.xml", values);
    }
    void WriteUser(const std::string& values) {
        Write(ts::UserSettingsPath(), values);
        ts::ReloadToolsetConfiguration();
    }
    static void Write(const std::string& path, const std::string& values) {
        std::ofstream(path) << "<Settings Version=\"1\"><Group Name=\"Common\\DlgEditor\">"
                            << values << "</Group></Settings>";
    }

    std::string folder_;
};

TEST(DlgEditorSettings, ColoursPackRedLowTruncatedAndClamped) {
    EXPECT_EQ(ToScreenColour({0.5f, 0.5f, 0.5f}), 0x7F7F7Fu) << "0.5 gives 127, not 128";
    EXPECT_EQ(ToScreenColour({1.0f, 0.9f, 1.0f}), 0xFFE5FFu) << "0.9 gives 229";
    EXPECT_EQ(ToScreenColour({1, 0, 0}), 0x0000FFu) << "red in the low byte";
    EXPECT_EQ(ToScreenColour({2.0f, -0.5f, 1.5f}), 0xFF00FFu) << "clamped before packing";
    EXPECT_EQ(ToScreenColour({-1, -1, -1}), dlg::kNoColour);
    EXPECT_EQ(ToScreenColour({-1, -1, 0}), 0x000000u) << "only all three -1 means no colour";
}

TEST_F(SettingsStore, EveryKindOfValueIsReadAndMissingOnesKeepTheirValue) {
    // An empty store keeps the built-in defaults, leaving the deliberately unset ones zero.
    dlg::LoadDlgEditorSettings();
    const dlg::DlgEditorSettings& s = dlg::TheDlgEditorSettings();
    EXPECT_TRUE(s.PasteLinkSourceToDestination);
    EXPECT_EQ(ToScreenColour(s.LinkColor), 0x7F7F7Fu);
    EXPECT_EQ(s.ErrorColor, (SettingsColour{0, 0, 0})) << "no invented error colour";
    EXPECT_EQ(s.MaxHenchmen, 0) << "so no henchman tags are offered";
    EXPECT_EQ(s.SafeFrameAspectRatio, 0.0f);

    WriteDefaults(R"(<Value Key="MaxHenchmen">4</Value><Value Key="ErrorColor">1 0.8 0.8</Value>)");
    WriteUser(R"(<Value Key="PasteLinkSourceToDestination">false</Value>
                 <Value Key="NPCColor">#00FF00</Value>
                 <Value Key="VORecordedColor">-1 -1 -1</Value>
                 <Value Key="SafeFrameAspectRatio">1.5</Value>
                 <Value Key="FXAName">Actors &amp; Co</Value>
                 <Value Key="SkipHighlightedLinks">yes</Value>
                 <Value Key="MaxHenchmen">not a number</Value>)");
    dlg::LoadDlgEditorSettings();
    EXPECT_FALSE(s.PasteLinkSourceToDestination);
    EXPECT_EQ(ToScreenColour(s.NPCColor), 0x00FF00u);
    EXPECT_EQ(ToScreenColour(s.VORecordedColor), dlg::kNoColour);
    EXPECT_EQ(ToScreenColour(s.ErrorColor), 0xCCCCFFu) << "from the defaults file";
    EXPECT_EQ(s.SafeFrameAspectRatio, 1.5f);
    EXPECT_EQ(s.FXAName, u"Actors & Co");
    EXPECT_TRUE(s.SkipHighlightedLinks);
    EXPECT_EQ(s.MaxHenchmen, 0) << "an unreadable value keeps the field as it was";
    EXPECT_EQ(ToScreenColour(s.PCColor), 0xFF0000u) << "untouched keys keep their value";
}

TEST_F(SettingsStore, TheFaceFXFolderIsReadOnceForTheLifeOfThePlugin) {
    WriteUser(R"(<Value Key="FXAPerforcePath">//depot/facefx/actors</Value>)");
    EXPECT_EQ(dlg::FaceFXActorFolder(), u"//depot/facefx/actors");
    WriteUser(R"(<Value Key="FXAPerforcePath">//depot/elsewhere</Value>)");
    dlg::LoadDlgEditorSettings();
    EXPECT_EQ(dlg::TheDlgEditorSettings().FXAPerforcePath, u"//depot/elsewhere");
    EXPECT_EQ(dlg::FaceFXActorFolder(), u"//depot/facefx/actors");
}

TEST_F(SettingsStore, OptionsChangeForTheEditorsSectionRecoloursTheOpenTree) {
    ts::test::ConversationBuilder story;
    story.Start(story.Npc(u"Hello.", u"innkeeper"));
    story.NpcTo(0, story.Player(u"Bye."));
    auto resource = CTsComObject<ts::test::FakeResource>::Create(u"inn.dlg");
    resource->SetRootProperty(story.Resource());

    auto object = EditorObject::Create();
    ASSERT_EQ(object->CreateUIWindow(nullptr), S_OK);
    ASSERT_EQ(object->Attach(1, u"inn.dlg", 0), S_OK);
    ASSERT_EQ(object->Load(resource.Get()), S_OK);
    dlg::ConversationTree& tree = object->GetWindow()->Document().Tree();
    auto textColour = [&](int i) { return tree.Items().GetTextColour(tree.NodeAt(i)->treeItem); };
    WriteUser(R"(<Value Key="NPCColor">0 1 0</Value>)");
    ts::BroadcastToEventSinks(ts::events::OptionsChange(), TsAddAtom(u"AreaEditor"), 0, nullptr);
    EXPECT_EQ(textColour(1), 0x0000FFu) << "another editor's options leave the tree alone";
    EXPECT_EQ(ToScreenColour(dlg::TheDlgEditorSettings().NPCColor), 0x0000FFu);
    ts::BroadcastToEventSinks(ts::events::Refresh(), TsAddAtom(u"DlgEditor"), 0, nullptr);
    EXPECT_EQ(textColour(1), 0x0000FFu) << "only OptionsChange reloads the settings";

    ts::BroadcastToEventSinks(ts::events::OptionsChange(), TsAddAtom(u"dlgeditor"), 0, nullptr);
    EXPECT_EQ(textColour(1), 0x00FF00u);
    EXPECT_EQ(textColour(2), 0xFF0000u);
    ASSERT_EQ(object->CloseUIWindow(), S_OK);
}

}  // namespace
