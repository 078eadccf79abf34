#pragma once

#include <array>

#include <QWidget>

#include "model/panes/root_dlg.h"

class QCheckBox;
class QComboBox;

namespace dlg {

// The "Global Settings" tab on screen: shows what its CRootDlg says and hands it what the user
// types. A tag box applies when it loses the focus or a tag is chosen; a check box at once.
class RootPaneWidget : public QWidget {
    Q_OBJECT
public:
    RootPaneWidget(CRootDlg& pane, QWidget* parent = nullptr);
    ~RootPaneWidget() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Show();
    void ApplyControl(int control);

    CRootDlg& pane_;
    bool showing_ = false;
    std::array<QComboBox*, CRootDlg::kTagCount> tags_{};
    std::array<QCheckBox*, CRootDlg::kBoxCount> boxes_{};
};

}  // namespace dlg
