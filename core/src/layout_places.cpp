#include "core/layout_places.h"

#include <cstdlib>

#include "ts/paths.h"
#include "ts/report.h"
#include "ts/text.h"

namespace ts {

namespace {

std::string WithSlash(std::string folder) {
    if (folder.empty() || folder.back() != '/') folder += '/';
    return folder;
}

}  // namespace

std::u16string DefaultLayoutFilePath() {
    const char* appData = std::getenv("TS_APPDATAPATH");
    std::string folder = appData && *appData ? appData : ToolsetDataFolder();
    return Utf8ToUtf16(WithSlash(folder) + "DefaultLayouts.xml");
}

std::u16string UserLayoutFolder() {
    std::string folder = WithSlash(DocumentsFolder() + "/Halvorn/Mistreach/Toolset");
    if (!EnsureFolder(folder))
        Report(ReportLevel::Warning, "toolsmfcimpls", __LINE__,
               Utf8ToUtf16("Unable to create the layout folder " + folder));
    return Utf8ToUtf16(folder);
}

std::u16string UserLayoutFilePath() {
    return UserLayoutFolder() + u"Layouts3.xml";
}

std::u16string DefaultLayoutProfileKey(bool dialog, std::u16string_view layoutName) {
    std::u16string key = u"DefaultLayout\\";
    key += dialog ? u"Dialogs" : u"Editors";
    key += layoutName;
    return key;
}

}  // namespace ts
