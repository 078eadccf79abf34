// What a drag held still over the tree does: scroll in the edge bands, open closed lines, and
// start its timer again only when the action or the line under the cursor changes.
#include <gtest/gtest.h>

#include "model/drag_hover.h"

namespace {

using namespace dlg;

TEST(DragHover, BandsScrollClosedLinesOpenAndTheTimerRestartsOnChange) {
    EXPECT_EQ(DragBandAt(0, 100), DragBand::Top);
    EXPECT_EQ(DragBandAt(9, 100), DragBand::Top);
    EXPECT_EQ(DragBandAt(10, 100), DragBand::Middle);
    EXPECT_EQ(DragBandAt(89, 100), DragBand::Middle);
    EXPECT_EQ(DragBandAt(90, 100), DragBand::Bottom);

    ItemTree items;
    TreeItem root = items.InsertItem(kNoItem, kInsertLast, u"root");
    TreeItem closed = items.InsertItem(root, kInsertLast, u"closed");
    items.InsertItem(closed, kInsertLast, u"child");
    TreeItem leaf = items.InsertItem(root, kInsertLast, u"leaf");
    items.Expand(root, true);
    struct Case {
        TreeItem item;
        DragBand band;
        DragHoverAction action;
    } cases[] = {
        // The root is the only top-level item: nothing lies above or below it to scroll to.
        {root, DragBand::Top, DragHoverAction::Expand},
        {root, DragBand::Bottom, DragHoverAction::Expand},
        {closed, DragBand::Top, DragHoverAction::ScrollUp},
        {leaf, DragBand::Bottom, DragHoverAction::ScrollDown},
        {kNoItem, DragBand::Bottom, DragHoverAction::ScrollDown},
        {closed, DragBand::Middle, DragHoverAction::Expand},
        {root, DragBand::Middle, DragHoverAction::None},
        {leaf, DragBand::Middle, DragHoverAction::None},
        {kNoItem, DragBand::Middle, DragHoverAction::None},
    };
    for (const Case& c : cases)
        EXPECT_EQ(DragHoverActionAt(items, c.item, c.band), c.action) << "case " << (&c - cases);

    DragHover hover;
    EXPECT_TRUE(hover.Update(items, closed, DragBand::Middle));
    EXPECT_EQ(hover.Interval(), kDragExpandDelay);
    EXPECT_FALSE(hover.Update(items, closed, DragBand::Middle)) << "resting: the timer runs on";
    EXPECT_TRUE(hover.Update(items, closed, DragBand::Top));
    EXPECT_EQ(hover.Interval(), kDragScrollInterval);
    EXPECT_TRUE(hover.Update(items, leaf, DragBand::Top)) << "another line, the same action";
    EXPECT_TRUE(hover.Update(items, leaf, DragBand::Middle));
    EXPECT_EQ(hover.Interval(), 0);
}

}  // namespace
