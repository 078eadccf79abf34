#pragma once

#include <functional>
#include <memory>
#include <string>

#include "ts/comptr.h"
#include "ts/pluginloader.h"
#include "ts/resourcemanager.h"
#include "ts/resourcestore.h"

namespace cli {

// Opens resources in their editors as the desktop toolset opens them (the editor plugin found by
// pattern, its window made without a screen, Attach, Load through the resource manager), so that
// a check passes only what the editors will open.
class EditorCheck {
public:
    EditorCheck() = default;
    EditorCheck(const EditorCheck&) = delete;
    EditorCheck& operator=(const EditorCheck&) = delete;
    ~EditorCheck();

    // Scans the host's plugin folder and serves the store through a resource manager. False, with
    // the reason, when that cannot be done.
    bool Start(std::shared_ptr<ts::ResourceStore> store, std::u16string& error);

    // Whether resources of this type have an editor to open them.
    static bool HasEditor(std::u16string_view type);

    // Opens the resource in a new editor and closes it again; false with the editor's reason
    // when the editor refuses it. `whileOpen` runs once the editor has loaded the resource,
    // before it closes.
    bool Open(std::u16string_view name, std::u16string_view type, std::u16string& problem,
              const std::function<void()>& whileOpen = {});

private:
    ts::PluginLoader loader_;
    CTsComPtr<ITsResourceManager> resources_;
    int listener_ = 0;
    std::u16string lastError_;
};

}  // namespace cli
