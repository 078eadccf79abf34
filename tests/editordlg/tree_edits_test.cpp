// Reshaping conversations as a writer does, through the editor's commands on the demo module:
// delete with its questions, copy and paste within and between editors, links, moves, drops,
// Find Links, and random sequences of all of them with undo and redo.
#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "edit_harness.h"
#include "model/dlg_editor_settings.h"
#include "model/editing/node_clipboard.h"
#include "model/editing/tree_edits.h"
#include "model/editor_commands.h"
#include "support/conversation_editor_object.h"
#include "support/demo_module_fixture.h"
#include "support/scripted_ui.h"
#include "ts/comobject.h"
#include "ts/searchresults.h"

namespace {

using dlg::TreeItem;

class SearchResults : public CTsComObjectRoot<ITsSearchResults> {
public:
    HRESULT Clear() override {
        locations.clear();
        return S_OK;
    }
    HRESULT AddResult(std::u16string_view, std::u16string_view location,
                      std::u16string_view) override {
        locations.emplace_back(location);
        return S_OK;
    }
    HRESULT SetStatus(std::u16string_view text) override {
        status = text;
        return S_OK;
    }
    std::vector<std::u16string> locations;
    std::u16string status;
};

class TreeEdits : public ts::test::DemoModuleTest {
protected:
    void TearDown() override {
        for (auto& editor : editors_) editor->CloseUIWindow();
        dlg::NodeClipboard::Process().Clear();
        DemoModuleTest::TearDown();
    }

    CConversationEditorWnd& Open(std::u16string_view name, std::uint32_t state = 0) {
        editors_.push_back(ts::test::OpenConversationEditor(*manager_, name, state));
        return *editors_.back()->GetWindow();
    }
    static TreeItem Item(CConversationEditorWnd& w, std::int32_t index) {
        return w.Document().Edits().ItemAt(index);
    }
    static void Select(CConversationEditorWnd& w, std::int32_t index) {
        w.Document().Tree().Items().Select(Item(w, index));
    }
    static std::string Broken(CConversationEditorWnd& w) {
        return dlg::test::BrokenRule(w.Document().Tree(), w.Document().Edits());
    }
    static CTsComPtr<ITsProperty> Written(CConversationEditorWnd& w) {
        CAgentConversation out;
        EXPECT_TRUE(w.Document().WriteBack(out));
        return CTsComPtr<ITsProperty>(out.GetNode());
    }
    static std::u16string Label(CConversationEditorWnd& w, std::int32_t index) {
        return w.Document().Tree().Items().GetText(Item(w, index));
    }
    // `action` makes one undo step; it holds `check`, undo gives back the conversation exactly,
    // and redo makes `check` hold again.
    template <class Action, class Check>
    void RoundTrip(CConversationEditorWnd& w, const std::u16string& label, Action action,
                   Check check) {
        SCOPED_TRACE(ts::Utf16ToUtf8(w.DisplayName() + u" " + label));
        CTsComPtr<ITsProperty> before = Written(w);
        std::size_t depth = w.UndoCount();
        ASSERT_TRUE(action());
        ASSERT_EQ(w.UndoCount(), depth + 1);
        EXPECT_EQ(w.UndoCommandAt(0)->Label(), label);
        check();
        EXPECT_EQ(Broken(w), "");
        ASSERT_TRUE(w.Undo());
        std::u16string difference;
        EXPECT_TRUE(ts::PropertyTreesEqual(before.Get(), Written(w).Get(), &difference))
            << ts::Utf16ToUtf8(difference);
        ASSERT_TRUE(w.Redo());
        check();
        EXPECT_EQ(Broken(w), "");
    }

    ts::test::ScriptedUi ui_;
    std::vector<CTsComPtr<ts::test::ConversationEditorObject>> editors_;
};

// orla_welcome by TreeIndex: 1 start "Back again", 2 "I'm looking for work." (linked from 18),
// 3 "Work? Talk to Brannoc", 8 "Any rumours tonight?" (linked from 19), 13 "Not tonight.", 14
// "Goodbye.", 15 "Welcome to the Drowned Lantern", 16 "Quite a place" whose reply 17 holds the
// two links, 23 the start "Storm's coming".
TEST_F(TreeEdits, DeleteAsksAboutVoiceOverAndLinksAndUndoBringsEverythingBack) {
    CConversationEditorWnd& w = Open(u"orla_welcome");
    ASSERT_TRUE(w.Document().Tree().NodeAt(18)->isLink);
    Select(w, 2);
    // The links inside the branch go with it, and the one at 18 that leads into it.
    std::size_t links = w.Document().Edits().Links().LinkCount();
    const dlg::ItemTree& items = w.Document().Tree().Items();
    for (TreeItem i = Item(w, 2); i != Item(w, 8); i = items.NextInPreOrder(i))
        links -= w.Document().Tree().NodeOf(i)->isLink ? 1 : 0;

    ui_.Answer(IDNO);  // the line was sent for recording: No keeps it
    EXPECT_FALSE(dlg::DeleteSelection(w));
    ui_.Answer(IDYES);
    ui_.Answer(IDNO);  // ... and it is linked: No keeps it too
    EXPECT_FALSE(dlg::DeleteSelection(w));
    ASSERT_EQ(ui_.shown().size(), 3u);
    EXPECT_EQ(ui_.shown()[0].style, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2);
    EXPECT_EQ(ui_.shown()[2].text,
              u"One or more of the line(s) you are attempting to delete are "
              u"linked.  Do you still wish to delete them?");
    EXPECT_EQ(ui_.shown()[2].style, MB_YESNO | MB_ICONWARNING);
    EXPECT_EQ(w.UndoCount(), 0u);

    RoundTrip(
        w, u"Delete Line",
        [&] {
            ui_.Answer(IDYES);
            ui_.Answer(IDYES);
            return dlg::DeleteSelection(w);
        },
        // 12 and 18 lead into the branch.
        [&] { EXPECT_EQ(w.Document().Edits().Links().LinkCount(), links - 2); });
}

// The text question: asked for a line sent for recording (No by default), not again for that
// line once the user said Yes, never for a line not sent.
TEST_F(TreeEdits, TheVoiceOverGuardAsksOncePerLineTheUserConfirmed) {
    CConversationEditorWnd& w = Open(u"orla_welcome");
    dlg::VoGuard& guard = w.Vo();
    const dlg::ConversationNode& sent = *w.Document().Tree().NodeAt(1);  // string 1001
    const dlg::ConversationNode& notSent = *w.Document().Tree().NodeAt(24);
    EXPECT_FALSE(guard.MayChangeText(sent));
    ASSERT_EQ(ui_.shown().size(), 1u);
    EXPECT_EQ(ui_.shown()[0].text, dlg::VoGuard::kLineQuestion);
    EXPECT_EQ(ui_.shown()[0].style, MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2);
    ui_.Answer(IDYES);
    EXPECT_TRUE(guard.MayChangeText(sent));
    EXPECT_TRUE(guard.MayChangeText(sent));
    EXPECT_TRUE(guard.MayChangeText(notSent));
    EXPECT_EQ(ui_.shown().size(), 2u);
}

TEST_F(TreeEdits, CopiesKeepLinksWithinAConversationAndDropThemBetweenConversations) {
    CConversationEditorWnd& orla = Open(u"orla_welcome");
    CConversationEditorWnd& brannoc = Open(u"brannoc_caravan");
    std::size_t links = orla.Document().Edits().Links().LinkCount();
    std::size_t brannocLinks = brannoc.Document().Edits().Links().LinkCount();

    // "Quite a place" with its reply holding two links, pasted under "Rumours cost a drink": the
    // links of the copy still lead to the lines of the first start. (Not under the storm bark:
    // that is ambient, and links may not lead out of an ambient branch.)
    Select(orla, 16);
    ASSERT_TRUE(dlg::CopySelection(orla));
    EXPECT_EQ(dlg::CanPlace(orla.Document().Tree(), Item(orla, 23), orla.Document().Tree(),
                            Item(orla, 16), false),
              dlg::Placement::Refuse);
    Select(orla, 9);
    ui_.Answer(IDYES);  // its lines were sent for recording
    TreeItem rumours = Item(orla, 9);
    std::u16string quite = Label(orla, 16);
    RoundTrip(
        orla, u"Paste", [&] { return dlg::PasteClipboard(orla); },
        [&] {
            const dlg::ItemTree& items = orla.Document().Tree().Items();
            EXPECT_EQ(orla.Document().Edits().Links().LinkCount(), links + 2);
            EXPECT_EQ(items.GetText(items.ChildAt(rumours, items.ChildCount(rumours) - 1)), quite);
        });

    // The same branch in another conversation loses the two links, and says so.
    std::size_t shown = ui_.shown().size();
    Select(brannoc, 1);
    ui_.Answer(IDYES);
    RoundTrip(
        brannoc, u"Paste", [&] { return dlg::PasteClipboard(brannoc); },
        [&] { EXPECT_EQ(brannoc.Document().Edits().Links().LinkCount(), brannocLinks); });
    ASSERT_EQ(ui_.shown().size(), shown + 1);
    EXPECT_EQ(ui_.shown().back().text,
              u"2 link(s) were removed because they referenced nodes "
              u"from the source conversation that were not copied.");

    // The root stands for every starting line; links among copied lines follow their copies.
    Select(orla, 0);
    ASSERT_TRUE(dlg::CopySelection(orla));
    links = orla.Document().Edits().Links().LinkCount();  // with the paste above
    ui_.Answer(IDYES);  // lines of orla_welcome were sent for recording
    Select(brannoc, 0);
    std::size_t starts = brannoc.Document().Tree().Items().ChildCount(Item(brannoc, 0));
    RoundTrip(
        brannoc, u"Paste", [&] { return dlg::PasteClipboard(brannoc); },
        [&] {
            EXPECT_EQ(brannoc.Document().Tree().Items().ChildCount(Item(brannoc, 0)), starts + 3);
            EXPECT_EQ(brannoc.Document().Edits().Links().LinkCount(), brannocLinks + links);
        });

    // Paste As Link takes its line from this conversation only.
    Select(brannoc, 2);
    EXPECT_FALSE(dlg::PasteClipboardAsLink(brannoc));
}

TEST_F(TreeEdits, LinksMovesAndRefusedPlacesAsTheUserDragsAndPastes) {
    CConversationEditorWnd& w = Open(u"orla_welcome");
    dlg::ConversationTree& tree = w.Document().Tree();

    // A link to "Work? Talk to Brannoc" (3) under "Not tonight." (13); with the direction setting
    // off, a link to the selection goes under the clipboard's line instead.
    Select(w, 3);
    ASSERT_TRUE(dlg::CopySelection(w));
    Select(w, 13);
    TreeItem work = Item(w, 3), notTonight = Item(w, 13);
    auto lastChild = [&](TreeItem parent) {
        const dlg::ItemTree& items = tree.Items();
        return tree.NodeOf(items.ChildAt(parent, items.ChildCount(parent) - 1));
    };
    RoundTrip(
        w, u"Paste", [&] { return dlg::PasteClipboardAsLink(w); },
        [&] {
            const dlg::ConversationNode* link = lastChild(notTonight);
            ASSERT_TRUE(link && link->isLink);
            EXPECT_EQ(link->linkTarget->treeItem, work);
        });
    ASSERT_TRUE(w.Undo());
    dlg::TheDlgEditorSettings().PasteLinkSourceToDestination = false;
    tree.Items().Select(notTonight);
    RoundTrip(
        w, u"Paste", [&] { return dlg::PasteClipboardAsLink(w); },
        [&] {
            const dlg::ConversationNode* link = lastChild(work);
            ASSERT_TRUE(link && link->isLink);
            EXPECT_EQ(link->linkTarget->treeItem, notTonight);
        });
    dlg::TheDlgEditorSettings().PasteLinkSourceToDestination = true;

    // The first start's "Goodbye." moves under the storm bark.
    ASSERT_TRUE(w.Undo());
    TreeItem goodbye = tree.Items().ChildAt(Item(w, 1), 2);
    TreeItem storm = Item(w, 23);
    RoundTrip(
        w, u"Drag Node", [&] { return dlg::Drop(w, tree, goodbye, storm, false); },
        [&] { EXPECT_EQ(tree.Items().GetParent(goodbye), storm); });
    ASSERT_TRUE(w.Undo());

    // Refused without a word and without an undo step: onto its own branch, a player line onto
    // an NPC link's place, onto its own place, and into an ambient branch with links leading out.
    std::size_t depth = w.UndoCount();
    std::size_t shown = ui_.shown().size();
    EXPECT_EQ(dlg::DropPlacement(w, tree, Item(w, 1), Item(w, 3), false), dlg::Placement::Refuse);
    EXPECT_FALSE(dlg::Drop(w, tree, Item(w, 1), Item(w, 3), false));
    EXPECT_FALSE(dlg::Drop(w, tree, Item(w, 9), Item(w, 7), false));
    EXPECT_FALSE(dlg::Drop(w, tree, goodbye, Item(w, 1), false));
    tree.NodeAt(23)->line.SetAmbient(true);
    EXPECT_EQ(dlg::CanPlace(tree, storm, tree, Item(w, 16), false), dlg::Placement::Refuse);
    EXPECT_EQ(dlg::CanPlace(tree, storm, tree, goodbye, false), dlg::Placement::AsChild);
    tree.NodeAt(23)->line.SetAmbient(false);
    EXPECT_EQ(w.UndoCount(), depth);
    EXPECT_EQ(ui_.shown().size(), shown);

    // Find Links lists the links to the selected line in the host's search results.
    auto results = CTsComObject<SearchResults>::Create();
    ASSERT_EQ(TsRegisterHostComponent(kTsSearchResultsName, results.Get()), S_OK);
    Select(w, 2);
    EXPECT_EQ(dlg::FindLinks(w), 1);
    TsRegisterHostComponent(kTsSearchResultsName, nullptr);
    EXPECT_EQ(results->locations, std::vector<std::u16string>{u"StartLine=18"});
    EXPECT_EQ(results->status, u"Search complete, 1 links found.");
}

TEST_F(TreeEdits, CutThenPasteGivesTheSameTreeAndReadOnlyEditorsRefuseSilently) {
    CConversationEditorWnd& w = Open(u"brannoc_caravan");
    CTsComPtr<ITsProperty> start = Written(w);
    dlg::ItemTree& items = w.Document().Tree().Items();
    TreeItem guard = items.ChildAt(Item(w, 1), items.ChildCount(Item(w, 1)) - 1);
    items.Select(guard);
    ASSERT_TRUE(dlg::CutSelection(w));
    Select(w, 1);
    ASSERT_TRUE(dlg::PasteClipboard(w));
    EXPECT_TRUE(ts::PropertyTreesEqual(start.Get(), Written(w).Get()));
    EXPECT_EQ(Broken(w), "");

    CConversationEditorWnd& locked = Open(u"orla_welcome", kTsEditorReadOnly);
    Select(locked, 1);
    std::size_t shown = ui_.shown().size();
    EXPECT_FALSE(dlg::PasteClipboard(locked));
    EXPECT_FALSE(dlg::DeleteSelection(locked));
    EXPECT_FALSE(
        dlg::Drop(locked, locked.Document().Tree(), Item(locked, 12), Item(locked, 22), false));
    EXPECT_EQ(ui_.shown().size(), shown);
}

// Every operation at random places in two editors, with undo and redo: both trees stay sound
// after every step.
TEST_F(TreeEdits, RandomOperationsKeepBothTreesSound) {
    CConversationEditorWnd* editors[2] = {&Open(u"orla_welcome"), &Open(u"brannoc_caravan")};
    std::mt19937 random(11);
    auto pick = [&](std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
    };
    for (int step = 0; step < 120; ++step) {
        CConversationEditorWnd& w = *editors[pick(2)];
        CConversationEditorWnd& other = *editors[pick(2)];
        Select(w, std::int32_t(pick(w.Document().Tree().NodeCount())));
        ui_.Answer(pick(2) ? IDYES : IDNO);
        const std::function<void()> operations[] = {
            [&] { dlg::InsertLine(w, pick(2)); },
            [&] { dlg::DeleteSelection(w); },
            [&] { dlg::CopySelection(w); },
            [&] { dlg::CutSelection(w); },
            [&] { dlg::PasteClipboard(w); },
            [&] { dlg::PasteClipboardAsLink(w); },
            [&] {
                std::size_t n = other.Document().Tree().NodeCount();
                dlg::Drop(w, other.Document().Tree(), Item(other, std::int32_t(pick(n))),
                          w.Document().Tree().Items().GetSelection(), pick(3) == 0);
            },
            [&] { w.Undo(); },
            [&] { w.Redo(); }};
        operations[pick(9)]();
        ASSERT_EQ(Broken(*editors[0]), "") << "step " << step;
        ASSERT_EQ(Broken(*editors[1]), "") << "step " << step;
    }
}

}  // namespace
