#include "model/panes/pane_tags.h"

#include "model/conversation_editor_wnd.h"
#include "model/dlg_editor_settings.h"
#include "model/henchman_tags.h"
#include "model/line_properties.h"
#include "model/validation/replacement_check.h"
#include "ts/format.h"
#include "ts/hostui.h"
#include "ts/text.h"

namespace dlg {

std::u16string NormalTag(std::u16string_view tag, bool listener) {
    for (std::u16string_view keyword : {u"OWNER", u"PLAYER", u"PREVSPEAKER"}) {
        if (keyword == u"PREVSPEAKER" && !listener) continue;
        if (ts::EqualsIgnoreAsciiCase(tag, keyword)) return std::u16string(keyword);
    }
    return ts::AsciiLower(tag);
}

std::optional<std::u16string> TagToWrite(CConversationEditorWnd& window, CValueCache& cache,
                                         std::u16string_view typed, std::u16string_view stored,
                                         bool listener, bool messages) {
    std::u16string value(typed == kDefaultTag ? std::u16string_view() : typed);
    if (value == stored) return std::nullopt;
    if (value.empty()) return value;
    ReplacementCheck check(window.KnownTags(), TheDlgEditorSettings().MaxHenchmen, cache);
    if (!check.IsKnownTag(value)) {
        if (messages) TsMessageBox(ts::Format(kInvalidTag, value), u"", MB_OK | MB_ICONERROR);
        return std::nullopt;
    }
    value = NormalTag(value, listener);
    if (value == stored) return std::nullopt;
    return value;
}

std::vector<std::u16string> TagChoices(CValueCache& cache, bool listener) {
    std::vector<std::u16string> choices{std::u16string(kDefaultTag), u"OWNER"};
    if (listener) {
        choices.emplace_back(u"PLAYER");
        choices.emplace_back(u"PREVSPEAKER");
    }
    std::vector<std::u16string> tags =
        CreatureAndHenchmanTags(cache, TheDlgEditorSettings().MaxHenchmen);
    choices.insert(choices.end(), tags.begin(), tags.end());
    return choices;
}

}  // namespace dlg
