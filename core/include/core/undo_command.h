#pragma once

#include <cstdint>
#include <string>
#include <utility>

class CTsUndoSupportBase;

// Directions the undo stack tells its listeners about.
inline constexpr int kTsUndoDirectionDo = 0;  // do and redo
inline constexpr int kTsUndoDirectionUndo = 1;

// One undoable change of a document. A command is owned by the undo stack once pushed; it owns
// whatever it needs to apply and revert its change. Do and Undo return false when the change
// could not be made; the stack then clears its history, since the document no longer matches it.
//
// Merging: a run of small edits (typing in one field) becomes one step. The stack lets the most
// recent command absorb a new one only while the recent one is marked for update and both carry
// the same non-zero update key; CanMerge and Merge decide whether the two really fit together.
class CTsUndoCommand {
public:
    explicit CTsUndoCommand(std::u16string label);
    virtual ~CTsUndoCommand() = default;
    CTsUndoCommand(const CTsUndoCommand&) = delete;
    CTsUndoCommand& operator=(const CTsUndoCommand&) = delete;

    virtual bool Do(CTsUndoSupportBase& stack) = 0;
    virtual bool Undo(CTsUndoSupportBase& stack) = 0;
    // Takes the later command's change into this one; false when it can't (nothing changed).
    virtual bool Merge(CTsUndoCommand& other);
    virtual bool CanMerge(const CTsUndoCommand& other) const;
    // True when the command would change nothing: the stack drops it instead of keeping it.
    virtual bool IsEmpty() const;
    // Do and Undo between the stack's before- and after-command notifications, so the window can
    // refresh what each command touched (a group's children are announced one by one).
    virtual bool DoWithNotify(CTsUndoSupportBase& stack);
    virtual bool UndoWithNotify(CTsUndoSupportBase& stack);

    // The command's kind for diagnostic reports, e.g. "CUndoCommandMoveNode". Commands should
    // name themselves; the default is the compiler's (mangled) name of the dynamic type.
    virtual const char* KindName() const;

    // The text the host shows in its Edit menu ("Speaker Change").
    const std::u16string& Label() const { return label_; }
    void SetLabel(std::u16string label) { label_ = std::move(label); }
    // 0: the command takes part in no merging.
    std::uint32_t UpdateKey() const { return updateKey_; }
    void SetUpdateKey(std::uint32_t key) { updateKey_ = key; }
    // Only a marked command may absorb later ones; the stack clears the mark once the command is
    // no longer the most recent one, or has been undone.
    bool IsMarkedForUpdate() const { return markedForUpdate_; }
    void SetMarkedForUpdate(bool marked) { markedForUpdate_ = marked; }

private:
    std::u16string label_;
    std::uint32_t updateKey_ = 0;
    bool markedForUpdate_ = false;
};
