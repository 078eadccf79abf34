// Walks every declared field of every resource record against the expectation lists in
// data/*.tsv, kept by hand and never generated from this code: the field tables themselves, and
// the nodes that CreateOn builds from them.
#include <cxxabi.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <typeinfo>
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

using Cells = std::vector<std::string>;

// Rows of a tab-separated file of data/; '#' lines are comments. Cells are kept exactly (a
// leading blank is part of a display name).
std::vector<Cells> ReadTable(const char* file, std::size_t columns) {
    std::ifstream in(std::filesystem::path(__FILE__).parent_path() / "data" / file);
    EXPECT_TRUE(in) << "cannot read " << file;
    std::vector<Cells> rows;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        Cells cells(1);
        for (char c : line)
            if (c == '\t') cells.emplace_back();
            else cells.back().push_back(c);
        EXPECT_EQ(cells.size(), columns) << file << ": " << line;
        cells.resize(columns);
        rows.push_back(std::move(cells));
    }
    return rows;
}

const char* const kTypeNames[] = {"list", "", "", "", "", "int", "unsigned", "", "", "float", "double",
                                  "string", "", "vector", "", "bool", "", "datetime", "", "colour"};

std::string TypeName(std::uint32_t code) {
    return code < std::size(kTypeNames) && *kTypeNames[code] ? kTypeNames[code] : "type " + std::to_string(code);
}

// The value a default cell stands for; empty for "(none)".
variant ExpectedValue(const std::string& type, const std::string& cell) {
    if (cell == "(none)") return {};
    std::uint32_t code = 0;
    while (code < std::size(kTypeNames) && type != kTypeNames[code]) ++code;
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
            TsVector3 v;
            EXPECT_EQ(std::sscanf(cell.c_str(), "%f,%f,%f", &v.x, &v.y, &v.z), 3) << cell;
            return variant(code, v);
        }
        case kTsTypeColour: {
            TsColour c;
            EXPECT_EQ(std::sscanf(cell.c_str(), "%f,%f,%f,%f", &c.r, &c.g, &c.b, &c.a), 4) << cell;
            return variant(code, c);
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

std::string U8(const char16_t* text) { return ts::Utf16ToUtf8(text ? text : u""); }

std::string Attribute(ITsProperty* node, TsPropertyAttribute which) {
    CTsHostString text;
    node->GetAttribute(which, text.Put());
    return ts::Utf16ToUtf8(text.View());
}

std::string Demangle(const std::type_info& type) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status),
                                               std::free);
    return status == 0 ? name.get() : type.name();
}

// One record class as the code declares it.
struct RecordInfo {
    std::string name, base, source;
    std::span<const TsFieldDecl> ownFields;
    std::unique_ptr<CAgentBase> (*make)();
};

template <class... T>
std::vector<RecordInfo> Describe() {
    return {RecordInfo{Demangle(typeid(T)), Demangle(typeid(typename T::Base)), T::kSourceHeader, T::Fields(),
                       [] { return std::unique_ptr<CAgentBase>(new T); }}...};
}

const std::vector<RecordInfo> kRecords = Describe<
    CAgentGameObject, CAgentConversation, CAgentConversationLine, CAgentConversationStart,
    CAgentConversationTransition, CAgentConversationCinematicsInfo, CAgentConversationAnimationList,
    CAgentConversationAnimation, CAgentConversationTagMapEntry, CAgentLocalizationStatus, CAgentVORecordingStatus,
    CAgentStage, CAgentRenderObject, CAgentStageObject, CAgentStageCamera, CAgentStagePlace,
    CAgentStageObjectReference, CAgentCutscene, CAgentCutsceneCurveList, CAgentCutsceneCurve,
    CAgentCutsceneCurveKey, CAgentCutsceneActor, CAgentCutsceneMaster, CAgentCutsceneCamera,
    CAgentCutsceneCreature, CAgentCutsceneVFX, CAgentCutsceneTrack, CAgentCutsceneActionTransition,
    CAgentCutsceneAction, CAgentCutsceneActionPlayAnimation, CAgentCutsceneActionSpeakLine,
    CAgentCutsceneActionActiveCamera, CAgentCutsceneActionShake, CAgentCutsceneActionShakeOrientation,
    CAgentCutsceneActionFade, CAgentCutsceneActionJumpToStageCamera, CAgentCutsceneActionJumpToStagePlace,
    CAgentCutsceneActionLinkActor, CAgentCutsceneActionHeadtracking, CAgentCutsceneActionSound,
    CAgentCutsceneActionChangeVisibility, CAgentCutsceneActionTogglePhysics, CAgentCutsceneActionSnapToWalkmesh,
    CAgentCutsceneActionFrameBufferEffect, CAgentCutsceneActionDrawWeapon, CAgentCutsceneActionPlayBinkMovie,
    CAgentCutsceneActionAnimateFace, CAgentCutsceneActionSetGore, CAgentCutsceneActionSetFog,
    CAgentCutsceneActionSkipMarker, CAgentPlot, CAgentPlotStatus, CAgentCreature, CAgentArea, CAgentAreaObject,
    CAgentScript>();

// A field as the tables list it: name, type, flags, display name, category, sub-category,
// description, editor kind (the default cell is compared as a value).
Cells Row(const TsFieldDecl& f) {
    return {U8(f.name),     TypeName(f.type),     std::to_string(f.flags), U8(f.displayName),
            U8(f.category), U8(f.subCategory), U8(f.description),     U8(f.editorKind)};
}

Cells Row(ITsProperty* node) {
    CTsHostString name;
    node->GetName(name.Put());
    using A = TsPropertyAttribute;
    return {ts::Utf16ToUtf8(name.View()),       TypeName(node->GetType()),
            std::to_string(node->GetFlags()),   Attribute(node, A::DisplayName),
            Attribute(node, A::Category),       Attribute(node, A::SubCategory),
            Attribute(node, A::Description),    Attribute(node, A::EditorKind)};
}

TEST(ResourceSchemas, EveryRecordDeclaresAndBuildsTheListedFields) {
    std::map<std::string, std::vector<Cells>> ownFields;  // by declaring record, in order
    for (const char* file : {"resources.tsv", "conversation.tsv", "stage.tsv", "cutscene.tsv"})
        for (auto& c : ReadTable(file, 10)) ownFields[c[0]].push_back(Cells(c.begin() + 1, c.end()));
    std::map<std::string, Cells> records;  // base, source, kind field, kind value
    for (auto& c : ReadTable("records.tsv", 5)) records[c[0]] = Cells(c.begin() + 1, c.end());

    std::map<std::string, std::vector<Cells>> nodes;  // expected nodes: bases' fields first
    for (const auto& r : kRecords) {
        SCOPED_TRACE(r.name);
        auto record = records.find(r.name);
        ASSERT_NE(record, records.end()) << "not in records.tsv";
        const std::string &base = record->second[0], &kindField = record->second[2];
        EXPECT_EQ(r.base, base);
        EXPECT_EQ(r.source, record->second[1]);

        // The declaration, row by row; "(none)" is a field declared without a default.
        const auto& rows = ownFields[r.name];
        ASSERT_EQ(r.ownFields.size(), rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            EXPECT_EQ(Row(r.ownFields[i]), Cells(rows[i].begin(), rows[i].end() - 1));
            EXPECT_EQ(TsDefaultVariant(r.ownFields[i]), ExpectedValue(rows[i][1], rows[i][8])) << rows[i][0];
        }

        // The nodes CreateOn builds: the base's, then its own, the kind written over its field.
        std::vector<Cells>& expected = nodes[r.name];
        if (base != "CAgentBase") {
            ASSERT_TRUE(nodes.count(base)) << "list " << base << " before the records built on it";
            expected = nodes[base];
        }
        expected.insert(expected.end(), rows.begin(), rows.end());
        if (!kindField.empty()) {
            auto kind = std::find_if(expected.begin(), expected.end(), [&](auto& n) { return n[0] == kindField; });
            ASSERT_NE(kind, expected.end()) << "the kind field " << kindField << " is declared nowhere";
            (*kind)[8] = record->second[3];
        }

        CTsComPtr<ITsProperty> root;
        ASSERT_EQ(TsCreateProperty(u"Agent", kTsTypeList, 2, root.Put()), S_OK);
        ASSERT_TRUE(r.make()->CreateOn(root.Get()));
        ITsProperty* const* built = nullptr;
        std::uint32_t count = 0;
        ASSERT_EQ(root->GetChildArray(&built, &count), S_OK);
        ASSERT_EQ(count, expected.size());
        for (std::uint32_t i = 0; i < count; ++i) {
            const Cells& e = expected[i];
            EXPECT_EQ(Row(built[i]), Cells(e.begin(), e.end() - 1));
            if (built[i]->GetType() == kTsTypeList) {
                std::uint32_t children = 1;
                EXPECT_EQ(built[i]->GetChildCount(0, &children), S_OK);
                EXPECT_EQ(children, 0u) << e[0] << ": a new record's lists are empty";
                continue;
            }
            variant value, want = ExpectedValue(e[1], e[8]);
            ASSERT_EQ(built[i]->GetValue(&value), S_OK);
            EXPECT_EQ(value, want.empty() ? ZeroValue(built[i]->GetType()) : want) << e[0];
        }
    }
    for (const auto& [name, row] : records) EXPECT_TRUE(nodes.count(name)) << name << " has no agent";
    for (const auto& [name, rows] : ownFields) EXPECT_TRUE(records.count(name)) << name << " is not in records.tsv";
}

}  // namespace
