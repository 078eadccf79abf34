#pragma once

#include <QWidget>

#include "model/panes/text_dlg.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QPlainTextEdit;
class QSplitter;
class QTimer;

namespace dlg {

class CValueCacheCombo;

// The "Dialogue" tab on screen: shows what its CTextDlg says and hands it what the user types.
// A control applies when it loses the focus; a check box or a list choice at once.
class TextPaneWidget : public QWidget {
    Q_OBJECT
public:
    TextPaneWidget(CTextDlg& pane, QWidget* parent = nullptr);
    ~TextPaneWidget() override;

    QSplitter& Splitter() const { return *splitter_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Shows the pane's values and lists again (after a fill or a change made elsewhere).
    void Show();
    void ApplyControl(int control);

    CTextDlg& pane_;
    bool showing_ = false;
    QSplitter* splitter_;
    QPlainTextEdit* text_;
    QComboBox* speaker_;
    QComboBox* listener_;
    CValueCacheCombo* language_;
    CValueCacheCombo* icon_;
    QComboBox* fastPath_;
    QCheckBox* reTranslation_;
    QCheckBox* reRecord_;
    QCheckBox* noVoInGame_;
    QCheckBox* narration_;
    QLabel* voStatus_;
    QLabel* translationStatus_;
    QTimer* refresh_;
};

}  // namespace dlg
