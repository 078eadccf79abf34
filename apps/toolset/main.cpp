// The desktop toolset: the main window over a module, with the editors the plugins offer.
#include <QApplication>
#include <cstdio>

#include "log_dock.h"
#include "main_window.h"
#include "qt_host_ui.h"
#include "screenshot.h"
#include "toolset_options.h"

int main(int argc, char** argv) {
    toolset::ToolsetOptions options;
    std::string error;
    if (!toolset::ParseToolsetOptions(argc, argv, options, error)) {
        std::fprintf(stderr, "toolset: %s\n%s", error.c_str(), toolset::kToolsetUsage);
        return 2;
    }
    if (options.help) {
        std::fputs(toolset::kToolsetUsage, stdout);
        return 0;
    }

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Mistreach Toolset"));
    QApplication::setOrganizationName(QStringLiteral("Halvorn"));
    bool shot = !options.screenshot.empty();
    toolset::MainWindow window(!shot);
    toolset::QtHostUi ui(
        &window, [&window] { return window.ListResources(); },
        [&window](const QString& line) { window.Log().AppendLine(line); },
        [&window](std::u16string_view resource, const std::vector<ts::ErrorEntry>& errors) {
            window.ReplaceErrors(resource, errors);
        });
    // A screenshot run has nobody to answer a message: messages go to the terminal instead,
    // while the error list still fills, since it is part of the picture.
    if (shot) ui.AnswerOnTerminal(stderr);
    window.show();

    bool opened = true;
    if (!options.module.empty()) {
        opened = window.OpenModule(QString::fromLocal8Bit(options.module));
        QString resource = QString::fromLocal8Bit(options.open);
        if (opened && resource.isEmpty()) resource = window.FirstConversation();
        if (opened && !resource.isEmpty()) opened = window.OpenResource(resource);
        if (opened && options.expandAll) window.RunCommand(QStringLiteral("Edit.ExpandAll"));
    }
    if (shot) {
        bool saved = toolset::SaveScreenshot(window, QString::fromLocal8Bit(options.screenshot));
        if (!saved) {
            std::fprintf(stderr, "toolset: cannot write %s\n", options.screenshot.c_str());
            return 1;
        }
        return opened ? 0 : 1;
    }
    return QApplication::exec();
}
