#include "undo_history.h"

#include "ts/format.h"
#include "ts/hoststring.h"
#include "ts/undoredo.h"

namespace toolset {

namespace {

using LabelGetter = HRESULT (ITsUndoRedo::*)(std::uint32_t, char16_t**);

std::u16string LabelOf(ITsUndoRedo& undo, LabelGetter get, std::uint32_t index) {
    CTsHostString label;
    if (FAILED((undo.*get)(index, label.Put()))) return {};
    return std::u16string(label.View());
}

}  // namespace

bool ReadUndoHistory(ITsUndoRedo& undo, UndoHistory& history) {
    history = {};
    std::uint32_t undoCount = 0, redoCount = 0;
    if (FAILED(undo.GetUndoCount(&undoCount)) || FAILED(undo.GetRedoCount(&redoCount)))
        return false;
    // Index 0 is the most recent done command, so the done list is read backwards.
    history.done.reserve(undoCount);
    for (std::uint32_t i = undoCount; i-- > 0;)
        history.done.push_back(LabelOf(undo, &ITsUndoRedo::GetUndoLabel, i));
    history.redoable.reserve(redoCount);
    for (std::uint32_t i = 0; i < redoCount; ++i)
        history.redoable.push_back(LabelOf(undo, &ITsUndoRedo::GetRedoLabel, i));
    return true;
}

std::vector<UndoHistoryRow> UndoHistoryRows(const UndoHistory& history) {
    using State = UndoHistoryRow::State;
    std::vector<UndoHistoryRow> rows;
    rows.reserve(1 + history.done.size() + history.redoable.size());
    rows.push_back({kUndoHistoryStartText, history.done.empty() ? State::Current : State::Done});
    for (std::size_t i = 0; i < history.done.size(); ++i)
        rows.push_back(
            {history.done[i], i + 1 == history.done.size() ? State::Current : State::Done});
    for (const auto& label : history.redoable) rows.push_back({label, State::Redoable});
    return rows;
}

int StepsToRow(const UndoHistory& history, int row) {
    return row - static_cast<int>(history.done.size());
}

std::u16string UndoMenuText(std::u16string_view verb, std::u16string_view label) {
    std::u16string text(verb);
    if (label.empty()) return text;
    text += u' ';
    for (char16_t c : label) {
        if (c == u'&') text += u'&';
        text += c;
    }
    return text;
}

UndoWalk WalkUndoHistory(ITsUndoRedo& undo, int steps) {
    UndoWalk walk;
    bool undoing = steps < 0;
    for (int left = undoing ? -steps : steps; left > 0; --left) {
        // The label is read first: after a failure the editor has no history left to ask.
        std::u16string label =
            LabelOf(undo, undoing ? &ITsUndoRedo::GetUndoLabel : &ITsUndoRedo::GetRedoLabel, 0);
        HRESULT r = undoing ? undo.Undo() : undo.Redo();
        if (r != S_OK) {
            walk.result = r;
            if (FAILED(r)) walk.failed = std::move(label);
            return walk;
        }
        ++walk.stepsTaken;
    }
    return walk;
}

std::u16string UndoFailureMessage(std::u16string_view resource, bool undoing,
                                  const UndoWalk& walk) {
    if (!FAILED(walk.result)) return {};
    std::u16string command =
        walk.failed.empty() ? std::u16string(u"the last command") : u"\"" + walk.failed + u"\"";
    const char16_t* verb = undoing ? u"Undo" : u"Redo";
    if (walk.result == E_FAIL)
        return ts::Format(
            u"%ls of %ls failed in %ls. The editor has cleared its undo history, so nothing before "
            u"this point can be undone or redone; the document stays marked modified until it is "
            u"saved. Check it before saving.",
            verb, command, resource);
    return ts::Format(u"%ls of %ls in %ls could not be run (error 0x%08X).", verb, command,
                      resource, static_cast<std::uint32_t>(walk.result));
}

}  // namespace toolset
