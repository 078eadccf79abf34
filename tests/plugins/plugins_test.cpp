// The plugins as the host meets them: its loader reports and skips each broken library at the
// step where it fails while the good ones keep working, and the conversation editor library's
// classes are driven through the editor object's interfaces as the host drives them. The editor
// object template on its own is in tests/core.
#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

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

TEST(PluginLoader, ReportsAndSkipsEveryBrokenLibraryWhileTheGoodOnesWork) {
    PluginFolder folder;
    for (const std::string& library : {kEditorDlgLibrary, FixtureLibrary("fixture_good"),
                                       FixtureLibrary("fixture_missing_entry")})
        folder.Copy(library);
    folder.Copy(TS_FRAMEWORK_LIBRARY, "libframework.so");  // a library that is no plugin
    folder.Write("libnotes.so", "These are not the plugins you are looking for.\n");
    // Damaged copies of the good fixture: cut short, and with a closing tag of its definition
    // misspelt (both entry points still there).
    std::string good(std::istreambuf_iterator<char>(
                         std::ifstream(FixtureLibrary("fixture_good"), std::ios::binary).rdbuf()),
                     {});
    folder.Write("libtruncated.so", good.substr(0, 200));
    good.replace(good.find("</plugin>"), 9, "</plugun>");
    folder.Write("libbroken_xml.so", good);
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
        {"libframework.so", u"no section .ts_plugin_def"},
        {"libbroken_xml.so", u"not well-formed XML: mismatched tag at line 1"},
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
    // Only loaded libraries hear the host's broadcasts (the good fixture answers each).
    reports.Clear();
    std::vector<std::u16string> heard;
    int listener =
        ts::AddHostEventListener([&](const ts::HostEvent& e) { heard.push_back(e.text); });
    loader.Broadcast(ts::events::Refresh(), 0, 0, nullptr);
    EXPECT_EQ(loader.LoadAll(), 2u);
    loader.Broadcast(ts::events::SaveResource(), 1, 2, nullptr);
    ts::RemoveHostEventListener(listener);
    EXPECT_EQ(heard, std::vector<std::u16string>{u"fixture heard SaveResource"});
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

// Two copies of the editor: the loader reads both definitions without loading either, serves a
// class offered twice from the first library and names the second in the log, and loads a
// library only when one of its classes is asked for.
TEST(PluginLoader, ReadsWithoutLoadingAndLoadsTheFirstLibraryOfAClassWhenAsked) {
    PluginFolder folder;
    folder.Copy(kEditorDlgLibrary, "libA_EditorDlg.so");
    folder.Copy(kEditorDlgLibrary, "libB_EditorDlg.so");
    ReportCapture reports;
    ts::PluginLoader loader;
    EXPECT_EQ(loader.Scan("/nonexistent/plugins"), 0u);
    EXPECT_TRUE(ReportMentions(reports, "/nonexistent/plugins", u"cannot be read"));
    ASSERT_EQ(loader.Scan(folder.path), 2u);
    ASSERT_EQ(loader.Plugins().size(), 2u) << "a missing folder adds nothing";
    EXPECT_EQ(reports.size(), 3u) << "and one report per class the second library repeats";
    EXPECT_TRUE(ReportMentions(reports, "libB_EditorDlg.so", u"already offers"));
    const ts::Plugin &first = *loader.Plugins()[0], &second = *loader.Plugins()[1];
    EXPECT_EQ(first.State(), PluginState::Read);
    EXPECT_EQ(first.GetClassObjectEntry(), nullptr);

    const ts::PluginClassInfo* preview = loader.FindClassByPattern(u"conversationlinepreview");
    ASSERT_NE(preview, nullptr) << "names are matched without regard to case";
    EXPECT_EQ(preview->description, u"Conversation Line Preview");
    EXPECT_EQ(loader.FindPlugin(preview->clsid), &first);
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
    EXPECT_EQ(first.State(), PluginState::Read) << "nothing so far needed the library's code";

    CTsComPtr<IClassFactory> factory;
    ASSERT_EQ(loader.GetClassObject(preview->clsid, IClassFactory::kIID, factory.PutVoid()), S_OK);
    EXPECT_EQ(first.State(), PluginState::Loaded);
    EXPECT_NE(first.GetClassObjectEntry(), nullptr);
    EXPECT_EQ(second.State(), PluginState::Read);
    factory.Reset();

    loader.UnloadAll();
    EXPECT_EQ(first.State(), PluginState::Read);
    EXPECT_EQ(first.SendEventEntry(), nullptr);
}

// The symbols the library defines and exports (global or weak) are read from its dynamic symbol
// table: nothing but the two entry points.
TEST(PluginLibrary, ExportsExactlyItsTwoEntryPoints) {
    std::string symbols, strings;
    std::u16string error;
    ASSERT_TRUE(ts::ReadElfSection(kEditorDlgLibrary, ".dynsym", symbols, error) &&
                ts::ReadElfSection(kEditorDlgLibrary, ".dynstr", strings, error))
        << ts::Utf16ToUtf8(error);
    std::set<std::string> exported;
    Elf64_Sym symbol;
    for (std::size_t at = sizeof symbol; at + sizeof symbol <= symbols.size();
         at += sizeof symbol) {
        std::memcpy(&symbol, symbols.data() + at, sizeof symbol);
        int binding = ELF64_ST_BIND(symbol.st_info);
        if (symbol.st_shndx != SHN_UNDEF && (binding == STB_GLOBAL || binding == STB_WEAK))
            exported.insert(strings.c_str() + symbol.st_name);
    }
    EXPECT_EQ(exported, (std::set<std::string>{"DllGetClassObject", "DllSendEvent"}));
}

constexpr CLSID kEditorClass = ts::Guid("{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}");

class EditorObjects : public ::testing::Test {
protected:
    void SetUp() override {
        folder_.Copy(kEditorDlgLibrary);
        folder_.Copy(FixtureLibrary("fixture_good"));
        ASSERT_EQ(loader_.Scan(folder_.path), 2u);
        ASSERT_EQ(loader_.LoadAll(), 2u);
    }

    template <class I>
    CTsComPtr<I> Create(std::u16string_view pattern) {
        CTsComPtr<I> object;
        EXPECT_EQ(loader_.CreateInstance(pattern, I::kIID, object.PutVoid()), S_OK);
        return object;
    }

    PluginFolder folder_;
    ts::PluginLoader loader_;  // after the folder: unloaded before the files go
};

template <class I, class T>
CTsComPtr<I> As(const CTsComPtr<T>& object) {
    CTsComPtr<I> result;
    EXPECT_EQ(object->QueryInterface(I::kIID, result.PutVoid()), S_OK);
    return result;
}

// Every class, the fixture's too, answers the twenty interfaces the host asks for with one
// identity, and the flags its definition states (how each token reads is in tests/core).
TEST_F(EditorObjects, EveryClassAnswersTheTwentyInterfacesAndTheFlagsOfItsDefinition) {
    // clang-format off
    const IID order[] = {
        ITsUIWindow::kIID, ITsUICommandSource::kIID, ITsEditor::kIID, ITsExportSource::kIID,
        ITsMarkerSource::kIID, ITsFindReplaceSource::kIID, ITsHelpSource::kIID,
        ITsOptionsSource::kIID, ITsCurrentState::kIID, ITsUndoRedo::kIID,
        ITsObjectInspectorSource::kIID, ITsIcon::kIID, ITsIdle::kIID, ITsFindReplaceWindow::kIID,
        ITsResourceDiff::kIID, ITsEditorDetect::kIID, ITsEditorExporter::kIID, ITsPreview::kIID,
        ITsSoundPlayerSource::kIID, ITsConversationLinePreview::kIID};
    // clang-format on
    // The editor is a normal, multi-instance document editor; the preview a tool window.
    const std::pair<const char16_t*, std::uint32_t> classes[] = {
        {u"ConversationEditor", 0u},
        {u"ConversationLinePreview", 0x20000u},
        {u"FixtureSingleTool", 0x30000u}};
    for (const auto& [pattern, flags] : classes) {
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
        std::uint32_t got = 0xDEAD;
        EXPECT_EQ(As<ITsUIWindow>(object)->GetPluginFlags(&got), S_OK);
        EXPECT_EQ(got, flags) << ts::Utf16ToUtf8(pattern);
    }
}

// The conversation editor as the host uses it. Events of every kind, with every kind of payload,
// reach it and DllSendEvent straight while it is open, closed and released: all succeed, and
// none keeps its payload.
TEST_F(EditorObjects, TheConversationEditorAsTheHostUsesIt) {
    auto resource = CTsComObject<FakeResource>::Create();
    auto other = CTsComObject<OtherPayload>::Create();
    IUnknown* payloads[] = {resource.Get(), other.Get(), nullptr};
    TsDllSendEventFn sendEvent = loader_.FindPlugin(kEditorClass)->SendEventEntry();
    auto sendAll = [&] {
        for (TsAtom event : {ts::events::Refresh(), ts::events::RefreshNoArt(),
                             ts::events::OptionsChange(), ts::events::ClosingEnvironment(),
                             ts::events::SaveResource(), TsAddAtom(u"NoSuchEvent"), TsAtom(0)})
            for (IUnknown* payload : payloads) {
                loader_.Broadcast(event, 1, 2, payload);
                EXPECT_EQ(sendEvent(event, 1, 2, payload), S_OK);
            }
    };
    auto window = Create<ITsUIWindow>(u"ConversationEditor");
    auto preview = Create<ITsUIWindow>(u"ConversationLinePreview");
    auto editor = As<ITsEditor>(window);
    ASSERT_EQ(window->CreateUIWindow(nullptr), S_OK);
    ASSERT_EQ(preview->CreateUIWindow(nullptr), S_OK);
    ASSERT_EQ(editor->Attach(0xC0FFEE, u"act1/intro_talk.dlg", kTsEditorModified), S_OK);
    std::uint32_t cookie = 0, state = 0xFF;
    CTsHostString text;
    ASSERT_EQ(editor->GetState(&cookie, text.Put(), &state), S_OK);
    EXPECT_EQ(cookie, 0xC0FFEEu);
    EXPECT_EQ(text.View(), u"act1/intro_talk.dlg");
    EXPECT_EQ(state, 0u) << "the host's modified bit is cleared on attach";
    sendAll();

    // What the host reads to place the editor: names, layouts, resource types.
    auto read = [&text](HRESULT hr) {
        EXPECT_EQ(hr, S_OK);
        return std::u16string(text.View());
    };
    EXPECT_EQ(read(editor->GetDisplayName(text.Put())), u"intro_talk.dlg");
    EXPECT_EQ(read(As<ITsUICommandSource>(window)->GetCommandSourceName(text.Put())), u"DLGEditor");
    EXPECT_EQ(read(As<ITsOptionsSource>(window)->GetOptionsName(text.Put())), u"DlgEditor");
    EXPECT_EQ(read(window->GetDefaultLayoutKey(u"Conversation", text.Put())),
              u"DefaultLayout\\EditorsConversation");
    EXPECT_TRUE(read(window->GetLayoutFile(TsLayoutFile::Default, text.Put()))
                    .ends_with(u"/DefaultLayouts.xml"));
    CTsComPtr<ITsStringEnum> types;
    ASSERT_EQ(editor->EnumerateResourceTypes(0, types.Put()), S_OK);
    EXPECT_EQ(types->Next(text.Put()), S_FALSE) << "it edits conversations but lists no other kind";
    ASSERT_EQ(editor->EnumerateResourceTypes(kTsEditableResourceTypes, types.Put()), S_OK);
    for (int pass = 0; pass < 2; ++pass) {  // the list starts again after a reset
        EXPECT_EQ(read(types->Next(text.Put())), u"Conversation");
        EXPECT_EQ(types->Next(text.Put()), S_FALSE);
        EXPECT_EQ(text.Get(), nullptr);
        ASSERT_EQ(types->Reset(), S_OK);
    }

    // A resource object without a tree can't be loaded; nothing loaded has no content.
    EXPECT_EQ(editor->Load(resource.Get()), E_INVALIDARG);
    EXPECT_EQ(editor->GetContent(resource.Get()), E_FAIL);

    // Closed by the host and opened again, the window starts from a clean state.
    ASSERT_EQ(window->CloseUIWindow(), S_OK);
    ASSERT_EQ(window->CreateUIWindow(nullptr), S_OK);
    ASSERT_EQ(editor->GetState(&cookie, text.Put(), &state), S_OK);
    EXPECT_EQ(cookie, 0u);
    EXPECT_EQ(text.View(), u"");
    EXPECT_EQ(state, 0u);

    ASSERT_EQ(window->CloseUIWindow(), S_OK);
    ASSERT_EQ(preview->CloseUIWindow(), S_OK);
    sendAll();
    window.Reset();
    preview.Reset();
    editor.Reset();
    sendAll();
    std::uint32_t refs = resource->AddRef() - 1;
    resource->Release();
    EXPECT_EQ(refs, 1u);
}

}  // namespace
