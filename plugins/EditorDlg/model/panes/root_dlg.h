#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "agents/valuecache.h"
#include "model/conversation_edits.h"
#include "model/panes/line_pane.h"

class CConversationEditorWnd;

namespace dlg {

// The "Global Settings" tab: the conversation's default speaker and listeners, and its flags
// (ambient sound set, the generation locks, owner is henchman, voice-over time restriction).
class CRootDlg : public LinePane, private ConversationEditObserver {
public:
    enum Control : int {
        kNpcSpeaker = 1,
        kNpcListener,
        kPcListener,
        kAmbientSoundSet,
        kGesturesLocked,
        kPosesLocked,
        kRoboZeltLocked,
        kCameraLocked,
        kOwnerIsHenchman,
        kVoHardTimeRestriction,
        kLastControl = kVoHardTimeRestriction,
    };
    static constexpr int kTagCount = kAmbientSoundSet - kNpcSpeaker;
    static constexpr int kBoxCount = kLastControl - kAmbientSoundSet + 1;

    // One control: the conversation field it edits, its undo label and its caption on screen.
    struct ControlInfo {
        std::u16string_view field;
        std::u16string_view label;
        std::u16string_view caption;
    };
    // By control, from kNpcSpeaker.
    static const std::array<ControlInfo, kLastControl> kControls;
    static const ControlInfo& Info(int control) { return kControls[control - kNpcSpeaker]; }

    // What the controls show; the Qt half writes the user's input here before applying.
    struct Values {
        std::array<std::u16string, kTagCount> tags;  // from kNpcSpeaker
        std::array<bool, kBoxCount> boxes{};         // from kAmbientSoundSet
        std::u16string& Tag(int control) { return tags[control - kNpcSpeaker]; }
        const std::u16string& Tag(int control) const { return tags[control - kNpcSpeaker]; }
        bool& Box(int control) { return boxes[control - kAmbientSoundSet]; }
        bool Box(int control) const { return boxes[control - kAmbientSoundSet]; }
    };

    explicit CRootDlg(CConversationEditorWnd& window, CValueCache& cache = CValueCache::Process());
    ~CRootDlg() override;
    CRootDlg(const CRootDlg&) = delete;
    CRootDlg& operator=(const CRootDlg&) = delete;

    // Shows the conversation's settings while the root is selected; anything else empties and
    // disables the pane, after applying what the controls show (without messages).
    void SetSelection(bool root, TreeItem item) override;
    bool Apply(int control, bool messages) override;

    bool HasRoot() const { return shown_; }
    bool Enabled() const;
    Values& Controls() { return values_; }
    const Values& Controls() const { return values_; }
    static bool IsTag(int control) { return control >= kNpcSpeaker && control < kAmbientSoundSet; }
    static bool IsBox(int control) {
        return control >= kAmbientSoundSet && control <= kLastControl;
    }
    // The choices of a tag box: the listener boxes also offer "PLAYER" and "PREVSPEAKER".
    std::vector<std::u16string> TagChoices(int control);

    // Counts the fills and tells the Qt half to show the values again.
    std::uint64_t Generation() const { return generation_; }
    void SetOnShow(std::function<void()> onShow) { onShow_ = std::move(onShow); }
    // Fills the controls from the stored conversation again.
    void Fill();

private:
    // Undo, redo and find and replace may change the conversation's fields: show them at once.
    void LineRefreshed(TreeItem item, int changeCode) override;
    TreeItem Root() const;
    bool Stored(int control, variant& value) const;
    bool Write(int control, variant value, int changeCode);

    CConversationEditorWnd& window_;
    CValueCache& cache_;
    bool shown_ = false;
    Values values_;
    bool filling_ = false;
    bool writing_ = false;
    bool selectOnWrite_ = true;
    std::uint64_t generation_ = 0;
    std::function<void()> onShow_;
};

}  // namespace dlg
