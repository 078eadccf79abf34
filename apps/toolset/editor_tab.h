#pragma once

#include <QWidget>
#include <memory>
#include <string>
#include <vector>

#include "ts/comptr.h"
#include "ts/editor.h"
#include "ts/markersource.h"
#include "ts/pluginloader.h"
#include "ts/resource.h"
#include "ts/resourcemanager.h"
#include "ts/uicommandsource.h"
#include "ts/uiwindow.h"
#include "ts/undoredo.h"

namespace toolset {

// One open resource: the frame in which a plugin's editor shows its window, and the editor
// object, reached as any host reaches it (class factory, ITsUIWindow, Attach, Load).
class EditorTab : public QWidget {
    Q_OBJECT
public:
    // Opens "NAME.TYPE" in the editor class whose pattern is `editorPattern`. On failure
    // returns null and `error` says why, for the user (empty when the editor already told the
    // host through its "Error" event). `readOnly` opens the editor read-only whatever the
    // resource's state (the module itself cannot be written).
    static std::unique_ptr<EditorTab> Open(ts::PluginLoader& loader, ITsResourceManager& resources,
                                           std::u16string_view editorPattern,
                                           std::u16string_view name, std::u16string_view type,
                                           bool readOnly, std::u16string& error);
    ~EditorTab() override;

    const std::u16string& ResourceName() const { return resourceName_; }
    // The editor's display name, "*" while modified, " [Read Only]" when read-only.
    std::u16string Caption() const;
    bool IsModified() const;
    bool IsEditor(IUnknown* object) const;
    ITsResource* Resource() const { return resource_.Get(); }

    ITsUICommandSource* Commands() const { return commands_.Get(); }
    std::u16string CommandSourceName() const;
    std::vector<std::u16string> CommandBars() const;
    // 0 for an unknown command.
    std::uint32_t CommandState(std::uint32_t id) const;
    HRESULT Execute(std::uint32_t id);
    // The editor's undo stack; null when the editor offers none.
    ITsUndoRedo* UndoRedo() const { return undo_.Get(); }

    // Selects line `line` of the resource (its number in the editor, as error lists give it)
    // through the editor's markers: S_OK; E_INVALIDARG when the editor has no such line;
    // E_NOINTERFACE when it has no markers to go by.
    HRESULT GoToLine(int line);
    // The same for a marker location text ("StartLine=18&Field=11").
    HRESULT GoToLocation(const std::u16string& location);

    // Gives the keyboard to the editor: the first of its widgets that takes focus (the tree).
    void FocusEditor();

    // Saves through the editor (which asks the host to store its content).
    HRESULT Save();
    // Closes the editor's window and lets go of the editor; the tab can then be deleted.
    void CloseEditor();

private:
    EditorTab() = default;

    std::u16string resourceName_;
    CTsComPtr<ITsEditor> editor_;
    CTsComPtr<ITsUIWindow> window_;
    CTsComPtr<ITsUICommandSource> commands_;
    CTsComPtr<ITsUndoRedo> undo_;
    CTsComPtr<ITsMarkerSource> markers_;
    CTsComPtr<ITsResource> resource_;
};

}  // namespace toolset
