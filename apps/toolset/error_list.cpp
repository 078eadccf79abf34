#include "error_list.h"

#include <algorithm>

#include "ts/text.h"

namespace toolset {

namespace {

char16_t Folded(char16_t c) {
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c - u'A' + u'a') : c;
}

}  // namespace

bool ResourceNameLess(std::u16string_view a, std::u16string_view b) {
    return std::lexicographical_compare(
        a.begin(), a.end(), b.begin(), b.end(),
        [](char16_t x, char16_t y) { return Folded(x) < Folded(y); });
}

bool ErrorList::Replace(std::u16string_view resource, const std::vector<ts::ErrorEntry>& errors) {
    auto byResource = [](const ErrorListRow& row, std::u16string_view name) {
        return ResourceNameLess(row.resource, name);
    };
    auto first = std::lower_bound(rows_.begin(), rows_.end(), resource, byResource);
    auto last = first;
    while (last != rows_.end() && ts::EqualsIgnoreAsciiCase(last->resource, resource)) ++last;

    std::vector<ErrorListRow> rows;
    rows.reserve(errors.size());
    for (const ts::ErrorEntry& error : errors)
        rows.push_back({std::u16string(resource), error.line, error.message});
    // Editors list their faults in line order already; a stable sort keeps each line's in the
    // order they came.
    std::stable_sort(rows.begin(), rows.end(),
                     [](const ErrorListRow& a, const ErrorListRow& b) { return a.line < b.line; });
    if (std::equal(first, last, rows.begin(), rows.end())) return false;
    auto at = rows_.erase(first, last);
    rows_.insert(at, std::make_move_iterator(rows.begin()), std::make_move_iterator(rows.end()));
    return true;
}

std::vector<std::size_t> ErrorList::Filtered(std::u16string_view resource) const {
    std::vector<std::size_t> shown;
    for (std::size_t i = 0; i < rows_.size(); ++i)
        if (resource.empty() || ts::EqualsIgnoreAsciiCase(rows_[i].resource, resource))
            shown.push_back(i);
    return shown;
}

std::vector<std::u16string> ErrorList::Resources() const {
    std::vector<std::u16string> names;
    for (const ErrorListRow& row : rows_)
        if (names.empty() || !ts::EqualsIgnoreAsciiCase(names.back(), row.resource))
            names.push_back(row.resource);
    return names;
}

}  // namespace toolset
