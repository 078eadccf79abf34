// The records' own operations on stored trees, as the editor uses them: conversation links, a
// walk over a cutscene's kinds, and list elements found by tag (stage places and cameras, area
// objects) or by number (plot flags).
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "agents/agentarea.h"
#include "agents/agentconversation.h"
#include "agents/agentcutscene.h"
#include "agents/agentplot.h"
#include "agents/agentstage.h"
#include "stored_record.h"
#include "support/report_capture.h"

namespace {

using ts::test::AddStoredField;
using ts::test::NewRecordNode;
using ts::test::Read;
using ts::test::ReportCapture;

CAgentConversationLine NewLine(const std::u16string& text) {
    CAgentConversationLine line;
    EXPECT_TRUE(line.CreateOn(nullptr) && line.SetText(text));
    return line;
}

CAgentConversationTransition NewTransition(std::int32_t lineIndex, bool isLink) {
    CAgentConversationTransition t;
    EXPECT_TRUE(t.CreateOn(nullptr) && t.SetLineIndex(lineIndex) && t.SetIsLink(isLink));
    return t;
}

// A conversation as the tree editor stores it:
//   N0 "Halt!"
//     -> P0 "Who goes there?" -> N1 "The watch."
//     -> P1 "Let me pass."    -> N1 (a link back to the same answer)
class SmallConversation : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(conversation.CreateOn(nullptr));
        for (auto text : {u"Halt!", u"The watch."})
            ASSERT_TRUE(conversation.AddItemToPropertyList(NewLine(text), u"NPCLineList"));
        for (auto text : {u"Who goes there?", u"Let me pass."})
            ASSERT_TRUE(conversation.AddItemToPropertyList(NewLine(text), u"PlayerLineList"));
        ASSERT_TRUE(conversation.AddNPCToPlayer(0, NewTransition(1, false)));
        ASSERT_TRUE(conversation.AddNPCToPlayer(0, NewTransition(0, false), 0)) << "inserted in front";
        ASSERT_TRUE(conversation.AddPlayerToNPC(0, NewTransition(1, false)));
        ASSERT_TRUE(conversation.AddPlayerToNPC(1, NewTransition(1, true)));
    }

    // The transitions of one line in order, each as the text of the line it leads to, links
    // marked "->".
    std::vector<std::u16string> Links(bool fromNpc, std::uint32_t line) {
        std::vector<std::u16string> out;
        const std::uint32_t count =
            fromNpc ? conversation.GetNPCToPlayerLineCount(line) : conversation.GetPlayerToNPCLineCount(line);
        for (std::uint32_t i = 0; i < count; ++i) {
            CAgentConversationTransition t;
            EXPECT_TRUE(fromNpc ? conversation.GetNPCToPlayer(line, i, t) : conversation.GetPlayerToNPC(line, i, t));
            const auto index = static_cast<std::uint32_t>(Read(t, &CAgentConversationTransition::GetLineIndex));
            CTsComPtr<ITsProperty> node;
            std::u16string text = u"?";
            if (conversation.GetPropertyFromList(fromNpc ? u"PlayerLineList" : u"NPCLineList", index, node))
                text = Read(CAgentConversationLine(node.Get()), &CAgentConversationLine::GetText);
            out.push_back((Read(t, &CAgentConversationTransition::GetIsLink) ? u"-> " : u"") + text);
        }
        return out;
    }

    using Texts = std::vector<std::u16string>;
    CAgentConversation conversation;
};

TEST_F(SmallConversation, LinkOperationsBuildTheDialogueAndFailuresReportAndChangeNothing) {
    // NPC line 2 is stored damaged, without a TransitionList: an error, not an empty list.
    auto damaged = NewRecordNode();
    AddStoredField(damaged.Get(), u"Text", variant(kTsTypeString, u"Broken"));
    ASSERT_TRUE(conversation.AddItemToPropertyList(damaged.Get(), TsAddAtom(u"NPCLineList")));
    ReportCapture reports;
    CAgentConversationTransition t = NewTransition(0, false);
    CAgentConversationTransition out = NewTransition(5, true);

    EXPECT_FALSE(conversation.AddNPCToPlayer(2, t));
    EXPECT_EQ(conversation.GetNPCToPlayerLineCount(2), 0u);
    EXPECT_FALSE(conversation.GetNPCToPlayer(0, 2, out));
    EXPECT_FALSE(out.IsBound()) << "a failed fetch leaves the transition unbound";
    EXPECT_FALSE(conversation.AddPlayerToNPC(9, t));
    EXPECT_EQ(conversation.GetPlayerToNPCLineCount(2), 0u);
    EXPECT_FALSE(conversation.GetPlayerToNPC(5, 0, out));
    CAgentConversationTransition unbound;
    EXPECT_FALSE(conversation.AddNPCToPlayer(0, unbound));

    std::vector<std::u16string> seen;
    for (const auto& e : reports.entries()) {
        if (e.level != static_cast<int>(ReportLevel::Error)) continue;
        seen.push_back(e.message);
        EXPECT_EQ(e.sourceFile, "agentconversation");
    }
    EXPECT_EQ(seen, (Texts{
                        u"CAgentConversation::AddNPCToPlayer failed to add the new link.",
                        u"CAgentConversation::GetNPCToPlayerLineCount failed to get the number of lines.",
                        u"CAgentConversation::GetNPCToPlayer failed to get the given NPC-to-player link.",
                        u"CAgentConversation::AddPlayerToNPC failed to add the new link.",
                        u"CAgentConversation::GetPlayerToNPCLineCount failed to get the number of lines.",
                        u"CAgentConversation::GetPlayerToNPC failed to get the given player to NPC link.",
                        u"CAgentConversation::AddNPCToPlayer failed to add the new link.",
                    }));

    // The dialogue reads as built: none of the failures changed it.
    EXPECT_EQ(Links(true, 0), (Texts{u"Who goes there?", u"Let me pass."}));
    EXPECT_EQ(Links(true, 1), Texts{});
    EXPECT_EQ(Links(false, 0), Texts{u"The watch."});
    EXPECT_EQ(Links(false, 1), Texts{u"-> The watch."});

    // A fetched transition is the stored one: re-pointing it changes the conversation.
    ASSERT_TRUE(conversation.GetPlayerToNPC(1, 0, out));
    ASSERT_TRUE(out.SetLineIndex(0));
    EXPECT_EQ(Links(false, 1), Texts{u"-> Halt!"});
}

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
    auto damaged = NewRecordNode();
    AddStoredField(damaged.Get(), u"ActionType", variant(kTsTypeString, u"3"));
    ASSERT_TRUE(track.AddItemToPropertyList(damaged.Get(), TsAddAtom(u"ActionList")));
    auto speak = New<CAgentCutsceneActionSpeakLine>();
    ASSERT_TRUE(speak.SetStartTime(900) && speak.SetEndTime(2400) && speak.SetOwningLine(4));
    ASSERT_TRUE(track.AddItemToPropertyList(speak, u"ActionList"));
    ASSERT_TRUE(guard.AddItemToPropertyList(track, u"TrackList"));
    ASSERT_TRUE(cutscene.AddItemToPropertyList(guard, u"ActorList"));

    ReportCapture reports;
    auto lines = SpeakLines(cutscene);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(reports.Count(u"Request for invalid property"), 1u) << "the damaged action is no kind";
    EXPECT_EQ(Read(lines[0], &CAgentCutsceneActionSpeakLine::GetOwningLine), 4);
    EXPECT_EQ(Read(lines[0], &CAgentCutsceneActionSpeakLine::GetStartTime), 900);

    // Point it at another line of the conversation, as an association does.
    ASSERT_TRUE(lines[0].SetOwningConversationURI(u"gate_guard") && lines[0].SetOwningLine(7));
    EXPECT_EQ(Read(SpeakLines(cutscene).at(0), &CAgentCutsceneActionSpeakLine::GetOwningLine), 7);
}

template <class Kind>
Kind NewObject(const std::u16string& tag, const std::u16string& defaultCamera = u"") {
    Kind object;
    EXPECT_TRUE(object.CreateOn(nullptr) && object.SetTag(tag));
    if constexpr (std::is_same_v<Kind, CAgentStagePlace>) {
        EXPECT_TRUE(object.SetDefaultCamera(defaultCamera));
    }
    return object;
}

// A stage with two places and two cameras, tags stored in lower case.
class GateStage : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(stage.CreateOn(nullptr));
        ASSERT_TRUE(stage.AddItemToPropertyList(NewObject<CAgentStagePlace>(u"left_post", u"cam_left"), u"PlaceList"));
        ASSERT_TRUE(stage.AddItemToPropertyList(NewObject<CAgentStagePlace>(u"right_post", u"cam_right"), u"PlaceList"));
        auto camLeft = NewObject<CAgentStageCamera>(u"cam_left");
        ASSERT_TRUE(camLeft.SetLookingAtPrimary(u"right_post"));
        ASSERT_TRUE(stage.AddItemToPropertyList(camLeft, u"CameraList"));
        ASSERT_TRUE(stage.AddItemToPropertyList(NewObject<CAgentStageCamera>(u"cam_right"), u"CameraList"));
    }

    std::u16string DefaultCameraOf(const std::u16string& placeTag) {
        CAgentStagePlace place;
        return stage.FindPlace(placeTag, place) ? Read(place, &CAgentStagePlace::GetDefaultCamera) : u"(not found)";
    }

    CAgentStage stage;
};

TEST_F(GateStage, PlacesAndCamerasAreFoundByTagWhateverTheCaseSkippingDamage) {
    ReportCapture reports;
    EXPECT_EQ(DefaultCameraOf(u"Right_Post"), u"cam_right");
    CAgentStageCamera cam;
    ASSERT_TRUE(stage.FindCamera(u"CAM_LEFT", cam));
    EXPECT_EQ(Read(cam, &CAgentStageCamera::GetLookingAtPrimary), u"right_post");

    // A found object is the stored one: a change through it is in the stage.
    CAgentStageCamera again;
    ASSERT_TRUE(stage.FindCamera(u"cam_left", again));
    EXPECT_EQ(again.GetNode(), cam.GetNode());

    EXPECT_FALSE(stage.FindCamera(u"left_post", cam)) << "places are not cameras";
    EXPECT_FALSE(cam.IsBound());
    EXPECT_EQ(DefaultCameraOf(u"left"), u"(not found)") << "whole tags only";
    EXPECT_EQ(DefaultCameraOf(u""), u"(not found)");
    EXPECT_EQ(reports.size(), 0u) << "not finding a tag is no error";

    // Of two equal tags the first wins.
    ASSERT_TRUE(stage.AddItemToPropertyList(NewObject<CAgentStagePlace>(u"LEFT_POST", u"cam_right"), u"PlaceList"));
    EXPECT_EQ(DefaultCameraOf(u"left_post"), u"cam_left");

    // A stored place whose Tag is a number, placed before a good one with the wanted tag, is
    // skipped after the report.
    auto damaged = NewRecordNode();
    AddStoredField(damaged.Get(), u"Tag", variant(kTsTypeInt, 7));
    ASSERT_TRUE(stage.AddItemToPropertyList(damaged.Get(), TsAddAtom(u"PlaceList"), 0));
    EXPECT_EQ(DefaultCameraOf(u"right_post"), u"cam_right");
    EXPECT_EQ(reports.Count(u"Request for invalid property"), 1u);
    EXPECT_EQ(reports.entries().at(0).sourceFile, "agentstage");

    // A stage stored without its lists finds nothing and says why.
    stage.Bind(NewRecordNode().Get());
    EXPECT_EQ(DefaultCameraOf(u"right_post"), u"(not found)");
    EXPECT_EQ(reports.Count(u"CAgentBase::GetPropertyListEntryCount failed to get count for list PlaceList"), 1u);
}

TEST(ResourceKinds, AreaObjectsAreFoundByTag) {
    CAgentArea area;
    ASSERT_TRUE(area.CreateOn(nullptr));
    for (auto [tag, uri] : {std::pair{u"guard_captain", u"guard_captain.utc"}, std::pair{u"gate_chest", u"chest.utp"}}) {
        CAgentAreaObject object;
        ASSERT_TRUE(object.CreateOn(nullptr) && object.SetTag(tag) && object.SetURI(uri));
        ASSERT_TRUE(area.AddItemToPropertyList(object, u"ObjectList"));
    }
    CAgentAreaObject found;
    ASSERT_TRUE(area.FindObject(u"Gate_Chest", found));
    EXPECT_EQ(Read(found, &CAgentAreaObject::GetURI), u"chest.utp");
    EXPECT_FALSE(area.FindObject(u"henchman 1", found));
    EXPECT_FALSE(area.FindObject(u"", found));
}

TEST(ResourceKinds, PlotFlagsAreFoundByNumberNotByPosition) {
    // Flags numbered out of list order, as plots are after flags are removed; one stored flag
    // whose number was written as text is never taken for a flag.
    CAgentPlot plot;
    ASSERT_TRUE(plot.CreateOn(nullptr));
    auto damaged = NewRecordNode();
    AddStoredField(damaged.Get(), u"Flag", variant(kTsTypeString, u"2"));
    ASSERT_TRUE(plot.AddItemToPropertyList(damaged.Get(), TsAddAtom(u"StatusList")));
    for (auto [flag, name] : {std::pair{3, u"GUARD_BRIBED"}, std::pair{0, u"GATE_OPEN"}, std::pair{7, u"ALARM"}}) {
        CAgentPlotStatus status;
        ASSERT_TRUE(status.CreateOn(nullptr) && status.SetFlag(flag) && status.SetName(name));
        ASSERT_TRUE(plot.AddItemToPropertyList(status, u"StatusList"));
    }
    CAgentPlotStatus status;
    ASSERT_TRUE(plot.FindStatus(7, status));
    EXPECT_EQ(Read(status, &CAgentPlotStatus::GetName), u"ALARM");
    ASSERT_TRUE(plot.FindStatus(0, status));
    EXPECT_EQ(Read(status, &CAgentPlotStatus::GetName), u"GATE_OPEN");

    ReportCapture reports;
    EXPECT_FALSE(plot.FindStatus(1, status)) << "1 is a position, not a flag";
    EXPECT_FALSE(status.IsBound());
    EXPECT_FALSE(plot.FindStatus(2, status)) << "text is no flag number";
    EXPECT_FALSE(plot.FindStatus(-1, status)) << "-1 means no flag";
    EXPECT_EQ(reports.Count(u"Request for invalid property"), 3u) << "the damaged flag, once per search";
    EXPECT_EQ(reports.entries().at(0).sourceFile, "agentplot");
}

}  // namespace
