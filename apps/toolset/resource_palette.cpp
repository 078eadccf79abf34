#include "resource_palette.h"

#include <QLineEdit>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <map>

#include "agents/resourceschemas.h"

namespace toolset {

namespace {
constexpr int kNameRole = Qt::UserRole;
constexpr int kTypeRole = Qt::UserRole + 1;

QString GroupCaption(const std::u16string& type) {
    std::u16string_view description = ts::ResourceTypeDescription(type);
    QString text = description.empty() ? QStringLiteral("Other")
                                       : QString::fromStdU16String(std::u16string(description));
    if (!text.isEmpty()) text[0] = text[0].toUpper();
    return QStringLiteral("%1s (%2)").arg(text, QString::fromStdU16String(type));
}
}  // namespace

ResourcePalette::ResourcePalette(QWidget* parent)
    : QDockWidget(tr("Resources"), parent), filter_(new QLineEdit), tree_(new QTreeWidget) {
    setObjectName(QStringLiteral("ResourcePalette"));
    filter_->setPlaceholderText(tr("Filter"));
    filter_->setClearButtonEnabled(true);
    tree_->setHeaderHidden(true);
    tree_->setUniformRowHeights(true);
    auto* body = new QWidget(this);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(filter_);
    layout->addWidget(tree_);
    setWidget(body);
    connect(filter_, &QLineEdit::textChanged, this, [this] { Fill(); });
    connect(tree_, &QTreeWidget::itemActivated, this,
            [this](QTreeWidgetItem* item) { Activate(item); });
}

void ResourcePalette::SetResources(std::vector<ts::ResourceInfo> resources) {
    resources_ = std::move(resources);
    Fill();
}

void ResourcePalette::SetFilter(const QString& text) {
    filter_->setText(text);
}

void ResourcePalette::Fill() {
    tree_->clear();
    QString filter = filter_->text().trimmed();
    std::map<std::u16string, QTreeWidgetItem*> groups;
    for (const auto& info : resources_) {
        QString name = QString::fromStdU16String(info.name + u"." + info.type);
        if (!filter.isEmpty() && !name.contains(filter, Qt::CaseInsensitive)) continue;
        QTreeWidgetItem*& group = groups[info.type];
        if (!group) {
            group = new QTreeWidgetItem(tree_, {GroupCaption(info.type)});
            group->setFlags(Qt::ItemIsEnabled);
            group->setExpanded(true);
        }
        auto* item = new QTreeWidgetItem(group, {name});
        item->setData(0, kNameRole, QString::fromStdU16String(info.name));
        item->setData(0, kTypeRole, QString::fromStdU16String(info.type));
        if (!info.checkedOutBy.empty())
            item->setToolTip(
                0, tr("Checked out by %1").arg(QString::fromStdU16String(info.checkedOutBy)));
    }
    tree_->sortItems(0, Qt::AscendingOrder);
}

QStringList ResourcePalette::VisibleResources() const {
    QStringList names;
    for (int g = 0; g < tree_->topLevelItemCount(); ++g)
        for (int i = 0; i < tree_->topLevelItem(g)->childCount(); ++i)
            names << tree_->topLevelItem(g)->child(i)->text(0);
    return names;
}

void ResourcePalette::Activate(QTreeWidgetItem* item) {
    QString name = item->data(0, kNameRole).toString();
    if (!name.isEmpty()) emit openRequested(name, item->data(0, kTypeRole).toString());
}

}  // namespace toolset
