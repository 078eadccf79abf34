#pragma once

#include <cstdint>

#include "ts/stringenum.h"
#include "ts/unknown.h"

// Bits of an editor's state word.
inline constexpr std::uint32_t kTsEditorReadOnly = 1;
inline constexpr std::uint32_t kTsEditorModified = 8;
inline constexpr std::uint32_t kTsEditorExtraState = 32;

// EnumerateResourceTypes: the resource types the editor edits.
inline constexpr std::int32_t kTsEditableResourceTypes = 1;

// A document editor: the host attaches it to a resource, loads it, asks for its content and
// state, and has it saved. The slot order is the host's and must be kept.
struct ITsEditor : IUnknown {
    TS_INTERFACE_ID("{51FF47CE-1BC6-46AF-A1E9-53D696AB343C}");

    virtual HRESULT EnumerateResourceTypes(std::int32_t which, ITsStringEnum** types) = 0;
    // Loads the resource given by the host's resource object.
    virtual HRESULT Load(IUnknown* resource) = 0;
    // Writes the edited resource into the host's resource object.
    virtual HRESULT GetContent(IUnknown* resource) = 0;
    // The host's cookie, the resource's name and the state word (kTsEditor* bits).
    virtual HRESULT Attach(std::uint32_t hostCookie, const char16_t* resourceName,
                           std::uint32_t state) = 0;
    // Any output may be null; the name is newly allocated.
    virtual HRESULT GetState(std::uint32_t* hostCookie, char16_t** resourceName,
                             std::uint32_t* state) = 0;
    virtual HRESULT SetModified(std::int32_t modified) = 0;
    virtual HRESULT Save(std::uint32_t hostArgument) = 0;
    // Accepted and ignored by editors that need no activation notice.
    virtual HRESULT OnActivate(std::int32_t active) = 0;
    // Newly allocated; a null output is accepted and ignored.
    virtual HRESULT GetDisplayName(char16_t** name) = 0;
    // Accepted and ignored by editors that need no host notices.
    virtual HRESULT OnHostNotify(std::uint32_t code) = 0;
    // Shows (non-zero) or hides (0) the editor's frame and makes it the active one.
    virtual HRESULT ActivateFrame(std::int32_t showCommand) = 0;
    // Sends the resource's word count to the host's telemetry.
    virtual HRESULT ReportWordCount() = 0;

protected:
    ~ITsEditor() = default;
};
