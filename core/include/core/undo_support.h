#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "core/undo_command.h"

// The conversation editor's depth, and the default of CTsUndoSupport.
inline constexpr std::size_t kTsDefaultUndoDepth = 128;

// The undo stack of one document: its commands, oldest first, the current position (how many of
// them are done; the rest can be redone) and the saved position (the current position at the
// last save, -1 once the saved state can't be reached again, so the document stays modified
// until the next save).
//
// AddCommand, Undo and Redo run between a begin and an end notification, with the commands
// themselves announced before and after they run; the end notification comes when the stack
// holds its new state, so a listener can read the modified state and the labels there. A
// command that fails clears the history (the document no longer matches it) and is reported for
// developers; nothing throws.
class CTsUndoSupportBase {
public:
    explicit CTsUndoSupportBase(std::size_t maxDepth);
    virtual ~CTsUndoSupportBase();
    CTsUndoSupportBase(const CTsUndoSupportBase&) = delete;
    CTsUndoSupportBase& operator=(const CTsUndoSupportBase&) = delete;

    // Records a command, running it first when execute is set (clear when the change is made
    // already, as a paste is). An empty command is dropped with success and no notification. A
    // command the most recent one absorbs is dropped too. False when running it failed (the
    // history is cleared) or when the stack keeps no commands (maximum depth 0).
    bool AddCommand(std::unique_ptr<CTsUndoCommand> command, bool execute);
    // True when done or when there was nothing to do; false when the command failed (the
    // history is then cleared).
    virtual bool Redo();
    virtual bool Undo();

    // Notifications, empty here. Direction is kTsUndoDirectionDo or kTsUndoDirectionUndo; the
    // end flag is true after AddCommand, false after Undo and Redo.
    virtual void OnBeforeCommand(int direction, CTsUndoCommand& command);
    virtual void OnBegin(int direction);
    virtual void OnAfterCommand(int direction, CTsUndoCommand& command);
    virtual void OnEnd(int direction, bool flag);

    std::size_t UndoCount() const { return current_; }
    std::size_t RedoCount() const { return commands_.size() - current_; }
    // 0 is the most recent done command; null out of range.
    CTsUndoCommand* UndoCommandAt(std::size_t i) const;
    // 0 is the next command to redo; null out of range.
    CTsUndoCommand* RedoCommandAt(std::size_t i) const;

    bool IsModifiedSinceSave() const;
    // The host calls it (through the window) once the document is saved.
    void MarkSaved();
    // Destroys every command; the present state becomes the saved one.
    void ClearHistory();
    std::ptrdiff_t SavedPosition() const { return saved_; }
    std::size_t MaxDepth() const { return maxDepth_; }

protected:
    // Whether top takes in the later command: both marked for update, the same non-zero update
    // key, and top's CanMerge and Merge agree. A later command that is not marked is a caller's
    // error, reported as "RHS command must be marked for update".
    static bool Absorbs(CTsUndoCommand& top, CTsUndoCommand& command);

private:
    // After a command failed: every command is destroyed, and since the document may now differ
    // from the saved one in ways no command records, it stays modified until saved.
    void ClearAfterFailure(const char* what, const CTsUndoCommand& command);
    void DestroyFrom(std::size_t position);

    std::vector<std::unique_ptr<CTsUndoCommand>> commands_;
    std::size_t current_ = 0;
    std::ptrdiff_t saved_ = 0;
    std::size_t maxDepth_;
};

// The undo stack of an editor window W (W derives from it). Each notification is passed on to W
// when W has the matching member: UndoBeforeCommand(int, CTsUndoCommand&), UndoBegin(int),
// UndoAfterCommand(int, CTsUndoCommand&), UndoEnd(int, bool). UndoEnd is where W refreshes its
// modified state; W::UndoHistoryChanged() hears when the history is cleared or marked saved
// outside those brackets.
template <class W>
class CTsUndoSupport : public CTsUndoSupportBase {
public:
    explicit CTsUndoSupport(std::size_t maxDepth = kTsDefaultUndoDepth)
        : CTsUndoSupportBase(maxDepth) {}

    // CTsEditorSupport calls it when the editor is attached read-only.
    void ClearUndoHistory() {
        ClearHistory();
        HistoryChanged();
    }
    void MarkUndoSaved() {
        MarkSaved();
        HistoryChanged();
    }

    void OnBeforeCommand(int direction, CTsUndoCommand& command) override {
        if constexpr (requires(W & w) { w.UndoBeforeCommand(direction, command); })
            Self().UndoBeforeCommand(direction, command);
    }
    void OnBegin(int direction) override {
        if constexpr (requires(W & w) { w.UndoBegin(direction); }) Self().UndoBegin(direction);
    }
    void OnAfterCommand(int direction, CTsUndoCommand& command) override {
        if constexpr (requires(W & w) { w.UndoAfterCommand(direction, command); })
            Self().UndoAfterCommand(direction, command);
    }
    void OnEnd(int direction, bool flag) override {
        if constexpr (requires(W & w) { w.UndoEnd(direction, flag); })
            Self().UndoEnd(direction, flag);
    }

private:
    W& Self() { return static_cast<W&>(*this); }
    void HistoryChanged() {
        if constexpr (requires(W & w) { w.UndoHistoryChanged(); }) Self().UndoHistoryChanged();
    }
};
