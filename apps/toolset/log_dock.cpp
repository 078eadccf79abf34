#include "log_dock.h"

#include <QPlainTextEdit>
#include <QPointer>

#include "ts/report.h"

namespace toolset {

LogDock::LogDock(QWidget* parent)
    : QDockWidget(tr("Log"), parent), text_(new QPlainTextEdit(this)) {
    setObjectName(QStringLiteral("LogDock"));
    text_->setReadOnly(true);
    text_->setMaximumBlockCount(5000);
    text_->setLineWrapMode(QPlainTextEdit::NoWrap);
    setWidget(text_);
    listener_ = ts::AddReportListener([this](const ts::ReportEntry& entry) {
        AppendLine(QStringLiteral("%1 %2:%3 %4")
                       .arg(QString::fromLatin1(ReportLevelName(entry.level)),
                            QString::fromStdString(entry.sourceFile), QString::number(entry.line),
                            QString::fromStdU16String(entry.message)));
    });
}

LogDock::~LogDock() {
    ts::RemoveReportListener(listener_);
}

void LogDock::AppendLine(const QString& line) {
    text_->appendPlainText(line);
}

QString LogDock::Text() const {
    return text_->toPlainText();
}

}  // namespace toolset
