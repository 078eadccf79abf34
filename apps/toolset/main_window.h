#pragma once

#include <QMainWindow>
#include <memory>
#include <string>
#include <vector>

#include "ts/comptr.h"
#include "ts/hostui.h"
#include "ts/pluginloader.h"
#include "ts/resourcemanager.h"
#include "ts/resourcestore.h"

class QTabWidget;
class QTimer;

namespace toolset {

class CommandMenus;
class EditorTab;
class ErrorListDock;
class SearchResultsDock;
class LogDock;
class ResourcePalette;
class UndoHistoryDock;

// The toolset's main window: the resource palette, the editors in tabs, the log window, the
// error list and the undo history as docks, the File and Edit menus of the host, and the active
// editor's own menus and command bars. It is also the host the plugins talk to: it loads them,
// offers the module's resource manager ("ResMan"), stores what an editor saves, and shows the
// errors they send.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    // `keepLayout`: restore the window's geometry and docks from the user's settings, and save
    // them when it closes (off for screenshots and tests, which want a known layout).
    explicit MainWindow(bool keepLayout = true, QWidget* parent = nullptr);
    ~MainWindow() override;

    // Opens a module file, closing the one that was open; false after telling the user why.
    bool OpenModule(const QString& path);
    // Opens "NAME.TYPE" of the module in its editor (or shows its tab when it is open already);
    // false after telling the user why.
    bool OpenResource(const QString& name, const QString& type);
    bool OpenResource(const QString& fileName);
    // The open module's resources, by type and name.
    std::vector<ts::ResourceInfo> ListResources() const;
    // The module's first conversation by name; empty when it has none.
    QString FirstConversation() const;
    bool SaveCurrent();
    void CloseCurrent();
    // Runs a command of the active editor by name; false when there is none or it is disabled.
    bool RunCommand(const QString& name);

    // An editor's error list for `resource`, shown in the Error List (the host user interface
    // hands it on).
    void ReplaceErrors(std::u16string_view resource, const std::vector<ts::ErrorEntry>& errors);
    // Opens "NAME.TYPE" (or shows its tab) and selects its line `line` (-1: the resource as a
    // whole, nothing to select); false after telling the user why when the resource cannot be
    // opened or has no such line.
    bool ShowLine(const QString& resource, int line);
    // Opens `resource` (or shows its tab) and has its editor go to a marker location.
    bool ShowPlace(const QString& resource, const QString& location);

    EditorTab* ActiveEditor() const;
    int EditorCount() const;
    ResourcePalette& Palette() const { return *palette_; }
    LogDock& Log() const { return *log_; }
    ErrorListDock& Errors() const { return *errors_; }
    SearchResultsDock& SearchResults() const { return *search_; }
    UndoHistoryDock& History() const { return *history_; }
    CommandMenus& Commands() const { return *commands_; }
    QAction* UndoAction() const { return undo_; }
    QAction* RedoAction() const { return redo_; }
    const QString& ModulePath() const { return modulePath_; }

    // Undoes (`steps` < 0) or redoes (> 0) that many commands of the active editor, then
    // refreshes; a command that fails is reported in the log window. False when not every step
    // ran.
    bool MoveInHistory(int steps);

    // Refreshes the title ("orla_welcome.dlg* - Mistreach Toolset"), tab captions, command
    // states, Undo and Redo and the undo history after anything that may have changed them.
    void RefreshState();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void BuildMenus();
    void ChooseModule();
    void CloseModule();
    void CloseTab(int index);
    void ActiveTabChanged();
    HRESULT SaveEditor(IUnknown* editor);
    QString SettingsPath() const;

    bool keepLayout_;
    ts::PluginLoader loader_;  // first in, last out: every editor is gone before it unloads
    std::shared_ptr<ts::ResourceStore> store_;
    CTsComPtr<ITsResourceManager> resources_;
    QString modulePath_;
    QTabWidget* tabs_;
    ResourcePalette* palette_;
    LogDock* log_;
    ErrorListDock* errors_;
    SearchResultsDock* search_;
    UndoHistoryDock* history_;
    CommandMenus* commands_;
    QAction* save_ = nullptr;
    QAction* close_ = nullptr;
    QAction* undo_ = nullptr;
    QAction* redo_ = nullptr;
    QTimer* stateTimer_;
    int hostEvents_ = 0;
};

}  // namespace toolset
