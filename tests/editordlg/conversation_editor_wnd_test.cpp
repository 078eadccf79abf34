// The conversation editor's window as the editor object sees it: caption and state, the word
// count sent as telemetry, and the host events it follows.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/window_interface.h"
#include "model/conversation_editor_wnd.h"
#include "model/conversation_line_preview_wnd.h"
#include "ts/environment.h"
#include "ts/events.h"
#include "ts/hoststring.h"
#include "ts/telemetry.h"

namespace {

using EditorObject = CTsComObject<CTsWindowInterface<CConversationEditorWnd>>;
using PreviewObject = CTsComObject<CTsWindowInterface<CConversationLinePreviewWnd>>;

std::string ReadFile(const std::string& path) {
    std::ifstream in(path);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

class ConversationEditorWnd : public ::testing::Test {
protected:
    void SetUp() override {
        object_ = EditorObject::Create();
        ASSERT_EQ(object_->CreateUIWindow(nullptr), S_OK);
        wnd_ = object_->GetWindow();
    }
    CTsComPtr<EditorObject> object_;
    CConversationEditorWnd* wnd_ = nullptr;
};

TEST_F(ConversationEditorWnd, CaptionFollowsTheResourceAndItsState) {
    EXPECT_EQ(wnd_->Caption(), u"");
    ASSERT_EQ(object_->Attach(5, u"quests/Intro_Talk.DLG", 0), S_OK);
    EXPECT_EQ(wnd_->Caption(), u"Intro_Talk.dlg");
    ASSERT_EQ(object_->SetModified(1), S_OK);
    EXPECT_EQ(wnd_->Caption(), u"Intro_Talk.dlg*");
    ASSERT_EQ(object_->Attach(5, u"quests/Intro_Talk.DLG", kTsEditorReadOnly), S_OK);
    EXPECT_EQ(wnd_->Caption(), u"Intro_Talk.dlg* [Read Only]")
        << "attaching again does not drop the editor's own modified flag";
    ASSERT_EQ(object_->SetModified(0), S_OK);
    EXPECT_EQ(wnd_->Caption(), u"Intro_Talk.dlg [Read Only]");

    // An edit of a loaded read-only resource does not make it modified.
    wnd_->SetLoaded(true);
    wnd_->NoteEdited();
    EXPECT_FALSE(wnd_->IsModified());
    ASSERT_EQ(object_->Attach(5, u"quests/Intro_Talk.DLG", 0), S_OK);
    wnd_->NoteEdited();
    EXPECT_TRUE(wnd_->IsModified());
}

TEST_F(ConversationEditorWnd, RefreshEventsRestoreTheCaption) {
    ASSERT_EQ(object_->Attach(5, u"intro.dlg", 0), S_OK);
    wnd_->SetCaption(u"stale");
    ts::BroadcastToEventSinks(ts::events::OptionsChange(), 0, 0, nullptr);
    EXPECT_EQ(wnd_->Caption(), u"stale") << "other events leave the window as it is";
    ts::BroadcastToEventSinks(ts::events::Refresh(), 0, 0, nullptr);
    EXPECT_EQ(wnd_->Caption(), u"intro.dlg");
    wnd_->SetCaption(u"stale");
    ts::BroadcastToEventSinks(ts::events::RefreshNoArt(), 0, 0, nullptr);
    EXPECT_EQ(wnd_->Caption(), u"intro.dlg");
}

TEST_F(ConversationEditorWnd, WordCountIsRecordedAsTelemetry) {
    std::filesystem::remove(ts::TelemetryLogPath());
    wnd_->SendWordCount(1234);
    wnd_->SendWordCount(-1);
    std::string log = ReadFile(ts::TelemetryLogPath());
    EXPECT_NE(log.find("\tEUTS\tCCWC\t1234\n"), std::string::npos) << log;
    EXPECT_NE(log.find("\tEUTS\tCCWC\t-1\n"), std::string::npos) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 2);

    // A record that can't be written ends the operation with E_FAIL.
    std::filesystem::remove(ts::TelemetryLogPath());
    std::filesystem::create_directories(ts::TelemetryLogPath());
    EXPECT_THROW(wnd_->SendWordCount(7), ts::ComError);
    HRESULT hr = ts::ForwardToWindow(wnd_, [](CConversationEditorWnd& w) -> HRESULT {
        w.SendWordCount(7);
        return S_OK;
    });
    EXPECT_EQ(hr, E_FAIL);
    std::filesystem::remove(ts::TelemetryLogPath());
}

TEST_F(ConversationEditorWnd, SplitterPositionsOfTheSavedLayout) {
    EXPECT_FALSE(wnd_->SplitterPosition(CConversationEditorWnd::kWindowSplitter));
    wnd_->SetSplitterPosition(CConversationEditorWnd::kWindowSplitter, 320);
    wnd_->SetSplitterPosition(CConversationEditorWnd::kTextSplitter, 80);
    EXPECT_EQ(wnd_->SplitterPosition(u"WindowSplitter"), 320);
    EXPECT_EQ(wnd_->SplitterPosition(u"TextSplitter"), 80);
}

TEST(ConversationLinePreviewWnd, IsAToolWindowWithoutEditorOperations) {
    auto object = PreviewObject::Create();
    ASSERT_EQ(object->CreateUIWindow(nullptr), S_OK);
    CTsHostString name;
    ASSERT_EQ(object->GetCommandSourceName(name.Put()), S_OK);
    EXPECT_EQ(name.View(), u"DLGPreview");
    EXPECT_EQ(object->Attach(1, u"intro.dlg", 0), E_NOTIMPL);
    EXPECT_EQ(object->GetOptionsName(name.Put()), E_NOTIMPL);
    EXPECT_EQ(object->ActivateFrame(1), S_OK);
    EXPECT_TRUE(object->GetWindow()->IsVisible());
    // Events reach it and change nothing.
    ts::BroadcastToEventSinks(ts::events::ClosingEnvironment(), 0, 0, nullptr);
    EXPECT_EQ(object->GetWindow()->Caption(), u"Conversation Line Preview");
}

}  // namespace
