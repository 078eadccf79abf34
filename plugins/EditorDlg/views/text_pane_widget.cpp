#include "views/text_pane_widget.h"

#include <QCheckBox>
#include <QEvent>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>

#include "model/conversation_editor_wnd.h"
#include "model/dlg_editor_settings.h"
#include "views/markup_highlighter.h"
#include "views/splitter_keeper.h"
#include "views/value_cache_combo.h"

namespace dlg {

namespace {

QString Q(const std::u16string& text) {
    return QString::fromStdU16String(text);
}

void FillCombo(QComboBox* combo, const std::vector<std::u16string>& choices,
               const std::u16string& current) {
    QSignalBlocker quiet(combo);
    combo->clear();
    for (const std::u16string& choice : choices) combo->addItem(Q(choice));
    // A value the list lacks (a typed tag not yet applied) is still shown as typed.
    combo->setCurrentText(Q(current));
}

}  // namespace

TextPaneWidget::TextPaneWidget(CTextDlg& pane, QWidget* parent)
    : QWidget(parent),
      pane_(pane),
      splitter_(new QSplitter(Qt::Vertical, this)),
      text_(new QPlainTextEdit),
      speaker_(new QComboBox),
      listener_(new QComboBox),
      language_(new CValueCacheCombo),
      icon_(new CValueCacheCombo),
      fastPath_(new QComboBox),
      reTranslation_(new QCheckBox(QStringLiteral("Requires re-translation"))),
      reRecord_(new QCheckBox(QStringLiteral("Requires VO re-recording"))),
      noVoInGame_(new QCheckBox(QStringLiteral("No VO in game"))),
      narration_(new QCheckBox(QStringLiteral("Narration"))),
      voStatus_(new QLabel),
      translationStatus_(new QLabel),
      refresh_(new QTimer(this)) {
    splitter_->setObjectName(
        QString::fromStdU16String(std::u16string(CConversationEditorWnd::kTextSplitter)));
    text_->setObjectName(QStringLiteral("LineText"));
    speaker_->setObjectName(QStringLiteral("Speaker"));
    listener_->setObjectName(QStringLiteral("Listener"));
    language_->setObjectName(QStringLiteral("Language"));
    icon_->setObjectName(QStringLiteral("Icon"));
    fastPath_->setObjectName(QStringLiteral("FastPath"));
    voStatus_->setObjectName(QStringLiteral("VoStatus"));
    translationStatus_->setObjectName(QStringLiteral("TranslationStatus"));
    new MarkupHighlighter(text_->document());
    speaker_->setEditable(true);
    listener_->setEditable(true);
    speaker_->setInsertPolicy(QComboBox::NoInsert);
    listener_->setInsertPolicy(QComboBox::NoInsert);
    voStatus_->setAutoFillBackground(true);

    auto* fields = new QWidget;
    auto* form = new QFormLayout(fields);
    form->addRow(QStringLiteral("Speaker"), speaker_);
    form->addRow(QStringLiteral("Listener"), listener_);
    form->addRow(QStringLiteral("Language"), language_);
    form->addRow(QStringLiteral("Icon"), icon_);
    form->addRow(QStringLiteral("Fast path"), fastPath_);
    form->addRow(reTranslation_);
    form->addRow(reRecord_);
    form->addRow(noVoInGame_);
    form->addRow(narration_);
    form->addRow(QStringLiteral("Voice-over"), voStatus_);
    form->addRow(QStringLiteral("Translation"), translationStatus_);
    // The fields scroll rather than set a minimum height for the whole editor.
    auto* scroll = new QScrollArea;
    scroll->setWidget(fields);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    text_->setMinimumHeight(0);
    splitter_->addWidget(text_);
    splitter_->addWidget(scroll);
    splitter_->setChildrenCollapsible(false);
    // A line's text is a few lines long; the fields below get the rest.
    splitter_->setStretchFactor(0, 1);
    splitter_->setStretchFactor(1, 3);
    splitter_->setSizes({100, 300});
    KeepSplitterPosition(*splitter_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter_);

    // What the user types goes to the pane as it is typed; it is applied when the control
    // loses the focus.
    connect(text_, &QPlainTextEdit::textChanged, this, [this] {
        if (!showing_) pane_.Controls().text = text_->toPlainText().toStdU16String();
    });
    connect(speaker_, &QComboBox::currentTextChanged, this, [this](const QString& text) {
        if (!showing_) pane_.Controls().speaker = text.toStdU16String();
    });
    connect(listener_, &QComboBox::currentTextChanged, this, [this](const QString& text) {
        if (!showing_) pane_.Controls().listener = text.toStdU16String();
    });
    for (QComboBox* combo : {speaker_, listener_}) {
        int control = combo == speaker_ ? CTextDlg::kSpeaker : CTextDlg::kListener;
        connect(combo, &QComboBox::activated, this, [this, control] { ApplyControl(control); });
        combo->installEventFilter(this);
        if (combo->lineEdit()) combo->lineEdit()->installEventFilter(this);
    }
    text_->installEventFilter(this);
    connect(language_, &QComboBox::activated, this, [this] {
        pane_.Controls().language = language_->Value(pane_.Controls().language);
        ApplyControl(CTextDlg::kLanguage);
    });
    connect(icon_, &QComboBox::activated, this, [this] {
        pane_.Controls().icon = icon_->Value(pane_.Controls().icon);
        ApplyControl(CTextDlg::kIcon);
    });
    connect(fastPath_, &QComboBox::activated, this, [this](int index) {
        pane_.Controls().fastPath = index;
        ApplyControl(CTextDlg::kFastPath);
    });
    struct Box {
        QCheckBox* box;
        bool CTextDlg::Values::*value;
        int control;
    };
    for (Box b : {Box{reTranslation_, &CTextDlg::Values::reTranslation, CTextDlg::kReTranslation},
                  Box{reRecord_, &CTextDlg::Values::reRecord, CTextDlg::kReRecord},
                  Box{noVoInGame_, &CTextDlg::Values::noVoInGame, CTextDlg::kNoVoInGame},
                  Box{narration_, &CTextDlg::Values::narration, CTextDlg::kNarration}}) {
        connect(b.box, &QCheckBox::toggled, this, [this, b](bool on) {
            if (showing_) return;
            pane_.Controls().*b.value = on;
            ApplyControl(b.control);
        });
    }

    // A timer of the widget's own (not a free single shot), so that nothing of it outlives the
    // widget, or the plugin that holds its code.
    refresh_->setSingleShot(true);
    refresh_->setInterval(500);
    connect(refresh_, &QTimer::timeout, this, [this] {
        if (pane_.HasLine()) pane_.Fill();
    });
    pane_.SetOnShow([this] { Show(); });
    Show();
}

TextPaneWidget::~TextPaneWidget() {
    pane_.SetOnShow({});
}

bool TextPaneWidget::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut) {
        if (watched == text_)
            ApplyControl(CTextDlg::kText);
        else if (watched == speaker_ || watched == speaker_->lineEdit())
            ApplyControl(CTextDlg::kSpeaker);
        else if (watched == listener_ || watched == listener_->lineEdit())
            ApplyControl(CTextDlg::kListener);
    }
    return QWidget::eventFilter(watched, event);
}

void TextPaneWidget::ApplyControl(int control) {
    if (showing_) return;
    pane_.Apply(control, true);
    if (pane_.TakeRefreshRequest()) {
        // The status records may change once the store has the new text; look again shortly.
        refresh_->start();
    }
}

void TextPaneWidget::Show() {
    showing_ = true;
    const CTextDlg::Values& v = pane_.Controls();
    setEnabled(pane_.Enabled());
    if (text_->toPlainText().toStdU16String() != v.text) text_->setPlainText(Q(v.text));
    FillCombo(speaker_, pane_.HasLine() ? pane_.SpeakerChoices() : std::vector<std::u16string>{},
              pane_.HasLine() ? v.speaker : std::u16string());
    speaker_->setEnabled(pane_.Enabled() && !pane_.IsPlayerLine());
    FillCombo(listener_, pane_.HasLine() ? pane_.ListenerChoices() : std::vector<std::u16string>{},
              pane_.HasLine() ? v.listener : std::u16string());
    language_->Fill(pane_.Languages());
    language_->SelectValue(v.language);
    icon_->Fill(pane_.Icons());
    icon_->SelectValue(v.icon);
    {
        QSignalBlocker quiet(fastPath_);
        fastPath_->clear();
        for (const std::u16string& choice : CTextDlg::FastPathChoices())
            fastPath_->addItem(Q(choice));
        fastPath_->setCurrentIndex(v.fastPath);
    }
    reTranslation_->setChecked(v.reTranslation);
    reRecord_->setChecked(v.reRecord);
    noVoInGame_->setChecked(v.noVoInGame);
    narration_->setChecked(v.narration);
    voStatus_->setText(Q(pane_.VoStatus()));
    translationStatus_->setText(Q(pane_.TranslationStatus()));
    QPalette palette = voStatus_->palette();
    std::uint32_t colour = ToScreenColour(TheDlgEditorSettings().VORecordedColor);
    if (pane_.VoSent() && colour != kNoColour)
        palette.setColor(QPalette::Window,
                         QColor(colour & 0xff, (colour >> 8) & 0xff, (colour >> 16) & 0xff));
    else
        palette.setColor(QPalette::Window, this->palette().color(QPalette::Window));
    voStatus_->setPalette(palette);
    showing_ = false;
}

}  // namespace dlg
