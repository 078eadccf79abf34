// The undo stack as an editor window drives it: what the window hears and when, the depth limit
// and the save point, merging, failures, and the host's ITsUndoRedo over the editor object.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
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

// Adds an amount to a counter, or fails when told to; merges with another addition to the same
// counter. A non-zero key marks it for update.
struct AddTo : CTsUndoCommand {
    AddTo(int& total, int amount, std::uint32_t key)
        : CTsUndoCommand(ts::Format(u"Add %d", amount)), total(total), amount(amount) {
        SetUpdateKey(key);
        SetMarkedForUpdate(key != 0);
    }
    bool Do(CTsUndoSupportBase&) override { return !failDo && (total += amount, true); }
    bool Undo(CTsUndoSupportBase&) override { return !failUndo && (total -= amount, true); }
    bool CanMerge(const CTsUndoCommand& other) const override {
        const auto* add = dynamic_cast<const AddTo*>(&other);
        return add && &add->total == &total;
    }
    bool Merge(CTsUndoCommand& other) override {
        if (!CanMerge(other)) return false;
        amount += static_cast<AddTo&>(other).amount;
        return true;
    }
    const char* KindName() const override { return "AddTo"; }

    int& total;
    int amount;
    bool failDo = false, failUndo = false;
};

std::unique_ptr<AddTo> Add(int& total, int amount, std::uint32_t key = 0) {
    return std::make_unique<AddTo>(total, amount, key);
}

// An editor window as the conversation editor is built: editor state and undo stack, the
// modified state refreshed when the stack ends its work. Its log's end entries carry the undo
// and redo counts the window finds there.
class StackWindow : public CTsFrameWnd,
                    public CTsEditorSupport<StackWindow>,
                    public CTsUndoSupport<StackWindow> {
public:
    static constexpr CLSID kClassId = ts::Guid("{5E0C7A21-3B4D-4F6E-8A9B-1C2D3E4F5A01}");
    StackWindow() = default;
    StackWindow(CTsWindowInterface<StackWindow>&, TsWindowHandle) {}

    void UndoBegin(int d) { Note(ts::Format(u"begin %d", d)); }
    void UndoBeforeCommand(int d, CTsUndoCommand& c) {
        Note(ts::Format(u"before %d %ls", d, c.Label()));
    }
    void UndoAfterCommand(int d, CTsUndoCommand& c) {
        Note(ts::Format(u"after %d %ls", d, c.Label()));
    }
    void UndoEnd(int d, bool flag) {
        Note(ts::Format(u"end %d %d %d:%d", d, int{flag}, UndoCount(), RedoCount()));
        SetModified(IsModifiedSinceSave());
    }
    void UndoHistoryChanged() {
        ++historyChanges;
        SetModified(IsModifiedSinceSave());
    }
    void Note(const std::u16string& entry) {
        log += (log.empty() ? "" : ", ") + ts::Utf16ToUtf8(entry);
    }
    std::string TakeLog() { return std::exchange(log, {}); }

    std::string log;
    int historyChanges = 0;
};

TEST(UndoStack, TheWindowHearsEveryStepWithTheStackAlreadyInItsNewState) {
    StackWindow w;
    int total = 0;
    auto step = [&](bool done, int expectedTotal, const char* log) {
        EXPECT_TRUE(done);
        EXPECT_EQ(total, expectedTotal);
        EXPECT_EQ(w.TakeLog(), log);
    };
    step(w.AddCommand(Add(total, 2), true), 2,
         "begin 0, before 0 Add 2, after 0 Add 2, end 0 1 1:0");
    EXPECT_TRUE(w.IsModified());
    auto pair = std::make_unique<CTsUndoCommandGroup>(u"Pair");
    pair->Add(Add(total, 3));
    pair->Add(Add(total, 4));
    step(w.AddCommand(std::move(pair), true), 9,
         "begin 0, before 0 Pair, before 0 Add 3, after 0 Add 3, before 0 Add 4, after 0 Add 4, "
         "after 0 Pair, end 0 1 2:0");
    w.MarkUndoSaved();
    step(w.Undo(), 2,
         "begin 1, before 1 Pair, before 1 Add 4, after 1 Add 4, before 1 Add 3, after 1 Add 3, "
         "after 1 Pair, end 1 0 1:1");
    step(w.Undo(), 0, "begin 1, before 1 Add 2, after 1 Add 2, end 1 0 0:2");
    EXPECT_TRUE(w.IsModified()) << "two steps from the saved state";
    step(w.Undo(), 0, "begin 1, end 1 0 0:2");  // nothing to undo is no failure
    step(w.Redo(), 2, "begin 0, before 0 Add 2, after 0 Add 2, end 0 0 1:1");

    // A change made already (a paste) is recorded without running it. It ends the redo tail, and
    // the save point in it: the saved state is out of reach.
    total += 10;
    step(w.AddCommand(Add(total, 10), false), 12, "begin 0, end 0 1 2:0");
    EXPECT_EQ(w.SavedPosition(), -1);
    step(w.Undo(), 2, "begin 1, before 1 Add 10, after 1 Add 10, end 1 0 1:1");
    // An empty group is dropped without a word, and leaves the redo tail alone.
    step(w.AddCommand(std::make_unique<CTsUndoCommandGroup>(u"Nothing"), true), 2, "");
    EXPECT_EQ(w.RedoCount(), 1u);

    w.MarkUndoSaved();
    EXPECT_FALSE(w.IsModified());
    w.ClearUndoHistory();
    EXPECT_EQ(w.UndoCount() + w.RedoCount(), 0u);
    EXPECT_EQ(w.historyChanges, 3);
}

TEST(UndoStack, TheSavePointMovesWithTheOldestCommandAndStaysBeforeADroppedRedoTail) {
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

    // A new command drops the redo tail; a save point before the tail stays where it is.
    ASSERT_TRUE(w.Redo());
    ASSERT_TRUE(w.AddCommand(Add(total, 5), true));
    EXPECT_EQ(w.log.substr(w.log.rfind("end")), "end 0 1 2:0");
    EXPECT_EQ(w.SavedPosition(), 0);
    // Once the saved state itself is pushed out, nothing but a save makes the document clean.
    for (int i = 2; i < 128; ++i) ASSERT_TRUE(w.AddCommand(Add(total, 1), true));
    EXPECT_EQ(w.UndoCount(), 128u);
    EXPECT_EQ(w.SavedPosition(), 0);
    ASSERT_TRUE(w.AddCommand(Add(total, 1), true));
    EXPECT_EQ(w.SavedPosition(), -1);

    CTsUndoSupportBase keepsNothing(0);
    EXPECT_FALSE(keepsNothing.AddCommand(Add(total, 1), true));
    EXPECT_EQ(keepsNothing.UndoCount(), 0u);
}

// Exposes the merge rule for a caller that gets it wrong.
struct ExposedStack : CTsUndoSupportBase {
    using CTsUndoSupportBase::Absorbs;
};

TEST(UndoStack, MergesOnlyAMarkedTopWithTheSameKey) {
    // Add 3 comes after Add 2, which may have been undone (and redone), or have a redo tail
    // behind it and been marked again by hand.
    enum Then { kNothing, kUndone, kRedone, kTail };
    const struct {
        const char* what;
        std::uint32_t topKey, nextKey;
        bool topMarked, sameCounter;
        Then then;
        bool merged;
    } cases[] = {{"same key, marked", 7, 7, true, true, kNothing, true},
                 {"keys differ", 7, 8, true, true, kNothing, false},
                 {"key 0", 0, 0, true, true, kNothing, false},
                 {"top not marked", 7, 7, false, true, kNothing, false},
                 {"the commands don't fit", 7, 7, true, false, kNothing, false},
                 {"top waits for redo", 7, 7, true, true, kUndone, false},
                 {"top undone and redone", 7, 7, true, true, kRedone, false},
                 {"top marked again, a redo tail behind it", 7, 7, true, true, kTail, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        StackWindow w;
        int total = 0, other = 0;
        auto top = Add(total, 2, c.topKey);
        top->SetMarkedForUpdate(c.topMarked);
        ASSERT_TRUE(w.AddCommand(std::move(top), true));
        if (c.then == kTail) w.AddCommand(Add(total, 5, 8), true);
        if (c.then != kNothing) w.Undo();
        if (c.then == kRedone) w.Redo();
        if (c.then == kTail) w.UndoCommandAt(0)->SetMarkedForUpdate(true);
        auto next = Add(c.sameCounter ? total : other, 3, c.nextKey);
        next->SetMarkedForUpdate(true);
        ASSERT_TRUE(w.AddCommand(std::move(next), true));
        EXPECT_EQ(w.RedoCount(), 0u);
        EXPECT_EQ(w.UndoCount(), c.merged || c.then == kUndone ? 1u : 2u);
        EXPECT_EQ(w.UndoCommandAt(0)->Label(), c.merged ? u"Add 2" : u"Add 3");
        EXPECT_TRUE(w.UndoCount() < 2 || !w.UndoCommandAt(1)->IsMarkedForUpdate())
            << "only the top stays marked";
        const int sum = total + other;
        ASSERT_TRUE(w.Undo());
        EXPECT_EQ(sum - total - other, c.merged ? 5 : 3) << "what the top step undoes";
    }

    ReportCapture reports;
    int total = 0;
    AddTo marked(total, 1, 7), unmarked(total, 1, 7);
    unmarked.SetMarkedForUpdate(false);
    EXPECT_FALSE(ExposedStack::Absorbs(marked, unmarked));
    ASSERT_EQ(reports.Count(u"RHS command must be marked for update"), 1u);
    EXPECT_EQ(reports.entries()[0].level, static_cast<int>(ReportLevel::Assert));
}

TEST(UndoStack, AFailedCommandEmptiesTheStackAndNamesItself) {
    // Add 2 fails when pushed, or when undone or redone later; the saved state is out of reach.
    const std::tuple<std::string, const char16_t*, const char*> cases[] = {
        {"do", u"Doing \"Add 2\" (AddTo) failed; the undo history was cleared.", "end 0 1 0:0"},
        {"undo", u"Undoing \"Add 2\" (AddTo) failed; the undo history was cleared.", "end 1 0 0:0"},
        {"redo", u"Redoing \"Add 2\" (AddTo) failed; the undo history was cleared.",
         "end 0 0 0:0"}};
    for (const auto& [what, report, end] : cases) {
        SCOPED_TRACE(what);
        StackWindow w;
        int total = 0;
        w.AddCommand(Add(total, 1), true);
        w.MarkUndoSaved();
        auto add = Add(total, 2);
        AddTo& second = *add;
        add->failDo = what == "do";
        ReportCapture reports;
        bool done = w.AddCommand(std::move(add), true);
        if (what != "do") {
            if (what == "redo") w.Undo();
            (what == "undo" ? second.failUndo : second.failDo) = true;
            done = what == "undo" ? w.Undo() : w.Redo();
        }
        EXPECT_FALSE(done);
        ASSERT_EQ(reports.size(), 1u);
        EXPECT_EQ(reports.entries()[0].message, report);
        EXPECT_EQ(reports.entries()[0].level, static_cast<int>(ReportLevel::Error));
        EXPECT_TRUE(w.log.ends_with(end)) << w.log;
        EXPECT_TRUE(w.IsModified()) << "the document may differ from the saved one";
    }
}

// A window without an undo stack, as the line preview is.
class PreviewWindow : public CTsFrameWnd {
public:
    static constexpr CLSID kClassId = ts::Guid("{5E0C7A21-3B4D-4F6E-8A9B-1C2D3E4F5A02}");
    PreviewWindow(CTsWindowInterface<PreviewWindow>&, TsWindowHandle) {}
};

// An editor object over a window W, and its ITsUndoRedo.
template <class W>
struct Editor {
    Editor() { EXPECT_EQ(object->QueryInterface(ITsUndoRedo::kIID, undo.PutVoid()), S_OK); }
    HRESULT Open() { return CTsComPtr<ITsUIWindow>(object.Get())->CreateUIWindow(nullptr); }
    CTsComPtr<CTsComObject<CTsWindowInterface<W>>> object =
        CTsComObject<CTsWindowInterface<W>>::Create();
    CTsComPtr<ITsUndoRedo> undo;
};

// Every operation, each with a place for its output.
std::vector<HRESULT> CallEveryOperation(ITsUndoRedo& undo) {
    std::uint32_t n = 0;
    std::int32_t modified = 0;
    CTsHostString s;
    return {undo.GetUndoCount(&n),         undo.GetRedoCount(&n), undo.GetUndoLabel(0, s.Put()),
            undo.GetRedoLabel(0, s.Put()), undo.Undo(),           undo.Redo(),
            undo.IsModified(&modified)};
}

// The stack as the host reads it: "[undo labels, most recent first] [redo labels] modified".
// The label index just past each count is refused and leaves no label.
std::string HostView(ITsUndoRedo& undo) {
    std::uint32_t counts[2] = {9, 9};
    std::int32_t modified = 9;
    EXPECT_EQ(undo.GetUndoCount(&counts[0]), S_OK);
    EXPECT_EQ(undo.GetRedoCount(&counts[1]), S_OK);
    EXPECT_EQ(undo.IsModified(&modified), S_OK);
    std::string view;
    for (auto get : {&ITsUndoRedo::GetUndoLabel, &ITsUndoRedo::GetRedoLabel}) {
        const std::uint32_t count = counts[get == &ITsUndoRedo::GetRedoLabel];
        view += "[";
        for (std::uint32_t i = 0; i <= count; ++i) {
            CTsHostString label;
            EXPECT_EQ((undo.*get)(i, label.Put()), i < count ? S_OK : E_INVALIDARG);
            if (i < count) view += (i ? ", " : "") + ts::Utf16ToUtf8(label.View());
            EXPECT_EQ(label.Get() == nullptr, i == count);
        }
        view += "] ";
    }
    return view + std::to_string(modified);
}

TEST(UndoRedoInterface, TheHostDrivesTheWindowsStack) {
    Editor<StackWindow> editor;
    ITsUndoRedo& undo = *editor.undo;
    EXPECT_EQ(CallEveryOperation(undo), std::vector<HRESULT>(7, E_FAIL)) << "no window yet";
    ASSERT_EQ(editor.Open(), S_OK);
    StackWindow& w = *editor.object->GetWindow();
    ASSERT_EQ(w.AttachResource(1, u"intro.dlg", 0), S_OK);
    EXPECT_EQ((std::vector{undo.GetUndoCount(nullptr), undo.GetRedoCount(nullptr),
                           undo.GetUndoLabel(0, nullptr), undo.GetRedoLabel(0, nullptr),
                           undo.IsModified(nullptr)}),
              std::vector<HRESULT>(5, E_POINTER));
    EXPECT_EQ(undo.Undo(), S_FALSE);
    EXPECT_EQ(undo.Redo(), S_FALSE);
    EXPECT_EQ(HostView(undo), "[] [] 0");

    int total = 0;
    w.AddCommand(Add(total, 2), true);
    w.AddCommand(Add(total, 3), true);
    EXPECT_EQ(HostView(undo), "[Add 3, Add 2] [] 1");
    EXPECT_EQ(w.StateWord(), kTsEditorModified) << "the editor's state follows its stack";
    EXPECT_EQ(undo.Undo(), S_OK);
    EXPECT_EQ(HostView(undo), "[Add 2] [Add 3] 1");
    EXPECT_EQ(undo.Redo(), S_OK);
    EXPECT_EQ(total, 5);
    w.MarkUndoSaved();
    EXPECT_EQ(HostView(undo), "[Add 3, Add 2] [] 0");
    EXPECT_EQ(w.StateWord(), 0u);

    auto failing = Add(total, 4);
    failing->failUndo = true;
    w.AddCommand(std::move(failing), true);
    EXPECT_EQ(undo.Undo(), E_FAIL);
    EXPECT_EQ(HostView(undo), "[] [] 1");
    // Attaching read-only empties the history on purpose: the present state is the saved one.
    w.AddCommand(Add(total, 1), true);
    ASSERT_EQ(w.AttachResource(1, u"intro.dlg", kTsEditorReadOnly), S_OK);
    EXPECT_EQ(HostView(undo), "[] [] 0");

    ASSERT_EQ(CTsComPtr<ITsUIWindow>(editor.object.Get())->CloseUIWindow(), S_OK);
    EXPECT_EQ(CallEveryOperation(undo), std::vector<HRESULT>(7, E_FAIL));
    Editor<PreviewWindow> preview;
    ASSERT_EQ(preview.Open(), S_OK);
    EXPECT_EQ(CallEveryOperation(*preview.undo), std::vector<HRESULT>(7, E_NOTIMPL));
}

}  // namespace
