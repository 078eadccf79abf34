#include <algorithm>

#include "json/json_values.h"
#include "json/json_writer.h"
#include "property/property_node.h"
#include "ts/format.h"
#include "ts/hoststring.h"
#include "ts/propertycompare.h"
#include "ts/resourcecodec.h"
#include "ts/resourcejson.h"

namespace ts {

namespace {

constexpr const char16_t* kAttributeKeys[] = {u"display", u"category", u"subCategory",
                                              u"description", u"editor"};

std::u16string Attribute(ITsProperty* node, std::uint32_t which) {
    CTsHostString text;
    node->GetAttribute(static_cast<TsPropertyAttribute>(which), text.Put());
    return std::u16string(text.View());
}

// Same name, type, flags and declaration attributes.
bool SameShape(ITsProperty* a, ITsProperty* b) {
    if (a->GetNameAtom() != b->GetNameAtom() || a->GetType() != b->GetType() ||
        a->GetFlags() != b->GetFlags())
        return false;
    PropertyNode* na = PropertyNode::FromInterface(a);
    PropertyNode* nb = PropertyNode::FromInterface(b);
    if (na && nb)
        return na->AttributesHandle() ==
               nb->AttributesHandle();  // interned: equal sets, equal handles
    for (std::uint32_t i = 0; i < kTsPropertyAttributeCount; ++i)
        if (Attribute(a, i) != Attribute(b, i)) return false;
    return true;
}

std::span<ITsProperty* const> Children(ITsProperty* node) {
    ITsProperty* const* items = nullptr;
    std::uint32_t count = 0;
    if (FAILED(node->GetChildArray(&items, &count))) return {};
    return {items, count};
}

variant ValueOf(ITsProperty* node) {
    variant v;
    node->GetValue(&v);
    return v;
}

class JsonTreeWriter {
public:
    JsonTreeWriter(std::string& out, const ResourceSchemaLookup* schemas)
        : w_(out), schemas_(schemas) {}

    bool Write(const ResourceDocument& doc, std::u16string* error) {
        if (!doc.root) return Fail(error, u"There is no tree to write");
        w_.BeginObject();
        w_.Key(u"resource");
        w_.String(doc.name);
        w_.Key(u"type");
        w_.String(doc.type);
        const RecordSchema* schema = schemas_ && *schemas_ ? (*schemas_)(doc.type) : nullptr;
        CTsComPtr<ITsProperty> fresh;
        if (schema && Conforms(doc.root.Get(), *schema, fresh)) {
            w_.Key(u"fields");
            Record(doc.root.Get(), fresh.Get(), *schema, &doc.name, {}, 0);
        } else {
            w_.Key(u"root");
            Node(doc.root.Get(), 0);
        }
        w_.EndObject();
        return problem_.empty() || Fail(error, problem_);
    }

private:
    static bool Fail(std::u16string* error, const std::u16string& message) {
        if (error) *error = message;
        return false;
    }

    bool Deep(std::uint32_t depth) {
        if (depth < kResourceMaxDepth) return false;
        if (problem_.empty())
            problem_ =
                Format(u"The tree is nested deeper than %u levels (does a node contain itself?)",
                       kResourceMaxDepth);
        return true;
    }

    void Node(ITsProperty* node, std::uint32_t depth) {
        if (Deep(depth)) return;
        std::uint32_t type = node->GetType();
        auto children = type == kTsTypeList ? Children(node) : std::span<ITsProperty* const>();
        w_.BeginObject(children.empty());
        w_.Key(u"name");
        w_.String(TsGetAtomName(node->GetNameAtom()));
        w_.Key(u"type");
        w_.String(json::TypeCodeName(type));
        if (node->GetFlags()) {
            w_.Key(u"flags");
            w_.UInt(node->GetFlags());
        }
        for (std::uint32_t i = 0; i < kTsPropertyAttributeCount; ++i) {
            std::u16string text = Attribute(node, i);
            if (text.empty()) continue;
            w_.Key(kAttributeKeys[i]);
            w_.String(text);
        }
        if (type != kTsTypeList) {
            w_.Key(u"value");
            json::WriteValue(w_, ValueOf(node));
        } else if (!children.empty()) {
            w_.Key(u"children");
            w_.BeginArray();
            for (ITsProperty* child : children) Node(child, depth + 1);
            w_.EndArray();
        }
        w_.EndObject();
    }

    // True when the record is laid out as a new one of its kind: same shape, same fields in the
    // same order with the same declarations. Values and list contents may differ.
    bool Conforms(ITsProperty* node, const RecordSchema& schema, CTsComPtr<ITsProperty>& fresh) {
        if (!schema.create || !schema.create(fresh) || !fresh || !SameShape(node, fresh.Get()))
            return false;
        auto a = Children(node), d = Children(fresh.Get());
        if (node->GetType() != kTsTypeList || a.size() != d.size()) return false;
        for (std::size_t i = 0; i < a.size(); ++i)
            if (!SameShape(a[i], d[i])) return false;
        return true;
    }

    static bool ShortText(const variant& v) {
        return TsAccessorGroup(v.type()) != kTsTypeString || v.GetString().size() <= 24;
    }

    void ShortValue(const variant& v) {
        if (v.type() == kTsTypeDateTime) {
            std::u16string date = json::FormatDate(v.GetDouble());
            if (!date.empty()) {
                w_.String(date);
                return;
            }
        }
        json::WriteValue(w_, v);
    }

    // The kind of a family that an element is, by the value of its kind field; the schema itself
    // when it is no family, null when the element names no known kind.
    static const RecordSchema* KindOf(ITsProperty* item, const RecordSchema& schema) {
        if (!schema.IsFamily()) return &schema;
        CTsComPtr<ITsProperty> field;
        if (FAILED(item->FindChild(TsFindAtom(schema.kindField), 0, field.Put())) ||
            field->GetType() != kTsTypeInt)
            return nullptr;
        auto it = schema.kinds.find(ValueOf(field.Get()).GetInt());
        return it == schema.kinds.end() ? nullptr : it->second;
    }

    // Writes the fields of `node` that differ from those of `fresh`, a new record of its kind;
    // `kindField`, when given, is written first whatever its value.
    void Record(ITsProperty* node, ITsProperty* fresh, const RecordSchema& schema,
                const std::u16string* resourceName, std::u16string_view kindField,
                std::uint32_t depth) {
        if (Deep(depth)) return;
        auto a = Children(node), d = Children(fresh);
        std::vector<std::size_t> written;
        bool inlineLayout = true;
        for (std::size_t i = 0; i < a.size(); ++i) {
            std::u16string name = TsGetAtomName(a[i]->GetNameAtom());
            if (!kindField.empty() && name == kindField) {
                written.insert(written.begin(), i);
                continue;
            }
            bool always = std::find(schema.alwaysWritten.begin(), schema.alwaysWritten.end(),
                                    name) != schema.alwaysWritten.end();
            if (a[i]->GetType() == kTsTypeList) {
                if (PropertyTreesEqual(a[i], d[i])) continue;
                inlineLayout = false;
            } else {
                variant value = ValueOf(a[i]);
                if (value == ValueOf(d[i]) && !always) continue;
                if (resourceName && TsAccessorGroup(value.type()) == kTsTypeString &&
                    TsGetAtomName(a[i]->GetNameAtom()) == schema.nameField &&
                    value.GetString() == *resourceName)
                    continue;  // filled from the resource's name when read back
                inlineLayout = inlineLayout && ShortText(value);
            }
            written.push_back(i);
        }
        w_.BeginObject(inlineLayout && written.size() <= 3);
        for (std::size_t i : written) {
            std::u16string name = TsGetAtomName(a[i]->GetNameAtom());
            w_.Key(name);
            if (a[i]->GetType() != kTsTypeList) {
                ShortValue(ValueOf(a[i]));
                continue;
            }
            const RecordSchema* element = schema.ElementOf(name);
            w_.BeginArray();
            for (ITsProperty* item : Children(a[i])) {
                const RecordSchema* kind = element ? KindOf(item, *element) : nullptr;
                CTsComPtr<ITsProperty> itemFresh;
                if (kind && Conforms(item, *kind, itemFresh))
                    Record(item, itemFresh.Get(), *kind, nullptr, element->kindField, depth + 1);
                else
                    Node(item, depth + 1);
            }
            w_.EndArray();
        }
        w_.EndObject();
    }

    json::Writer w_;
    const ResourceSchemaLookup* schemas_;
    std::u16string problem_;
};

}  // namespace

bool WriteResourceJson(const ResourceDocument& resource, std::string& utf8, std::u16string* error) {
    utf8.clear();
    return JsonTreeWriter(utf8, nullptr).Write(resource, error);
}

bool WriteResourceJsonShort(const ResourceDocument& resource, const ResourceSchemaLookup& schemas,
                            std::string& utf8, std::u16string* error) {
    utf8.clear();
    return JsonTreeWriter(utf8, &schemas).Write(resource, error);
}

}  // namespace ts
