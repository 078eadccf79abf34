#include "model/editing/vo_guard.h"

#include "ts/comptr.h"
#include "ts/hostcomponents.h"
#include "ts/hostui.h"
#include "ts/resourcemanager.h"

namespace dlg {

namespace {

bool AskYesNo(std::u16string_view question) {
    return TsMessageBox(question, u"", MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2) == IDYES;
}

std::int32_t StringIdOf(const ConversationNode& node) {
    std::int32_t id = -1;
    node.line.GetStringID(id);
    return id;
}

}  // namespace

bool VoGuard::IsSent(std::int32_t stringId) {
    return Sent(stringId, nullptr);
}

bool VoGuard::Sent(std::int32_t stringId, bool* reRecordPending) {
    if (stringId < 0 || noQuestion_.count(stringId)) return false;
    CTsComPtr<ITsResourceManager> manager = TsHostResourceManager();
    ts::VORecordingStatus status;
    bool sent = manager && manager->GetVORecordingStatus(stringId, &status) == S_OK &&
                status.sentForRecordingOn != 0;
    if (!sent) noQuestion_.insert(stringId);
    if (reRecordPending) *reRecordPending = sent && status.requiresReRecording;
    return sent;
}

bool VoGuard::MayChangeText(const ConversationNode& line) {
    std::int32_t id = StringIdOf(line.Shown());
    // A recording already due to be made again loses nothing more by another change.
    bool reRecordPending = false;
    if (!Sent(id, &reRecordPending) || reRecordPending) return true;
    if (!AskYesNo(kLineQuestion)) return false;
    noQuestion_.insert(id);
    return true;
}

bool VoGuard::MayChangeBranch(const ConversationTree& tree, TreeItem top) {
    const ItemTree& items = tree.Items();
    TreeItem end = tree.SubtreeEnd(top);
    for (TreeItem i = top; i != kNoItem && i != end; i = items.NextInPreOrder(i)) {
        const ConversationNode* node = tree.NodeOf(i);
        if (node && !node->isLink && IsSent(StringIdOf(*node))) return AskYesNo(kBranchQuestion);
    }
    return true;
}

}  // namespace dlg
