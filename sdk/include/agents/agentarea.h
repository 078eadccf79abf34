#pragma once

#include <string_view>

#include "agents/agentgameobject.h"

// An area and the objects placed in it; the conversation preview maps conversation tags to these
// objects.

// Rows: name, kind, flags, display name, category, sub-category, description, editor kind,
// default.
#define TS_AREA_OBJECT_FIELDS(F)                                                                 \
    F(Tag, String, 2056, u"Tag", u"", u"",                                                       \
      u"A non-unique string identifier used mostly by scripts and other resources to refer to "  \
      u"this resource",                                                                          \
      u"TagInstance", u"")                                                                       \
    F(URI, String, 2056, u"Source", u"", u"", u"", u"", u"")

#define TS_AREA_FIELDS(F) F(ObjectList, List, 66, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

// An object of an area: its tag and the resource it was made from.
class CAgentAreaObject : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentAreaObject, CAgentBase, "agentarea", TS_AREA_OBJECT_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentArea : public CAgentGameObject {
public:
    TS_AGENT_FIELDS(CAgentArea, CAgentGameObject, "agentarea", TS_AREA_FIELDS)
    TS_AGENT_DEFAULTS()

    // The first object whose Tag equals `tag`, ignoring ASCII case; an empty tag matches nothing.
    bool FindObject(std::u16string_view tag, CAgentAreaObject& object) const;
};
