#pragma once

#include <cstdint>

#include "agents/agentcutscenecurve.h"

// Cutscene actions: timed entries of a track. ActionType tells the kind of a stored action; the
// codes are part of the stored format. Each kind's SetDefaults writes the base defaults, then its
// code, then its own fields.

// Rows: name, kind, flags, display name, category, sub-category, description, editor kind,
// default.
#define TS_CUTSCENE_ACTION_FIELDS(F)                                                                 \
    F(ActionType, Int, 2, u"", u"", u"", u"", u"", 0)                                                \
    F(StartTime, Int, 8, u"Start Time", u"", u"", u"", u"CutsceneTime", 0)                           \
    F(EndTime, Int, 8, u"End Time", u"", u"", u"", u"CutsceneTime", 0)                               \
    F(Looping, Bool, 0, u"", u"", u"", u"", u"", false)                                              \
    F(LoopingEndTime, Int, 2, u"Looping End Time", u"", u"", u"", u"CutsceneTime", 0)                \
    F(Infinite, Bool, 8, u"", u"", u"", u"If true this action extends on forever.  It never ends.",  \
      u"", false)                                                                                    \
    F(GroupID, Int, 0, u"", u"", u"", u"", u"", 0)

// The GAD fields keep their mixed "GAD"/"Gad" categories as stored resources have them.
#define TS_CUTSCENE_PLAY_ANIMATION_FIELDS(F)                                                         \
    F(Animation, String, 8, u"Animation", u"Animation", u"", u"", u"AnimationSelect", u"")           \
    F(Speed, Float, 8, u"Speed", u"Animation", u"", u"", u"", 1.0)                                   \
    F(StartOffset, Int, 8, u"Start Offset", u"Animation", u"", u"", u"CutsceneTimeNonNegative", 0)   \
    F(EndOffset, Int, 8, u"End Offset", u"Animation", u"", u"", u"CutsceneTimeNonNegative", 0)       \
    F(AppearanceID, Int, 0, u"", u"", u"", u"", u"", -1)                                             \
    F(StandardType, String, 0, u"", u"", u"", u"", u"", u"")                                         \
    F(UniqueBlendTreeID, Int, 0, u"", u"", u"", u"", u"", 0)                                         \
    F(PlayGadAnimation, Bool, 8, u"1. Play Gad", u"GAD", u"", u"", u"", false)                       \
    F(ExtendGadAnimation, Bool, 8, u"2. Extend Gad Beyond Action", u"Gad", u"", u"", u"", true)      \
    F(ApplyRotationToFutureGads, Bool, 8, u"3. Apply Rotation To Future Gads", u"Gad", u"", u"",     \
      u"", true)                                                                                     \
    F(BlendGadAnimation, Bool, 8, u"4. Blend Gad", u"GAD", u"", u"", u"", false)                     \
    F(EntranceGad, Bool, 8, u"5. Entrance Gad", u"GAD", u"", u"", u"", false)                        \
    F(MovementLinkRatio, Float, 8, u"Movement Link Ratio", u"Animation", u"", u"", u"", 0.0)         \
    F(Weight, Float, 8, u"", u"Keyable", u"", u"", u"Percentage", 100.0)                             \
    F(WeightBase, Float, 0, u"", u"Keyable", u"", u"", u"Percentage", 100.0)                         \
    F(CustomIPEBlendTree, String, 0, u"Custom Blend Tree", u"Animation", u"", u"", u"", u"")

#define TS_CUTSCENE_SPEAK_LINE_FIELDS(F)                                                             \
    F(Text, String, 12, u"", u"Speak Line", u"", u"", u"", u"")                                      \
    F(OwningConversationURI, String, 2056, u"Source Conversation", u"Speak Line", u"", u"",          \
      u"ConversationSelect", u"")                                                                    \
    F(OwningLine, Int, 8, u"Source Line", u"Speak Line", u"", u"", u"CutsceneOwningLineEdit", -1)    \
    F(FAHeadMovement, Int, 8, u"FA Head Movement", u"Speak Line", u"", u"",                          \
      u"CutsceneFAHeadMovementEdit", 0)                                                              \
    F(NoVOInGame, Bool, 8, u"No VO In Game", u"Speak Line", u"", u"", u"", false)                    \
    F(VOBankOverride, String, 0, u"", u"", u"", u"", u"", u"")

#define TS_CUTSCENE_ACTIVE_CAMERA_FIELDS(F) \
    F(CameraActorID, Int, 8, u"Camera", u"Active Camera", u"", u"", u"CutsceneCamera", -1)

#define TS_CUTSCENE_SHAKE_FIELDS(F)                                                                  \
    F(Seed, UInt, 8, u"", u"Noise", u"", u"", u"", 0u)                                               \
    F(Frequency, Float, 8, u"", u"Noise", u"", u"", u"NoiseFrequency", 1.0)                          \
    F(NoiseType, Int, 8, u"Type", u"Noise", u"", u"", u"NoiseType", 2)                               \
    F(Correlated, Bool, 8, u"", u"Noise", u"", u"", u"", false)                                      \
    F(Roughness, Float, 8, u"", u"Noise", u"", u"", u"NoiseRoughness", 0.0)                          \
    F(RampIn, Int, 8, u"Ramp In", u"Transition", u"", u"", u"CutsceneTimeNonNegative", 0)            \
    F(RampOut, Int, 8, u"Ramp Out", u"Transition", u"", u"", u"CutsceneTimeNonNegative", 0)

#define TS_CUTSCENE_SHAKE_ORIENTATION_FIELDS(F)                                                      \
    F(YawStrength, Float, 8, u"Yaw Strength", u"Keyable", u"", u"", u"", 0.0)                        \
    F(PitchStrength, Float, 8, u"Pitch Strength", u"Keyable", u"", u"", u"", 0.0)                    \
    F(RollStrength, Float, 8, u"Roll Strength", u"Keyable", u"", u"", u"", 0.0)                      \
    F(YawStrengthBase, Float, 0, u"", u"", u"", u"", u"", 0.0)                                       \
    F(PitchStrengthBase, Float, 0, u"", u"", u"", u"", u"", 0.0)                                     \
    F(RollStrengthBase, Float, 0, u"", u"", u"", u"", u"", 0.0)

#define TS_CUTSCENE_FADE_FIELDS(F)                                                                   \
    F(FadeType, Int, 8, u"Fade Type", u"Fade", u"", u"", u"FadeTypeEdit", 0)                         \
    F(FadeColor, Colour, 8, u"Fade Color", u"Fade", u"", u"", u"", (TsColour{0, 0, 0, 0}))

#define TS_CUTSCENE_JUMP_TO_STAGE_CAMERA_FIELDS(F)                                                   \
    F(Tag, String, 8, u"Tag", u"Stage Camera", u"", u"", u"CutsceneStageCamera", u"")                \
    F(DefaultCamera, Bool, 8, u"Default Camera", u"Stage Camera", u"", u"", u"", false)              \
    F(HenchmanCamera, Bool, 0, u"", u"", u"", u"", u"", false)

#define TS_CUTSCENE_JUMP_TO_STAGE_PLACE_FIELDS(F)                                                    \
    F(Tag, String, 8, u"Place Tag", u"Stage Place", u"", u"", u"CutsceneStagePlace", u"")            \
    F(LookAt, String, 8, u"Look At", u"Stage Place", u"", u"", u"TagName", u"")

#define TS_CUTSCENE_LINK_ACTOR_FIELDS(F)                                                             \
    F(TargetActorID, Int, 8, u"Actor", u"Link Target", u"", u"", u"CutsceneActor", -1)               \
    F(TargetNodeID, Int, 8, u"Node", u"Link Target", u"", u"", u"TargetNode", -1)                    \
    F(UseOffset, Bool, 8, u"Use Offset", u"Link Target", u"", u"", u"", false)                       \
    F(AllowsKeysDuringLink, Bool, 0, u"", u"", u"", u"", u"", true)

#define TS_CUTSCENE_HEADTRACKING_FIELDS(F)                                                           \
    F(TargetID, Int, 8, u"Target", u"Headtracking", u"", u"", u"CutsceneActor", -1)                  \
    F(Speed, Float, 8, u"Speed Multiplier", u"Headtracking", u"", u"", u"PositiveOrZero", 1.0)       \
    F(RealignSourceHeadAtStart, Bool, 8, u"Realign Source Head At Start", u"Headtracking", u"",      \
      u"", u"", false)                                                                               \
    F(RealignSourceHeadAtContinuously, Bool, 8, u"Realign Source Head Continuously",                 \
      u"Headtracking", u"", u"", u"", false)

#define TS_CUTSCENE_SOUND_FIELDS(F)                                                                  \
    F(SoundParam1, Float, 8, u"", u"Keyable", u"", u"", u"", 0.0)                                    \
    F(SoundParam2, Float, 8, u"", u"Keyable", u"", u"", u"", 0.0)                                    \
    F(SoundParam3, Float, 8, u"", u"Keyable", u"", u"", u"", 0.0)                                    \
    F(SoundParam4, Float, 8, u"", u"Keyable", u"", u"", u"", 0.0)                                    \
    F(SoundParam5, Float, 8, u"", u"Keyable", u"", u"", u"", 0.0)                                    \
    F(SoundParam1Base, Float, 0, u"", u"Keyable", u"", u"", u"", 0.0)                                \
    F(SoundParam2Base, Float, 0, u"", u"Keyable", u"", u"", u"", 0.0)                                \
    F(SoundParam3Base, Float, 0, u"", u"Keyable", u"", u"", u"", 0.0)                                \
    F(SoundParam4Base, Float, 0, u"", u"Keyable", u"", u"", u"", 0.0)                                \
    F(SoundParam5Base, Float, 0, u"", u"Keyable", u"", u"", u"", 0.0)                                \
    F(EventName, String, 8, u"", u"Sound", u"", u"", u"", u"")

#define TS_CUTSCENE_CHANGE_VISIBILITY_FIELDS(F) \
    F(Visible, Bool, 8, u"Visible", u"Visibility", u"", u"", u"", true)

// Hair is declared with flags 0 where Cloth has 8, as stored resources have it.
#define TS_CUTSCENE_TOGGLE_PHYSICS_FIELDS(F)                                                         \
    F(Cloth, Bool, 8, u"Cloth", u"Physics Switches", u"", u"", u"", true)                            \
    F(Hair, Bool, 0, u"Hair", u"Physics Switches", u"", u"", u"", true)

#define TS_CUTSCENE_FRAME_BUFFER_EFFECT_FIELDS(F) \
    F(EffectName, String, 2, u"", u"", u"", u"", u"", u"")

#define TS_CUTSCENE_DRAW_WEAPON_FIELDS(F)                                                            \
    F(MainDrawn, Bool, 8, u"Main Drawn", u"Weapons", u"", u"", u"", true)                            \
    F(OffDrawn, Bool, 8, u"Off Drawn", u"Weapons", u"", u"", u"", false)

#define TS_CUTSCENE_PLAY_BINK_MOVIE_FIELDS(F) \
    F(Movie, String, 8, u"", u"Movie", u"", u"", u"MovieResourceSelect", u"")

#define TS_CUTSCENE_ANIMATE_FACE_FIELDS(F)                                                           \
    F(StringID, Int, 12, u"String ID", u"Animate Face", u"", u"", u"", -1)                           \
    F(FAHeadMovement, Int, 8, u"FA Head Movement", u"Animate Face", u"", u"",                        \
      u"CutsceneFAHeadMovementEdit", 0)                                                              \
    F(FXAOverride, String, 8, u"FXA Override", u"Animate Face", u"", u"", u"", u"")

#define TS_CUTSCENE_SET_GORE_FIELDS(F) F(Gore, Float, 8, u"Gore", u"Gore", u"", u"", u"ZeroToOne", 0.0)

#define TS_CUTSCENE_SET_FOG_FIELDS(F)                                                                \
    F(FogOverrideEnabled, Bool, 8, u"Fog Override Enabled", u"Fog", u"", u"", u"", true)             \
    F(FogColor, Colour, 8, u"Fog Max Color", u"Fog", u"", u"", u"", (TsColour{1, 1, 1, 1}))          \
    F(FogIntensity, Float, 8, u"Fog Intensity", u"Fog", u"", u"", u"EditorCutAtmoFogIntensityEdit",  \
      0.0)                                                                                           \
    F(FogCap, Float, 8, u"Fog Cap", u"Fog", u"", u"", u"EditorCutAtmoFogCapEdit", 0.0)               \
    F(VerticalFogZenith, Float, 8, u"Vertical Fog Zenith", u"Fog", u"", u"",                         \
      u"EditorCutAtmoVerticalFogZenithEdit", 0.0)

class CAgentCutsceneAction : public CAgentCutsceneCurveList {
public:
    TS_AGENT_FIELDS(CAgentCutsceneAction, CAgentCutsceneCurveList, "agentcutsceneaction", TS_CUTSCENE_ACTION_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentCutsceneActionPlayAnimation : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 2;
    TS_AGENT_FIELDS(CAgentCutsceneActionPlayAnimation, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_PLAY_ANIMATION_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionSpeakLine : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 3;
    TS_AGENT_FIELDS(CAgentCutsceneActionSpeakLine, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_SPEAK_LINE_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionActiveCamera : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 4;
    TS_AGENT_FIELDS(CAgentCutsceneActionActiveCamera, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_ACTIVE_CAMERA_FIELDS)
    bool SetDefaults() override;
};

// The noise fields shared by the shake actions; no action kind of its own.
class CAgentCutsceneActionShake : public CAgentCutsceneAction {
public:
    TS_AGENT_FIELDS(CAgentCutsceneActionShake, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_SHAKE_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentCutsceneActionShakeOrientation : public CAgentCutsceneActionShake {
public:
    static constexpr std::int32_t kActionType = 7;
    TS_AGENT_FIELDS(CAgentCutsceneActionShakeOrientation, CAgentCutsceneActionShake, "agentcutsceneaction",
                    TS_CUTSCENE_SHAKE_ORIENTATION_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionFade : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 8;
    TS_AGENT_FIELDS(CAgentCutsceneActionFade, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_FADE_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionJumpToStageCamera : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 12;
    TS_AGENT_FIELDS(CAgentCutsceneActionJumpToStageCamera, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_JUMP_TO_STAGE_CAMERA_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionJumpToStagePlace : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 13;
    TS_AGENT_FIELDS(CAgentCutsceneActionJumpToStagePlace, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_JUMP_TO_STAGE_PLACE_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionLinkActor : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 15;
    TS_AGENT_FIELDS(CAgentCutsceneActionLinkActor, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_LINK_ACTOR_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionHeadtracking : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 16;
    TS_AGENT_FIELDS(CAgentCutsceneActionHeadtracking, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_HEADTRACKING_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionSound : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 19;
    TS_AGENT_FIELDS(CAgentCutsceneActionSound, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_SOUND_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionChangeVisibility : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 20;
    TS_AGENT_FIELDS(CAgentCutsceneActionChangeVisibility, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_CHANGE_VISIBILITY_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionTogglePhysics : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 24;
    TS_AGENT_FIELDS(CAgentCutsceneActionTogglePhysics, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_TOGGLE_PHYSICS_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionSnapToWalkmesh : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 26;
    TS_AGENT_FIELDS(CAgentCutsceneActionSnapToWalkmesh, CAgentCutsceneAction, "agentcutsceneaction", TS_NO_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionFrameBufferEffect : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 29;
    TS_AGENT_FIELDS(CAgentCutsceneActionFrameBufferEffect, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_FRAME_BUFFER_EFFECT_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionDrawWeapon : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 31;
    TS_AGENT_FIELDS(CAgentCutsceneActionDrawWeapon, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_DRAW_WEAPON_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionPlayBinkMovie : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 32;
    TS_AGENT_FIELDS(CAgentCutsceneActionPlayBinkMovie, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_PLAY_BINK_MOVIE_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionAnimateFace : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 35;
    TS_AGENT_FIELDS(CAgentCutsceneActionAnimateFace, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_ANIMATE_FACE_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionSetGore : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 36;
    TS_AGENT_FIELDS(CAgentCutsceneActionSetGore, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_SET_GORE_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionSetFog : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 37;
    TS_AGENT_FIELDS(CAgentCutsceneActionSetFog, CAgentCutsceneAction, "agentcutsceneaction",
                    TS_CUTSCENE_SET_FOG_FIELDS)
    bool SetDefaults() override;
};

class CAgentCutsceneActionSkipMarker : public CAgentCutsceneAction {
public:
    static constexpr std::int32_t kActionType = 38;
    TS_AGENT_FIELDS(CAgentCutsceneActionSkipMarker, CAgentCutsceneAction, "agentcutsceneaction", TS_NO_FIELDS)
    bool SetDefaults() override;
};
