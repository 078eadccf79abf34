// The conversation editor as the host drives it: attach, load a conversation resource, read the
// tree, get the content back, save through the host, count words, follow refresh events.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "support/conversation_builder.h"
#include "support/fake_resource.h"
#include "support/scripted_ui.h"
#include "ts/editorhost.h"
#include "ts/environment.h"
#include "ts/events.h"
#include "ts/telemetry.h"

namespace {

using EditorObject = CTsComObject<CTsWindowInterface<CConversationEditorWnd>>;
using ts::test::ConversationBuilder;
using ts::test::FakeResource;

struct Story : ConversationBuilder {
    Story() {
        std::uint32_t hello = Npc(u"Well met, traveller.", u"innkeeper");
        std::uint32_t room = Player(u"I need a room for the night.");
        std::uint32_t bye = Player(u"Goodbye.");
        std::uint32_t price = Npc(u"Five <emp>silver</emp> a night.");
        Start(hello);
        NpcTo(hello, room);
        NpcTo(hello, bye);
        PlayerTo(room, price);
        NpcTo(price, bye, true);
        conversation.SetEndConversationScriptURI(u"inn_end");
        Line(true, price).SetConditionPlotURI(u"inn_plot");
        Line(true, price).SetStageURI(u"inn_stage");
    }
};

class EditorDocument : public ::testing::Test {
protected:
    void SetUp() override {
        object_ = EditorObject::Create();
        ASSERT_EQ(object_->CreateUIWindow(nullptr), S_OK);
        wnd_ = object_->GetWindow();
        ASSERT_EQ(object_->Attach(1, u"inn_talk.dlg", 0), S_OK);
        resource_ = CTsComObject<FakeResource>::Create(u"inn_talk.dlg");
        resource_->SetRootProperty(story_.Resource());
        dlg::TextTagSet tags;
        tags.Add(u"emp", true);
        wnd_->SetKnownTags(tags);
    }
    std::u16string Text(int treeIndex) {
        auto* node = wnd_->Document().Tree().NodeAt(treeIndex);
        return node ? wnd_->Document().Tree().Items().GetText(node->treeItem) : u"(none)";
    }

    Story story_;
    CTsComPtr<EditorObject> object_;
    CTsComPtr<FakeResource> resource_;
    CConversationEditorWnd* wnd_ = nullptr;
};

TEST_F(EditorDocument, LoadsShowsAndGivesTheConversationBack) {
    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);
    const dlg::ItemTree& items = wnd_->Document().Tree().Items();
    EXPECT_EQ(items.GetSelection(), items.GetRootItem());
    EXPECT_TRUE(items.IsExpanded(items.GetRootItem()));
    EXPECT_EQ(Text(1), u"[innkeeper] Well met, traveller.");
    EXPECT_EQ(Text(3), u"[[OWNER]] Five <emp>silver</emp> a night.");
    EXPECT_EQ(Text(4), u"Goodbye. [END DIALOGUE]") << "a link shows its target's label";
    EXPECT_FALSE(wnd_->IsModified());
    EXPECT_TRUE(wnd_->IsLoaded());

    auto& doc = wnd_->Document();
    EXPECT_EQ(doc.References(TsAddAtom(u"nss")), (std::set<std::u16string>{u"inn_end"}));
    EXPECT_EQ(doc.References(TsAddAtom(u"plo")), (std::set<std::u16string>{u"inn_plot"}));
    EXPECT_EQ(doc.References(TsAddAtom(u"stg")), (std::set<std::u16string>{u"inn_stage"}));
    EXPECT_TRUE(doc.References(TsAddAtom(u"cut")).empty());

    // The content goes back into any resource object; other objects are not resources.
    auto out = CTsComObject<FakeResource>::Create(u"copy.dlg");
    ASSERT_EQ(object_->GetContent(out.Get()), S_OK);
    CTsComPtr<ITsProperty> root;
    ASSERT_EQ(out->GetRootProperty(root.Put()), S_OK);
    CAgentConversation written;
    written.Bind(root.Get());
    EXPECT_EQ(written.NPCLineListCount(), 2u);
    EXPECT_EQ(written.PlayerLineListCount(), 2u);
    auto other = CTsComObject<ts::test::OtherPayload>::Create();
    EXPECT_EQ(object_->GetContent(other.Get()), E_NOTIMPL);

    // Loading again without a resource object keeps the tree and marks it modified.
    ASSERT_EQ(object_->Load(nullptr), S_OK);
    EXPECT_EQ(Text(1), u"[innkeeper] Well met, traveller.");
    EXPECT_TRUE(wnd_->IsModified());
}

TEST_F(EditorDocument, AConversationWithABrokenLinkIsNotShown) {
    ConversationBuilder broken;
    std::uint32_t npc = broken.Npc(u"Hm?");
    broken.Start(npc);
    broken.NpcTo(npc, 7, true);
    resource_->SetRootProperty(broken.Resource());
    std::vector<ts::HostEvent> sent;
    int listener = ts::AddHostEventListener([&](const ts::HostEvent& e) { sent.push_back(e); });
    EXPECT_EQ(object_->Load(resource_.Get()), 1);
    ts::RemoveHostEventListener(listener);
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].event, ts::events::Error());
    EXPECT_EQ(sent[0].flags, 4u);
    EXPECT_EQ(sent[0].text, u"PC link refers to source ID [7] which does not exist.  This is a toolset bug.");
    EXPECT_FALSE(wnd_->Document().IsLoaded());
    EXPECT_FALSE(wnd_->IsLoaded());
}

TEST_F(EditorDocument, SaveChecksTheSelectedLinesMarkupThenAsksTheHost) {
    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);
    int saves = 0;
    auto previous = ts::SetEditorSaver([&](IUnknown* editor, std::uint32_t argument) {
        ++saves;
        EXPECT_EQ(argument, 7u);
        CTsComPtr<ITsEditor> asEditor;
        EXPECT_EQ(editor->QueryInterface(ITsEditor::kIID, asEditor.PutVoid()), S_OK);
        return S_OK;
    });
    auto& tree = wnd_->Document().Tree();
    ts::test::ScriptedUi ui;

    // A selected line with a broken tag stops the save with a message.
    dlg::ConversationNode* price = tree.NodeAt(3);
    price->line.SetText(u"Five <emp>silver a night.");
    tree.Items().Select(price->treeItem);
    object_->SetModified(1);
    EXPECT_EQ(object_->Save(7), E_FAIL);
    EXPECT_EQ(saves, 0);
    ASSERT_EQ(ui.shown().size(), 1u);
    EXPECT_EQ(ui.shown()[0].text, u"Line contains unmatched or malformed tags, please edit");
    EXPECT_TRUE(wnd_->IsModified());

    // Mended, it saves, and the label follows the new text.
    price->line.SetText(u"Six <emp>silver</emp> a night.");
    EXPECT_EQ(object_->Save(7), S_OK);
    EXPECT_EQ(saves, 1);
    EXPECT_FALSE(wnd_->IsModified());
    EXPECT_EQ(Text(3), u"[[OWNER]] Six <emp>silver</emp> a night.");

    // A host that refuses leaves the editor modified.
    ts::SetEditorSaver([](IUnknown*, std::uint32_t) { return E_FAIL; });
    object_->SetModified(1);
    EXPECT_EQ(object_->Save(0), E_FAIL);
    EXPECT_TRUE(wnd_->IsModified());
    ts::SetEditorSaver(previous);
}

TEST_F(EditorDocument, WordCountIsCachedUntilTheNextLoad) {
    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);
    // 3 + 7 + 1 + 4 words; the link adds nothing.
    EXPECT_EQ(wnd_->Document().WordCount(), 15);
    wnd_->Document().Tree().NodeAt(1)->line.SetText(u"Hi.");
    EXPECT_EQ(wnd_->Document().WordCount(), 15) << "cached";
    EXPECT_EQ(wnd_->Document().WordCount(true), 13);
    std::filesystem::remove(ts::TelemetryLogPath());
    ASSERT_EQ(object_->ReportWordCount(), S_OK);
    std::ifstream log(ts::TelemetryLogPath());
    std::stringstream s;
    s << log.rdbuf();
    EXPECT_NE(s.str().find("\tEUTS\tCCWC\t13\n"), std::string::npos) << s.str();

    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);
    EXPECT_EQ(wnd_->Document().WordCount(), 13) << "recounted after a load";
    EXPECT_EQ(dlg::CountWords(u"  two\twords\u00a0three \n"), 3);
}

TEST_F(EditorDocument, RefreshRelabelsAndForgetsReferences) {
    ASSERT_EQ(object_->Load(resource_.Get()), S_OK);
    wnd_->Document().Tree().NodeAt(1)->line.SetSpeaker(u"barmaid");
    EXPECT_EQ(Text(1), u"[innkeeper] Well met, traveller.");
    ts::BroadcastToEventSinks(ts::events::OptionsChange(), 0, 0, nullptr);
    EXPECT_EQ(Text(1), u"[innkeeper] Well met, traveller.");
    ts::BroadcastToEventSinks(ts::events::RefreshNoArt(), 0, 0, nullptr);
    EXPECT_EQ(Text(1), u"[barmaid] Well met, traveller.");
    EXPECT_TRUE(wnd_->Document().References(TsAddAtom(u"nss")).empty());
}

}  // namespace
