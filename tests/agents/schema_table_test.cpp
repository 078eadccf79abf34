// Walks every declared field of every resource record against the expectation lists in
// data/*.tsv, kept by hand and never generated from this code: the field tables themselves, and
// the nodes that CreateOn builds from them.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <typeindex>
#include <vector>

#include "agents/agentarea.h"
#include "agents/agentconversation.h"
#include "agents/agentcreature.h"
#include "agents/agentcutscene.h"
#include "agents/agentplot.h"
#include "agents/agentscript.h"
#include "agents/agentstage.h"
#include "support/variant_print.h"
#include "ts/hoststring.h"
#include "ts/text.h"

namespace {

const std::filesystem::path kDataFolder = std::filesystem::path(__FILE__).parent_path() / "data";

using Cells = std::vector<std::string>;

// Rows of a tab-separated file; '#' lines are comments. Cells are kept exactly (a leading blank
// is part of a display name).
std::vector<Cells> ReadTable(const std::string& file, std::size_t columns) {
    std::ifstream in(kDataFolder / file);
    EXPECT_TRUE(in) << "cannot read " << (kDataFolder / file);
    std::vector<Cells> rows;
    std::string line;
    int number = 0;
    while (std::getline(in, line)) {
        ++number;
        if (line.empty() || line[0] == '#') continue;
        Cells cells;
        std::size_t start = 0;
        for (;;) {
            std::size_t tab = line.find('\t', start);
            cells.push_back(line.substr(start, tab - start));
            if (tab == std::string::npos) break;
            start = tab + 1;
        }
        EXPECT_EQ(cells.size(), columns) << file << ":" << number;
        cells.resize(columns);
        rows.push_back(std::move(cells));
    }
    return rows;
}

struct FieldRow {
    std::string record, name, type, flags, display, category, subCategory, description, editor, value;
};

struct RecordRow {
    std::string base, source, kindField, kindValue;
};

// Expected fields by the record that declares them, in declaration order.
std::map<std::string, std::vector<FieldRow>> ExpectedFields() {
    std::map<std::string, std::vector<FieldRow>> fields;
    for (const char* file : {"resources.tsv", "conversation.tsv", "stage.tsv", "cutscene.tsv"})
        for (auto& c : ReadTable(file, 10))
            fields[c[0]].push_back({c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7], c[8], c[9]});
    return fields;
}

std::map<std::string, RecordRow> ExpectedRecords() {
    std::map<std::string, RecordRow> records;
    for (auto& c : ReadTable("records.tsv", 5)) records[c[0]] = {c[1], c[2], c[3], c[4]};
    return records;
}

std::uint32_t TypeCode(const std::string& type) {
    static const std::map<std::string, std::uint32_t> codes = {
        {"list", 0},    {"int", 5},     {"unsigned", 6}, {"float", 9},   {"double", 10},
        {"string", 11}, {"vector", 13}, {"bool", 15},    {"datetime", 17}, {"colour", 19}};
    auto it = codes.find(type);
    EXPECT_NE(it, codes.end()) << "unknown type " << type;
    return it == codes.end() ? 0xFFFF : it->second;
}

std::vector<float> Numbers(const std::string& text) {
    std::vector<float> numbers;
    std::stringstream in(text);
    std::string part;
    while (std::getline(in, part, ',')) numbers.push_back(std::stof(part));
    return numbers;
}

// The value a default cell stands for; empty for "(none)".
variant ExpectedValue(const std::string& type, const std::string& cell) {
    if (cell == "(none)") return {};
    const std::uint32_t code = TypeCode(type);
    switch (code) {
        case kTsTypeInt: return variant(code, static_cast<std::int32_t>(std::stol(cell)));
        case kTsTypeUInt: return variant(code, static_cast<std::uint32_t>(std::stoul(cell)));
        case kTsTypeFloat: return variant(code, std::stof(cell));
        case kTsTypeDouble:
        case kTsTypeDateTime: return variant(code, std::stod(cell));
        case kTsTypeString: return variant(code, ts::Utf8ToUtf16(cell));
        case kTsTypeBool:
            EXPECT_TRUE(cell == "true" || cell == "false") << cell;
            return variant(code, cell == "true");
        case kTsTypeVector: {
            auto n = Numbers(cell);
            EXPECT_EQ(n.size(), 3u) << cell;
            n.resize(3);
            return variant(code, TsVector3{n[0], n[1], n[2]});
        }
        case kTsTypeColour: {
            auto n = Numbers(cell);
            EXPECT_EQ(n.size(), 4u) << cell;
            n.resize(4);
            return variant(code, TsColour{n[0], n[1], n[2], n[3]});
        }
        default: ADD_FAILURE() << "no default can be written for " << type; return {};
    }
}

// What a value node of this type holds before anything is written to it.
variant ZeroValue(std::uint32_t type) {
    CTsComPtr<ITsProperty> node;
    EXPECT_EQ(TsCreateProperty(u"Zero", type, 0, node.Put()), S_OK);
    variant value;
    if (node) node->GetValue(&value);
    return value;
}

std::string Text(const char16_t* text) { return ts::Utf16ToUtf8(text ? text : u""); }

std::string Attribute(ITsProperty* node, TsPropertyAttribute which) {
    CTsHostString text;
    node->GetAttribute(which, text.Put());
    return ts::Utf16ToUtf8(text.View());
}

// One record class as the code declares it.
struct RecordInfo {
    std::string name;
    std::type_index type;
    std::type_index base;
    std::string source;
    std::span<const TsFieldDecl> ownFields;
    std::function<std::unique_ptr<CAgentBase>()> make;
};

template <class T>
RecordInfo Describe(const char* name) {
    return {name, typeid(T), typeid(typename T::Base), T::kSourceHeader, T::Fields(),
            [] { return std::make_unique<T>(); }};
}

#define TS_RECORD(T) Describe<T>(#T)

const std::vector<RecordInfo>& Records() {
    static const std::vector<RecordInfo> records = {
        TS_RECORD(CAgentGameObject),
        TS_RECORD(CAgentConversation),
        TS_RECORD(CAgentConversationLine),
        TS_RECORD(CAgentConversationStart),
        TS_RECORD(CAgentConversationTransition),
        TS_RECORD(CAgentConversationCinematicsInfo),
        TS_RECORD(CAgentConversationAnimationList),
        TS_RECORD(CAgentConversationAnimation),
        TS_RECORD(CAgentConversationTagMapEntry),
        TS_RECORD(CAgentLocalizationStatus),
        TS_RECORD(CAgentVORecordingStatus),
        TS_RECORD(CAgentStage),
        TS_RECORD(CAgentRenderObject),
        TS_RECORD(CAgentStageObject),
        TS_RECORD(CAgentStageCamera),
        TS_RECORD(CAgentStagePlace),
        TS_RECORD(CAgentStageObjectReference),
        TS_RECORD(CAgentCutscene),
        TS_RECORD(CAgentCutsceneCurveList),
        TS_RECORD(CAgentCutsceneCurve),
        TS_RECORD(CAgentCutsceneCurveKey),
        TS_RECORD(CAgentCutsceneActor),
        TS_RECORD(CAgentCutsceneMaster),
        TS_RECORD(CAgentCutsceneCamera),
        TS_RECORD(CAgentCutsceneCreature),
        TS_RECORD(CAgentCutsceneVFX),
        TS_RECORD(CAgentCutsceneTrack),
        TS_RECORD(CAgentCutsceneActionTransition),
        TS_RECORD(CAgentCutsceneAction),
        TS_RECORD(CAgentCutsceneActionPlayAnimation),
        TS_RECORD(CAgentCutsceneActionSpeakLine),
        TS_RECORD(CAgentCutsceneActionActiveCamera),
        TS_RECORD(CAgentCutsceneActionShake),
        TS_RECORD(CAgentCutsceneActionShakeOrientation),
        TS_RECORD(CAgentCutsceneActionFade),
        TS_RECORD(CAgentCutsceneActionJumpToStageCamera),
        TS_RECORD(CAgentCutsceneActionJumpToStagePlace),
        TS_RECORD(CAgentCutsceneActionLinkActor),
        TS_RECORD(CAgentCutsceneActionHeadtracking),
        TS_RECORD(CAgentCutsceneActionSound),
        TS_RECORD(CAgentCutsceneActionChangeVisibility),
        TS_RECORD(CAgentCutsceneActionTogglePhysics),
        TS_RECORD(CAgentCutsceneActionSnapToWalkmesh),
        TS_RECORD(CAgentCutsceneActionFrameBufferEffect),
        TS_RECORD(CAgentCutsceneActionDrawWeapon),
        TS_RECORD(CAgentCutsceneActionPlayBinkMovie),
        TS_RECORD(CAgentCutsceneActionAnimateFace),
        TS_RECORD(CAgentCutsceneActionSetGore),
        TS_RECORD(CAgentCutsceneActionSetFog),
        TS_RECORD(CAgentCutsceneActionSkipMarker),
        TS_RECORD(CAgentPlot),
        TS_RECORD(CAgentPlotStatus),
        TS_RECORD(CAgentCreature),
        TS_RECORD(CAgentArea),
        TS_RECORD(CAgentAreaObject),
        TS_RECORD(CAgentScript),
    };
    return records;
}

std::string NameOfType(std::type_index type) {
    if (type == typeid(CAgentBase)) return "CAgentBase";
    for (const auto& r : Records())
        if (r.type == type) return r.name;
    return std::string("unregistered ") + type.name();
}

// The full expected node list of a record: its bases' fields first, each record's kind value
// written over the field it names.
std::vector<FieldRow> ExpectedNodes(const std::string& record) {
    static const auto fields = ExpectedFields();
    static const auto records = ExpectedRecords();
    std::vector<std::string> chain;
    for (std::string r = record; r != "CAgentBase";) {
        chain.insert(chain.begin(), r);
        auto it = records.find(r);
        if (it == records.end()) {
            ADD_FAILURE() << r << " is not in records.tsv";
            break;
        }
        r = it->second.base;
    }
    std::vector<FieldRow> nodes;
    for (const auto& r : chain) {
        if (auto it = fields.find(r); it != fields.end())
            nodes.insert(nodes.end(), it->second.begin(), it->second.end());
        const RecordRow& kind = records.at(r);
        if (kind.kindField.empty()) continue;
        bool found = false;
        for (auto& n : nodes)
            if (n.name == kind.kindField) n.value = kind.kindValue, found = true;
        EXPECT_TRUE(found) << r << " writes its kind into " << kind.kindField << ", which no base declares";
    }
    return nodes;
}

TEST(ResourceSchemas, EveryRecordIsDeclaredWithItsBaseAndSource) {
    const auto expected = ExpectedRecords();
    std::set<std::string> declared;
    for (const auto& r : Records()) {
        SCOPED_TRACE(r.name);
        declared.insert(r.name);
        auto it = expected.find(r.name);
        ASSERT_NE(it, expected.end()) << "not in records.tsv";
        EXPECT_EQ(NameOfType(r.base), it->second.base);
        EXPECT_EQ(r.source, it->second.source);
    }
    for (const auto& [name, row] : expected) EXPECT_TRUE(declared.count(name)) << name << " has no agent";
    for (const auto& [name, rows] : ExpectedFields())
        EXPECT_TRUE(expected.count(name)) << "fields listed for " << name << ", which records.tsv lacks";
}

TEST(ResourceSchemas, EachFieldTableMatchesItsExpectationRowByRow) {
    const auto expected = ExpectedFields();
    for (const auto& r : Records()) {
        SCOPED_TRACE(r.name);
        auto it = expected.find(r.name);
        const std::vector<FieldRow> none;
        const auto& rows = it == expected.end() ? none : it->second;
        ASSERT_EQ(r.ownFields.size(), rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const TsFieldDecl& f = r.ownFields[i];
            const FieldRow& e = rows[i];
            SCOPED_TRACE(e.name);
            EXPECT_EQ(Text(f.name), e.name);
            EXPECT_EQ(f.type, TypeCode(e.type));
            EXPECT_EQ(std::to_string(f.flags), e.flags);
            EXPECT_EQ(Text(f.displayName), e.display);
            EXPECT_EQ(Text(f.category), e.category);
            EXPECT_EQ(Text(f.subCategory), e.subCategory);
            EXPECT_EQ(Text(f.description), e.description);
            EXPECT_EQ(Text(f.editorKind), e.editor);
            EXPECT_EQ(TsDefaultVariant(f), ExpectedValue(e.type, e.value));
        }
    }
}

TEST(ResourceSchemas, CreateOnBuildsEveryFieldWithItsDefault) {
    for (const auto& r : Records()) {
        SCOPED_TRACE(r.name);
        const auto expected = ExpectedNodes(r.name);
        CTsComPtr<ITsProperty> root;
        ASSERT_EQ(TsCreateProperty(u"Agent", kTsTypeList, 2, root.Put()), S_OK);
        auto agent = r.make();
        ASSERT_TRUE(agent->CreateOn(root.Get()));

        ITsProperty* const* nodes = nullptr;
        std::uint32_t count = 0;
        ASSERT_EQ(root->GetChildArray(&nodes, &count), S_OK);
        ASSERT_EQ(count, expected.size());
        for (std::uint32_t i = 0; i < count; ++i) {
            ITsProperty* node = nodes[i];
            const FieldRow& e = expected[i];
            SCOPED_TRACE(e.name);
            CTsHostString name;
            node->GetName(name.Put());
            EXPECT_EQ(ts::Utf16ToUtf8(name.View()), e.name);
            EXPECT_EQ(node->GetType(), TypeCode(e.type));
            EXPECT_EQ(std::to_string(node->GetFlags()), e.flags);
            EXPECT_EQ(Attribute(node, TsPropertyAttribute::DisplayName), e.display);
            EXPECT_EQ(Attribute(node, TsPropertyAttribute::Category), e.category);
            EXPECT_EQ(Attribute(node, TsPropertyAttribute::SubCategory), e.subCategory);
            EXPECT_EQ(Attribute(node, TsPropertyAttribute::Description), e.description);
            EXPECT_EQ(Attribute(node, TsPropertyAttribute::EditorKind), e.editor);
            if (node->GetType() == kTsTypeList) {
                std::uint32_t children = 1;
                EXPECT_EQ(node->GetChildCount(0, &children), S_OK);
                EXPECT_EQ(children, 0u) << "a new record's lists are empty";
                continue;
            }
            variant value, want = ExpectedValue(e.type, e.value);
            ASSERT_EQ(node->GetValue(&value), S_OK);
            EXPECT_EQ(value, want.empty() ? ZeroValue(node->GetType()) : want);
        }
    }
}

// Keyable values come in pairs: the keyed field (shown, flags 8) and its Base twin (hidden,
// flags 0), and a new record gives both the same value.
TEST(ResourceSchemas, KeyablePairsStartEqual) {
    std::set<std::string> pairs;
    for (const auto& r : Records()) {
        SCOPED_TRACE(r.name);
        auto agent = r.make();
        ASSERT_TRUE(agent->CreateOn(nullptr));
        ITsProperty* const* nodes = nullptr;
        std::uint32_t count = 0;
        ASSERT_EQ(agent->GetNode()->GetChildArray(&nodes, &count), S_OK);
        std::map<std::string, ITsProperty*> byName;
        for (std::uint32_t i = 0; i < count; ++i) {
            CTsHostString name;
            nodes[i]->GetName(name.Put());
            byName[ts::Utf16ToUtf8(name.View())] = nodes[i];
        }
        for (const auto& [name, twin] : byName) {
            if (name.size() <= 4 || name.compare(name.size() - 4, 4, "Base") != 0) continue;
            auto keyed = byName.find(name.substr(0, name.size() - 4));
            if (keyed == byName.end()) continue;
            SCOPED_TRACE(name);
            pairs.insert(keyed->first);
            EXPECT_EQ(keyed->second->GetFlags(), 8u);
            EXPECT_EQ(twin->GetFlags(), 0u);
            variant a, b;
            ASSERT_EQ(keyed->second->GetValue(&a), S_OK);
            ASSERT_EQ(twin->GetValue(&b), S_OK);
            EXPECT_EQ(a, b);
        }
    }
    EXPECT_EQ(pairs, (std::set<std::string>{"PositionX", "PositionY", "PositionZ", "Yaw", "Pitch", "Roll", "FOV",
                                            "Weight", "SoundParam1", "SoundParam2", "SoundParam3", "SoundParam4",
                                            "SoundParam5", "YawStrength", "PitchStrength", "RollStrength"}));
}

}  // namespace
