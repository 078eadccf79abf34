#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <typeinfo>

#include "ts/property.h"

namespace ts {

// The host's property node. Kept to 40 bytes: the name is an atom, the declaration attributes a
// handle into the shared attribute table, and the value (or the child list) lives inline.
class PropertyNode final : public ITsProperty {
public:
    static PropertyNode* Create(TsAtom name, std::uint32_t type, std::uint32_t flags,
                                std::uint32_t attributes);
    // The same for a type code the caller has already checked (TsIsKnownTypeCode).
    static PropertyNode* CreateChecked(TsAtom name, std::uint8_t type, std::uint32_t flags, std::uint32_t attributes) {
        return new PropertyNode(name, type, flags, attributes);
    }

    HRESULT QueryInterface(REFIID iid, void** object) override;
    std::uint32_t AddRef() override { return ++refs_; }
    std::uint32_t Release() override;

    TsAtom GetNameAtom() override { return name_; }
    std::uint32_t GetType() override { return type_; }
    std::uint32_t GetFlags() override { return flags_; }
    HRESULT GetName(char16_t** name) override;
    HRESULT GetAttribute(TsPropertyAttribute which, char16_t** text) override;
    HRESULT SetAttribute(TsPropertyAttribute which, std::u16string_view text) override;

    HRESULT CreateProperty(std::u16string_view name, std::uint32_t type, std::uint32_t flags,
                           std::u16string_view displayName, std::u16string_view category,
                           std::u16string_view subCategory, std::u16string_view description,
                           std::u16string_view editorKind, ITsProperty** node) override;

    HRESULT FindChild(TsAtom name, std::uint32_t index, ITsProperty** child) override;
    HRESULT GetChildCount(TsAtom name, std::uint32_t* count) override;
    HRESULT GetChildAt(std::uint32_t position, ITsProperty** child) override;
    HRESULT GetChildArray(ITsProperty* const** children, std::uint32_t* count) override;
    HRESULT InsertChild(std::uint32_t position, ITsProperty* child) override;
    HRESULT RemoveChild(ITsProperty* child) override;
    HRESULT RemoveChildAt(std::uint32_t position) override;

    HRESULT GetValue(variant* value) override;
    HRESULT SetValue(const variant& value) override;

    HRESULT Clone(std::uint32_t flags, ITsProperty** copy) override;
    HRESULT Reset() override;

    // Framework-internal fast paths for the resource codec, which builds and walks millions of
    // nodes and cannot afford a variant per value. Callers keep to the node's type code.

    // The node behind an interface pointer, or null when it is not one of ours (a node that a
    // plugin implements itself).
    static PropertyNode* FromInterface(ITsProperty* node) {
        return node && typeid(*node) == typeid(PropertyNode) ? static_cast<PropertyNode*>(node) : nullptr;
    }

    std::uint32_t AttributesHandle() const { return attributes_; }
    std::int32_t RawInt() const { return i_; }
    std::uint32_t RawUInt() const { return u_; }
    float RawFloat() const { return f_; }
    double RawDouble() const { return d_; }
    bool RawBool() const { return b_; }
    const TsVector3& RawVector() const { return v_; }
    const TsColour& RawColour() const { return c_; }
    std::u16string_view RawText() const;
    std::span<const std::uint8_t> RawBytes() const;
    std::span<ITsProperty* const> RawChildren() const { return {children_.items, children_.size}; }

    void SetRawInt(std::int32_t v) { i_ = v; }
    void SetRawUInt(std::uint32_t v) { u_ = v; }
    void SetRawFloat(float v) { f_ = v; }
    void SetRawDouble(double v) { d_ = v; }
    void SetRawBool(bool v) { b_ = v; }
    void SetRawVector(const TsVector3& v) { v_ = v; }
    void SetRawColour(const TsColour& v) { c_ = v; }
    // A text (or byte) buffer of exactly `size` units for the caller to fill; null when size is 0.
    char16_t* AllocateRawText(std::uint32_t size);
    std::uint8_t* AllocateRawBytes(std::uint32_t size);
    // Room for `count` children, then appends without growing.
    void ReserveChildren(std::uint32_t count) { Reserve(count); }
    void AppendReservedChild(PropertyNode* child) {
        children_.items[children_.size++] = child;
        child->AddRef();
    }

    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size);

private:
    PropertyNode(TsAtom name, std::uint8_t type, std::uint32_t flags, std::uint32_t attributes);
    ~PropertyNode();

    bool IsList() const { return type_ == kTsTypeList; }
    void ClearValue();
    void ClearChildren();
    bool Reserve(std::uint32_t capacity);

    struct Counted;  // length-prefixed heap text or bytes
    struct Children {
        ITsProperty** items;
        std::uint32_t size;
        std::uint32_t capacity;
    };

    std::uint32_t refs_ = 0;
    TsAtom name_;
    std::uint8_t type_;
    std::uint32_t flags_;
    std::uint32_t attributes_;
    union {
        std::int32_t i_;
        std::uint32_t u_;
        float f_;
        double d_;
        bool b_;
        TsVector3 v_;
        TsColour c_;
        Counted* text_;  // strings and blobs; null when empty
        Children children_;
    };
};

}  // namespace ts
