#include <gtest/gtest.h>

#include "support/sample_trees.h"
#include "ts/comptr.h"
#include "ts/hoststring.h"
#include "ts/property.h"
#include "ts/propertycompare.h"

namespace {

using Node = CTsComPtr<ITsProperty>;

Node Make(std::u16string_view name, std::uint32_t type, std::uint32_t flags = 0) {
    Node n;
    EXPECT_EQ(TsCreateProperty(name, type, flags, n.Put()), S_OK);
    return n;
}

std::u16string Attribute(ITsProperty* node, TsPropertyAttribute which) {
    CTsHostString text;
    EXPECT_EQ(node->GetAttribute(which, text.Put()), S_OK);
    return std::u16string(text.View());
}

TEST(PropertyTree, CreatesNodesWithTheirAttributes) {
    using enum TsPropertyAttribute;
    Node n, twin;
    ASSERT_EQ(TsCreateProperty(u"ResRefName", kTsTypeString, 2060, u"Resource Name", u"Cat", u"Sub",
                               u"Describes it", u"TagName", n.Put()),
              S_OK);
    CTsHostString name;
    ASSERT_EQ(n->GetName(name.Put()), S_OK);
    EXPECT_EQ(name.View(), u"ResRefName");
    EXPECT_EQ(n->GetNameAtom(), TsFindAtom(u"resrefname"));
    EXPECT_EQ(n->GetType(), kTsTypeString);
    EXPECT_EQ(n->GetFlags(), 2060u);
    const std::pair<TsPropertyAttribute, const char16_t*> given[] = {
        {DisplayName, u"Resource Name"},
        {Category, u"Cat"},
        {SubCategory, u"Sub"},
        {Description, u"Describes it"},
        {EditorKind, u"TagName"}};
    for (auto [which, text] : given) EXPECT_EQ(Attribute(n.Get(), which), text);

    // Setting an attribute changes that one only, and only on this node: nodes of the same
    // declaration share their attributes until one of them changes.
    ASSERT_EQ(n->CreateProperty(u"ResRefName", kTsTypeString, 2060, u"Resource Name", u"Cat",
                                u"Sub", u"Describes it", u"TagName", twin.Put()),
              S_OK);
    EXPECT_EQ(n->SetAttribute(EditorKind, u"PlotSelect"), S_OK);
    EXPECT_EQ(Attribute(n.Get(), EditorKind), u"PlotSelect");
    EXPECT_EQ(Attribute(n.Get(), Description), u"Describes it");
    for (auto [which, text] : given) EXPECT_EQ(Attribute(twin.Get(), which), text);

    CTsComPtr<IUnknown> unknown;
    EXPECT_EQ(n->QueryInterface(IUnknown::kIID, unknown.PutVoid()), S_OK);
    EXPECT_EQ(n->QueryInterface(IClassFactory::kIID, unknown.PutVoid()), E_NOINTERFACE);
    Node bad;
    EXPECT_EQ(TsCreateProperty(u"", kTsTypeInt, 0, bad.Put()), E_INVALIDARG);
    EXPECT_EQ(TsCreateProperty(u"X", 3, 0, bad.Put()), E_INVALIDARG) << "unknown type code";
    EXPECT_FALSE(bad);
}

TEST(PropertyTree, FindsCountsInsertsAndRemovesChildren) {
    Node list = Make(u"Agent", kTsTypeList, 2);
    Node a0 = Make(u"Tag", kTsTypeString), a1 = Make(u"Tag", kTsTypeString),
         b = Make(u"Weight", kTsTypeFloat);
    ASSERT_EQ(list->InsertChild(kTsAppend, a0.Get()), S_OK);
    ASSERT_EQ(list->InsertChild(kTsAppend, b.Get()), S_OK);
    ASSERT_EQ(list->InsertChild(0, a1.Get()), S_OK);  // a1, a0, b

    TsAtom tag = TsFindAtom(u"Tag");
    std::uint32_t count = 0;
    EXPECT_EQ(list->GetChildCount(tag, &count), S_OK);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(list->GetChildCount(0, &count), S_OK);
    EXPECT_EQ(count, 3u);

    Node found;
    ASSERT_EQ(list->FindChild(tag, 0, found.Put()), S_OK);
    EXPECT_EQ(found.Get(), a1.Get());
    ASSERT_EQ(list->FindChild(tag, 1, found.Put()), S_OK);
    EXPECT_EQ(found.Get(), a0.Get());
    EXPECT_EQ(list->FindChild(tag, 2, found.Put()), E_FAIL);
    EXPECT_FALSE(found);
    EXPECT_EQ(list->FindChild(TsAddAtom(u"Missing"), 0, found.Put()), E_FAIL);

    ITsProperty* const* items = nullptr;
    ASSERT_EQ(list->GetChildArray(&items, &count), S_OK);
    ASSERT_EQ(count, 3u);
    EXPECT_EQ(items[2], b.Get());

    EXPECT_EQ(list->RemoveChild(a1.Get()), S_OK);
    EXPECT_EQ(list->RemoveChild(a1.Get()), E_INVALIDARG) << "no longer a child";
    EXPECT_EQ(list->RemoveChildAt(5), E_INVALIDARG);
    EXPECT_EQ(list->RemoveChildAt(0), S_OK);
    ASSERT_EQ(list->GetChildAt(0, found.Put()), S_OK);
    EXPECT_EQ(found.Get(), b.Get());
    EXPECT_EQ(list->GetChildAt(1, found.Put()), E_INVALIDARG);

    // Value nodes have no children; a node is never its own child.
    EXPECT_EQ(b->InsertChild(kTsAppend, a0.Get()), E_INVALIDARG);
    EXPECT_EQ(list->InsertChild(kTsAppend, list.Get()), E_INVALIDARG);
    EXPECT_EQ(list->InsertChild(kTsAppend, nullptr), E_POINTER);
    EXPECT_EQ(b->GetChildCount(0, &count), E_FAIL);
}

TEST(PropertyTree, ValuesMustCarryTheNodesType) {
    Node s = Make(u"Text", kTsTypeString), d = Make(u"ExportedOn", kTsTypeDateTime);
    variant v;
    ASSERT_EQ(s->GetValue(&v), S_OK);
    EXPECT_EQ(v, variant(kTsTypeString, u"")) << "a new node holds its type's zero value";
    EXPECT_EQ(s->SetValue(variant(kTsTypeString, u"Hello \U0001F600")), S_OK);
    EXPECT_EQ(s->SetValue(variant(kTsTypeInt, std::int32_t(3))), E_INVALIDARG);
    ASSERT_EQ(s->GetValue(&v), S_OK);
    EXPECT_EQ(v.GetString(), u"Hello \U0001F600");

    EXPECT_EQ(d->SetValue(variant(kTsTypeDouble, 1.0)), E_INVALIDARG) << "date and double differ";
    EXPECT_EQ(d->SetValue(variant(kTsTypeDateTime, 46000.25)), S_OK);
    Node list = Make(u"StartList", kTsTypeList, 64);
    EXPECT_EQ(list->GetValue(&v), E_FAIL);
    EXPECT_EQ(list->SetValue(variant(kTsTypeList, std::int32_t(0))), E_INVALIDARG);
}

TEST(PropertyTree, ClonesDeepOrShallowAndResets) {
    // A deep copy is equal in every value, flag and declaration.
    Node sample = ts::test::MakeSampleTree(), copy;
    ASSERT_EQ(sample->Clone(kTsCloneDeep, copy.Put()), S_OK);
    std::u16string difference;
    EXPECT_TRUE(ts::PropertyTreesEqual(sample.Get(), copy.Get(), &difference))
        << ts::Utf16ToUtf8(difference);

    Node root = Make(u"Agent", kTsTypeList, 2), list = Make(u"TransitionList", kTsTypeList, 64);
    Node index = Make(u"LineIndex", kTsTypeInt);
    ASSERT_EQ(root->InsertChild(kTsAppend, list.Get()), S_OK);
    ASSERT_EQ(list->InsertChild(kTsAppend, index.Get()), S_OK);
    Node deep, shallow, shallowList;
    ASSERT_EQ(root->Clone(kTsCloneDeep, deep.Put()), S_OK);
    ASSERT_EQ(root->Clone(kTsCloneShallow, shallow.Put()), S_OK);
    ASSERT_EQ(shallow->GetChildAt(0, shallowList.Put()), S_OK);
    EXPECT_EQ(shallowList.Get(), list.Get()) << "a shallow copy shares its children";
    EXPECT_EQ(list->AddRef(), 5u) << "ours, the root's, the copy's, shallowList and this one";
    list->Release();
    // A change to the original shows through the shallow copy only.
    ASSERT_EQ(index->SetValue(variant(kTsTypeInt, std::int32_t(9))), S_OK);
    EXPECT_FALSE(ts::PropertyTreesEqual(root.Get(), deep.Get()));

    // Reset empties a container and zeroes a value; a node shared elsewhere lives on.
    ASSERT_EQ(root->Reset(), S_OK);
    std::uint32_t count = 1;
    ASSERT_EQ(root->GetChildCount(0, &count), S_OK);
    EXPECT_EQ(count, 0u);
    ASSERT_EQ(shallow->GetChildCount(0, &count), S_OK);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(list->AddRef(), 4u) << "the root released its reference";
    list->Release();
    ASSERT_EQ(index->Reset(), S_OK);
    variant v;
    ASSERT_EQ(index->GetValue(&v), S_OK);
    EXPECT_EQ(v.GetInt(), 0);
}

}  // namespace
