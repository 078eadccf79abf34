// The marker store: its location texts both ways, the arithmetic that keeps markers on their
// lines through inserted, deleted and moved lines, the reports of what cannot be followed, and
// the numbering changes the edits report, checked against the lines themselves under random
// edits with undo and redo.
#include <gtest/gtest.h>

#include <map>

#include "edit_harness.h"
#include "model/line_markers.h"
#include "support/conversation_builder.h"
#include "support/report_capture.h"
#include "ts/text.h"

namespace {

using namespace dlg;
using ts::test::ConversationBuilder;
using ts::test::ReportCapture;
using Range = NumberingChange::Range;
using Move = NumberingChange::Move;
using dlg::test::OpenConversation;

MarkerLocation Lines(std::int32_t start, std::int32_t end) {
    MarkerLocation location;
    location.startLine = start;
    location.endLine = end;
    return location;
}

// Where the store's only marker stands, "gone" when it is not there any more.
std::string Span(const LineMarkers& markers) {
    const LineMarker* m = markers.At(0);
    if (!m) return "gone";
    return std::to_string(m->location.startLine) + "-" + std::to_string(m->location.endLine);
}

TEST(MarkerLocation, BothFormsAreWrittenAndReadBack) {
    const struct {
        MarkerLocation location;
        std::u16string_view full, navigation;
    } cases[] = {
        {{4, 6, 11, 2, 9},
         u"StartLine=4&EndLine=6&Field=11&StartChar=2&EndChar=9",
         u"StartLine=4&StartChar=2&EndLine=6&EndChar=9&Field=11"},
        {{7, 7, -1, -1, -1},
         u"StartLine=7&EndLine=7&Field=-1&StartChar=-1&EndChar=-1",
         u"StartLine=7&EndLine=7"},
        {{0, -1, 3, -1, 5},
         u"StartLine=0&EndLine=-1&Field=3&StartChar=-1&EndChar=5",
         u"StartLine=0&EndChar=5&Field=3"},
        {{-1, -1, -1, -1, -1}, u"StartLine=-1&EndLine=-1&Field=-1&StartChar=-1&EndChar=-1", u""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(ts::Utf16ToUtf8(c.full));
        EXPECT_EQ(LocationText(c.location), c.full);
        EXPECT_EQ(NavigationText(c.location), c.navigation);
        MarkerLocation read;
        ASSERT_TRUE(ParseMarkerLocation(c.full, read));
        EXPECT_EQ(read, c.location);
        if (c.navigation.empty()) continue;
        MarkerLocation navigated;
        ASSERT_TRUE(ParseMarkerLocation(c.navigation, navigated));
        for (std::int32_t MarkerLocation::*part :
             {&MarkerLocation::startLine, &MarkerLocation::endLine, &MarkerLocation::field,
              &MarkerLocation::startChar, &MarkerLocation::endChar})
            EXPECT_EQ(navigated.*part, c.location.*part < 0 ? -1 : c.location.*part);
    }

    MarkerLocation extreme;
    ASSERT_TRUE(ParseMarkerLocation(u"EndChar=-2147483648&StartLine=2147483647", extreme));
    EXPECT_EQ(extreme.startLine, 2147483647);
    EXPECT_EQ(extreme.endChar, -2147483647 - 1);

    // Anything else is refused and leaves the output alone: one text per way of going wrong.
    // clang-format off
    const std::u16string_view bad[] = {
        u"", u"StartLine", u"StartLine=1&", u"StartLine=", u"StartLine=-", u"StartLine=1.5",
        u"StartLine=18446744073709551617", u"StartLine=2147483648", u"StartLine=-2147483649",
        u"startline=1", u"StartLine=1&StartLine=2"};
    // clang-format on
    for (std::u16string_view text : bad) {
        MarkerLocation untouched{1, 2, 3, 4, 5};
        EXPECT_FALSE(ParseMarkerLocation(text, untouched)) << ts::Utf16ToUtf8(text);
        EXPECT_EQ(untouched, (MarkerLocation{1, 2, 3, 4, 5}));
    }
}

TEST(LineMarkers, InsertedLinesMoveTheMarkersAtOrAfterThem) {
    // marker lines, insertion (first, count, before) -> where the marker stands afterwards
    const struct {
        std::int32_t start, end, first, count;
        bool before;
        const char* expected;
    } cases[] = {
        {5, 5, 5, 2, true, "7-7"},    // starts at F
        {5, 5, 5, 2, false, "7-7"},   // starts at F: moved either way
        {6, 9, 5, 2, false, "8-11"},  // after F
        {3, 5, 5, 2, true, "3-7"},    // ends at F, lines go in before it: it grows
        {3, 5, 5, 2, false, "3-5"},   // ends at F, lines go in after it: it stays
        {3, 8, 5, 2, false, "3-10"},  // around F: grows
        {1, 4, 5, 2, true, "1-4"},    // before F
        {4, 4, 5, 0, true, "4-4"},    // nothing inserted
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.start) + "-" + std::to_string(c.end) + " insert " +
                     std::to_string(c.count) + " at " + std::to_string(c.first) +
                     (c.before ? " before" : " after"));
        LineMarkers markers;
        ASSERT_TRUE(markers.Add(Lines(c.start, c.end), u"m"));
        EXPECT_TRUE(markers.AddLines(c.first, c.count, c.before));
        EXPECT_EQ(Span(markers), c.expected);
    }
}

TEST(LineMarkers, DeletedLinesTakeTheirMarkersAndMoveTheOnesBehindBack) {
    // marker lines, deleted lines first .. first + count - 1 -> afterwards
    const struct {
        std::int32_t start, end, first, count;
        const char* expected;
    } cases[] = {
        {5, 5, 5, 3, "gone"}, {7, 7, 5, 3, "gone"}, {4, 5, 5, 3, "gone"},  // an end inside
        {7, 9, 5, 3, "gone"}, {8, 8, 5, 3, "5-5"},  {9, 12, 5, 3, "6-9"},  // behind
        {2, 9, 5, 3, "2-6"},  {2, 4, 5, 3, "2-4"},  {4, 4, 5, 0, "4-4"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.start) + "-" + std::to_string(c.end) + " delete " +
                     std::to_string(c.count) + " at " + std::to_string(c.first));
        LineMarkers markers;
        ASSERT_TRUE(markers.Add(Lines(c.start, c.end), u"m"));
        EXPECT_TRUE(markers.DeleteLines(c.first, c.count));
        EXPECT_EQ(Span(markers), c.expected);
    }
}

TEST(LineMarkers, MovedSubtreesCarryTheirMarkers) {
    // A subtree of three lines at 4 moves down to stand at 8 (numbered after the move).
    const struct {
        std::int32_t start, end;
        const char* expected;
    } down[] = {{4, 4, "8-8"},     {5, 6, "9-10"}, {7, 7, "4-4"},  {10, 10, "7-7"},
                {11, 11, "11-11"}, {2, 3, "2-3"},  {3, 5, "gone"}, {6, 7, "gone"}};
    for (const auto& c : down) {
        SCOPED_TRACE(std::to_string(c.start) + "-" + std::to_string(c.end));
        LineMarkers markers;
        ASSERT_TRUE(markers.Add(Lines(c.start, c.end), u"m"));
        EXPECT_TRUE(markers.MoveLines(4, 3, 8));
        EXPECT_EQ(Span(markers), c.expected);
    }
    // And back up again; a marker on the line the subtree went in front of stays with its line.
    LineMarkers markers;
    markers.Add(Lines(9, 9), u"inside");
    markers.Add(Lines(4, 4), u"was behind");
    ASSERT_TRUE(markers.MoveLines(8, 3, 4));
    ASSERT_EQ(markers.Count(), 2u);
    EXPECT_EQ(markers.At(0)->location, Lines(5, 5));
    EXPECT_EQ(markers.At(1)->location, Lines(7, 7));
}

// One edit may take out several ranges and put in others: removals high to low in the old
// numbering, insertions low to high in the new.
TEST(LineMarkers, OneChangeAppliesAllItsRangesAndMovesAtOnce) {
    LineMarkers markers;
    for (std::int32_t line : {1, 3, 5, 7, 9, 11, 13}) markers.Add(Lines(line, line), u"m");
    markers.Select(Lines(9, 9), 20);
    NumberingChange change;
    change.removed = {{2, 2}, {5, 1}, {10, 3}};   // 3 and 5 go; 11 moves
    change.inserted = {{1, 1}, {6, 2}, {12, 1}};  // 11 comes back at 12
    change.moved = {{11, 12, 1}};
    ASSERT_TRUE(markers.Apply(change));
    std::vector<std::int32_t> lines;
    for (std::size_t i = 0; i < markers.Count(); ++i)
        lines.push_back(markers.At(i)->location.startLine);
    // The removals leave 1, 4, 6 and 7 (3 and 5 gone, 11 carried); the insertions make them 2,
    // 5, 9 and 10, and 11 lands where its move goes.
    EXPECT_EQ(lines, (std::vector<std::int32_t>{2, 5, 9, 12, 10}));
    EXPECT_EQ(markers.Selection()->startLine, 9) << "the selection follows like a marker";
}

TEST(LineMarkers, WhatCannotBeFollowedIsReportedAndNothingWrongIsKept) {
    ReportCapture reports;
    LineMarkers markers;
    int heard = 0;
    markers.SetChangeListener([&] { ++heard; });
    ASSERT_TRUE(markers.Add(Lines(3, 3), u"m"));
    EXPECT_FALSE(markers.AddLines(-1, 2, true));
    EXPECT_FALSE(markers.AddLines(2, -2, true));
    EXPECT_FALSE(markers.AddLines(2, 2147483647, true)) << "past the last TreeIndex";
    EXPECT_FALSE(markers.DeleteLines(-3, 1));
    EXPECT_FALSE(markers.DeleteLines(1, -1));
    EXPECT_FALSE(markers.MoveLines(1, -1, 2));
    EXPECT_EQ(Span(markers), "3-3") << "a refused step changes nothing";
    EXPECT_EQ(heard, 1);
    EXPECT_EQ(reports.Count(u"Bug in AddLine, should never get here"), 3u);
    EXPECT_EQ(reports.Count(u"Error while processing DeleteLine"), 3u);
    for (const auto& e : reports.entries()) {
        EXPECT_EQ(e.sourceFile, "LineMarkers");
        EXPECT_EQ(e.level, int(ReportLevel::Assert));
    }

    // A change of an edit that does not hold together: the markers can't follow it and go.
    const struct {
        NumberingChange change;
        const char16_t* message;
    } bad[] = {
        {{{{4, 2}, {5, 1}}, {}, {}}, u"Error while processing DeleteLine"},         // overlapping
        {{{{6, 1}, {2, 1}}, {}, {}}, u"Error while processing DeleteLine"},         // descending
        {{{{2, 0}}, {}, {}}, u"Error while processing DeleteLine"},                 // empty range
        {{{}, {{-1, 1}}, {}}, u"Bug in AddLine, should never get here"},            // below line 0
        {{{{2, 1}}, {{4, 1}}, {{1, 4, 1}}}, u"Error while processing DeleteLine"},  // from?
        {{{{2, 1}}, {{4, 1}}, {{2, 5, 1}}}, u"Bug in AddLine, should never get here"},  // to?
        {{{{2, 2}}, {{4, 2}}, {{2, 4, 1}, {3, 4, 1}}}, u"Bug in AddLine, should never get here"},
    };
    for (const auto& b : bad) {
        reports.Clear();
        markers.Add(Lines(3, 3), u"m");
        markers.Select(Lines(3, 3), 10);
        heard = 0;
        EXPECT_FALSE(markers.Apply(b.change));
        EXPECT_EQ(reports.Count(b.message), 1u) << ts::Utf16ToUtf8(b.message);
        EXPECT_EQ(markers.Count(), 0u);
        EXPECT_FALSE(markers.Selection());
        EXPECT_EQ(heard, 1) << "dropping the markers is a change";
    }

    // Markers that name no line are not taken.
    EXPECT_FALSE(markers.Add(Lines(-1, 3), u"m"));
    EXPECT_FALSE(markers.Add(Lines(5, 4), u"m"));
    EXPECT_FALSE(markers.Add({2, 2, 11, 7, 3}, u"m")) << "characters out of order";
    EXPECT_EQ(markers.Count(), 0u);

    // A selection that names nothing: "The selection markers is invalid", the old one kept.
    reports.Clear();
    ASSERT_TRUE(markers.Select(u"StartLine=2&StartChar=4&EndChar=9&Field=11", 6));
    for (std::u16string_view location :
         {u"StartLine=6", u"StartLine=2&EndLine=6", u"EndLine=2", u"StartLine=3&EndLine=2",
          u"StartLine=2&StartChar=5&EndChar=4", u"Line=2", u""})
        EXPECT_FALSE(markers.Select(location, 6)) << ts::Utf16ToUtf8(location);
    EXPECT_EQ(reports.Count(u"The selection markers is invalid"), 7u);
    EXPECT_EQ(*markers.Selection(), (MarkerLocation{2, 2, 11, 4, 9}));
}

TEST(LineMarkers, TextsForTheHostAndTheChangesTheyHear) {
    LineMarkers markers;
    int heard = 0;
    markers.SetChangeListener([&] { ++heard; });
    ASSERT_TRUE(markers.Add({4, -1, 11, 0, 3}, u"Line exceeds maximum length allowed by game"));
    ASSERT_TRUE(markers.Add(Lines(9, 10), u"second"));
    EXPECT_EQ(heard, 2);
    EXPECT_EQ(markers.LocationText(0), u"StartLine=4&EndLine=4&Field=11&StartChar=0&EndChar=3");
    EXPECT_EQ(markers.DisplayText(0), u"(4) : Line exceeds maximum length allowed by game");
    EXPECT_EQ(markers.Category(1), u"Info");
    EXPECT_EQ(markers.LocationText(2), u"");
    EXPECT_EQ(markers.DisplayText(2), u"");

    // The number in the display text is the line's number now.
    ASSERT_TRUE(markers.AddLines(2, 3, true));
    EXPECT_EQ(heard, 3);
    EXPECT_EQ(markers.DisplayText(0), u"(7) : Line exceeds maximum length allowed by game");
    ASSERT_TRUE(markers.AddLines(20, 3, true));
    ASSERT_TRUE(markers.DeleteLines(30, 2));
    ASSERT_TRUE(markers.Apply({}));
    EXPECT_EQ(heard, 3) << "nothing moved, nothing to tell";
    // The selection alone moving is not a change of the markers.
    ASSERT_TRUE(markers.Select(Lines(20, 20), 30));
    ASSERT_TRUE(markers.AddLines(20, 1, true));
    EXPECT_EQ(markers.Selection()->startLine, 21);
    EXPECT_EQ(heard, 3);
    ASSERT_TRUE(markers.DeleteLines(21, 1));
    EXPECT_FALSE(markers.Selection()) << "its line went";

    EXPECT_FALSE(markers.Remove(2));
    ASSERT_TRUE(markers.Remove(0));
    EXPECT_EQ(markers.DisplayText(0), u"(12) : second");
    markers.Clear();
    markers.Clear();
    EXPECT_EQ(heard, 5) << "removing one, then emptying; emptying an empty store is nothing";
}

// A guard, a merchant and their answers, with links back and across: 17 items.
struct Market : ConversationBuilder {
    Market() {
        std::uint32_t halt = Npc(u"Halt!", u"guard");
        std::uint32_t trade = Player(u"Trade.");
        std::uint32_t leave = Player(u"Goodbye.");
        std::uint32_t market = Npc(u"Market's east.");
        std::uint32_t again = Player(u"Again?");
        std::uint32_t thanks = Player(u"Thanks.");
        std::uint32_t wares = Npc(u"Fine wares!", u"merchant");
        std::uint32_t look = Player(u"Let me look.");
        std::uint32_t price = Npc(u"Ten crowns.");
        std::uint32_t deal = Player(u"Deal.");
        std::uint32_t haggle = Player(u"Five.");
        std::uint32_t no = Npc(u"No.");
        std::uint32_t idle = Npc(u"Hm.");
        Start(halt);
        NpcTo(halt, trade);
        NpcTo(halt, leave);
        PlayerTo(trade, market);
        NpcTo(market, again);
        NpcTo(market, thanks);
        PlayerTo(again, halt, true);
        Start(wares);
        NpcTo(wares, look);
        NpcTo(wares, leave, true);
        PlayerTo(look, price);
        NpcTo(price, deal);
        NpcTo(price, haggle);
        PlayerTo(haggle, no);
        NpcTo(no, deal, true);
        PlayerTo(deal, market, true);
        Start(idle);
    }
};

// What each edit reports, heard beside the marker store.
struct Heard : ConversationEditObserver {
    void Renumbered(const NumberingChange& change) override { changes.push_back(change); }
    std::vector<NumberingChange> changes;
};

TreeItem ItemOf(OpenConversation& c, std::int32_t treeIndex) {
    return c.edits.ItemAt(treeIndex);
}

// The numbering changes of a removal with a link from elsewhere, a move and an insertion, and
// of their undo, exactly.
TEST(ConversationEdits, EachEditTellsHowTheNumberingChanged) {
    Market m;
    OpenConversation c(m.Resource());
    ASSERT_TRUE(c.loaded);
    Heard heard;
    c.edits.AddObserver(&heard);
    // 1 Halt, 2 Trade, 3 Market's east, 4 Again?, 5 ->Halt, 6 Thanks, 7 Goodbye, 8 Fine wares,
    // 9 Let me look, 10 Ten crowns, 11 Deal, 12 ->Market, 13 Five, 14 No, 15 ->Deal,
    // 16 ->Goodbye, 17 Hm.
    ASSERT_EQ(c.tree.NodeCount(), 18u);
    auto last = [&] { return heard.changes.back(); };

    // Deleting "Ten crowns" takes its branch (10..15) and nothing else; "Deal." has no link
    // from outside the branch.
    ASSERT_TRUE(c.stack.AddCommand(
        CUndoCommandAddRemoveNodes::RemovalOf(u"Delete", c.edits, ItemOf(c, 10)), true));
    EXPECT_EQ(last(), (NumberingChange{{{10, 6}}, {}, {}}));
    ASSERT_TRUE(c.stack.Undo());
    EXPECT_EQ(last(), (NumberingChange{{}, {{10, 6}}, {}}));
    // Deleting "Goodbye." (7) takes the link to it (16) along: two ranges in one edit.
    ASSERT_TRUE(c.stack.AddCommand(
        CUndoCommandAddRemoveNodes::RemovalOf(u"Delete", c.edits, ItemOf(c, 7)), true));
    EXPECT_EQ(last(), (NumberingChange{{{7, 1}, {16, 1}}, {}, {}}));
    ASSERT_TRUE(c.stack.Undo());
    EXPECT_EQ(last(), (NumberingChange{{}, {{7, 1}, {16, 1}}, {}}));

    // "Ten crowns" (10..15) moves under "Thanks." (6), as its only child: it stands at 7..12
    // afterwards, and undo takes it back.
    ASSERT_TRUE(c.stack.AddCommand(
        std::make_unique<CUndoCommandMoveNode>(u"Drag", c.edits, CUndoMoveTriple{10, 6, 0}), true));
    EXPECT_EQ(last(), (NumberingChange{{{10, 6}}, {{7, 6}}, {{10, 7, 6}}}));
    EXPECT_EQ(c.Broken(), "");
    ASSERT_TRUE(c.stack.Undo());
    EXPECT_EQ(last(), (NumberingChange{{{7, 6}}, {{10, 6}}, {{7, 10, 6}}}));

    // A new line under "Hm." (17) is 18.
    ASSERT_TRUE(c.stack.AddCommand(dlg::test::Insertion(c, ItemOf(c, 17), u"Fresh."), true));
    EXPECT_EQ(last(), (NumberingChange{{}, {{18, 1}}, {}}));
    // A field change is no change of the numbering.
    std::size_t heardBefore = heard.changes.size();
    ASSERT_TRUE(c.stack.AddCommand(
        CUndoCommandModifyNode::ForField(u"Text Change", c.edits, ItemOf(c, 1), u"Text",
                                         variant(11, std::u16string_view(u"Stop!")), kChangeText),
        true));
    EXPECT_EQ(heard.changes.size(), heardBefore);
    c.edits.RemoveObserver(&heard);
}

// A removal that fails halfway puts everything back within the same edit: the lines left and
// came back, so the report pairs them as moves and the markers stay where they were.
TEST(ConversationEdits, AnEditThatPutsBackWhatItTookReportsMovesInPlace) {
    Market m;
    OpenConversation c(m.Resource());
    Heard heard;
    LineMarkers markers;
    c.edits.AddObserver(&markers);
    c.edits.AddObserver(&heard);
    for (std::int32_t line = 1; line < 18; ++line) markers.Add(Lines(line, line), u"m");
    // "Deal." (11) alone, without the link to it at 15: refused after detaching.
    auto removal = std::make_unique<CUndoCommandAddRemoveNodes>(u"Delete", c.edits, false);
    removal->AddNode(CUndoCommandAddRemoveNodes::RecordOf(c.edits, ItemOf(c, 11)));
    ReportCapture reports;
    EXPECT_FALSE(c.stack.AddCommand(std::move(removal), true));
    ASSERT_EQ(heard.changes.size(), 1u);
    EXPECT_EQ(heard.changes[0], (NumberingChange{{{11, 2}}, {{11, 2}}, {{11, 11, 2}}}));
    EXPECT_EQ(c.Broken(), "");
    ASSERT_EQ(markers.Count(), 17u);
    for (std::size_t i = 0; i < markers.Count(); ++i)
        EXPECT_EQ(markers.At(i)->location.startLine, std::int32_t(i) + 1);
    c.edits.RemoveObserver(&heard);
    c.edits.RemoveObserver(&markers);
}

// Markers on every line, then random inserts, deletes, moves and undo and redo: after every
// edit each marker stands on the very item it was made for, and a marker is missing only when
// its item has left the tree.
TEST(ConversationEdits, MarkersStayOnTheirLinesThroughRandomEditsUndoAndRedo) {
    for (std::uint32_t seed : {3u, 17u, 29u}) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Market m;
        OpenConversation c(m.Resource());
        LineMarkers markers;
        std::map<std::u16string, TreeItem> madeFor;
        for (std::int32_t line = 1; line < std::int32_t(c.tree.NodeCount()); ++line) {
            std::u16string name = ts::Utf8ToUtf16(std::to_string(line));
            markers.Add(Lines(line, line), name);
            madeFor[name] = ItemOf(c, line);
        }
        struct Checker : ConversationEditObserver {
            void StructureChanged() override {
                ++edits;
                std::size_t found = 0;
                for (std::size_t i = 0; i < markers->Count(); ++i) {
                    const LineMarker& marker = *markers->At(i);
                    auto it = madeFor->find(marker.message);
                    ASSERT_NE(it, madeFor->end()) << "a marker came back after its line went";
                    EXPECT_EQ(c->edits.ItemAt(marker.location.startLine), it->second)
                        << "marker " << ts::Utf16ToUtf8(marker.message) << " after edit " << edits;
                    ++found;
                }
                // Those whose item left are gone for good.
                for (auto it = madeFor->begin(); it != madeFor->end();)
                    it = c->tree.Items().IsInTree(it->second) ? std::next(it) : madeFor->erase(it);
                EXPECT_EQ(found, madeFor->size()) << "after edit " << edits;
            }
            OpenConversation* c;
            LineMarkers* markers;
            std::map<std::u16string, TreeItem>* madeFor;
            int edits = 0;
        } checker;
        checker.c = &c;
        checker.markers = &markers;
        checker.madeFor = &madeFor;
        c.edits.AddObserver(&markers);
        c.edits.AddObserver(&checker);
        dlg::test::RandomEdits(c, seed, 80);
        EXPECT_GT(checker.edits, 20);
        EXPECT_LT(markers.Count(), std::size_t(17)) << "some lines were deleted on the way";
        EXPECT_GT(markers.Count(), 0u);
        c.edits.RemoveObserver(&checker);
        c.edits.RemoveObserver(&markers);
    }
}

}  // namespace
