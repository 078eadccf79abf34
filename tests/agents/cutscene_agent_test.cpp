#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "agents/agentcutscene.h"
#include "stored_record.h"
#include "support/report_capture.h"
#include "support/variant_print.h"

namespace {

using ts::test::AddStoredField;
using ts::test::NewRecordNode;
using ts::test::ReportCapture;

template <class Kind>
Kind New() {
    Kind record;
    EXPECT_TRUE(record.CreateOn(nullptr));
    return record;
}

TEST(CutsceneAgents, NewActorsReadTheirKindAndDefaults) {
    auto camera = New<CAgentCutsceneCamera>();
    std::int32_t type = 0, target = 0;
    float fov = 0, fovBase = 0;
    ASSERT_TRUE(camera.GetType(type) && camera.GetFOV(fov) && camera.GetFOVBase(fovBase) &&
                camera.GetTargetActorID(target));
    EXPECT_EQ(type, 2);
    EXPECT_EQ(fov, 45.0f);
    EXPECT_EQ(fovBase, 45.0f);
    EXPECT_EQ(target, -1) << "no target actor";

    auto creature = New<CAgentCutsceneCreature>();
    ASSERT_TRUE(creature.GetType(type));
    EXPECT_EQ(type, 3);
    bool mainHand = false, offHand = false, chest = false, head = false, boots = false, gloves = false;
    ASSERT_TRUE(creature.GetMainHand(mainHand) && creature.GetOffHand(offHand) && creature.GetChest(chest) &&
                creature.GetHead(head) && creature.GetBoots(boots) && creature.GetGloves(gloves));
    EXPECT_TRUE(mainHand && offHand && chest && head && boots && gloves) << "every inventory switch is on";

    auto master = New<CAgentCutsceneMaster>();
    ASSERT_TRUE(master.GetType(type));
    EXPECT_EQ(type, 1);
    auto vfx = New<CAgentCutsceneVFX>();
    ASSERT_TRUE(vfx.GetType(type) && vfx.GetTargetActorID(target));
    EXPECT_EQ(type, 9);
    EXPECT_EQ(target, -1);
}

// Every action kind, with the code a stored action of that kind carries.
using ActionKinds =
    std::tuple<CAgentCutsceneActionPlayAnimation, CAgentCutsceneActionSpeakLine, CAgentCutsceneActionActiveCamera,
               CAgentCutsceneActionShakeOrientation, CAgentCutsceneActionFade, CAgentCutsceneActionJumpToStageCamera,
               CAgentCutsceneActionJumpToStagePlace, CAgentCutsceneActionLinkActor, CAgentCutsceneActionHeadtracking,
               CAgentCutsceneActionSound, CAgentCutsceneActionChangeVisibility, CAgentCutsceneActionTogglePhysics,
               CAgentCutsceneActionSnapToWalkmesh, CAgentCutsceneActionFrameBufferEffect,
               CAgentCutsceneActionDrawWeapon, CAgentCutsceneActionPlayBinkMovie, CAgentCutsceneActionAnimateFace,
               CAgentCutsceneActionSetGore, CAgentCutsceneActionSetFog, CAgentCutsceneActionSkipMarker>;
const std::vector<std::int32_t> kActionCodes = {2, 3, 4, 7, 8, 12, 13, 15, 16, 19, 20, 24, 26, 29, 31, 32, 35, 36, 37, 38};

TEST(CutsceneAgents, EveryNewActionReadsItsCodeAndZeroTimes) {
    std::vector<std::int32_t> codes;
    std::apply(
        [&](auto... kind) {
            auto check = [&](auto k) {
                using Kind = decltype(k);
                auto action = New<Kind>();
                // Read through the common view, as a walk over a stored track does.
                CAgentCutsceneAction common;
                common.Bind(action.GetNode());
                std::int32_t code = -1, start = -1, end = -1, loopEnd = -1, group = -1;
                bool looping = true, infinite = true;
                EXPECT_TRUE(common.GetActionType(code) && common.GetStartTime(start) && common.GetEndTime(end) &&
                            common.GetLoopingEndTime(loopEnd) && common.GetGroupID(group) &&
                            common.GetLooping(looping) && common.GetInfinite(infinite));
                EXPECT_EQ(code, Kind::kActionType);
                EXPECT_EQ(start, 0);
                EXPECT_EQ(end, 0);
                EXPECT_EQ(loopEnd, 0);
                EXPECT_EQ(group, 0);
                EXPECT_FALSE(looping);
                EXPECT_FALSE(infinite);
                EXPECT_EQ(common.CurveListCount(), 0u);
                codes.push_back(code);
            };
            (check(kind), ...);
        },
        ActionKinds{});
    EXPECT_EQ(codes, kActionCodes);
}

TEST(CutsceneAgents, ANewActionTransitionIsUnconnected) {
    auto t = New<CAgentCutsceneActionTransition>();
    std::int32_t trackA = 0, actionA = 0, trackB = 0, actionB = 0, type = -1;
    ASSERT_TRUE(t.GetTrackIndexA(trackA) && t.GetActionIndexA(actionA) && t.GetTrackIndexB(trackB) &&
                t.GetActionIndexB(actionB) && t.GetTransitionType(type));
    EXPECT_EQ(std::vector<std::int32_t>({trackA, actionA, trackB, actionB}), std::vector<std::int32_t>(4, -1));
    EXPECT_EQ(type, 0);
}

// A cutscene put together as a line conversion would: a camera, a speaking creature with a
// track of two actions joined by a transition, the animation's weight keyed on a curve.
class GuardCutscene : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(cutscene.CreateOn(nullptr));
        ASSERT_TRUE(cutscene.SetStageURI(u"gate_stage"));

        auto camera = New<CAgentCutsceneCamera>();
        ASSERT_TRUE(camera.SetActorID(1));
        ASSERT_TRUE(camera.SetTargetActorID(2));
        ASSERT_TRUE(cutscene.AddItemToPropertyList(camera, u"ActorList"));

        auto guard = New<CAgentCutsceneCreature>();
        ASSERT_TRUE(guard.SetActorID(2));
        ASSERT_TRUE(guard.SetMappingTag(u"guard_captain"));
        auto track = New<CAgentCutsceneTrack>();
        auto wave = New<CAgentCutsceneActionPlayAnimation>();
        ASSERT_TRUE(wave.SetAnimation(u"wave") && wave.SetEndTime(900));
        auto curve = New<CAgentCutsceneCurve>();
        ASSERT_TRUE(curve.SetProperty(u"Weight"));
        for (auto [time, value] : {std::pair{0, 0.0f}, std::pair{300, 100.0f}}) {
            auto key = New<CAgentCutsceneCurveKey>();
            ASSERT_TRUE(key.SetTime(time) && key.SetValue(value));
            ASSERT_TRUE(curve.AddItemToPropertyList(key, u"KeyList"));
        }
        ASSERT_TRUE(wave.AddItemToPropertyList(curve, u"CurveList"));
        auto speak = New<CAgentCutsceneActionSpeakLine>();
        ASSERT_TRUE(speak.SetStartTime(900) && speak.SetEndTime(2400) && speak.SetOwningLine(4));
        ASSERT_TRUE(track.AddItemToPropertyList(wave, u"ActionList"));
        ASSERT_TRUE(track.AddItemToPropertyList(speak, u"ActionList"));
        ASSERT_TRUE(guard.AddItemToPropertyList(track, u"TrackList"));
        auto join = New<CAgentCutsceneActionTransition>();
        ASSERT_TRUE(join.SetTrackIndexA(0) && join.SetActionIndexA(0) && join.SetTrackIndexB(0) &&
                    join.SetActionIndexB(1));
        ASSERT_TRUE(guard.AddItemToPropertyList(join, u"ActionTransitionList"));
        ASSERT_TRUE(cutscene.AddItemToPropertyList(guard, u"ActorList"));
    }

    // The speak-line actions found by walking actors, tracks and actions through the common
    // views, telling kinds apart by their stored codes.
    std::vector<CTsComPtr<ITsProperty>> SpeakLines() const {
        std::vector<CTsComPtr<ITsProperty>> found;
        for (std::uint32_t a = 0; a < cutscene.ActorListCount(); ++a) {
            CTsComPtr<ITsProperty> actorNode;
            EXPECT_TRUE(cutscene.GetActorListItem(a, actorNode));
            CAgentCutsceneActor actor;
            actor.Bind(actorNode.Get());
            for (std::uint32_t t = 0; t < actor.TrackListCount(); ++t) {
                CTsComPtr<ITsProperty> trackNode;
                EXPECT_TRUE(actor.GetTrackListItem(t, trackNode));
                CAgentCutsceneTrack track;
                track.Bind(trackNode.Get());
                for (std::uint32_t i = 0; i < track.ActionListCount(); ++i) {
                    CTsComPtr<ITsProperty> actionNode;
                    EXPECT_TRUE(track.GetActionListItem(i, actionNode));
                    CAgentCutsceneAction action;
                    action.Bind(actionNode.Get());
                    std::int32_t code = 0;
                    if (action.GetActionType(code) && code == CAgentCutsceneActionSpeakLine::kActionType)
                        found.push_back(actionNode);
                }
            }
        }
        return found;
    }

    CAgentCutscene cutscene;
};

TEST_F(GuardCutscene, AWalkFindsTheOneSpeakLineAndItsLine) {
    auto lines = SpeakLines();
    ASSERT_EQ(lines.size(), 1u);
    CAgentCutsceneActionSpeakLine speak;
    speak.Bind(lines[0].Get());
    std::int32_t line = 0, start = 0;
    ASSERT_TRUE(speak.GetOwningLine(line) && speak.GetStartTime(start));
    EXPECT_EQ(line, 4);
    EXPECT_EQ(start, 900);

    // Point it at another line of the conversation, as an association does.
    ASSERT_TRUE(speak.SetOwningConversationURI(u"gate_guard") && speak.SetOwningLine(7));
    CAgentCutsceneActionSpeakLine again;
    again.Bind(SpeakLines().at(0).Get());
    ASSERT_TRUE(again.GetOwningLine(line));
    EXPECT_EQ(line, 7);
}

TEST_F(GuardCutscene, KeyCurvesAndTransitionsHangUnderTheirOwners) {
    CTsComPtr<ITsProperty> node;
    ASSERT_TRUE(cutscene.GetActorListItem(1, node));
    CAgentCutsceneActor guard;
    guard.Bind(node.Get());
    ASSERT_TRUE(guard.GetActionTransitionListItem(0, node));
    CAgentCutsceneActionTransition join;
    join.Bind(node.Get());
    std::int32_t b = -1;
    ASSERT_TRUE(join.GetActionIndexB(b));
    EXPECT_EQ(b, 1);

    CAgentCutsceneTrack track;
    ASSERT_TRUE(guard.GetTrackListItem(0, node));
    track.Bind(node.Get());
    CAgentCutsceneActionPlayAnimation wave;
    ASSERT_TRUE(track.GetActionListItem(0, node));
    wave.Bind(node.Get());
    EXPECT_EQ(track.CurveListCount(), 0u) << "the curve belongs to the action, not the track";
    ASSERT_EQ(wave.CurveListCount(), 1u);
    ASSERT_TRUE(wave.GetCurveListItem(0, node));
    CAgentCutsceneCurve curve;
    curve.Bind(node.Get());
    ASSERT_EQ(curve.KeyListCount(), 2u);
    ASSERT_TRUE(curve.GetKeyListItem(1, node));
    CAgentCutsceneCurveKey key;
    key.Bind(node.Get());
    std::int32_t time = 0;
    float value = 0, weightBase = 0;
    ASSERT_TRUE(key.GetTime(time) && key.GetValue(value) && wave.GetWeightBase(weightBase));
    EXPECT_EQ(time, 300);
    EXPECT_EQ(value, 100.0f);
    EXPECT_EQ(weightBase, 100.0f) << "the un-keyed value stays in the twin";
}

TEST(CutsceneAgents, AMistypedStoredFieldFailsAndLeavesTheOutput) {
    // A stored action whose ActionType was written as text: no walk may take it for a kind.
    auto node = NewRecordNode();
    AddStoredField(node.Get(), u"ActionType", variant(kTsTypeString, u"3"));
    AddStoredField(node.Get(), u"StartTime", variant(kTsTypeInt, 120));
    CAgentCutsceneAction action;
    action.Bind(node.Get());
    ReportCapture reports;
    std::int32_t code = -7, start = 0;
    EXPECT_FALSE(action.GetActionType(code));
    EXPECT_EQ(code, -7);
    ASSERT_TRUE(action.GetStartTime(start));
    EXPECT_EQ(start, 120);
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_EQ(reports.entries()[0].message, u"Request for invalid property");
    EXPECT_EQ(reports.entries()[0].sourceFile, "agentcutsceneaction");

    CAgentCutscene cutscene;
    cutscene.Bind(NewRecordNode().Get());
    std::uint32_t fps = 5;
    EXPECT_FALSE(cutscene.GetFPS(fps));
    EXPECT_EQ(fps, 5u);
    EXPECT_EQ(reports.entries().back().sourceFile, "agentcutscene");
}

}  // namespace
