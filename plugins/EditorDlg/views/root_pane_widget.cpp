#include "views/root_pane_widget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QLineEdit>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace dlg {

namespace {

QString Q(std::u16string_view text) {
    return QString::fromStdU16String(std::u16string(text));
}

// Object names for tests and style sheets: the field each control edits.
QString NameOf(int control) {
    return Q(CRootDlg::Info(control).field);
}

}  // namespace

RootPaneWidget::RootPaneWidget(CRootDlg& pane, QWidget* parent) : QWidget(parent), pane_(pane) {
    // The fields scroll rather than set a minimum height for the whole editor.
    auto* fields = new QWidget;
    auto* form = new QFormLayout(fields);
    auto* scroll = new QScrollArea;
    scroll->setWidget(fields);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroll);
    for (int c = CRootDlg::kNpcSpeaker; CRootDlg::IsTag(c); ++c) {
        auto* combo = new QComboBox;
        combo->setObjectName(NameOf(c));
        combo->setEditable(true);
        combo->setInsertPolicy(QComboBox::NoInsert);
        form->addRow(Q(CRootDlg::Info(c).caption), combo);
        tags_[c - CRootDlg::kNpcSpeaker] = combo;
        connect(combo, &QComboBox::currentTextChanged, this, [this, c](const QString& text) {
            if (!showing_) pane_.Controls().Tag(c) = text.toStdU16String();
        });
        connect(combo, &QComboBox::activated, this, [this, c] { ApplyControl(c); });
        combo->installEventFilter(this);
        if (combo->lineEdit()) combo->lineEdit()->installEventFilter(this);
    }
    for (int c = CRootDlg::kAmbientSoundSet; CRootDlg::IsBox(c); ++c) {
        auto* box = new QCheckBox(Q(CRootDlg::Info(c).caption));
        box->setObjectName(NameOf(c));
        form->addRow(box);
        boxes_[c - CRootDlg::kAmbientSoundSet] = box;
        connect(box, &QCheckBox::toggled, this, [this, c](bool on) {
            if (showing_) return;
            pane_.Controls().Box(c) = on;
            ApplyControl(c);
        });
    }
    pane_.SetOnShow([this] { Show(); });
    Show();
}

RootPaneWidget::~RootPaneWidget() {
    pane_.SetOnShow({});
}

bool RootPaneWidget::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        for (int i = 0; i < CRootDlg::kTagCount; ++i)
            if (watched == tags_[i] || watched == tags_[i]->lineEdit())
                ApplyControl(CRootDlg::kNpcSpeaker + i);
    }
    return QWidget::eventFilter(watched, event);
}

void RootPaneWidget::ApplyControl(int control) {
    if (!showing_) pane_.Apply(control, true);
}

void RootPaneWidget::Show() {
    showing_ = true;
    setEnabled(pane_.Enabled());
    for (int i = 0; i < CRootDlg::kTagCount; ++i) {
        int control = CRootDlg::kNpcSpeaker + i;
        QComboBox* combo = tags_[i];
        QSignalBlocker quiet(combo);
        combo->clear();
        if (pane_.HasRoot())
            for (const std::u16string& choice : pane_.TagChoices(control))
                combo->addItem(Q(choice));
        // A tag the list lacks (typed, not yet applied) is still shown as typed.
        combo->setCurrentText(Q(pane_.Controls().Tag(control)));
    }
    for (int i = 0; i < CRootDlg::kBoxCount; ++i)
        boxes_[i]->setChecked(pane_.Controls().Box(CRootDlg::kAmbientSoundSet + i));
    showing_ = false;
}

}  // namespace dlg
