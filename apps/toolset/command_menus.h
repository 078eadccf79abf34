#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "ts/uicommandsource.h"

class QAction;
class QMainWindow;
class QMenu;
class QToolBar;

namespace toolset {

class EditorTab;

// The active editor's commands on screen: its menus (a top-level popup whose caption names a
// host menu joins that menu after a separator, any other becomes a menu of its own) and its
// command bars, whose buttons are the commands of the configuration's menu section named after
// the bar with "Bar" appended. A chosen command goes back to the editor by id; states are asked
// of the editor whenever they may have changed.
class CommandMenus : public QObject {
    Q_OBJECT
public:
    using ActiveEditor = std::function<EditorTab*()>;

    CommandMenus(QMainWindow& window, ActiveEditor active);

    void AddHostMenu(QMenu* menu);
    // Shows the commands of `tab` (none for null), rebuilding only when its command source
    // differs from the one shown.
    void Show(EditorTab* tab);
    void RefreshStates();

    // The action of a command by name (ASCII case ignored), or null.
    QAction* Action(std::u16string_view name) const;
    std::uint32_t CommandId(std::u16string_view name) const;
    QToolBar* ToolBar(const QString& name) const;

signals:
    void commandRun(std::uint32_t id);

private:
    void Clear();
    void AddItems(QMenu* menu, const std::vector<TsCommandItem>& items);
    QAction* MakeAction(const TsCommandItem& item, QObject* parent);

    QMainWindow& window_;
    ActiveEditor active_;
    std::vector<QMenu*> hostMenus_;
    std::u16string source_;
    std::vector<QAction*> added_;  // entries put into host menus (and top-level menus)
    std::vector<QMenu*> menus_;    // the editor's own menus
    std::map<QString, QToolBar*> bars_;
    std::map<std::uint32_t, std::vector<QAction*>> byId_;
    std::map<QString, std::uint32_t> idByName_;  // lower-case name
};

}  // namespace toolset
