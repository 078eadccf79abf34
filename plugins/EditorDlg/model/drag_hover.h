#pragma once

#include "model/item_tree.h"

namespace dlg {

// What holding a drag still over the tree does: near the top or bottom edge the tree scrolls,
// and a closed item with children opens after a moment, so that any place can be reached
// without letting go.
enum class DragHoverAction { None, ScrollUp, ScrollDown, Expand };

// Where the cursor is across the tree's height: in the band along the top or bottom edge, or
// between them.
enum class DragBand { Top, Middle, Bottom };

// The height of each edge band, in pixels.
inline constexpr int kDragBandHeight = 10;
// How often the tree scrolls while the cursor stays in a band, and how long it must rest on a
// closed item before it opens, in milliseconds.
inline constexpr int kDragScrollInterval = 80;
inline constexpr int kDragExpandDelay = 500;

DragBand DragBandAt(int y, int height);

// The action the cursor at `band` over `item` (kNoItem: none) chooses. The bands scroll, except
// over a top-level item with nothing before it (top band) or after it (bottom band), where there
// is nothing to scroll to and the item opens instead; between them a closed item with children
// opens.
DragHoverAction DragHoverActionAt(const ItemTree& items, TreeItem item, DragBand band);

// Follows the hover during one drag: the timer that carries out the action starts again each
// time the action or the hovered item changes, and not while they stay the same.
class DragHover {
public:
    // True when the timer must start again, with Interval() (or stop, for no action).
    bool Update(const ItemTree& items, TreeItem item, DragBand band);
    void Reset() { *this = {}; }

    DragHoverAction Action() const { return action_; }
    TreeItem Item() const { return item_; }
    // The timer's interval for the action; 0 for none.
    int Interval() const;

private:
    DragHoverAction action_ = DragHoverAction::None;
    TreeItem item_ = kNoItem;
};

}  // namespace dlg
