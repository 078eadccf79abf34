#include "model/line_markers.h"

#include <algorithm>
#include <limits>

#include "ts/format.h"
#include "ts/report.h"

namespace dlg {

namespace {

constexpr const char* kSource = "LineMarkers";
constexpr const char16_t* kAddLineBug = u"Bug in AddLine, should never get here";
constexpr const char16_t* kDeleteLineError = u"Error while processing DeleteLine";
constexpr const char16_t* kInvalidSelection = u"The selection markers is invalid";
constexpr std::int64_t kLastLine = std::numeric_limits<std::int32_t>::max();

// Negative parts all mean "not given"; the last line defaults to the first.
MarkerLocation Normalized(MarkerLocation location) {
    if (location.endLine < 0) location.endLine = location.startLine;
    for (std::int32_t* part : {&location.field, &location.startChar, &location.endChar})
        if (*part < 0) *part = -1;
    return location;
}

// Ranges ascending, apart, each of at least one line and none below line 0.
bool RangesHold(const std::vector<NumberingChange::Range>& ranges) {
    std::int64_t next = 0;
    for (const auto& r : ranges) {
        if (r.count <= 0 || r.first < next) return false;
        next = std::int64_t(r.first) + r.count;
    }
    return true;
}

// Whether lines first .. first + count - 1 lie inside one of the ranges.
bool InsideOne(const std::vector<NumberingChange::Range>& ranges, std::int64_t first,
               std::int64_t count) {
    auto after = std::upper_bound(
        ranges.begin(), ranges.end(), first,
        [](std::int64_t line, const NumberingChange::Range& r) { return line < r.first; });
    return after != ranges.begin() &&
           first + count <= std::int64_t(std::prev(after)->first) + std::prev(after)->count;
}

// Moves of at least one line, apart from each other on the side `side` names.
template <class Side>
bool MovesApart(std::vector<NumberingChange::Move> moves, Side side) {
    std::sort(moves.begin(), moves.end(),
              [&](const auto& a, const auto& b) { return a.*side < b.*side; });
    std::int64_t next = 0;
    for (const auto& m : moves) {
        if (m.count <= 0 || m.*side < next) return false;
        next = std::int64_t(m.*side) + m.count;
    }
    return true;
}

}  // namespace

bool LineMarkers::IsSound(const MarkerLocation& location) {
    MarkerLocation l = Normalized(location);
    return l.startLine >= 0 && l.endLine >= l.startLine &&
           (l.startChar < 0 || l.endChar < 0 || l.startChar <= l.endChar);
}

bool LineMarkers::Add(const MarkerLocation& location, std::u16string message) {
    if (!IsSound(location)) return false;
    markers_.push_back({Normalized(location), std::move(message)});
    Changed();
    return true;
}

bool LineMarkers::Remove(std::size_t index) {
    if (index >= markers_.size()) return false;
    markers_.erase(markers_.begin() + std::ptrdiff_t(index));
    Changed();
    return true;
}

void LineMarkers::Clear() {
    selection_.reset();
    if (markers_.empty()) return;
    markers_.clear();
    Changed();
}

const LineMarker* LineMarkers::At(std::size_t index) const {
    return index < markers_.size() ? &markers_[index] : nullptr;
}

std::u16string LineMarkers::LocationText(std::size_t index) const {
    const LineMarker* marker = At(index);
    return marker ? dlg::LocationText(marker->location) : std::u16string();
}

std::u16string LineMarkers::DisplayText(std::size_t index) const {
    const LineMarker* marker = At(index);
    if (!marker) return {};
    return ts::Format(u"(%d) : ", marker->location.startLine) + marker->message;
}

std::u16string LineMarkers::Category(std::size_t index) const {
    return At(index) ? std::u16string(kCategory) : std::u16string();
}

std::vector<LineMarkers::Span> LineMarkers::Spans() const {
    std::vector<Span> spans;
    spans.reserve(markers_.size() + 1);
    for (const LineMarker& m : markers_)
        spans.push_back({m.location.startLine, m.location.endLine});
    if (selection_) spans.push_back({selection_->startLine, selection_->endLine});
    return spans;
}

void LineMarkers::InsertInto(std::vector<Span>& spans, std::int64_t first, std::int64_t count,
                             bool before) {
    for (Span& s : spans) {
        if (s.gone || s.carried) continue;
        if (s.start >= first) {
            s.start += count;
            s.end += count;
        } else if (s.end > first || (s.end == first && before)) {
            s.end += count;
        }
    }
}

void LineMarkers::DeleteFrom(std::vector<Span>& spans, std::int64_t first, std::int64_t count) {
    std::int64_t end = first + count;
    for (Span& s : spans) {
        if (s.gone || s.carried) continue;
        if ((s.start >= first && s.start < end) || (s.end >= first && s.end < end)) {
            s.gone = true;
        } else if (s.start >= end) {
            s.start -= count;
            s.end -= count;
        } else if (s.end >= end) {
            s.end -= count;  // around the deleted lines
        }
    }
}

bool LineMarkers::AddLines(std::int32_t first, std::int32_t count, bool before) {
    if (first < 0 || count < 0) return Reject(__LINE__, kAddLineBug);
    std::vector<Span> spans = Spans();
    InsertInto(spans, first, count, before);
    if (!Fit(spans)) return Reject(__LINE__, kAddLineBug);
    Store(spans);
    return true;
}

bool LineMarkers::DeleteLines(std::int32_t first, std::int32_t count) {
    if (first < 0 || count < 0) return Reject(__LINE__, kDeleteLineError);
    std::vector<Span> spans = Spans();
    DeleteFrom(spans, first, count);
    Store(spans);
    return true;
}

bool LineMarkers::MoveLines(std::int32_t from, std::int32_t count, std::int32_t to) {
    NumberingChange change;
    if (count > 0) {
        change.removed = {{from, count}};
        change.inserted = {{to, count}};
        change.moved = {{from, to, count}};
    } else if (count < 0) {
        return Reject(__LINE__, kDeleteLineError);
    }
    return Apply(change);
}

bool LineMarkers::Apply(const NumberingChange& change) {
    // Checked whole before anything changes: the removals (and where moves come from) in the
    // numbering before, the insertions (and where moves go) in the numbering after.
    bool removalsHold =
        RangesHold(change.removed) && MovesApart(change.moved, &NumberingChange::Move::from) &&
        std::all_of(change.moved.begin(), change.moved.end(),
                    [&](const auto& m) { return InsideOne(change.removed, m.from, m.count); });
    bool insertionsHold =
        RangesHold(change.inserted) && MovesApart(change.moved, &NumberingChange::Move::to) &&
        std::all_of(change.moved.begin(), change.moved.end(),
                    [&](const auto& m) { return InsideOne(change.inserted, m.to, m.count); });
    if (!removalsHold || !insertionsHold) {
        Reject(__LINE__, removalsHold ? kAddLineBug : kDeleteLineError);
        Clear();
        return false;
    }

    std::vector<Span> spans = Spans();
    // Spans wholly inside a moved run go with it; the rest follow the ranges.
    std::vector<std::int64_t> carry(spans.size(), 0);
    for (std::size_t i = 0; i < spans.size(); ++i) {
        for (const auto& m : change.moved) {
            if (spans[i].start >= m.from && spans[i].end < std::int64_t(m.from) + m.count) {
                spans[i].carried = true;
                carry[i] = std::int64_t(m.to) - m.from;
                break;
            }
        }
    }
    for (auto r = change.removed.rbegin(); r != change.removed.rend(); ++r)
        DeleteFrom(spans, r->first, r->count);
    for (const auto& r : change.inserted) InsertInto(spans, r.first, r.count, true);
    for (std::size_t i = 0; i < spans.size(); ++i) {
        if (!spans[i].carried) continue;
        spans[i].start += carry[i];
        spans[i].end += carry[i];
        spans[i].carried = false;
    }
    if (!Fit(spans)) {
        Reject(__LINE__, kAddLineBug);
        Clear();
        return false;
    }
    Store(spans);
    return true;
}

bool LineMarkers::Fit(const std::vector<Span>& spans) {
    return std::all_of(spans.begin(), spans.end(), [](const Span& s) {
        return s.gone || (s.start >= 0 && s.end >= s.start && s.end <= kLastLine);
    });
}

void LineMarkers::Store(const std::vector<Span>& spans) {
    bool changed = false;
    std::vector<LineMarker> kept;
    kept.reserve(markers_.size());
    for (std::size_t i = 0; i < markers_.size(); ++i) {
        const Span& s = spans[i];
        LineMarker& marker = markers_[i];
        if (s.gone) {
            changed = true;
            continue;
        }
        changed =
            changed || s.start != marker.location.startLine || s.end != marker.location.endLine;
        marker.location.startLine = static_cast<std::int32_t>(s.start);
        marker.location.endLine = static_cast<std::int32_t>(s.end);
        kept.push_back(std::move(marker));
    }
    markers_ = std::move(kept);
    if (selection_) {
        const Span& s = spans.back();
        if (s.gone) {
            selection_.reset();
        } else {
            selection_->startLine = static_cast<std::int32_t>(s.start);
            selection_->endLine = static_cast<std::int32_t>(s.end);
        }
    }
    if (changed) Changed();
}

bool LineMarkers::Select(const MarkerLocation& location, std::int32_t lineCount) {
    MarkerLocation l = Normalized(location);
    if (!IsSound(l) || l.endLine >= lineCount) return Reject(__LINE__, kInvalidSelection);
    selection_ = l;
    return true;
}

bool LineMarkers::Select(std::u16string_view locationText, std::int32_t lineCount) {
    MarkerLocation location;
    if (!ParseMarkerLocation(locationText, location)) return Reject(__LINE__, kInvalidSelection);
    return Select(location, lineCount);
}

bool LineMarkers::Reject(int line, const char16_t* message) {
    Report(ReportLevel::Assert, kSource, line, message);
    return false;
}

void LineMarkers::Changed() {
    if (listener_) listener_();
}

}  // namespace dlg
