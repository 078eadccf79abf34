#include "model/panes/line_panes.h"

#include "model/panes/pane_tabs.h"
#include "model/panes/root_dlg.h"
#include "model/panes/text_dlg.h"

namespace dlg {

std::unique_ptr<LinePane> MakeLinePane(CConversationEditorWnd& window, int tab) {
    switch (tab) {
        case kTabDialogue:
            return std::make_unique<CTextDlg>(window);
        case kTabGlobalSettings:
            return std::make_unique<CRootDlg>(window);
        default:
            return nullptr;
    }
}

}  // namespace dlg
