#include <gtest/gtest.h>

#include "agents/agentarea.h"
#include "agents/agentconversation.h"
#include "agents/agentcreature.h"
#include "agents/agentcutscene.h"
#include "agents/agentplot.h"
#include "agents/agentrecord.h"
#include "agents/agentscript.h"
#include "agents/agentstage.h"
#include "agents/resourceschemas.h"
#include "ts/propertycompare.h"
#include "ts/resourcejson.h"
#include "ts/text.h"

namespace {

using Node = CTsComPtr<ITsProperty>;

std::string U8(const std::u16string& s) { return ts::Utf16ToUtf8(s); }

Node ReadShort(const std::string& type, const std::string& fields) {
    std::string text = R"({"resource": "r", "type": ")" + type + R"(", "fields": )" + fields + "}";
    ts::ResourceDocument doc;
    std::u16string error;
    EXPECT_TRUE(ts::ReadResourceJson(text, doc, &error, ts::ResourceSchemas())) << U8(error) << "\n" << text;
    return doc.root;
}

template <class Agent>
Node Made() {
    Node record;
    EXPECT_TRUE(TsMakeAgentRecord<Agent>(record));
    return record;
}

Node FirstOf(ITsProperty* record, const char16_t* list) {
    Node l, item;
    EXPECT_EQ(record->FindChild(TsAddAtom(list), 0, l.Put()), S_OK) << U8(list);
    if (l) { EXPECT_EQ(l->GetChildAt(0, item.Put()), S_OK) << U8(list); }
    return item;
}

void ExpectSame(ITsProperty* a, ITsProperty* b, const std::string& what) {
    std::u16string difference;
    EXPECT_TRUE(a && b && ts::PropertyTreesEqual(a, b, &difference)) << what << ": " << U8(difference);
}

// Every resource type's empty short form is the record its agent makes, named after the
// resource.
TEST(ResourceSchemas, AnEmptyRecordIsTheAgentsNewRecord) {
    struct Case {
        const char* type;
        Node (*made)();
    };
    const Case cases[] = {{"dlg", &Made<CAgentConversation>}, {"stg", &Made<CAgentStage>},
                          {"cut", &Made<CAgentCutscene>},     {"plo", &Made<CAgentPlot>},
                          {"utc", &Made<CAgentCreature>},     {"are", &Made<CAgentArea>},
                          {"nss", &Made<CAgentScript>}};
    for (const auto& c : cases) {
        Node expected = c.made();
        CAgentGameObject named(expected.Get());
        ASSERT_TRUE(named.SetResRefName(u"r"));
        ExpectSame(ReadShort(c.type, "{}").Get(), expected.Get(), c.type);
        EXPECT_FALSE(ts::ResourceTypeDescription(ts::Utf8ToUtf16(c.type)).empty());
    }
    EXPECT_EQ(ts::ResourceSchemaOf(u"xyz"), nullptr);
    EXPECT_EQ(ts::ResourceSchemaOf(u"DLG"), ts::ResourceSchemaOf(u"dlg"));
}

// Each list's elements are made by the agent of their kind, and families by the kind they name.
TEST(ResourceSchemas, ListElementsAreMadeByTheirKindsAgent) {
    struct Case {
        const char* type;
        const char* fields;
        std::vector<const char16_t*> path;  // lists from the root to the element
        Node (*made)();
    };
    const Case cases[] = {
        {"dlg", R"({"StartList": [{}]})", {u"StartList"}, &Made<CAgentConversationStart>},
        {"dlg", R"({"NPCLineList": [{}]})", {u"NPCLineList"}, &Made<CAgentConversationLine>},
        {"dlg", R"({"PlayerLineList": [{}]})", {u"PlayerLineList"}, &Made<CAgentConversationLine>},
        {"dlg", R"({"CinematicsInfoList": [{}]})", {u"CinematicsInfoList"}, &Made<CAgentConversationCinematicsInfo>},
        {"dlg", R"({"PreviewTagMappingList": [{}]})", {u"PreviewTagMappingList"}, &Made<CAgentConversationTagMapEntry>},
        {"dlg", R"({"NPCLineList": [{"TransitionList": [{}]}]})", {u"NPCLineList", u"TransitionList"},
         &Made<CAgentConversationTransition>},
        {"dlg", R"({"NPCLineList": [{"AnimationListList": [{"AnimationList": [{}]}]}]})",
         {u"NPCLineList", u"AnimationListList", u"AnimationList"}, &Made<CAgentConversationAnimation>},
        {"stg", R"({"PlaceList": [{}]})", {u"PlaceList"}, &Made<CAgentStagePlace>},
        {"stg", R"({"CameraList": [{}]})", {u"CameraList"}, &Made<CAgentStageCamera>},
        {"plo", R"({"StatusList": [{}]})", {u"StatusList"}, &Made<CAgentPlotStatus>},
        {"are", R"({"ObjectList": [{}]})", {u"ObjectList"}, &Made<CAgentAreaObject>},
        {"cut", R"({"ActorList": [{"Type": 1}]})", {u"ActorList"}, &Made<CAgentCutsceneMaster>},
        {"cut", R"({"ActorList": [{"Type": 2}]})", {u"ActorList"}, &Made<CAgentCutsceneCamera>},
        {"cut", R"({"HenchmanActorList": [{"Type": 3}]})", {u"HenchmanActorList"}, &Made<CAgentCutsceneCreature>},
        {"cut", R"({"ActorList": [{"Type": 9}]})", {u"ActorList"}, &Made<CAgentCutsceneVFX>},
        {"cut", R"({"ActorList": [{"Type": 3, "ActionTransitionList": [{}]}]})", {u"ActorList", u"ActionTransitionList"},
         &Made<CAgentCutsceneActionTransition>},
        {"cut", R"({"ActorList": [{"Type": 3, "TrackList": [{}]}]})", {u"ActorList", u"TrackList"},
         &Made<CAgentCutsceneTrack>},
        {"cut", R"({"ActorList": [{"Type": 3, "TrackList": [{"CurveList": [{"KeyList": [{}]}]}]}]})",
         {u"ActorList", u"TrackList", u"CurveList", u"KeyList"}, &Made<CAgentCutsceneCurveKey>},
        {"cut", R"({"ActorList": [{"Type": 2, "TrackList": [{"ActionList": [{"ActionType": 2, "CurveList": [{}]}]}]}]})",
         {u"ActorList", u"TrackList", u"ActionList", u"CurveList"}, &Made<CAgentCutsceneCurve>},
    };
    for (const auto& c : cases) {
        Node node = ReadShort(c.type, c.fields);
        for (const char16_t* list : c.path) node = node ? FirstOf(node.Get(), list) : Node();
        ExpectSame(node.Get(), c.made().Get(), c.fields);
    }
}

// An action of each kind, found by the code it names, is the record its own agent makes.
template <class... Kind>
void ExpectEveryActionKindMadeByItsAgent() {
    auto action = [](std::int32_t code) {
        Node node = ReadShort("cut", R"({"ActorList": [{"Type": 2, "TrackList": [{"ActionList": [{"ActionType": )" +
                                         std::to_string(code) + "}]}]}]}");
        for (const char16_t* list : {u"ActorList", u"TrackList", u"ActionList"})
            node = node ? FirstOf(node.Get(), list) : Node();
        return node;
    };
    (ExpectSame(action(Kind::kActionType).Get(), Made<Kind>().Get(), std::to_string(Kind::kActionType)), ...);
}

TEST(ResourceSchemas, EveryActionKindIsMadeByItsAgent) {
    ExpectEveryActionKindMadeByItsAgent<
        CAgentCutsceneActionPlayAnimation, CAgentCutsceneActionSpeakLine, CAgentCutsceneActionActiveCamera,
        CAgentCutsceneActionShakeOrientation, CAgentCutsceneActionFade, CAgentCutsceneActionJumpToStageCamera,
        CAgentCutsceneActionJumpToStagePlace, CAgentCutsceneActionLinkActor, CAgentCutsceneActionHeadtracking,
        CAgentCutsceneActionSound, CAgentCutsceneActionChangeVisibility, CAgentCutsceneActionTogglePhysics,
        CAgentCutsceneActionSnapToWalkmesh, CAgentCutsceneActionFrameBufferEffect, CAgentCutsceneActionDrawWeapon,
        CAgentCutsceneActionPlayBinkMovie, CAgentCutsceneActionAnimateFace, CAgentCutsceneActionSetGore,
        CAgentCutsceneActionSetFog, CAgentCutsceneActionSkipMarker>();
}

// A cutscene with an actor and an action of every kind reads back from its own short form.
TEST(ResourceSchemas, EveryActorAndActionKindSurvivesTheShortForm) {
    std::string actions;
    for (int code : {2, 3, 4, 7, 8, 12, 13, 15, 16, 19, 20, 24, 26, 29, 31, 32, 35, 36, 37, 38})
        actions += (actions.empty() ? "" : ", ") + std::string(R"({"ActionType": )") +
                   std::to_string(code) + R"(, "StartTime": )" + std::to_string(code * 10) + "}";
    Node tree = ReadShort("cut", R"({"ActorList": [{"Type": 1}, {"Type": 2, "FOV": 50},
        {"Type": 9, "ModelScale": 2}, {"Type": 3, "Pose": 4, "TrackList": [{"ActionList": [)" +
                                     actions + "]}]}]}");
    ASSERT_TRUE(tree);
    std::string text;
    std::u16string error;
    ASSERT_TRUE(ts::WriteResourceJsonShort({u"r", u"cut", tree}, ts::ResourceSchemas(), text, &error)) << U8(error);
    EXPECT_EQ(text.find("\"root\""), std::string::npos);  // short throughout
    EXPECT_EQ(text.find("\"name\": "), std::string::npos) << text;
    ts::ResourceDocument back;
    ASSERT_TRUE(ts::ReadResourceJson(text, back, &error, ts::ResourceSchemas())) << U8(error);
    ExpectSame(back.root.Get(), tree.Get(), "cutscene");

    auto bad = R"({"resource": "r", "type": "cut", "fields": {"ActorList": [{"Type": 4}]}})";
    ts::ResourceDocument doc;
    EXPECT_FALSE(ts::ReadResourceJson(bad, doc, &error, ts::ResourceSchemas()));
    EXPECT_NE(error.find(u"4 is not a kind of cutscene actor; the kinds are 1 (master), 2 (camera), 3 (creature), "
                         u"9 (visual effect)"),
              std::u16string::npos)
        << U8(error);
}

}  // namespace
