// The host's loader walked through good and broken libraries: each broken one is reported and
// skipped at the step where it fails, and the good ones keep working.
#include <gtest/gtest.h>

#include "fixtures/fixture_ids.h"
#include "plugin_folder.h"
#include "support/report_capture.h"
#include "ts/comptr.h"
#include "ts/environment.h"
#include "ts/events.h"
#include "ts/pluginloader.h"
#include "ts/text.h"
#include "ts/uiwindow.h"

namespace {

using ts::PluginState;
using ts::test::FixtureLibrary;
using ts::test::PluginFolder;
using ts::test::ReportCapture;

const ts::Plugin* Named(const ts::PluginLoader& loader, const std::string& file) {
    for (const auto& p : loader.Plugins())
        if (p->FileName() == file) return p.get();
    return nullptr;
}

bool ReportMentions(const ReportCapture& reports, const std::string& file,
                    const std::u16string& words) {
    for (const auto& e : reports.entries())
        if (e.level == static_cast<int>(ReportLevel::Warning) &&
            e.message.find(ts::Utf8ToUtf16(file)) != std::u16string::npos &&
            e.message.find(words) != std::u16string::npos)
            return true;
    return false;
}

TEST(PluginLoader, ReportsAndSkipsEveryBrokenLibrary) {
    PluginFolder folder;
    folder.Copy(ts::test::EditorDlgLibrary());
    folder.Copy(FixtureLibrary("fixture_good"));
    folder.Copy(FixtureLibrary("fixture_no_definition"));
    folder.Copy(FixtureLibrary("fixture_broken_xml"));
    folder.Copy(FixtureLibrary("fixture_missing_entry"));
    folder.Write("libnotes.so", "These are not the plugins you are looking for.\n");
    folder.Write("libempty.so", "");
    folder.Truncated(ts::test::EditorDlgLibrary(), "libtruncated.so", 200);
    folder.Write("README.txt", "not a library at all");

    ReportCapture reports;
    ts::PluginLoader loader;
    EXPECT_EQ(loader.Scan(folder.Path()), 3u)
        << "the editor, the good fixture and the one without DllSendEvent";
    ASSERT_EQ(loader.Plugins().size(), 8u) << "every .so file is known, nothing else";

    struct Expectation {
        std::string file;
        PluginState state;
        std::u16string errorWords;
    };
    const Expectation expected[] = {
        {"libEditorDlg.so", PluginState::Read, u""},
        {"libfixture_good.so", PluginState::Read, u""},
        {"libfixture_missing_entry.so", PluginState::Read, u""},
        {"libfixture_no_definition.so", PluginState::Found, u"no section .ts_plugin_def"},
        {"libfixture_broken_xml.so", PluginState::Found,
         u"not well-formed XML: mismatched tag at line 4"},
        {"libnotes.so", PluginState::Found, u"not an ELF library"},
        {"libempty.so", PluginState::Found, u"not an ELF library"},
        {"libtruncated.so", PluginState::Found, u"section table lies outside the file"},
    };
    for (const auto& e : expected) {
        const ts::Plugin* plugin = Named(loader, e.file);
        ASSERT_NE(plugin, nullptr) << e.file;
        EXPECT_EQ(plugin->State(), e.state) << e.file;
        if (e.errorWords.empty()) {
            EXPECT_FALSE(plugin->HasError()) << e.file << ": " << ts::Utf16ToUtf8(plugin->Error());
        } else {
            EXPECT_NE(plugin->Error().find(e.errorWords), std::u16string::npos)
                << e.file << ": " << ts::Utf16ToUtf8(plugin->Error());
            EXPECT_TRUE(ReportMentions(reports, e.file, e.errorWords)) << e.file;
        }
    }

    // Loading: the library without DllSendEvent is reported and stays unloaded; the others load.
    reports.Clear();
    EXPECT_EQ(loader.LoadAll(), 2u);
    const ts::Plugin* half = Named(loader, "libfixture_missing_entry.so");
    EXPECT_EQ(half->State(), PluginState::Read);
    EXPECT_NE(half->Error().find(u"does not export DllSendEvent"), std::u16string::npos);
    EXPECT_TRUE(
        ReportMentions(reports, "libfixture_missing_entry.so", u"does not export DllSendEvent"));
    EXPECT_EQ(Named(loader, "libEditorDlg.so")->State(), PluginState::Loaded);

    // Asking for its class does not try again: the failure stands, without another report.
    reports.Clear();
    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(loader.GetClassObject(fixture::kMissingEntry, IClassFactory::kIID, &out), E_FAIL);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(reports.size(), 0u);

    // The good libraries still serve their classes.
    CTsComPtr<IClassFactory> factory;
    EXPECT_EQ(loader.GetClassObject(u"ConversationEditor", IClassFactory::kIID, factory.PutVoid()),
              S_OK);
    EXPECT_TRUE(factory);
    factory.Reset();
    CTsComPtr<ITsUIWindow> tool;
    EXPECT_EQ(loader.CreateInstance(u"FixtureSingleTool", ITsUIWindow::kIID, tool.PutVoid()), S_OK);
    EXPECT_TRUE(tool);
}

TEST(PluginLoader, ReadsWithoutLoadingAndLoadsOnDemand) {
    PluginFolder folder;
    folder.Copy(ts::test::EditorDlgLibrary());
    ts::PluginLoader loader;
    ASSERT_EQ(loader.Scan(folder.Path()), 1u);
    const ts::Plugin& plugin = *loader.Plugins()[0];
    EXPECT_EQ(plugin.State(), PluginState::Read);
    EXPECT_EQ(plugin.GetClassObjectEntry(), nullptr);

    const ts::PluginClassInfo* preview = loader.FindClassByPattern(u"conversationlinepreview");
    ASSERT_NE(preview, nullptr) << "names are matched without regard to case";
    EXPECT_EQ(preview->description, u"Conversation Line Preview");
    EXPECT_EQ(loader.FindClassByPattern(u"Conversation"), nullptr) << "a pattern is matched whole";
    EXPECT_EQ(plugin.State(), PluginState::Read);

    CTsComPtr<IClassFactory> factory;
    ASSERT_EQ(loader.GetClassObject(preview->clsid, IClassFactory::kIID, factory.PutVoid()), S_OK);
    EXPECT_EQ(plugin.State(), PluginState::Loaded);
    EXPECT_NE(plugin.GetClassObjectEntry(), nullptr);
    factory.Reset();

    loader.UnloadAll();
    EXPECT_EQ(plugin.State(), PluginState::Read);
    EXPECT_EQ(plugin.SendEventEntry(), nullptr);
}

TEST(PluginLoader, UnknownNamesAndClassesAreNotAvailable) {
    PluginFolder folder;
    folder.Copy(ts::test::EditorDlgLibrary());
    ts::PluginLoader loader;
    loader.Scan(folder.Path());
    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(loader.GetClassObject(u"StageEditor", IClassFactory::kIID, &out),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(loader.CreateInstance(ts::Guid("{12345678-1234-1234-1234-123456789ABC}"),
                                    ITsUIWindow::kIID, &out),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(loader.GetClassObject(u"ConversationEditor", IClassFactory::kIID, nullptr),
              E_POINTER);
}

TEST(PluginLoader, AClassOfferedTwiceIsServedByTheFirstLibrary) {
    PluginFolder folder;
    folder.Copy(ts::test::EditorDlgLibrary(), "libA_EditorDlg.so");
    folder.Copy(ts::test::EditorDlgLibrary(), "libB_EditorDlg.so");
    ReportCapture reports;
    ts::PluginLoader loader;
    EXPECT_EQ(loader.Scan(folder.Path()), 2u);
    EXPECT_EQ(reports.size(), 2u) << "one report per class the second library repeats";
    EXPECT_TRUE(ReportMentions(reports, "libB_EditorDlg.so", u"already offers"));
    const ts::PluginClassInfo* editor = loader.FindClassByPattern(u"ConversationEditor");
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(loader.FindPlugin(editor->clsid)->FileName(), "libA_EditorDlg.so");

    CTsComPtr<IClassFactory> factory;
    ASSERT_EQ(loader.GetClassObject(editor->clsid, IClassFactory::kIID, factory.PutVoid()), S_OK);
    EXPECT_EQ(loader.Plugins()[0]->State(), PluginState::Loaded);
    EXPECT_EQ(loader.Plugins()[1]->State(), PluginState::Read);
}

TEST(PluginLoader, AMissingFolderIsReportedAndGivesNothing) {
    ReportCapture reports;
    ts::PluginLoader loader;
    EXPECT_EQ(loader.Scan("/nonexistent/plugins/folder"), 0u);
    EXPECT_TRUE(loader.Plugins().empty());
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_NE(reports.entries()[0].message.find(u"/nonexistent/plugins/folder"),
              std::u16string::npos);
}

TEST(PluginLoader, BroadcastReachesEveryLoadedPluginAndTheAdvisedSinks) {
    PluginFolder folder;
    folder.Copy(ts::test::EditorDlgLibrary());
    folder.Copy(FixtureLibrary("fixture_good"));
    ts::PluginLoader loader;
    loader.Scan(folder.Path());

    std::vector<std::u16string> heard;
    int listener =
        ts::AddHostEventListener([&](const ts::HostEvent& e) { heard.push_back(e.text); });
    // Nothing is loaded yet: a broadcast reaches no plugin.
    loader.Broadcast(ts::events::Refresh(), 0, 0, nullptr);
    EXPECT_TRUE(heard.empty());

    EXPECT_EQ(loader.LoadAll(), 2u);
    loader.Broadcast(ts::events::SaveResource(), 1, 2, nullptr);
    loader.Broadcast(ts::events::OptionsChange(), 0, 0, nullptr);
    ts::RemoveHostEventListener(listener);
    EXPECT_EQ(heard, (std::vector<std::u16string>{u"fixture heard SaveResource",
                                                  u"fixture heard OptionsChange"}));
}

}  // namespace
