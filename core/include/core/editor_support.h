#pragma once

#include <cstdint>
#include <string>

#include "core/resource_id.h"
#include "ts/editor.h"
#include "ts/hoststring.h"

// The editor state a document window keeps for the host: the resource it is attached to, the
// host's cookie, and the state word (read-only, modified, extra state). W may provide
// RefreshStateDisplay() (called whenever the state changes) and ClearUndoHistory() (called when
// the editor is attached read-only).
template <class W>
class CTsEditorSupport {
public:
    // ITsEditor Attach: the state's modified and extra bits are the editor's own and are dropped.
    HRESULT AttachResource(std::uint32_t hostCookie, const char16_t* resourceName,
                           std::uint32_t state) {
        hostCookie_ = hostCookie;
        resourceName_ = resourceName ? resourceName : u"";
        baseState_ = state & ~(kTsEditorModified | kTsEditorExtraState);
        if (IsReadOnly()) {
            // A read-only editor has nothing to undo.
            if constexpr (requires(W & w) { w.ClearUndoHistory(); }) Self().ClearUndoHistory();
        }
        resourceId_ = TsResourceId::Parse(resourceName_);
        StateChanged();
        return S_OK;
    }

    HRESULT GetEditorState(std::uint32_t* hostCookie, char16_t** resourceName,
                           std::uint32_t* state) const {
        if (hostCookie) *hostCookie = hostCookie_;
        if (resourceName) *resourceName = TsAllocString(resourceName_);
        if (state) *state = StateWord();
        return S_OK;
    }

    // The state word as the host sees it: what it attached with, plus 8 while modified and 32
    // while the extra state is set.
    std::uint32_t StateWord() const {
        return baseState_ | (modified_ ? kTsEditorModified : 0u) |
               (extraState_ ? kTsEditorExtraState : 0u);
    }

    void SetModified(bool modified) {
        if (modified_ == modified) return;
        modified_ = modified;
        StateChanged();
    }
    // After a successful edit: a loaded, writable resource becomes modified.
    void NoteEdited() {
        if (loaded_) SetModified(!IsReadOnly());
    }
    void SetLoaded(bool loaded) { loaded_ = loaded; }
    void SetExtraState(bool extra) {
        if (extraState_ == extra) return;
        extraState_ = extra;
        StateChanged();
    }

    bool IsReadOnly() const { return (baseState_ & kTsEditorReadOnly) != 0; }
    bool IsModified() const { return modified_; }
    bool IsLoaded() const { return loaded_; }
    bool HasExtraState() const { return extraState_; }
    std::uint32_t HostCookie() const { return hostCookie_; }
    const std::u16string& ResourceName() const { return resourceName_; }
    const TsResourceId& ResourceId() const { return resourceId_; }
    // The name the user knows the resource by; the attached name when it can't be parsed.
    std::u16string DisplayName() const {
        return resourceId_.IsValid() ? resourceId_.FileName() : resourceName_;
    }

private:
    W& Self() { return static_cast<W&>(*this); }
    void StateChanged() {
        if constexpr (requires(W & w) { w.RefreshStateDisplay(); }) Self().RefreshStateDisplay();
    }

    std::uint32_t baseState_ = 0;
    bool modified_ = false;
    bool loaded_ = false;
    bool extraState_ = false;
    std::uint32_t hostCookie_ = 0;
    std::u16string resourceName_;
    TsResourceId resourceId_;
};
