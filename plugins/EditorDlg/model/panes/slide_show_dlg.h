#pragma once

#include <string_view>

#include "model/panes/text_field_pane.h"

namespace dlg {

// The "Slide Show" tab: the texture an NPC line (not a link) shows in a slide-show
// presentation, typed or picked from the module's resources.
class CSlideShowDlg : public TextFieldPane {
public:
    static constexpr std::u16string_view kPickerTitle = u"Select a Texture";
    static constexpr std::u16string_view kPickerFilter = u"TextureFilter";

    using TextFieldPane::TextFieldPane;

    // Lets the user pick a texture; the pick is shown as "NAME.TYPE" and applied. False when
    // the user cancelled or nothing changed.
    bool Browse();

protected:
    std::optional<Binding> Bind(bool root, const ConversationNode* node) const override;
};

}  // namespace dlg
