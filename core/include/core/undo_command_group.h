#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "core/undo_command.h"

// Several commands that make one undo step ("Text Change" sets the text and its three flags).
// Do runs the children first to last, Undo last to first. When a child fails part way, the
// children already run are turned back in reverse order before the failure is returned, so a
// failing group leaves the document as it found it.
class CTsUndoCommandGroup : public CTsUndoCommand {
public:
    using CTsUndoCommand::CTsUndoCommand;

    // A null child is reported and not added.
    void Add(std::unique_ptr<CTsUndoCommand> child);
    std::size_t Count() const { return children_.size(); }
    // i must be below Count().
    CTsUndoCommand& Child(std::size_t i) { return *children_[i]; }
    const CTsUndoCommand& Child(std::size_t i) const { return *children_[i]; }

    bool Do(CTsUndoSupportBase& stack) override;
    bool Undo(CTsUndoSupportBase& stack) override;
    // The other is a group with as many children, and each child here can merge with a child
    // of its own there (a one-to-one pairing; the children's order does not matter).
    bool CanMerge(const CTsUndoCommand& other) const override;
    // Merges each child with its partner of that pairing.
    bool Merge(CTsUndoCommand& other) override;
    // A group without children.
    bool IsEmpty() const override;
    const char* KindName() const override;

private:
    // For each child here, the index of its partner among the other group's children; none
    // when no complete pairing exists.
    std::optional<std::vector<std::size_t>> Pairing(const CTsUndoCommandGroup& other) const;

    std::vector<std::unique_ptr<CTsUndoCommand>> children_;
};
