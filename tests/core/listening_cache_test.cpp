// Event sinks and the caches that empty themselves on the host's refresh and closing events.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "core/listening_cache.h"
#include "support/fake_resource.h"
#include "ts/events.h"
#include "ts/text.h"

namespace {

using ts::test::FakeResource;
using ts::test::OtherPayload;
using BoolCache = CEventListeningCache<std::map<int, bool>>;
using TextTableCache =
    CEventListeningCache<std::map<int, std::map<std::u16string, std::u16string>>>;

struct Recorder {
    int events = 0;
    ITsResource* lastResource = nullptr;
    void OnEvent(TsAtom, std::uint32_t, std::uint32_t, ITsResource* resource) {
        ++events;
        lastResource = resource;
    }
};

TEST(EventSink, PassesThePayloadAsAResourceOrNothing) {
    auto sink = CTsComObject<CTsEventSink<Recorder>>::Create();
    auto resource = CTsComObject<FakeResource>::Create();
    auto other = CTsComObject<OtherPayload>::Create();

    // No receiver: accepted, nothing happens.
    EXPECT_EQ(sink->OnEvent(ts::events::Refresh(), 0, 0, resource.Get()), S_OK);

    Recorder recorder;
    sink->SetReceiver(&recorder);
    EXPECT_EQ(sink->OnEvent(ts::events::Refresh(), 0, 0, resource.Get()), S_OK);
    EXPECT_EQ(recorder.events, 1);
    EXPECT_EQ(recorder.lastResource, static_cast<ITsResource*>(resource.Get()));
    EXPECT_EQ(sink->OnEvent(ts::events::Refresh(), 0, 0, other.Get()), S_OK);
    EXPECT_EQ(recorder.lastResource, nullptr);
    EXPECT_EQ(sink->OnEvent(ts::events::Refresh(), 0, 0, nullptr), S_OK);
    EXPECT_EQ(recorder.events, 3);

    // The sink holds the resource only for the call.
    std::uint32_t refs = resource->AddRef() - 1;
    resource->Release();
    EXPECT_EQ(refs, 1u);
}

TEST(ListeningCache, EmptiesOnRefreshRefreshNoArtAndClosingEnvironmentOnly) {
    for (TsAtom clearing :
         {ts::events::Refresh(), ts::events::RefreshNoArt(), ts::events::ClosingEnvironment()}) {
        BoolCache answers;
        answers.Map()[3] = true;
        answers->emplace(4, false);
        for (TsAtom kept : {ts::events::OptionsChange(), ts::events::SaveResource(),
                            ts::events::RefreshOverride(), ts::events::NewResource(),
                            TsAddAtom(u"SomethingElse")}) {
            ts::BroadcastToEventSinks(kept, 0, 0, nullptr);
            EXPECT_EQ(answers->size(), 2u) << ts::Utf16ToUtf8(TsGetAtomName(kept));
        }
        ts::BroadcastToEventSinks(clearing, 0, 0, nullptr);
        EXPECT_TRUE(answers->empty()) << ts::Utf16ToUtf8(TsGetAtomName(clearing));
    }
}

TEST(ListeningCache, TablesOfTextsAreDestroyedWholeAndCanBeFilledAgain) {
    TextTableCache tables;
    tables.Map()[7][u"MODELTREE"] = u"ogre";
    tables.Map()[7][u"MOVEMENTTREE"] = u"walk";
    tables.Map()[9][u"MODELTREE"] = u"elf";
    auto resource = CTsComObject<FakeResource>::Create();
    ts::BroadcastToEventSinks(ts::events::RefreshNoArt(), 0, 0, resource.Get());
    EXPECT_TRUE(tables->empty());
    tables.Map()[1][u"A"] = u"B";
    EXPECT_EQ(tables.Map().at(1).at(u"A"), u"B");
}

TEST(ListeningCache, LeavesTheHostWhenDestroyed) {
    std::size_t before = ts::AdvisedEventSinkCount();
    CTsComPtr<ITsEventSink> heldByHost;
    {
        BoolCache answers;
        EXPECT_EQ(ts::AdvisedEventSinkCount(), before + 1);
        heldByHost = CTsComPtr<ITsEventSink>(answers.GetSink());
        answers.Map()[1] = true;
    }
    EXPECT_EQ(ts::AdvisedEventSinkCount(), before);
    // Whoever still holds the sink reaches nothing.
    EXPECT_EQ(heldByHost->OnEvent(ts::events::Refresh(), 0, 0, nullptr), S_OK);
}

}  // namespace
