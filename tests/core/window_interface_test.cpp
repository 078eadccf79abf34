// The editor object template: the twenty host interfaces in order, forwarding to the window,
// E_FAIL once the window is gone, E_NOTIMPL for what a window doesn't offer, and events
// reaching the window through its sink.
#include <gtest/gtest.h>

#include <new>
#include <vector>

#include "core/command_source_support.h"
#include "core/editor_support.h"
#include "core/event_sink.h"
#include "core/frame_wnd.h"
#include "core/layout_support.h"
#include "core/window_interface.h"
#include "support/fake_resource.h"
#include "ts/events.h"

namespace {

using ts::test::FakeResource;
using ts::test::OtherPayload;

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
    return {
        window->GetLayoutFile(TsLayoutFile::User, text.Put()),
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
    };
}

TEST(WindowInterface, EveryForwardedCallFailsWithoutAWindow) {
    auto object = NewEditor<FullWindow>();
    for (HRESULT hr : CallEveryForwardingOperation(object)) EXPECT_EQ(hr, E_FAIL);

    // Not forwarded: the ignored slots, the plugin flags and making the window.
    auto editor = As<ITsEditor>(object);
    EXPECT_EQ(editor->OnActivate(1), S_OK);
    EXPECT_EQ(editor->OnHostNotify(7), S_OK);
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
    EXPECT_EQ(editor->OnActivate(0), S_OK);
}

TEST(WindowInterface, ForwardsEditorStateToTheWindow) {
    auto object = NewEditor<FullWindow>();
    auto editor = As<ITsEditor>(object);
    ASSERT_EQ(As<ITsUIWindow>(object)->CreateUIWindow(nullptr), S_OK);
    FullWindow& w = *object->GetWindow();

    // The modified and extra bits the host passes are dropped; the read-only bit is kept and
    // empties the undo history.
    ASSERT_EQ(editor->Attach(77, u"act1/Intro_Talk.DLG",
                             kTsEditorReadOnly | kTsEditorModified | kTsEditorExtraState),
              S_OK);
    EXPECT_EQ(w.undoClears, 1);
    EXPECT_GE(w.stateRefreshes, 1);
    std::uint32_t state = 0xFF;
    ASSERT_EQ(editor->GetState(nullptr, nullptr, &state), S_OK);
    EXPECT_EQ(state, kTsEditorReadOnly);

    ASSERT_EQ(editor->SetModified(5), S_OK);
    editor->GetState(nullptr, nullptr, &state);
    EXPECT_EQ(state, kTsEditorReadOnly | kTsEditorModified);
    w.SetExtraState(true);
    editor->GetState(nullptr, nullptr, &state);
    EXPECT_EQ(state, kTsEditorReadOnly | kTsEditorModified | kTsEditorExtraState);
    ASSERT_EQ(editor->SetModified(0), S_OK);
    editor->GetState(nullptr, nullptr, &state);
    EXPECT_EQ(state, kTsEditorReadOnly | kTsEditorExtraState);

    // A writable attach keeps the history; an edit of a loaded resource marks it modified.
    ASSERT_EQ(editor->Attach(78, u"intro.dlg", 0), S_OK);
    EXPECT_EQ(w.undoClears, 1);
    w.SetExtraState(false);
    w.NoteEdited();
    EXPECT_FALSE(w.IsModified()) << "nothing loaded yet";
    auto resource = CTsComObject<FakeResource>::Create();
    ASSERT_EQ(editor->Load(resource.Get()), S_OK);
    w.NoteEdited();
    editor->GetState(nullptr, nullptr, &state);
    EXPECT_EQ(state, kTsEditorModified);

    EXPECT_EQ(editor->ActivateFrame(1), S_OK);
    EXPECT_TRUE(w.IsVisible());
    EXPECT_EQ(editor->ActivateFrame(0), S_OK);
    EXPECT_FALSE(w.IsVisible());
}

TEST(WindowInterface, FailuresRaisedInsideBecomeResults) {
    auto object = NewEditor<FullWindow>();
    auto editor = As<ITsEditor>(object);
    ASSERT_EQ(As<ITsUIWindow>(object)->CreateUIWindow(nullptr), S_OK);
    EXPECT_EQ(editor->ReportWordCount(), E_FAIL);
    EXPECT_EQ(editor->Save(0), E_OUTOFMEMORY);
    EXPECT_EQ(editor->Load(nullptr), E_INVALIDARG) << "the window's own result comes back as it is";
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
    ts::BroadcastToEventSinks(ts::events::SaveResource(), 5, 6, nullptr);
    ASSERT_EQ(gReceived.size(), 3u);
    EXPECT_EQ(gReceived[0].event, ts::events::Refresh());
    EXPECT_EQ(gReceived[0].param1, 1u);
    EXPECT_EQ(gReceived[0].param2, 2u);
    EXPECT_TRUE(gReceived[0].hadResource);
    EXPECT_FALSE(gReceived[1].hadResource) << "a payload that is not a resource arrives as none";
    EXPECT_FALSE(gReceived[2].hadResource);

    // Once the window is closed the sink is unadvised; a host still holding it reaches nothing.
    ASSERT_EQ(As<ITsUIWindow>(object)->CloseUIWindow(), S_OK);
    EXPECT_EQ(ts::AdvisedEventSinkCount(), sinksBefore);
    EXPECT_EQ(sink->OnEvent(ts::events::Refresh(), 0, 0, resource.Get()), S_OK);
    object.Reset();
    EXPECT_EQ(sink->OnEvent(ts::events::RefreshNoArt(), 0, 0, nullptr), S_OK);
    EXPECT_EQ(gReceived.size(), 3u);
}

}  // namespace
