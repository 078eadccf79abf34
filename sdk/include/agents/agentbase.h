#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "agents/fields.h"
#include "ts/atoms.h"
#include "ts/comptr.h"
#include "ts/property.h"
#include "ts/report.h"

// Owning reference to one host property node; empty means unbound.
class CTsProperty {
public:
    CTsProperty() = default;
    explicit CTsProperty(ITsProperty* node) : node_(node) {}
    virtual ~CTsProperty() = default;

    ITsProperty* GetNode() const { return node_.Get(); }
    bool IsBound() const { return static_cast<bool>(node_); }

protected:
    CTsComPtr<ITsProperty> node_;
};

// A typed view over one node of a resource's property tree. Subclasses declare their fields as a
// table (TS_AGENT_FIELDS) and get their typed accessors from it.
class CAgentBase : public CTsProperty {
public:
    static constexpr const char* kSourceHeader = "AgentBase";

    CAgentBase() = default;
    explicit CAgentBase(ITsProperty* node) : CTsProperty(node) {}

    // Declares the fields on the bound node, creating the "Agent" node when unbound and clearing
    // it when bound. Subclasses call their base first, so base fields come first.
    virtual bool BuildProperties();
    // Binds to `node` (a new element), declares the fields and writes the defaults.
    virtual bool CreateOn(ITsProperty* node);
    // Writes every field's default, in table order; subclasses call their base first.
    virtual bool SetDefaults() { return true; }

    // Views an existing element: nothing is declared or written.
    void Bind(ITsProperty* node) { node_ = CTsComPtr<ITsProperty>(node); }
    void Unbind() { node_.Reset(); }

    bool AddProperty(std::u16string_view name, std::uint32_t type, std::uint32_t flags,
                     std::u16string_view displayName, std::u16string_view category,
                     std::u16string_view subCategory, std::u16string_view description,
                     std::u16string_view editorKind);
    bool AddProperty(std::u16string_view name, std::uint32_t type, std::uint32_t flags,
                     std::u16string_view displayName = {}) {
        return AddProperty(name, type, flags, displayName, {}, {}, {}, {});
    }
    bool AddProperty(std::u16string_view name, std::uint32_t type, std::uint32_t flags,
                     std::u16string_view displayName, std::u16string_view category) {
        return AddProperty(name, type, flags, displayName, category, {}, {}, {});
    }

    bool FindProperty(TsAtom name, std::uint32_t index, CTsComPtr<ITsProperty>& node) const;
    // Looks the field up; when missing and `create` is set, adds a plain node (type 0, flags 0).
    bool FindOrCreateProperty(std::u16string_view name, CTsComPtr<ITsProperty>& node, bool create = true);
    bool FindOrCreateProperty(TsAtom name, CTsComPtr<ITsProperty>& node, bool create = true);

    // List fields. Failures are reported and give 0 / false.
    std::uint32_t GetPropertyListEntryCount(std::u16string_view listName) const;
    std::uint32_t GetPropertyListEntryCount(TsAtom listName) const;
    bool GetPropertyFromList(std::u16string_view listName, std::uint32_t index,
                             CTsComPtr<ITsProperty>& node) const;
    bool GetPropertyFromList(TsAtom listName, std::uint32_t index, CTsComPtr<ITsProperty>& node) const;
    // Inserts the item's node at `index` of the list (kTsAppend appends).
    bool AddItemToPropertyList(const CTsProperty& item, std::u16string_view listName,
                               std::uint32_t index = kTsAppend);
    bool AddItemToPropertyList(ITsProperty* item, TsAtom listName, std::uint32_t index = kTsAppend);
    // Appends every element of `source` (a list node) to this agent's list: the same nodes, or
    // deep copies of them. Stops at the first failure.
    bool CopyPropertyList(ITsProperty* source, std::u16string_view listName, bool deepCopy);

    // The declared field table of this record kind (empty for the bare base).
    static std::span<const TsFieldDecl> Fields() { return {}; }

protected:
    bool DeclareFields(std::span<const TsFieldDecl> fields);
    bool WriteDefaults(std::span<const TsFieldDecl> fields);

    // The field node named `atom` holding `type`; null (after the report) when missing or mistyped.
    CTsComPtr<ITsProperty> FieldNode(TsAtom atom, std::uint32_t type, const char* source, int line) const;

    template <class T>
    bool ReadField(TsAtom atom, std::uint32_t type, T& out, const char* source, int line) const {
        auto node = FieldNode(atom, type, source, line);
        if (!node) return false;
        variant value;
        if (FAILED(node->GetValue(&value))) return false;
        out = FromVariant(value, static_cast<T*>(nullptr));
        return true;
    }
    template <class T>
    bool WriteField(TsAtom atom, std::uint32_t type, const T& value, const char* source, int line) {
        auto node = FieldNode(atom, type, source, line);
        return node && SUCCEEDED(node->SetValue(ToVariant(type, value)));
    }

private:
    static std::int32_t FromVariant(const variant& v, std::int32_t*) { return v.GetInt(); }
    static std::uint32_t FromVariant(const variant& v, std::uint32_t*) { return v.GetUInt(); }
    static float FromVariant(const variant& v, float*) { return v.GetFloat(); }
    static double FromVariant(const variant& v, double*) { return v.GetDouble(); }
    static std::u16string FromVariant(const variant& v, std::u16string*) { return v.GetString(); }
    static TsVector3 FromVariant(const variant& v, TsVector3*) { return v.GetVector(); }
    static bool FromVariant(const variant& v, bool*) { return v.GetBool(); }
    static TsColour FromVariant(const variant& v, TsColour*) { return v.GetColour(); }

    template <class T>
    static variant ToVariant(std::uint32_t type, const T& value) {
        if constexpr (std::is_same_v<T, std::u16string>) return variant(type, std::u16string_view(value));
        else return variant(type, value);
    }

    void ReportListFailure(const char16_t* pattern, TsAtom listName, int line) const;
};
