#include "main_window.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenuBar>
#include <QSettings>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTimer>
#include <optional>

#include "command_menus.h"
#include "editor_tab.h"
#include "error_list_dock.h"
#include "log_dock.h"
#include "qt_text.h"
#include "resource_palette.h"
#include "search_results_dock.h"
#include "ts/editorhost.h"
#include "ts/environment.h"
#include "ts/events.h"
#include "ts/format.h"
#include "ts/hostcomponents.h"
#include "ts/hoststring.h"
#include "ts/hostui.h"
#include "undo_history.h"
#include "undo_history_dock.h"

namespace toolset {

namespace {

constexpr char16_t kTitle[] = u"Mistreach Toolset";

void Tell(std::u16string_view message, std::uint32_t icon = MB_ICONERROR) {
    TsMessageBox(message, kTitle, MB_OK | icon);
}

// The editor class that edits a resource type, by its name pattern; empty when none does.
std::u16string_view EditorPatternFor(std::u16string_view type) {
    if (QString::compare(ToQt(type), QStringLiteral("dlg"), Qt::CaseInsensitive) == 0)
        return u"ConversationEditor";
    return {};
}

}  // namespace

MainWindow::MainWindow(bool keepLayout, QWidget* parent)
    : QMainWindow(parent),
      keepLayout_(keepLayout),
      tabs_(new QTabWidget(this)),
      palette_(new ResourcePalette(this)),
      log_(new LogDock(this)),
      errors_(new ErrorListDock(this)),
      search_(new SearchResultsDock(this)),
      history_(new UndoHistoryDock(this)),
      commands_(new CommandMenus(*this, [this] { return ActiveEditor(); })),
      stateTimer_(new QTimer(this)) {
    setObjectName(QStringLiteral("MainWindow"));
    setWindowTitle(ToQt(kTitle));
    tabs_->setObjectName(QStringLiteral("Editors"));
    tabs_->setDocumentMode(true);
    tabs_->setTabsClosable(true);
    tabs_->setMovable(true);
    setCentralWidget(tabs_);
    addDockWidget(Qt::LeftDockWidgetArea, palette_);
    addDockWidget(Qt::BottomDockWidgetArea, log_);
    addDockWidget(Qt::BottomDockWidgetArea, errors_);
    addDockWidget(Qt::BottomDockWidgetArea, history_);
    addDockWidget(Qt::BottomDockWidgetArea, search_);
    tabifyDockWidget(log_, errors_);
    tabifyDockWidget(errors_, history_);
    tabifyDockWidget(history_, search_);
    log_->raise();
    BuildMenus();

    connect(tabs_, &QTabWidget::tabCloseRequested, this, &MainWindow::CloseTab);
    connect(tabs_, &QTabWidget::currentChanged, this, &MainWindow::ActiveTabChanged);
    connect(palette_, &ResourcePalette::openRequested, this,
            [this](const QString& name, const QString& type) { OpenResource(name, type); });
    connect(commands_, &CommandMenus::commandRun, this, &MainWindow::RefreshState);
    connect(history_, &UndoHistoryDock::stepsRequested, this, &MainWindow::MoveInHistory);
    connect(errors_, &ErrorListDock::lineRequested, this, &MainWindow::ShowLine);
    connect(search_, &SearchResultsDock::placeRequested, this, &MainWindow::ShowPlace);

    loader_.Scan(ts::DefaultPluginFolder());
    ts::SetEditorSaver([this](IUnknown* editor, std::uint32_t) { return SaveEditor(editor); });
    hostEvents_ = ts::AddHostEventListener([](const ts::HostEvent& event) {
        // An editor that cannot show its resource says why; the user hears it at once.
        if (event.event == ts::events::Error()) Tell(event.text);
    });

    // Command states follow the editor's selection, which changes without telling the host:
    // they are asked again while the user works, as a frame does when it is idle.
    stateTimer_->setInterval(250);
    connect(stateTimer_, &QTimer::timeout, this, &MainWindow::RefreshState);
    stateTimer_->start();

    resize(1280, 800);
    if (keepLayout_) {
        QSettings settings(SettingsPath(), QSettings::IniFormat);
        restoreGeometry(settings.value(QStringLiteral("MainWindow/Geometry")).toByteArray());
        restoreState(settings.value(QStringLiteral("MainWindow/State")).toByteArray());
    }
    RefreshState();
}

MainWindow::~MainWindow() {
    stateTimer_->stop();
    ts::RemoveHostEventListener(hostEvents_);
    // Editors go before the module and the plugins they came from.
    CloseModule();
    ts::SetEditorSaver({});
}

void MainWindow::BuildMenus() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    QAction* open = file->addAction(tr("&Open Module..."), this, &MainWindow::ChooseModule);
    open->setShortcut(QKeySequence::Open);
    save_ = file->addAction(tr("&Save"), this, &MainWindow::SaveCurrent);
    save_->setShortcut(QKeySequence::Save);
    close_ = file->addAction(tr("&Close"), this, &MainWindow::CloseCurrent);
    close_->setShortcut(QKeySequence::Close);
    file->addSeparator();
    QAction* quit = file->addAction(tr("E&xit"), this, &QWidget::close);
    quit->setShortcut(QKeySequence::Quit);

    // Undo and redo run the active editor's undo stack; RefreshState names the command each
    // would run and enables them.
    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    undo_ = edit->addAction(tr("&Undo"), this, [this] { MoveInHistory(-1); });
    undo_->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Z));
    undo_->setEnabled(false);
    redo_ = edit->addAction(tr("&Redo"), this, [this] { MoveInHistory(1); });
    redo_->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    redo_->setEnabled(false);

    QMenu* view = menuBar()->addMenu(tr("&View"));
    view->addAction(palette_->toggleViewAction());
    view->addAction(log_->toggleViewAction());
    view->addAction(errors_->toggleViewAction());
    view->addAction(history_->toggleViewAction());

    commands_->AddHostMenu(edit);
    commands_->AddHostMenu(view);
}

QString MainWindow::SettingsPath() const {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Halvorn/Mistreach/Toolset/Toolset.ini");
}

std::vector<ts::ResourceInfo> MainWindow::ListResources() const {
    std::vector<ts::ResourceInfo> list;
    if (resources_) resources_->ListResources(u"", &list);
    return list;
}

bool MainWindow::OpenModule(const QString& path) {
    CloseModule();
    ts::StoreResult result;
    std::string file = QFile::encodeName(path).toStdString();
    std::shared_ptr<ts::ResourceStore> store = ts::OpenSqliteStore(file, {}, &result);
    if (!store && result.status == ts::StoreStatus::Failed)
        store = ts::OpenSqliteStore(file, {.readOnly = true}, &result);
    if (!store) {
        Tell(result.message);
        return false;
    }
    if (FAILED(TsCreateResourceManager(store, ts::CurrentUserName(), resources_.Put()))) {
        Tell(ts::Format(u"The module %ls cannot be opened.", path.toStdU16String()));
        return false;
    }
    store_ = std::move(store);
    TsRegisterHostComponent(kTsResourceManagerName, resources_.Get());
    modulePath_ = path;
    palette_->SetResources(ListResources());
    log_->AppendLine(tr("Opened module %1").arg(QDir::toNativeSeparators(path)));
    RefreshState();
    return true;
}

void MainWindow::CloseModule() {
    while (tabs_->count() > 0) {
        auto* tab = static_cast<EditorTab*>(tabs_->widget(0));
        tabs_->removeTab(0);
        delete tab;
    }
    commands_->Show(nullptr);
    errors_->Clear();
    if (resources_) TsRegisterHostComponent(kTsResourceManagerName, nullptr);
    resources_.Reset();
    store_.reset();
    modulePath_.clear();
    palette_->SetResources({});
}

void MainWindow::ChooseModule() {
    QString path =
        QFileDialog::getOpenFileName(this, tr("Open Module"), QFileInfo(modulePath_).path(),
                                     tr("Modules (*.tsmod);;All files (*)"));
    if (!path.isEmpty()) OpenModule(path);
}

bool MainWindow::OpenResource(const QString& fileName) {
    int dot = fileName.lastIndexOf(QLatin1Char('.'));
    if (dot <= 0) {
        Tell(ts::Format(u"\"%ls\" is not a resource name (NAME.TYPE).", fileName.toStdU16String()));
        return false;
    }
    return OpenResource(fileName.left(dot), fileName.mid(dot + 1));
}

bool MainWindow::OpenResource(const QString& name, const QString& type) {
    if (!resources_) {
        Tell(u"Open a module first.", MB_ICONINFORMATION);
        return false;
    }
    QString fileName = name + QLatin1Char('.') + type;
    for (int i = 0; i < tabs_->count(); ++i) {
        if (ToQt(static_cast<EditorTab*>(tabs_->widget(i))->ResourceName())
                .compare(fileName, Qt::CaseInsensitive) == 0) {
            tabs_->setCurrentIndex(i);
            return true;
        }
    }
    std::u16string_view pattern = EditorPatternFor(type.toStdU16String());
    if (pattern.empty()) {
        Tell(
            ts::Format(u"There is no editor for resources of type \"%ls\".", type.toStdU16String()),
            MB_ICONINFORMATION);
        return false;
    }
    std::u16string error;
    std::unique_ptr<EditorTab> tab =
        EditorTab::Open(loader_, *resources_, pattern, name.toStdU16String(), type.toStdU16String(),
                        store_ && store_->ReadOnly(), error);
    if (!tab) {
        if (!error.empty()) Tell(error);
        return false;
    }
    QString caption = ToQt(tab->Caption());
    int index = tabs_->addTab(tab.release(), caption);
    tabs_->setCurrentIndex(index);
    log_->AppendLine(tr("Opened %1").arg(fileName));
    ActiveTabChanged();
    return true;
}

QString MainWindow::FirstConversation() const {
    std::vector<ts::ResourceInfo> conversations;
    if (resources_) resources_->ListResources(u"dlg", &conversations);
    return conversations.empty()
               ? QString()
               : ToQt(conversations.front().name + u"." + conversations.front().type);
}

EditorTab* MainWindow::ActiveEditor() const {
    return static_cast<EditorTab*>(tabs_->currentWidget());
}

int MainWindow::EditorCount() const {
    return tabs_->count();
}

bool MainWindow::SaveCurrent() {
    EditorTab* tab = ActiveEditor();
    if (!tab) return false;
    HRESULT saved = tab->Save();
    RefreshState();
    if (saved == S_OK) {
        log_->AppendLine(tr("Saved %1").arg(ToQt(tab->ResourceName())));
        palette_->SetResources(ListResources());
    }
    return saved == S_OK;
}

HRESULT MainWindow::SaveEditor(IUnknown* editor) {
    for (int i = 0; i < tabs_->count(); ++i) {
        auto* tab = static_cast<EditorTab*>(tabs_->widget(i));
        if (!tab->IsEditor(editor)) continue;
        CTsComPtr<ITsEditor> content;
        if (FAILED(editor->QueryInterface(ITsEditor::kIID, content.PutVoid())))
            return E_NOINTERFACE;
        HRESULT r = content->GetContent(tab->Resource());
        if (SUCCEEDED(r)) r = resources_->SaveResource(tab->Resource());
        if (FAILED(r)) {
            CTsHostString why;
            resources_->GetLastErrorText(why.Put());
            Tell(ts::Format(u"%ls was not saved: %ls", tab->ResourceName(),
                            why.View().empty()
                                ? std::u16string_view(u"the editor could not write it")
                                : why.View()));
        }
        return r;
    }
    return E_INVALIDARG;
}

void MainWindow::CloseTab(int index) {
    auto* tab = static_cast<EditorTab*>(tabs_->widget(index));
    if (!tab) return;
    if (tab->IsModified()) {
        int answer = TsMessageBox(ts::Format(u"Save the changes to %ls?", tab->ResourceName()),
                                  kTitle, MB_YESNOCANCEL | MB_ICONQUESTION);
        if (answer == IDCANCEL) return;
        if (answer == IDYES && tab->Save() != S_OK) return;
    }
    tabs_->removeTab(index);
    // The list holds the faults of open resources only; the editor clears its own as it closes,
    // and the host makes sure.
    std::u16string closed = tab->ResourceName();
    delete tab;
    errors_->Replace(closed, {});
    ActiveTabChanged();
}

void MainWindow::CloseCurrent() {
    if (tabs_->currentIndex() >= 0) CloseTab(tabs_->currentIndex());
}

bool MainWindow::RunCommand(const QString& name) {
    EditorTab* tab = ActiveEditor();
    std::uint32_t id = commands_->CommandId(name.toStdU16String());
    bool ran = tab && id != kTsNoCommandId && tab->Execute(id) == S_OK;
    RefreshState();
    return ran;
}

void MainWindow::ReplaceErrors(std::u16string_view resource,
                               const std::vector<ts::ErrorEntry>& errors) {
    errors_->Replace(resource, errors);
}

bool MainWindow::ShowLine(const QString& resource, int line) {
    if (!OpenResource(resource)) return false;
    EditorTab* tab = ActiveEditor();
    if (line >= 0) {
        HRESULT r = tab->GoToLine(line);
        if (r == E_INVALIDARG) {
            Tell(ts::Format(u"%ls has no line %d.", tab->ResourceName(), line), MB_ICONINFORMATION);
            return false;
        }
        if (FAILED(r)) {
            Tell(ts::Format(u"The editor of %ls cannot go to a line.", tab->ResourceName()),
                 MB_ICONINFORMATION);
            return false;
        }
    }
    // The user goes on in the editor, from the line; its command states follow the selection.
    tab->FocusEditor();
    RefreshState();
    return true;
}

bool MainWindow::ShowPlace(const QString& resource, const QString& location) {
    if (!OpenResource(resource)) return false;
    EditorTab* tab = ActiveEditor();
    if (FAILED(tab->GoToLocation(location.toStdU16String()))) {
        Tell(ts::Format(u"%ls has changed since the search: run it again.", tab->ResourceName()),
             MB_ICONINFORMATION);
        return false;
    }
    tab->FocusEditor();
    RefreshState();
    return true;
}

bool MainWindow::MoveInHistory(int steps) {
    EditorTab* tab = ActiveEditor();
    if (!tab || !tab->UndoRedo() || steps == 0) return false;
    UndoWalk walk = WalkUndoHistory(*tab->UndoRedo(), steps);
    RefreshState();
    if (std::u16string failure = UndoFailureMessage(tab->ResourceName(), steps < 0, walk);
        !failure.empty()) {
        log_->AppendLine(ToQt(failure));
        log_->show();
        log_->raise();
    }
    return walk.result == S_OK;
}

void MainWindow::ActiveTabChanged() {
    commands_->Show(ActiveEditor());
    RefreshState();
}

void MainWindow::RefreshState() {
    for (int i = 0; i < tabs_->count(); ++i)
        tabs_->setTabText(i, ToQt(static_cast<EditorTab*>(tabs_->widget(i))->Caption()));
    EditorTab* tab = ActiveEditor();
    QString title = ToQt(kTitle);
    if (tab)
        title = ToQt(tab->Caption()) + QStringLiteral(" - ") + title;
    else if (!modulePath_.isEmpty())
        title = QFileInfo(modulePath_).fileName() + QStringLiteral(" - ") + title;
    setWindowTitle(title);
    save_->setEnabled(tab != nullptr);
    close_->setEnabled(tab != nullptr);
    commands_->RefreshStates();

    std::optional<UndoHistory> history;
    if (UndoHistory read; tab && tab->UndoRedo() && ReadUndoHistory(*tab->UndoRedo(), read))
        history = std::move(read);
    // Each names the command it would run.
    const std::u16string* nextUndo =
        history && !history->done.empty() ? &history->done.back() : nullptr;
    const std::u16string* nextRedo =
        history && !history->redoable.empty() ? &history->redoable.front() : nullptr;
    undo_->setText(ToQt(UndoMenuText(tr("&Undo").toStdU16String(), nextUndo ? *nextUndo : u"")));
    undo_->setEnabled(nextUndo != nullptr);
    redo_->setText(ToQt(UndoMenuText(tr("&Redo").toStdU16String(), nextRedo ? *nextRedo : u"")));
    redo_->setEnabled(nextRedo != nullptr);
    history_->Show(history);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    for (int i = tabs_->count(); i-- > 0;) {
        int before = tabs_->count();
        CloseTab(i);
        if (tabs_->count() == before) {  // the user kept it open
            event->ignore();
            return;
        }
    }
    if (keepLayout_) {
        QSettings settings(SettingsPath(), QSettings::IniFormat);
        settings.setValue(QStringLiteral("MainWindow/Geometry"), saveGeometry());
        settings.setValue(QStringLiteral("MainWindow/State"), saveState());
    }
    event->accept();
}

}  // namespace toolset
