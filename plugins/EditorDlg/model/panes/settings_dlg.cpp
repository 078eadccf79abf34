#include "model/panes/settings_dlg.h"

#include <algorithm>

namespace dlg {

CSettingsDlg::CSettingsDlg(const ConversationTree& tree, PaneFactory factory)
    : tree_(tree), factory_(std::move(factory)) {}

LinePane* CSettingsDlg::Pane(int tab) const {
    return tab >= 0 && tab < kTabCount ? panes_[tab].get() : nullptr;
}

LinePane* CSettingsDlg::MakePane(int tab) {
    if (!made_[tab]) {
        made_[tab] = true;
        if (factory_) panes_[tab] = factory_(tab);
    }
    return panes_[tab].get();
}

void CSettingsDlg::SetSelection(bool root, TreeItem item) {
    root_ = root;
    item_ = root ? kNoItem : item;
    if (comments_) comments_->SetSelection(root_, item_);
    for (int tab = 0; tab < kTabCount; ++tab) {
        if (!panes_[tab]) continue;
        // The plots and scripts pane is offered for the root and for lines alike, so it follows
        // the selection even while hidden.
        if (tab == kTabPlotsAndScripting)
            panes_[tab]->SetSelection(root_, item_);
        else
            panes_[tab]->SetSelection(false, kNoItem);
    }

    // Rebuild the strip in place, so that the tabs that stay are not made again.
    std::uint32_t mask = SelectionMask(tree_, root_, item_);
    std::size_t position = 0;
    for (int tab = 0; tab < kTabCount; ++tab) {
        bool there = position < strip_.size() && strip_[position] == tab;
        if (TabApplies(tab, mask)) {
            if (!there) {
                strip_.insert(strip_.begin() + std::ptrdiff_t(position), tab);
                if (view_) view_->TabInserted(int(position), tab);
            }
            ++position;
        } else if (there) {
            strip_.erase(strip_.begin() + std::ptrdiff_t(position));
            if (view_) view_->TabRemoved(int(position));
        }
    }

    int keep = std::find(strip_.begin(), strip_.end(), shown_) != strip_.end() ? shown_ : -1;
    if (keep < 0 && !strip_.empty()) keep = strip_.front();
    Show(keep);
}

void CSettingsDlg::Show(int tab) {
    shown_ = tab;
    if (tab < 0 || tab >= kTabCount) {
        shown_ = -1;
        if (view_) view_->PaneShown(-1, nullptr);
        return;
    }
    LinePane* pane = MakePane(tab);
    if (pane) pane->SetSelection(root_, item_);
    if (view_) {
        auto at = std::find(strip_.begin(), strip_.end(), tab);
        view_->TabSelected(int(at - strip_.begin()));
        view_->PaneShown(tab, pane);
    }
}

void CSettingsDlg::Commit() {
    if (!paneApply_) return;
    if (LinePane* pane = ShownPane()) pane->Apply(LinePane::kAllControls, true);
}

bool CSettingsDlg::SelectTab(int tab) {
    if (strip_.empty() || tab == shown_) return false;
    if (std::find(strip_.begin(), strip_.end(), tab) == strip_.end()) return false;
    Commit();
    Show(tab);
    return true;
}

bool CSettingsDlg::SelectPosition(int position) {
    if (position < 0 || std::size_t(position) >= strip_.size()) return false;
    return SelectTab(strip_[std::size_t(position)]);
}

int CSettingsDlg::RouteFindReplace(int field) {
    std::uint32_t mask = SelectionMask(tree_, root_, item_);
    for (PaneTab tab : kFindReplaceOrder) {
        if (!TabApplies(tab, mask)) continue;
        LinePane* pane = MakePane(tab);
        if (!pane || !pane->OwnsField(field)) continue;
        if (tab != shown_) {
            Commit();
            Show(tab);
        }
        return tab;
    }
    return -1;
}

}  // namespace dlg
