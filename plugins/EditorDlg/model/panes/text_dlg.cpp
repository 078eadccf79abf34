#include "model/panes/text_dlg.h"

#include <algorithm>
#include <cmath>

#include "core/undo_command_group.h"
#include "model/conversation_editor_wnd.h"
#include "model/dlg_editor_settings.h"
#include "model/line_properties.h"
#include "model/panes/pane_tags.h"
#include "model/text_tags.h"
#include "model/undo/undo_command_modify_node.h"
#include "model/validation/reference_lists.h"
#include "model/validation/replacement_check.h"
#include "ts/comptr.h"
#include "ts/format.h"
#include "ts/hostcomponents.h"
#include "ts/hoststring.h"
#include "ts/hostui.h"
#include "ts/resourcemanager.h"
#include "ts/text.h"

namespace dlg {

namespace {

std::u16string StatusText(double sentOn, bool again, std::u16string_view sent,
                          std::u16string_view againText, std::u16string_view notSent) {
    if (sentOn == 0) return std::u16string(notSent);
    std::u16string text = ts::Format(sent, FormatDay(sentOn));
    if (again) text += u"  " + std::u16string(againText);
    return text;
}

}  // namespace

std::u16string FormatDay(double days) {
    // Days since 1899-12-30 to a civil date (the proleptic Gregorian calendar); a stored value
    // no calendar can hold is shown as it is.
    if (!std::isfinite(days) || std::fabs(days) > 1e8) return ts::Utf8ToUtf16(std::to_string(days));
    long long z =
        static_cast<long long>(std::floor(days)) - 25569 + 719468;  // to 1970, to 0000-03-01
    long long era = (z >= 0 ? z : z - 146096) / 146097;
    long long doe = z - era * 146097;
    long long yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    long long y = yoe + era * 400;
    long long doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    long long mp = (5 * doy + 2) / 153;
    long long d = doy - (153 * mp + 2) / 5 + 1;
    long long m = mp < 10 ? mp + 3 : mp - 9;
    if (m <= 2) ++y;
    char buffer[80];
    std::snprintf(buffer, sizeof buffer, "%04lld-%02lld-%02lld", y, m, d);
    return ts::Utf8ToUtf16(buffer);
}

CTextDlg::CTextDlg(CConversationEditorWnd& window, CValueCache& cache)
    : window_(window),
      cache_(cache),
      languages_(std::make_unique<C2daCacheKey>(u"toolset_dlglang", u"LanguageName"), cache),
      icons_(std::make_unique<C2daCacheKey>(u"toolset_dlgicons", u"Label"), cache) {
    window_.Document().Edits().AddObserver(this);
}

CTextDlg::~CTextDlg() {
    window_.Document().Edits().RemoveObserver(this);
}

void CTextDlg::LineRefreshed(TreeItem item, int) {
    const ConversationNode* changed = window_.Document().Tree().NodeOf(item);
    if (changed) stringIds_.LineChanged(window_.Document().Tree(), *changed);
    if (writing_ || filling_) return;
    const ConversationNode* shown = Node();
    if (shown && changed && &changed->Shown() == &shown->Shown()) Fill();
}

ConversationNode* CTextDlg::Node() const {
    // A line taken out of the tree (deleted, or reloaded away) is no longer edited here.
    const ConversationTree& tree = window_.Document().Tree();
    return item_ == kNoItem || !tree.Items().IsInTree(item_) ? nullptr : tree.NodeOf(item_);
}

bool CTextDlg::Enabled() const {
    return item_ != kNoItem && !window_.IsReadOnly();
}

bool CTextDlg::IsPlayerLine() const {
    const ConversationNode* node = Node();
    return node && !node->isNPC;
}

void CTextDlg::SetSelection(bool root, TreeItem item) {
    TreeItem next = root ? kNoItem : item;
    if (!window_.Document().Tree().NodeOf(next)) next = kNoItem;
    if (item_ != kNoItem && next != item_ && Node() && !window_.UndoRunning()) {
        selectOnWrite_ = false;
        Apply(kAllControls, false);
        selectOnWrite_ = true;
    }
    item_ = next;
    Fill();
}

void CTextDlg::Fill() {
    filling_ = true;
    values_ = {};
    if (const ConversationNode* node = Node()) {
        const CAgentConversationLine& line = node->Shown().line;
        line.GetText(values_.text);
        line.GetSpeaker(values_.speaker);
        line.GetListener(values_.listener);
        if (!node->isNPC) values_.speaker = u"PLAYER";
        if (values_.speaker.empty()) values_.speaker = kDefaultTag;
        if (values_.listener.empty()) values_.listener = kDefaultTag;
        line.GetLanguageID(values_.language);
        line.GetIcon(values_.icon);
        line.GetTextRequiresReTranslation(values_.reTranslation);
        line.GetTextRequiresReRecording(values_.reRecord);
        line.GetNoVOInGame(values_.noVoInGame);
        line.GetNarration(values_.narration);
        line.GetFastPath(values_.fastPath);
    }
    FillStatus();
    filling_ = false;
    Announce();
}

void CTextDlg::FillStatus() {
    voStatus_.clear();
    translationStatus_.clear();
    voSent_ = false;
    const ConversationNode* node = Node();
    if (!node) return;
    std::int32_t id = -1;
    node->Shown().line.GetStringID(id);
    CTsComPtr<ITsResourceManager> manager = TsHostResourceManager();
    if (!manager) return;
    // A record that cannot be read leaves its text empty rather than claim "not sent".
    ts::VORecordingStatus vo;
    if (SUCCEEDED(manager->GetVORecordingStatus(id, &vo))) {
        voSent_ = vo.sentForRecordingOn != 0;
        voStatus_ = StatusText(vo.sentForRecordingOn, vo.requiresReRecording,
                               u"Sent for VO Recording on %ls.", u"Requires re-recording.",
                               u"Not VO Recorded yet.");
    }
    ts::LocalizationStatus localization;
    if (SUCCEEDED(manager->GetLocalizationStatus(id, &localization)))
        translationStatus_ = StatusText(localization.exportedOn, localization.requiresReTranslation,
                                        u"Sent for translation on %ls.",
                                        u"Requires re-translation.", u"Not translated yet.");
}

void CTextDlg::Announce() {
    ++generation_;
    if (onShow_) onShow_();
}

bool CTextDlg::TakeRefreshRequest() {
    bool requested = refreshRequested_;
    refreshRequested_ = false;
    return requested;
}

bool CTextDlg::OwnsField(int field) const {
    switch (field) {
        case kPropText:
        case kPropSpeaker:
        case kPropListener:
        case kPropLanguage:
        case kPropIcon:
            return true;
        default:
            return false;
    }
}

bool CTextDlg::Apply(int control, bool messages) {
    if (filling_ || !Node()) return false;
    if (control == kAllControls) {
        bool changed = false;
        for (int c = kText; c <= kLastControl; ++c) changed = Apply(c, messages) || changed;
        return changed;
    }
    const Values v = values_;
    switch (control) {
        case kText:
            return ApplyText(messages);
        case kSpeaker:
            return ApplyTag(true, messages);
        case kListener:
            return ApplyTag(false, messages);
        case kLanguage:
            return ApplyNumber(u"LanguageID", v.language, u"Language Change", kChangeNone,
                               &languages_);
        case kIcon:
            return ApplyNumber(u"Icon", v.icon, u"Icon Change", kChangeLabel, &icons_);
        case kReTranslation:
            return ApplyFlag(u"TextRequiresReTranslation", v.reTranslation,
                             u"Requires ReTranslation Change");
        case kReRecord:
            return ApplyFlag(u"TextRequiresReRecording", v.reRecord,
                             u"Requires VO ReRecord Change");
        case kNoVoInGame:
            return ApplyFlag(u"NoVOInGame", v.noVoInGame, u"No VO In Game Change");
        case kNarration:
            return ApplyFlag(u"Narration", v.narration, u"Narration Change");
        case kFastPath:
            if (v.fastPath < 0 || v.fastPath > kMaxFastPath) return false;
            return ApplyNumber(u"FastPath", v.fastPath, u"fast path change", kChangeLabel, nullptr);
        default:
            return false;
    }
}

bool CTextDlg::Write(std::u16string label, std::u16string_view field, variant value,
                     int changeCode) {
    auto command =
        CUndoCommandModifyNode::ForField(std::move(label), window_.Document().Edits(), item_, field,
                                         std::move(value), changeCode, selectOnWrite_);
    return PerformPaneCommand(window_, std::move(command), writing_);
}

bool CTextDlg::ApplyFlag(std::u16string_view field, bool value, std::u16string_view label) {
    CTsComPtr<ITsProperty> property = FieldOf(window_.Document().Edits(), item_, field);
    variant stored;
    if (!property || FAILED(property->GetValue(&stored))) return false;
    if (stored.GetBool() == value) return false;
    return Write(std::u16string(label), field, variant(kTsTypeBool, value), kChangeNone);
}

bool CTextDlg::ApplyNumber(std::u16string_view field, std::int32_t value, std::u16string_view label,
                           int changeCode, CValueCacheAccessor* table) {
    CTsComPtr<ITsProperty> property = FieldOf(window_.Document().Edits(), item_, field);
    variant stored;
    if (!property || FAILED(property->GetValue(&stored))) return false;
    if (stored.GetInt() == value) return false;
    if (table) {
        // Only a row of the table may be chosen; a table that cannot be read offers none.
        const TsNumberedTexts* rows = table->NumberedTexts();
        if (!rows || std::none_of(rows->begin(), rows->end(),
                                  [&](const auto& row) { return row.second == value; }))
            return false;
    }
    return Write(std::u16string(label), field, variant(kTsTypeInt, value), changeCode);
}

std::vector<std::u16string> CTextDlg::SpeakerChoices() {
    if (IsPlayerLine()) return {u"PLAYER"};
    return TagChoices(cache_, false);
}

std::vector<std::u16string> CTextDlg::ListenerChoices() {
    return TagChoices(cache_, true);
}

std::vector<std::u16string> CTextDlg::FastPathChoices() {
    std::vector<std::u16string> choices{std::u16string(kNoFastPath)};
    for (std::int32_t i = 1; i <= kMaxFastPath; ++i)
        choices.push_back(ts::Utf8ToUtf16(std::to_string(i)));
    return choices;
}

bool CTextDlg::ApplyTag(bool speaker, bool messages) {
    ConversationNode* node = Node();
    const CAgentConversationLine& line = node->Shown().line;
    std::u16string stored;
    if (speaker)
        line.GetSpeaker(stored);
    else
        line.GetListener(stored);
    std::u16string typed = speaker ? values_.speaker : values_.listener;
    if (speaker && !node->isNPC) typed = u"PLAYER";
    std::optional<std::u16string> value =
        TagToWrite(window_, cache_, typed, stored, !speaker, messages);
    if (!value) return false;
    if (speaker)
        return Write(u"Speaker Change", u"Speaker", variant(kTsTypeString, *value), kChangeSpeaker);
    return Write(u"Listener Change", u"Listener", variant(kTsTypeString, *value), kChangeLabel);
}

bool CTextDlg::ApplyText(bool messages) {
    ConversationNode* node = Node();
    const ConversationNode& shown = node->Shown();
    std::u16string stored;
    shown.line.GetText(stored);
    if (values_.text == stored) return false;
    if (!TextTagsAreValid(values_.text, window_.KnownTags())) {
        if (messages) TsMessageBox(kMalformedTagsPaneMessage, u"", MB_OK | MB_ICONERROR);
        return false;
    }
    bool reRecord = false;
    shown.line.GetTextRequiresReRecording(reRecord);
    if (!reRecord && !window_.Vo().MayChangeText(shown)) {
        values_.text = stored;
        Announce();
        return false;
    }

    std::int32_t id = -1;
    shown.line.GetStringID(id);
    // A line copied from another keeps its string id; its own text needs an id of its own. The
    // copies in this conversation are counted here (the stored one may be older).
    if (id >= 0 && stringIds_.Count(window_.Document().Tree(), id) > 1) id = -1;
    CTsComPtr<ITsResourceManager> manager = TsHostResourceManager();
    std::int32_t valid = -1;
    // The module's other conversations may hold a copy of this line under the same id.
    if (!manager || FAILED(manager->ValidateLineStringId(window_.DisplayName(), id, &valid))) {
        TsLogWindowOutput(kStringIdFailed);
        // The service's own words say what to do about it (a damaged or read-only module).
        char16_t* reason = nullptr;
        if (manager && SUCCEEDED(manager->GetLastErrorText(&reason)) && reason && *reason)
            TsLogWindowOutput(reason);
        TsFreeString(reason);
        return false;
    }

    auto group = std::make_unique<CTsUndoCommandGroup>(u"Text Change");
    ConversationEdits& edits = window_.Document().Edits();
    group->Add(CUndoCommandModifyNode::ForField(
        u"Requires ReTranslation Change", edits, item_, u"TextRequiresReTranslation",
        variant(kTsTypeBool, true), kChangeNone, selectOnWrite_));
    group->Add(CUndoCommandModifyNode::ForField(
        u"Requires VO ReRecord Change", edits, item_, u"TextRequiresReRecording",
        variant(kTsTypeBool, true), kChangeNone, selectOnWrite_));
    group->Add(CUndoCommandModifyNode::ForField(u"Requires String ID Change", edits, item_,
                                                u"StringID", variant(kTsTypeInt, valid),
                                                kChangeNone, selectOnWrite_));
    group->Add(CUndoCommandModifyNode::ForField(u"Requires Text Change", edits, item_, u"Text",
                                                variant(kTsTypeString, values_.text), kChangeText,
                                                selectOnWrite_));
    if (group->Count() != 4) return false;
    bool done = PerformPaneCommand(window_, std::move(group), writing_);
    if (!done) return false;
    values_.reTranslation = true;
    values_.reRecord = true;
    refreshRequested_ = true;
    Announce();
    return true;
}

}  // namespace dlg
