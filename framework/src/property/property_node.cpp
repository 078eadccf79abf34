#include "property/property_node.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "property/attribute_table.h"
#include "property/node_pool.h"
#include "ts/hoststring.h"

namespace ts {

static_assert(sizeof(PropertyNode) <= 40, "property nodes are the bulk of a loaded conversation");

struct PropertyNode::Counted {
    std::uint32_t size;  // in units: char16_t for text, bytes for blobs
    alignas(char16_t) unsigned char data[1];

    static Counted* Allocate(std::uint32_t size, std::size_t unit) {
        if (size == 0) return nullptr;
        auto* c = static_cast<Counted*>(std::malloc(offsetof(Counted, data) + size * unit));
        if (!c) throw std::bad_alloc();
        c->size = size;
        return c;
    }
    static Counted* Make(const void* data, std::uint32_t size, std::size_t unit) {
        Counted* c = Allocate(size, unit);
        if (c) std::memcpy(c->data, data, size * unit);
        return c;
    }
    std::u16string_view Text() const { return {reinterpret_cast<const char16_t*>(data), size}; }
};

namespace {
bool HoldsCounted(std::uint32_t type) {
    auto group = TsAccessorGroup(type);
    return group == kTsTypeString || group == kTsTypeBlob;
}
}  // namespace

void* PropertyNode::operator new(std::size_t size) { return AllocateNodeBlock(size); }
void PropertyNode::operator delete(void* block, std::size_t size) { FreeNodeBlock(block, size); }

PropertyNode::PropertyNode(TsAtom name, std::uint8_t type, std::uint32_t flags,
                           std::uint32_t attributes)
    : name_(name), type_(type), flags_(flags), attributes_(attributes), c_{0, 0, 0, 0} {
    if (IsList()) children_ = {nullptr, 0, 0};
}

PropertyNode::~PropertyNode() {
    if (IsList()) {
        ClearChildren();
        std::free(children_.items);
    } else {
        ClearValue();
    }
}

PropertyNode* PropertyNode::Create(TsAtom name, std::uint32_t type, std::uint32_t flags,
                                   std::uint32_t attributes) {
    if (!TsIsKnownTypeCode(type)) return nullptr;
    return new PropertyNode(name, static_cast<std::uint8_t>(type), flags, attributes);
}

HRESULT PropertyNode::QueryInterface(REFIID iid, void** object) {
    if (!object) return E_POINTER;
    *object = nullptr;
    if (iid != IUnknown::kIID && iid != ITsProperty::kIID) return E_NOINTERFACE;
    *object = static_cast<ITsProperty*>(this);
    AddRef();
    return S_OK;
}

std::u16string_view PropertyNode::RawText() const {
    return text_ ? text_->Text() : std::u16string_view();
}

std::span<const std::uint8_t> PropertyNode::RawBytes() const {
    return text_ ? std::span<const std::uint8_t>(text_->data, text_->size) : std::span<const std::uint8_t>();
}

char16_t* PropertyNode::AllocateRawText(std::uint32_t size) {
    ClearValue();
    text_ = Counted::Allocate(size, sizeof(char16_t));
    return text_ ? reinterpret_cast<char16_t*>(text_->data) : nullptr;
}

std::uint8_t* PropertyNode::AllocateRawBytes(std::uint32_t size) {
    ClearValue();
    text_ = Counted::Allocate(size, 1);
    return text_ ? text_->data : nullptr;
}

std::uint32_t PropertyNode::Release() {
    std::uint32_t left = --refs_;
    if (left == 0) delete this;
    return left;
}

HRESULT PropertyNode::GetName(char16_t** name) {
    if (!name) return E_POINTER;
    *name = TsAllocString(TsGetAtomName(name_));
    return S_OK;
}

HRESULT PropertyNode::GetAttribute(TsPropertyAttribute which, char16_t** text) {
    if (!text) return E_POINTER;
    *text = nullptr;
    auto index = static_cast<std::uint32_t>(which);
    if (index >= kTsPropertyAttributeCount) return E_INVALIDARG;
    *text = TsAllocString(AttributeTable::Get(attributes_)[index]);
    return S_OK;
}

HRESULT PropertyNode::SetAttribute(TsPropertyAttribute which, std::u16string_view text) {
    if (static_cast<std::uint32_t>(which) >= kTsPropertyAttributeCount) return E_INVALIDARG;
    attributes_ = AttributeTable::WithAttribute(attributes_, which, text);
    return S_OK;
}

HRESULT PropertyNode::CreateProperty(std::u16string_view name, std::uint32_t type,
                                     std::uint32_t flags, std::u16string_view displayName,
                                     std::u16string_view category, std::u16string_view subCategory,
                                     std::u16string_view description, std::u16string_view editorKind,
                                     ITsProperty** node) {
    return TsCreateProperty(name, type, flags, displayName, category, subCategory, description,
                            editorKind, node);
}

HRESULT PropertyNode::FindChild(TsAtom name, std::uint32_t index, ITsProperty** child) {
    if (!child) return E_POINTER;
    *child = nullptr;
    if (!IsList()) return E_FAIL;
    for (std::uint32_t i = 0; i < children_.size; ++i) {
        ITsProperty* c = children_.items[i];
        if (c->GetNameAtom() == name && index-- == 0) {
            c->AddRef();
            *child = c;
            return S_OK;
        }
    }
    return E_FAIL;
}

HRESULT PropertyNode::GetChildCount(TsAtom name, std::uint32_t* count) {
    if (!count) return E_POINTER;
    *count = 0;
    if (!IsList()) return E_FAIL;
    if (name == 0) {
        *count = children_.size;
        return S_OK;
    }
    for (std::uint32_t i = 0; i < children_.size; ++i)
        if (children_.items[i]->GetNameAtom() == name) ++*count;
    return S_OK;
}

HRESULT PropertyNode::GetChildAt(std::uint32_t position, ITsProperty** child) {
    if (!child) return E_POINTER;
    *child = nullptr;
    if (!IsList() || position >= children_.size) return E_INVALIDARG;
    *child = children_.items[position];
    (*child)->AddRef();
    return S_OK;
}

HRESULT PropertyNode::GetChildArray(ITsProperty* const** children, std::uint32_t* count) {
    if (!children || !count) return E_POINTER;
    *children = nullptr;
    *count = 0;
    if (!IsList()) return E_FAIL;
    *children = children_.items;
    *count = children_.size;
    return S_OK;
}

bool PropertyNode::Reserve(std::uint32_t capacity) {
    if (capacity <= children_.capacity) return true;
    std::uint32_t grown = children_.capacity ? children_.capacity * 2 : 4;
    if (grown < capacity) grown = capacity;
    auto* items = static_cast<ITsProperty**>(std::realloc(children_.items, grown * sizeof(ITsProperty*)));
    if (!items) throw std::bad_alloc();
    children_.items = items;
    children_.capacity = grown;
    return true;
}

HRESULT PropertyNode::InsertChild(std::uint32_t position, ITsProperty* child) {
    if (!child) return E_POINTER;
    if (!IsList() || child == this) return E_INVALIDARG;
    Reserve(children_.size + 1);
    if (position > children_.size) position = children_.size;
    std::memmove(children_.items + position + 1, children_.items + position,
                 (children_.size - position) * sizeof(ITsProperty*));
    children_.items[position] = child;
    ++children_.size;
    child->AddRef();
    return S_OK;
}

HRESULT PropertyNode::RemoveChild(ITsProperty* child) {
    if (!child) return E_POINTER;
    if (!IsList()) return E_INVALIDARG;
    for (std::uint32_t i = 0; i < children_.size; ++i)
        if (children_.items[i] == child) return RemoveChildAt(i);
    return E_INVALIDARG;
}

HRESULT PropertyNode::RemoveChildAt(std::uint32_t position) {
    if (!IsList() || position >= children_.size) return E_INVALIDARG;
    ITsProperty* removed = children_.items[position];
    std::memmove(children_.items + position, children_.items + position + 1,
                 (children_.size - position - 1) * sizeof(ITsProperty*));
    --children_.size;
    removed->Release();
    return S_OK;
}

HRESULT PropertyNode::GetValue(variant* value) {
    if (!value) return E_POINTER;
    switch (TsAccessorGroup(type_)) {
        case kTsTypeInt: *value = variant(type_, i_); break;
        case kTsTypeUInt: *value = variant(type_, u_); break;
        case kTsTypeFloat: *value = variant(type_, f_); break;
        case kTsTypeDouble: *value = variant(type_, d_); break;
        case kTsTypeVector: *value = variant(type_, v_); break;
        case kTsTypeBool: *value = variant(type_, b_); break;
        case kTsTypeColour: *value = variant(type_, c_); break;
        case kTsTypeString:
            *value = variant(type_, text_ ? text_->Text() : std::u16string_view());
            break;
        case kTsTypeBlob:
            *value = text_ ? variant(type_, std::vector<std::uint8_t>(text_->data, text_->data + text_->size))
                           : variant(type_, std::vector<std::uint8_t>());
            break;
        default: return E_FAIL;  // a list has no value
    }
    return S_OK;
}

HRESULT PropertyNode::SetValue(const variant& value) {
    if (IsList() || value.type() != type_) return E_INVALIDARG;
    switch (TsAccessorGroup(type_)) {
        case kTsTypeInt: i_ = value.GetInt(); break;
        case kTsTypeUInt: u_ = value.GetUInt(); break;
        case kTsTypeFloat: f_ = value.GetFloat(); break;
        case kTsTypeDouble: d_ = value.GetDouble(); break;
        case kTsTypeVector: v_ = value.GetVector(); break;
        case kTsTypeBool: b_ = value.GetBool(); break;
        case kTsTypeColour: c_ = value.GetColour(); break;
        case kTsTypeString: {
            const auto& s = value.GetString();
            Counted* text = Counted::Make(s.data(), static_cast<std::uint32_t>(s.size()), sizeof(char16_t));
            ClearValue();
            text_ = text;
            break;
        }
        case kTsTypeBlob: {
            const auto& b = value.GetBlob();
            Counted* bytes = Counted::Make(b.data(), static_cast<std::uint32_t>(b.size()), 1);
            ClearValue();
            text_ = bytes;
            break;
        }
        default: return E_INVALIDARG;
    }
    return S_OK;
}

void PropertyNode::ClearValue() {
    if (HoldsCounted(type_)) std::free(text_);
    c_ = {0, 0, 0, 0};
}

void PropertyNode::ClearChildren() {
    // Release after detaching, so a child's destruction never sees a half-cleared list.
    std::uint32_t n = children_.size;
    children_.size = 0;
    for (std::uint32_t i = 0; i < n; ++i) children_.items[i]->Release();
}

HRESULT PropertyNode::Clone(std::uint32_t flags, ITsProperty** copy) {
    if (!copy) return E_POINTER;
    *copy = nullptr;
    PropertyNode* c = Create(name_, type_, flags_, attributes_);
    c->AddRef();
    if (IsList()) {
        c->Reserve(children_.size);
        for (std::uint32_t i = 0; i < children_.size; ++i) {
            ITsProperty* child = children_.items[i];
            if (flags & kTsCloneDeep) {
                ITsProperty* childCopy = nullptr;
                HRESULT hr = child->Clone(flags, &childCopy);
                if (FAILED(hr)) {
                    c->Release();
                    return hr;
                }
                c->children_.items[c->children_.size++] = childCopy;  // adopts the reference
            } else {
                child->AddRef();
                c->children_.items[c->children_.size++] = child;
            }
        }
    } else if (HoldsCounted(type_)) {
        c->text_ = text_ ? Counted::Make(text_->data, text_->size,
                                         TsAccessorGroup(type_) == kTsTypeString ? sizeof(char16_t) : 1)
                         : nullptr;
    } else {
        c->c_ = c_;
    }
    *copy = c;
    return S_OK;
}

HRESULT PropertyNode::Reset() {
    if (IsList()) ClearChildren();
    else ClearValue();
    return S_OK;
}

}  // namespace ts

HRESULT TsCreateProperty(std::u16string_view name, std::uint32_t type, std::uint32_t flags,
                         std::u16string_view displayName, std::u16string_view category,
                         std::u16string_view subCategory, std::u16string_view description,
                         std::u16string_view editorKind, ITsProperty** node) {
    if (!node) return E_POINTER;
    *node = nullptr;
    TsAtom atom = TsAddAtom(name);
    if (atom == 0 || !TsIsKnownTypeCode(type)) return E_INVALIDARG;
    std::uint32_t attributes =
        ts::AttributeTable::Intern({displayName, category, subCategory, description, editorKind});
    ts::PropertyNode* created = ts::PropertyNode::Create(atom, type, flags, attributes);
    created->AddRef();
    *node = created;
    return S_OK;
}
