#include "model/conversation_document.h"

namespace dlg {

const std::u16string_view ConversationDocument::kReferenceTypes[5] = {u"nss", u"plo", u"stg",
                                                                      u"cut", u"are"};

namespace {

bool IsWhiteSpace(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F ||
           c == 0x205F || c == 0x3000;
}

void Add(std::set<std::u16string>& into, std::u16string value) {
    if (!value.empty()) into.insert(std::move(value));
}

}  // namespace

std::int32_t CountWords(std::u16string_view text) {
    std::int32_t words = 0;
    bool inWord = false;
    for (char16_t c : text) {
        bool space = IsWhiteSpace(c);
        if (!space && !inWord) ++words;
        inWord = !space;
    }
    return words;
}

bool ConversationDocument::Load(ITsProperty* root, std::u16string& error) {
    wordCount_ = -1;
    ClearReferences();
    bool built = tree_.Build(root, error);
    edits_.Reindex();
    validation_.TakeChanged();
    if (built) edits_.ValidateAll();
    return built;
}

std::int32_t ConversationDocument::WordCount(bool force) {
    if (wordCount_ >= 0 && !force) return wordCount_;
    std::int32_t count = 0;
    const ItemTree& items = tree_.Items();
    for (TreeItem item = tree_.RootItem(); item != kNoItem; item = items.NextInPreOrder(item)) {
        ConversationNode* node = tree_.NodeOf(item);
        if (!node || node->isLink) continue;
        std::u16string text;
        node->line.GetText(text);
        count += CountWords(text);
    }
    wordCount_ = count;
    return count;
}

const std::set<std::u16string>& ConversationDocument::References(TsAtom type) const {
    static const std::set<std::u16string> kNone;
    auto it = references_.find(type);
    return it == references_.end() ? kNone : it->second;
}

void ConversationDocument::CollectReferences() {
    auto& scripts = references_[TsAddAtom(kReferenceTypes[0])];
    auto& plots = references_[TsAddAtom(kReferenceTypes[1])];
    auto& stages = references_[TsAddAtom(kReferenceTypes[2])];
    auto& cutscenes = references_[TsAddAtom(kReferenceTypes[3])];
    auto& areas = references_[TsAddAtom(kReferenceTypes[4])];
    if (!IsLoaded()) return;

    const CAgentConversation& root = tree_.Root();
    std::u16string value;
    if (root.GetEndConversationScriptURI(value)) Add(scripts, value);
    if (root.GetEndConversationPlotURI(value)) Add(plots, value);
    if (root.GetStageURI(value)) Add(stages, value);
    if (root.GetPreviewAreaURI(value)) Add(areas, value);

    const ItemTree& items = tree_.Items();
    for (TreeItem item = items.GetChild(tree_.RootItem()); item != kNoItem;
         item = items.NextInPreOrder(item)) {
        ConversationNode* node = tree_.NodeOf(item);
        if (!node || node->isLink) continue;  // a link's line is its target's, counted there
        const CAgentConversationLine& line = node->line;
        if (line.GetConditionScriptURI(value)) Add(scripts, value);
        if (line.GetActionScriptURI(value)) Add(scripts, value);
        if (line.GetConditionPlotURI(value)) Add(plots, value);
        if (line.GetActionPlotURI(value)) Add(plots, value);
        if (line.GetStageURI(value)) Add(stages, value);
        if (line.GetCustomCutsceneURI(value)) Add(cutscenes, value);
        if (line.GetPreviewAreaURI(value)) Add(areas, value);
    }
}

void ConversationDocument::Refresh() {
    ClearReferences();
    tree_.UpdateAmbient(tree_.RootItem());
    edits_.ValidateAll();
    tree_.RefreshAll();
}

}  // namespace dlg
