#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/conversation_edits.h"
#include "model/marker_location.h"
#include "model/numbering_change.h"

namespace dlg {

// One marker: where it points, and its message (the display text after its line number).
struct LineMarker {
    MarkerLocation location;
    std::u16string message;
};

// The editor's markers, kept by line number (TreeIndex), as the host's error list shows them
// and leads the user back to them; besides, the selection that find and replace works on. As an
// observer of the conversation's edits it follows every structural change, so that each marker
// keeps pointing at the lines it was made for:
//  - n lines inserted at F move every marker that starts at or after F by n; a marker that starts
//    before F and ends after it grows by n, and one that ends exactly at F grows only when the
//    lines go in before line F (the edits always insert before: line F is pushed down);
//  - deleting lines removes every marker with a first or last line among them and moves those
//    behind back; a marker around them shrinks;
//  - a moved subtree takes along the markers that lie wholly inside it; a marker with only one
//    end inside loses that end's line, like a deletion.
// The selection follows the same rules (it is cleared when its line goes). Every change of the
// markers themselves is told to the change listener; the selection is not published, so its
// changes are not.
//
// The store checks what it is asked to do before it changes anything. A refused change of the
// numbering is reported ("Bug in AddLine, should never get here", "Error while processing
// DeleteLine"); when it came from an edit, the markers cannot follow that edit and are dropped,
// rather than lead the user to the wrong lines.
class LineMarkers : public ConversationEditObserver {
public:
    static constexpr std::u16string_view kCategory = u"Info";

    LineMarkers() = default;
    LineMarkers(const LineMarkers&) = delete;
    LineMarkers& operator=(const LineMarkers&) = delete;

    void SetChangeListener(std::function<void()> listener) { listener_ = std::move(listener); }

    // Adds a marker after the others. An end line of -1 means the start line. False, with nothing
    // added, for a location that is not sound (see IsSound).
    bool Add(const MarkerLocation& location, std::u16string message);
    // False for an index out of range.
    bool Remove(std::size_t index);
    // Every marker and the selection, for a new conversation.
    void Clear();

    std::size_t Count() const { return markers_.size(); }
    // Null for an index out of range.
    const LineMarker* At(std::size_t index) const;
    // What the host shows of marker `index`; empty texts out of range.
    std::u16string LocationText(std::size_t index) const;
    // "(%d) : " with the marker's first line, then its message.
    std::u16string DisplayText(std::size_t index) const;
    std::u16string Category(std::size_t index) const;

    // `count` lines inserted at line `first`; `before` when they go in before the line numbered
    // `first` (see above). False, with nothing changed, for a negative line or count.
    bool AddLines(std::int32_t first, std::int32_t count, bool before);
    // Lines first .. first + count - 1 deleted. False, with nothing changed, for a negative line
    // or count.
    bool DeleteLines(std::int32_t first, std::int32_t count);
    // A subtree of `count` lines at `from` moved to stand at `to` (numbered after the move).
    bool MoveLines(std::int32_t from, std::int32_t count, std::int32_t to);
    // Everything an edit did to the numbering, at once. False when the change does not hold
    // together; the markers are then dropped.
    bool Apply(const NumberingChange& change);
    void Renumbered(const NumberingChange& change) override { Apply(change); }

    // Takes a location as the selection when it is sound and its lines are below `lineCount`;
    // otherwise reports "The selection markers is invalid" and keeps the selection it had. The
    // text form accepts what ParseMarkerLocation reads.
    bool Select(const MarkerLocation& location, std::int32_t lineCount);
    bool Select(std::u16string_view locationText, std::int32_t lineCount);
    const std::optional<MarkerLocation>& Selection() const { return selection_; }

    // A first line that is not negative, a last line (-1 for the first) not before it, and
    // characters, when both are given, in order.
    static bool IsSound(const MarkerLocation& location);

private:
    // The first and last line of every marker, then of the selection, for the arithmetic.
    struct Span {
        std::int64_t start;
        std::int64_t end;
        bool gone = false;     // a line of it was deleted
        bool carried = false;  // goes with a moved subtree, outside the range arithmetic
    };
    std::vector<Span> Spans() const;
    static void InsertInto(std::vector<Span>& spans, std::int64_t first, std::int64_t count,
                           bool before);
    static void DeleteFrom(std::vector<Span>& spans, std::int64_t first, std::int64_t count);
    // Every span that is left names lines a TreeIndex can hold.
    static bool Fit(const std::vector<Span>& spans);
    // Writes the spans back: gone markers leave, the others take their new lines. Tells the
    // listener when a marker changed.
    void Store(const std::vector<Span>& spans);
    bool Reject(int line, const char16_t* message);
    void Changed();

    std::vector<LineMarker> markers_;
    std::optional<MarkerLocation> selection_;
    std::function<void()> listener_;
};

}  // namespace dlg
