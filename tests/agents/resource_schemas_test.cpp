#include <gtest/gtest.h>

#include <regex>

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
// resource; each list's elements are made by the agent of their kind, families by the kind they
// name.
TEST(ResourceSchemas, RecordsAndListElementsAreMadeByTheirKindsAgent) {
    struct Case {
        const char* type;
        std::string fields;  // the first element of each list named is followed down
        Node (*made)();
    };
    const Case cases[] = {
        {"dlg", "{}", &Made<CAgentConversation>}, {"stg", "{}", &Made<CAgentStage>},
        {"cut", "{}", &Made<CAgentCutscene>},     {"plo", "{}", &Made<CAgentPlot>},
        {"utc", "{}", &Made<CAgentCreature>},     {"are", "{}", &Made<CAgentArea>},
        {"nss", "{}", &Made<CAgentScript>},
        {"dlg", R"({"StartList": [{}]})", &Made<CAgentConversationStart>},
        {"dlg", R"({"NPCLineList": [{}]})", &Made<CAgentConversationLine>},
        {"dlg", R"({"PlayerLineList": [{}]})", &Made<CAgentConversationLine>},
        {"dlg", R"({"CinematicsInfoList": [{}]})", &Made<CAgentConversationCinematicsInfo>},
        {"dlg", R"({"PreviewTagMappingList": [{}]})", &Made<CAgentConversationTagMapEntry>},
        {"dlg", R"({"NPCLineList": [{"TransitionList": [{}]}]})", &Made<CAgentConversationTransition>},
        {"dlg", R"({"NPCLineList": [{"AnimationListList": [{"AnimationList": [{}]}]}]})",
         &Made<CAgentConversationAnimation>},
        {"stg", R"({"PlaceList": [{}]})", &Made<CAgentStagePlace>},
        {"stg", R"({"CameraList": [{}]})", &Made<CAgentStageCamera>},
        {"plo", R"({"StatusList": [{}]})", &Made<CAgentPlotStatus>},
        {"are", R"({"ObjectList": [{}]})", &Made<CAgentAreaObject>},
        {"cut", R"({"ActorList": [{"Type": 1}]})", &Made<CAgentCutsceneMaster>},
        {"cut", R"({"ActorList": [{"Type": 2}]})", &Made<CAgentCutsceneCamera>},
        {"cut", R"({"HenchmanActorList": [{"Type": 3}]})", &Made<CAgentCutsceneCreature>},
        {"cut", R"({"ActorList": [{"Type": 9}]})", &Made<CAgentCutsceneVFX>},
        {"cut", R"({"ActorList": [{"Type": 3, "ActionTransitionList": [{}]}]})",
         &Made<CAgentCutsceneActionTransition>},
        {"cut", R"({"ActorList": [{"Type": 3, "TrackList": [{}]}]})", &Made<CAgentCutsceneTrack>},
        {"cut", R"({"ActorList": [{"Type": 3, "TrackList": [{"CurveList": [{"KeyList": [{}]}]}]}]})",
         &Made<CAgentCutsceneCurveKey>},
        {"cut", R"({"ActorList": [{"Type": 2, "TrackList": [{"ActionList": [{"ActionType": 2, "CurveList": [{}]}]}]}]})",
         &Made<CAgentCutsceneCurve>},
    };
    const std::regex listName(R"x("(\w+)": \[)x");
    for (const auto& c : cases) {
        Node node = ReadShort(c.type, c.fields), expected = c.made();
        for (std::sregex_iterator it(c.fields.begin(), c.fields.end(), listName), end; it != end; ++it)
            node = node ? FirstOf(node.Get(), ts::Utf8ToUtf16((*it)[1].str()).c_str()) : Node();
        if (c.fields == "{}") {
            ASSERT_TRUE(CAgentGameObject(expected.Get()).SetResRefName(u"r"));
            EXPECT_FALSE(ts::ResourceTypeDescription(ts::Utf8ToUtf16(c.type)).empty());
        }
        ExpectSame(node.Get(), expected.Get(), std::string(c.type) + " " + c.fields);
    }
    EXPECT_EQ(ts::ResourceSchemaOf(u"xyz"), nullptr);
    EXPECT_EQ(ts::ResourceSchemaOf(u"DLG"), ts::ResourceSchemaOf(u"dlg"));
}

// A cutscene with an actor of every kind, whose creature's track holds an action of every kind:
// each action, found by the code it names, is the record its own agent makes (with the start
// time given), and the whole reads back from its own short form.
template <class... Kind>
void ExpectEveryActionKindMadeByItsAgentAndKept() {
    std::string actions;
    for (int code : {Kind::kActionType...})
        actions += (actions.empty() ? "" : ", ") + std::string(R"({"ActionType": )") + std::to_string(code) +
                   R"(, "StartTime": )" + std::to_string(code * 10) + "}";
    Node tree = ReadShort("cut", R"({"ActorList": [{"Type": 3, "Pose": 4, "TrackList": [{"ActionList": [)" + actions +
                                     R"(]}]}, {"Type": 1}, {"Type": 2, "FOV": 50}, {"Type": 9, "ModelScale": 2}]})");
    Node track = tree ? FirstOf(FirstOf(tree.Get(), u"ActorList").Get(), u"TrackList") : Node(), list;
    ASSERT_TRUE(track && track->FindChild(TsAddAtom(u"ActionList"), 0, list.Put()) == S_OK);
    std::uint32_t at = 0;
    auto expectNext = [&](Node made, std::int32_t code) {
        Node action;
        EXPECT_EQ(list->GetChildAt(at++, action.Put()), S_OK);
        EXPECT_TRUE(CAgentCutsceneAction(made.Get()).SetStartTime(code * 10));
        ExpectSame(action.Get(), made.Get(), "action " + std::to_string(code));
    };
    (expectNext(Made<Kind>(), Kind::kActionType), ...);

    std::string text;
    std::u16string error;
    ASSERT_TRUE(ts::WriteResourceJsonShort({u"r", u"cut", tree}, ts::ResourceSchemas(), text, &error)) << U8(error);
    EXPECT_EQ(text.find("\"root\""), std::string::npos);  // short throughout
    EXPECT_EQ(text.find("\"name\": "), std::string::npos) << text;
    ts::ResourceDocument back;
    ASSERT_TRUE(ts::ReadResourceJson(text, back, &error, ts::ResourceSchemas())) << U8(error);
    ExpectSame(back.root.Get(), tree.Get(), "cutscene");
}

TEST(ResourceSchemas, EveryActorAndActionKindIsMadeByItsAgentAndSurvivesTheShortForm) {
    ExpectEveryActionKindMadeByItsAgentAndKept<
        CAgentCutsceneActionPlayAnimation, CAgentCutsceneActionSpeakLine, CAgentCutsceneActionActiveCamera,
        CAgentCutsceneActionShakeOrientation, CAgentCutsceneActionFade, CAgentCutsceneActionJumpToStageCamera,
        CAgentCutsceneActionJumpToStagePlace, CAgentCutsceneActionLinkActor, CAgentCutsceneActionHeadtracking,
        CAgentCutsceneActionSound, CAgentCutsceneActionChangeVisibility, CAgentCutsceneActionTogglePhysics,
        CAgentCutsceneActionSnapToWalkmesh, CAgentCutsceneActionFrameBufferEffect, CAgentCutsceneActionDrawWeapon,
        CAgentCutsceneActionPlayBinkMovie, CAgentCutsceneActionAnimateFace, CAgentCutsceneActionSetGore,
        CAgentCutsceneActionSetFog, CAgentCutsceneActionSkipMarker>();

    auto bad = R"({"resource": "r", "type": "cut", "fields": {"ActorList": [{"Type": 4}]}})";
    ts::ResourceDocument doc;
    std::u16string error;
    EXPECT_FALSE(ts::ReadResourceJson(bad, doc, &error, ts::ResourceSchemas()));
    EXPECT_NE(error.find(u"4 is not a kind of cutscene actor; the kinds are 1 (master), 2 (camera), 3 (creature), "
                         u"9 (visual effect)"),
              std::u16string::npos)
        << U8(error);
}

}  // namespace
