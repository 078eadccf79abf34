#include "core/undo_command.h"

#include <typeinfo>
#include <utility>

#include "core/undo_support.h"

CTsUndoCommand::CTsUndoCommand(std::u16string label) : label_(std::move(label)) {}

bool CTsUndoCommand::Merge(CTsUndoCommand&) {
    return false;
}

bool CTsUndoCommand::CanMerge(const CTsUndoCommand&) const {
    return false;
}

bool CTsUndoCommand::IsEmpty() const {
    return false;
}

bool CTsUndoCommand::DoWithNotify(CTsUndoSupportBase& stack) {
    stack.OnBeforeCommand(kTsUndoDirectionDo, *this);
    bool done = Do(stack);
    stack.OnAfterCommand(kTsUndoDirectionDo, *this);
    return done;
}

bool CTsUndoCommand::UndoWithNotify(CTsUndoSupportBase& stack) {
    stack.OnBeforeCommand(kTsUndoDirectionUndo, *this);
    bool undone = Undo(stack);
    stack.OnAfterCommand(kTsUndoDirectionUndo, *this);
    return undone;
}

const char* CTsUndoCommand::KindName() const {
    return typeid(*this).name();
}
