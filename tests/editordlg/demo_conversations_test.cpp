// The demo module's conversations opened in the editor as the toolset opens them: through the
// resource manager, loaded, shown with their labels, written back unchanged and saved.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "model/dlg_editor_settings.h"
#include "support/demo_module.h"
#include "support/scripted_ui.h"
#include "support/test_folders.h"
#include "ts/editorhost.h"
#include "ts/hostcomponents.h"
#include "ts/hoststring.h"
#include "ts/propertycompare.h"
#include "ts/resourcemanager.h"
#include "ts/text.h"

namespace {

using EditorObject = CTsComObject<CTsWindowInterface<CConversationEditorWnd>>;

std::string U8(const std::u16string& s) {
    return ts::Utf16ToUtf8(s);
}

class DemoConversations : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folder_ = new std::string(ts::test::MakeTempFolder("ts-demo-dlg"));
        ASSERT_TRUE(ts::test::BuildDemoModule(*folder_ + "/demo.tsmod"));
    }
    static void TearDownTestSuite() {
        std::filesystem::remove_all(*folder_);
        delete folder_;
    }

    void SetUp() override {
        ts::StoreResult result;
        std::shared_ptr<ts::ResourceStore> store =
            ts::OpenSqliteStore(*folder_ + "/demo.tsmod", {}, &result);
        ASSERT_TRUE(store) << U8(result.message);
        ASSERT_EQ(TsCreateResourceManager(store, u"writer", manager_.Put()), S_OK);
        ASSERT_EQ(TsRegisterHostComponent(kTsResourceManagerName, manager_.Get()), S_OK);
    }
    void TearDown() override {
        if (editor_) editor_->CloseUIWindow();
        TsRegisterHostComponent(kTsResourceManagerName, nullptr);
    }

    // Opens the conversation in a new editor, as the toolset's host does.
    CConversationEditorWnd* Open(std::u16string_view name) {
        resource_.Reset();
        EXPECT_EQ(manager_->OpenResource(name, u"dlg", resource_.Put()), S_OK);
        editor_ = EditorObject::Create();
        EXPECT_EQ(editor_->CreateUIWindow(nullptr), S_OK);
        EXPECT_EQ(editor_->Attach(1, (std::u16string(name) + u".dlg").c_str(), 0), S_OK);
        EXPECT_EQ(editor_->Load(resource_.Get()), S_OK);
        return editor_->GetWindow();
    }
    // The labels of the whole tree in pre-order, one level of indentation per depth.
    std::vector<std::u16string> Labels() {
        const dlg::ItemTree& items = editor_->GetWindow()->Document().Tree().Items();
        std::vector<std::u16string> labels;
        for (dlg::TreeItem i = items.GetChild(items.GetRootItem()); i != dlg::kNoItem;
             i = items.NextInPreOrder(i)) {
            std::u16string indent;
            for (dlg::TreeItem p = items.GetParent(i); p != items.GetRootItem();
                 p = items.GetParent(p))
                indent += u"  ";
            labels.push_back(indent + items.GetText(i));
        }
        return labels;
    }

    CTsComPtr<ITsResourceManager> manager_;
    CTsComPtr<ITsResource> resource_;
    CTsComPtr<EditorObject> editor_;
    static std::string* folder_;
};
std::string* DemoConversations::folder_ = nullptr;

TEST_F(DemoConversations, EveryConversationLoadsAndWritesBackAsItWasStored) {
    std::vector<ts::ResourceInfo> list;
    ASSERT_EQ(manager_->ListResources(u"dlg", &list), S_OK);
    ASSERT_GE(list.size(), 2u);
    for (const ts::ResourceInfo& info : list) {
        SCOPED_TRACE(U8(info.name));
        CConversationEditorWnd* wnd = Open(info.name);
        ASSERT_TRUE(wnd->IsLoaded());
        CTsComPtr<ITsProperty> stored;
        ASSERT_EQ(resource_->GetRootProperty(stored.Put()), S_OK);
        CTsComPtr<ITsProperty> keep;
        ASSERT_EQ(stored->Clone(kTsCloneDeep, keep.Put()), S_OK);

        ASSERT_EQ(editor_->GetContent(resource_.Get()), S_OK);
        CTsComPtr<ITsProperty> written;
        ASSERT_EQ(resource_->GetRootProperty(written.Put()), S_OK);
        std::u16string difference;
        EXPECT_TRUE(ts::PropertyTreesEqual(keep.Get(), written.Get(), &difference))
            << U8(difference);
        editor_->CloseUIWindow();
        editor_.Reset();
    }
}

TEST_F(DemoConversations, OrlasWelcomeShowsItsLabels) {
    Open(u"orla_welcome");
    std::vector<std::u16string> expected = {
        u"[[OWNER]] Back again, love? The fire's still warm and the stew is nearly edible.",
        u"  I'm looking for work.",
        u"    [[OWNER]] Work? Talk to Brannoc by the door. He's been muttering about a <i>missing "
        u"caravan</i> all night.",
        u"      Thanks, Orla. [END DIALOGUE]",
        u"      What happened to the caravan? Everyone in Saltmere is talking about it.",
        u"        [[OWNER]] Three wagons out of Saltmere, and none of them arrived. Brannoc's "
        u"brother drove the last one.",
        u"          Thanks, Orla. [END DIALOGUE]",
        u"  Any rumours tonight?",
        u"    [[OWNER]] Rumours cost a drink. You buying?",
        u"      Here, pour one for yourself.",
        u"        [[OWNER]] They say the lighthouse keeper hasn't lit the lamp in three nights, "
        u"and nobody has gone up to ask why.",
        u"          Thanks, Orla. [END DIALOGUE]",
        u"      Not tonight. [END DIALOGUE]",
        u"  Goodbye. [END DIALOGUE]",
        u"[[OWNER]] Welcome to the Drowned Lantern. Mind the step; the sea took the last one.",
        u"  Quite a place you have here.",
        u"    [[OWNER]] It floods twice a year and the roof sings when the wind is up. I wouldn't "
        u"trade it.",
        u"      I'm looking for work.",
        u"      Any rumours tonight?",
        u"  I'd like a room for the night.",
        u"    [COMMENT] Rooms are not in the game yet. Orla answers here once the upstairs ships.",
        u"  Goodbye. [END DIALOGUE]",
        u"[[OWNER]] Storm's coming in off the Reach. I can feel it in my knees.",
        u"  [CONTINUE]",
        u"    [[OWNER]] And the boats still out. Gods keep them.",
    };
    std::vector<std::u16string> labels = Labels();
    ASSERT_EQ(labels.size(), expected.size());
    for (std::size_t i = 0; i < labels.size(); ++i)
        EXPECT_EQ(U8(labels[i]), U8(expected[i])) << "row " << i;

    // Colours: NPC lines, player lines, links, the comment form and the ambient branch.
    const dlg::DlgEditorSettings& s = dlg::TheDlgEditorSettings();
    dlg::ConversationTree& tree = editor_->GetWindow()->Document().Tree();
    auto colours = [&](int index) {
        dlg::TreeItem item = tree.NodeAt(index)->treeItem;
        return std::pair(tree.Items().GetTextColour(item), tree.Items().GetBackColour(item));
    };
    EXPECT_EQ(colours(1), std::pair(dlg::ToScreenColour(s.NPCColor), dlg::kNoColour));
    EXPECT_EQ(colours(2), std::pair(dlg::ToScreenColour(s.PCColor), dlg::kNoColour));
    EXPECT_EQ(colours(7).first, dlg::ToScreenColour(s.LinkColor));
    EXPECT_EQ(colours(21).first, dlg::ToScreenColour(s.NPCCommentColor));
    EXPECT_EQ(colours(23),
              std::pair(dlg::ToScreenColour(s.NPCColor), dlg::ToScreenColour(s.AmbientColor)));
    EXPECT_EQ(colours(24).second, dlg::ToScreenColour(s.AmbientColor))
        << "the branch below is ambient";
}

TEST_F(DemoConversations, BrannocNamesHisSpeakersAndSavesThroughTheResourceManager) {
    CConversationEditorWnd* wnd = Open(u"brannoc_caravan");
    std::vector<std::u16string> labels = Labels();
    ASSERT_FALSE(labels.empty());
    EXPECT_EQ(U8(labels[0]), "[brannoc] You look like someone who can hold a blade.");
    EXPECT_NE(std::find(labels.begin(), labels.end(),
                        u"    [harbour_guard] Caravans are not the harbour's business. Take it up "
                        u"with the reeve."),
              labels.end());

    // The host's save takes the editor's content and stores it; the module then holds the edit.
    auto previous = ts::SetEditorSaver([&](IUnknown*, std::uint32_t) {
        HRESULT hr = editor_->GetContent(resource_.Get());
        return SUCCEEDED(hr) ? manager_->SaveResource(resource_.Get()) : hr;
    });
    dlg::ConversationTree& tree = wnd->Document().Tree();
    dlg::ConversationNode* first = tree.NodeAt(1);
    tree.Items().Select(first->treeItem);
    ts::test::ScriptedUi ui;

    // Markup the module's tag table does not know, or leaves open, stops the save.
    first->line.SetText(u"You look like someone who can <blink>hold</blink> a blade.");
    EXPECT_EQ(editor_->Save(0), E_FAIL);
    first->line.SetText(u"You look like someone who can <i>hold a blade.");
    EXPECT_EQ(editor_->Save(0), E_FAIL);
    EXPECT_EQ(ui.shown().size(), 2u);
    first->line.SetText(u"You look like someone who can <i>hold</i> a blade.<br>");
    EXPECT_EQ(editor_->Save(0), S_OK);
    EXPECT_EQ(ui.shown().size(), 2u);
    ts::SetEditorSaver(previous);

    editor_->CloseUIWindow();
    editor_.Reset();
    Open(u"brannoc_caravan");
    EXPECT_EQ(U8(Labels()[0]), "[brannoc] You look like someone who can <i>hold</i> a blade.<br>");
}

}  // namespace
