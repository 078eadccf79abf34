#pragma once

#include <cstdint>
#include <type_traits>

#include "core/forwarding.h"
#include "core/undo_support.h"
#include "ts/hoststring.h"
#include "ts/undoredo.h"

// ITsUndoRedo of an editor object T over its window W: the window's undo stack when W has one
// (derives from CTsUndoSupportBase), E_NOTIMPL when it has none (the line preview), E_FAIL with
// the window gone.
template <class T, class W>
class CTsUndoRedoImpl : public ITsUndoRedo {
public:
    HRESULT GetUndoCount(std::uint32_t* count) override {
        return WithStack(count, [&](CTsUndoSupportBase& stack) {
            *count = static_cast<std::uint32_t>(stack.UndoCount());
            return S_OK;
        });
    }

    HRESULT GetRedoCount(std::uint32_t* count) override {
        return WithStack(count, [&](CTsUndoSupportBase& stack) {
            *count = static_cast<std::uint32_t>(stack.RedoCount());
            return S_OK;
        });
    }

    HRESULT GetUndoLabel(std::uint32_t index, char16_t** label) override {
        return WithStack(label, [&](CTsUndoSupportBase& stack) {
            return LabelOf(stack.UndoCommandAt(index), label);
        });
    }

    HRESULT GetRedoLabel(std::uint32_t index, char16_t** label) override {
        return WithStack(label, [&](CTsUndoSupportBase& stack) {
            return LabelOf(stack.RedoCommandAt(index), label);
        });
    }

    HRESULT Undo() override {
        return WithStack([](CTsUndoSupportBase& stack) -> HRESULT {
            if (stack.UndoCount() == 0) return S_FALSE;
            return stack.Undo() ? S_OK : E_FAIL;
        });
    }

    HRESULT Redo() override {
        return WithStack([](CTsUndoSupportBase& stack) -> HRESULT {
            if (stack.RedoCount() == 0) return S_FALSE;
            return stack.Redo() ? S_OK : E_FAIL;
        });
    }

    HRESULT IsModified(std::int32_t* modified) override {
        return WithStack(modified, [&](CTsUndoSupportBase& stack) {
            *modified = stack.IsModifiedSinceSave() ? 1 : 0;
            return S_OK;
        });
    }

private:
    T& Self() { return static_cast<T&>(*this); }

    // An operation with an output: the window is checked first (E_FAIL), then the output
    // (E_POINTER), which is cleared before anything else can fail.
    template <class Out, class F>
    HRESULT WithStack(Out* output, F&& operation) {
        return ts::ForwardToWindow(Self().GetWindow(), [&](W& w) -> HRESULT {
            if (!output) return E_POINTER;
            *output = {};
            return OnStackOf(w, operation);
        });
    }
    template <class F>
    HRESULT WithStack(F&& operation) {
        return ts::ForwardToWindow(Self().GetWindow(),
                                   [&](W& w) -> HRESULT { return OnStackOf(w, operation); });
    }
    template <class F>
    static HRESULT OnStackOf(W& w, F& operation) {
        if constexpr (std::is_base_of_v<CTsUndoSupportBase, W>)
            return operation(static_cast<CTsUndoSupportBase&>(w));
        else
            return E_NOTIMPL;
    }

    static HRESULT LabelOf(const CTsUndoCommand* command, char16_t** label) {
        if (!command) return E_INVALIDARG;
        *label = TsAllocString(command->Label());
        return S_OK;
    }
};
