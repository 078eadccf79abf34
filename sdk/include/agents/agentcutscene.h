#pragma once

#include "agents/agentcutsceneaction.h"
#include "agents/agentcutsceneactor.h"
#include "agents/agentgameobject.h"

// A cutscene: a timeline of actors, each owning tracks of timed actions (agentcutsceneactor.h,
// agentcutsceneaction.h), played on a stage or in an area.

// Rows: name, kind, flags, display name, category, sub-category, description, editor kind,
// default.
#define TS_CUTSCENE_FIELDS(F)                                                                        \
    F(RunTime, Int, 8, u"Cutscene Length", u"", u"", u"How long the cutscene plays for.",            \
      u"CutsceneTimePositive", 0)                                                                    \
    F(StageURI, String, 2056, u"Stage", u"Setting", u"",                                             \
      u"The stage on which the cutscene will be played.  If set, stage actions are allowed.",        \
      u"StageSelect", u"")                                                                           \
    F(AreaURI, String, 2056, u"Area", u"Setting", u"", u"The area in which the cutscene takes place.", \
      u"AreaSelect", u"")                                                                            \
    F(AreaRequired, Bool, 8, u"Area Required", u"Setting", u"",                                      \
      u"Whether this cutscene requires its area to be loaded in order to play properly.", u"", true) \
    F(StagePosition, Vector, 1032, u"Stage Position", u"Setting", u"",                               \
      u"The position of the stage within the area.", u"", (TsVector3{0, 0, 0}))                      \
    F(StageOrientation, Vector, 1032, u"Stage Orientation", u"Setting", u"",                         \
      u"The orientation of the stage within the area.", u"", (TsVector3{0, 0, 0}))                   \
    F(EnableLevelFBEs, Bool, 8, u"Enable Level Effects", u"Setting", u"", u"", u"", true)            \
    F(EndScriptURI, String, 2056, u"End Script", u"", u"", u"", u"ScriptSelect", u"")                \
    F(Animatic, String, 8, u"", u"Debug", u"", u"", u"MovieResourceSelect", u"")                     \
    F(PlaySoundEvents, Bool, 8, u"Play Sound Events", u"Game", u"", u"", u"", false)                 \
    F(UseMasterForLOD, Bool, 8, u"Use Master For LOD", u"Game", u"", u"", u"", false)                \
    F(FPS, UInt, 8, u"Time Scale", u"", u"", u"The time scale that the cutscene uses.",              \
      u"TimeScaleEdit", 30u)                                                                         \
    F(PlayUntilVOCompletes, Bool, 8, u"Play Until VO Completes", u"", u"", u"", u"", false)          \
    /* 0 leaves the choice to the engine, as the description says. */                                \
    F(ShadowRadius, Float, 8, u"Shadow Radius", u"Graphics", u"",                                    \
      u"The default shadow radius is 30m(900m*m). Carefully choose the value.Value 0 means to use "  \
      u"the system default.",                                                                        \
      u"", 0.0)                                                                                      \
    F(LightOcclusion, Bool, 8, u"Character Light Occlusion", u"Graphics", u"", u"Default is false.", \
      u"", false)                                                                                    \
    F(ActorList, List, 66, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                                   \
    F(HenchmanActorList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                           \
    F(LegacyBeforeFixingGADOffsetBaking, Bool, 0, u"", u"", u"", u"", u"", false)

class CAgentCutscene : public CAgentGameObject {
public:
    TS_AGENT_FIELDS(CAgentCutscene, CAgentGameObject, "agentcutscene", TS_CUTSCENE_FIELDS)
    TS_AGENT_DEFAULTS()
};
