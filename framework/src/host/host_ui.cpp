// The user-interface functions of the host, routed to whichever user interface the running
// host installed.
#include <atomic>
#include <string>

#include "ts/format.h"
#include "ts/hoststring.h"
#include "ts/hostui.h"
#include "ts/report.h"
#include "ts/text.h"

namespace {

std::atomic<ts::HostUi*>& Installed() {
    static std::atomic<ts::HostUi*> ui{nullptr};
    return ui;
}

std::atomic<bool>& ShowingPopup() {
    static std::atomic<bool> showing{false};
    return showing;
}

// The answers of each button set, in button order.
struct ButtonSet {
    int answers[3];
    int count;
};

ButtonSet ButtonsOf(std::uint32_t style) {
    switch (style & kTsMessageBoxButtons) {
        case MB_OKCANCEL:
            return {{IDOK, IDCANCEL, 0}, 2};
        case MB_YESNOCANCEL:
            return {{IDYES, IDNO, IDCANCEL}, 3};
        case MB_YESNO:
            return {{IDYES, IDNO, 0}, 2};
        default:
            return {{IDOK, 0, 0}, 1};
    }
}

const char* KindOf(std::uint32_t style) {
    switch (style & kTsMessageBoxIcon) {
        case MB_ICONERROR:
            return "Error";
        case MB_ICONWARNING:
            return "Warning";
        case MB_ICONQUESTION:
            return "Question";
        default:
            return "Message";
    }
}

class ConsoleUi : public ts::HostUi {
public:
    explicit ConsoleUi(std::FILE* out) : out_(out) {}
    int MessageBox(std::u16string_view text, std::u16string_view caption,
                   std::uint32_t style) override {
        int answer = ts::DefaultMessageBoxAnswer(style);
        std::string line = std::string(KindOf(style)) + ": ";
        if (!caption.empty()) line += ts::Utf16ToUtf8(caption) + ": ";
        line += ts::Utf16ToUtf8(text);
        if (ButtonsOf(style).count > 1)
            line += answer == IDYES      ? " [Yes]"
                    : answer == IDNO     ? " [No]"
                    : answer == IDCANCEL ? " [Cancel]"
                                         : " [OK]";
        line += '\n';
        std::fputs(line.c_str(), out_);
        std::fflush(out_);
        return answer;
    }

private:
    std::FILE* out_;
};

}  // namespace

int TsMessageBox(std::u16string_view text, std::u16string_view caption, std::uint32_t style) {
    if (ts::HostUi* ui = Installed().load()) return ui->MessageBox(text, caption, style);
    // No one to ask: keep the message in the log so that it isn't lost.
    Report(ReportLevel::User, "hostui", __LINE__, ts::Format(u"%ls: %ls", caption, text));
    return ts::DefaultMessageBoxAnswer(style);
}

HRESULT TsResourceOpenDlg(std::u16string_view title, std::u16string_view filter,
                          char16_t** chosen) {
    if (!chosen) return E_POINTER;
    *chosen = nullptr;
    std::u16string name;
    ts::HostUi* ui = Installed().load();
    if (!ui || !ui->PickResource(title, filter, name) || name.empty()) return S_FALSE;
    *chosen = TsAllocString(name);
    return *chosen ? S_OK : E_OUTOFMEMORY;
}

void TsLogWindowOutput(std::u16string_view text) {
    if (ts::HostUi* ui = Installed().load()) return ui->LogOutput(text);
    Report(ReportLevel::Info, "hostui", __LINE__, text);
}

void TsReplaceError(std::u16string_view resource, const std::vector<ts::ErrorEntry>& errors) {
    if (ts::HostUi* ui = Installed().load()) ui->ReplaceErrors(resource, errors);
}

std::uint32_t TsPopupMenu(const std::vector<TsPopupMenuItem>& items) {
    // One menu at a time: a second would be shown from within the first one's event loop.
    ts::HostUi* ui = Installed().load();
    if (!ui || ShowingPopup().load() || items.empty()) return 0;
    struct Showing {
        Showing() { ShowingPopup() = true; }
        ~Showing() { ShowingPopup() = false; }
    };
    std::uint32_t chosen;
    {
        Showing showing;
        chosen = ui->PopupMenu(items);
    }
    for (const TsPopupMenuItem& item : items)
        if (chosen != 0 && item.id == chosen && !item.name.empty() &&
            (item.state & kTsCommandEnabled))
            return chosen;
    return 0;
}

bool TsIsPopupMenuShowing() {
    return ShowingPopup().load();
}

namespace ts {

void HostUi::LogOutput(std::u16string_view text) {
    Report(ReportLevel::Info, "hostui", __LINE__, text);
}

HostUi* SetHostUi(HostUi* ui) {
    return Installed().exchange(ui);
}

HostUi* CurrentHostUi() {
    return Installed().load();
}

int DefaultMessageBoxAnswer(std::uint32_t style) {
    ButtonSet buttons = ButtonsOf(style);
    int index = 0;
    if ((style & kTsMessageBoxDefault) == MB_DEFBUTTON2) index = 1;
    if ((style & kTsMessageBoxDefault) == MB_DEFBUTTON3) index = 2;
    return index < buttons.count ? buttons.answers[index] : buttons.answers[0];
}

std::unique_ptr<HostUi> MakeConsoleHostUi(std::FILE* out) {
    return std::make_unique<ConsoleUi>(out);
}

}  // namespace ts
