#include "model/numbering_change.h"

namespace dlg {

std::vector<NumberingChange::Range> NumberingChange::RangesOf(
    const std::vector<std::int32_t>& sorted) {
    std::vector<Range> ranges;
    for (std::int32_t number : sorted) {
        if (!ranges.empty() && ranges.back().first + ranges.back().count == number)
            ++ranges.back().count;
        else
            ranges.push_back({number, 1});
    }
    return ranges;
}

std::vector<NumberingChange::Move> NumberingChange::MovesOf(
    const std::vector<std::pair<std::int32_t, std::int32_t>>& sorted) {
    std::vector<Move> moves;
    for (auto [before, after] : sorted) {
        if (!moves.empty() && moves.back().from + moves.back().count == before &&
            moves.back().to + moves.back().count == after)
            ++moves.back().count;
        else
            moves.push_back({before, after, 1});
    }
    return moves;
}

}  // namespace dlg
