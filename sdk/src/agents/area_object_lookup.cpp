#include "agents/agentarea.h"
#include "list_search.h"

bool CAgentArea::FindObject(std::u16string_view tag, CAgentAreaObject& object) const {
    static const TsAtom list = TsAddAtom(u"ObjectList");
    return ts::agents::FindListElementByTag<CAgentAreaObject>(*this, list, tag, object);
}
