#include "model/panes/slide_show_dlg.h"

#include "model/conversation_node.h"
#include "ts/format.h"
#include "ts/hoststring.h"
#include "ts/hostui.h"

namespace dlg {

std::optional<TextFieldPane::Binding> CSlideShowDlg::Bind(bool root,
                                                          const ConversationNode* node) const {
    if (root || !node || node->isLink || !node->isNPC) return std::nullopt;
    // The texture lifts the line's length limit: the line is validated again.
    return Binding{u"SlideShowTexture", u"Slide Show Texture Change", u"Slide show texture",
                   kChangeLabel};
}

bool CSlideShowDlg::Browse() {
    if (!Enabled()) return false;
    char16_t* chosen = nullptr;
    if (TsResourceOpenDlg(kPickerTitle, kPickerFilter, &chosen) != S_OK || !chosen) return false;
    std::u16string_view picked(chosen);
    std::size_t dot = picked.rfind(u'.');
    std::u16string_view name = picked.substr(0, dot);
    std::u16string_view type = dot == std::u16string_view::npos ? u"" : picked.substr(dot + 1);
    Text() = type.empty() ? std::u16string(name) : ts::Format(u"%ls.%ls", name, type);
    TsFreeString(chosen);
    // Shown whether or not it could be written, as if typed.
    bool applied = Apply(kTextControl, true);
    Announce();
    return applied;
}

}  // namespace dlg
