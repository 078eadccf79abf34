#include "support/sample_trees.h"

#include <limits>
#include <string>

namespace ts::test {

namespace {

using Node = CTsComPtr<ITsProperty>;

Node Add(ITsProperty* parent, std::u16string_view name, std::uint32_t type, std::uint32_t flags = 0,
         std::u16string_view display = {}, std::u16string_view editor = {}) {
    Node n;
    TsCreateProperty(name, type, flags, display, {}, {}, {}, editor, n.Put());
    parent->InsertChild(kTsAppend, n.Get());
    return n;
}

template <class T>
void AddValue(ITsProperty* parent, std::u16string_view name, std::uint32_t type, T value,
              std::uint32_t flags = 2) {
    Add(parent, name, type, flags)->SetValue(variant(type, value));
}

}  // namespace

CTsComPtr<ITsProperty> MakeSampleTree() {
    Node root;
    TsCreateProperty(u"Sample", kTsTypeList, 2, u"Agent", u"Resource", u"Top", u"A sample resource",
                     u"", root.Put());
    Node name;
    TsCreateProperty(u"ResRefName", kTsTypeString, 2060, u"Resource Name", u"", u"",
                     u"A unique string identifier", u"", name.Put());
    name->SetValue(variant(kTsTypeString, u"sample"));
    root->InsertChild(kTsAppend, name.Get());

    AddValue(root.Get(), u"Count", kTsTypeInt, std::numeric_limits<std::int32_t>::min());
    AddValue(root.Get(), u"Seed", kTsTypeUInt, std::numeric_limits<std::uint32_t>::max());
    AddValue(root.Get(), u"Seed2", kTsTypeUInt2, 300u);
    AddValue(root.Get(), u"NegZero", kTsTypeFloat, -0.0f);
    AddValue(root.Get(), u"NotANumber", kTsTypeFloat, std::numeric_limits<float>::quiet_NaN());
    AddValue(root.Get(), u"Tiny", kTsTypeFloat, std::numeric_limits<float>::denorm_min());
    AddValue(root.Get(), u"Exact", kTsTypeDouble, 0.1);
    AddValue(root.Get(), u"SentOn", kTsTypeDateTime, 45123.625);
    AddValue(root.Get(), u"Position", kTsTypeVector, TsVector3{1.5f, -2.25f, 1e30f}, 2050);
    AddValue(root.Get(), u"Fog", kTsTypeColour, TsColour{0.5f, 0.25f, 1.0f, 0.75f});
    AddValue(root.Get(), u"Result", kTsTypeBool, true);
    AddValue(root.Get(), u"Empty", kTsTypeString, u"");
    AddValue(root.Get(), u"Other", kTsTypeString2, u"kind 18");
    AddValue(root.Get(), u"Raw", kTsTypeBlob, std::vector<std::uint8_t>{0, 1, 2, 255, 0});
    AddValue(root.Get(), u"NoBytes", kTsTypeBlob, std::vector<std::uint8_t>{});
    Add(root.Get(), u"EmptyList", kTsTypeList, 64);

    Node lines = Add(root.Get(), u"LineList", kTsTypeList, 64);
    const std::u16string texts[] = {
        u"Well met, traveller.",
        u"Gr\u00fc\u00dfe aus K\u00f6ln \u2014 \u65e5\u672c\u8a9e \U0001F600",
        std::u16string(u"lone ") + char16_t(0xD800) + u" high, lone " + char16_t(0xDC00) + u" low",
    };
    int index = 0;
    for (const auto& text : texts) {
        Node line = Add(lines.Get(), u"Agent", kTsTypeList, 2, u"Agent");
        AddValue(line.Get(), u"StringID", kTsTypeInt, 100 + index, 0);
        Add(line.Get(), u"Text", kTsTypeString, 2, u"Text")->SetValue(variant(kTsTypeString, text));
        AddValue(line.Get(), u"Speaker", kTsTypeString, index == 0 ? u"OWNER" : u"guard_01");
        AddValue(line.Get(), u"ConditionScriptURI", kTsTypeString, u"", 2050);
        Node transitions = Add(line.Get(), u"TransitionList", kTsTypeList, 64);
        for (int t = 0; t < index; ++t) {
            Node transition = Add(transitions.Get(), u"Agent", kTsTypeList, 2, u"Agent");
            AddValue(transition.Get(), u"IsLink", kTsTypeBool, t % 2 == 1, 0);
            AddValue(transition.Get(), u"LineIndex", kTsTypeInt, t, 0);
        }
        ++index;
    }
    // The same name declared twice with different attributes and types.
    Add(root.Get(), u"Text", kTsTypeString, 2, u"Other text", u"ScriptSelect")
        ->SetValue(variant(kTsTypeString, u"x"));
    Add(root.Get(), u"Text", kTsTypeInt, 0);
    return root;
}

}  // namespace ts::test
