#pragma once

#include <cstdint>
#include <string_view>

#include "agents/agentgameobject.h"

// A stage: named places where actors stand and named cameras that look at them, set down at a
// position in an area. Conversations and cutscenes refer to places and cameras by tag.

// How a camera adjusts itself to what it looks at (LookAtType).
enum class TsStageLookAtType : std::int32_t {
    None = 0,             // no adjustment; the primary target still drives depth of field
    Simple = 1,           // up or down by the average height change of all targets
    OverTheShoulder = 2,  // height from the looking-from place, angle from the primary target
};

// Rows: name, kind, flags, display name, category, sub-category, description, editor kind,
// default.
#define TS_STAGE_FIELDS(F)                                                                   \
    F(Tag, String, 2056, u"Tag", u"", u"", u"", u"TagName", u"")                             \
    F(Comment, String, 8, u"", u"", u"", u"", u"", u"")                                      \
    F(AreaURI, String, 2056, u"Area", u"Area", u"", u"", u"AreaSelect", u"")                 \
    F(Position, Vector, 1032, u"Position in Area", u"Area", u"", u"", u"", (TsVector3{0, 0, 0})) \
    F(Yaw, Float, 8, u"Yaw in Area", u"Area", u"", u"", u"", 0.0)                            \
    F(PlaceList, List, 66, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                           \
    F(CameraList, List, 66, u"", u"", u"", u"", u"", TS_NO_DEFAULT)                          \
    F(Transparent, Bool, 0, u"", u"", u"", u"", u"", false)

#define TS_RENDER_OBJECT_FIELDS(F)                                                                \
    F(Position, Vector, 1032, u"Position", u"Location", u"", u"", u"", (TsVector3{0, 0, 0}))      \
    F(Orientation, Vector, 1032, u"Orientation", u"Location", u"", u"", u"", (TsVector3{0, 0, 0})) \
    F(Tag, String, 2056, u"Tag", u"", u"",                                                        \
      u"A non-unique string identifier used mostly by scripts and other resources to refer to "   \
      u"this resource",                                                                           \
      u"TagInstance", u"")                                                                        \
    F(GeometryList, List, 66, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

// Type tells a stored place (0) from a camera (1); -1 until a kind writes its own.
#define TS_STAGE_OBJECT_FIELDS(F) F(Type, Int, 0, u"", u"", u"", u"", u"", -1)

#define TS_STAGE_CAMERA_FIELDS(F)                                                                  \
    F(FOV, Float, 8, u"", u"", u"", u"The field of view for the camera.", u"", 45.0)               \
    F(LookingFrom, String, 8, u"Looking From", u"Camera Adjustment", u"",                          \
      u"This field is used by over-the-shoulder camera adjustment.  This is the place whose "      \
      u"shoulder is being looked over.",                                                           \
      u"StagePlaceSelect", u"")                                                                    \
    F(LookingAtPrimary, String, 8, u"Looking At (Primary)", u"Camera Adjustment", u"",             \
      u"The primary place that this camera is looking at.  This is used by both over-the-shoulder " \
      u"and simple look at.  It also used when applying depth of field.",                          \
      u"StagePlaceSelect", u"")                                                                    \
    /* Several place tags in one string field, hence the list bit on a string. */                  \
    F(LookingAtSecondaryList, String, 72, u"Looking At (Secondary)", u"Camera Adjustment", u"",    \
      u"A list of all places being looked at.  This is only used by simple look at.", u"TagList",  \
      TS_NO_DEFAULT)                                                                               \
    F(LookAtType, Int, 8, u"Look At Type", u"Camera Adjustment", u"",                              \
      u"The type of look at adjustment.  None means that no camera adjustment will be performed "  \
      u"(the primary look at target is still used by DOF.  Simple adjustment just adjusts the "    \
      u"camera up or down based on the average change in height between all its look at "          \
      u"targets.  Over-the-shoulder adjustment adjusts the height based on the looking from "      \
      u"place, and the angle based on the primary looking at place.",                              \
      u"StageCameraLookAtType", 1)                                                                 \
    /* The number prefixes order the two fields in the property grid. */                          \
    F(ApplyDOF, Bool, 8, u"00.Apply DOF", u"DOF", u"",                                             \
      u"Whether depth of field will be applied to this camera.", u"", true)                        \
    F(OverrideDOF, Bool, 0, u"01.Override DOF", u"DOF", u"",                                       \
      u"If true this camera specifies DOF settings that override the default procedural "          \
      u"settings.  Otherwise the procedural system will generate reasonable settings based on "    \
      u"its parameters.",                                                                          \
      u"", false)

#define TS_STAGE_PLACE_FIELDS(F)                                                                   \
    F(DefaultCamera, String, 8, u"Default Camera", u"Cameras", u"",                                \
      u"This camera will be used by default to look at actors standing on this place.",            \
      u"StageCameraSelect", u"")                                                                   \
    F(CloseUpCamera, String, 8, u"Close Up Camera", u"Cameras", u"",                               \
      u"This camera will be used for automatic close-up shots of actors standing on this place.",  \
      u"StageCameraSelect", u"")                                                                   \
    F(WideCamera, String, 8, u"Wide Camera", u"Cameras", u"",                                      \
      u"This camera will be used for automatic wide shots of actors standing on this place.",      \
      u"StageCameraSelect", u"")                                                                   \
    F(URI, String, 8, u"Source", u"Visualization", u"",                                            \
      u"The source object to display in this place for visualization.  This property is for "      \
      u"visualization only; it is not used beyond the stage editor.",                              \
      u"CreaturePlaceableSelect", u"")                                                             \
    F(Pose, Int, 8, u"", u"Visualization", u"",                                                    \
      u"The pose that the source will stand in.  This property is used for visualization only; "   \
      u"it is not used beyond the stage editor.",                                                  \
      u"PoseEdit", -1)

#define TS_STAGE_OBJECT_REFERENCE_FIELDS(F)                                                        \
    F(Tag, String, 8, u"", u"", u"",                                                               \
      u"The tag of the object.  This tag will be used by conversations and cutscenes to "          \
      u"specifically refer to this place or camera.",                                              \
      u"TagName", u"")

// Position, orientation and tag: what every object placed in a 3D scene has.
class CAgentRenderObject : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentRenderObject, CAgentBase, "agentstage", TS_RENDER_OBJECT_FIELDS)
    TS_AGENT_DEFAULTS()
};

// A place or a camera; bound over a stored one, Type tells which.
class CAgentStageObject : public CAgentRenderObject {
public:
    TS_AGENT_FIELDS(CAgentStageObject, CAgentRenderObject, "agentstage", TS_STAGE_OBJECT_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentStageCamera : public CAgentStageObject {
public:
    static constexpr std::int32_t kObjectType = 1;
    TS_AGENT_FIELDS(CAgentStageCamera, CAgentStageObject, "agentstage", TS_STAGE_CAMERA_FIELDS)
    // The stage-object defaults (Type -1), then Type 1, then the camera's own.
    bool SetDefaults() override;
};

class CAgentStagePlace : public CAgentStageObject {
public:
    static constexpr std::int32_t kObjectType = 0;
    TS_AGENT_FIELDS(CAgentStagePlace, CAgentStageObject, "agentstage", TS_STAGE_PLACE_FIELDS)
    // The stage-object defaults (Type -1), then Type 0, then the place's own.
    bool SetDefaults() override;
};

// Refers to a place or a camera of a stage by its tag.
class CAgentStageObjectReference : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentStageObjectReference, CAgentBase, "agentstage", TS_STAGE_OBJECT_REFERENCE_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentStage : public CAgentGameObject {
public:
    TS_AGENT_FIELDS(CAgentStage, CAgentGameObject, "agentstage", TS_STAGE_FIELDS)
    TS_AGENT_DEFAULTS()

    // The place or camera whose Tag equals `tag`, ignoring ASCII case, the first one in list
    // order. An empty tag matches nothing; not finding one is no error and reports nothing.
    bool FindPlace(std::u16string_view tag, CAgentStagePlace& place) const;
    bool FindCamera(std::u16string_view tag, CAgentStageCamera& camera) const;
};
