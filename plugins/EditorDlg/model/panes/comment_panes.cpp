#include "model/panes/comment_panes.h"

#include "model/conversation_node.h"

namespace dlg {

std::optional<TextFieldPane::Binding> CCommentsDlg::Bind(bool root,
                                                         const ConversationNode* node) const {
    if (root)
        return Binding{u"Comment", u"Conversation Synopsis Change", u"Conversation Synopsis",
                       kChangeNone};
    if (!node || node->isLink) return std::nullopt;
    return Binding{u"Comment", u"Comments Change", u"Scripting Comments", kChangeComment};
}

std::optional<TextFieldPane::Binding> CLocalizationDlg::Bind(bool root,
                                                             const ConversationNode* node) const {
    if (root || !node || node->isLink) return std::nullopt;
    // The tree may highlight lines with a voice-over comment: redraw the line and its links.
    return Binding{u"VoiceOverComment", u"Voice Over Comment Change", u"Voice Over Comment",
                   kChangeLabel};
}

std::optional<TextFieldPane::Binding> CEditorDlg::Bind(bool root,
                                                       const ConversationNode* node) const {
    if (root || !node || node->isLink) return std::nullopt;
    return Binding{u"EditorComment", u"Comment Change", u"Editor Comment", kChangeLabel};
}

}  // namespace dlg
