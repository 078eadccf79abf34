#pragma once

#include <cstdint>
#include <string_view>

#include "ts/api.h"
#include "ts/atoms.h"
#include "ts/unknown.h"
#include "ts/variant.h"

// The declaration attributes of a property node besides its name, type and flags.
enum class TsPropertyAttribute : std::uint32_t {
    DisplayName = 0,
    Category = 1,
    SubCategory = 2,
    Description = 3,
    EditorKind = 4,
};
inline constexpr std::uint32_t kTsPropertyAttributeCount = 5;

// Clone flags.
inline constexpr std::uint32_t kTsCloneShallow = 0;  // same children, by reference
inline constexpr std::uint32_t kTsCloneDeep = 2;     // children copied too

// Position meaning "after the last child".
inline constexpr std::uint32_t kTsAppend = 0xFFFFFFFFu;

// A node of a resource's property tree, held by the host. A node has a name (kept as an atom), a
// type code, flags, declaration attributes, and either a value or (type 0) an ordered list of
// children. Nodes are reference counted; one node may stand in several lists.
struct ITsProperty : IUnknown {
    TS_INTERFACE_ID("{A9154799-542D-4793-A5CE-5C0DE1FF5305}");

    virtual TsAtom GetNameAtom() = 0;
    virtual std::uint32_t GetType() = 0;
    virtual std::uint32_t GetFlags() = 0;
    // A newly allocated host string (TsFreeString).
    virtual HRESULT GetName(char16_t** name) = 0;
    virtual HRESULT GetAttribute(TsPropertyAttribute which, char16_t** text) = 0;
    virtual HRESULT SetAttribute(TsPropertyAttribute which, std::u16string_view text) = 0;

    // A new node, not yet in any list. Strings may be empty.
    virtual HRESULT CreateProperty(std::u16string_view name, std::uint32_t type, std::uint32_t flags,
                                   std::u16string_view displayName, std::u16string_view category,
                                   std::u16string_view subCategory, std::u16string_view description,
                                   std::u16string_view editorKind, ITsProperty** node) = 0;

    // The index-th child named `name`; E_FAIL when there is none.
    virtual HRESULT FindChild(TsAtom name, std::uint32_t index, ITsProperty** child) = 0;
    // Children named `name`, or all children for atom 0.
    virtual HRESULT GetChildCount(TsAtom name, std::uint32_t* count) = 0;
    virtual HRESULT GetChildAt(std::uint32_t position, ITsProperty** child) = 0;
    // Borrowed view of all children, valid until the list next changes.
    virtual HRESULT GetChildArray(ITsProperty* const** children, std::uint32_t* count) = 0;
    // Inserts at `position` among all children (kTsAppend or past the end appends). The node
    // takes a reference; only container nodes (type 0) have children.
    virtual HRESULT InsertChild(std::uint32_t position, ITsProperty* child) = 0;
    virtual HRESULT RemoveChild(ITsProperty* child) = 0;
    virtual HRESULT RemoveChildAt(std::uint32_t position) = 0;

    // The value must carry the node's own type code.
    virtual HRESULT GetValue(variant* value) = 0;
    virtual HRESULT SetValue(const variant& value) = 0;

    virtual HRESULT Clone(std::uint32_t flags, ITsProperty** copy) = 0;
    // Removes every child; a value node returns to its type's zero value.
    virtual HRESULT Reset() = 0;

    HRESULT SetDisplayName(std::u16string_view t) { return SetAttribute(TsPropertyAttribute::DisplayName, t); }
    HRESULT SetCategory(std::u16string_view t) { return SetAttribute(TsPropertyAttribute::Category, t); }
    HRESULT SetSubCategory(std::u16string_view t) { return SetAttribute(TsPropertyAttribute::SubCategory, t); }
    HRESULT SetDescription(std::u16string_view t) { return SetAttribute(TsPropertyAttribute::Description, t); }
    HRESULT SetEditorKind(std::u16string_view t) { return SetAttribute(TsPropertyAttribute::EditorKind, t); }

protected:
    ~ITsProperty() = default;
};

// Creates a free-standing node (the root of a new tree).
TS_API HRESULT TsCreateProperty(std::u16string_view name, std::uint32_t type, std::uint32_t flags,
                                std::u16string_view displayName, std::u16string_view category,
                                std::u16string_view subCategory, std::u16string_view description,
                                std::u16string_view editorKind, ITsProperty** node);

inline HRESULT TsCreateProperty(std::u16string_view name, std::uint32_t type, std::uint32_t flags,
                                ITsProperty** node) {
    return TsCreateProperty(name, type, flags, {}, {}, {}, {}, {}, node);
}
