#include "command_menus.h"

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include "command_text.h"
#include "editor_tab.h"
#include "qt_text.h"
#include "ts/configuration.h"

namespace toolset {

namespace {
QString Plain(QString caption) {
    return caption.remove(QLatin1Char('&'));
}
}  // namespace

CommandMenus::CommandMenus(QMainWindow& window, ActiveEditor active)
    : QObject(&window), window_(window), active_(std::move(active)) {}

void CommandMenus::AddHostMenu(QMenu* menu) {
    hostMenus_.push_back(menu);
    connect(menu, &QMenu::aboutToShow, this, &CommandMenus::RefreshStates);
}

void CommandMenus::Clear() {
    for (QAction* action : added_) delete action;
    for (QMenu* menu : menus_) delete menu;
    for (auto& [name, bar] : bars_) {
        bar->clear();
        bar->hide();
    }
    added_.clear();
    menus_.clear();
    byId_.clear();
    idByName_.clear();
    source_.clear();
}

QAction* CommandMenus::MakeAction(const TsCommandItem& item, QObject* parent) {
    auto* action = new QAction(ToQt(CommandText(item.name)), parent);
    action->setToolTip(ToQt(item.name));
    action->setEnabled(false);
    std::uint32_t id = item.id;
    if (id == kTsNoCommandId) return action;  // known by name only: nothing to run
    byId_[id].push_back(action);
    connect(action, &QAction::triggered, this, [this, id] {
        if (EditorTab* tab = active_()) tab->Execute(id);
        RefreshStates();
        emit commandRun(id);
    });
    return action;
}

void CommandMenus::AddItems(QMenu* menu, const std::vector<TsCommandItem>& items) {
    for (const auto& item : items) {
        if (item.IsSeparator()) {
            menu->addSeparator();
        } else if (item.isSubmenu) {
            QMenu* sub = menu->addMenu(ToQt(item.name));
            AddItems(sub, item.children);
        } else {
            menu->addAction(MakeAction(item, menu));
        }
    }
}

void CommandMenus::Show(EditorTab* tab) {
    std::u16string source = tab ? tab->CommandSourceName() : std::u16string();
    if (source == source_ && !source.empty()) return RefreshStates();
    Clear();
    if (!tab || !tab->Commands()) return;
    source_ = source;

    std::vector<TsCommandItem> commands, menus;
    tab->Commands()->GetCommands(&commands);
    tab->Commands()->GetMenus(&menus);
    for (const auto& c : commands) idByName_[ToQt(c.name).toLower()] = c.id;

    for (const auto& top : menus) {
        if (!top.isSubmenu) continue;
        QMenu* host = nullptr;
        for (QMenu* m : hostMenus_)
            if (Plain(m->title()).compare(ToQt(top.name), Qt::CaseInsensitive) == 0) host = m;
        if (host) {
            // The editor's entries follow the host's own after a separator; a scratch menu
            // collects them so that they can be moved over and removed again as a group.
            QMenu scratch;
            AddItems(&scratch, top.children);
            added_.push_back(host->addSeparator());
            for (QAction* action : scratch.actions()) {
                scratch.removeAction(action);
                host->addAction(action);
                if (QMenu* sub = action->menu()) {
                    // A submenu owns its entry in the menu; it goes when the submenu does.
                    sub->setParent(host, sub->windowFlags());
                    menus_.push_back(sub);
                } else {
                    action->setParent(host);
                    added_.push_back(action);
                }
            }
        } else {
            auto* menu = new QMenu(ToQt(top.name), window_.menuBar());
            AddItems(menu, top.children);
            window_.menuBar()->addMenu(menu);
            connect(menu, &QMenu::aboutToShow, this, &CommandMenus::RefreshStates);
            menus_.push_back(menu);
        }
    }

    for (const auto& barName : tab->CommandBars()) {
        QString name = ToQt(barName);
        QToolBar*& bar = bars_[name];
        if (!bar) {
            bar = window_.addToolBar(name);
            bar->setObjectName(name);
        }
        bar->show();
        const auto* entries = ts::ToolsetConfiguration().Menus(barName + u"Bar");
        if (!entries) continue;
        for (const auto& entry : *entries) {
            if (entry.kind == ts::MenuEntry::Kind::Separator) {
                bar->addSeparator();
            } else if (entry.kind == ts::MenuEntry::Kind::Command) {
                TsCommandItem item{entry.text, CommandId(entry.text), false, {}};
                bar->addAction(MakeAction(item, bar));
            }
        }
    }
    RefreshStates();
}

void CommandMenus::RefreshStates() {
    EditorTab* tab = active_();
    for (auto& [id, actions] : byId_) {
        std::uint32_t state = tab ? tab->CommandState(id) : 0;
        for (QAction* action : actions) {
            action->setEnabled(state & kTsCommandEnabled);
            // A command that has once been checked is a toggle from then on.
            if (state & kTsCommandChecked) action->setCheckable(true);
            action->setChecked(state & kTsCommandChecked);
        }
    }
}

std::uint32_t CommandMenus::CommandId(std::u16string_view name) const {
    auto it = idByName_.find(ToQt(name).toLower());
    return it == idByName_.end() ? kTsNoCommandId : it->second;
}

QAction* CommandMenus::Action(std::u16string_view name) const {
    auto it = byId_.find(CommandId(name));
    return it == byId_.end() || it->second.empty() ? nullptr : it->second.front();
}

QToolBar* CommandMenus::ToolBar(const QString& name) const {
    auto it = bars_.find(name);
    return it == bars_.end() ? nullptr : it->second;
}

}  // namespace toolset
