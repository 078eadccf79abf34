#include "agents/resourceschemas.h"

#include "agents/agentarea.h"
#include "agents/agentconversation.h"
#include "agents/agentcreature.h"
#include "agents/agentcutscene.h"
#include "agents/agentplot.h"
#include "agents/agentrecord.h"
#include "agents/agentscript.h"
#include "agents/agentstage.h"
#include "ts/text.h"

namespace ts {

namespace {

constexpr ResourceTypeInfo kTypes[] = {
    {u"dlg", u"conversation"}, {u"stg", u"stage"}, {u"cut", u"cutscene"}, {u"plo", u"plot"},
    {u"utc", u"creature"},     {u"are", u"area"},  {u"nss", u"script"},
};

// Every record kind once, wired to the kinds of its list elements.
struct Schemas {
    RecordSchema conversation = TsAgentRecordSchema<CAgentConversation>(u"conversation");
    RecordSchema start = TsAgentRecordSchema<CAgentConversationStart>(u"conversation start");
    RecordSchema line = TsAgentRecordSchema<CAgentConversationLine>(u"conversation line");
    RecordSchema transition =
        TsAgentRecordSchema<CAgentConversationTransition>(u"conversation transition");
    RecordSchema cinematics =
        TsAgentRecordSchema<CAgentConversationCinematicsInfo>(u"cinematics record");
    RecordSchema animationTrack =
        TsAgentRecordSchema<CAgentConversationAnimationList>(u"animation track");
    RecordSchema animation = TsAgentRecordSchema<CAgentConversationAnimation>(u"animation");
    RecordSchema tagMapping =
        TsAgentRecordSchema<CAgentConversationTagMapEntry>(u"preview tag mapping");

    RecordSchema stage = TsAgentRecordSchema<CAgentStage>(u"stage");
    RecordSchema place = TsAgentRecordSchema<CAgentStagePlace>(u"stage place");
    RecordSchema camera = TsAgentRecordSchema<CAgentStageCamera>(u"stage camera");

    RecordSchema cutscene = TsAgentRecordSchema<CAgentCutscene>(u"cutscene");
    RecordSchema actor = TsAgentRecordSchema<CAgentCutsceneActor>(u"cutscene actor");
    RecordSchema master = TsAgentRecordSchema<CAgentCutsceneMaster>(u"master");
    RecordSchema cutsceneCamera = TsAgentRecordSchema<CAgentCutsceneCamera>(u"camera");
    RecordSchema creatureActor = TsAgentRecordSchema<CAgentCutsceneCreature>(u"creature");
    RecordSchema vfx = TsAgentRecordSchema<CAgentCutsceneVFX>(u"visual effect");
    RecordSchema track = TsAgentRecordSchema<CAgentCutsceneTrack>(u"cutscene track");
    RecordSchema actionTransition =
        TsAgentRecordSchema<CAgentCutsceneActionTransition>(u"action transition");
    RecordSchema curve = TsAgentRecordSchema<CAgentCutsceneCurve>(u"key curve");
    RecordSchema curveKey = TsAgentRecordSchema<CAgentCutsceneCurveKey>(u"curve key");
    RecordSchema action = TsAgentRecordSchema<CAgentCutsceneAction>(u"cutscene action");
    RecordSchema playAnimation =
        TsAgentRecordSchema<CAgentCutsceneActionPlayAnimation>(u"play animation");
    RecordSchema speakLine = TsAgentRecordSchema<CAgentCutsceneActionSpeakLine>(u"speak line");
    RecordSchema activeCamera =
        TsAgentRecordSchema<CAgentCutsceneActionActiveCamera>(u"active camera");
    RecordSchema shakeOrientation =
        TsAgentRecordSchema<CAgentCutsceneActionShakeOrientation>(u"shake orientation");
    RecordSchema fade = TsAgentRecordSchema<CAgentCutsceneActionFade>(u"fade");
    RecordSchema jumpToCamera =
        TsAgentRecordSchema<CAgentCutsceneActionJumpToStageCamera>(u"jump to stage camera");
    RecordSchema jumpToPlace =
        TsAgentRecordSchema<CAgentCutsceneActionJumpToStagePlace>(u"jump to stage place");
    RecordSchema linkActor = TsAgentRecordSchema<CAgentCutsceneActionLinkActor>(u"link actor");
    RecordSchema headtracking =
        TsAgentRecordSchema<CAgentCutsceneActionHeadtracking>(u"head tracking");
    RecordSchema sound = TsAgentRecordSchema<CAgentCutsceneActionSound>(u"sound");
    RecordSchema visibility =
        TsAgentRecordSchema<CAgentCutsceneActionChangeVisibility>(u"change visibility");
    RecordSchema physics =
        TsAgentRecordSchema<CAgentCutsceneActionTogglePhysics>(u"toggle physics");
    RecordSchema snap =
        TsAgentRecordSchema<CAgentCutsceneActionSnapToWalkmesh>(u"snap to walkmesh");
    RecordSchema frameBuffer =
        TsAgentRecordSchema<CAgentCutsceneActionFrameBufferEffect>(u"frame buffer effect");
    RecordSchema drawWeapon = TsAgentRecordSchema<CAgentCutsceneActionDrawWeapon>(u"draw weapon");
    RecordSchema movie = TsAgentRecordSchema<CAgentCutsceneActionPlayBinkMovie>(u"play movie");
    RecordSchema animateFace =
        TsAgentRecordSchema<CAgentCutsceneActionAnimateFace>(u"animate face");
    RecordSchema gore = TsAgentRecordSchema<CAgentCutsceneActionSetGore>(u"set gore");
    RecordSchema fog = TsAgentRecordSchema<CAgentCutsceneActionSetFog>(u"set fog");
    RecordSchema skipMarker = TsAgentRecordSchema<CAgentCutsceneActionSkipMarker>(u"skip marker");

    RecordSchema plot = TsAgentRecordSchema<CAgentPlot>(u"plot");
    RecordSchema plotStatus = TsAgentRecordSchema<CAgentPlotStatus>(u"plot flag");
    RecordSchema creature = TsAgentRecordSchema<CAgentCreature>(u"creature");
    RecordSchema area = TsAgentRecordSchema<CAgentArea>(u"area");
    RecordSchema areaObject = TsAgentRecordSchema<CAgentAreaObject>(u"area object");
    RecordSchema script = TsAgentRecordSchema<CAgentScript>(u"script");

    Schemas() {
        for (RecordSchema* top :
             {&conversation, &stage, &cutscene, &plot, &creature, &area, &script})
            top->nameField = u"ResRefName";

        conversation.elements = {{u"StartList", &start},
                                 {u"NPCLineList", &line},
                                 {u"PlayerLineList", &line},
                                 {u"CinematicsInfoList", &cinematics},
                                 {u"PreviewTagMappingList", &tagMapping}};
        line.elements = {{u"TransitionList", &transition},
                         {u"CinematicsInfoList", &cinematics},
                         {u"AnimationListList", &animationTrack},
                         {u"PreviewTagMappingList", &tagMapping}};
        animationTrack.elements = {{u"AnimationList", &animation}};

        stage.elements = {{u"PlaceList", &place}, {u"CameraList", &camera}};

        actor.kindField = u"Type";
        actor.kinds = {{CAgentCutsceneMaster::kActorType, &master},
                       {CAgentCutsceneCamera::kActorType, &cutsceneCamera},
                       {CAgentCutsceneCreature::kActorType, &creatureActor},
                       {CAgentCutsceneVFX::kActorType, &vfx}};
        cutscene.elements = {{u"ActorList", &actor}, {u"HenchmanActorList", &actor}};
        for (RecordSchema* kind : {&master, &cutsceneCamera, &creatureActor, &vfx})
            kind->elements = {{u"TrackList", &track}, {u"ActionTransitionList", &actionTransition}};
        track.elements = {{u"CurveList", &curve}, {u"ActionList", &action}};
        curve.elements = {{u"KeyList", &curveKey}};

        action.kindField = u"ActionType";
        RecordSchema* actions[] = {&playAnimation, &speakLine,    &activeCamera, &shakeOrientation,
                                   &fade,          &jumpToCamera, &jumpToPlace,  &linkActor,
                                   &headtracking,  &sound,        &visibility,   &physics,
                                   &snap,          &frameBuffer,  &drawWeapon,   &movie,
                                   &animateFace,   &gore,         &fog,          &skipMarker};
        const std::int32_t codes[] = {CAgentCutsceneActionPlayAnimation::kActionType,
                                      CAgentCutsceneActionSpeakLine::kActionType,
                                      CAgentCutsceneActionActiveCamera::kActionType,
                                      CAgentCutsceneActionShakeOrientation::kActionType,
                                      CAgentCutsceneActionFade::kActionType,
                                      CAgentCutsceneActionJumpToStageCamera::kActionType,
                                      CAgentCutsceneActionJumpToStagePlace::kActionType,
                                      CAgentCutsceneActionLinkActor::kActionType,
                                      CAgentCutsceneActionHeadtracking::kActionType,
                                      CAgentCutsceneActionSound::kActionType,
                                      CAgentCutsceneActionChangeVisibility::kActionType,
                                      CAgentCutsceneActionTogglePhysics::kActionType,
                                      CAgentCutsceneActionSnapToWalkmesh::kActionType,
                                      CAgentCutsceneActionFrameBufferEffect::kActionType,
                                      CAgentCutsceneActionDrawWeapon::kActionType,
                                      CAgentCutsceneActionPlayBinkMovie::kActionType,
                                      CAgentCutsceneActionAnimateFace::kActionType,
                                      CAgentCutsceneActionSetGore::kActionType,
                                      CAgentCutsceneActionSetFog::kActionType,
                                      CAgentCutsceneActionSkipMarker::kActionType};
        static_assert(std::size(actions) == std::size(codes));
        for (std::size_t i = 0; i < std::size(actions); ++i) {
            action.kinds[codes[i]] = actions[i];
            actions[i]->elements = {{u"CurveList", &curve}};
        }

        plot.elements = {{u"StatusList", &plotStatus}};
        area.elements = {{u"ObjectList", &areaObject}};
    }
    Schemas(const Schemas&) = delete;
};

const Schemas& TheSchemas() {
    static const Schemas schemas;
    return schemas;
}

}  // namespace

std::span<const ResourceTypeInfo> KnownResourceTypes() {
    return kTypes;
}

std::u16string_view ResourceTypeDescription(std::u16string_view type) {
    for (const auto& t : kTypes)
        if (EqualsIgnoreAsciiCase(t.type, type)) return t.description;
    return {};
}

const RecordSchema* ResourceSchemaOf(std::u16string_view type) {
    const Schemas& s = TheSchemas();
    std::u16string lower = AsciiLower(type);
    if (lower == u"dlg") return &s.conversation;
    if (lower == u"stg") return &s.stage;
    if (lower == u"cut") return &s.cutscene;
    if (lower == u"plo") return &s.plot;
    if (lower == u"utc") return &s.creature;
    if (lower == u"are") return &s.area;
    if (lower == u"nss") return &s.script;
    return nullptr;
}

ResourceSchemaLookup ResourceSchemas() {
    return &ResourceSchemaOf;
}

}  // namespace ts
