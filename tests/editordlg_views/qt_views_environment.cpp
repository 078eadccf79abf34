// The one widget application of this test program, with the editor's views installed while it
// lives (a second application in one process would crash on exit).
#include "model/editor_view.h"
#include "support/qt_environment.h"
#include "views/conversation_editor_view.h"

[[maybe_unused]] static auto* const gQt =
    ::testing::AddGlobalTestEnvironment(new ts::test::QtEnvironment(
        [] { dlg::InstallQtEditorView(); }, [] { dlg::SetEditorViewFactory({}); }));
