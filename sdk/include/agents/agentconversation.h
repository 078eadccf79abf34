#pragma once

#include <cstdint>

#include "agents/agentgameobject.h"

// The conversation resource: a root with starts, NPC lines and player lines. Lines link by index:
// a start's LineIndex points into NPCLineList, an NPC line's transitions into PlayerLineList and
// a player line's transitions into NPCLineList. IsLink tells a link from an owned child.

// Rows: name, kind, flags, display name, category, sub-category, description, editor kind,
// default.
#define TS_CONVERSATION_FIELDS(F)                                                                 \
    F(EndConversationScriptURI, String, 2050, u"", u"", u"", u"", u"ScriptSelect", u"")           \
    F(EndConversationParameter, Int, 2, u"End Conv Param", u"", u"", u"", u"", -1)                \
    F(EndConversationParameterText, String, 2, u"End Conv Param Text", u"", u"", u"", u"", u"")   \
    F(EndConversationPlotURI, String, 2050, u"", u"", u"", u"", u"PlotSelect", u"")               \
    F(EndConversationPlotFlag, Int, 2, u"End Conv Plot Flag", u"", u"", u"", u"", -1)             \
    F(EndConversationResult, Bool, 2, u"End Conv Result", u"", u"", u"", u"", true)               \
    F(Comment, String, 2, u"Comment", u"", u"", u"", u"", u"")                                    \
    F(DefaultNPCSpeaker, String, 0, u"", u"", u"", u"", u"", u"OWNER")                            \
    F(DefaultNPCListener, String, 0, u"", u"", u"", u"", u"", u"PLAYER")                          \
    F(DefaultPCListener, String, 0, u"", u"", u"", u"", u"", u"OWNER")                            \
    F(StageURI, String, 2050, u"", u"", u"", u"", u"StageSelect", u"")                            \
    F(StageTag, String, 2, u"Stage Tag", u"", u"", u"", u"", u"")                                 \
    F(StageAtCurrentLocation, Bool, 2, u"", u"", u"", u"", u"", false)                            \
    F(AllGesturesLocked, Bool, 2, u"", u"", u"", u"", u"", false)                                 \
    F(AllPosesLocked, Bool, 2, u"", u"", u"", u"", u"", false)                                    \
    F(AllRoboZeltLocked, Bool, 2, u"", u"", u"", u"", u"", false)                                 \
    F(AllCameraLocked, Bool, 2, u"", u"", u"", u"", u"", false)                                   \
    F(AmbientSoundSetType, Bool, 2, u"", u"", u"", u"", u"", false)                               \
    F(OwnerIsHenchman, Bool, 2, u"", u"", u"", u"", u"", false)                                   \
    F(VOHardTimeRestriction, Bool, 2, u"", u"", u"", u"", u"", false)                             \
    F(PreviewAreaURI, String, 2050, u"", u"", u"", u"", u"AreaSelect", u"")                       \
    F(PreviewStageUseFirstMatch, Bool, 2, u"", u"", u"", u"", u"", true)                          \
    F(PreviewStagePosition, Vector, 2050, u"", u"", u"", u"", u"", (TsVector3{0, 0, 0}))          \
    F(PreviewStageOrientation, Vector, 2050, u"", u"", u"", u"", u"", (TsVector3{0, 0, 0}))       \
    F(IsSoundset, Bool, 2, u"", u"", u"", u"", u"", false)                                        \
    F(StartList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                                \
    F(NPCLineList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                              \
    F(PlayerLineList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                           \
    F(CinematicsInfoList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                       \
    F(PreviewTagMappingList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

// NPC and player lines share this record.
#define TS_CONVERSATION_LINE_FIELDS(F)                                                            \
    F(StringID, Int, 0, u"", u"", u"", u"", u"", -1)                                              \
    F(LanguageID, Int, 0, u"", u"", u"", u"", u"", 0)                                             \
    F(ConditionScriptURI, String, 2050, u"", u"", u"", u"", u"ScriptSelect", u"")                 \
    F(ConditionParameter, Int, 2, u"", u"", u"", u"", u"", 0)                                     \
    F(ConditionParameterText, String, 2, u"", u"", u"", u"", u"", u"")                            \
    F(ConditionPlotURI, String, 2050, u"", u"", u"", u"", u"PlotSelect", u"")                     \
    F(ConditionPlotFlag, Int, 2, u"", u"", u"", u"", u"", -1)                                     \
    F(ConditionResult, Bool, 2, u"", u"", u"", u"", u"", true)                                    \
    F(ActionScriptURI, String, 2050, u"", u"", u"", u"", u"ScriptSelect", u"")                    \
    F(ActionParameter, Int, 2, u"", u"", u"", u"", u"", 0)                                        \
    F(ActionParameterText, String, 2, u"", u"", u"", u"", u"", u"")                               \
    F(ActionPlotURI, String, 2050, u"", u"", u"", u"", u"PlotSelect", u"")                        \
    F(ActionPlotFlag, Int, 2, u"", u"", u"", u"", u"", -1)                                        \
    F(ActionResult, Bool, 2, u"", u"", u"", u"", u"", true)                                       \
    F(Text, String, 2, u"Text", u"", u"", u"", u"", u"")                                          \
    F(TextRequiresReTranslation, Bool, 8, u"TextRequiresReTranslation", u"", u"", u"", u"", false) \
    F(TextRequiresReRecording, Bool, 8, u"TextRequiresReRecording", u"", u"", u"", u"", false)    \
    F(Speaker, String, 2, u"Speaker", u"", u"", u"", u"", u"")                                    \
    F(PreviousSpeaker, String, 2, u"Previous Speaker", u"", u"", u"", u"", u"")                   \
    F(Listener, String, 2, u"Listener", u"", u"", u"", u"", u"")                                  \
    F(Icon, Int, 2, u"", u"", u"", u"", u"", 0)                                                   \
    F(Comment, String, 2, u"", u"", u"", u"", u"", u"")                                           \
    F(FastPath, Int, 2, u"", u"", u"", u"", u"", 0)                                               \
    F(SlideShowTexture, String, 2050, u"", u"", u"", u"", u"", u"")                               \
    F(VoiceOverTag, String, 2, u"", u"", u"", u"", u"", u"")                                      \
    F(VoiceOverComment, String, 2, u"", u"", u"", u"", u"", u"")                                  \
    F(EditorComment, String, 2, u"", u"", u"", u"", u"", u"")                                     \
    F(LineVisibility, Int, 2, u"", u"", u"", u"", u"", 0)                                         \
    F(Ambient, Bool, 2, u"", u"", u"", u"", u"", false)                                           \
    F(SkipLine, Bool, 2, u"", u"", u"", u"", u"", false)                                          \
    F(StageURI, String, 2050, u"", u"", u"", u"", u"StageSelect", u"")                            \
    F(StageTag, String, 2, u"", u"", u"", u"", u"", u"")                                          \
    F(StageAtCurrentLocation, Bool, 2, u"", u"", u"", u"", u"", false)                            \
    F(CameraTag, String, 2, u"", u"", u"", u"", u"", u"")                                         \
    F(CameraLocked, Bool, 2, u"", u"", u"", u"", u"", false)                                      \
    F(SecondaryCameraTag, String, 2, u"", u"", u"", u"", u"", u"")                                \
    F(SecondaryCameraDelay, Float, 2, u"", u"", u"", u"", u"", 0.0)                               \
    F(Emotion, Int, 2, u"", u"", u"", u"", u"", 0)                                                \
    F(CustomCutsceneURI, String, 2050, u"", u"", u"", u"", u"CutsceneSelect", u"")                \
    /* Names an animation, yet its picker kind is kept as stored resources have it. */            \
    F(SpeakerAnimation, String, 2050, u"", u"", u"", u"", u"ConversationSelect", u"")             \
    F(RevertAnimation, Bool, 2, u"", u"", u"", u"", u"", false)                                   \
    F(LockAnimations, Bool, 2, u"", u"", u"", u"", u"", false)                                    \
    F(PlaySoundEvents, Bool, 2, u"", u"", u"", u"", u"", true)                                    \
    F(RoboZeltSeed, UInt, 2, u"RoboZeltSeed", u"", u"", u"", u"", 0u)                             \
    F(RoboZeltSeedOverride, Bool, 2, u"RoboZeltSeedOverride", u"", u"", u"", u"", false)          \
    F(RoboZeltLocked, Bool, 2, u"RoboZeltLocked", u"", u"", u"", u"", false)                      \
    F(PreviewAreaURI, String, 2050, u"", u"", u"", u"", u"AreaSelect", u"")                       \
    F(PreviewStageUseFirstMatch, Bool, 2, u"", u"", u"", u"", u"", true)                          \
    F(PreviewStagePosition, Vector, 2050, u"", u"", u"", u"", u"", (TsVector3{0, 0, 0}))          \
    F(PreviewStageOrientation, Vector, 2050, u"", u"", u"", u"", u"", (TsVector3{0, 0, 0}))       \
    F(UseAnimationDuration, Bool, 2, u"", u"", u"", u"", u"", false)                              \
    F(NoVOInGame, Bool, 2, u"", u"", u"", u"", u"", false)                                        \
    F(Narration, Bool, 2, u"", u"", u"", u"", u"", false)                                         \
    F(PreCacheVO, Bool, 2, u"", u"", u"", u"", u"", false)                                        \
    F(TransitionList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                           \
    F(CinematicsInfoList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                       \
    F(AnimationListList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                        \
    F(CustomCutsceneParameterList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)              \
    F(PreviewTagMappingList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

// The small records below get their values from whoever creates them (the tree editor, the
// cinematics pane), so their tables write no defaults.
#define TS_CONVERSATION_START_FIELDS(F) \
    F(LineIndex, Int, 0, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

#define TS_CONVERSATION_TRANSITION_FIELDS(F)                       \
    F(IsLink, Bool, 0, u"", u"", u"", u"", u"", TS_NO_DEFAULT)     \
    F(LineIndex, Int, 0, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

// Each ...Override switch enables the field that follows it.
#define TS_CONVERSATION_CINEMATICS_INFO_FIELDS(F)                          \
    F(Place, String, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)            \
    F(TagOverride, Bool, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)        \
    F(Tag, String, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)              \
    F(MappingRequired, Bool, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)    \
    F(HelmetOverride, Bool, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)     \
    F(Helmet, Int, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)              \
    F(WeaponsOverride, Bool, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)    \
    F(Weapons, Int, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)             \
    F(LookAtOverride, Bool, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)     \
    F(LookAt, String, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)           \
    F(HeadLookAtOverride, Bool, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT) \
    F(HeadLookAt, String, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)       \
    F(PoseOverride, Bool, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)       \
    F(Pose, Int, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                \
    F(LockPose, Bool, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)           \
    F(TransitionDelay, Float, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)   \
    F(ActivationAction, Int, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)    \
    F(PreviousPose, Int, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

#define TS_CONVERSATION_ANIMATION_LIST_FIELDS(F)                   \
    F(Tag, String, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)      \
    F(Locked, Bool, 0, u"", u"", u"", u"", u"", TS_NO_DEFAULT)     \
    F(AnimationList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

#define TS_CONVERSATION_ANIMATION_FIELDS(F)                          \
    F(Animation, String, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)  \
    F(StartTime, Float, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)   \
    F(Weight, Float, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)      \
    F(Speed, Float, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)       \
    F(StartOffset, Float, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT) \
    F(BlendIn, Float, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)     \
    F(EndOffset, Float, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)   \
    F(BlendOut, Float, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

// For the preview: a conversation tag (Key) mapped to a value (Val) and an object resource (URI).
#define TS_CONVERSATION_TAG_MAP_ENTRY_FIELDS(F)               \
    F(Key, String, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT) \
    F(Val, String, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT) \
    F(URI, String, 2, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

// Status records, one per string id; their display names are their field names.
#define TS_LOCALIZATION_STATUS_FIELDS(F)                                                         \
    F(StringID, Int, 2, u"StringID", u"", u"", u"", u"", TS_NO_DEFAULT)                          \
    F(ModuleResRefVersionID, Int, 2, u"ModuleResRefVersionID", u"", u"", u"", u"", TS_NO_DEFAULT) \
    F(ExportedOn, DateTime, 2, u"ExportedOn", u"", u"", u"", u"", TS_NO_DEFAULT)                 \
    F(RequiresReTranslation, Bool, 2, u"RequiresReTranslation", u"", u"", u"", u"", TS_NO_DEFAULT)

#define TS_VO_RECORDING_STATUS_FIELDS(F)                                                         \
    F(StringID, Int, 2, u"StringID", u"", u"", u"", u"", TS_NO_DEFAULT)                          \
    F(ModuleResRefVersionID, Int, 2, u"ModuleResRefVersionID", u"", u"", u"", u"", TS_NO_DEFAULT) \
    F(SentForRecordingOn, DateTime, 2, u"SentForRecordingOn", u"", u"", u"", u"", TS_NO_DEFAULT) \
    F(RequiresReRecording, Bool, 2, u"RequiresReRecording", u"", u"", u"", u"", TS_NO_DEFAULT)

class CAgentConversationStart : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentConversationStart, CAgentBase, "agentconversation", TS_CONVERSATION_START_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentConversationTransition : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentConversationTransition, CAgentBase, "agentconversation",
                    TS_CONVERSATION_TRANSITION_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentConversationLine : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentConversationLine, CAgentBase, "agentconversation", TS_CONVERSATION_LINE_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentConversationCinematicsInfo : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentConversationCinematicsInfo, CAgentBase, "agentconversation",
                    TS_CONVERSATION_CINEMATICS_INFO_FIELDS)
    TS_AGENT_DEFAULTS()
};

// One animation track of a line: the animations played by the actor with this tag.
class CAgentConversationAnimationList : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentConversationAnimationList, CAgentBase, "agentconversation",
                    TS_CONVERSATION_ANIMATION_LIST_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentConversationAnimation : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentConversationAnimation, CAgentBase, "agentconversation",
                    TS_CONVERSATION_ANIMATION_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentConversationTagMapEntry : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentConversationTagMapEntry, CAgentBase, "agentconversation",
                    TS_CONVERSATION_TAG_MAP_ENTRY_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentLocalizationStatus : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentLocalizationStatus, CAgentBase, "agentconversation", TS_LOCALIZATION_STATUS_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentVORecordingStatus : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentVORecordingStatus, CAgentBase, "agentconversation", TS_VO_RECORDING_STATUS_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentConversation : public CAgentGameObject {
public:
    TS_AGENT_FIELDS(CAgentConversation, CAgentGameObject, "agentconversation", TS_CONVERSATION_FIELDS)
    TS_AGENT_DEFAULTS()

    // Links out of a line: the transitions of NPC line `npc` (of NPCLineList) lead to player
    // lines, those of player line `pc` (of PlayerLineList) to NPC lines. A failure is reported at
    // level ERROR; a count then reads 0 and a fetched transition is left unbound.
    bool AddNPCToPlayer(std::uint32_t npc, const CAgentConversationTransition& transition,
                        std::uint32_t index = kTsAppend);
    std::uint32_t GetNPCToPlayerLineCount(std::uint32_t npc) const;
    bool GetNPCToPlayer(std::uint32_t npc, std::uint32_t i, CAgentConversationTransition& transition) const;

    bool AddPlayerToNPC(std::uint32_t pc, const CAgentConversationTransition& transition,
                        std::uint32_t index = kTsAppend);
    std::uint32_t GetPlayerToNPCLineCount(std::uint32_t pc) const;
    bool GetPlayerToNPC(std::uint32_t pc, std::uint32_t i, CAgentConversationTransition& transition) const;

private:
    // Line `index` of the list named `lineList`, or an unbound line.
    CAgentConversationLine LineAt(TsAtom lineList, std::uint32_t index) const;
    bool AddLink(TsAtom lineList, std::uint32_t line, const CAgentConversationTransition& transition,
                 std::uint32_t index);
    bool LinkCount(TsAtom lineList, std::uint32_t line, std::uint32_t& count) const;
    bool GetLink(TsAtom lineList, std::uint32_t line, std::uint32_t i,
                 CAgentConversationTransition& transition) const;
};
