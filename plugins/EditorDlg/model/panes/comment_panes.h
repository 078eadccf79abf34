#pragma once

#include "model/panes/text_field_pane.h"

namespace dlg {

// The comments pane: the conversation's synopsis on the root, a line's scripting comment on a
// line; a link shows nothing editable (its comment belongs to the line it shows).
class CCommentsDlg : public TextFieldPane {
public:
    using TextFieldPane::TextFieldPane;

protected:
    std::optional<Binding> Bind(bool root, const ConversationNode* node) const override;
};

// The "Localization" tab: the comment for the voice-over actor of a line (not of a link).
class CLocalizationDlg : public TextFieldPane {
public:
    using TextFieldPane::TextFieldPane;

protected:
    std::optional<Binding> Bind(bool root, const ConversationNode* node) const override;
};

// The "Editing" tab: the writers' own comment on a line (not on a link).
class CEditorDlg : public TextFieldPane {
public:
    using TextFieldPane::TextFieldPane;

protected:
    std::optional<Binding> Bind(bool root, const ConversationNode* node) const override;
};

}  // namespace dlg
