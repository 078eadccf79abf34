// The binary resource format: exact round trips, and damage refused with a reason, never a crash.
#include <gtest/gtest.h>

#include <tuple>

#include "support/sample_trees.h"
#include "ts/comobject.h"
#include "ts/propertycompare.h"
#include "ts/resourcecodec.h"

namespace {

using Node = CTsComPtr<ITsProperty>;
using ts::test::MakeSampleTree;

std::vector<std::uint8_t> Encode(ITsProperty* root) {
    std::vector<std::uint8_t> bytes;
    std::u16string error;
    EXPECT_TRUE(ts::EncodeResource(root, bytes, &error)) << ts::Utf16ToUtf8(error);
    return bytes;
}

std::u16string DecodeError(const std::vector<std::uint8_t>& bytes) {
    Node root;
    std::u16string error;
    EXPECT_FALSE(ts::DecodeResource(bytes, root, &error));
    EXPECT_FALSE(root);
    EXPECT_FALSE(error.empty());
    return error;
}

bool Contains(const std::u16string& text, std::u16string_view part) {
    return text.find(part) != std::u16string::npos;
}

TEST(ResourceCodec, EveryKindOfValueAndDeclarationSurvivesExactly) {
    Node tree = MakeSampleTree(), back;
    auto bytes = Encode(tree.Get());
    std::u16string error;
    ASSERT_TRUE(ts::DecodeResource(bytes, back, &error)) << ts::Utf16ToUtf8(error);
    EXPECT_TRUE(ts::PropertyTreesEqual(tree.Get(), back.Get(), &error)) << ts::Utf16ToUtf8(error);
    // Encoding is deterministic, so a decoded resource re-encodes to the same bytes.
    EXPECT_EQ(Encode(back.Get()), bytes);

    // Comparison names where trees differ: here the text of the second line only.
    Node lines, line, text;
    ASSERT_EQ(back->FindChild(TsAddAtom(u"LineList"), 0, lines.Put()), S_OK);
    ASSERT_EQ(lines->GetChildAt(1, line.Put()), S_OK);
    ASSERT_EQ(line->FindChild(TsAddAtom(u"Text"), 0, text.Put()), S_OK);
    ASSERT_EQ(text->SetValue(variant(kTsTypeString, u"Changed")), S_OK);
    EXPECT_FALSE(ts::PropertyTreesEqual(tree.Get(), back.Get(), &error));
    EXPECT_EQ(error, u"Sample/LineList/Agent[1]/Text: the values differ");

    // A float that differs only in the sign of zero is a different value.
    Node za, zb;
    ASSERT_EQ(TsCreateProperty(u"Delay", kTsTypeFloat, 0, za.Put()), S_OK);
    ASSERT_EQ(TsCreateProperty(u"Delay", kTsTypeFloat, 0, zb.Put()), S_OK);
    zb->SetValue(variant(kTsTypeFloat, -0.0f));
    EXPECT_FALSE(ts::PropertyTreesEqual(za.Get(), zb.Get()));
}

// Every cut, every flipped byte and every header fault is refused with its reason.
TEST(ResourceCodec, DamagedBytesAreRefusedWithTheirReason) {
    auto bytes = Encode(MakeSampleTree().Get());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        auto error = DecodeError({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(i)});
        EXPECT_TRUE(i < 4 || Contains(error, u"truncated")) << i << ": " << ts::Utf16ToUtf8(error);
        for (std::uint8_t mask : {0x01, 0x80, 0xFF}) {
            auto damaged = bytes;
            damaged[i] ^= mask;
            error = DecodeError(damaged);
            EXPECT_TRUE(i < ts::kResourceHeaderSize || Contains(error, u"checksum"))
                << i << ": " << ts::Utf16ToUtf8(error);
        }
    }

    EXPECT_TRUE(Contains(DecodeError({}), u"not a resource"));
    std::string sqlite("SQLite format 3\0\0\0\0\0\0", 21);
    EXPECT_TRUE(Contains(DecodeError({sqlite.begin(), sqlite.end()}), u"not a resource"));
    auto newer = bytes;
    newer[4] = 9;
    EXPECT_TRUE(Contains(DecodeError(newer), u"newer toolset (format version 9"));
    bytes.push_back(0);
    EXPECT_TRUE(Contains(DecodeError(bytes), u"1 bytes follow its end"));
}

// Bytes whose checksum is right but whose structure is not, as a damaged writer or a fuzzer
// would make them: the decoder must refuse each with a message, never crash or loop.
TEST(ResourceCodec, StructuralDamageBehindAValidChecksumIsRefused) {
    auto make = [](std::vector<std::uint8_t> payload, std::uint32_t nodes) {
        std::vector<std::uint8_t> bytes = {'M', 'T', 'R', 'F', 1, 0, 0, 0};
        auto put32 = [&](std::uint32_t v) {
            for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
        };
        put32(static_cast<std::uint32_t>(payload.size()));
        put32(nodes);
        put32(ts::Crc32(payload, ts::Crc32({bytes.data(), 16})));
        bytes.insert(bytes.end(), payload.begin(), payload.end());
        return bytes;
    };
    // names: 1 "B"; attribute sets: 1 (all empty); shapes: 1 (name 0, bool, flags 0, set 0)
    std::vector<std::uint8_t> tables = {1, 1, 'B', 1, 0, 0, 0, 0, 0, 1, 0, 15, 0, 0};
    auto with = [&](std::initializer_list<std::uint8_t> node) {
        auto p = tables;
        p.insert(p.end(), node);
        return p;
    };

    Node ok;
    ASSERT_TRUE(ts::DecodeResource(make(with({0, 1}), 1), ok));
    variant v;
    ok->GetValue(&v);
    EXPECT_TRUE(v.GetBool());

    // With one list shape: a chain of lists deeper than the limit, each claiming one child, and a
    // list that claims far more children than the resource can hold.
    std::vector<std::uint8_t> deep = {1, 1, 'L', 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0}, greedy = deep;
    for (std::uint32_t i = 0; i < ts::kResourceMaxDepth + 1; ++i) deep.insert(deep.end(), {0, 1});
    greedy.insert(greedy.end(), {0, 0xFF, 0xFF, 3});
    greedy.resize(greedy.size() + 70000, 0);

    const std::tuple<std::vector<std::uint8_t>, std::uint32_t, const char16_t*> cases[] = {
        {with({0, 2}), 1, u"a true-or-false value holds 2"},
        {with({5, 1}), 1, u"unknown shape 5"},
        {with({0, 1, 0}), 1, u"1 bytes follow the last node"},
        {with({0}), 1, u"a value is cut short"},
        {with({0, 1}), 0, u"counts 0 nodes"},
        {with({0, 1}), 2, u"counts 2 nodes but 1 were read"},
        {with({0x80, 0x80, 0x80, 0x80, 0x80, 0x01}), 1, u"a node is cut short"},  // a 6-byte varint
        // The tables with the shape's type 7, an empty name, a name that is not valid WTF-8.
        {{1, 1, 'B', 1, 0, 0, 0, 0, 0, 1, 0, 7, 0, 0, 0, 1}, 1, u"unknown type code 7"},
        {{1, 0, 1, 0, 0, 0, 0, 0, 1, 0, 15, 0, 0, 0, 1}, 1, u"name 0 is empty"},
        {{1, 2, 0xC3, 0x28, 1, 0, 0, 0, 0, 0, 1, 0, 15, 0, 0, 0, 1}, 1, u"not valid text"},
        {deep, ts::kResourceMaxDepth + 2, u"nest deeper than 128"},
        {greedy, 3, u"more nodes than the header counts"},
    };
    for (const auto& [payload, nodes, words] : cases) {
        auto error = DecodeError(make(payload, nodes));
        EXPECT_TRUE(Contains(error, words)) << ts::Utf16ToUtf8(error);
    }
}

TEST(ResourceCodec, RefusesToEncodeTreesTooDeepOrCyclic) {
    Node a, b;
    ASSERT_EQ(TsCreateProperty(u"A", kTsTypeList, 0, a.Put()), S_OK);
    ASSERT_EQ(TsCreateProperty(u"B", kTsTypeList, 0, b.Put()), S_OK);
    ASSERT_EQ(a->InsertChild(kTsAppend, b.Get()), S_OK);
    ASSERT_EQ(b->InsertChild(kTsAppend, a.Get()), S_OK);  // a cycle, the caller's error
    std::vector<std::uint8_t> bytes;
    std::u16string error;
    EXPECT_FALSE(ts::EncodeResource(a.Get(), bytes, &error));
    EXPECT_TRUE(bytes.empty());
    EXPECT_TRUE(Contains(error, u"deeper than 128 levels")) << ts::Utf16ToUtf8(error);
    b->RemoveChildAt(0);  // break the cycle so both are freed

    EXPECT_FALSE(ts::EncodeResource(nullptr, bytes, &error));
}

// A node implemented outside the framework (as a plugin might), offering only what a reader of
// the tree needs: the encoder reads it through the interface alone.
class ForeignNode : public CTsComObjectRoot<ITsProperty> {
public:
    using View = std::u16string_view;
    void Wrap(ITsProperty* inner) { in_ = CTsComPtr<ITsProperty>(inner); }
    TsAtom GetNameAtom() override { return in_->GetNameAtom(); }
    std::uint32_t GetType() override { return in_->GetType(); }
    std::uint32_t GetFlags() override { return in_->GetFlags(); }
    HRESULT GetAttribute(TsPropertyAttribute w, char16_t** t) override {
        return in_->GetAttribute(w, t);
    }
    HRESULT GetChildArray(ITsProperty* const** c, std::uint32_t* n) override {
        return in_->GetChildArray(c, n);
    }
    HRESULT GetValue(variant* v) override { return in_->GetValue(v); }
    HRESULT GetName(char16_t**) override { return E_NOTIMPL; }
    HRESULT SetAttribute(TsPropertyAttribute, View) override { return E_NOTIMPL; }
    HRESULT CreateProperty(View, std::uint32_t, std::uint32_t, View, View, View, View, View,
                           ITsProperty**) override {
        return E_NOTIMPL;
    }
    HRESULT FindChild(TsAtom, std::uint32_t, ITsProperty**) override { return E_NOTIMPL; }
    HRESULT GetChildCount(TsAtom, std::uint32_t*) override { return E_NOTIMPL; }
    HRESULT GetChildAt(std::uint32_t, ITsProperty**) override { return E_NOTIMPL; }
    HRESULT InsertChild(std::uint32_t, ITsProperty*) override { return E_NOTIMPL; }
    HRESULT RemoveChild(ITsProperty*) override { return E_NOTIMPL; }
    HRESULT RemoveChildAt(std::uint32_t) override { return E_NOTIMPL; }
    HRESULT SetValue(const variant&) override { return E_NOTIMPL; }
    HRESULT Clone(std::uint32_t, ITsProperty**) override { return E_NOTIMPL; }
    HRESULT Reset() override { return E_NOTIMPL; }

private:
    CTsComPtr<ITsProperty> in_;
};

// Each node of the sample (a value of every type, a list) encodes as its framework twin does.
TEST(ResourceCodec, EncodesNodesOfOtherImplementations) {
    Node tree = MakeSampleTree();
    ITsProperty* const* children = nullptr;
    std::uint32_t count = 0;
    ASSERT_EQ(tree->GetChildArray(&children, &count), S_OK);
    std::vector<ITsProperty*> nodes(children, children + count);
    nodes.push_back(tree.Get());
    for (ITsProperty* node : nodes) {
        auto foreign = CTsComObject<ForeignNode>::Create();
        foreign->Wrap(node);
        EXPECT_EQ(Encode(foreign.Get()), Encode(node))
            << ts::Utf16ToUtf8(std::u16string(TsGetAtomName(node->GetNameAtom())));
    }
}

}  // namespace
