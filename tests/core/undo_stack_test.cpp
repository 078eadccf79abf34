// The undo stack as an editor window drives it: what the window hears and when, the depth limit
// and the save point, merging, failures, and the host's ITsUndoRedo over the editor object.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "core/editor_support.h"
#include "core/frame_wnd.h"
#include "core/undo_command_group.h"
#include "core/undo_support.h"
#include "core/window_interface.h"
#include "support/report_capture.h"
#include "ts/comobject.h"
#include "ts/format.h"
#include "ts/text.h"

namespace {

using ts::test::ReportCapture;

// Adds an amount to a counter; merges with another addition to the same counter. Can be told
// to fail.
class AddTo : public CTsUndoCommand {
public:
    AddTo(int& total, int amount, std::uint32_t key = 0)
        : CTsUndoCommand(ts::Format(u"Add %d", amount)), total_(total), amount_(amount) {
        SetUpdateKey(key);
        SetMarkedForUpdate(key != 0);
    }
    bool Do(CTsUndoSupportBase&) override { return Change(failDo, amount_); }
    bool Undo(CTsUndoSupportBase&) override { return Change(failUndo, -amount_); }
    bool CanMerge(const CTsUndoCommand& other) const override {
        const auto* add = dynamic_cast<const AddTo*>(&other);
        return add && &add->total_ == &total_;
    }
    bool Merge(CTsUndoCommand& other) override {
        if (!CanMerge(other)) return false;
        amount_ += static_cast<AddTo&>(other).amount_;
        return true;
    }
    const char* KindName() const override { return "AddTo"; }

    bool failDo = false;
    bool failUndo = false;

private:
    bool Change(bool fail, int amount) {
        if (!fail) total_ += amount;
        return !fail;
    }

    int& total_;
    int amount_;
};

std::unique_ptr<AddTo> Add(int& total, int amount, std::uint32_t key = 0) {
    return std::make_unique<AddTo>(total, amount, key);
}

std::string Label(const CTsUndoCommand* command) {
    return command ? ts::Utf16ToUtf8(command->Label()) : "(none)";
}

// An editor window as the conversation editor is built: editor state and undo stack, the
// modified state refreshed when the stack ends its work.
class StackWindow : public CTsFrameWnd,
                    public CTsEditorSupport<StackWindow>,
                    public CTsUndoSupport<StackWindow> {
public:
    static constexpr CLSID kClassId = ts::Guid("{5E0C7A21-3B4D-4F6E-8A9B-1C2D3E4F5A01}");
    StackWindow() = default;
    StackWindow(CTsWindowInterface<StackWindow>&, TsWindowHandle) {}

    void UndoBegin(int d) { log.push_back("begin " + std::to_string(d)); }
    void UndoBeforeCommand(int d, CTsUndoCommand& c) {
        log.push_back("before " + std::to_string(d) + " " + Label(&c));
    }
    void UndoAfterCommand(int d, CTsUndoCommand& c) {
        log.push_back("after " + std::to_string(d) + " " + Label(&c));
    }
    void UndoEnd(int d, bool flag) {
        log.push_back("end " + std::to_string(d) + " " + std::to_string(flag));
        SetModified(IsModifiedSinceSave());
    }
    void UndoHistoryChanged() {
        ++historyChanges;
        SetModified(IsModifiedSinceSave());
    }
    std::vector<std::string> TakeLog() { return std::exchange(log, {}); }

    std::vector<std::string> log;
    int historyChanges = 0;
};

using Log = std::vector<std::string>;

TEST(UndoStack, TheWindowHearsEveryStepWithTheStackAlreadyInItsNewState) {
    StackWindow w;
    int total = 0;
    ASSERT_TRUE(w.AddCommand(Add(total, 2), true));
    EXPECT_EQ(total, 2);
    EXPECT_EQ(w.TakeLog(), (Log{"begin 0", "before 0 Add 2", "after 0 Add 2", "end 0 1"}));
    EXPECT_TRUE(w.IsModified()) << "the end notification sees the command pushed";

    auto pair = std::make_unique<CTsUndoCommandGroup>(u"Pair");
    pair->Add(Add(total, 3));
    pair->Add(Add(total, 4));
    ASSERT_TRUE(w.AddCommand(std::move(pair), true));
    EXPECT_EQ(total, 9);
    EXPECT_EQ(w.TakeLog(), (Log{"begin 0", "before 0 Pair", "before 0 Add 3", "after 0 Add 3",
                                "before 0 Add 4", "after 0 Add 4", "after 0 Pair", "end 0 1"}));

    ASSERT_TRUE(w.Undo());
    EXPECT_EQ(total, 2);
    EXPECT_EQ(w.TakeLog(), (Log{"begin 1", "before 1 Pair", "before 1 Add 4", "after 1 Add 4",
                                "before 1 Add 3", "after 1 Add 3", "after 1 Pair", "end 1 0"}));
    ASSERT_TRUE(w.Undo());
    EXPECT_EQ(total, 0);
    EXPECT_FALSE(w.IsModified()) << "back where the document was opened";
    w.TakeLog();
    EXPECT_TRUE(w.Undo()) << "nothing to undo is no failure";
    EXPECT_EQ(w.TakeLog(), (Log{"begin 1", "end 1 0"}));

    ASSERT_TRUE(w.Redo());
    EXPECT_EQ(total, 2);
    EXPECT_EQ(w.TakeLog(), (Log{"begin 0", "before 0 Add 2", "after 0 Add 2", "end 0 0"}));
    EXPECT_EQ(w.RedoCount(), 1u);

    // A change made already (a paste) is recorded without running it; it ends the redo tail.
    total += 10;
    ASSERT_TRUE(w.AddCommand(Add(total, 10), false));
    EXPECT_EQ(total, 12);
    EXPECT_EQ(w.TakeLog(), (Log{"begin 0", "end 0 1"}));
    EXPECT_EQ(w.UndoCount(), 2u);
    EXPECT_EQ(w.RedoCount(), 0u);
    ASSERT_TRUE(w.Undo());
    EXPECT_EQ(total, 2);
    w.TakeLog();

    // An empty group is dropped without a word.
    ASSERT_TRUE(w.AddCommand(std::make_unique<CTsUndoCommandGroup>(u"Nothing"), true));
    EXPECT_EQ(w.TakeLog(), Log{});
    EXPECT_EQ(w.UndoCount(), 1u);
    EXPECT_EQ(w.RedoCount(), 1u);

    w.MarkUndoSaved();
    EXPECT_FALSE(w.IsModified());
    w.ClearUndoHistory();
    EXPECT_EQ(w.UndoCount() + w.RedoCount(), 0u);
    EXPECT_EQ(w.historyChanges, 2);
}

TEST(UndoStack, TheOldestCommandMakesWayAndTheSavePointMovesWithIt) {
    StackWindow w;
    ASSERT_EQ(w.MaxDepth(), 128u);
    int total = 0;
    ASSERT_TRUE(w.AddCommand(Add(total, 1000), true));
    w.MarkUndoSaved();
    for (int i = 0; i < 128; ++i) ASSERT_TRUE(w.AddCommand(Add(total, 1), true));
    EXPECT_EQ(w.UndoCount(), 128u);
    EXPECT_EQ(w.SavedPosition(), 0) << "the save point lies just before the oldest kept command";
    while (w.UndoCount() > 0) ASSERT_TRUE(w.Undo());
    EXPECT_EQ(total, 1000) << "the first command can no longer be undone";
    EXPECT_FALSE(w.IsModified());

    // Once the saved state itself is pushed out, nothing but a save makes the document clean.
    while (w.RedoCount() > 0) ASSERT_TRUE(w.Redo());
    ASSERT_TRUE(w.AddCommand(Add(total, 1), true));
    EXPECT_EQ(w.SavedPosition(), -1);
    while (w.UndoCount() > 0) ASSERT_TRUE(w.Undo());
    EXPECT_TRUE(w.IsModified());
    w.MarkUndoSaved();
    EXPECT_FALSE(w.IsModified());

    CTsUndoSupportBase keepsNothing(0);
    EXPECT_FALSE(keepsNothing.AddCommand(Add(total, 1), true));
    EXPECT_EQ(keepsNothing.UndoCount(), 0u);
}

TEST(UndoStack, ANewCommandDropsTheRedoTailAndASavePointInIt) {
    StackWindow w;
    int total = 0;
    w.AddCommand(Add(total, 1), true);
    w.AddCommand(Add(total, 2), true);
    w.MarkUndoSaved();
    ASSERT_TRUE(w.Undo());
    ASSERT_TRUE(w.AddCommand(Add(total, 4), true));
    EXPECT_EQ(w.RedoCount(), 0u);
    EXPECT_EQ(w.SavedPosition(), -1);
    while (w.UndoCount() > 0) ASSERT_TRUE(w.Undo());
    EXPECT_EQ(total, 0);
    EXPECT_TRUE(w.IsModified()) << "the saved document is out of reach";

    // A save point before the redo tail stays where it is.
    w.ClearUndoHistory();
    w.AddCommand(Add(total, 1), true);
    w.MarkUndoSaved();
    w.AddCommand(Add(total, 2), true);
    ASSERT_TRUE(w.Undo());
    ASSERT_TRUE(w.AddCommand(Add(total, 4), true));
    EXPECT_EQ(w.SavedPosition(), 1);
    ASSERT_TRUE(w.Undo());
    EXPECT_FALSE(w.IsModified());
}

// Exposes the merge rule for a caller that gets it wrong.
struct ExposedStack : CTsUndoSupportBase {
    ExposedStack() : CTsUndoSupportBase(8) {}
    using CTsUndoSupportBase::Absorbs;
};

TEST(UndoStack, MergesOnlyAMarkedTopWithTheSameKey) {
    struct Case {
        const char* what;
        std::uint32_t topKey, nextKey;
        bool topMarked, sameCounter, merged;
    };
    const Case cases[] = {{"same key, marked", 7, 7, true, true, true},
                          {"keys differ", 7, 8, true, true, false},
                          {"key 0", 0, 0, true, true, false},
                          {"top not marked", 7, 7, false, true, false},
                          {"the commands don't fit", 7, 7, true, false, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        StackWindow w;
        int total = 0, other = 0;
        auto top = Add(total, 2, c.topKey);
        top->SetMarkedForUpdate(c.topMarked);
        auto next = Add(c.sameCounter ? total : other, 3, c.nextKey);
        next->SetMarkedForUpdate(true);
        ASSERT_TRUE(w.AddCommand(std::move(top), true));
        ASSERT_TRUE(w.AddCommand(std::move(next), true));
        EXPECT_EQ(w.UndoCount(), c.merged ? 1u : 2u);
        ASSERT_TRUE(w.Undo());
        EXPECT_EQ(total + other, c.merged ? 0 : 2);
    }

    // Never into an undone command: not while it waits for redo, not after it was redone.
    StackWindow w;
    int total = 0;
    w.AddCommand(Add(total, 2, 7), true);
    w.Undo();
    ASSERT_TRUE(w.AddCommand(Add(total, 3, 7), true));
    EXPECT_EQ(Label(w.UndoCommandAt(0)), "Add 3");
    EXPECT_EQ(w.UndoCount() + w.RedoCount(), 1u);
    w.Undo();
    w.Redo();
    ASSERT_TRUE(w.AddCommand(Add(total, 4, 7), true));
    EXPECT_EQ(w.UndoCount(), 2u);
    EXPECT_EQ(total, 7);
    // Even marked again by hand, a command followed by a redo tail takes nothing in.
    w.AddCommand(Add(total, 5, 8), true);
    w.Undo();
    w.UndoCommandAt(0)->SetMarkedForUpdate(true);
    ASSERT_TRUE(w.AddCommand(Add(total, 6, 7), true));
    EXPECT_EQ(Label(w.UndoCommandAt(1)), "Add 4");

    ReportCapture reports;
    AddTo marked(total, 1, 7), unmarked(total, 1, 7);
    unmarked.SetMarkedForUpdate(false);
    EXPECT_FALSE(ExposedStack::Absorbs(marked, unmarked));
    ASSERT_EQ(reports.Count(u"RHS command must be marked for update"), 1u);
    EXPECT_EQ(reports.entries()[0].level, static_cast<int>(ReportLevel::Assert));
}

TEST(UndoStack, AFailedCommandEmptiesTheStackAndNamesItself) {
    struct Case {
        const char* what;
        std::function<bool(StackWindow&, int&, AddTo&)> fail;
        const char16_t* report;
        const char* end;
    };
    const Case cases[] = {
        {"do",
         [](StackWindow& w, int& total, AddTo&) {
             auto bad = Add(total, 5);
             bad->failDo = true;
             return w.AddCommand(std::move(bad), true);
         },
         u"Doing \"Add 5\" (AddTo) failed; the undo history was cleared.", "end 0 1"},
        {"undo",
         [](StackWindow& w, int&, AddTo& second) {
             second.failUndo = true;
             return w.Undo();
         },
         u"Undoing \"Add 2\" (AddTo) failed; the undo history was cleared.", "end 1 0"},
        {"redo",
         [](StackWindow& w, int&, AddTo& second) {
             w.Undo();
             second.failDo = true;
             return w.Redo();
         },
         u"Redoing \"Add 2\" (AddTo) failed; the undo history was cleared.", "end 0 0"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        StackWindow w;
        int total = 0;
        w.AddCommand(Add(total, 1), true);
        auto second = Add(total, 2);
        AddTo& kept = *second;
        w.AddCommand(std::move(second), true);
        w.MarkUndoSaved();
        ReportCapture reports;
        EXPECT_FALSE(c.fail(w, total, kept));
        EXPECT_EQ(w.UndoCount() + w.RedoCount(), 0u);
        ASSERT_EQ(reports.size(), 1u);
        EXPECT_EQ(reports.entries()[0].message, c.report);
        EXPECT_EQ(reports.entries()[0].level, static_cast<int>(ReportLevel::Error));
        EXPECT_EQ(w.log.back(), c.end);
        EXPECT_TRUE(w.IsModified()) << "the document may differ from the saved one";
    }
}

// A window without an undo stack, as the line preview is.
class PreviewWindow : public CTsFrameWnd {
public:
    static constexpr CLSID kClassId = ts::Guid("{5E0C7A21-3B4D-4F6E-8A9B-1C2D3E4F5A02}");
    PreviewWindow(CTsWindowInterface<PreviewWindow>&, TsWindowHandle) {}
};

template <class W>
CTsComPtr<ITsUndoRedo> UndoRedoOf(const CTsComPtr<CTsComObject<CTsWindowInterface<W>>>& object) {
    CTsComPtr<ITsUndoRedo> undo;
    EXPECT_EQ(object->QueryInterface(ITsUndoRedo::kIID, undo.PutVoid()), S_OK);
    return undo;
}

std::vector<HRESULT> CallEveryOperation(ITsUndoRedo& undo) {
    std::uint32_t count = 0;
    std::int32_t modified = 0;
    CTsHostString label;
    return {undo.GetUndoCount(&count),
            undo.GetRedoCount(&count),
            undo.GetUndoLabel(0, label.Put()),
            undo.GetRedoLabel(0, label.Put()),
            undo.Undo(),
            undo.Redo(),
            undo.IsModified(&modified)};
}

TEST(UndoRedoInterface, TheHostDrivesTheWindowsStack) {
    auto object = CTsComObject<CTsWindowInterface<StackWindow>>::Create();
    auto undo = UndoRedoOf(object);
    EXPECT_EQ(CallEveryOperation(*undo), std::vector<HRESULT>(7, E_FAIL)) << "no window yet";
    CTsComPtr<ITsUIWindow> window;
    ASSERT_EQ(object->QueryInterface(ITsUIWindow::kIID, window.PutVoid()), S_OK);
    ASSERT_EQ(window->CreateUIWindow(nullptr), S_OK);
    StackWindow& w = *object->GetWindow();
    ASSERT_EQ(w.AttachResource(1, u"intro.dlg", 0), S_OK);

    std::uint32_t count = 9;
    std::int32_t modified = 9;
    CTsHostString label;
    EXPECT_EQ(undo->GetUndoCount(nullptr), E_POINTER);
    EXPECT_EQ(undo->GetUndoLabel(0, nullptr), E_POINTER);
    EXPECT_EQ(undo->Undo(), S_FALSE);
    EXPECT_EQ(undo->Redo(), S_FALSE);
    EXPECT_EQ(undo->GetRedoLabel(0, label.Put()), E_INVALIDARG);
    EXPECT_EQ(label.Get(), nullptr);

    int total = 0;
    w.AddCommand(Add(total, 2), true);
    w.AddCommand(Add(total, 3), true);
    ASSERT_EQ(undo->GetUndoCount(&count), S_OK);
    EXPECT_EQ(count, 2u);
    ASSERT_EQ(undo->GetUndoLabel(1, label.Put()), S_OK);
    EXPECT_EQ(label.View(), u"Add 2");
    EXPECT_EQ(undo->GetUndoLabel(2, label.Put()), E_INVALIDARG);
    ASSERT_EQ(undo->IsModified(&modified), S_OK);
    EXPECT_EQ(modified, 1);
    EXPECT_EQ(w.StateWord(), kTsEditorModified) << "the editor's state follows its stack";

    EXPECT_EQ(undo->Undo(), S_OK);
    ASSERT_EQ(undo->GetRedoCount(&count), S_OK);
    EXPECT_EQ(count, 1u);
    ASSERT_EQ(undo->GetRedoLabel(0, label.Put()), S_OK);
    EXPECT_EQ(label.View(), u"Add 3");
    EXPECT_EQ(undo->Redo(), S_OK);
    EXPECT_EQ(total, 5);
    w.MarkUndoSaved();
    ASSERT_EQ(undo->IsModified(&modified), S_OK);
    EXPECT_EQ(modified, 0);
    EXPECT_EQ(w.StateWord(), 0u);

    auto failing = Add(total, 4);
    failing->failUndo = true;
    w.AddCommand(std::move(failing), true);
    EXPECT_EQ(undo->Undo(), E_FAIL);
    ASSERT_EQ(undo->GetUndoCount(&count), S_OK);
    EXPECT_EQ(count, 0u);

    // Attaching read-only empties the history.
    w.AddCommand(Add(total, 1), true);
    ASSERT_EQ(w.AttachResource(1, u"intro.dlg", kTsEditorReadOnly), S_OK);
    ASSERT_EQ(undo->GetUndoCount(&count), S_OK);
    EXPECT_EQ(count, 0u);

    ASSERT_EQ(window->CloseUIWindow(), S_OK);
    EXPECT_EQ(CallEveryOperation(*undo), std::vector<HRESULT>(7, E_FAIL));

    auto preview = CTsComObject<CTsWindowInterface<PreviewWindow>>::Create();
    CTsComPtr<ITsUIWindow> previewWindow;
    ASSERT_EQ(preview->QueryInterface(ITsUIWindow::kIID, previewWindow.PutVoid()), S_OK);
    ASSERT_EQ(previewWindow->CreateUIWindow(nullptr), S_OK);
    EXPECT_EQ(CallEveryOperation(*UndoRedoOf(preview)), std::vector<HRESULT>(7, E_NOTIMPL));
}

}  // namespace
