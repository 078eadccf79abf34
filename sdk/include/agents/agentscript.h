#pragma once

#include "agents/agentgameobject.h"

// A script, as conversations see it: a resource they name for conditions and actions. The name
// is all they use; the script's text belongs to the script editor.
class CAgentScript : public CAgentGameObject {
public:
    TS_AGENT_FIELDS(CAgentScript, CAgentGameObject, "agentscript", TS_NO_FIELDS)
    TS_AGENT_DEFAULTS()
};
