#pragma once

#include <string>
#include <string_view>

// Where editors keep their pane layouts.
namespace ts {

// "DefaultLayouts.xml" in the toolset's application-data folder: the folder named by the
// environment variable TS_APPDATAPATH, or the toolset's data folder when it is unset.
std::u16string DefaultLayoutFilePath();

// The user's layout folder, "<documents>/Halvorn/Mistreach/Toolset/" (with the trailing
// slash), created when missing.
std::u16string UserLayoutFolder();
// "Layouts3.xml" in the user's layout folder.
std::u16string UserLayoutFilePath();

// The profile key of a default layout: "DefaultLayout\" followed by "Dialogs" or "Editors",
// followed by the layout's name.
std::u16string DefaultLayoutProfileKey(bool dialog, std::u16string_view layoutName);

}  // namespace ts
