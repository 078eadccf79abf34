#include <array>
#include <vector>

#include "property/attribute_table.h"
#include "property/property_node.h"
#include "resource/byte_stream.h"
#include "ts/format.h"
#include "ts/hoststring.h"
#include "ts/resourcecodec.h"

namespace ts {

namespace {

// What a node is apart from its value: the node's shape. A conversation has a few hundred shapes
// and millions of nodes, so each node stores only the index of its shape.
struct Shape {
    TsAtom name;
    std::uint32_t type;
    std::uint32_t flags;
    std::uint32_t attributes;  // handle in the attribute table
};

class Encoder {
public:
    bool Encode(ITsProperty* root, std::vector<std::uint8_t>& bytes, std::u16string* error) {
        error_ = error;
        body_.reserve(1 << 16);
        ByteWriter body(body_);
        if (!Node(root, body, 0)) return false;

        bytes.clear();
        bytes.reserve(kResourceHeaderSize + body_.size() + 4096);
        bytes.resize(kResourceHeaderSize);
        ByteWriter out(bytes);
        out.Varint(static_cast<std::uint32_t>(names_.size()));
        for (TsAtom atom : names_) out.Text(TsGetAtomName(atom, kTsMaxAtomName));
        out.Varint(static_cast<std::uint32_t>(attributeSets_.size()));
        for (std::uint32_t handle : attributeSets_)
            for (const auto& text : AttributeTable::Get(handle)) out.Text(text);
        out.Varint(static_cast<std::uint32_t>(shapes_.size()));
        for (const Shape& s : shapes_) {
            out.Varint(nameIndex_[s.name - kTsFirstAtom]);
            out.Byte(static_cast<std::uint8_t>(s.type));
            out.Varint(s.flags);
            out.Varint(AttributeIndex(s.attributes));
        }
        out.Bytes(body_.data(), body_.size());

        if (bytes.size() - kResourceHeaderSize > 0xFFFFFFFFu)
            return Fail(u"The resource is larger than 4 GiB");
        std::uint8_t* h = bytes.data();
        std::memcpy(h, kResourceMagic, 4);
        Put16(h + 4, kResourceFormatVersion);
        Put16(h + 6, 0);
        Put32(h + 8, static_cast<std::uint32_t>(bytes.size() - kResourceHeaderSize));
        Put32(h + 12, nodeCount_);
        std::uint32_t crc = Crc32({h, 16});
        crc = Crc32({h + kResourceHeaderSize, bytes.size() - kResourceHeaderSize}, crc);
        Put32(h + 16, crc);
        return true;
    }

private:
    static void Put16(std::uint8_t* p, std::uint16_t v) { std::memcpy(p, &v, 2); }
    static void Put32(std::uint8_t* p, std::uint32_t v) { std::memcpy(p, &v, 4); }

    bool Fail(const std::u16string& message) {
        if (error_) *error_ = message;
        return false;
    }

    std::uint32_t AttributeIndex(std::uint32_t handle) {
        for (std::uint32_t i = 0; i < attributeSets_.size(); ++i)
            if (attributeSets_[i] == handle) return i;
        attributeSets_.push_back(handle);
        return static_cast<std::uint32_t>(attributeSets_.size() - 1);
    }

    // Shapes are found through the name atom: nearly every atom has exactly one shape, so the
    // last shape seen for each atom answers almost every lookup.
    std::uint32_t ShapeIndex(const Shape& s) {
        LastShape& last = lastShape_[s.name - kTsFirstAtom];
        if (last.type == s.type && last.flags == s.flags && last.attributes == s.attributes)
            return last.index;
        std::uint32_t index = FindShape(s);
        last = {s.type, s.flags, s.attributes, index};
        return index;
    }

    std::uint32_t FindShape(const Shape& s) {
        auto& candidates = shapesByAtom_[s.name - kTsFirstAtom];
        for (std::uint32_t index : candidates) {
            const Shape& c = shapes_[index];
            if (c.type == s.type && c.flags == s.flags && c.attributes == s.attributes)
                return index;
        }
        if (candidates.empty() && nameIndex_[s.name - kTsFirstAtom] == kNoIndex) {
            nameIndex_[s.name - kTsFirstAtom] = static_cast<std::uint32_t>(names_.size());
            names_.push_back(s.name);
        }
        AttributeIndex(s.attributes);  // sets are numbered in order of first use
        shapes_.push_back(s);
        candidates.push_back(static_cast<std::uint32_t>(shapes_.size() - 1));
        return static_cast<std::uint32_t>(shapes_.size() - 1);
    }

    bool Node(ITsProperty* node, ByteWriter& out, std::uint32_t depth) {
        if (depth >= kResourceMaxDepth)
            return Fail(
                Format(u"The tree is nested deeper than %u levels (does a node contain itself?)",
                       kResourceMaxDepth));
        ++nodeCount_;
        if (PropertyNode* ours = PropertyNode::FromInterface(node))
            return OwnNode(ours, out, depth);
        return ForeignNode(node, out, depth);
    }

    bool CheckName(TsAtom atom) {
        if (atom >= kTsFirstAtom) return true;
        return Fail(u"A node has no name");
    }

    bool OwnNode(PropertyNode* node, ByteWriter& out, std::uint32_t depth) {
        TsAtom atom = node->GetNameAtom();
        if (!CheckName(atom)) return false;
        std::uint32_t type = node->GetType();
        out.Varint(ShapeIndex({atom, type, node->GetFlags(), node->AttributesHandle()}));
        switch (TsAccessorGroup(type)) {
            case kTsTypeInt:
                out.ZigZag(node->RawInt());
                return true;
            case kTsTypeUInt:
                out.Varint(node->RawUInt());
                return true;
            case kTsTypeFloat:
                out.Raw(node->RawFloat());
                return true;
            case kTsTypeDouble:
                out.Raw(node->RawDouble());
                return true;
            case kTsTypeBool:
                out.Byte(node->RawBool() ? 1 : 0);
                return true;
            case kTsTypeVector:
                out.Raw(node->RawVector());
                return true;
            case kTsTypeColour:
                out.Raw(node->RawColour());
                return true;
            case kTsTypeString:
                out.Text(node->RawText());
                return true;
            case kTsTypeBlob: {
                auto bytes = node->RawBytes();
                out.Varint(static_cast<std::uint32_t>(bytes.size()));
                out.Bytes(bytes.data(), bytes.size());
                return true;
            }
            default:
                break;
        }
        auto children = node->RawChildren();
        out.Varint(static_cast<std::uint32_t>(children.size()));
        for (ITsProperty* child : children)
            if (!Node(child, out, depth + 1)) return false;
        return true;
    }

    // A node implemented outside the framework: read through the interface.
    bool ForeignNode(ITsProperty* node, ByteWriter& out, std::uint32_t depth) {
        TsAtom atom = node->GetNameAtom();
        if (!CheckName(atom)) return false;
        std::uint32_t type = node->GetType();
        if (!TsIsKnownTypeCode(type))
            return Fail(Format(u"A node has the unknown type code %u", type));
        std::array<std::u16string, kTsPropertyAttributeCount> texts;
        for (std::uint32_t i = 0; i < kTsPropertyAttributeCount; ++i) {
            CTsHostString text;
            node->GetAttribute(static_cast<TsPropertyAttribute>(i), text.Put());
            texts[i] = std::u16string(text.View());
        }
        std::uint32_t attributes =
            AttributeTable::Intern({texts[0], texts[1], texts[2], texts[3], texts[4]});
        out.Varint(ShapeIndex({atom, type, node->GetFlags(), attributes}));
        if (type == kTsTypeList) {
            ITsProperty* const* children = nullptr;
            std::uint32_t count = 0;
            if (FAILED(node->GetChildArray(&children, &count)))
                return Fail(u"A list node hides its children");
            out.Varint(count);
            for (std::uint32_t i = 0; i < count; ++i)
                if (!Node(children[i], out, depth + 1)) return false;
            return true;
        }
        variant v;
        if (FAILED(node->GetValue(&v)) || v.type() != type) return Fail(u"A node hides its value");
        switch (TsAccessorGroup(type)) {
            case kTsTypeInt:
                out.ZigZag(v.GetInt());
                break;
            case kTsTypeUInt:
                out.Varint(v.GetUInt());
                break;
            case kTsTypeFloat:
                out.Raw(v.GetFloat());
                break;
            case kTsTypeDouble:
                out.Raw(v.GetDouble());
                break;
            case kTsTypeBool:
                out.Byte(v.GetBool() ? 1 : 0);
                break;
            case kTsTypeVector:
                out.Raw(v.GetVector());
                break;
            case kTsTypeColour:
                out.Raw(v.GetColour());
                break;
            case kTsTypeString:
                out.Text(v.GetString());
                break;
            case kTsTypeBlob:
                out.Varint(static_cast<std::uint32_t>(v.GetBlob().size()));
                out.Bytes(v.GetBlob().data(), v.GetBlob().size());
                break;
        }
        return true;
    }

    static constexpr std::uint32_t kNoIndex = 0xFFFFFFFFu;
    static constexpr std::size_t kAtomSlots = 0x10000 - kTsFirstAtom;

    std::u16string* error_ = nullptr;
    std::vector<std::uint8_t> body_;
    std::vector<TsAtom> names_;
    std::vector<std::uint32_t> nameIndex_ = std::vector<std::uint32_t>(kAtomSlots, kNoIndex);
    std::vector<std::uint32_t> attributeSets_;
    std::vector<Shape> shapes_;
    std::vector<std::vector<std::uint32_t>> shapesByAtom_ =
        std::vector<std::vector<std::uint32_t>>(kAtomSlots);
    struct LastShape {
        std::uint32_t type = kNoIndex;  // no type code is this large, so a new slot never matches
        std::uint32_t flags = 0;
        std::uint32_t attributes = 0;
        std::uint32_t index = 0;
    };
    std::vector<LastShape> lastShape_ = std::vector<LastShape>(kAtomSlots);
    std::uint32_t nodeCount_ = 0;
};

}  // namespace

bool EncodeResource(ITsProperty* root, std::vector<std::uint8_t>& bytes, std::u16string* error) {
    bytes.clear();
    if (!root) {
        if (error) *error = u"There is no tree to encode";
        return false;
    }
    Encoder encoder;
    if (encoder.Encode(root, bytes, error)) return true;
    bytes.clear();
    return false;
}

}  // namespace ts
