#include "agents/agentstage.h"
#include "list_search.h"

bool CAgentStage::FindPlace(std::u16string_view tag, CAgentStagePlace& place) const {
    static const TsAtom list = TsAddAtom(u"PlaceList");
    return ts::agents::FindListElementByTag<CAgentRenderObject>(*this, list, tag, place);
}

bool CAgentStage::FindCamera(std::u16string_view tag, CAgentStageCamera& camera) const {
    static const TsAtom list = TsAddAtom(u"CameraList");
    return ts::agents::FindListElementByTag<CAgentRenderObject>(*this, list, tag, camera);
}
