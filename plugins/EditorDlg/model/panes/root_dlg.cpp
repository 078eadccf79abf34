#include "model/panes/root_dlg.h"

#include "model/conversation_editor_wnd.h"
#include "model/panes/pane_tags.h"
#include "model/panes/settings_dlg.h"
#include "model/undo/undo_command_modify_node.h"

namespace dlg {

const std::array<CRootDlg::ControlInfo, CRootDlg::kLastControl> CRootDlg::kControls{{
    {u"DefaultNPCSpeaker", u"Default NPC Speaker Change", u"Default NPC speaker"},
    {u"DefaultNPCListener", u"Default NPC Listener Change", u"Default NPC listener"},
    {u"DefaultPCListener", u"Default PC Listener Change", u"Default PC listener"},
    {u"AmbientSoundSetType", u"AmbientSoundSetType Change", u"Ambient sound set"},
    {u"AllGesturesLocked", u"Gestures Locked Change", u"Gestures locked"},
    {u"AllPosesLocked", u"Poses Locked Change", u"Poses locked"},
    {u"AllRoboZeltLocked", u"RoboZelt Locked Change", u"Automatic gestures locked"},
    {u"AllCameraLocked", u"Camera Locked Change", u"Cameras locked"},
    {u"OwnerIsHenchman", u"Owner Is Henchman Locked Change", u"Owner is a henchman"},
    {u"VOHardTimeRestriction", u"VO Hard Time Restriction Change", u"VO hard time restriction"},
}};

CRootDlg::CRootDlg(CConversationEditorWnd& window, CValueCache& cache)
    : window_(window), cache_(cache) {
    window_.Document().Edits().AddObserver(this);
}

CRootDlg::~CRootDlg() {
    window_.Document().Edits().RemoveObserver(this);
}

TreeItem CRootDlg::Root() const {
    return window_.Document().Tree().RootItem();
}

bool CRootDlg::Enabled() const {
    return shown_ && !window_.IsReadOnly();
}

void CRootDlg::LineRefreshed(TreeItem item, int) {
    if (shown_ && !writing_ && !filling_ && item == Root()) Fill();
}

void CRootDlg::SetSelection(bool root, TreeItem) {
    bool next = root && Root() != kNoItem;
    // The root item outlives a load, so the pane-apply switch (off while loading) decides whether
    // what the controls show still belongs to the conversation.
    if (shown_ && !next && !window_.UndoRunning() && window_.Panes().PaneApply()) {
        selectOnWrite_ = false;
        Apply(kAllControls, false);
        selectOnWrite_ = true;
    }
    shown_ = next;
    Fill();
}

bool CRootDlg::Stored(int control, variant& value) const {
    CTsComPtr<ITsProperty> property =
        FieldOf(window_.Document().Edits(), Root(), Info(control).field);
    return property && SUCCEEDED(property->GetValue(&value));
}

void CRootDlg::Fill() {
    filling_ = true;
    values_ = {};
    if (shown_ && Root() != kNoItem) {
        for (int c = kNpcSpeaker; c <= kLastControl; ++c) {
            variant stored;
            if (!Stored(c, stored)) continue;
            if (IsTag(c)) {
                values_.Tag(c) = stored.GetString();
                if (values_.Tag(c).empty()) values_.Tag(c) = kDefaultTag;
            } else {
                values_.Box(c) = stored.GetBool();
            }
        }
    }
    filling_ = false;
    ++generation_;
    if (onShow_) onShow_();
}

std::vector<std::u16string> CRootDlg::TagChoices(int control) {
    return dlg::TagChoices(cache_, control != kNpcSpeaker);
}

bool CRootDlg::Apply(int control, bool messages) {
    if (filling_ || !shown_ || Root() == kNoItem) return false;
    if (control == kAllControls) {
        bool changed = false;
        for (int c = kNpcSpeaker; c <= kLastControl; ++c) changed = Apply(c, messages) || changed;
        return changed;
    }
    variant stored;
    if (IsTag(control)) {
        if (!Stored(control, stored)) return false;
        std::optional<std::u16string> value =
            TagToWrite(window_, cache_, values_.Tag(control), stored.GetString(),
                       control != kNpcSpeaker, messages);
        // Every line that speaks by default shows the new tag.
        return value && Write(control, variant(kTsTypeString, *value), kChangeAll);
    }
    if (IsBox(control)) {
        if (!Stored(control, stored) || stored.GetBool() == values_.Box(control)) return false;
        return Write(control, variant(kTsTypeBool, values_.Box(control)), kChangeNone);
    }
    return false;
}

bool CRootDlg::Write(int control, variant value, int changeCode) {
    auto command = CUndoCommandModifyNode::ForField(
        std::u16string(Info(control).label), window_.Document().Edits(), Root(),
        Info(control).field, std::move(value), changeCode, selectOnWrite_);
    return PerformPaneCommand(window_, std::move(command), writing_);
}

}  // namespace dlg
