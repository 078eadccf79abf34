#pragma once

#include <array>
#include <functional>
#include <memory>
#include <vector>

#include "model/conversation_tree.h"
#include "model/panes/line_pane.h"
#include "model/panes/pane_tabs.h"

namespace dlg {

// What a screen shows of the pane host: the tab strip and the pane window of the shown tab.
class PaneHostView {
public:
    virtual ~PaneHostView() = default;
    virtual void TabInserted(int position, int tab) = 0;
    virtual void TabRemoved(int position) = 0;
    virtual void TabSelected(int position) = 0;
    // `pane` is null for a tab whose pane does not exist yet in this editor (an empty page).
    virtual void PaneShown(int tab, LinePane* pane) = 0;
};

// The pane host: offers the tabs that apply to the tree's selection and shows one pane at a
// time. Panes are made on first use by the factory (null for a tab without a pane yet) and
// live as long as the host.
class CSettingsDlg {
public:
    using PaneFactory = std::function<std::unique_ptr<LinePane>(int tab)>;

    CSettingsDlg(const ConversationTree& tree, PaneFactory factory);

    // The tree's selection changed: every pane loses its selection (the plots and scripts pane
    // takes the new one at once), the strip is rebuilt in place, the tab shown before stays when
    // it is still offered (else the first one is taken) and its pane is shown.
    void SetSelection(bool root, TreeItem item);
    // Shows the tab `tab` after committing the visible pane; nothing when the strip is empty,
    // the tab is already shown or is not offered. False when nothing changed.
    bool SelectTab(int tab);
    // The user picked the tab at `position` of the strip.
    bool SelectPosition(int position);

    // The editor window's pane-apply switch: while on, the visible pane applies all of its
    // controls before another tab is shown.
    void SetPaneApply(bool on) { paneApply_ = on; }
    bool PaneApply() const { return paneApply_; }

    // The tabs of the strip, in order, and the one shown (-1 for none).
    const std::vector<int>& Strip() const { return strip_; }
    int ShownTab() const { return shown_; }
    // The pane of a tab once made, else null.
    LinePane* Pane(int tab) const;
    LinePane* ShownPane() const { return Pane(shown_); }

    // The comments pane, shown beside the tabs for every selection (the root's synopsis, a
    // line's scripting comment), so it follows each selection as it comes.
    void SetCommentsPane(std::unique_ptr<LinePane> pane) { comments_ = std::move(pane); }
    LinePane* CommentsPane() const { return comments_.get(); }

    // The tab whose pane edits find-and-replace field `field` (asked in kFindReplaceOrder),
    // selected; -1 when no pane of the present selection owns it.
    int RouteFindReplace(int field);

    void SetView(PaneHostView* view) { view_ = view; }

private:
    void Commit();
    void Show(int tab);
    LinePane* MakePane(int tab);

    const ConversationTree& tree_;
    PaneFactory factory_;
    std::array<std::unique_ptr<LinePane>, kTabCount> panes_;
    std::array<bool, kTabCount> made_{};
    std::unique_ptr<LinePane> comments_;
    std::vector<int> strip_;
    int shown_ = -1;
    bool root_ = false;
    TreeItem item_ = kNoItem;
    bool paneApply_ = false;
    PaneHostView* view_ = nullptr;
};

}  // namespace dlg
