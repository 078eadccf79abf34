// The editor object template: forwarding to its window, E_FAIL without one, E_NOTIMPL for what a
// window does not offer, host events through the window's sink. Then the small parts of an editor
// (caches, plugin flags, layout places) and the module object behind DllGetClassObject. The real
// editor's interfaces, as the host asks for them, are in tests/plugins.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <thread>
#include <tuple>
#include <vector>

#include "core/command_source_support.h"
#include "core/editor_support.h"
#include "core/event_sink.h"
#include "core/frame_wnd.h"
#include "core/layout_places.h"
#include "core/layout_support.h"
#include "core/listening_cache.h"
#include "core/marker_source_support.h"
#include "core/module.h"
#include "core/plugin_flags.h"
#include "core/window_interface.h"
#include "support/fake_resource.h"
#include "support/report_capture.h"
#include "support/test_folders.h"
#include "ts/environment.h"
#include "ts/events.h"
#include "ts/paths.h"
#include "ts/text.h"

namespace {

using ts::test::FakeResource;
using ts::test::OtherPayload;
using ts::test::ReportCapture;

struct ReceivedEvent {
    TsAtom event;
    std::uint32_t param1, param2;
    bool hadResource;
    bool operator==(const ReceivedEvent&) const = default;
};
std::vector<ReceivedEvent> gReceived;

// The least a marker store holds: notes, each its own display text.
class NoteStore {
public:
    std::size_t Count() const { return notes_.size(); }
    std::u16string LocationText(std::size_t i) const { return u"note=" + notes_[i]; }
    std::u16string DisplayText(std::size_t i) const { return notes_[i]; }
    std::u16string Category(std::size_t) const { return u"Note"; }
    void SetChangeListener(std::function<void()> listener) { listener_ = std::move(listener); }
    void Add(std::u16string note) {
        notes_.push_back(std::move(note));
        listener_();
    }

private:
    std::vector<std::u16string> notes_;
    std::function<void()> listener_;
};

// A window with every support class the editor object can forward to.
class FullWindow : public CTsFrameWnd,
                   public CTsEditorSupport<FullWindow>,
                   public CTsEditorLayoutSupport<FullWindow>,
                   public CTsUICommandSourceSupport<FullWindow>,
                   public CTsMarkerSourceSupport<FullWindow, NoteStore> {
public:
    static constexpr CLSID kClassId = ts::Guid("{7D2E4F10-6C1B-4A8E-9D3F-2B5A6C7D8E01}");

    FullWindow(CTsWindowInterface<FullWindow>& owner, TsWindowHandle)
        : CTsEditorLayoutSupport(true),
          CTsUICommandSourceSupport(u"FullSource", u"\nBarOne\n\nBarTwo\n"),
          owner_(&owner),
          events_(&owner) {}

    HRESULT LoadResource(IUnknown* resource) {
        if (!resource) return E_INVALIDARG;
        SetLoaded(true);
        return S_OK;
    }
    HRESULT SaveResource(std::uint32_t) { throw std::bad_alloc(); }
    HRESULT ReportWordCount() { throw ts::ComError(E_FAIL); }
    std::u16string OptionsName() const { return u"FullOptions"; }
    void ClearUndoHistory() { ++undoClears; }
    void RefreshStateDisplay() { ++stateRefreshes; }
    void OnEvent(TsAtom event, std::uint32_t p1, std::uint32_t p2, ITsResource* resource) {
        gReceived.push_back({event, p1, p2, resource != nullptr});
    }
    ITsEventSink* GetEventSink() const { return events_.GetSink(); }
    IUnknown* EditorObject() const { return static_cast<ITsEditor*>(owner_); }
    HRESULT GoToMarker(std::u16string_view location) {
        wentTo = location;
        return location.starts_with(u"note=") ? S_OK : E_INVALIDARG;
    }

    int undoClears = 0;
    int stateRefreshes = 0;
    std::u16string wentTo;

private:
    CTsWindowInterface<FullWindow>* owner_;
    CTsEventSinkConnection<CTsWindowInterface<FullWindow>> events_;
};

// A window that offers nothing but its frame.
class BareWindow : public CTsFrameWnd {
public:
    static constexpr CLSID kClassId = ts::Guid("{7D2E4F10-6C1B-4A8E-9D3F-2B5A6C7D8E02}");
    BareWindow(CTsWindowInterface<BareWindow>&, TsWindowHandle) {}
};

template <class W>
CTsComPtr<CTsComObject<CTsWindowInterface<W>>> NewEditor() {
    return CTsComObject<CTsWindowInterface<W>>::Create();
}

template <class I, class T>
CTsComPtr<I> As(const CTsComPtr<T>& object) {
    CTsComPtr<I> result;
    EXPECT_EQ(object->QueryInterface(I::kIID, result.PutVoid()), S_OK);
    return result;
}

// Every forwarding operation of the editor object, each returning its result.
template <class T>
std::vector<HRESULT> CallEveryForwardingOperation(const CTsComPtr<T>& object) {
    auto window = As<ITsUIWindow>(object);
    auto editor = As<ITsEditor>(object);
    auto commands = As<ITsUICommandSource>(object);
    auto options = As<ITsOptionsSource>(object);
    auto markers = As<ITsMarkerSource>(object);
    CTsComPtr<ITsStringEnum> list;
    CTsHostString text;
    std::uint32_t word = 0;
    auto resource = CTsComObject<FakeResource>::Create();
    return {window->GetLayoutFile(TsLayoutFile::User, text.Put()),
            window->GetDefaultLayoutKey(u"Main", text.Put()),
            commands->GetCommandBars(list.Put()),
            editor->EnumerateResourceTypes(kTsEditableResourceTypes, list.Put()),
            editor->Load(resource.Get()),
            editor->GetContent(resource.Get()),
            editor->Attach(1, u"a.dlg", 0),
            editor->GetState(&word, text.Put(), &word),
            editor->SetModified(1),
            editor->Save(0),
            editor->GetDisplayName(text.Put()),
            editor->ActivateFrame(1),
            editor->ReportWordCount(),
            options->GetOptionsName(text.Put()),
            markers->GetMarkerCount(&word),
            markers->GetMarker(0, text.Put(), nullptr, nullptr),
            markers->GoToMarker(u"note=a")};
}

// Before its window is made and after it is closed, every forwarded call of the editor object
// fails; while the window is open it hears the host's events through its sink.
TEST(WindowInterface, ForwardsAndListensOnlyWhileTheWindowIsOpen) {
    gReceived.clear();
    std::size_t sinksBefore = ts::AdvisedEventSinkCount();
    auto object = NewEditor<FullWindow>();
    for (HRESULT hr : CallEveryForwardingOperation(object)) EXPECT_EQ(hr, E_FAIL);

    // Not forwarded: the ignored slots, the plugin flags and making the window.
    EXPECT_EQ(As<ITsEditor>(object)->OnActivate(1), S_OK);
    std::uint32_t flags = 0xFFFF;
    EXPECT_EQ(As<ITsUIWindow>(object)->GetPluginFlags(&flags), S_OK);
    EXPECT_EQ(flags, 0u) << "a class the host has no definition of has no flags";
    EXPECT_EQ(As<ITsUIWindow>(object)->GetPluginFlags(nullptr), E_POINTER);
    EXPECT_EQ(As<ITsUIWindow>(object)->CloseUIWindow(), E_FAIL);

    // The command source has a name only with a window: S_FALSE and an empty one.
    CTsHostString name;
    EXPECT_EQ(As<ITsUICommandSource>(object)->GetCommandSourceName(name.Put()), S_FALSE);
    ASSERT_NE(name.Get(), nullptr);
    EXPECT_EQ(name.View(), u"");

    ASSERT_EQ(As<ITsUIWindow>(object)->CreateUIWindow(nullptr), S_OK);
    EXPECT_EQ(As<ITsUIWindow>(object)->CreateUIWindow(nullptr), S_FALSE) << "one window per object";
    EXPECT_EQ(As<ITsUICommandSource>(object)->GetCommandSourceName(name.Put()), S_OK);
    EXPECT_EQ(name.View(), u"FullSource");
    EXPECT_EQ(object->GetWindow()->CommandBarNames(),
              (std::vector<std::u16string>{u"BarOne", u"BarTwo"}))
        << "the empty names between line feeds are passed over";

    // The window advises its sink to the host; a payload that is not a resource arrives as none.
    EXPECT_EQ(ts::AdvisedEventSinkCount(), sinksBefore + 1);
    CTsComPtr<ITsEventSink> sink(object->GetWindow()->GetEventSink());
    auto resource = CTsComObject<FakeResource>::Create();
    auto other = CTsComObject<OtherPayload>::Create();
    ts::BroadcastToEventSinks(ts::events::Refresh(), 1, 2, resource.Get());
    ts::BroadcastToEventSinks(ts::events::OptionsChange(), 3, 4, other.Get());
    EXPECT_EQ(gReceived, (std::vector<ReceivedEvent>{{ts::events::Refresh(), 1, 2, true},
                                                     {ts::events::OptionsChange(), 3, 4, false}}));

    // Closing the window takes every operation back to E_FAIL, with nothing changed, and cuts
    // the sink off: a host still holding it reaches nothing, even after the object is gone.
    ASSERT_EQ(As<ITsUIWindow>(object)->CloseUIWindow(), S_OK);
    for (HRESULT hr : CallEveryForwardingOperation(object)) EXPECT_EQ(hr, E_FAIL);
    EXPECT_EQ(As<ITsUICommandSource>(object)->GetCommandSourceName(name.Put()), S_FALSE);
    EXPECT_EQ(ts::AdvisedEventSinkCount(), sinksBefore);
    EXPECT_EQ(sink->OnEvent(ts::events::Refresh(), 0, 0, resource.Get()), S_OK);
    object.Reset();
    EXPECT_EQ(sink->OnEvent(ts::events::RefreshNoArt(), 0, 0, nullptr), S_OK);
    EXPECT_EQ(gReceived.size(), 2u);
    std::uint32_t refs = resource->AddRef() - 1;
    resource->Release();
    EXPECT_EQ(refs, 1u) << "the sink holds the payload only for the call";
}

TEST(WindowInterface, ForwardsEditorStateAndResultsToTheWindow) {
    auto object = NewEditor<FullWindow>();
    auto editor = As<ITsEditor>(object);
    ASSERT_EQ(As<ITsUIWindow>(object)->CreateUIWindow(nullptr), S_OK);
    FullWindow& w = *object->GetWindow();
    auto state = [&] {
        std::uint32_t bits = 0xFF;
        EXPECT_EQ(editor->GetState(nullptr, nullptr, &bits), S_OK);
        return bits;
    };

    // The modified and extra bits the host passes are dropped; the read-only bit is kept and
    // empties the undo history.
    ASSERT_EQ(editor->Attach(77, u"act1/Intro_Talk.DLG",
                             kTsEditorReadOnly | kTsEditorModified | kTsEditorExtraState),
              S_OK);
    EXPECT_EQ(w.undoClears, 1);
    EXPECT_GE(w.stateRefreshes, 1);
    EXPECT_EQ(state(), kTsEditorReadOnly);
    ASSERT_EQ(editor->SetModified(5), S_OK);
    w.SetExtraState(true);
    EXPECT_EQ(state(), kTsEditorReadOnly | kTsEditorModified | kTsEditorExtraState);
    ASSERT_EQ(editor->SetModified(0), S_OK);
    EXPECT_EQ(state(), kTsEditorReadOnly | kTsEditorExtraState);

    // A writable attach keeps the history; an edit of a loaded resource marks it modified.
    ASSERT_EQ(editor->Attach(78, u"intro.dlg", 0), S_OK);
    EXPECT_EQ(w.undoClears, 1);
    w.SetExtraState(false);
    w.NoteEdited();
    EXPECT_FALSE(w.IsModified()) << "nothing loaded yet";
    auto resource = CTsComObject<FakeResource>::Create();
    ASSERT_EQ(editor->Load(resource.Get()), S_OK);
    w.NoteEdited();
    EXPECT_EQ(state(), kTsEditorModified);

    EXPECT_EQ(editor->ActivateFrame(1), S_OK);
    EXPECT_TRUE(w.IsVisible());
    EXPECT_EQ(editor->ActivateFrame(0), S_OK);
    EXPECT_FALSE(w.IsVisible());

    // Exceptions raised inside become results; the window's own result comes back as it is.
    EXPECT_EQ(editor->ReportWordCount(), E_FAIL);
    EXPECT_EQ(editor->Save(0), E_OUTOFMEMORY);
    EXPECT_EQ(editor->Load(nullptr), E_INVALIDARG);

    // The display name is the file name at the end of the attached name, its type in lower case;
    // a name that ends in a slash is shown as it came.
    const std::pair<const char16_t*, std::u16string_view> names[] = {
        {u"act1\\Intro_Talk.DLG", u"Intro_Talk.dlg"},
        {u"a/b/c.tar.GZ", u"c.tar.gz"},
        {u"plain", u"plain"},
        {u".hidden", u".hidden"},
        {u"folder/", u"folder/"}};
    for (const auto& [attached, shown] : names) {
        CTsHostString name;
        ASSERT_EQ(editor->Attach(1, attached, 0), S_OK);
        ASSERT_EQ(editor->GetDisplayName(name.Put()), S_OK);
        EXPECT_EQ(name.View(), shown);
    }
}

TEST(WindowInterface, WhatTheWindowDoesNotOfferIsNotImplemented) {
    auto object = NewEditor<BareWindow>();
    ASSERT_EQ(As<ITsUIWindow>(object)->CreateUIWindow(nullptr), S_OK);
    std::vector<HRESULT> expected(17, E_NOTIMPL);
    expected[11] = S_OK;  // ActivateFrame: every window has its frame
    EXPECT_EQ(CallEveryForwardingOperation(object), expected);
    CTsHostString name;
    EXPECT_EQ(As<ITsUICommandSource>(object)->GetCommandSourceName(name.Put()), E_NOTIMPL);
}

// The host reads the window's markers, hears each change of them with the editor object as
// the payload, and hands a marker's location back to go there.
TEST(WindowInterface, MarkersAreReadAnnouncedAndVisitedThroughTheWindow) {
    auto object = NewEditor<FullWindow>();
    auto markers = As<ITsMarkerSource>(object);
    ASSERT_EQ(As<ITsUIWindow>(object)->CreateUIWindow(nullptr), S_OK);
    FullWindow& w = *object->GetWindow();
    std::vector<ts::HostEvent> sent;
    int listener = ts::AddHostEventListener([&](const ts::HostEvent& e) {
        sent.push_back(e);
        ASSERT_NE(e.payload, nullptr);
        CTsComPtr<ITsMarkerSource> source;
        EXPECT_EQ(e.payload->QueryInterface(ITsMarkerSource::kIID, source.PutVoid()), S_OK);
        EXPECT_EQ(source.Get(), markers.Get()) << "the payload is the editor that changed";
    });
    w.Markers().Add(u"first");
    w.Markers().Add(u"second");
    ts::RemoveHostEventListener(listener);
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[1].event, ts::events::MarkersChange());
    EXPECT_EQ(sent[1].flags, ts::events::kNotice);
    EXPECT_EQ(sent[1].text, u"");

    std::uint32_t count = 0;
    ASSERT_EQ(markers->GetMarkerCount(&count), S_OK);
    EXPECT_EQ(count, 2u);
    CTsHostString location, text, category;
    ASSERT_EQ(markers->GetMarker(1, location.Put(), text.Put(), category.Put()), S_OK);
    EXPECT_EQ(location.View(), u"note=second");
    EXPECT_EQ(text.View(), u"second");
    EXPECT_EQ(category.View(), u"Note");
    ASSERT_EQ(markers->GetMarker(0, nullptr, text.Put(), nullptr), S_OK) << "only the text";
    EXPECT_EQ(text.View(), u"first");
    EXPECT_EQ(markers->GetMarker(2, location.Put(), text.Put(), category.Put()), E_INVALIDARG);
    EXPECT_EQ(location.Get(), nullptr);
    EXPECT_EQ(text.Get(), nullptr);
    EXPECT_EQ(markers->GetMarkerCount(nullptr), E_POINTER);

    EXPECT_EQ(markers->GoToMarker(u"note=second"), S_OK);
    EXPECT_EQ(w.wentTo, u"note=second");
    EXPECT_EQ(markers->GoToMarker(u"elsewhere"), E_INVALIDARG) << "the window's own answer";
    EXPECT_EQ(markers->GoToMarker(nullptr), E_POINTER);
}

// A cache listens while it lives, through the same sink connection as a window.
TEST(ListeningCache, EmptiesOnRefreshRefreshNoArtAndClosingEnvironmentOnly) {
    std::size_t sinksBefore = ts::AdvisedEventSinkCount();
    for (TsAtom clearing :
         {ts::events::Refresh(), ts::events::RefreshNoArt(), ts::events::ClosingEnvironment()}) {
        CEventListeningCache<std::map<int, bool>> answers;
        EXPECT_EQ(ts::AdvisedEventSinkCount(), sinksBefore + 1);
        answers.Map()[3] = true;
        for (TsAtom kept : {ts::events::OptionsChange(), ts::events::SaveResource(),
                            ts::events::RefreshOverride(), TsAddAtom(u"SomethingElse")}) {
            ts::BroadcastToEventSinks(kept, 0, 0, nullptr);
            EXPECT_EQ(answers->size(), 1u) << ts::Utf16ToUtf8(TsGetAtomName(kept));
        }
        ts::BroadcastToEventSinks(clearing, 0, 0, nullptr);
        EXPECT_TRUE(answers->empty()) << ts::Utf16ToUtf8(TsGetAtomName(clearing));
    }
    EXPECT_EQ(ts::AdvisedEventSinkCount(), sinksBefore);
}

TEST(PluginFlags, EachKnownTokenAddsItsFlagAndUnknownOnesAreReported) {
    // Blanks around tokens and empty tokens are passed over; tokens are matched exactly.
    const std::tuple<std::u16string, std::uint32_t, std::size_t> cases[] = {
        {u" ToolWindow , SingleInstance ", 0x30000, 0},
        {u"ToolWindow,,", 0x20000, 0},
        {u"Floating,ToolWindow,Docked", 0x20000, 2},
        {u"toolwindow", 0, 1}};
    for (const auto& [attribute, flags, unknown] : cases) {
        ReportCapture reports;
        EXPECT_EQ(ts::ParsePluginFlags(attribute), flags) << ts::Utf16ToUtf8(attribute);
        EXPECT_EQ(reports.Count(u"Unknown flag in plugin settings"), unknown);
        for (const auto& e : reports.entries()) EXPECT_EQ(e.level, 0) << "an assertion report";
    }
}

// Default layouts live in the application data folder, user layouts in the documents folder of
// the user's XDG settings, which is created on demand.
TEST(LayoutPlaces, DefaultAndUserLayoutFiles) {
    std::string root = ts::test::MakeTempFolder("ts-layouts");
    for (const std::string& appData : {root + "/appdata", root + "/appdata/"}) {
        setenv("TS_APPDATAPATH", appData.c_str(), 1);
        EXPECT_EQ(ts::DefaultLayoutFilePath(),
                  ts::Utf8ToUtf16(root + "/appdata/DefaultLayouts.xml"));
    }
    unsetenv("TS_APPDATAPATH");
    EXPECT_EQ(ts::DefaultLayoutFilePath(),
              ts::Utf8ToUtf16(ts::ToolsetDataFolder() + "/DefaultLayouts.xml"));
    EXPECT_EQ(ts::DefaultLayoutProfileKey(false, u"Dialog"), u"DefaultLayout\\EditorsDialog");
    EXPECT_EQ(ts::DefaultLayoutProfileKey(true, u"Find"), u"DefaultLayout\\DialogsFind");

    std::string config = std::getenv("XDG_CONFIG_HOME");
    std::filesystem::create_directories(config);
    std::ofstream(config + "/user-dirs.dirs")
        << "# written by a test\n"
        << "XDG_DESKTOP_DIR=\"$HOME/Desktop\"\n"
        << "XDG_DOCUMENTS_DIR=\"" << root << "/My Documents\"\n";
    std::string folder = root + "/My Documents/Halvorn/Mistreach/Toolset/";
    EXPECT_FALSE(std::filesystem::exists(folder));
    EXPECT_EQ(ts::UserLayoutFolder(), ts::Utf8ToUtf16(folder));
    EXPECT_TRUE(std::filesystem::is_directory(folder));
    EXPECT_EQ(ts::UserLayoutFilePath(), ts::Utf8ToUtf16(folder + "Layouts3.xml"));

    // "$HOME" in the file is the user's home folder.
    std::ofstream(config + "/user-dirs.dirs") << "XDG_DOCUMENTS_DIR=\"$HOME/Docs\"\n";
    EXPECT_EQ(ts::DocumentsFolder(), std::string(std::getenv("HOME")) + "/Docs");
    std::filesystem::remove(config + "/user-dirs.dirs");
    std::filesystem::remove_all(root);
}

struct IProbe : IUnknown {
    TS_INTERFACE_ID("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A01}");
    virtual int Value() = 0;
};
struct IAbsent : IUnknown {
    TS_INTERFACE_ID("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A02}");
};

int gLivingProbes = 0;

class Probe : public CTsComObjectRoot<IProbe> {
public:
    Probe() { ++gLivingProbes; }
    ~Probe() { --gLivingProbes; }
    int Value() override { return 42; }
};

constexpr CLSID kProbeClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A10}");
constexpr CLSID kBrokenFactoryClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A12}");
constexpr CLSID kSilentFactoryClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A13}");
constexpr CLSID kSkippedClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A14}");
constexpr CLSID kUnknownClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A1F}");

// Factory creators that fail: one with a code of its own, one without saying why.
HRESULT BrokenFactory(void*, REFIID, void** object) {
    *object = nullptr;
    return E_OUTOFMEMORY;
}
HRESULT SilentFactory(void*, REFIID, void** object) {
    *object = nullptr;
    return S_OK;
}

std::atomic<int> gSlowFactoriesMade{0};
// A factory creator slow enough for two threads to meet in the lookup.
HRESULT SlowFactory(void* creator, REFIID iid, void** object) {
    ++gSlowFactoriesMade;
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    return TsCreateClassFactory(creator, iid, object);
}

// A class table entry with a factory creator of its own; without one it is passed over.
TsObjectMapEntry Entry(const CLSID& clsid, TsCreatorFn creator) {
    return {&clsid, &TsUpdateRegistryNothing, creator, nullptr, nullptr, 0, &TsNoObjectDescription};
}

struct ModuleFixture : ::testing::Test {
    TsObjectMapEntry map[4] = {
        TS_OBJECT_ENTRY(kProbeClass, Probe), Entry(kBrokenFactoryClass, &BrokenFactory),
        Entry(kSilentFactoryClass, &SilentFactory), Entry(kSkippedClass, nullptr)};
    CTsModule module{map};

    CTsComPtr<IClassFactory> Factory(const CLSID& clsid) {
        CTsComPtr<IClassFactory> factory;
        EXPECT_EQ(TsModuleGetClassObject(&module, clsid, IClassFactory::kIID, factory.PutVoid()),
                  S_OK);
        return factory;
    }
};

TEST_F(ModuleFixture, LookupReturnsEveryCodeOfItsSteps) {
    void* out = nullptr;
    EXPECT_EQ(TsModuleGetClassObject(nullptr, kProbeClass, IClassFactory::kIID, &out),
              E_INVALIDARG);
    CTsModule uninitialised;
    out = &uninitialised;
    EXPECT_EQ(TsModuleGetClassObject(&uninitialised, kProbeClass, IClassFactory::kIID, &out),
              E_UNEXPECTED);
    EXPECT_EQ(out, nullptr) << "a refused lookup leaves no stale pointer";
    EXPECT_EQ(TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID, nullptr),
              E_POINTER);

    // A creator's own failure is passed on; a creator that made nothing and said nothing is
    // "class not available"; a factory answers only its own interfaces.
    const std::tuple<CLSID, IID, HRESULT> cases[] = {
        {kUnknownClass, IClassFactory::kIID, CLASS_E_CLASSNOTAVAILABLE},
        {kSkippedClass, IClassFactory::kIID, CLASS_E_CLASSNOTAVAILABLE},
        {kBrokenFactoryClass, IClassFactory::kIID, E_OUTOFMEMORY},
        {kSilentFactoryClass, IClassFactory::kIID, CLASS_E_CLASSNOTAVAILABLE},
        {kProbeClass, IAbsent::kIID, E_NOINTERFACE}};
    for (const auto& [clsid, iid, expected] : cases) {
        out = reinterpret_cast<void*>(0x1);
        EXPECT_EQ(TsModuleGetClassObject(&module, clsid, iid, &out), expected);
        EXPECT_EQ(out, nullptr) << "the output is cleared before the lookup";
    }
    EXPECT_EQ(map[1].cachedFactory.load(), nullptr) << "a failed creation is not cached";
}

// Two threads asking at once meet in the lookup: the second check inside the module's lock finds
// the first one's factory, which stays cached with a reference of its own until the module ends.
TEST_F(ModuleFixture, AFactoryIsMadeOnceAndCachedUntilTheModuleEnds) {
    map[0].getClassObject = &SlowFactory;
    gSlowFactoriesMade = 0;
    CTsComPtr<IClassFactory> got[2];
    auto ask = [&](int i) {
        TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID, got[i].PutVoid());
    };
    std::thread a(ask, 0), b(ask, 1);
    a.join();
    b.join();
    EXPECT_EQ(gSlowFactoriesMade.load(), 1);
    ASSERT_TRUE(got[0]);
    EXPECT_EQ(got[0].Get(), got[1].Get());
    EXPECT_EQ(Factory(kProbeClass).Get(), got[0].Get());
    EXPECT_EQ(static_cast<IUnknown*>(got[0].Get()), map[0].cachedFactory.load());

    std::uint32_t ours = got[0]->AddRef() - 1;
    got[0]->Release();
    module.Term();
    EXPECT_EQ(map[0].cachedFactory.load(), nullptr);
    EXPECT_EQ(got[0]->AddRef() - 1, ours - 1);
    got[0]->Release();
    void* out = nullptr;
    EXPECT_EQ(TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID, &out),
              E_UNEXPECTED);
}

TEST_F(ModuleFixture, InstancesRefuseAggregationAndLockTheModuleWhileTheyLive) {
    CTsComPtr<IClassFactory> factory = Factory(kProbeClass);
    long locksBefore = module.GetLockCount();

    CTsComPtr<IProbe> probe;
    ASSERT_EQ(factory->CreateInstance(nullptr, IProbe::kIID, probe.PutVoid()), S_OK);
    EXPECT_EQ(probe->Value(), 42);
    EXPECT_EQ(module.GetLockCount(), locksBefore + 1);

    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(factory->CreateInstance(probe.Get(), IProbe::kIID, &out), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(factory->CreateInstance(nullptr, IProbe::kIID, nullptr), E_POINTER);

    // An object whose interface is refused is destroyed at once, and its lock goes with it.
    EXPECT_EQ(factory->CreateInstance(nullptr, IAbsent::kIID, &out), E_NOINTERFACE);
    EXPECT_EQ(gLivingProbes, 1);
    EXPECT_EQ(module.GetLockCount(), locksBefore + 1);

    probe.Reset();
    EXPECT_EQ(gLivingProbes, 0);
    EXPECT_EQ(module.GetLockCount(), locksBefore);

    // LockServer holds the module the same way.
    factory->LockServer(true);
    EXPECT_EQ(module.GetLockCount(), locksBefore + 1);
    factory->LockServer(false);
    EXPECT_EQ(module.GetLockCount(), locksBefore);
}

// The process has one global interface table, fetched on first demand; it keeps what is
// registered in it alive until it is revoked.
TEST_F(ModuleFixture, GlobalInterfaceTableKeepsRegisteredObjectsUntilRevoked) {
    CTsComPtr<IGlobalInterfaceTable> table, again;
    ASSERT_EQ(module.GetGlobalInterfaceTable(table.Put()), S_OK);
    ASSERT_EQ(module.GetGlobalInterfaceTable(again.Put()), S_OK);
    EXPECT_EQ(table.Get(), again.Get());
    auto probe = CTsComObject<Probe>::Create();
    std::uint32_t cookie = 0;
    EXPECT_EQ(table->RegisterInterfaceInGlobal(probe.Get(), IAbsent::kIID, &cookie), E_NOINTERFACE);
    ASSERT_EQ(table->RegisterInterfaceInGlobal(probe.Get(), IProbe::kIID, &cookie), S_OK);
    probe.Reset();
    EXPECT_EQ(gLivingProbes, 1);
    CTsComPtr<IProbe> fetched;
    ASSERT_EQ(table->GetInterfaceFromGlobal(cookie, IProbe::kIID, fetched.PutVoid()), S_OK);
    EXPECT_EQ(fetched->Value(), 42);
    fetched.Reset();
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), S_OK);
    EXPECT_EQ(gLivingProbes, 0);
    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(table->GetInterfaceFromGlobal(cookie, IProbe::kIID, &out), E_INVALIDARG);
    EXPECT_EQ(out, nullptr);
}

}  // namespace
