#pragma once

#include <cstdint>
#include <functional>

#include "ts/api.h"
#include "ts/unknown.h"

// Saving goes through the host: the editor asks, the host takes the editor's content and stores
// it. The running host installs how; with none installed a save is refused with E_NOTIMPL.
using TsEditorSaver = std::function<HRESULT(IUnknown* editor, std::uint32_t argument)>;

TS_API HRESULT TsSaveEditor(IUnknown* editor, std::uint32_t argument);

namespace ts {
// Returns the saver that was installed before.
TS_API TsEditorSaver SetEditorSaver(TsEditorSaver saver);
}  // namespace ts
