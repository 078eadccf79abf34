#include "command_text.h"

#include <vector>

namespace toolset {

namespace {

bool IsUpper(char16_t c) {
    return c >= u'A' && c <= u'Z';
}
bool IsLower(char16_t c) {
    return c >= u'a' && c <= u'z';
}

// "CollapseBranch" -> "Collapse Branch"; runs of capitals stay together ("NPC", "VO", "FaceFX").
std::u16string SpaceWords(std::u16string_view word) {
    std::u16string out;
    for (std::size_t i = 0; i < word.size(); ++i) {
        char16_t c = word[i];
        bool startsWord = i > 0 && IsUpper(c) &&
                          (IsLower(word[i - 1]) ||
                           (IsUpper(word[i - 1]) && i + 1 < word.size() && IsLower(word[i + 1])));
        if (startsWord) out += u' ';
        out += c;
    }
    return out;
}

}  // namespace

std::u16string CommandText(std::u16string_view name) {
    std::vector<std::u16string_view> parts;
    for (std::size_t start = 0; start <= name.size();) {
        std::size_t dot = name.find(u'.', start);
        if (dot == std::u16string_view::npos) dot = name.size();
        if (dot > start) parts.push_back(name.substr(start, dot - start));
        start = dot + 1;
    }
    // The first part names the menu ("Edit", "View", "Tools"), the next often the editor.
    std::size_t first = parts.size() > 1 ? 1 : 0;
    if (first < parts.size() - 1 && parts[first] == u"DialogEditor") ++first;
    std::u16string text;
    for (std::size_t i = first; i < parts.size(); ++i) {
        if (!text.empty()) text += u' ';
        text += SpaceWords(parts[i]);
    }
    return text;
}

}  // namespace toolset
