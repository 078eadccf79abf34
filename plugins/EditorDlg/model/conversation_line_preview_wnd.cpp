#include "model/conversation_line_preview_wnd.h"

CConversationLinePreviewWnd::CConversationLinePreviewWnd(
    CTsWindowInterface<CConversationLinePreviewWnd>& owner, TsWindowHandle parent)
    : CTsUICommandSourceSupport(std::u16string(kCommandSourceName), u""),
      parent_(parent),
      events_(&owner) {
    SetCaption(u"Conversation Line Preview");
}
