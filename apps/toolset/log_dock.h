#pragma once

#include <QDockWidget>

class QPlainTextEdit;

namespace toolset {

// The log window: every diagnostic report of the process ("LEVEL file:line message") and the
// lines plugins write for the user.
class LogDock : public QDockWidget {
    Q_OBJECT
public:
    explicit LogDock(QWidget* parent = nullptr);
    ~LogDock() override;

    void AppendLine(const QString& line);
    QString Text() const;

private:
    QPlainTextEdit* text_;
    int listener_;
};

}  // namespace toolset
