#include <cstring>
#include <vector>

#include "property/attribute_table.h"
#include "property/property_node.h"
#include "resource/byte_stream.h"
#include "ts/format.h"
#include "ts/resourcecodec.h"

namespace ts {

namespace {

struct Shape {
    TsAtom name;
    std::uint8_t type;
    std::uint8_t group;  // the accessor group of the type, looked up once per shape
    std::uint32_t flags;
    std::uint32_t attributes;
};

class Decoder {
public:
    Decoder(std::span<const std::uint8_t> bytes, std::u16string* error)
        : bytes_(bytes), error_(error) {}

    bool Decode(CTsComPtr<ITsProperty>& root, const ResourceDecodeOptions& options) {
        if (!Header(options)) return false;
        ByteReader in(bytes_.data() + kResourceHeaderSize, bytes_.size() - kResourceHeaderSize);
        if (!Tables(in)) return false;
        PropertyNode* node = nullptr;
        if (!Node(in, node, 0)) return false;
        root = CTsComPtr<ITsProperty>::Adopt(node);
        if (in.Remaining() != 0)
            return Damaged(in, Format(u"%u bytes follow the last node",
                                      static_cast<std::uint32_t>(in.Remaining())));
        if (nodes_ != expectedNodes_)
            return Fail(
                Format(u"The resource is damaged: the header counts %u nodes but %u were read",
                       expectedNodes_, nodes_));
        return true;
    }

private:
    bool Fail(const std::u16string& message) {
        if (error_) *error_ = message;
        return false;
    }
    bool Damaged(const ByteReader& in, std::u16string_view what) {
        return Fail(Format(u"The resource is damaged: %ls (at byte %lu)", what,
                           static_cast<unsigned long>(in.Offset() + kResourceHeaderSize)));
    }

    static std::uint16_t Get16(const std::uint8_t* p) {
        std::uint16_t v;
        std::memcpy(&v, p, 2);
        return v;
    }
    static std::uint32_t Get32(const std::uint8_t* p) {
        std::uint32_t v;
        std::memcpy(&v, p, 4);
        return v;
    }

    bool Header(const ResourceDecodeOptions& options) {
        if (bytes_.size() < kResourceHeaderSize) {
            if (bytes_.size() >= 4 && std::memcmp(bytes_.data(), kResourceMagic, 4) == 0)
                return Fail(Format(u"The resource is truncated: %lu bytes, shorter than its header",
                                   static_cast<unsigned long>(bytes_.size())));
            return Fail(Format(u"This is not a resource: %lu bytes, too short for the header",
                               static_cast<unsigned long>(bytes_.size())));
        }
        const std::uint8_t* h = bytes_.data();
        if (std::memcmp(h, kResourceMagic, 4) != 0)
            return Fail(u"This is not a resource: the header mark is wrong");
        std::uint16_t version = Get16(h + 4);
        if (version > kResourceFormatVersion)
            return Fail(
                Format(u"The resource was written by a newer toolset (format version %u; this one "
                       u"reads up to %u)",
                       version, kResourceFormatVersion));
        if (version == 0) return Fail(u"The resource is damaged: format version 0");
        std::uint32_t payload = Get32(h + 8);
        std::size_t actual = bytes_.size() - kResourceHeaderSize;
        if (payload > actual)
            return Fail(Format(u"The resource is truncated: %lu of its %lu bytes are present",
                               static_cast<unsigned long>(bytes_.size()),
                               static_cast<unsigned long>(payload + kResourceHeaderSize)));
        if (payload < actual)
            return Fail(Format(u"The resource is damaged: %lu bytes follow its end",
                               static_cast<unsigned long>(actual - payload)));
        if (options.verifyChecksum) {
            std::uint32_t crc = Crc32({h, 16});
            crc = Crc32(bytes_.subspan(kResourceHeaderSize), crc);
            if (crc != Get32(h + 16))
                return Fail(u"The resource is damaged: its checksum does not match its content");
        }
        if (Get16(h + 6) != 0)
            return Fail(u"The resource is damaged: reserved header bits are set");
        expectedNodes_ = Get32(h + 12);
        // Every node takes at least one byte, so a larger count can only be damage.
        if (expectedNodes_ == 0 || expectedNodes_ > payload)
            return Fail(
                Format(u"The resource is damaged: the header counts %u nodes", expectedNodes_));
        return true;
    }

    bool Tables(ByteReader& in) {
        std::uint32_t count;
        if (!in.Varint(count) || count > in.Remaining())
            return Damaged(in, u"the name table is cut short");
        atoms_.reserve(count);
        std::u16string text;
        for (std::uint32_t i = 0; i < count; ++i) {
            if (!in.Text(text)) return Damaged(in, u"a name is cut short or not valid text");
            if (text.empty() || text.size() > kTsMaxAtomName)
                return Damaged(in, Format(u"name %u is empty or too long", i));
            TsAtom atom = TsAddAtom(text);
            if (atom == 0) return Fail(u"The resource cannot be read: the table of names is full");
            atoms_.push_back(atom);
        }

        if (!in.Varint(count) || count > in.Remaining())
            return Damaged(in, u"the attribute table is cut short");
        attributeSets_.reserve(count);
        std::u16string texts[kTsPropertyAttributeCount];
        for (std::uint32_t i = 0; i < count; ++i) {
            for (auto& t : texts)
                if (!in.Text(t)) return Damaged(in, u"an attribute is cut short or not valid text");
            attributeSets_.push_back(
                AttributeTable::Intern({texts[0], texts[1], texts[2], texts[3], texts[4]}));
        }

        if (!in.Varint(count) || count > in.Remaining())
            return Damaged(in, u"the shape table is cut short");
        shapes_.reserve(count);
        for (std::uint32_t i = 0; i < count; ++i) {
            std::uint32_t name, flags, attributes;
            std::uint8_t type;
            if (!in.Varint(name) || !in.Byte(type) || !in.Varint(flags) || !in.Varint(attributes))
                return Damaged(in, u"the shape table is cut short");
            if (name >= atoms_.size())
                return Damaged(in, Format(u"shape %u names name %u of %u", i, name,
                                          static_cast<std::uint32_t>(atoms_.size())));
            if (!TsIsKnownTypeCode(type))
                return Damaged(in, Format(u"shape %u has the unknown type code %u", i, type));
            if (attributes >= attributeSets_.size())
                return Damaged(in, Format(u"shape %u has no attribute set", i));
            shapes_.push_back({atoms_[name], type, static_cast<std::uint8_t>(TsAccessorGroup(type)),
                               flags, attributeSets_[attributes]});
        }
        return true;
    }

    bool Node(ByteReader& in, PropertyNode*& out, std::uint32_t depth) {
        if (depth >= kResourceMaxDepth)
            return Damaged(in, Format(u"nodes nest deeper than %u levels", kResourceMaxDepth));
        if (++nodes_ > expectedNodes_)
            return Damaged(in, u"there are more nodes than the header counts");
        std::uint32_t index;
        if (!in.Varint(index)) return Damaged(in, u"a node is cut short");
        if (index >= shapes_.size())
            return Damaged(in, Format(u"a node has the unknown shape %u", index));
        const Shape& s = shapes_[index];
        PropertyNode* node = PropertyNode::CreateChecked(s.name, s.type, s.flags,
                                                         s.attributes);  // checked in Tables()
        // The caller's reference; released below on failure, which frees any children read so far.
        node->AddRef();
        if (!Value(in, node, s, depth)) {
            node->Release();
            return false;
        }
        out = node;
        return true;
    }

    bool Value(ByteReader& in, PropertyNode* node, const Shape& s, std::uint32_t depth) {
        switch (s.group) {
            case kTsTypeInt: {
                std::int32_t v;
                if (!in.ZigZag(v)) break;
                node->SetRawInt(v);
                return true;
            }
            case kTsTypeUInt: {
                std::uint32_t v;
                if (!in.Varint(v)) break;
                node->SetRawUInt(v);
                return true;
            }
            case kTsTypeFloat: {
                float v;
                if (!in.Raw(v)) break;
                node->SetRawFloat(v);
                return true;
            }
            case kTsTypeDouble: {
                double v;
                if (!in.Raw(v)) break;
                node->SetRawDouble(v);
                return true;
            }
            case kTsTypeBool: {
                std::uint8_t v;
                if (!in.Byte(v)) break;
                if (v > 1) return Damaged(in, Format(u"a true-or-false value holds %u", v));
                node->SetRawBool(v != 0);
                return true;
            }
            case kTsTypeVector: {
                TsVector3 v;
                if (!in.Raw(v)) break;
                node->SetRawVector(v);
                return true;
            }
            case kTsTypeColour: {
                TsColour v;
                if (!in.Raw(v)) break;
                node->SetRawColour(v);
                return true;
            }
            case kTsTypeString: {
                std::uint32_t units;
                if (!in.Varint(units) || units > in.Remaining()) break;
                if (units && !in.Text(node->AllocateRawText(units), units))
                    return Damaged(in, u"a text is cut short or not valid text");
                return true;
            }
            case kTsTypeBlob: {
                std::uint32_t size;
                if (!in.Varint(size) || size > in.Remaining()) break;
                if (size) in.Bytes(node->AllocateRawBytes(size), size);
                return true;
            }
            default:
                return Children(in, node, depth);
        }
        return Damaged(in, u"a value is cut short");
    }

    bool Children(ByteReader& in, PropertyNode* node, std::uint32_t depth) {
        std::uint32_t count;
        if (!in.Varint(count) || count > in.Remaining()) return Damaged(in, u"a list is cut short");
        // Lists never hold more elements in all than the header counts nodes; checking the sum
        // keeps damaged counts from reserving more memory than a whole valid tree would take.
        reservedChildren_ += count;
        if (reservedChildren_ >= expectedNodes_)
            return Damaged(in, u"the lists hold more nodes than the header counts");
        node->ReserveChildren(count);
        for (std::uint32_t i = 0; i < count; ++i) {
            PropertyNode* child = nullptr;
            if (!Node(in, child, depth + 1)) return false;
            node->AppendReservedChild(child);
            child->Release();  // the list holds it now
        }
        return true;
    }

    std::span<const std::uint8_t> bytes_;
    std::u16string* error_;
    std::uint32_t expectedNodes_ = 0;
    std::uint32_t nodes_ = 0;
    std::uint64_t reservedChildren_ = 0;
    std::vector<TsAtom> atoms_;
    std::vector<std::uint32_t> attributeSets_;
    std::vector<Shape> shapes_;
};

}  // namespace

bool DecodeResource(std::span<const std::uint8_t> bytes, CTsComPtr<ITsProperty>& root,
                    std::u16string* error, const ResourceDecodeOptions& options) {
    root.Reset();
    CTsComPtr<ITsProperty> decoded;
    if (!Decoder(bytes, error).Decode(decoded, options)) return false;
    root = decoded;
    return true;
}

}  // namespace ts
