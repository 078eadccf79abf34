#include "model/panes/line_panes.h"

#include "model/panes/comment_panes.h"
#include "model/panes/pane_tabs.h"
#include "model/panes/root_dlg.h"
#include "model/panes/slide_show_dlg.h"
#include "model/panes/text_dlg.h"

namespace dlg {

std::unique_ptr<LinePane> MakeLinePane(CConversationEditorWnd& window, int tab) {
    switch (tab) {
        case kTabDialogue:
            return std::make_unique<CTextDlg>(window);
        case kTabGlobalSettings:
            return std::make_unique<CRootDlg>(window);
        case kTabLocalization:
            return std::make_unique<CLocalizationDlg>(window);
        case kTabEditing:
            return std::make_unique<CEditorDlg>(window);
        case kTabSlideShow:
            return std::make_unique<CSlideShowDlg>(window);
        default:
            return nullptr;
    }
}

std::unique_ptr<LinePane> MakeCommentsPane(CConversationEditorWnd& window) {
    return std::make_unique<CCommentsDlg>(window);
}

}  // namespace dlg
