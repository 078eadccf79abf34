#include "model/validation/text_normal_form.h"

namespace dlg {

namespace {

bool IsSpace(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

}  // namespace

std::u16string TextNormalForm(std::u16string_view text) {
    std::u16string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == u'<') {
            std::size_t close = text.find(u'>', i + 1);
            if (close != std::u16string_view::npos) {
                i = close + 1;
                // A tag glued to a word still separates it from what came before.
                if (i < text.size() && text[i] != u' ') out.push_back(u' ');
                continue;
            }
        }
        if (text[i] == u'-' && i + 1 < text.size() && text[i + 1] == u'-') {
            out.append(u"  ");
            i += 2;
            continue;
        }
        out.push_back(text[i++]);
    }
    std::size_t first = 0, last = out.size();
    while (first < last && IsSpace(out[first])) ++first;
    while (last > first && IsSpace(out[last - 1])) --last;
    return out.substr(first, last - first);
}

std::size_t NormalFormLength(std::u16string_view text) {
    std::u16string normal = TextNormalForm(text);
    std::size_t length = 0;
    for (char16_t c : normal)
        if (c < 0xDC00 || c > 0xDFFF)
            ++length;  // low surrogates finish a character already counted
    return length;
}

}  // namespace dlg
