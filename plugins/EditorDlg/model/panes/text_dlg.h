#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "agents/valuecache.h"
#include "model/conversation_edits.h"
#include "model/panes/line_pane.h"
#include "model/panes/line_string_ids.h"
#include "model/panes/pane_tags.h"

class CConversationEditorWnd;

namespace dlg {

struct ConversationNode;

// The "Dialogue" tab: a line's text, speaker, listener, language, icon, flags and fast path,
// with the line's voice-over and translation status.
class CTextDlg : public LinePane, private ConversationEditObserver {
public:
    enum Control : int {
        kText = 1,
        kSpeaker,
        kListener,
        kLanguage,
        kIcon,
        kReTranslation,
        kReRecord,
        kNoVoInGame,
        kNarration,
        kFastPath,
        kLastControl = kFastPath,
    };

    static constexpr std::u16string_view kDefaultTag = dlg::kDefaultTag;
    static constexpr std::u16string_view kNoFastPath = u"(none)";
    // Fast paths are numbered 1 to this; 0 is none.
    static constexpr std::int32_t kMaxFastPath = 9;
    static constexpr std::u16string_view kInvalidTag = dlg::kInvalidTag;
    static constexpr std::u16string_view kStringIdFailed = u"Could not validate string ID.";

    // What the controls show; the Qt half writes the user's input here before applying.
    struct Values {
        std::u16string text;
        std::u16string speaker;
        std::u16string listener;
        std::int32_t language = 0;
        std::int32_t icon = 0;
        bool reTranslation = false;
        bool reRecord = false;
        bool noVoInGame = false;
        bool narration = false;
        std::int32_t fastPath = 0;
    };

    explicit CTextDlg(CConversationEditorWnd& window, CValueCache& cache = CValueCache::Process());
    ~CTextDlg() override;
    CTextDlg(const CTextDlg&) = delete;
    CTextDlg& operator=(const CTextDlg&) = delete;

    // Applies what the controls show to the line selected so far (without messages), then
    // fills the controls from the new selection; only a line is shown, anything else empties
    // and disables the pane.
    void SetSelection(bool root, TreeItem item) override;
    bool Apply(int control, bool messages) override;
    bool OwnsField(int field) const override;

    // A line is shown, and may be edited (not in a read-only editor).
    bool HasLine() const { return item_ != kNoItem; }
    bool Enabled() const;
    TreeItem Item() const { return item_; }
    bool IsPlayerLine() const;
    Values& Controls() { return values_; }
    const Values& Controls() const { return values_; }

    // The choices of the speaker and listener combos ("(default)" first; a player line's
    // speaker is "PLAYER" alone), of the language and icon combos (from their tables, as
    // text and row id) and of the fast path combo.
    std::vector<std::u16string> SpeakerChoices();
    std::vector<std::u16string> ListenerChoices();
    CValueCacheAccessor& Languages() { return languages_; }
    CValueCacheAccessor& Icons() { return icons_; }
    static std::vector<std::u16string> FastPathChoices();

    // Read-only status texts; empty without a line. VoSent() paints the voice-over status on
    // the "VORecordedColor" background.
    const std::u16string& VoStatus() const { return voStatus_; }
    bool VoSent() const { return voSent_; }
    const std::u16string& TranslationStatus() const { return translationStatus_; }

    // Set when a text change asks the view to refresh the pane shortly after (500 ms), then
    // cleared by the view taking it.
    bool TakeRefreshRequest();
    // Counts the times the pane changed what its controls show (a fill, a text put back), and
    // tells the Qt half to show the values again.
    std::uint64_t Generation() const { return generation_; }
    void SetOnShow(std::function<void()> onShow) { onShow_ = std::move(onShow); }

    // Fills the controls and the status texts from the stored line again.
    void Fill();

private:
    // A change of the shown line made elsewhere (undo, redo, find and replace) shows at once, so
    // that stale controls never write an old value back.
    void LineRefreshed(TreeItem item, int changeCode) override;
    void StructureChanged() override { stringIds_.Forget(); }
    ConversationNode* Node() const;
    bool ApplyText(bool messages);
    bool ApplyTag(bool speaker, bool messages);
    bool ApplyFlag(std::u16string_view field, bool value, std::u16string_view label);
    bool ApplyNumber(std::u16string_view field, std::int32_t value, std::u16string_view label,
                     int changeCode, CValueCacheAccessor* table);
    bool Write(std::u16string label, std::u16string_view field, variant value, int changeCode);
    void FillStatus();
    void Announce();

    CConversationEditorWnd& window_;
    CValueCache& cache_;
    CValueCacheAccessor languages_;
    CValueCacheAccessor icons_;
    TreeItem item_ = kNoItem;
    Values values_;
    bool filling_ = false;
    // Set while the pane's own commands run: the other controls keep what the user typed.
    bool writing_ = false;
    // While the selection moves away, commands leave the tree's selection where the user put it.
    bool selectOnWrite_ = true;
    bool refreshRequested_ = false;
    std::uint64_t generation_ = 0;
    std::function<void()> onShow_;
    LineStringIds stringIds_;
    std::u16string voStatus_;
    bool voSent_ = false;
    std::u16string translationStatus_;
};

// A day count (days since 30 December 1899, fractions being the time of day) as YYYY-MM-DD.
std::u16string FormatDay(double days);

}  // namespace dlg
