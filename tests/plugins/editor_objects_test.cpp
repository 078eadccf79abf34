// The conversation editor's classes driven as the host drives them: through the loader and the
// library's two entry points, then through the editor object's interfaces.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "fixtures/fixture_ids.h"
#include "plugin_folder.h"
#include "support/fake_resource.h"
#include "support/report_capture.h"
#include "ts/editor.h"
#include "ts/editorinterfaces.h"
#include "ts/environment.h"
#include "ts/events.h"
#include "ts/hoststring.h"
#include "ts/optionssource.h"
#include "ts/pluginloader.h"
#include "ts/uicommandsource.h"
#include "ts/uiwindow.h"

namespace {

using ts::test::FakeResource;
using ts::test::OtherPayload;
using ts::test::ReportCapture;

constexpr CLSID kEditorClass = ts::Guid("{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}");
constexpr CLSID kPreviewClass = ts::Guid("{6E3D0619-3A01-4d28-A05A-62CED6F22A73}");

class EditorObjects : public ::testing::Test {
protected:
    void SetUp() override {
        folder_.Copy(ts::test::EditorDlgLibrary());
        folder_.Copy(ts::test::FixtureLibrary("fixture_good"));
        ASSERT_EQ(loader_.Scan(folder_.Path()), 2u);
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

    std::uint32_t FlagsOf(std::u16string_view pattern) {
        auto window = Create<ITsUIWindow>(pattern);
        std::uint32_t flags = 0xDEAD;
        EXPECT_EQ(window->GetPluginFlags(&flags), S_OK);
        return flags;
    }

    ts::test::PluginFolder folder_;
    ts::PluginLoader loader_;  // after the folder: unloaded before the files go
    ts::Plugin* plugin_ = nullptr;
};

template <class I, class T>
CTsComPtr<I> As(const CTsComPtr<T>& object) {
    CTsComPtr<I> result;
    EXPECT_EQ(object->QueryInterface(I::kIID, result.PutVoid()), S_OK);
    return result;
}

TEST_F(EditorObjects, ClassObjectLookupThroughTheEntryPoint) {
    TsDllGetClassObjectFn getClassObject = plugin_->GetClassObjectEntry();
    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(getClassObject(ts::Guid("{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D03}"),
                             IClassFactory::kIID, &out),
              static_cast<HRESULT>(0x80040111));
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(getClassObject(kEditorClass, IClassFactory::kIID, nullptr), E_POINTER);

    // Two requests for a class give the same cached factory; each class has its own.
    CTsComPtr<IClassFactory> first, second, preview;
    ASSERT_EQ(getClassObject(kEditorClass, IClassFactory::kIID, first.PutVoid()), S_OK);
    ASSERT_EQ(getClassObject(kEditorClass, IClassFactory::kIID, second.PutVoid()), S_OK);
    ASSERT_EQ(getClassObject(kPreviewClass, IClassFactory::kIID, preview.PutVoid()), S_OK);
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_NE(first.Get(), preview.Get());
    CTsComPtr<IClassFactory> viaLoader;
    ASSERT_EQ(
        loader_.GetClassObject(u"ConversationEditor", IClassFactory::kIID, viaLoader.PutVoid()),
        S_OK);
    EXPECT_EQ(viaLoader.Get(), first.Get());

    // A factory answers IUnknown and IClassFactory only.
    EXPECT_EQ(getClassObject(kEditorClass, ITsEditor::kIID, &out), E_NOINTERFACE);

    // Aggregation is refused and leaves the output empty.
    auto outer = CTsComObject<OtherPayload>::Create();
    out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(first->CreateInstance(outer.Get(), ITsEditor::kIID, &out),
              static_cast<HRESULT>(0x80040110));
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(first->CreateInstance(nullptr, ITsEditor::kIID, nullptr), E_POINTER);
    EXPECT_EQ(first->CreateInstance(nullptr, IClassFactory::kIID, &out), E_NOINTERFACE);
}

TEST_F(EditorObjects, EveryEditorObjectAnswersTheTwentyInterfaces) {
    const IID order[] = {ITsUIWindow::kIID,
                         ITsUICommandSource::kIID,
                         ITsEditor::kIID,
                         ITsExportSource::kIID,
                         ITsMarkerSource::kIID,
                         ITsFindReplaceSource::kIID,
                         ITsHelpSource::kIID,
                         ITsOptionsSource::kIID,
                         ITsCurrentState::kIID,
                         ITsUndoRedo::kIID,
                         ITsObjectInspectorSource::kIID,
                         ITsIcon::kIID,
                         ITsIdle::kIID,
                         ITsFindReplaceWindow::kIID,
                         ITsResourceDiff::kIID,
                         ITsEditorDetect::kIID,
                         ITsEditorExporter::kIID,
                         ITsPreview::kIID,
                         ITsSoundPlayerSource::kIID,
                         ITsConversationLinePreview::kIID};
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

TEST_F(EditorObjects, PluginFlagsComeFromTheDefinitionTheHostRead) {
    ReportCapture reports;
    EXPECT_EQ(FlagsOf(u"ConversationEditor"), 0u) << "a normal, multi-instance document editor";
    EXPECT_EQ(FlagsOf(u"ConversationLinePreview"), 0x20000u) << "a tool window";
    EXPECT_EQ(FlagsOf(u"FixtureSingleTool"), 0x30000u);
    EXPECT_EQ(FlagsOf(u"FixtureEmptyFlags"), 0u);
    EXPECT_EQ(FlagsOf(u"FixtureNoFlags"), 0u);
    EXPECT_EQ(reports.Count(u"Unknown flag in plugin settings"), 0u);
    EXPECT_EQ(FlagsOf(u"FixtureUnknownFlag"), 0u);
    EXPECT_EQ(reports.Count(u"Unknown flag in plugin settings"), 1u);
    EXPECT_EQ(reports.size(), 1u);
}

TEST_F(EditorObjects, TheConversationEditorAsTheHostUsesIt) {
    auto window = Create<ITsUIWindow>(u"ConversationEditor");
    auto editor = As<ITsEditor>(window);
    auto commands = As<ITsUICommandSource>(window);
    auto options = As<ITsOptionsSource>(window);
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
    ASSERT_EQ(editor->SetModified(1), S_OK);
    ASSERT_EQ(editor->GetState(nullptr, nullptr, &state), S_OK);
    EXPECT_EQ(state, kTsEditorModified);
    ASSERT_EQ(editor->GetDisplayName(text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"intro_talk.dlg");
    EXPECT_EQ(editor->GetDisplayName(nullptr), S_OK);

    CTsComPtr<ITsStringEnum> types;
    ASSERT_EQ(editor->EnumerateResourceTypes(kTsEditableResourceTypes, types.Put()), S_OK);
    ASSERT_EQ(types->Next(text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"Conversation");
    EXPECT_EQ(types->Next(text.Put()), S_FALSE);
    ASSERT_EQ(editor->EnumerateResourceTypes(0, types.Put()), S_OK);
    std::uint32_t count = 9;
    types->GetCount(&count);
    EXPECT_EQ(count, 0u);

    ASSERT_EQ(commands->GetCommandSourceName(text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"DLGEditor");
    CTsComPtr<ITsStringEnum> bars;
    ASSERT_EQ(commands->GetCommandBars(bars.Put()), S_OK);
    ASSERT_EQ(bars->Next(text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"DialogEditor");
    ASSERT_EQ(bars->Next(text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"DialogEditorHighlight");
    EXPECT_EQ(bars->Next(text.Put()), S_FALSE);

    ASSERT_EQ(options->GetOptionsName(text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"DlgEditor");
    ASSERT_EQ(window->GetDefaultLayoutKey(u"Conversation", text.Put()), S_OK);
    EXPECT_EQ(text.View(), u"DefaultLayout\\EditorsConversation");
    ASSERT_EQ(window->GetLayoutFile(TsLayoutFile::Default, text.Put()), S_OK);
    EXPECT_TRUE(text.View().ends_with(u"/DefaultLayouts.xml"));

    EXPECT_EQ(editor->ActivateFrame(1), S_OK);
    EXPECT_EQ(editor->OnActivate(1), S_OK);
    EXPECT_EQ(editor->OnHostNotify(3), S_OK);

    // A resource object without a tree can't be loaded; nothing loaded has no content.
    auto resource = CTsComObject<FakeResource>::Create();
    EXPECT_EQ(editor->Load(resource.Get()), E_INVALIDARG);
    EXPECT_EQ(editor->GetContent(resource.Get()), E_FAIL);

    // Closed by the host: every forwarded call fails, nothing else does.
    ASSERT_EQ(window->CloseUIWindow(), S_OK);
    EXPECT_EQ(ts::AdvisedEventSinkCount(), sinksBefore);
    EXPECT_EQ(editor->Attach(1, u"other.dlg", 0), E_FAIL);
    EXPECT_EQ(editor->GetState(&cookie, text.Put(), &state), E_FAIL);
    EXPECT_EQ(editor->Load(resource.Get()), E_FAIL);
    EXPECT_EQ(options->GetOptionsName(text.Put()), E_FAIL);
    EXPECT_EQ(commands->GetCommandBars(bars.Put()), E_FAIL);
    EXPECT_EQ(window->GetLayoutFile(TsLayoutFile::User, text.Put()), E_FAIL);
    EXPECT_EQ(window->CloseUIWindow(), E_FAIL);
    EXPECT_EQ(commands->GetCommandSourceName(text.Put()), S_FALSE);
    EXPECT_EQ(text.View(), u"");
    EXPECT_EQ(editor->OnActivate(0), S_OK);
    EXPECT_EQ(editor->OnHostNotify(0), S_OK);

    // A new window starts from a clean state.
    ASSERT_EQ(window->CreateUIWindow(nullptr), S_OK);
    ASSERT_EQ(editor->GetState(&cookie, text.Put(), &state), S_OK);
    EXPECT_EQ(cookie, 0u);
    EXPECT_EQ(text.View(), u"");
    EXPECT_EQ(state, 0u);
}

TEST_F(EditorObjects, EventsToAClosedEditorAreHarmless) {
    auto window = Create<ITsUIWindow>(u"ConversationEditor");
    auto preview = Create<ITsUIWindow>(u"ConversationLinePreview");
    ASSERT_EQ(window->CreateUIWindow(nullptr), S_OK);
    ASSERT_EQ(preview->CreateUIWindow(nullptr), S_OK);
    auto resource = CTsComObject<FakeResource>::Create();
    auto other = CTsComObject<OtherPayload>::Create();

    // Capture the editor's sink as the host holds it, to call it after the editor is gone.
    std::size_t before = ts::AdvisedEventSinkCount();
    ASSERT_EQ(window->CloseUIWindow(), S_OK);
    ASSERT_EQ(window->CreateUIWindow(nullptr), S_OK);
    ASSERT_EQ(ts::AdvisedEventSinkCount(), before);

    for (TsAtom event :
         {ts::events::Refresh(), ts::events::RefreshNoArt(), ts::events::OptionsChange(),
          ts::events::ClosingEnvironment(), ts::events::SaveResource()}) {
        loader_.Broadcast(event, 0, 0, resource.Get());
        loader_.Broadcast(event, 1, 2, other.Get());
        loader_.Broadcast(event, 0, 0, nullptr);
    }
    ASSERT_EQ(window->CloseUIWindow(), S_OK);
    ASSERT_EQ(preview->CloseUIWindow(), S_OK);
    for (TsAtom event :
         {ts::events::Refresh(), ts::events::OptionsChange(), ts::events::ClosingEnvironment()})
        loader_.Broadcast(event, 0, 0, resource.Get());

    // The objects released entirely; the library stays, and events still go to it.
    window.Reset();
    preview.Reset();
    loader_.Broadcast(ts::events::Refresh(), 0, 0, nullptr);
    SUCCEED();
}

TEST_F(EditorObjects, DllSendEventAlwaysSucceeds) {
    TsDllSendEventFn sendEvent = plugin_->SendEventEntry();
    auto resource = CTsComObject<FakeResource>::Create();
    auto other = CTsComObject<OtherPayload>::Create();
    for (TsAtom event : {ts::events::Refresh(), ts::events::OptionsChange(),
                         ts::events::SaveResource(), TsAddAtom(u"NoSuchEvent"), TsAtom(0)}) {
        EXPECT_EQ(sendEvent(event, 0, 0, nullptr), 0);
        EXPECT_EQ(sendEvent(event, 1, 2, resource.Get()), 0);
        EXPECT_EQ(sendEvent(event, 3, 4, other.Get()), 0);
    }
    std::uint32_t refs = resource->AddRef() - 1;
    resource->Release();
    EXPECT_EQ(refs, 1u) << "the payload is held only during the call";
}

}  // namespace
