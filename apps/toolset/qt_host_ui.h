#pragma once

#include <QString>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

#include "ts/hostui.h"
#include "ts/resourcestore.h"

class QWidget;

namespace toolset {

// The framework's user interface in the desktop toolset: message boxes as Qt dialogs, the
// resource picker over the open module, popup menus at the cursor, log output into the log
// window, and the error lists editors publish into the Error List. Installed while it lives.
class QtHostUi : public ts::HostUi {
public:
    using ResourceLister = std::function<std::vector<ts::ResourceInfo>()>;
    using LogWriter = std::function<void(const QString&)>;
    using ErrorSink = std::function<void(std::u16string_view resource,
                                         const std::vector<ts::ErrorEntry>& errors)>;

    QtHostUi(QWidget* parent, ResourceLister resources, LogWriter log, ErrorSink errors = {});
    ~QtHostUi() override;
    QtHostUi(const QtHostUi&) = delete;
    QtHostUi& operator=(const QtHostUi&) = delete;

    int MessageBox(std::u16string_view text, std::u16string_view caption,
                   std::uint32_t style) override;
    bool PickResource(std::u16string_view title, std::u16string_view filter,
                      std::u16string& chosen) override;
    void LogOutput(std::u16string_view text) override;
    std::uint32_t PopupMenu(const std::vector<TsPopupMenuItem>& items) override;
    void ReplaceErrors(std::u16string_view resource,
                       const std::vector<ts::ErrorEntry>& errors) override;

    // Messages go to `out` as the command-line host writes them and are answered with their
    // default button, the picker cancels and popup menus choose nothing: for runs that nobody
    // watches (screenshots). The log window and the error list go on as before.
    void AnswerOnTerminal(std::FILE* out);

private:
    QWidget* parent_;
    ResourceLister resources_;
    LogWriter log_;
    ErrorSink errors_;
    std::unique_ptr<ts::HostUi> terminal_;
    ts::HostUi* previous_;
};

// The resources whose type is among `filter` ("nss", "nss;plo"; empty or "*" for all; a named
// filter such as "PlotFilter" stands for its types), as "NAME.TYPE", in the order given.
std::vector<std::u16string> ResourcesMatching(const std::vector<ts::ResourceInfo>& resources,
                                              std::u16string_view filter);

}  // namespace toolset
