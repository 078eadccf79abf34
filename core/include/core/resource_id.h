#pragma once

#include <string>
#include <string_view>

// The identity of an edited resource, parsed from the name the host attaches an editor with:
// "intro_talk.dlg", possibly inside a folder ("act1/intro_talk.dlg", either slash).
struct TsResourceId {
    std::u16string folder;  // without the trailing slash; empty for none
    std::u16string name;    // "intro_talk"
    std::u16string type;    // "dlg", lower case; empty when the name has no extension

    static TsResourceId Parse(std::u16string_view text);

    bool IsValid() const { return !name.empty(); }
    // "intro_talk.dlg": the name as the user knows it.
    std::u16string FileName() const;

    friend bool operator==(const TsResourceId&, const TsResourceId&) = default;
};
