// The editor object template: forwarding to the window, E_FAIL once the window is gone,
// E_NOTIMPL for what a window does not offer, and events reaching the window through its sink.
// The real editor's twenty interfaces, as the host asks for them, are in tests/plugins. Also the
// caches that empty themselves on the host's refresh and closing events, and the small parts of
// an editor object: plugin flags, resource names, layout places and command bars. Last, the
// module object behind DllGetClassObject that makes editor objects: lookup in the class table,
// factories made once under the module's lock, instance creation, the lock held by living
// objects, and the global interface table.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <new>
#include <thread>
#include <vector>

#include "core/command_source_support.h"
#include "core/editor_support.h"
#include "core/event_sink.h"
#include "core/frame_wnd.h"
#include "core/layout_places.h"
#include "core/layout_support.h"
#include "core/listening_cache.h"
#include "core/module.h"
#include "core/plugin_flags.h"
#include "core/resource_id.h"
#include "core/window_interface.h"
#include "support/fake_resource.h"
#include "support/report_capture.h"
#include "support/test_folders.h"
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
};
std::vector<ReceivedEvent> gReceived;

// A window with every support class the editor object can forward to.
class FullWindow : public CTsFrameWnd,
                   public CTsEditorSupport<FullWindow>,
                   public CTsEditorLayoutSupport<FullWindow>,
                   public CTsUICommandSourceSupport<FullWindow> {
public:
    static constexpr CLSID kClassId = ts::Guid("{7D2E4F10-6C1B-4A8E-9D3F-2B5A6C7D8E01}");

    FullWindow(CTsWindowInterface<FullWindow>& owner, TsWindowHandle)
        : CTsEditorLayoutSupport(true),
          CTsUICommandSourceSupport(u"FullSource", u"BarOne\nBarTwo\n"),
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

    int undoClears = 0;
    int stateRefreshes = 0;

private:
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
            options->GetOptionsName(text.Put())};
}

TEST(WindowInterface, EveryForwardedCallFailsWithoutAWindow) {
    auto object = NewEditor<FullWindow>();
    for (HRESULT hr : CallEveryForwardingOperation(object)) EXPECT_EQ(hr, E_FAIL);

    // Not forwarded: the ignored slots, the plugin flags and making the window.
    auto editor = As<ITsEditor>(object);
    EXPECT_EQ(editor->OnActivate(1), S_OK);
    auto window = As<ITsUIWindow>(object);
    std::uint32_t flags = 0xFFFF;
    EXPECT_EQ(window->GetPluginFlags(&flags), S_OK);
    EXPECT_EQ(flags, 0u) << "a class the host has no definition of has no flags";
    EXPECT_EQ(window->GetPluginFlags(nullptr), E_POINTER);
    EXPECT_EQ(window->CloseUIWindow(), E_FAIL);

    // The command source has a name only with a window: S_FALSE and an empty one.
    CTsHostString name;
    EXPECT_EQ(As<ITsUICommandSource>(object)->GetCommandSourceName(name.Put()), S_FALSE);
    ASSERT_NE(name.Get(), nullptr);
    EXPECT_EQ(name.View(), u"");

    ASSERT_EQ(window->CreateUIWindow(nullptr), S_OK);
    EXPECT_EQ(window->CreateUIWindow(nullptr), S_FALSE) << "one window per editor object";
    EXPECT_EQ(As<ITsUICommandSource>(object)->GetCommandSourceName(name.Put()), S_OK);
    EXPECT_EQ(name.View(), u"FullSource");

    // Closing the window takes every operation back to E_FAIL, with nothing changed.
    ASSERT_EQ(window->CloseUIWindow(), S_OK);
    EXPECT_EQ(object->GetWindow(), nullptr);
    for (HRESULT hr : CallEveryForwardingOperation(object)) EXPECT_EQ(hr, E_FAIL);
    EXPECT_EQ(As<ITsUICommandSource>(object)->GetCommandSourceName(name.Put()), S_FALSE);
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
}

TEST(WindowInterface, WhatTheWindowDoesNotOfferIsNotImplemented) {
    auto object = NewEditor<BareWindow>();
    ASSERT_EQ(As<ITsUIWindow>(object)->CreateUIWindow(nullptr), S_OK);
    auto results = CallEveryForwardingOperation(object);
    // Only the frame operation exists on a bare window.
    for (std::size_t i = 0; i < results.size(); ++i) {
        HRESULT expected = i == 11 ? S_OK : E_NOTIMPL;
        EXPECT_EQ(results[i], expected) << "operation " << i;
    }
    CTsHostString name;
    EXPECT_EQ(As<ITsUICommandSource>(object)->GetCommandSourceName(name.Put()), E_NOTIMPL);
}

TEST(WindowInterface, HostEventsReachTheWindowThroughItsSink) {
    gReceived.clear();
    std::size_t sinksBefore = ts::AdvisedEventSinkCount();
    auto object = NewEditor<FullWindow>();
    ASSERT_EQ(As<ITsUIWindow>(object)->CreateUIWindow(nullptr), S_OK);
    EXPECT_EQ(ts::AdvisedEventSinkCount(), sinksBefore + 1)
        << "the window advises its sink to the host";
    CTsComPtr<ITsEventSink> sink(object->GetWindow()->GetEventSink());

    auto resource = CTsComObject<FakeResource>::Create();
    auto other = CTsComObject<OtherPayload>::Create();
    ts::BroadcastToEventSinks(ts::events::Refresh(), 1, 2, resource.Get());
    ts::BroadcastToEventSinks(ts::events::OptionsChange(), 3, 4, other.Get());
    ASSERT_EQ(gReceived.size(), 2u);
    EXPECT_EQ(gReceived[0].event, ts::events::Refresh());
    EXPECT_EQ(gReceived[0].param1, 1u);
    EXPECT_EQ(gReceived[0].param2, 2u);
    EXPECT_TRUE(gReceived[0].hadResource);
    EXPECT_FALSE(gReceived[1].hadResource) << "a payload that is not a resource arrives as none";

    // Once the window is closed the sink is unadvised; a host still holding it reaches nothing.
    ASSERT_EQ(As<ITsUIWindow>(object)->CloseUIWindow(), S_OK);
    EXPECT_EQ(ts::AdvisedEventSinkCount(), sinksBefore);
    EXPECT_EQ(sink->OnEvent(ts::events::Refresh(), 0, 0, resource.Get()), S_OK);
    object.Reset();
    EXPECT_EQ(sink->OnEvent(ts::events::RefreshNoArt(), 0, 0, nullptr), S_OK);
    EXPECT_EQ(gReceived.size(), 2u);
    std::uint32_t refs = resource->AddRef() - 1;
    resource->Release();
    EXPECT_EQ(refs, 1u) << "the sink holds the payload only for the call";
}

using BoolCache = CEventListeningCache<std::map<int, bool>>;

// A cache listens while it lives (through the same sink connection as a window, above).
TEST(ListeningCache, EmptiesOnRefreshRefreshNoArtAndClosingEnvironmentOnly) {
    auto resource = CTsComObject<FakeResource>::Create();
    std::size_t sinksBefore = ts::AdvisedEventSinkCount();
    for (TsAtom clearing :
         {ts::events::Refresh(), ts::events::RefreshNoArt(), ts::events::ClosingEnvironment()}) {
        BoolCache answers;
        EXPECT_EQ(ts::AdvisedEventSinkCount(), sinksBefore + 1);
        answers.Map()[3] = true;
        answers->emplace(4, false);
        for (TsAtom kept : {ts::events::OptionsChange(), ts::events::SaveResource(),
                            ts::events::RefreshOverride(), ts::events::NewResource(),
                            TsAddAtom(u"SomethingElse")}) {
            ts::BroadcastToEventSinks(kept, 0, 0, nullptr);
            EXPECT_EQ(answers->size(), 2u) << ts::Utf16ToUtf8(TsGetAtomName(kept));
        }
        ts::BroadcastToEventSinks(clearing, 0, 0, resource.Get());
        EXPECT_TRUE(answers->empty()) << ts::Utf16ToUtf8(TsGetAtomName(clearing));
        answers.Map()[1] = true;
        EXPECT_EQ(answers->size(), 1u) << "a cleared cache fills again";
    }
    EXPECT_EQ(ts::AdvisedEventSinkCount(), sinksBefore);
}

TEST(PluginFlags, EachKnownTokenAddsItsFlagAndUnknownOnesAreReported) {
    struct Case {
        std::u16string attribute;
        std::uint32_t flags;
        std::size_t reports;
    };
    // Blanks around tokens and empty tokens are passed over; tokens are matched exactly.
    const Case cases[] = {{u" ToolWindow , SingleInstance ", 0x30000, 0},
                          {u"ToolWindow,,", 0x20000, 0},
                          {u"Floating,ToolWindow,Docked", 0x20000, 2},
                          {u"toolwindow", 0, 1}};
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

TEST(CommandSourceSupport, SplitsTheCommandBarsAtLineFeeds) {
    struct W;
    EXPECT_TRUE(CTsUICommandSourceSupport<W>(u"S", u"").CommandBarNames().empty());
    EXPECT_EQ(CTsUICommandSourceSupport<W>(u"S", u"\nOne\n\nTwo\n").CommandBarNames(),
              (std::vector<std::u16string>{u"One", u"Two"}));
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

// An implementation whose allocation always fails, as when memory runs out.
class Unallocatable : public CTsComObjectRoot<IProbe> {
public:
    int Value() override { return 0; }
    static void* operator new(std::size_t, const std::nothrow_t&) noexcept { return nullptr; }
    static void operator delete(void*) noexcept {}
};

constexpr CLSID kProbeClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A10}");
constexpr CLSID kUnallocatableClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A11}");
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

struct ModuleFixture : ::testing::Test {
    TsObjectMapEntry map[6] = {
        TS_OBJECT_ENTRY(kProbeClass, Probe),
        TS_OBJECT_ENTRY(kUnallocatableClass, Unallocatable),
        {&kBrokenFactoryClass, &TsUpdateRegistryNothing, &BrokenFactory, nullptr, nullptr, 0,
         &TsNoObjectDescription},
        {&kSilentFactoryClass, &TsUpdateRegistryNothing, &SilentFactory, nullptr, nullptr, 0,
         &TsNoObjectDescription},
        // An entry without a factory creator is passed over, even for its own class id.
        {&kSkippedClass, &TsUpdateRegistryNothing, nullptr, nullptr, nullptr, 0,
         &TsNoObjectDescription},
        {nullptr, nullptr, nullptr, nullptr, nullptr, 0, nullptr},
    };
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
    EXPECT_EQ(TsModuleGetClassObject(&uninitialised, kProbeClass, IClassFactory::kIID, &out),
              E_UNEXPECTED);
    EXPECT_EQ(TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID, nullptr),
              E_POINTER);

    // A creator's own failure is passed on; a creator that made nothing and said nothing is
    // "class not available"; a factory answers only its own interfaces.
    struct Case {
        CLSID clsid;
        IID iid;
        HRESULT expected;
    };
    const Case cases[] = {
        {kUnknownClass, IClassFactory::kIID, CLASS_E_CLASSNOTAVAILABLE},
        {kSkippedClass, IClassFactory::kIID, CLASS_E_CLASSNOTAVAILABLE},
        {kBrokenFactoryClass, IClassFactory::kIID, E_OUTOFMEMORY},
        {kSilentFactoryClass, IClassFactory::kIID, CLASS_E_CLASSNOTAVAILABLE},
        {kProbeClass, IAbsent::kIID, E_NOINTERFACE},
    };
    for (const auto& c : cases) {
        out = reinterpret_cast<void*>(0x1);
        EXPECT_EQ(TsModuleGetClassObject(&module, c.clsid, c.iid, &out), c.expected);
        EXPECT_EQ(out, nullptr) << "the output is cleared before the lookup";
    }
    EXPECT_EQ(map[2].cachedFactory.load(), nullptr) << "a failed creation is not cached";
}

TEST_F(ModuleFixture, FactoryIsMadeOnceAndCachedUntilTheModuleEnds) {
    CTsComPtr<IClassFactory> first = Factory(kProbeClass), second = Factory(kProbeClass);
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(static_cast<IUnknown*>(first.Get()), map[0].cachedFactory.load());

    // The cache holds one reference of its own: after the module ends only ours remain.
    std::uint32_t ours = first->AddRef() - 1;
    first->Release();
    module.Term();
    EXPECT_EQ(map[0].cachedFactory.load(), nullptr);
    EXPECT_EQ(first->AddRef() - 1, ours - 1);
    first->Release();
    void* out = nullptr;
    EXPECT_EQ(TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID, &out),
              E_UNEXPECTED);
}

TEST_F(ModuleFixture, TwoThreadsAskingAtOnceGetOneFactory) {
    map[0].getClassObject = &SlowFactory;
    gSlowFactoriesMade = 0;
    IClassFactory* got[2] = {};
    auto ask = [&](int i) {
        TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID,
                               reinterpret_cast<void**>(&got[i]));
    };
    std::thread a(ask, 0), b(ask, 1);
    a.join();
    b.join();
    EXPECT_EQ(gSlowFactoriesMade.load(), 1)
        << "the second check inside the lock finds the first one's factory";
    ASSERT_NE(got[0], nullptr);
    EXPECT_EQ(got[0], got[1]);
    got[0]->Release();
    got[1]->Release();
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

    out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(Factory(kUnallocatableClass)->CreateInstance(nullptr, IProbe::kIID, &out),
              E_OUTOFMEMORY);
    EXPECT_EQ(out, nullptr);
}

TEST_F(ModuleFixture, GlobalInterfaceTableIsFetchedOnFirstDemandAndHandsOutRegisteredObjects) {
    CTsComPtr<IGlobalInterfaceTable> table, again;
    ASSERT_EQ(module.GetGlobalInterfaceTable(table.Put()), S_OK);
    ASSERT_EQ(module.GetGlobalInterfaceTable(again.Put()), S_OK);
    EXPECT_EQ(table.Get(), again.Get()) << "one table for the process";

    auto probe = CTsComObject<Probe>::Create();
    std::uint32_t cookie = 0;
    ASSERT_EQ(table->RegisterInterfaceInGlobal(probe.Get(), IProbe::kIID, &cookie), S_OK);
    EXPECT_EQ(table->RegisterInterfaceInGlobal(probe.Get(), IAbsent::kIID, &cookie), E_NOINTERFACE);
    probe.Reset();
    EXPECT_EQ(gLivingProbes, 1) << "the table keeps what was registered alive";

    CTsComPtr<IProbe> fetched;
    ASSERT_EQ(table->GetInterfaceFromGlobal(cookie, IProbe::kIID, fetched.PutVoid()), S_OK);
    EXPECT_EQ(fetched->Value(), 42);
    fetched.Reset();
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), S_OK);
    EXPECT_EQ(gLivingProbes, 0);
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), E_INVALIDARG);
    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(table->GetInterfaceFromGlobal(cookie, IProbe::kIID, &out), E_INVALIDARG);
    EXPECT_EQ(out, nullptr);
}

}  // namespace
