#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "agents/agentcutscene.h"
#include "stored_record.h"
#include "support/report_capture.h"

namespace {

template <class Kind>
Kind New() {
    Kind record;
    EXPECT_TRUE(record.CreateOn(nullptr));
    return record;
}

// The speak-line actions found by walking actors, tracks and actions through the common views,
// telling kinds apart by their stored codes.
std::vector<CAgentCutsceneActionSpeakLine> SpeakLines(const CAgentCutscene& cutscene) {
    std::vector<CAgentCutsceneActionSpeakLine> found;
    for (std::uint32_t a = 0; a < cutscene.ActorListCount(); ++a) {
        CTsComPtr<ITsProperty> actorNode, trackNode, actionNode;
        EXPECT_TRUE(cutscene.GetActorListItem(a, actorNode));
        CAgentCutsceneActor actor(actorNode.Get());
        for (std::uint32_t t = 0; t < actor.TrackListCount(); ++t) {
            EXPECT_TRUE(actor.GetTrackListItem(t, trackNode));
            CAgentCutsceneTrack track(trackNode.Get());
            for (std::uint32_t i = 0; i < track.ActionListCount(); ++i) {
                EXPECT_TRUE(track.GetActionListItem(i, actionNode));
                std::int32_t code = 0;
                if (CAgentCutsceneAction(actionNode.Get()).GetActionType(code) &&
                    code == CAgentCutsceneActionSpeakLine::kActionType)
                    found.emplace_back(actionNode.Get());
            }
        }
    }
    return found;
}

// A cutscene put together as a line conversion would: a camera, and a speaking creature whose
// track plays an animation, holds an action stored damaged (its kind written as text) and speaks.
TEST(CutsceneAgents, AWalkFindsTheOneSpeakLineAndRepointsIt) {
    CAgentCutscene cutscene;
    ASSERT_TRUE(cutscene.CreateOn(nullptr));
    auto camera = New<CAgentCutsceneCamera>();
    ASSERT_TRUE(camera.SetActorID(1) && camera.SetTargetActorID(2));
    ASSERT_TRUE(cutscene.AddItemToPropertyList(camera, u"ActorList"));

    auto guard = New<CAgentCutsceneCreature>();
    ASSERT_TRUE(guard.SetActorID(2) && guard.SetMappingTag(u"guard_captain"));
    auto track = New<CAgentCutsceneTrack>();
    auto wave = New<CAgentCutsceneActionPlayAnimation>();
    ASSERT_TRUE(wave.SetAnimation(u"wave") && wave.SetEndTime(900));
    ASSERT_TRUE(track.AddItemToPropertyList(wave, u"ActionList"));
    auto damaged = ts::test::NewRecordNode();
    ts::test::AddStoredField(damaged.Get(), u"ActionType", variant(kTsTypeString, u"3"));
    ASSERT_TRUE(track.AddItemToPropertyList(damaged.Get(), TsAddAtom(u"ActionList")));
    auto speak = New<CAgentCutsceneActionSpeakLine>();
    ASSERT_TRUE(speak.SetStartTime(900) && speak.SetEndTime(2400) && speak.SetOwningLine(4));
    ASSERT_TRUE(track.AddItemToPropertyList(speak, u"ActionList"));
    ASSERT_TRUE(guard.AddItemToPropertyList(track, u"TrackList"));
    ASSERT_TRUE(cutscene.AddItemToPropertyList(guard, u"ActorList"));

    ts::test::ReportCapture reports;
    auto lines = SpeakLines(cutscene);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(reports.Count(u"Request for invalid property"), 1u) << "the damaged action is no kind";
    std::int32_t line = 0, start = 0;
    ASSERT_TRUE(lines[0].GetOwningLine(line) && lines[0].GetStartTime(start));
    EXPECT_EQ(line, 4);
    EXPECT_EQ(start, 900);

    // Point it at another line of the conversation, as an association does.
    ASSERT_TRUE(lines[0].SetOwningConversationURI(u"gate_guard") && lines[0].SetOwningLine(7));
    ASSERT_TRUE(SpeakLines(cutscene).at(0).GetOwningLine(line));
    EXPECT_EQ(line, 7);
}

}  // namespace
