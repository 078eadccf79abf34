#include "model/validation/replacement_check.h"

#include <charconv>
#include <string>

#include "model/henchman_tags.h"
#include "model/line_properties.h"
#include "model/validation/reference_lists.h"
#include "ts/format.h"
#include "ts/text.h"

namespace dlg {

namespace {

template <class List>
bool HasText(const List* list, std::u16string_view text) {
    if (!list) return false;
    for (const auto& entry : *list)
        if (ts::EqualsIgnoreAsciiCase(entry.first, text)) return true;
    return false;
}

bool ParseInt(std::u16string_view text, std::int32_t& value) {
    std::string narrow(text.begin(), text.end());
    auto [end, error] = std::from_chars(narrow.data(), narrow.data() + narrow.size(), value);
    return error == std::errc() && end == narrow.data() + narrow.size() && !narrow.empty();
}

}  // namespace

bool ReplacementCheck::IsKnownTag(std::u16string_view tag) {
    for (std::u16string_view reserved : {u"OWNER", u"PLAYER", u"PREVSPEAKER"})
        if (ts::EqualsIgnoreAsciiCase(tag, reserved)) return true;
    for (const std::u16string& known : CreatureAndHenchmanTags(cache_, maxHenchmen_))
        if (ts::EqualsIgnoreAsciiCase(known, tag)) return true;
    return false;
}

bool ReplacementCheck::IsKnownPlot(std::u16string_view plot) {
    std::u16string name = ResolveResourceName(plot, u"plo");
    return !name.empty() && HasText(cache_.TextPairs(CDbResRefCacheKey(u"plo")), name);
}

bool ReplacementCheck::IsKnownFlag(std::u16string_view plot, std::u16string_view flag) {
    std::u16string name = ResolveResourceName(plot, u"plo");
    if (name.empty()) return false;
    const TsNumberedTexts* flags = cache_.NumberedTexts(CPlotFlagsCacheKey(std::move(name)));
    if (HasText(flags, flag)) return true;
    std::int32_t number = 0;
    if (!flags || !ParseInt(flag, number)) return false;
    for (const auto& entry : *flags)
        if (entry.second == number) return true;
    return false;
}

bool ReplacementCheck::IsInTable(std::u16string_view table, std::u16string_view column,
                                 std::u16string_view value) {
    return HasText(
        cache_.NumberedTexts(C2daCacheKey(std::u16string(table), std::u16string(column))), value);
}

std::u16string ReplacementCheck::Check(int property, std::u16string_view value,
                                       const CAgentConversationLine& line,
                                       const CAgentConversation& root) {
    std::u16string plot;
    switch (property) {
        case kPropSpeaker:
            if (value.empty()) return {};  // the conversation's default speaker
            [[fallthrough]];
        case kPropPreviousSpeaker:
        case kPropListener:
            return IsKnownTag(value) ? std::u16string()
                                     : ts::Format(u"\"%s\" isn't a known tag.", value);
        case kPropConditionPlot:
        case kPropActionPlot:
        case kPropEndPlot:
            return IsKnownPlot(value) ? std::u16string()
                                      : ts::Format(u"\"%s\" isn't a known plot.", value);
        case kPropConditionPlotFlag:
            line.GetConditionPlotURI(plot);
            break;
        case kPropActionPlotFlag:
            line.GetActionPlotURI(plot);
            break;
        case kPropEndPlotFlag:
            root.GetEndConversationPlotURI(plot);
            break;
        case kPropText:
            return TextTagsAreValid(value, knownTags_) ? std::u16string()
                                                       : std::u16string(kMalformedTagsMessage);
        case kPropIcon:
            return IsInTable(u"toolset_dlgicons", u"Label", value)
                       ? std::u16string()
                       : ts::Format(u"\"%s\" isn't a known skill/icon.", value);
        case kPropLanguage:
            return IsInTable(u"toolset_dlglang", u"LanguageName", value)
                       ? std::u16string()
                       : ts::Format(u"\"%s\" isn't a known language.", value);
        case kPropEmotion:
            return IsInTable(u"toolset_dlgemotions", u"Label", value)
                       ? std::u16string()
                       : ts::Format(u"\"%s\" isn't a known emotion.", value);
        default:
            return {};
    }
    return IsKnownFlag(plot, value) ? std::u16string()
                                    : ts::Format(u"\"%s\" isn't a known plot flag.", value);
}

}  // namespace dlg
