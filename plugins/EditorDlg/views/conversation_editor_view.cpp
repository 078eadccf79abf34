#include "views/conversation_editor_view.h"

#include <dlfcn.h>

#include <QApplication>
#include <QClipboard>
#include <QLayout>
#include <QTabWidget>
#include <QVBoxLayout>

#include "model/conversation_editor_wnd.h"
#include "model/panes/text_field_pane.h"
#include "views/pane_host_widget.h"
#include "views/splitter_keeper.h"
#include "views/text_field_pane_widget.h"

namespace dlg {

namespace {

// The window owns its view, and the host's frame owns its child widgets: whichever goes first,
// the widget is deleted once.
class QtEditorView : public EditorView {
public:
    explicit QtEditorView(ConversationEditorView* widget) : widget_(widget) {}
    ~QtEditorView() override { delete widget_.data(); }
    void SetPaneMode(int mode) override {
        if (widget_) widget_->SetPaneMode(mode);
    }
    void SetClipboardText(const std::u16string& text) override {
        if (QClipboard* clipboard = QGuiApplication::clipboard())
            clipboard->setText(QString::fromStdU16String(text));
    }
    bool TreeHasFocus() const override { return widget_ && widget_->Tree().hasFocus(); }
    void ShowPanes(CSettingsDlg& host) override {
        if (widget_) widget_->ShowPanes(host);
    }

private:
    QPointer<ConversationEditorView> widget_;
};

// Qt cannot be unloaded and loaded again within a process (its globals outlive its code), but a
// host may unload this library and, with it, the Qt libraries it brought in. Once loaded, Qt
// stays: its widgets library (and so what it needs) is marked never to be unloaded.
void KeepQtLoaded() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&QWidget::staticMetaObject), &info) && info.dli_fname)
        dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
}

}  // namespace

ConversationEditorView::ConversationEditorView(ItemTree& items, QWidget* parent)
    : QSplitter(Qt::Horizontal, parent),
      model_(new ItemTreeModel(items, this)),
      tree_(new ConversationTreeView(*model_, this)),
      side_(new QWidget(this)),
      panes_(new QTabWidget(side_)) {
    setObjectName(
        QString::fromStdU16String(std::u16string(CConversationEditorWnd::kWindowSplitter)));
    panes_->setObjectName(QStringLiteral("LinePanes"));
    panes_->setDocumentMode(true);
    auto* column = new QVBoxLayout(side_);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(panes_, 3);
    setChildrenCollapsible(false);
    setStretchFactor(0, 3);
    setStretchFactor(1, 2);
    setSizes({640, 360});
    KeepSplitterPosition(*this);
}

void ConversationEditorView::ShowPanes(CSettingsDlg& host) {
    new PaneHostWidget(host, *panes_);
    if (auto* comments = dynamic_cast<TextFieldPane*>(host.CommentsPane())) {
        auto* widget = new TextFieldPaneWidget(*comments);
        widget->setObjectName(QStringLiteral("Comments"));
        side_->layout()->addWidget(widget);
        static_cast<QVBoxLayout*>(side_->layout())->setStretchFactor(widget, 1);
    }
}

void ConversationEditorView::SetPaneMode(int mode) {
    side_->setVisible(mode != 0);
}

void InstallQtEditorView() {
    KeepQtLoaded();
    SetEditorViewFactory([](ItemTree& items, TreeEditing& editing,
                            TsWindowHandle parent) -> std::unique_ptr<EditorView> {
        // Widgets need a widget application; a host without one gets no view.
        if (!qobject_cast<QApplication*>(QCoreApplication::instance())) return nullptr;
        auto* frame = static_cast<QWidget*>(parent);
        auto* view = new ConversationEditorView(items, frame);
        view->Tree().SetEditing(&editing);
        if (QLayout* layout = frame->layout()) layout->addWidget(view);
        view->show();
        return std::make_unique<QtEditorView>(view);
    });
}

}  // namespace dlg
