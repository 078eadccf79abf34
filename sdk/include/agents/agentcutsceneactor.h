#pragma once

#include <cstdint>

#include "agents/agentcutscenecurve.h"

// Cutscene actors, their tracks, and the transitions between two of an actor's actions. Actions
// refer to actors by ActorID (-1 meaning none). Keyable values come in pairs: the keyed field and
// its hidden Base twin, both given the same default.

// Rows: name, kind, flags, display name, category, sub-category, description, editor kind,
// default.
#define TS_CUTSCENE_ACTOR_FIELDS(F)                                                                   \
    F(URI, String, 0, u"Source", u"", u"", u"", u"", u"")                                             \
    F(Model, String, 2, u"Model", u"", u"", u"", u"ModelResourceSelect", u"")                         \
    F(ActorID, UInt, 2, u"Actor ID", u"", u"", u"", u"", 0u)                                          \
    /* -1 until a kind writes its own. */                                                             \
    F(Type, Int, 0, u"", u"", u"", u"", u"", -1)                                                      \
    F(StandardType, String, 0, u"", u"", u"", u"", u"", u"")                                          \
    F(Name, String, 8, u"Name", u"", u"", u"", u"", u"")                                              \
    F(AppearanceID, Int, 0, u"AppearanceID", u"", u"", u"", u"", -1)                                  \
    F(MappingTag, String, 8, u"Mapping Tag", u"Mapping", u"", u"", u"CutsceneTagName", u"")           \
    F(MappingRequired, Bool, 8, u"Mapping Required", u"Mapping", u"", u"", u"", false)                \
    F(ExportResRef, Bool, 8, u"Export ResRef", u"Mapping", u"", u"", u"", true)                       \
    F(OriginPosition, Vector, 8, u"Origin Position", u"Co-ordinate System", u"", u"", u"",            \
      (TsVector3{0, 0, 0}))                                                                           \
    F(OriginOrientation, Vector, 8, u"Origin Orientation", u"Co-ordinate System", u"", u"", u"",      \
      (TsVector3{0, 0, 0}))                                                                           \
    F(PositionX, Float, 8, u"X", u"Position", u"", u"", u"", 0.0)                                     \
    F(PositionXBase, Float, 0, u"", u"", u"", u"", u"", 0.0)                                          \
    F(PositionY, Float, 8, u"Y", u"Position", u"", u"", u"", 0.0)                                     \
    F(PositionYBase, Float, 0, u"", u"", u"", u"", u"", 0.0)                                          \
    F(PositionZ, Float, 8, u"Z", u"Position", u"", u"", u"", 0.0)                                     \
    F(PositionZBase, Float, 0, u"", u"", u"", u"", u"", 0.0)                                          \
    /* The leading blank sorts Yaw first in its group of the property grid. */                        \
    F(Yaw, Float, 8, u" Yaw", u"Orientation", u"", u"", u"", 0.0)                                     \
    F(Pitch, Float, 8, u"", u"Orientation", u"", u"", u"", 0.0)                                       \
    F(Roll, Float, 8, u"", u"Orientation", u"", u"", u"", 0.0)                                        \
    F(YawBase, Float, 0, u" Yaw", u"Orientation", u"", u"", u"", 0.0)                                 \
    F(PitchBase, Float, 0, u"", u"Orientation", u"", u"", u"", 0.0)                                   \
    F(RollBase, Float, 0, u"", u"Orientation", u"", u"", u"", 0.0)                                    \
    F(TrackList, List, 66, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                                    \
    F(ActionTransitionList, List, 66, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

#define TS_CUTSCENE_CAMERA_FIELDS(F)                                                                  \
    F(FOV, Float, 8, u"FOV", u"Camera", u"", u"", u"", 45.0)                                          \
    F(FOVBase, Float, 0, u"FOV", u"Camera", u"", u"", u"", 45.0)                                      \
    F(TargetType, Int, 8, u"Target Type", u"Target", u"", u"", u"CameraTargetType", 0)                \
    F(TargetActorID, Int, 0, u"Target Actor", u"Target", u"", u"", u"CutsceneActor", -1)

#define TS_CUTSCENE_CREATURE_FIELDS(F)                                                                \
    F(Pose, Int, 8, u"", u"Pose", u"", u"", u"PoseEdit", -1)                                          \
    F(PoseSpeed, Float, 8, u"Pose Speed", u"Pose", u"", u"", u"", 1.0)                                \
    F(TransitionDelay, Float, 8, u"Transition Delay", u"Pose", u"", u"", u"", 0.0)                    \
    F(PreviousPose, Int, 8, u"Previous Pose", u"Pose", u"", u"", u"PoseEdit", -1)                     \
    F(MainHand, Bool, 8, u"Main Hand", u"Inventory", u"", u"", u"", true)                             \
    F(OffHand, Bool, 8, u"Off Hand", u"Inventory", u"", u"", u"", true)                               \
    F(Chest, Bool, 8, u"", u"Inventory", u"", u"", u"", true)                                         \
    F(Head, Bool, 8, u"", u"Inventory", u"", u"", u"", true)                                          \
    F(Boots, Bool, 8, u"", u"Inventory", u"", u"", u"", true)                                         \
    F(Gloves, Bool, 8, u"", u"Inventory", u"", u"", u"", true)                                        \
    F(LOD, Int, 8, u"LOD", u"LOD", u"", u"", u"LODEdit", 0)

#define TS_CUTSCENE_VFX_FIELDS(F)                                                                     \
    F(TargetActorID, Int, 8, u"Actor", u"VFX", u"", u"", u"CutsceneCreaturePlaceableItem", -1)       \
    F(ModelScale, Float, 8, u"Model Scale", u"VFX", u"", u"", u"", 1.0)

#define TS_CUTSCENE_TRACK_FIELDS(F)                                                                   \
    F(Type, Int, 0, u"", u"", u"", u"", u"", 3)                                                       \
    F(Name, String, 8, u"Name", u"", u"", u"", u"", u"")                                              \
    F(ActionList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

// The four indices name the two actions (track index, action index inside the actor); -1 each
// while unconnected.
#define TS_CUTSCENE_ACTION_TRANSITION_FIELDS(F)                                                       \
    F(TrackIndexA, Int, 2, u"", u"", u"", u"", u"", -1)                                               \
    F(ActionIndexA, Int, 2, u"", u"", u"", u"", u"", -1)                                              \
    F(TrackIndexB, Int, 2, u"", u"", u"", u"", u"", -1)                                               \
    F(ActionIndexB, Int, 2, u"", u"", u"", u"", u"", -1)                                              \
    F(TransitionType, Int, 8, u"Transition Type", u"Transition", u"",                                 \
      u"The type of transition to apply between the animations.", u"TransitionModeEdit", 0)

// The fields every actor has; a kind's SetDefaults writes its Type over the -1 of the base.
class CAgentCutsceneActor : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentCutsceneActor, CAgentBase, "agentcutsceneactor", TS_CUTSCENE_ACTOR_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentCutsceneMaster : public CAgentCutsceneActor {
public:
    static constexpr std::int32_t kActorType = 1;
    TS_AGENT_FIELDS(CAgentCutsceneMaster, CAgentCutsceneActor, "agentcutsceneactor", TS_NO_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneCamera : public CAgentCutsceneActor {
public:
    static constexpr std::int32_t kActorType = 2;
    TS_AGENT_FIELDS(CAgentCutsceneCamera, CAgentCutsceneActor, "agentcutsceneactor", TS_CUTSCENE_CAMERA_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneCreature : public CAgentCutsceneActor {
public:
    static constexpr std::int32_t kActorType = 3;
    TS_AGENT_FIELDS(CAgentCutsceneCreature, CAgentCutsceneActor, "agentcutsceneactor", TS_CUTSCENE_CREATURE_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneVFX : public CAgentCutsceneActor {
public:
    static constexpr std::int32_t kActorType = 9;
    TS_AGENT_FIELDS(CAgentCutsceneVFX, CAgentCutsceneActor, "agentcutsceneactor", TS_CUTSCENE_VFX_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneTrack : public CAgentCutsceneCurveList {
public:
    TS_AGENT_FIELDS(CAgentCutsceneTrack, CAgentCutsceneCurveList, "agentcutsceneactor", TS_CUTSCENE_TRACK_FIELDS)
    TS_AGENT_DEFAULTS()
};

// Not an action: joins two actions of the actor whose ActionTransitionList holds it.
class CAgentCutsceneActionTransition : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentCutsceneActionTransition, CAgentBase, "agentcutsceneactor",
                    TS_CUTSCENE_ACTION_TRANSITION_FIELDS)
    TS_AGENT_DEFAULTS()
};
