#include "agents/agentplot.h"
#include "list_search.h"

bool CAgentPlot::FindStatus(std::int32_t flag, CAgentPlotStatus& status) const {
    static const TsAtom list = TsAddAtom(u"StatusList");
    return ts::agents::FindListElement<CAgentPlotStatus>(*this, list, [flag](const CAgentPlotStatus& s) {
        std::int32_t number = 0;
        return s.GetFlag(number) && number == flag;
    }, status);
}
