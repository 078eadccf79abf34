#include "model/marker_location.h"

#include <array>
#include <limits>

#include "ts/format.h"

namespace dlg {

namespace {

struct Part {
    std::u16string_view name;
    std::int32_t MarkerLocation::*value;
};

// In the order of the full form.
constexpr std::array<Part, 5> kParts = {{{u"StartLine", &MarkerLocation::startLine},
                                         {u"EndLine", &MarkerLocation::endLine},
                                         {u"Field", &MarkerLocation::field},
                                         {u"StartChar", &MarkerLocation::startChar},
                                         {u"EndChar", &MarkerLocation::endChar}}};

// The navigation form's order, as indices into kParts.
constexpr std::array<std::size_t, 5> kNavigationOrder = {0, 3, 1, 4, 2};

bool ParseNumber(std::u16string_view text, std::int32_t& number) {
    bool negative = !text.empty() && text.front() == u'-';
    if (negative) text.remove_prefix(1);
    if (text.empty() || text.size() > 10) return false;
    std::int64_t value = 0;
    for (char16_t c : text) {
        if (c < u'0' || c > u'9') return false;
        value = value * 10 + (c - u'0');
    }
    if (negative) value = -value;
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max())
        return false;
    number = static_cast<std::int32_t>(value);
    return true;
}

}  // namespace

std::u16string LocationText(const MarkerLocation& l) {
    return ts::Format(u"StartLine=%d&EndLine=%d&Field=%d&StartChar=%d&EndChar=%d", l.startLine,
                      l.endLine, l.field, l.startChar, l.endChar);
}

std::u16string NavigationText(const MarkerLocation& location) {
    std::u16string text;
    for (std::size_t i : kNavigationOrder) {
        std::int32_t value = location.*kParts[i].value;
        if (value < 0) continue;
        if (!text.empty()) text += u'&';
        text += kParts[i].name;
        text += ts::Format(u"=%d", value);
    }
    return text;
}

bool ParseMarkerLocation(std::u16string_view text, MarkerLocation& location) {
    if (text.empty()) return false;
    MarkerLocation read;
    std::array<bool, kParts.size()> seen{};
    while (true) {
        std::size_t amp = text.find(u'&');
        std::u16string_view part = text.substr(0, amp);
        std::size_t equals = part.find(u'=');
        if (equals == std::u16string_view::npos) return false;
        std::u16string_view name = part.substr(0, equals);
        std::size_t i = 0;
        while (i < kParts.size() && kParts[i].name != name) ++i;
        if (i == kParts.size() || seen[i] ||
            !ParseNumber(part.substr(equals + 1), read.*kParts[i].value))
            return false;
        seen[i] = true;
        if (amp == std::u16string_view::npos) break;
        text.remove_prefix(amp + 1);
    }
    location = read;
    return true;
}

}  // namespace dlg
