#include "model/text_tags.h"

#include <vector>

#include "ts/text.h"

namespace dlg {

void TextTagSet::Add(std::u16string_view name, bool paired) {
    tags_[ts::AsciiLower(name)] = paired;
}

const bool* TextTagSet::Find(std::u16string_view name) const {
    auto it = tags_.find(ts::AsciiLower(name));
    return it == tags_.end() ? nullptr : &it->second;
}

namespace {

bool IsSpace(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

std::u16string_view Trim(std::u16string_view s) {
    while (!s.empty() && IsSpace(s.front())) s.remove_prefix(1);
    while (!s.empty() && IsSpace(s.back())) s.remove_suffix(1);
    return s;
}

struct Tag {
    std::u16string_view name;
    bool closing;
    bool selfClosing;
};

// "<name attr=...>", "</name>" or "<name/>"; the name ends at a blank, "=" or "/".
Tag ParseTag(std::u16string_view inside) {
    Tag tag{{}, false, false};
    inside = Trim(inside);
    if (!inside.empty() && inside.front() == u'/') {
        tag.closing = true;
        inside = Trim(inside.substr(1));
    }
    if (!inside.empty() && inside.back() == u'/') {
        tag.selfClosing = true;
        inside = Trim(inside.substr(0, inside.size() - 1));
    }
    std::size_t end = 0;
    while (end < inside.size() && !IsSpace(inside[end]) && inside[end] != u'=' &&
           inside[end] != u'/')
        ++end;
    tag.name = inside.substr(0, end);
    return tag;
}

}  // namespace

TagCheck CheckTextTags(std::u16string_view text, const TextTagSet& known) {
    std::vector<std::u16string_view> tags;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'>') return TagCheck::Malformed;
        if (text[i] != u'<') continue;
        std::size_t close = text.find(u'>', i + 1);
        if (close == std::u16string_view::npos) return TagCheck::Malformed;
        tags.push_back(text.substr(i + 1, close - i - 1));
        i = close;
    }

    // Without the game's tag table nothing is known of the tags; the scan above is all we can do.
    if (known.Empty()) return TagCheck::Ok;

    std::vector<std::u16string> open;
    for (auto inside : tags) {
        Tag tag = ParseTag(inside);
        const bool* paired = tag.name.empty() ? nullptr : known.Find(tag.name);
        if (!paired) return TagCheck::Unknown;
        if (tag.closing) {
            if (open.empty() || open.back() != ts::AsciiLower(tag.name)) return TagCheck::Unmatched;
            open.pop_back();
        } else if (*paired && !tag.selfClosing) {
            open.push_back(ts::AsciiLower(tag.name));
        }
    }
    return open.empty() ? TagCheck::Ok : TagCheck::Unmatched;
}

}  // namespace dlg
