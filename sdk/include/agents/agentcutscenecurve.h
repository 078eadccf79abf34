#pragma once

#include <cstdint>

#include "agents/agentbase.h"

// Key curves. Tracks and actions begin with a CurveList; each curve animates one keyable field
// (named by Property) through its keys. The un-keyed value stays in the field's Base twin.

// How a key's value leads to the next key's.
enum class TsCurveInterpolation : std::int32_t {
    Linear = 0,
    Step = 1,    // holds the value until the next key
    Smooth = 2,  // eases in and out
};

// Rows: name, kind, flags, display name, category, sub-category, description, editor kind,
// default.
#define TS_CUTSCENE_CURVE_LIST_FIELDS(F) F(CurveList, List, 66, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

#define TS_CUTSCENE_CURVE_FIELDS(F)                                     \
    F(Property, String, 2, u"Property", u"", u"", u"", u"", u"")        \
    F(KeyList, List, 64, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

#define TS_CUTSCENE_CURVE_KEY_FIELDS(F)                                     \
    F(Time, Int, 2, u"Time", u"", u"", u"", u"CutsceneTime", 0)             \
    F(Value, Float, 2, u"Value", u"", u"", u"", u"", 0.0)                   \
    F(Interpolation, Int, 2, u"Interpolation", u"", u"", u"", u"", 0)

// The base of tracks and actions.
class CAgentCutsceneCurveList : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentCutsceneCurveList, CAgentBase, "agentcutscenecurve", TS_CUTSCENE_CURVE_LIST_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentCutsceneCurve : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentCutsceneCurve, CAgentBase, "agentcutscenecurve", TS_CUTSCENE_CURVE_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentCutsceneCurveKey : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentCutsceneCurveKey, CAgentBase, "agentcutscenecurve", TS_CUTSCENE_CURVE_KEY_FIELDS)
    TS_AGENT_DEFAULTS()
};
