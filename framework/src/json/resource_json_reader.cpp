#include <array>

#include "json/json_document.h"
#include "json/json_values.h"
#include "ts/format.h"
#include "ts/resourcecodec.h"
#include "ts/resourcejson.h"
#include "ts/text.h"

namespace ts {

namespace {

using json::Value;

constexpr std::array<const char16_t*, kTsPropertyAttributeCount> kAttributeKeys = {
    u"display", u"category", u"subCategory", u"description", u"editor"};

class Reader {
public:
    Reader(const json::Document& doc, const ResourceSchemaLookup& schemas)
        : doc_(doc), schemas_(schemas) {}

    bool Read(ResourceDocument& out, std::u16string* error) {
        bool ok = ReadDocument(out);
        if (!ok && error) *error = problem_;
        return ok;
    }

private:
    bool Fail(const Value& at, std::u16string_view what) {
        if (problem_.empty()) problem_ = doc_.Where(at) + u": " + std::u16string(what);
        return false;
    }

    bool ReadDocument(ResourceDocument& out) {
        const Value& root = doc_.Root();
        if (!root.IsObject())
            return Fail(
                root, u"expected an object with \"resource\", \"type\" and \"root\" or \"fields\"");
        const Value* tree = nullptr;
        const Value* fields = nullptr;
        for (std::uint32_t i = 0; i < doc_.MemberCount(root); ++i) {
            auto m = doc_.MemberAt(root, i);
            if (m.key == u"resource" || m.key == u"type") {
                if (!m.value->IsString() || doc_.String(*m.value).empty())
                    return Fail(*m.value, Format(u"\"%ls\" must be a text that is not empty",
                                                 MessageText(m.key)));
                std::u16string given(doc_.String(*m.value));
                std::u16string& known = m.key == u"resource" ? out.name : out.type;
                if (!known.empty() && !EqualsIgnoreAsciiCase(known, given))
                    return Fail(
                        *m.value,
                        Format(
                            u"the document says its %ls is \"%ls\" but its file name says \"%ls\"",
                            m.key == u"resource" ? u"name" : u"type", MessageText(given),
                            MessageText(known)));
                known = given;
            } else if (m.key == u"root") {
                tree = m.value;
            } else if (m.key == u"fields") {
                fields = m.value;
            } else {
                return Fail(*m.value, Format(u"unknown key \"%ls\" (expected \"resource\", "
                                             u"\"type\", \"root\" or \"fields\")",
                                             MessageText(m.key)));
            }
        }
        if (out.name.empty())
            return Fail(root, u"the document does not name its resource (\"resource\")");
        if (out.type.empty())
            return Fail(root, u"the document does not give its resource type (\"type\")");
        if (tree && fields)
            return Fail(
                *fields,
                u"give the tree either exactly (\"root\") or in short (\"fields\"), not both");
        if (tree) return Node(*tree, out.root, 0);
        if (!fields) return Fail(root, u"the document has no tree (\"root\" or \"fields\")");
        const RecordSchema* schema = schemas_ ? schemas_(out.type) : nullptr;
        if (!schema)
            return Fail(*fields, Format(u"resources of type \"%ls\" have no short form; give the "
                                        u"tree exactly (\"root\")",
                                        out.type));
        return Record(*fields, schema, out.root, 0, &out.name);
    }

    bool Depth(const Value& v, std::uint32_t depth) {
        if (depth < kResourceMaxDepth) return true;
        return Fail(v, Format(u"the tree nests deeper than %u levels", kResourceMaxDepth));
    }

    bool Node(const Value& v, CTsComPtr<ITsProperty>& out, std::uint32_t depth) {
        if (!Depth(v, depth)) return false;
        if (!v.IsObject())
            return Fail(v, u"expected a node (an object with \"name\" and \"type\")");
        const Value* name = doc_.Find(v, u"name");
        const Value* type = doc_.Find(v, u"type");
        if (!name || !name->IsString() || doc_.String(*name).empty() ||
            doc_.String(*name).size() > kTsMaxAtomName)
            return Fail(name ? *name : v, u"a node needs a \"name\" of 1 to 255 characters");
        std::uint32_t code = 0;
        if (!type) return Fail(v, u"a node needs a \"type\"");
        std::u16string problem;
        bool knownType = false;
        if (type->IsString()) {
            knownType = json::TypeCodeFromName(doc_.String(*type), code);
        } else if (variant numeric; json::ReadValue(doc_, *type, kTsTypeUInt, numeric, problem)) {
            code = numeric.GetUInt();
            knownType = TsIsKnownTypeCode(code);
        }
        if (!knownType)
            return Fail(*type,
                        u"unknown type (expected list, int, uint, float, double, string, vector, "
                        u"bool, uint2, "
                        u"datetime, string2, colour, bytes or their codes)");
        std::uint32_t flags = 0;
        std::array<std::u16string_view, kTsPropertyAttributeCount> attributes{};
        const Value* value = nullptr;
        const Value* children = nullptr;
        for (std::uint32_t i = 0; i < doc_.MemberCount(v); ++i) {
            auto m = doc_.MemberAt(v, i);
            if (m.key == u"name" || m.key == u"type") continue;
            if (m.key == u"flags") {
                variant f;
                if (!json::ReadValue(doc_, *m.value, kTsTypeUInt, f, problem))
                    return Fail(*m.value, u"\"flags\": " + problem);
                flags = f.GetUInt();
                continue;
            }
            if (m.key == u"value") {
                value = m.value;
                continue;
            }
            if (m.key == u"children") {
                children = m.value;
                continue;
            }
            bool known = false;
            for (std::size_t a = 0; a < kAttributeKeys.size(); ++a)
                if (m.key == kAttributeKeys[a]) {
                    if (!m.value->IsString())
                        return Fail(*m.value, Format(u"\"%ls\" must be a text", m.key));
                    attributes[a] = doc_.String(*m.value);
                    known = true;
                }
            if (!known)
                return Fail(*m.value,
                            Format(u"unknown key \"%ls\" in a node (expected name, type, flags, "
                                   u"display, category, "
                                   u"subCategory, description, editor, value or children)",
                                   MessageText(m.key)));
        }
        if (FAILED(TsCreateProperty(doc_.String(*name), code, flags, attributes[0], attributes[1],
                                    attributes[2], attributes[3], attributes[4], out.Put())))
            return Fail(*name, u"the node cannot be made (too many distinct names?)");
        if (code == kTsTypeList) {
            if (value) return Fail(*value, u"a list node has \"children\", not a \"value\"");
            if (!children) return true;
            if (!children->IsArray())
                return Fail(*children, u"\"children\" must be an array of nodes");
            for (const Value& c : doc_.Items(*children)) {
                CTsComPtr<ITsProperty> child;
                if (!Node(c, child, depth + 1)) return false;
                out->InsertChild(kTsAppend, child.Get());
            }
            return true;
        }
        if (children)
            return Fail(*children, u"a node of a value has a \"value\", not \"children\"");
        if (!value) return true;  // the type's zero
        variant converted;
        if (!json::ReadValue(doc_, *value, code, converted, problem)) return Fail(*value, problem);
        out->SetValue(converted);
        return true;
    }

    bool IsExactNode(const Value& v) const {
        return v.IsObject() && doc_.Find(v, u"name") && doc_.Find(v, u"type");
    }

    // The record kind an element of a family names in its kind field; null (with the problem
    // noted) when it names none. Schemas that are not families stand for themselves.
    const RecordSchema* KindOf(const Value& item, const RecordSchema& schema) {
        if (!schema.IsFamily()) return &schema;
        const Value* kind = item.IsObject() ? doc_.Find(item, schema.kindField) : nullptr;
        variant code;
        std::u16string problem;
        if (!kind || !json::ReadValue(doc_, *kind, kTsTypeInt, code, problem)) {
            Fail(kind ? *kind : item,
                 Format(u"a %ls needs \"%ls\" (a whole number) to say which kind it is",
                        schema.name, schema.kindField));
            return nullptr;
        }
        auto it = schema.kinds.find(code.GetInt());
        if (it != schema.kinds.end()) return it->second;
        std::u16string known;
        for (const auto& [value, kindSchema] : schema.kinds)
            known += Format(u"%ls%d (%ls)", known.empty() ? u"" : u", ", value, kindSchema->name);
        Fail(*kind, Format(u"%d is not a kind of %ls; the kinds are %ls", code.GetInt(),
                           schema.name, known));
        return nullptr;
    }

    bool Record(const Value& v, const RecordSchema* schemaOrNull, CTsComPtr<ITsProperty>& out,
                std::uint32_t depth, const std::u16string* resourceName) {
        if (!schemaOrNull) return false;
        const RecordSchema& schema = *schemaOrNull;
        if (!Depth(v, depth)) return false;
        if (!v.IsObject())
            return Fail(v, Format(u"expected a %ls (an object of its fields)", schema.name));
        if (!schema.create || !schema.create(out) || !out)
            return Fail(v, Format(u"a new %ls could not be made", schema.name));
        bool named = false;
        for (std::uint32_t i = 0; i < doc_.MemberCount(v); ++i) {
            auto m = doc_.MemberAt(v, i);
            CTsComPtr<ITsProperty> field;
            TsAtom atom = TsFindAtom(m.key);
            if (!atom || FAILED(out->FindChild(atom, 0, field.Put())) ||
                TsGetAtomName(atom) != m.key) {
                if (atom && field)
                    return Fail(*m.value,
                                Format(u"a %ls has no field \"%ls\" (did you mean \"%ls\"?)",
                                       schema.name, MessageText(m.key), TsGetAtomName(atom)));
                return Fail(*m.value,
                            Format(u"a %ls has no field \"%ls\"", schema.name, MessageText(m.key)));
            }
            named = named || m.key == schema.nameField;
            if (field->GetType() == kTsTypeList) {
                if (!List(*m.value, m.key, schema, field.Get(), depth)) return false;
                continue;
            }
            variant value;
            std::u16string problem;
            if (!json::ReadValue(doc_, *m.value, field->GetType(), value, problem))
                return Fail(*m.value, Format(u"field \"%ls\": %ls", m.key, problem));
            field->SetValue(value);
        }
        if (resourceName && !named && !schema.nameField.empty()) {
            CTsComPtr<ITsProperty> field;
            if (SUCCEEDED(out->FindChild(TsAddAtom(schema.nameField), 0, field.Put())) &&
                TsAccessorGroup(field->GetType()) == kTsTypeString)
                field->SetValue(variant(field->GetType(), *resourceName));
        }
        return true;
    }

    bool List(const Value& v, std::u16string_view name, const RecordSchema& owner,
              ITsProperty* list, std::uint32_t depth) {
        if (!v.IsArray()) return Fail(v, Format(u"field \"%ls\" is a list: give an array", name));
        const RecordSchema* element = owner.ElementOf(name);
        list->Reset();
        for (const Value& item : doc_.Items(v)) {
            CTsComPtr<ITsProperty> node;
            if (IsExactNode(item) || !element) {
                if (!element && !IsExactNode(item))
                    return Fail(
                        item,
                        Format(
                            u"the elements of \"%ls\" have no short form; give each as a node with "
                            u"\"name\" and \"type\"",
                            name));
                if (!Node(item, node, depth + 1)) return false;
            } else if (!Record(item, KindOf(item, *element), node, depth + 1, nullptr)) {
                return false;
            }
            list->InsertChild(kTsAppend, node.Get());
        }
        return true;
    }

    const json::Document& doc_;
    const ResourceSchemaLookup& schemas_;
    std::u16string problem_;
};

}  // namespace

bool ReadResourceJson(std::string_view utf8, ResourceDocument& out, std::u16string* error,
                      const ResourceSchemaLookup& schemas) {
    json::Document doc;
    if (!doc.Parse(utf8, error)) return false;
    ResourceDocument result{out.name, out.type, {}};
    if (!Reader(doc, schemas).Read(result, error)) return false;
    out = std::move(result);
    return true;
}

}  // namespace ts
