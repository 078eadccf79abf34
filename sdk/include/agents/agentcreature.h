#pragma once

#include "agents/agentgameobject.h"

// A creature, as conversations see it: the tag by which speakers and listeners name it, and its
// name.

// Rows: name, kind, flags, display name, category, sub-category, description, editor kind,
// default.
#define TS_CREATURE_FIELDS(F)                                                                    \
    F(Tag, String, 2056, u"Tag", u"", u"",                                                       \
      u"A non-unique string identifier used mostly by scripts and other resources to refer to "  \
      u"this resource",                                                                          \
      u"TagInstance", u"")                                                                       \
    F(Name, String, 8, u"Name", u"", u"", u"", u"", u"")

class CAgentCreature : public CAgentGameObject {
public:
    TS_AGENT_FIELDS(CAgentCreature, CAgentGameObject, "agentcreature", TS_CREATURE_FIELDS)
    TS_AGENT_DEFAULTS()
};
