#include "views/text_field_pane_widget.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "model/panes/slide_show_dlg.h"

namespace dlg {

TextFieldPaneWidget::TextFieldPaneWidget(TextFieldPane& pane, QWidget* parent)
    : QWidget(parent), pane_(pane), title_(new QLabel) {
    title_->setObjectName(QStringLiteral("FieldTitle"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(title_);
    if (auto* slideShow = dynamic_cast<CSlideShowDlg*>(&pane)) {
        line_ = new QLineEdit;
        line_->setObjectName(QStringLiteral("FieldText"));
        browse_ = new QPushButton(QStringLiteral("Browse..."));
        browse_->setObjectName(QStringLiteral("Browse"));
        auto* row = new QHBoxLayout;
        row->addWidget(line_, 1);
        row->addWidget(browse_);
        layout->addLayout(row);
        layout->addStretch(1);
        connect(line_, &QLineEdit::textEdited, this, [this](const QString& text) {
            if (!showing_) pane_.Text() = text.toStdU16String();
        });
        connect(line_, &QLineEdit::returnPressed, this, [this] {
            if (!showing_) pane_.Apply(TextFieldPane::kTextControl, true);
        });
        connect(browse_, &QPushButton::clicked, this, [slideShow] { slideShow->Browse(); });
        line_->installEventFilter(this);
    } else {
        text_ = new QPlainTextEdit;
        text_->setObjectName(QStringLiteral("FieldText"));
        text_->setMinimumHeight(0);
        layout->addWidget(text_, 1);
        connect(text_, &QPlainTextEdit::textChanged, this, [this] {
            if (!showing_) pane_.Text() = text_->toPlainText().toStdU16String();
        });
        text_->installEventFilter(this);
    }
    pane_.SetOnShow([this] { Show(); });
    Show();
}

TextFieldPaneWidget::~TextFieldPaneWidget() {
    pane_.SetOnShow({});
}

bool TextFieldPaneWidget::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut && !showing_ && (watched == text_ || watched == line_))
        pane_.Apply(TextFieldPane::kTextControl, true);
    return QWidget::eventFilter(watched, event);
}

void TextFieldPaneWidget::Show() {
    showing_ = true;
    setEnabled(pane_.Enabled());
    title_->setText(QString::fromStdU16String(std::u16string(pane_.Title())));
    QString text = QString::fromStdU16String(pane_.Text());
    if (text_ && text_->toPlainText() != text) text_->setPlainText(text);
    if (line_ && line_->text() != text) line_->setText(text);
    showing_ = false;
}

}  // namespace dlg
