#pragma once

#include <cstdint>

#include "ts/unknown.h"

// An editor's undo stack as the host's Edit menu sees it: the labels of what can be undone and
// redone, undo and redo themselves, and whether the document differs from its last save. The
// slot order is the host's and must be kept.
struct ITsUndoRedo : IUnknown {
    TS_INTERFACE_ID("{E2F8CC6E-7CE7-4FAC-AA3F-57C596C87F8F}");

    virtual HRESULT GetUndoCount(std::uint32_t* count) = 0;
    virtual HRESULT GetRedoCount(std::uint32_t* count) = 0;
    // Index 0 is the most recent command (the next to undo, or to redo). The label is newly
    // allocated (TsFreeString); E_INVALIDARG for an index out of range.
    virtual HRESULT GetUndoLabel(std::uint32_t index, char16_t** label) = 0;
    virtual HRESULT GetRedoLabel(std::uint32_t index, char16_t** label) = 0;
    // S_OK when done, S_FALSE when there was nothing to do, E_FAIL when the command failed (the
    // editor has then cleared its history).
    virtual HRESULT Undo() = 0;
    virtual HRESULT Redo() = 0;
    // Non-zero while the document differs from what was last saved.
    virtual HRESULT IsModified(std::int32_t* modified) = 0;

protected:
    ~ITsUndoRedo() = default;
};
