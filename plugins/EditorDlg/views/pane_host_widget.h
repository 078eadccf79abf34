#pragma once

#include <QObject>
#include <QPointer>
#include <array>

#include "model/panes/settings_dlg.h"

class QTabWidget;
class QWidget;

namespace dlg {

// Shows a CSettingsDlg in the editor's tab widget: the strip follows the host's tabs, each tab's
// page is made once and kept while the tab comes and goes, and a tab the user picks goes
// through the host (which commits the visible pane first).
class PaneHostWidget : public QObject, public PaneHostView {
    Q_OBJECT
public:
    PaneHostWidget(CSettingsDlg& host, QTabWidget& tabs);
    ~PaneHostWidget() override;

    void TabInserted(int position, int tab) override;
    void TabRemoved(int position) override;
    void TabSelected(int position) override;
    void PaneShown(int tab, LinePane* pane) override;

private:
    QWidget* Page(int tab);

    CSettingsDlg& host_;
    QPointer<QTabWidget> tabs_;
    std::array<QPointer<QWidget>, kTabCount> pages_{};
    std::array<bool, kTabCount> filled_{};
    // Set while the strip is changed to match the host, whose own changes are not news to it.
    bool following_ = false;
};

}  // namespace dlg
