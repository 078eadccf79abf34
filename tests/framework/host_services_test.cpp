// The host's user-interface functions, telemetry and event sinks, as plugins reach them.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <utility>

#include "support/report_capture.h"
#include "support/scripted_ui.h"
#include "ts/comobject.h"
#include "ts/environment.h"
#include "ts/hostui.h"
#include "ts/telemetry.h"

namespace {

using ts::test::ReportCapture;
using ts::test::ScriptedUi;

// Without a user interface the message is logged and the default button taken; with one, it is
// asked.
TEST(MessageBox, GoesToTheInstalledUserInterfaceOrTheLog) {
    EXPECT_EQ(ts::DefaultMessageBoxAnswer(MB_OKCANCEL | MB_DEFBUTTON2), IDCANCEL);
    EXPECT_EQ(ts::DefaultMessageBoxAnswer(MB_YESNOCANCEL | MB_DEFBUTTON3), IDCANCEL);
    EXPECT_EQ(ts::DefaultMessageBoxAnswer(MB_YESNO | MB_DEFBUTTON3), IDYES) << "no third button";
    ASSERT_EQ(ts::CurrentHostUi(), nullptr);
    {
        ReportCapture reports;
        EXPECT_EQ(TsMessageBox(u"Overwrite \"intro\"?", u"Save", MB_YESNO | MB_DEFBUTTON2), IDNO);
        ASSERT_EQ(reports.size(), 1u);
        EXPECT_EQ(reports.entries()[0].level, static_cast<int>(ReportLevel::User));
        EXPECT_EQ(reports.entries()[0].message, u"Save: Overwrite \"intro\"?");
    }
    ScriptedUi ui;
    ui.Answer(IDNO);
    EXPECT_EQ(TsMessageBox(u"Delete the line?", u"Conversation Editor", MB_YESNO | MB_ICONWARNING),
              IDNO);
    ASSERT_EQ(ui.shown().size(), 1u);
    EXPECT_EQ(ui.shown()[0].text, u"Delete the line?");
    EXPECT_EQ(ui.shown()[0].caption, u"Conversation Editor");
    EXPECT_EQ(ui.shown()[0].style, MB_YESNO | MB_ICONWARNING);
}

// A popup menu answers only with an enabled command of its own; with no one to show it, and for
// the console, nothing is chosen.
TEST(PopupMenu, AnswersWithAnEnabledEntryOrNothing) {
    const std::vector<TsPopupMenuItem> menu = {
        {u"Edit.Copy", 40011, kTsCommandEnabled}, {}, {u"Edit.Paste", 40012, 0}};
    EXPECT_EQ(TsPopupMenu(menu), 0u);
    auto console = ts::MakeConsoleHostUi(stdout);
    ts::HostUi* previous = ts::SetHostUi(console.get());
    EXPECT_EQ(TsPopupMenu(menu), 0u);
    ts::SetHostUi(previous);

    ScriptedUi ui;
    for (std::uint32_t choice : {40011u, 40012u, 123u, 0u}) ui.Choose(choice);
    EXPECT_EQ(TsPopupMenu(menu), 40011u);
    EXPECT_TRUE(ui.showingWhileShown);
    EXPECT_FALSE(TsIsPopupMenuShowing());
    EXPECT_EQ(TsPopupMenu(menu), 0u) << "disabled";
    EXPECT_EQ(TsPopupMenu(menu), 0u) << "not in the menu";
    EXPECT_EQ(TsPopupMenu(menu), 0u) << "nothing chosen";
    EXPECT_EQ(ui.menus.size(), 4u);
}

TEST(MessageBox, TheConsoleWritesTheMessageAndAnswersForTheUser) {
    std::FILE* out = std::tmpfile();
    ASSERT_NE(out, nullptr);
    auto console = ts::MakeConsoleHostUi(out);
    ts::HostUi* previous = ts::SetHostUi(console.get());
    EXPECT_EQ(TsMessageBox(u"The plugins folder is empty.", u"", MB_OK | MB_ICONWARNING), IDOK);
    EXPECT_EQ(TsMessageBox(u"Regenerate the voice-over?", u"VoiceOver",
                           MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2),
              IDNO);
    EXPECT_EQ(TsMessageBox(u"Ünïcode ✓", u"Caption", MB_OK | MB_ICONERROR), IDOK);
    ts::SetHostUi(previous);

    std::rewind(out);
    char buffer[512] = {};
    std::size_t n = std::fread(buffer, 1, sizeof buffer - 1, out);
    std::fclose(out);
    EXPECT_EQ(std::string(buffer, n),
              "Warning: The plugins folder is empty.\n"
              "Question: VoiceOver: Regenerate the voice-over? [No]\n"
              "Error: Caption: Ünïcode ✓\n");
}

TEST(Telemetry, AppendsOneLinePerRecordOrFails) {
    EXPECT_EQ(TsFourCC("EUTS"), 0x45555453u);
    EXPECT_EQ(ts::FourCCText(0x41000142u), "A??B");

    std::filesystem::remove(ts::TelemetryLogPath());
    ASSERT_EQ(TsSendTelemetry(TsFourCC("EUTS"), TsFourCC("CCWC"), u"5120"), S_OK);
    ASSERT_EQ(TsSendTelemetry(TsFourCC("EUTS"), TsFourCC("NOTE"), u"two\tlines\nin one"), S_OK);
    std::ifstream in(ts::TelemetryLogPath());
    std::string first, second, extra;
    ASSERT_TRUE(std::getline(in, first) && std::getline(in, second));
    EXPECT_FALSE(std::getline(in, extra));
    // "YYYY-MM-DD HH:MM:SS<TAB>EUTS<TAB>CCWC<TAB>5120"
    ASSERT_EQ(first.size(), 19u + 15u);
    EXPECT_EQ(first.substr(19), "\tEUTS\tCCWC\t5120");
    EXPECT_EQ(second.substr(19), "\tEUTS\tNOTE\ttwo lines in one");

    // A folder where the file should be.
    std::filesystem::remove(ts::TelemetryLogPath());
    std::filesystem::create_directories(ts::TelemetryLogPath());
    EXPECT_EQ(TsSendTelemetry(TsFourCC("EUTS"), TsFourCC("CCWC"), u"1"), E_FAIL);
    std::filesystem::remove(ts::TelemetryLogPath());
}

int gSinkEvents = 0;
class CountingSink : public CTsComObjectRoot<ITsEventSink> {
public:
    std::uint32_t unadviseCookie = 0;
    HRESULT OnEvent(TsAtom, std::uint32_t, std::uint32_t, IUnknown*) override {
        ++gSinkEvents;
        // A sink may leave the host while an event is being delivered.
        if (unadviseCookie) TsUnadviseEventSink(std::exchange(unadviseCookie, 0));
        return S_OK;
    }
};

TEST(EventSinks, AdvisedSinksGetBroadcastsUntilUnadvised) {
    std::size_t before = ts::AdvisedEventSinkCount();
    auto a = CTsComObject<CountingSink>::Create();
    auto b = CTsComObject<CountingSink>::Create();
    std::uint32_t cookieA = 0, cookieB = 0;
    ASSERT_EQ(TsAdviseEventSink(a.Get(), &cookieA), S_OK);
    ASSERT_EQ(TsAdviseEventSink(b.Get(), &cookieB), S_OK);
    EXPECT_NE(cookieA, 0u);
    EXPECT_NE(cookieA, cookieB);
    EXPECT_EQ(TsAdviseEventSink(nullptr, &cookieA), E_POINTER);
    EXPECT_EQ(ts::AdvisedEventSinkCount(), before + 2);

    gSinkEvents = 0;
    a->unadviseCookie = cookieA;
    TsAtom refresh = TsAddAtom(u"Refresh");
    ts::BroadcastToEventSinks(refresh, 0, 0, nullptr);
    EXPECT_EQ(gSinkEvents, 2) << "a sink that leaves during the broadcast does not stop it";
    ts::BroadcastToEventSinks(refresh, 0, 0, nullptr);
    EXPECT_EQ(gSinkEvents, 3);

    // The host holds its own reference while a sink is advised.
    EXPECT_EQ(b->AddRef(), 3u);
    b->Release();
    EXPECT_EQ(TsUnadviseEventSink(cookieB), S_OK);
    EXPECT_EQ(TsUnadviseEventSink(cookieB), E_INVALIDARG);
    EXPECT_EQ(ts::AdvisedEventSinkCount(), before);
}

TEST(Environment, IsOneObjectForTheProcess) {
    CTsComPtr<ITsEnvironment> a, b;
    ASSERT_EQ(TsGetEnvironment(a.Put()), S_OK);
    ASSERT_EQ(TsGetEnvironment(b.Put()), S_OK);
    EXPECT_EQ(a.Get(), b.Get());
    EXPECT_EQ(TsGetEnvironment(nullptr), E_POINTER);
    EXPECT_EQ(a->SendEvent(0, 0, nullptr, nullptr), E_INVALIDARG) << "an event needs its atom";
}

}  // namespace
