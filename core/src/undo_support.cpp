#include "core/undo_support.h"

#include <utility>

#include "ts/format.h"
#include "ts/report.h"

CTsUndoSupportBase::CTsUndoSupportBase(std::size_t maxDepth) : maxDepth_(maxDepth) {}

CTsUndoSupportBase::~CTsUndoSupportBase() {
    DestroyFrom(0);
}

bool CTsUndoSupportBase::AddCommand(std::unique_ptr<CTsUndoCommand> command, bool execute) {
    if (!command) {
        Report(ReportLevel::Assert, "toolsmfcimpls", __LINE__,
               u"A null command cannot be added to the undo stack");
        return false;
    }
    if (command->IsEmpty()) return true;

    // The end notification is sent once the stack holds its new state, whichever way this ends.
    OnBegin(kTsUndoDirectionDo);
    auto finish = [this](bool result) {
        OnEnd(kTsUndoDirectionDo, true);
        return result;
    };
    if (execute && !command->DoWithNotify(*this)) {
        ClearAfterFailure("Doing", *command);
        return finish(false);
    }

    // A run of edits of one field becomes one step. Never into an undone command: with a redo
    // tail the top is not the command just done.
    CTsUndoCommand* top = current_ > 0 ? commands_[current_ - 1].get() : nullptr;
    if (command->IsMarkedForUpdate() && top && top != command.get() && RedoCount() == 0 &&
        Absorbs(*top, *command)) {
        return finish(true);
    }

    // A new command ends the redo tail; a save point in it can't be reached any more.
    if (saved_ > static_cast<std::ptrdiff_t>(current_)) saved_ = -1;
    DestroyFrom(current_);

    if (maxDepth_ == 0) return finish(false);
    if (commands_.size() >= maxDepth_) {
        // The oldest command goes; positions count from the new oldest, and a save point before
        // the dropped command (position 0) becomes unreachable (-1).
        commands_.erase(commands_.begin());
        if (saved_ >= 0) --saved_;
        --current_;
    }

    // Nothing may merge into a command that is no longer on top.
    if (current_ > 0) commands_[current_ - 1]->SetMarkedForUpdate(false);
    commands_.push_back(std::move(command));
    ++current_;
    return finish(true);
}

bool CTsUndoSupportBase::Undo() {
    OnBegin(kTsUndoDirectionUndo);
    if (current_ > 0) {
        CTsUndoCommand& command = *commands_[--current_];
        command.SetMarkedForUpdate(false);
        if (!command.UndoWithNotify(*this)) {
            ClearAfterFailure("Undoing", command);
            OnEnd(kTsUndoDirectionUndo, false);
            return false;
        }
    }
    OnEnd(kTsUndoDirectionUndo, false);
    return true;
}

bool CTsUndoSupportBase::Redo() {
    OnBegin(kTsUndoDirectionDo);
    if (RedoCount() > 0) {
        CTsUndoCommand& command = *commands_[current_];
        if (!command.DoWithNotify(*this)) {
            ClearAfterFailure("Redoing", command);
            OnEnd(kTsUndoDirectionDo, false);
            return false;
        }
        ++current_;
    }
    OnEnd(kTsUndoDirectionDo, false);
    return true;
}

void CTsUndoSupportBase::OnBeforeCommand(int, CTsUndoCommand&) {}
void CTsUndoSupportBase::OnBegin(int) {}
void CTsUndoSupportBase::OnAfterCommand(int, CTsUndoCommand&) {}
void CTsUndoSupportBase::OnEnd(int, bool) {}

CTsUndoCommand* CTsUndoSupportBase::UndoCommandAt(std::size_t i) const {
    return i < current_ ? commands_[current_ - 1 - i].get() : nullptr;
}

CTsUndoCommand* CTsUndoSupportBase::RedoCommandAt(std::size_t i) const {
    return i < RedoCount() ? commands_[current_ + i].get() : nullptr;
}

bool CTsUndoSupportBase::IsModifiedSinceSave() const {
    return saved_ != static_cast<std::ptrdiff_t>(current_);
}

void CTsUndoSupportBase::MarkSaved() {
    saved_ = static_cast<std::ptrdiff_t>(current_);
}

void CTsUndoSupportBase::ClearHistory() {
    DestroyFrom(0);
    current_ = 0;
    saved_ = 0;
}

bool CTsUndoSupportBase::Absorbs(CTsUndoCommand& top, CTsUndoCommand& command) {
    if (!command.IsMarkedForUpdate()) {
        Report(ReportLevel::Assert, "toolsmfcimpls", __LINE__,
               u"RHS command must be marked for update");
        return false;
    }
    return top.IsMarkedForUpdate() && top.UpdateKey() != 0 &&
           top.UpdateKey() == command.UpdateKey() && top.CanMerge(command) && top.Merge(command);
}

void CTsUndoSupportBase::ClearAfterFailure(const char* what, const CTsUndoCommand& command) {
    Report(ReportLevel::Error, "toolsmfcimpls", __LINE__,
           ts::Format(u"%s \"%ls\" (%s) failed; the undo history was cleared.", what,
                      command.Label(), command.KindName()));
    // The command may be one of those destroyed here: it is not used after this.
    DestroyFrom(0);
    current_ = 0;
    saved_ = -1;
}

void CTsUndoSupportBase::DestroyFrom(std::size_t position) {
    // Newest first, so a command never outlives one pushed before it.
    while (commands_.size() > position) commands_.pop_back();
}
