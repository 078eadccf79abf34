// The plugins as the host meets them. Its loader walks through good and broken libraries: each
// broken one is reported and skipped at the step where it fails, and the good ones keep working.
// The conversation editor library exports only its two entry points, and its classes are driven
// through the editor object's interfaces as the host drives them. What the editor object template
// does on its own (forwarding, a closed window, E_NOTIMPL) is in tests/core; the classes the
// library's definition states are listed by the command-line host's "plugins" command in tests/cli.
#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "support/fake_resource.h"
#include "support/report_capture.h"
#include "support/test_folders.h"
#include "ts/comptr.h"
#include "ts/editor.h"
#include "ts/editorinterfaces.h"
#include "ts/environment.h"
#include "ts/events.h"
#include "ts/hoststring.h"
#include "ts/optionssource.h"
#include "ts/pluginloader.h"
#include "ts/text.h"
#include "ts/uicommandsource.h"
#include "ts/uiwindow.h"

namespace {

using ts::PluginState;
using ts::test::FakeResource;
using ts::test::OtherPayload;
using ts::test::ReportCapture;

const std::string kEditorDlgLibrary = TS_EDITORDLG_LIBRARY;

std::string FixtureLibrary(const std::string& name) {
    return std::string(TS_PLUGIN_FIXTURE_DIR) + "/lib" + name + ".so";
}

// A plugins folder of the test's own, filled with the libraries a case needs.
struct PluginFolder {
    std::string path = ts::test::MakeTempFolder("ts-plugins");
    ~PluginFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
    void Copy(const std::string& library, std::string asName = {}) {
        if (asName.empty()) asName = std::filesystem::path(library).filename().string();
        std::filesystem::copy_file(library, path + "/" + asName);
    }
    void Write(const std::string& name, const std::string& bytes) {
        std::ofstream(path + "/" + name, std::ios::binary) << bytes;
    }
};

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
    folder.Copy(kEditorDlgLibrary);
    folder.Copy(FixtureLibrary("fixture_good"));
    folder.Copy(FixtureLibrary("fixture_no_definition"));
    folder.Copy(FixtureLibrary("fixture_broken_xml"));
    folder.Copy(FixtureLibrary("fixture_missing_entry"));
    folder.Write("libnotes.so", "These are not the plugins you are looking for.\n");
    std::string head(200, '\0');  // the start of a library, as a damaged copy has it
    std::ifstream(kEditorDlgLibrary, std::ios::binary).read(head.data(), 200);
    folder.Write("libtruncated.so", head);
    folder.Write("README.txt", "not a library at all");

    ReportCapture reports;
    ts::PluginLoader loader;
    EXPECT_EQ(loader.Scan(folder.path), 3u)
        << "the editor, the good fixture and the one without DllSendEvent";
    ASSERT_EQ(loader.Plugins().size(), 7u) << "every .so file is known, nothing else";

    // A library without an error was read; one with an error stays found, reported and skipped.
    const std::pair<std::string, std::u16string> expected[] = {
        {"libEditorDlg.so", u""},
        {"libfixture_good.so", u""},
        {"libfixture_missing_entry.so", u""},
        {"libfixture_no_definition.so", u"no section .ts_plugin_def"},
        {"libfixture_broken_xml.so", u"not well-formed XML: mismatched tag at line 4"},
        {"libnotes.so", u"not an ELF library"},
        {"libtruncated.so", u"section table lies outside the file"}};
    for (const auto& [file, words] : expected) {
        const ts::Plugin* plugin = Named(loader, file);
        ASSERT_NE(plugin, nullptr) << file;
        EXPECT_EQ(plugin->State(), words.empty() ? PluginState::Read : PluginState::Found) << file;
        EXPECT_EQ(plugin->HasError(), !words.empty()) << file;
        EXPECT_NE(plugin->Error().find(words), std::u16string::npos)
            << file << ": " << ts::Utf16ToUtf8(plugin->Error());
        EXPECT_TRUE(words.empty() || ReportMentions(reports, file, words)) << file;
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
    const ts::PluginClassInfo* halfClass = loader.FindClassByPattern(u"FixtureHalf");
    ASSERT_NE(halfClass, nullptr);
    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(loader.GetClassObject(halfClass->clsid, IClassFactory::kIID, &out), E_FAIL);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(reports.size(), 0u);

    // The good libraries still serve their classes.
    CTsComPtr<ITsUIWindow> tool;
    EXPECT_EQ(loader.CreateInstance(u"FixtureSingleTool", ITsUIWindow::kIID, tool.PutVoid()), S_OK);
    EXPECT_TRUE(tool);
}

TEST(PluginLoader, ReadsWithoutLoadingAndLoadsOnlyForAClassItOffers) {
    PluginFolder folder;
    folder.Copy(kEditorDlgLibrary);
    ts::PluginLoader loader;
    ASSERT_EQ(loader.Scan(folder.path), 1u);
    const ts::Plugin& plugin = *loader.Plugins()[0];
    EXPECT_EQ(plugin.State(), PluginState::Read);
    EXPECT_EQ(plugin.GetClassObjectEntry(), nullptr);

    const ts::PluginClassInfo* preview = loader.FindClassByPattern(u"conversationlinepreview");
    ASSERT_NE(preview, nullptr) << "names are matched without regard to case";
    EXPECT_EQ(preview->description, u"Conversation Line Preview");
    EXPECT_EQ(loader.FindClassByPattern(u"Conversation"), nullptr) << "a pattern is matched whole";
    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(loader.GetClassObject(u"StageEditor", IClassFactory::kIID, &out),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(loader.CreateInstance(ts::Guid("{12345678-1234-1234-1234-123456789ABC}"),
                                    ITsUIWindow::kIID, &out),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(loader.GetClassObject(u"ConversationEditor", IClassFactory::kIID, nullptr),
              E_POINTER);
    EXPECT_EQ(plugin.State(), PluginState::Read) << "nothing so far needed the library's code";

    CTsComPtr<IClassFactory> factory;
    ASSERT_EQ(loader.GetClassObject(preview->clsid, IClassFactory::kIID, factory.PutVoid()), S_OK);
    EXPECT_EQ(plugin.State(), PluginState::Loaded);
    EXPECT_NE(plugin.GetClassObjectEntry(), nullptr);
    factory.Reset();

    loader.UnloadAll();
    EXPECT_EQ(plugin.State(), PluginState::Read);
    EXPECT_EQ(plugin.SendEventEntry(), nullptr);
}

TEST(PluginLoader, AClassOfferedTwiceIsServedByTheFirstLibrary) {
    PluginFolder folder;
    folder.Copy(kEditorDlgLibrary, "libA_EditorDlg.so");
    folder.Copy(kEditorDlgLibrary, "libB_EditorDlg.so");
    ReportCapture reports;
    ts::PluginLoader loader;
    EXPECT_EQ(loader.Scan(folder.path), 2u);
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

// The fixture answers each event it hears with a host event; the host's listeners see those.
TEST(PluginLoader, BroadcastReachesEveryLoadedPlugin) {
    PluginFolder folder;
    folder.Copy(kEditorDlgLibrary);
    folder.Copy(FixtureLibrary("fixture_good"));
    ts::PluginLoader loader;
    loader.Scan(folder.path);

    std::vector<ts::HostEvent> heard;
    int listener = ts::AddHostEventListener([&](const ts::HostEvent& e) { heard.push_back(e); });
    // Nothing is loaded yet: a broadcast reaches no plugin.
    loader.Broadcast(ts::events::Refresh(), 0, 0, nullptr);
    EXPECT_TRUE(heard.empty());

    EXPECT_EQ(loader.LoadAll(), 2u);
    loader.Broadcast(ts::events::SaveResource(), 1, 2, nullptr);
    loader.Broadcast(ts::events::OptionsChange(), 0, 0, nullptr);
    ts::RemoveHostEventListener(listener);
    loader.Broadcast(ts::events::Refresh(), 0, 0, nullptr);
    ASSERT_EQ(heard.size(), 2u) << "a removed listener hears nothing";
    EXPECT_EQ(heard[0].text, u"fixture heard SaveResource");
    EXPECT_EQ(heard[1].text, u"fixture heard OptionsChange");
    EXPECT_EQ(heard[1].event, ts::events::UserInteraction());
    EXPECT_EQ(heard[1].flags, ts::events::kNotice);
}

// The names of the symbols a shared library defines and exports (global or weak, not undefined),
// from its dynamic symbol table.
std::set<std::string> ExportedSymbols(const std::string& path) {
    std::string symbols, strings;
    std::u16string error;
    EXPECT_TRUE(ts::ReadElfSection(path, ".dynsym", symbols, error) &&
                ts::ReadElfSection(path, ".dynstr", strings, error))
        << ts::Utf16ToUtf8(error);
    std::set<std::string> names;
    Elf64_Sym symbol;
    for (std::size_t at = sizeof symbol; at + sizeof symbol <= symbols.size();
         at += sizeof symbol) {
        std::memcpy(&symbol, symbols.data() + at, sizeof symbol);
        int binding = ELF64_ST_BIND(symbol.st_info);
        if (symbol.st_shndx != SHN_UNDEF && (binding == STB_GLOBAL || binding == STB_WEAK))
            names.insert(strings.c_str() + symbol.st_name);
    }
    return names;
}

TEST(PluginLibrary, ExportsExactlyItsTwoEntryPoints) {
    EXPECT_EQ(ExportedSymbols(kEditorDlgLibrary),
              (std::set<std::string>{"DllGetClassObject", "DllSendEvent"}));
}

constexpr CLSID kEditorClass = ts::Guid("{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}");

class EditorObjects : public ::testing::Test {
protected:
    void SetUp() override {
        folder_.Copy(kEditorDlgLibrary);
        folder_.Copy(FixtureLibrary("fixture_good"));
        ASSERT_EQ(loader_.Scan(folder_.path), 2u);
        ASSERT_EQ(loader_.LoadAll(), 2u);
        plugin_ = loader_.FindPlugin(kEditorClass);
        ASSERT_NE(plugin_, nullptr);
    }

    template <class I>
    CTsComPtr<I> Create(std::u16string_view pattern) {
        CTsComPtr<I> object;
        EXPECT_EQ(loader_.CreateInstance(pattern, I::kIID, object.PutVoid()), S_OK);
        return object;
    }

    PluginFolder folder_;
    ts::PluginLoader loader_;  // after the folder: unloaded before the files go
    ts::Plugin* plugin_ = nullptr;
};

template <class I, class T>
CTsComPtr<I> As(const CTsComPtr<T>& object) {
    CTsComPtr<I> result;
    EXPECT_EQ(object->QueryInterface(I::kIID, result.PutVoid()), S_OK);
    return result;
}

TEST_F(EditorObjects, EveryEditorObjectAnswersTheTwentyInterfaces) {
    // clang-format off
    const IID order[] = {
        ITsUIWindow::kIID, ITsUICommandSource::kIID, ITsEditor::kIID, ITsExportSource::kIID,
        ITsMarkerSource::kIID, ITsFindReplaceSource::kIID, ITsHelpSource::kIID,
        ITsOptionsSource::kIID, ITsCurrentState::kIID, ITsUndoRedo::kIID,
        ITsObjectInspectorSource::kIID, ITsIcon::kIID, ITsIdle::kIID, ITsFindReplaceWindow::kIID,
        ITsResourceDiff::kIID, ITsEditorDetect::kIID, ITsEditorExporter::kIID, ITsPreview::kIID,
        ITsSoundPlayerSource::kIID, ITsConversationLinePreview::kIID};
    // clang-format on
    for (auto pattern : {u"ConversationEditor", u"ConversationLinePreview"}) {
        auto object = Create<IUnknown>(pattern);
        ASSERT_TRUE(object);
        EXPECT_EQ(object.Get(), static_cast<IUnknown*>(As<ITsUIWindow>(object).Get()))
            << "the first interface is the object's identity";
        for (const IID& iid : order) {
            CTsComPtr<IUnknown> answered, identity;
            ASSERT_EQ(object->QueryInterface(iid, answered.PutVoid()), S_OK) << ts::FormatGuid(iid);
            ASSERT_EQ(answered->QueryInterface(IUnknown::kIID, identity.PutVoid()), S_OK);
            EXPECT_EQ(identity.Get(), object.Get()) << "IUnknown from " << ts::FormatGuid(iid);
        }
        void* out = reinterpret_cast<void*>(0x1);
        EXPECT_EQ(object->QueryInterface(IClassFactory::kIID, &out), E_NOINTERFACE);
        EXPECT_EQ(out, nullptr);
    }
}

// Flags are read from the definition the host holds; how each token reads is in tests/core.
TEST_F(EditorObjects, PluginFlagsComeFromTheDefinitionTheHostRead) {
    // The editor is a normal, multi-instance document editor; the preview a tool window.
    const std::pair<const char16_t*, std::uint32_t> expected[] = {
        {u"ConversationEditor", 0u},
        {u"ConversationLinePreview", 0x20000u},
        {u"FixtureSingleTool", 0x30000u}};
    for (const auto& [pattern, flags] : expected) {
        std::uint32_t got = 0xDEAD;
        EXPECT_EQ(Create<ITsUIWindow>(pattern)->GetPluginFlags(&got), S_OK);
        EXPECT_EQ(got, flags) << ts::Utf16ToUtf8(pattern);
    }
}

TEST_F(EditorObjects, TheConversationEditorAsTheHostUsesIt) {
    auto window = Create<ITsUIWindow>(u"ConversationEditor");
    auto editor = As<ITsEditor>(window);
    std::size_t sinksBefore = ts::AdvisedEventSinkCount();
    ASSERT_EQ(window->CreateUIWindow(nullptr), S_OK);
    EXPECT_EQ(ts::AdvisedEventSinkCount(), sinksBefore + 1) << "the window listens to host events";

    ASSERT_EQ(
        editor->Attach(0xC0FFEE, u"act1/intro_talk.dlg", kTsEditorModified | kTsEditorExtraState),
        S_OK);
    std::uint32_t cookie = 0, state = 0xFF;
    CTsHostString text;
    ASSERT_EQ(editor->GetState(&cookie, text.Put(), &state), S_OK);
    EXPECT_EQ(cookie, 0xC0FFEEu);
    EXPECT_EQ(text.View(), u"act1/intro_talk.dlg");
    EXPECT_EQ(state, 0u) << "the host's modified and extra bits are cleared on attach";
    ASSERT_EQ(editor->GetDisplayName(text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"intro_talk.dlg");

    // What the host reads to place the editor: resource types, names, layouts.
    CTsComPtr<ITsStringEnum> types;
    std::uint32_t count = 9;
    ASSERT_EQ(editor->EnumerateResourceTypes(0, types.Put()), S_OK);
    types->GetCount(&count);
    EXPECT_EQ(count, 0u);
    ASSERT_EQ(editor->EnumerateResourceTypes(kTsEditableResourceTypes, types.Put()), S_OK);
    for (int pass = 0; pass < 2; ++pass) {  // the list starts again after a reset
        ASSERT_EQ(types->Next(text.Put()), S_OK);
        EXPECT_EQ(text.View(), u"Conversation");
        EXPECT_EQ(types->Next(text.Put()), S_FALSE);
        EXPECT_EQ(text.Get(), nullptr);
        ASSERT_EQ(types->Reset(), S_OK);
    }
    ASSERT_EQ(As<ITsUICommandSource>(window)->GetCommandSourceName(text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"DLGEditor");
    ASSERT_EQ(As<ITsOptionsSource>(window)->GetOptionsName(text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"DlgEditor");
    ASSERT_EQ(window->GetDefaultLayoutKey(u"Conversation", text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"DefaultLayout\\EditorsConversation");
    ASSERT_EQ(window->GetLayoutFile(TsLayoutFile::Default, text.Put()), S_OK);
    EXPECT_TRUE(text.View().ends_with(u"/DefaultLayouts.xml"));

    // A resource object without a tree can't be loaded; nothing loaded has no content.
    auto resource = CTsComObject<FakeResource>::Create();
    EXPECT_EQ(editor->Load(resource.Get()), E_INVALIDARG);
    EXPECT_EQ(editor->GetContent(resource.Get()), E_FAIL);

    // Closed by the host, its sink goes with it; a new window starts from a clean state.
    ASSERT_EQ(window->CloseUIWindow(), S_OK);
    EXPECT_EQ(ts::AdvisedEventSinkCount(), sinksBefore);
    EXPECT_EQ(editor->Attach(1, u"other.dlg", 0), E_FAIL);
    ASSERT_EQ(window->CreateUIWindow(nullptr), S_OK);
    ASSERT_EQ(editor->GetState(&cookie, text.Put(), &state), S_OK);
    EXPECT_EQ(cookie, 0u);
    EXPECT_EQ(text.View(), u"");
    EXPECT_EQ(state, 0u);
}

// Events of every kind, with every kind of payload, to open, closed and released editors and
// straight into DllSendEvent: all succeed, and none keeps its payload.
TEST_F(EditorObjects, EventsOfAnyKindAreHarmlessWhateverTheEditorsState) {
    auto window = Create<ITsUIWindow>(u"ConversationEditor");
    auto preview = Create<ITsUIWindow>(u"ConversationLinePreview");
    ASSERT_EQ(window->CreateUIWindow(nullptr), S_OK);
    ASSERT_EQ(preview->CreateUIWindow(nullptr), S_OK);
    auto resource = CTsComObject<FakeResource>::Create();
    auto other = CTsComObject<OtherPayload>::Create();
    TsDllSendEventFn sendEvent = plugin_->SendEventEntry();
    auto sendAll = [&] {
        for (TsAtom event : {ts::events::Refresh(), ts::events::RefreshNoArt(),
                             ts::events::OptionsChange(), ts::events::ClosingEnvironment(),
                             ts::events::SaveResource(), TsAddAtom(u"NoSuchEvent"), TsAtom(0)}) {
            for (IUnknown* payload :
                 {static_cast<IUnknown*>(resource.Get()), static_cast<IUnknown*>(other.Get()),
                  static_cast<IUnknown*>(nullptr)}) {
                loader_.Broadcast(event, 1, 2, payload);
                EXPECT_EQ(sendEvent(event, 1, 2, payload), S_OK);
            }
        }
    };
    sendAll();
    ASSERT_EQ(window->CloseUIWindow(), S_OK);
    ASSERT_EQ(preview->CloseUIWindow(), S_OK);
    sendAll();
    window.Reset();
    preview.Reset();
    sendAll();
    std::uint32_t refs = resource->AddRef() - 1;
    resource->Release();
    EXPECT_EQ(refs, 1u);
}

}  // namespace
