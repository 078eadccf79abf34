#include "ts/editorhost.h"

#include <utility>

namespace {
TsEditorSaver& Saver() {
    static TsEditorSaver saver;
    return saver;
}
}  // namespace

HRESULT TsSaveEditor(IUnknown* editor, std::uint32_t argument) {
    if (!editor) return E_POINTER;
    TsEditorSaver& saver = Saver();
    return saver ? saver(editor, argument) : E_NOTIMPL;
}

namespace ts {
TsEditorSaver SetEditorSaver(TsEditorSaver saver) { return std::exchange(Saver(), std::move(saver)); }
}  // namespace ts
