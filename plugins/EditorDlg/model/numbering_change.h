#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace dlg {

// What one edit did to the tree's numbering (TreeIndex). Lines that stayed put keep their order,
// so the new number of any of them follows from two lists of ranges: take out `removed` (in the
// numbering before the edit) from the highest down, then put in `inserted` (in the numbering
// after it) from the lowest up. Lines that moved are in both lists; `moved` pairs their ranges,
// so that whatever refers to a moved line can go along with it.
struct NumberingChange {
    struct Range {
        std::int32_t first = 0;
        std::int32_t count = 0;
        bool operator==(const Range&) const = default;
    };
    struct Move {
        std::int32_t from = 0;  // before the edit
        std::int32_t to = 0;    // after it
        std::int32_t count = 0;
        bool operator==(const Move&) const = default;
    };

    std::vector<Range> removed;   // ascending, apart
    std::vector<Range> inserted;  // ascending, apart
    std::vector<Move> moved;      // ascending by `from`

    bool Empty() const { return removed.empty() && inserted.empty(); }
    bool operator==(const NumberingChange&) const = default;

    // Runs of consecutive numbers, from numbers sorted ascending without repeats.
    static std::vector<Range> RangesOf(const std::vector<std::int32_t>& sorted);
    // Runs of lines that moved together (both numbers one up from the previous line), from
    // (before, after) pairs sorted by the number before.
    static std::vector<Move> MovesOf(
        const std::vector<std::pair<std::int32_t, std::int32_t>>& sorted);
};

}  // namespace dlg
