#pragma once

#include <QObject>

class QSplitter;

namespace dlg {

// Keeps a splitter where the user last left one of its name: the position is put back when the
// splitter is first shown, and remembered (EditorLayout) whenever the user moves it.
void KeepSplitterPosition(QSplitter& splitter);

}  // namespace dlg
