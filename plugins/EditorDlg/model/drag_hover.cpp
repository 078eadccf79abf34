#include "model/drag_hover.h"

namespace dlg {

DragBand DragBandAt(int y, int height) {
    if (y < kDragBandHeight) return DragBand::Top;
    if (y >= height - kDragBandHeight) return DragBand::Bottom;
    return DragBand::Middle;
}

DragHoverAction DragHoverActionAt(const ItemTree& items, TreeItem item, DragBand band) {
    bool topLevel = items.IsValid(item) && items.GetParent(item) == kNoItem;
    switch (band) {
        case DragBand::Top:
            return topLevel && items.GetPrevSibling(item) == kNoItem ? DragHoverAction::Expand
                                                                     : DragHoverAction::ScrollUp;
        case DragBand::Bottom:
            return topLevel && items.GetNextSibling(item) == kNoItem ? DragHoverAction::Expand
                                                                     : DragHoverAction::ScrollDown;
        case DragBand::Middle:
            break;
    }
    return items.IsValid(item) && items.HasChildren(item) && !items.IsExpanded(item)
               ? DragHoverAction::Expand
               : DragHoverAction::None;
}

bool DragHover::Update(const ItemTree& items, TreeItem item, DragBand band) {
    DragHoverAction action = DragHoverActionAt(items, item, band);
    if (action == action_ && item == item_) return false;
    action_ = action;
    item_ = item;
    return true;
}

int DragHover::Interval() const {
    switch (action_) {
        case DragHoverAction::ScrollUp:
        case DragHoverAction::ScrollDown:
            return kDragScrollInterval;
        case DragHoverAction::Expand:
            return kDragExpandDelay;
        case DragHoverAction::None:
            break;
    }
    return 0;
}

}  // namespace dlg
