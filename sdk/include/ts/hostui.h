#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ts/api.h"
#include "ts/result.h"
#include "ts/uicommandsource.h"

// Message box styles and answers, with the platform's values.
inline constexpr std::uint32_t MB_OK = 0x0;
inline constexpr std::uint32_t MB_OKCANCEL = 0x1;
inline constexpr std::uint32_t MB_YESNOCANCEL = 0x3;
inline constexpr std::uint32_t MB_YESNO = 0x4;
inline constexpr std::uint32_t MB_ICONERROR = 0x10;
inline constexpr std::uint32_t MB_ICONQUESTION = 0x20;
inline constexpr std::uint32_t MB_ICONWARNING = 0x30;
inline constexpr std::uint32_t MB_ICONINFORMATION = 0x40;
inline constexpr std::uint32_t MB_DEFBUTTON2 = 0x100;
inline constexpr std::uint32_t MB_DEFBUTTON3 = 0x200;

inline constexpr std::uint32_t kTsMessageBoxButtons = 0xF;
inline constexpr std::uint32_t kTsMessageBoxIcon = 0xF0;
inline constexpr std::uint32_t kTsMessageBoxDefault = 0xF00;

inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

// Shows a message to the user and returns the answer (IDOK, IDYES, ...). Goes to the running
// host's user interface; with none installed the message is logged (level USER) and the
// default button is the answer.
TS_API int TsMessageBox(std::u16string_view text, std::u16string_view caption, std::uint32_t style);

// Lets the user choose a resource of the open module: `title` heads the picker, `filter` names
// the resource types offered ("nss", or several separated by ';'; empty for all). S_OK with the
// chosen "NAME.TYPE" newly allocated in `chosen`; S_FALSE when the user cancelled or no host
// user interface can ask (then `chosen` is null).
TS_API HRESULT TsResourceOpenDlg(std::u16string_view title, std::u16string_view filter,
                                 char16_t** chosen);

// A line for the user in the host's log window; without a host user interface it goes to the
// diagnostic log at level INFO.
TS_API void TsLogWindowOutput(std::u16string_view text);

// One entry of a popup menu: a command by its name, from which the host makes the entry's text as
// it does for its menus, its id and its kTsCommand* state; an entry without a name separates.
struct TsPopupMenuItem {
    std::u16string name;
    std::uint32_t id = 0;
    std::uint32_t state = 0;
};

// Shows `items` as a popup menu at the cursor and returns the id of the command the user chose;
// 0 when the user chose nothing, when a popup menu is already showing, or when no host user
// interface can show one. An id that is not an enabled entry of `items` counts as nothing.
TS_API std::uint32_t TsPopupMenu(const std::vector<TsPopupMenuItem>& items);
// Whether a popup menu of TsPopupMenu is showing now.
TS_API bool TsIsPopupMenuShowing();

namespace ts {

// One entry of a resource's error list: the line it concerns (its number in the editor's tree,
// -1 for the resource as a whole) and what is wrong there.
struct ErrorEntry {
    std::int32_t line = -1;
    std::u16string message;

    bool operator==(const ErrorEntry&) const = default;
};

}  // namespace ts

// Replaces the error list the host shows for `resource` ("NAME.TYPE") with `errors`; an empty
// list clears it. Without a host user interface the list is dropped: the editor keeps its own.
TS_API void TsReplaceError(std::u16string_view resource, const std::vector<ts::ErrorEntry>& errors);

namespace ts {

// What a host that can talk to the user provides: a Qt dialog in the desktop app, the terminal
// in the command-line host, a script in tests.
class TS_API HostUi {
public:
    virtual ~HostUi() = default;
    virtual int MessageBox(std::u16string_view text, std::u16string_view caption,
                           std::uint32_t style) = 0;
    // False when the user cancelled; hosts that cannot ask cancel.
    virtual bool PickResource(std::u16string_view /*title*/, std::u16string_view /*filter*/,
                              std::u16string& /*chosen*/) {
        return false;
    }
    virtual void LogOutput(std::u16string_view text);
    // The chosen command's id, 0 for none; hosts without menus choose nothing.
    virtual std::uint32_t PopupMenu(const std::vector<TsPopupMenuItem>& /*items*/) { return 0; }
    virtual void ReplaceErrors(std::u16string_view /*resource*/,
                               const std::vector<ErrorEntry>& /*errors*/) {}
};

// Installs `ui` (not owned; null removes it) and returns the one it replaces.
TS_API HostUi* SetHostUi(HostUi* ui);
TS_API HostUi* CurrentHostUi();

// The answer of the style's default button: the first button unless MB_DEFBUTTON2/3 names
// another one that the style has.
TS_API int DefaultMessageBoxAnswer(std::uint32_t style);

// Writes each message to `out` ("Error: caption: text") and answers with the default button:
// batch work never waits for a person.
TS_API std::unique_ptr<HostUi> MakeConsoleHostUi(std::FILE* out);

}  // namespace ts
