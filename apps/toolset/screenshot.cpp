#include "screenshot.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QPixmap>
#include <QWidget>

namespace toolset {

bool SaveScreenshot(QWidget& window, const QString& path) {
    // Layouts and delayed item layouts run from the event loop.
    for (int i = 0; i < 3; ++i) QApplication::processEvents();
    QDir().mkpath(QFileInfo(path).absolutePath());
    return window.grab().save(path, "PNG");
}

}  // namespace toolset
