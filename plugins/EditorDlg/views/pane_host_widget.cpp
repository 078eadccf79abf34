#include "views/pane_host_widget.h"

#include <QTabWidget>
#include <QVBoxLayout>

#include "model/panes/root_dlg.h"
#include "model/panes/text_dlg.h"
#include "model/panes/text_field_pane.h"
#include "views/root_pane_widget.h"
#include "views/text_field_pane_widget.h"
#include "views/text_pane_widget.h"

namespace dlg {

PaneHostWidget::PaneHostWidget(CSettingsDlg& host, QTabWidget& tabs)
    : QObject(&tabs), host_(host), tabs_(&tabs) {
    host_.SetView(this);
    connect(&tabs, &QTabWidget::currentChanged, this, [this](int position) {
        if (!following_) host_.SelectPosition(position);
    });
    // The strip as the host has it now (the window may have loaded before the view came).
    following_ = true;
    for (std::size_t i = 0; i < host_.Strip().size(); ++i) TabInserted(int(i), host_.Strip()[i]);
    following_ = false;
    if (host_.ShownTab() >= 0) PaneShown(host_.ShownTab(), host_.ShownPane());
}

PaneHostWidget::~PaneHostWidget() {
    host_.SetView(nullptr);
}

QWidget* PaneHostWidget::Page(int tab) {
    if (!pages_[tab]) {
        auto* page = new QWidget;
        page->setObjectName(QString::fromStdU16String(std::u16string(kPaneTabs[tab].text)));
        new QVBoxLayout(page);
        page->layout()->setContentsMargins(0, 0, 0, 0);
        // Tabs whose pane is not there yet show an empty page that takes no input.
        page->setEnabled(false);
        pages_[tab] = page;
    }
    return pages_[tab];
}

void PaneHostWidget::TabInserted(int position, int tab) {
    if (!tabs_) return;
    bool was = following_;
    following_ = true;
    tabs_->insertTab(position, Page(tab),
                     QString::fromStdU16String(std::u16string(kPaneTabs[tab].text)));
    following_ = was;
}

void PaneHostWidget::TabRemoved(int position) {
    if (!tabs_) return;
    bool was = following_;
    following_ = true;
    // The page stays for the next time its tab is offered.
    tabs_->removeTab(position);
    following_ = was;
}

void PaneHostWidget::TabSelected(int position) {
    if (!tabs_) return;
    bool was = following_;
    following_ = true;
    tabs_->setCurrentIndex(position);
    following_ = was;
}

void PaneHostWidget::PaneShown(int tab, LinePane* pane) {
    if (tab < 0 || tab >= kTabCount || !pane || filled_[tab]) return;
    filled_[tab] = true;
    QWidget* page = Page(tab);
    if (auto* text = dynamic_cast<CTextDlg*>(pane))
        page->layout()->addWidget(new TextPaneWidget(*text));
    else if (auto* root = dynamic_cast<CRootDlg*>(pane))
        page->layout()->addWidget(new RootPaneWidget(*root));
    else if (auto* field = dynamic_cast<TextFieldPane*>(pane))
        page->layout()->addWidget(new TextFieldPaneWidget(*field));
    page->setEnabled(true);
}

}  // namespace dlg
