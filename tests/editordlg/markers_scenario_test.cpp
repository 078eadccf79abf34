// Markers on a demo conversation opened as the toolset opens it: Insert Line, a delete that takes
// a link along, and a move, each undone and redone through the host's Edit menu; the markers
// stay on their lines, the host hears "MarkersChange" for each change, and a marker's location
// leads the host back to its line.
#include <gtest/gtest.h>

#include "model/editor_commands.h"
#include "model/undo/undo_command_add_remove_nodes.h"
#include "model/undo/undo_command_modify_node.h"
#include "model/undo/undo_command_move_node.h"
#include "support/conversation_editor_object.h"
#include "support/demo_module_fixture.h"
#include "support/report_capture.h"
#include "ts/environment.h"
#include "ts/events.h"

namespace {

using ts::Utf16ToUtf8;

// What a marker was made for: the item and the line record it showed, and the line's text.
struct MadeFor {
    std::u16string message;
    dlg::TreeItem item;
    ITsProperty* line;
    std::u16string text;
};

class MarkersOnTheDemo : public ts::test::DemoModuleTest {
protected:
    void SetUp() override {
        DemoModuleTest::SetUp();
        editor_ = ts::test::OpenConversationEditor(*manager_, u"brannoc_caravan");
        wnd_ = editor_->GetWindow();
        editor_->QueryInterface(ITsMarkerSource::kIID, markers_.PutVoid());
        editor_->QueryInterface(ITsUndoRedo::kIID, undo_.PutVoid());
        listener_ = ts::AddHostEventListener([this](const ts::HostEvent& e) {
            if (e.event == ts::events::MarkersChange()) ++changes_;
        });
    }
    void TearDown() override {
        ts::RemoveHostEventListener(listener_);
        editor_->CloseUIWindow();
        DemoModuleTest::TearDown();
    }

    dlg::ConversationTree& Tree() { return wnd_->Document().Tree(); }
    dlg::ConversationEdits& Edits() { return wnd_->Document().Edits(); }
    std::u16string TextOf(dlg::ConversationNode& node) {
        std::u16string text;
        node.Shown().line.GetText(text);
        return text;
    }

    // A marker on one line, remembered with what it was made for.
    void Mark(std::int32_t line, std::u16string message, dlg::MarkerLocation location = {}) {
        location.startLine = location.endLine = line;
        ASSERT_TRUE(wnd_->Markers().Add(location, message));
        dlg::ConversationNode* node = Tree().NodeAt(line);
        madeFor_.push_back({message, node->treeItem, node->line.GetNode(), TextOf(*node)});
    }

    // Every marker, read through the host's interface, stands on the very line it was made for,
    // and its display text carries the line's number now.
    void ExpectOnTheirLines(const char* when) {
        SCOPED_TRACE(when);
        std::uint32_t count = 0;
        ASSERT_EQ(markers_->GetMarkerCount(&count), S_OK);
        ASSERT_EQ(count, madeFor_.size());
        for (std::uint32_t i = 0; i < count; ++i) {
            CTsHostString location, text, category;
            ASSERT_EQ(markers_->GetMarker(i, location.Put(), text.Put(), category.Put()), S_OK);
            dlg::MarkerLocation at;
            ASSERT_TRUE(dlg::ParseMarkerLocation(location.View(), at));
            dlg::ConversationNode* node = Tree().NodeAt(at.startLine);
            ASSERT_NE(node, nullptr);
            const MadeFor& m = madeFor_[i];
            EXPECT_EQ(node->treeItem, m.item) << Utf16ToUtf8(m.message);
            EXPECT_EQ(node->line.GetNode(), m.line) << Utf16ToUtf8(m.message);
            EXPECT_EQ(TextOf(*node), m.text);
            EXPECT_EQ(text.View(),
                      u"(" + ts::Utf8ToUtf16(std::to_string(at.startLine)) + u") : " + m.message);
            EXPECT_EQ(category.View(), u"Info");
        }
    }
    std::vector<std::int32_t> Lines() {
        std::vector<std::int32_t> lines;
        for (std::size_t i = 0; i < wnd_->Markers().Count(); ++i)
            lines.push_back(wnd_->Markers().At(i)->location.startLine);
        return lines;
    }
    // `edit`, then undo and redo through the host, each heard as one "MarkersChange": the markers
    // stand at `after`, at `undone` when it is undone, and on their own lines throughout.
    template <class Edit>
    void EditUndoRedo(const char* what, Edit&& edit, const std::vector<std::int32_t>& after,
                      const std::vector<std::int32_t>& undone) {
        SCOPED_TRACE(what);
        EXPECT_EQ(Heard(edit), 1);
        EXPECT_EQ(Lines(), after);
        ExpectOnTheirLines("after the edit");
        EXPECT_EQ(Heard([&] { EXPECT_EQ(undo_->Undo(), S_OK); }), 1);
        EXPECT_EQ(Lines(), undone);
        ExpectOnTheirLines("undone");
        EXPECT_EQ(Heard([&] { EXPECT_EQ(undo_->Redo(), S_OK); }), 1);
        EXPECT_EQ(Lines(), after);
        ExpectOnTheirLines("redone");
    }
    // Runs a step and counts the "MarkersChange" events the host heard meanwhile.
    template <class Step>
    int Heard(Step&& step) {
        int before = changes_;
        step();
        return changes_ - before;
    }

    CTsComPtr<ts::test::ConversationEditorObject> editor_;
    CTsComPtr<ITsMarkerSource> markers_;
    CTsComPtr<ITsUndoRedo> undo_;
    CConversationEditorWnd* wnd_ = nullptr;
    std::vector<MadeFor> madeFor_;
    int changes_ = 0;
    int listener_ = 0;
};

// The lines by TreeIndex (tests/editordlg/data/labels/brannoc_caravan.txt): 2 "Orla said you
// lost a caravan.", 5 "Then take this map.", 8 "Forty crowns.", 10 "Not enough.", 11 "Then
// drink your ale", 12 "Not interested.", 13 a link to 11, 14 "Have you asked the harbour
// guard?", 15 the guard's answer, 18 "Teodor, you fool.", 19 "Sorry for your loss."
TEST_F(MarkersOnTheDemo, MarkersFollowEditsUndoAndRedoAndLeadBackToTheirLines) {
    EXPECT_EQ(Heard([&] {
                  Mark(2, u"orla");
                  Mark(8, u"forty");
                  Mark(11, u"drink");
                  Mark(12, u"not interested");
                  Mark(15, u"guard", {-1, -1, 11, 0, 7});
                  Mark(19, u"sorry");
              }),
              6);
    ExpectOnTheirLines("as made");
    const std::vector<std::int32_t> base = {2, 8, 11, 12, 15, 19};

    // Insert Line under "Then take this map.": the new line is 7, after the map line's answer.
    Tree().Items().Select(Tree().NodeAt(5)->treeItem);
    EditUndoRedo(
        "Insert Line",
        [&] { EXPECT_EQ(editor_->ExecuteCommand(dlg::command_id::kInsertLine), S_OK); },
        {2, 9, 12, 13, 16, 20}, base);
    ASSERT_EQ(undo_->Undo(), S_OK);

    // Deleting "Not enough." takes its answer (11) and the link to that answer (13) with it: the
    // marker on 11 goes, and stays gone when the delete is undone.
    auto removal =
        CUndoCommandAddRemoveNodes::RemovalOf(u"Delete Line", Edits(), Tree().NodeAt(10)->treeItem);
    ASSERT_EQ(removal->Links().size(), 1u);
    madeFor_.erase(madeFor_.begin() + 2);
    EditUndoRedo("the delete", [&] { ASSERT_TRUE(wnd_->Perform(std::move(removal))); },
                 {2, 8, 10, 12, 16}, {2, 8, 12, 15, 19});
    ASSERT_EQ(undo_->Undo(), S_OK);

    // "Have you asked the harbour guard?" (14, with the answer 15) moves under "Teodor, you
    // fool." (18) as its first answer; the guard's marker goes along, and "sorry" keeps its
    // number, the two lines coming back in front of it.
    auto move =
        std::make_unique<CUndoCommandMoveNode>(u"Drag Node", Edits(), CUndoMoveTriple{14, 18, 0});
    EditUndoRedo("the move", [&] { ASSERT_TRUE(wnd_->Perform(std::move(move))); },
                 {2, 8, 12, 18, 19}, {2, 8, 12, 15, 19});

    // A field change moves nothing, so the host hears nothing.
    EXPECT_EQ(Heard([&] {
                  ASSERT_TRUE(wnd_->Perform(CUndoCommandModifyNode::ForField(
                      u"Text Change", Edits(), Tree().NodeAt(2)->treeItem, u"Text",
                      variant(11, std::u16string_view(u"Orla sent me.")), dlg::kChangeText)));
              }),
              0);

    // Each marker's location, as the host got it, selects its line; the navigation form too,
    // and the guard's field and characters are kept for find and replace.
    dlg::ItemTree& items = Tree().Items();
    for (std::uint32_t i = 0; i < madeFor_.size(); ++i) {
        CTsHostString location;
        ASSERT_EQ(markers_->GetMarker(i, location.Put(), nullptr, nullptr), S_OK);
        items.Select(items.GetRootItem());
        EXPECT_EQ(markers_->GoToMarker(location.Get()), S_OK);
        EXPECT_EQ(items.GetSelection(), madeFor_[i].item) << Utf16ToUtf8(madeFor_[i].message);
    }
    const dlg::LineMarker& guard = *wnd_->Markers().At(3);
    items.Select(items.GetRootItem());
    std::u16string navigation = dlg::NavigationText(guard.location);
    EXPECT_EQ(navigation, u"StartLine=18&StartChar=0&EndLine=18&EndChar=7&Field=11");
    EXPECT_EQ(markers_->GoToMarker(navigation.c_str()), S_OK);
    EXPECT_EQ(items.GetSelection(), madeFor_[3].item);
    EXPECT_EQ(*wnd_->Markers().Selection(), guard.location);

    // A location that names nothing is refused with the selection left alone.
    ts::test::ReportCapture reports;
    for (const char16_t* bad : {u"StartLine=21", u"StartLine=3&Field=x", u"garbage"})
        EXPECT_EQ(markers_->GoToMarker(bad), E_INVALIDARG) << Utf16ToUtf8(bad);
    EXPECT_EQ(reports.Count(u"The selection markers is invalid"), 3u);
    EXPECT_EQ(items.GetSelection(), madeFor_[3].item);

    // Loading the conversation again empties the store, and the host hears it.
    CTsComPtr<ITsResource> resource;
    ASSERT_EQ(manager_->OpenResource(u"brannoc_caravan", u"dlg", resource.Put()), S_OK);
    EXPECT_EQ(Heard([&] { ASSERT_EQ(editor_->Load(resource.Get()), S_OK); }), 1);
    std::uint32_t count = 1;
    ASSERT_EQ(markers_->GetMarkerCount(&count), S_OK);
    EXPECT_EQ(count, 0u);
    EXPECT_FALSE(wnd_->Markers().Selection());
}

}  // namespace
