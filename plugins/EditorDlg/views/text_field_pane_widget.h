#pragma once

#include <QWidget>

#include "model/panes/text_field_pane.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace dlg {

class CSlideShowDlg;

// A TextFieldPane on screen: its title over a text box, which applies when it loses the focus.
// Comments get a box of several lines; the slide-show texture one line and a browse button.
class TextFieldPaneWidget : public QWidget {
    Q_OBJECT
public:
    TextFieldPaneWidget(TextFieldPane& pane, QWidget* parent = nullptr);
    ~TextFieldPaneWidget() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Show();

    TextFieldPane& pane_;
    bool showing_ = false;
    QLabel* title_;
    QPlainTextEdit* text_ = nullptr;
    QLineEdit* line_ = nullptr;
    QPushButton* browse_ = nullptr;
};

}  // namespace dlg
