#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "agents/agentconversation.h"
#include "agents/agentcutscene.h"
#include "agents/agentplot.h"
#include "agents/agentstage.h"
#include "agents/resourceschemas.h"
#include "support/demo_module.h"
#include "support/test_folders.h"
#include "ts/configuration.h"
#include "ts/modulebuilder.h"
#include "ts/propertycompare.h"
#include "ts/resourcecodec.h"
#include "ts/resourcejson.h"
#include "ts/text.h"

namespace {

using Node = CTsComPtr<ITsProperty>;

std::string U8(const std::u16string& s) {
    return ts::Utf16ToUtf8(s);
}

// The demo module, built once from data/demo for the whole suite.
class DemoModule : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folder_ = new std::string(ts::test::MakeTempFolder("ts-demo"));
        ASSERT_TRUE(ts::test::BuildDemoModule(Path()));
    }
    static void TearDownTestSuite() {
        std::filesystem::remove_all(*folder_);
        delete folder_;
    }
    static std::string Path() { return *folder_ + "/demo.tsmod"; }

    void SetUp() override {
        ts::StoreResult result;
        store = ts::OpenSqliteStore(Path(), {}, &result);
        ASSERT_TRUE(store) << U8(result.message);
    }

    Node Load(std::u16string_view name, std::u16string_view type) {
        std::vector<std::uint8_t> bytes;
        auto r = store->ReadResource(name, type, bytes);
        EXPECT_TRUE(r) << U8(r.message);
        Node root;
        EXPECT_TRUE(ts::DecodeResource(bytes, root));
        return root;
    }

    std::unique_ptr<ts::ResourceStore> store;

private:
    static std::string* folder_;
};
std::string* DemoModule::folder_ = nullptr;

TEST_F(DemoModule, EveryResourceRoundTripsThroughTheStoreAndJson) {
    std::vector<ts::ResourceInfo> list;
    ASSERT_TRUE(store->ListResources({}, list));
    ASSERT_GE(list.size(), 14u);
    for (const auto& info : list) {
        SCOPED_TRACE(U8(info.name + u"." + info.type));
        std::vector<std::uint8_t> bytes;
        ASSERT_TRUE(store->ReadResource(info.name, info.type, bytes));
        Node tree;
        std::u16string error;
        ASSERT_TRUE(ts::DecodeResource(bytes, tree, &error)) << U8(error);

        // Through JSON, in both forms.
        std::string exact, brief;
        ASSERT_TRUE(ts::WriteResourceJson({info.name, info.type, tree}, exact, &error))
            << U8(error);
        ASSERT_TRUE(ts::WriteResourceJsonShort({info.name, info.type, tree}, ts::ResourceSchemas(),
                                               brief, &error));
        EXPECT_EQ(brief.find("\"root\""), std::string::npos)
            << "the demo's resources all have a short form";
        for (const std::string* text : {&exact, &brief}) {
            ts::ResourceDocument back;
            ASSERT_TRUE(ts::ReadResourceJson(*text, back, &error, ts::ResourceSchemas()))
                << U8(error);
            EXPECT_EQ(back.name, info.name);
            EXPECT_TRUE(ts::PropertyTreesEqual(back.root.Get(), tree.Get(), &error)) << U8(error);
        }

        // Through the store: saved and read again, byte for byte; and encoding is stable.
        std::vector<std::uint8_t> again;
        ASSERT_TRUE(ts::EncodeResource(tree.Get(), again));
        EXPECT_EQ(again, bytes);
        ASSERT_TRUE(store->SaveResource(info.name, info.type, again, info.version, u"demo"));
        std::vector<std::uint8_t> reread;
        ASSERT_TRUE(store->ReadResource(info.name, info.type, reread));
        EXPECT_EQ(reread, bytes);
    }
    ts::ModuleCheck check = ts::CheckModule(*store);
    EXPECT_TRUE(check.Sound());
}

// What a conversation's lines are, for checking what the demo shows off.
struct Lines {
    struct Line {
        CAgentConversationLine agent;
        bool npc;
        bool ambient = false;  // its own flag or an ambient ancestor's
        std::u16string text, speaker, comment;
    };
    std::vector<Line> npc, player;
    std::uint32_t starts = 0, links = 0;

    explicit Lines(ITsProperty* root) {
        CAgentConversation c(root);
        auto read = [&](TsAtom list, bool isNpc, std::vector<Line>& out) {
            for (std::uint32_t i = 0; i < c.GetPropertyListEntryCount(list); ++i) {
                Node node;
                c.GetPropertyFromList(list, i, node);
                Line line{CAgentConversationLine(node.Get()), isNpc};
                line.agent.GetText(line.text);
                line.agent.GetSpeaker(line.speaker);
                line.agent.GetComment(line.comment);
                line.agent.GetAmbient(line.ambient);
                out.push_back(std::move(line));
            }
        };
        read(TsAddAtom(u"NPCLineList"), true, npc);
        read(TsAddAtom(u"PlayerLineList"), false, player);
        starts = c.StartListCount();
        for (std::uint32_t s = 0; s < starts; ++s) {
            Node node;
            c.GetStartListItem(s, node);
            std::int32_t index = -1;
            CAgentConversationStart(node.Get()).GetLineIndex(index);
            Inherit(npc.at(static_cast<std::size_t>(index)), false);
        }
    }

    // Passes the ambient flag down owned children, as validation does.
    void Inherit(Line& line, bool parentAmbient) {
        line.ambient = line.ambient || parentAmbient;
        std::vector<Line>& children = line.npc ? player : npc;
        for (std::uint32_t t = 0; t < line.agent.TransitionListCount(); ++t) {
            Node node;
            line.agent.GetTransitionListItem(t, node);
            CAgentConversationTransition transition(node.Get());
            bool link = false;
            std::int32_t index = -1;
            transition.GetIsLink(link);
            transition.GetLineIndex(index);
            EXPECT_GE(index, 0);
            EXPECT_LT(static_cast<std::size_t>(index), children.size());
            if (link)
                ++links;
            else
                Inherit(children.at(static_cast<std::size_t>(index)), line.ambient);
        }
    }
};

TEST_F(DemoModule, ConversationsShowWhatWritersMeet) {
    std::set<std::u16string> plots, scripts;
    std::vector<ts::ResourceInfo> list;
    ASSERT_TRUE(store->ListResources(u"plo", list));
    for (const auto& i : list) plots.insert(i.name);
    ASSERT_TRUE(store->ListResources(u"nss", list));
    for (const auto& i : list) scripts.insert(i.name);
    ASSERT_TRUE(store->ListResources(u"dlg", list));
    ASSERT_GE(list.size(), 2u);

    int tooLong = 0, missingFlags = 0, ambientPlayerText = 0, unplacedSpeakers = 0;
    for (const auto& info : list) {
        SCOPED_TRACE(U8(info.name));
        Node root = Load(info.name, u"dlg");
        Lines lines(root.Get());
        EXPECT_GE(lines.starts, 2u);
        EXPECT_GE(lines.npc.size(), 8u);
        EXPECT_GE(lines.player.size(), 6u);
        EXPECT_GE(lines.links, 1u) << "links re-join branches";

        int comments = 0, ambient = 0, conditions = 0, actions = 0, sentForVoiceOver = 0;
        for (auto* kind : {&lines.npc, &lines.player}) {
            for (auto& line : *kind) {
                std::u16string plot, script;
                std::int32_t flag = -1, stringId = -1;
                line.agent.GetStringID(stringId);
                if (line.npc && line.text.empty() && !line.comment.empty()) ++comments;
                if (line.ambient) ++ambient;
                line.agent.GetConditionPlotURI(plot);
                line.agent.GetConditionScriptURI(script);
                if (!plot.empty() || !script.empty()) ++conditions;
                for (const auto& uri : {plot, script}) {
                    if (!uri.empty()) {
                        EXPECT_TRUE(plots.count(uri) || scripts.count(uri)) << U8(uri);
                    }
                }
                line.agent.GetActionScriptURI(script);
                line.agent.GetActionPlotURI(plot);
                line.agent.GetActionPlotFlag(flag);
                if (!plot.empty() || !script.empty()) ++actions;
                if (!script.empty()) {
                    EXPECT_TRUE(scripts.count(script)) << U8(script);
                }
                if (!plot.empty()) {
                    ASSERT_TRUE(plots.count(plot)) << U8(plot);
                    CAgentPlot p(Load(plot, u"plo").Get());
                    CAgentPlotStatus status;
                    if (flag >= 0 && !p.FindStatus(flag, status)) ++missingFlags;
                }
                ts::VORecordingStatus vo;
                if (stringId >= 0) {
                    std::int32_t valid = 0;
                    EXPECT_TRUE(store->ValidateStringId(stringId, valid)) << stringId;
                    std::u16string text;
                    EXPECT_TRUE(store->GetString(stringId, 0, text));
                    EXPECT_EQ(text, line.text);
                    if (store->GetVORecordingStatus(stringId, vo) && vo.sentForRecordingOn > 0)
                        ++sentForVoiceOver;
                }
                if (!line.npc && line.text.size() > 60) ++tooLong;
                if (!line.npc && line.ambient && !line.text.empty()) ++ambientPlayerText;
                std::u16string stage;
                line.agent.GetStageURI(stage);
                if (line.npc && !stage.empty() && !line.speaker.empty()) {
                    CAgentStage s(Load(stage, u"stg").Get());
                    CAgentStagePlace place;
                    if (!s.FindPlace(line.speaker, place)) ++unplacedSpeakers;
                }
            }
        }
        EXPECT_GE(comments, 1);
        EXPECT_GE(ambient, 2) << "an ambient branch";
        EXPECT_GE(conditions, 1);
        EXPECT_GE(actions, 2);
        EXPECT_GE(sentForVoiceOver, 1);
    }
    // The deliberately faulty lines that validation is to find.
    EXPECT_GE(tooLong, 1);
    EXPECT_GE(missingFlags, 1);
    EXPECT_GE(ambientPlayerText, 1);
    EXPECT_GE(unplacedSpeakers, 1);
}

TEST_F(DemoModule, TheCutsceneSpeaksALineOfAConversation) {
    CAgentCutscene cutscene(Load(u"cut_lantern_secret", u"cut").Get());
    int speakLines = 0;
    for (std::uint32_t a = 0; a < cutscene.ActorListCount(); ++a) {
        Node actor;
        cutscene.GetActorListItem(a, actor);
        CAgentCutsceneActor actorAgent(actor.Get());
        for (std::uint32_t t = 0; t < actorAgent.TrackListCount(); ++t) {
            Node track;
            actorAgent.GetTrackListItem(t, track);
            CAgentCutsceneTrack trackAgent(track.Get());
            for (std::uint32_t i = 0; i < trackAgent.ActionListCount(); ++i) {
                Node action;
                trackAgent.GetActionListItem(i, action);
                std::int32_t type = 0;
                CAgentCutsceneAction(action.Get()).GetActionType(type);
                if (type != CAgentCutsceneActionSpeakLine::kActionType) continue;
                ++speakLines;
                CAgentCutsceneActionSpeakLine speak(action.Get());
                std::u16string conversation, text;
                std::int32_t line = -1;
                speak.GetOwningConversationURI(conversation);
                speak.GetOwningLine(line);
                speak.GetText(text);
                Lines lines(Load(conversation, u"dlg").Get());
                ASSERT_LT(static_cast<std::size_t>(line), lines.npc.size());
                EXPECT_EQ(lines.npc[static_cast<std::size_t>(line)].text, text);
                std::u16string associated;
                lines.npc[static_cast<std::size_t>(line)].agent.GetCustomCutsceneURI(associated);
                EXPECT_EQ(associated, u"cut_lantern_secret");
            }
        }
    }
    EXPECT_EQ(speakLines, 1);
}

TEST_F(DemoModule, TablesHaveTheColumnsTheEditorReads) {
    struct Need {
        const char16_t* table;
        std::vector<const char16_t*> columns;
    };
    const Need needs[] = {
        {u"toolset_dlgicons", {}},
        {u"toolset_dlglang", {u"LanguageName"}},
        {u"toolset_dlgemotions", {}},
        {u"toolset_henchmen", {}},
        {u"toolset_dlgparms", {u"Name", u"Value"}},
        {u"poses", {u"Label", u"Animations"}},
        {u"common_gestures", {}},
    };
    for (const auto& need : needs) {
        ts::GameTable table;
        auto r = store->ReadTable(need.table, table);
        ASSERT_TRUE(r) << U8(r.message);
        EXPECT_GT(table.RowCount(), 0u);
        for (const char16_t* column : need.columns) {
            std::size_t c;
            EXPECT_TRUE(table.FindColumn(column, c)) << U8(need.table) << " " << U8(column);
        }
    }
    ts::ModuleInfo module;
    ASSERT_TRUE(store->GetModuleInfo(module));
    EXPECT_FALSE(module.name.empty());
    EXPECT_EQ(module.moduleId, 1);
}

}  // namespace
