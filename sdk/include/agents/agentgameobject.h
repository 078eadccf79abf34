#pragma once

#include "agents/agentbase.h"

// The fields every top-level resource has before its own.
#define TS_GAME_OBJECT_FIELDS(F)                                                                  \
    F(ResRefName, String, 2060, u"Resource Name", u"", u"",                                      \
      u"A unique string identifier the toolset and the game both use to refer to this resource", \
      u"", u"")                                                                                   \
    F(LocalCopy, Bool, 0, u"", u"", u"", u"", u"", false)

class CAgentGameObject : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentGameObject, CAgentBase, "AgentBase", TS_GAME_OBJECT_FIELDS)
    TS_AGENT_DEFAULTS()
};
