#include "core/resource_id.h"

#include "ts/text.h"

TsResourceId TsResourceId::Parse(std::u16string_view text) {
    TsResourceId id;
    std::size_t slash = text.find_last_of(u"/\\");
    if (slash != std::u16string_view::npos) {
        id.folder = std::u16string(text.substr(0, slash));
        text.remove_prefix(slash + 1);
    }
    // A leading dot is part of the name (".hidden"), not an empty name with a type.
    std::size_t dot = text.rfind(u'.');
    if (dot != std::u16string_view::npos && dot > 0) {
        id.type = ts::AsciiLower(text.substr(dot + 1));
        text = text.substr(0, dot);
    }
    id.name = std::u16string(text);
    return id;
}

std::u16string TsResourceId::FileName() const {
    return type.empty() ? name : name + u"." + type;
}
