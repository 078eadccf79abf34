#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ts/result.h"

struct ITsUndoRedo;

namespace toolset {

// What an editor's undo stack holds, as the Edit menu and the history dock show it.
struct UndoHistory {
    std::vector<std::u16string> done;      // oldest first; the last is the next to undo
    std::vector<std::u16string> redoable;  // the next to redo first

    bool operator==(const UndoHistory&) const = default;
};

// Reads the stack's labels; false when the editor keeps no undo stack (it answers E_NOTIMPL, or
// its window is gone). A label the editor cannot give reads as empty.
bool ReadUndoHistory(ITsUndoRedo& undo, UndoHistory& history);

// One row of the history list. Row 0 is the state before the oldest recorded command; row i the
// state after the i-th command, so the current row is the number of commands done.
struct UndoHistoryRow {
    enum class State { Done, Current, Redoable };
    std::u16string text;
    State state;

    bool operator==(const UndoHistoryRow&) const = default;
};
inline constexpr char16_t kUndoHistoryStartText[] = u"(start of history)";
std::vector<UndoHistoryRow> UndoHistoryRows(const UndoHistory& history);
// How many commands lead from the current state to `row`: negative to undo, positive to redo.
int StepsToRow(const UndoHistory& history, int row);

// "&Undo Insert Line": the verb with the label of the command it would run (an "&" in the label
// doubled so that it shows rather than marking a mnemonic); the verb alone for no label.
std::u16string UndoMenuText(std::u16string_view verb, std::u16string_view label);

// The outcome of walking the history by several commands.
struct UndoWalk {
    HRESULT result = S_OK;  // S_OK: every step ran; S_FALSE: the stack ran out; else the failure
    int stepsTaken = 0;     // commands undone or redone before it stopped
    std::u16string failed;  // the label of the command that failed
};
// Undoes (`steps` < 0) or redoes (> 0) that many commands one by one, stopping at the first
// that does not run.
UndoWalk WalkUndoHistory(ITsUndoRedo& undo, int steps);
// The log window's line for a walk that failed, naming the resource and the command; empty when
// nothing failed. E_FAIL means the editor threw its history away, which the user must know: the
// document then stays modified until it is saved.
std::u16string UndoFailureMessage(std::u16string_view resource, bool undoing, const UndoWalk& walk);

}  // namespace toolset
