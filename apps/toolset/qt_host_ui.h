#pragma once

#include <QString>
#include <functional>
#include <vector>

#include "ts/hostui.h"
#include "ts/resourcestore.h"

class QWidget;

namespace toolset {

// The framework's user interface in the desktop toolset: message boxes as Qt dialogs, the
// resource picker over the open module, popup menus at the cursor, and log output into the log
// window. Installed while it
// lives.
class QtHostUi : public ts::HostUi {
public:
    using ResourceLister = std::function<std::vector<ts::ResourceInfo>()>;
    using LogWriter = std::function<void(const QString&)>;

    QtHostUi(QWidget* parent, ResourceLister resources, LogWriter log);
    ~QtHostUi() override;
    QtHostUi(const QtHostUi&) = delete;
    QtHostUi& operator=(const QtHostUi&) = delete;

    int MessageBox(std::u16string_view text, std::u16string_view caption,
                   std::uint32_t style) override;
    bool PickResource(std::u16string_view title, std::u16string_view filter,
                      std::u16string& chosen) override;
    void LogOutput(std::u16string_view text) override;
    std::uint32_t PopupMenu(const std::vector<TsPopupMenuItem>& items) override;

private:
    QWidget* parent_;
    ResourceLister resources_;
    LogWriter log_;
    ts::HostUi* previous_;
};

// The resources whose type is among `filter` ("nss", "nss;plo"; empty or "*" for all), as
// "NAME.TYPE", in the order given.
std::vector<std::u16string> ResourcesMatching(const std::vector<ts::ResourceInfo>& resources,
                                              std::u16string_view filter);

}  // namespace toolset
