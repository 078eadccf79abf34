// The demo module's conversations opened in the editor as the toolset opens them: through the
// resource manager, loaded, shown with their labels, written back unchanged and saved.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/window_interface.h"
#include "edit_harness.h"
#include "model/conversation_editor_wnd.h"
#include "support/demo_module_fixture.h"
#include "support/scripted_ui.h"
#include "support/test_folders.h"
#include "ts/editorhost.h"
#include "ts/hostcomponents.h"
#include "ts/propertycompare.h"
#include "ts/resourcemanager.h"
#include "ts/text.h"

namespace {

using EditorObject = CTsComObject<CTsWindowInterface<CConversationEditorWnd>>;
using ts::Utf16ToUtf8;

class DemoConversations : public ts::test::DemoModuleTest {
protected:
    void TearDown() override {
        if (editor_) editor_->CloseUIWindow();
        DemoModuleTest::TearDown();
    }

    // Opens the conversation in a new editor, as the toolset's host does.
    CConversationEditorWnd* Open(std::u16string_view name) {
        if (editor_) editor_->CloseUIWindow();
        resource_.Reset();
        EXPECT_EQ(manager_->OpenResource(name, u"dlg", resource_.Put()), S_OK);
        editor_ = EditorObject::Create();
        EXPECT_EQ(editor_->CreateUIWindow(nullptr), S_OK);
        EXPECT_EQ(editor_->Attach(1, (std::u16string(name) + u".dlg").c_str(), 0), S_OK);
        EXPECT_EQ(editor_->Load(resource_.Get()), S_OK);
        return editor_->GetWindow();
    }
    // The labels of the whole tree below the root in pre-order, a line each, indented by depth.
    std::string Labels() {
        const dlg::ItemTree& items = editor_->GetWindow()->Document().Tree().Items();
        std::string labels;
        for (dlg::TreeItem i = items.GetChild(items.GetRootItem()); i != dlg::kNoItem;
             i = items.NextInPreOrder(i)) {
            for (dlg::TreeItem p = items.GetParent(i); p != items.GetRootItem();
                 p = items.GetParent(p))
                labels += "  ";
            labels += Utf16ToUtf8(items.GetText(i)) + "\n";
        }
        return labels;
    }

    CTsComPtr<ITsResource> resource_;
    CTsComPtr<EditorObject> editor_;
};

// Each conversation's labels are predicted in data/labels/NAME.txt, written by hand from its
// source in data/demo.
TEST_F(DemoConversations, EveryConversationShowsItsLabelsAndWritesBackAsItWasStored) {
    std::vector<ts::ResourceInfo> list;
    ASSERT_EQ(manager_->ListResources(u"dlg", &list), S_OK);
    ASSERT_EQ(list.size(), 3u);
    for (const ts::ResourceInfo& info : list) {
        SCOPED_TRACE(Utf16ToUtf8(info.name));
        ASSERT_TRUE(Open(info.name)->IsLoaded());
        std::ifstream in(TS_EDITORDLG_TEST_DATA "/labels/" + Utf16ToUtf8(info.name) + ".txt");
        std::stringstream expected;
        expected << in.rdbuf();
        EXPECT_EQ(Labels(), expected.str());

        CTsComPtr<ITsProperty> stored, keep, written;
        ASSERT_EQ(resource_->GetRootProperty(stored.Put()), S_OK);
        ASSERT_EQ(stored->Clone(kTsCloneDeep, keep.Put()), S_OK);
        ASSERT_EQ(editor_->GetContent(resource_.Get()), S_OK);
        ASSERT_EQ(resource_->GetRootProperty(written.Put()), S_OK);
        std::u16string difference;
        EXPECT_TRUE(ts::PropertyTreesEqual(keep.Get(), written.Get(), &difference))
            << Utf16ToUtf8(difference);
    }
}

// Random edits with undo and redo on the demo's real conversations (faulty_examples.dlg among them)
// keep every tree sound and every line's faults what a fresh validation finds, and
// undoing them all gives back the conversation as stored.
TEST_F(DemoConversations, RandomEditsUndoAndRedoOnEveryConversation) {
    std::vector<ts::ResourceInfo> list;
    ASSERT_EQ(manager_->ListResources(u"dlg", &list), S_OK);
    for (const ts::ResourceInfo& info : list) {
        SCOPED_TRACE(Utf16ToUtf8(info.name));
        CTsComPtr<ITsResource> resource;
        ASSERT_EQ(manager_->OpenResource(info.name, u"dlg", resource.Put()), S_OK);
        CTsComPtr<ITsProperty> root;
        ASSERT_EQ(resource->GetRootProperty(root.Put()), S_OK);
        dlg::test::OpenConversation c(root.Get());
        ASSERT_TRUE(c.loaded);
        ASSERT_EQ(c.Broken(), "");
        dlg::test::RandomEdits(c, 11, 60);
    }
}

TEST_F(DemoConversations, SavingChecksTheModulesTagsThenStoresThroughTheHost) {
    CConversationEditorWnd* wnd = Open(u"brannoc_caravan");
    // The host's save takes the editor's content and stores it; the module then holds the edit.
    int saves = 0;
    auto previous = ts::SetEditorSaver([&](IUnknown* editor, std::uint32_t argument) {
        ++saves;
        EXPECT_EQ(argument, 7u);
        CTsComPtr<ITsEditor> asEditor;
        EXPECT_EQ(editor->QueryInterface(ITsEditor::kIID, asEditor.PutVoid()), S_OK);
        HRESULT hr = editor_->GetContent(resource_.Get());
        return SUCCEEDED(hr) ? manager_->SaveResource(resource_.Get()) : hr;
    });
    dlg::ConversationNode* first = wnd->Document().Tree().NodeAt(1);
    wnd->Document().Tree().Items().Select(first->treeItem);
    editor_->SetModified(1);
    ts::test::ScriptedUi ui;

    // Markup the module's tag table does not know stops the save before the host is asked.
    first->line.SetText(u"You look like someone who can <blink>hold</blink> a blade.");
    EXPECT_EQ(editor_->Save(7), E_FAIL);
    ASSERT_EQ(ui.shown().size(), 1u);
    EXPECT_EQ(ui.shown()[0].text, u"Line contains unmatched or malformed tags, please edit");
    EXPECT_EQ(saves, 0);
    EXPECT_TRUE(wnd->IsModified());
    // Its paired <i> and lone <br> pass; the label follows the new text.
    first->line.SetText(u"You look like someone who can <i>hold</i> a blade.<br>");
    EXPECT_EQ(editor_->Save(7), S_OK);
    EXPECT_EQ(saves, 1);
    EXPECT_FALSE(wnd->IsModified());
    const std::string saved = "[brannoc] You look like someone who can <i>hold</i> a blade.<br>";
    EXPECT_EQ(Labels().substr(0, Labels().find('\n')), saved);

    // A host that refuses leaves the editor modified.
    ts::SetEditorSaver([](IUnknown*, std::uint32_t) { return E_FAIL; });
    editor_->SetModified(1);
    EXPECT_EQ(editor_->Save(0), E_FAIL);
    EXPECT_TRUE(wnd->IsModified());
    ts::SetEditorSaver(previous);

    Open(u"brannoc_caravan");
    EXPECT_EQ(Labels().substr(0, Labels().find('\n')), saved);
}

}  // namespace
