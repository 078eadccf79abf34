#pragma once

#include <cstdint>

#include "agents/agentgameobject.h"

// A plot: a named set of flags that conditions test and actions set. Conversations refer to a
// flag by its number (-1 meaning none), never by its place in the list.

// Rows: name, kind, flags, display name, category, sub-category, description, editor kind,
// default.
#define TS_PLOT_STATUS_FIELDS(F)                              \
    F(Flag, Int, 2, u"Flag", u"", u"", u"", u"", 0)           \
    F(Name, String, 2, u"Name", u"", u"", u"", u"", u"")

#define TS_PLOT_FIELDS(F) F(StatusList, List, 66, u"", u"", u"", u"", u"", TS_NO_DEFAULT)

// One flag of a plot: its number and its name.
class CAgentPlotStatus : public CAgentBase {
public:
    TS_AGENT_FIELDS(CAgentPlotStatus, CAgentBase, "agentplot", TS_PLOT_STATUS_FIELDS)
    TS_AGENT_DEFAULTS()
};

class CAgentPlot : public CAgentGameObject {
public:
    TS_AGENT_FIELDS(CAgentPlot, CAgentGameObject, "agentplot", TS_PLOT_FIELDS)
    TS_AGENT_DEFAULTS()

    // The first status whose Flag is `flag`; false (with nothing reported) when there is none.
    bool FindStatus(std::int32_t flag, CAgentPlotStatus& status) const;
};
