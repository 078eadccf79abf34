#include "agents/agentstage.h"

// A kind first lets the stage object write its Type of -1, then writes its own kind over it, so
// that a stored object always carries the Type of the kind that created it.

bool CAgentStageCamera::SetDefaults() {
    return Base::SetDefaults() && SetType(kObjectType) && WriteDefaults(Fields());
}

bool CAgentStagePlace::SetDefaults() {
    return Base::SetDefaults() && SetType(kObjectType) && WriteDefaults(Fields());
}
