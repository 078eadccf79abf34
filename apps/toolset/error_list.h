#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ts/hostui.h"

namespace toolset {

// One row of the error list: a fault an editor found in one of its resource's lines.
struct ErrorListRow {
    std::u16string resource;  // the editor's display name, "orla_welcome.dlg"
    std::int32_t line = -1;   // the line's number in the editor, -1 for the resource as a whole
    std::u16string message;

    bool operator==(const ErrorListRow&) const = default;
};

// The faults editors publish, as the Error List shows them. An editor always hands over its
// resource's whole list, which replaces what that resource had. Rows are kept sorted by
// resource, then line; the faults of one line stay in the order the editor gave them (the order
// its checks run). Resource names are compared ignoring ASCII case, as the store compares them.
class ErrorList {
public:
    // True when the rows changed.
    bool Replace(std::u16string_view resource, const std::vector<ts::ErrorEntry>& errors);
    bool Remove(std::u16string_view resource) { return Replace(resource, {}); }
    void Clear() { rows_.clear(); }

    const std::vector<ErrorListRow>& Rows() const { return rows_; }
    // The positions in Rows() of one resource's rows; every row for an empty `resource`.
    std::vector<std::size_t> Filtered(std::u16string_view resource) const;
    // The resources that have rows, in row order.
    std::vector<std::u16string> Resources() const;

private:
    std::vector<ErrorListRow> rows_;
};

// Orders resource names as the list does: ASCII letters without regard to case.
bool ResourceNameLess(std::u16string_view a, std::u16string_view b);

}  // namespace toolset
