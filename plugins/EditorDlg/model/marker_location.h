#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace dlg {

// Where a marker points: the first and last line (TreeIndex), the line property (field number)
// and the first and last character inside that field. A negative part is not given.
struct MarkerLocation {
    std::int32_t startLine = -1;
    std::int32_t endLine = -1;
    std::int32_t field = -1;
    std::int32_t startChar = -1;
    std::int32_t endChar = -1;
    bool operator==(const MarkerLocation&) const = default;
};

// "StartLine=%d&EndLine=%d&Field=%d&StartChar=%d&EndChar=%d", every part written.
std::u16string LocationText(const MarkerLocation& location);
// The form built for navigation: only the parts that are not negative, in the order StartLine,
// StartChar, EndLine, EndChar, Field, joined by "&".
std::u16string NavigationText(const MarkerLocation& location);
// Reads either form back: "Name=number" parts joined by "&", each of the five names at most
// once, in any order; a part left out is -1. False, with `location` untouched, for anything
// else (an empty text or part, an unknown or repeated name, a number that is not a whole
// decimal 32-bit number).
bool ParseMarkerLocation(std::u16string_view text, MarkerLocation& location);

}  // namespace dlg
