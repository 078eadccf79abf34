#include "agents/agentcutscene.h"

// A kind writes the defaults of its base first, then the code that tells its kind in a stored
// resource (over the base's default), then its own fields.

#define TS_ACTOR_KIND_DEFAULTS(Kind)                                                        \
    bool Kind::SetDefaults() {                                                              \
        return Base::SetDefaults() && SetType(kActorType) && WriteDefaults(Fields());       \
    }
TS_ACTOR_KIND_DEFAULTS(CAgentCutsceneMaster)
TS_ACTOR_KIND_DEFAULTS(CAgentCutsceneCamera)
TS_ACTOR_KIND_DEFAULTS(CAgentCutsceneCreature)
TS_ACTOR_KIND_DEFAULTS(CAgentCutsceneVFX)
#undef TS_ACTOR_KIND_DEFAULTS

#define TS_ACTION_KIND_DEFAULTS(Kind)                                                       \
    bool Kind::SetDefaults() {                                                              \
        return Base::SetDefaults() && SetActionType(kActionType) && WriteDefaults(Fields()); \
    }
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionPlayAnimation)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionSpeakLine)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionActiveCamera)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionShakeOrientation)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionFade)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionJumpToStageCamera)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionJumpToStagePlace)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionLinkActor)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionHeadtracking)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionSound)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionChangeVisibility)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionTogglePhysics)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionSnapToWalkmesh)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionFrameBufferEffect)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionDrawWeapon)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionPlayBinkMovie)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionAnimateFace)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionSetGore)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionSetFog)
TS_ACTION_KIND_DEFAULTS(CAgentCutsceneActionSkipMarker)
#undef TS_ACTION_KIND_DEFAULTS
