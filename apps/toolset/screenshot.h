#pragma once

#include <QString>

class QWidget;

namespace toolset {

// Lays the window out, lets pending work run, and saves its picture as a PNG (the folder is
// made when missing). False when the file cannot be written.
bool SaveScreenshot(QWidget& window, const QString& path);

}  // namespace toolset
