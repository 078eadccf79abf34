#include "model/editor_view.h"

#include <utility>

namespace dlg {

namespace {
EditorViewFactory& Factory() {
    static EditorViewFactory factory;
    return factory;
}
}  // namespace

EditorViewFactory SetEditorViewFactory(EditorViewFactory factory) {
    return std::exchange(Factory(), std::move(factory));
}

std::unique_ptr<EditorView> MakeEditorView(ItemTree& items, TreeEditing& editing,
                                           TsWindowHandle parent) {
    if (!parent || !Factory()) return nullptr;
    return Factory()(items, editing, parent);
}

}  // namespace dlg
