#include "model/conversation_tree.h"

#include <memory>

#include "model/dlg_editor_settings.h"
#include "model/node_label.h"
#include "model/tree_growth.h"
#include "ts/format.h"
#include "ts/report.h"

namespace dlg {

namespace {

constexpr const char* kSource = "ConversationEditorWnd";
constexpr int kRootImage = 1;

const TsAtom& StartListAtom() {
    static const TsAtom atom = TsAddAtom(u"StartList");
    return atom;
}
const TsAtom& NPCLineListAtom() {
    static const TsAtom atom = TsAddAtom(u"NPCLineList");
    return atom;
}
const TsAtom& PlayerLineListAtom() {
    static const TsAtom atom = TsAddAtom(u"PlayerLineList");
    return atom;
}
const TsAtom& TransitionListAtom() {
    static const TsAtom atom = TsAddAtom(u"TransitionList");
    return atom;
}

// One step of the depth-first build: insert a line under a parent, or (exit) leave a line's
// subtree, so that a line can tell whether it is already on the current path.
struct BuildStep {
    TreeItem parent;
    std::uint32_t index;
    bool npc;
    bool link;
    bool exit;
};

// Empties a list field of the agent; false when it is missing.
bool EmptyList(const CAgentBase& agent, TsAtom list) {
    CTsComPtr<ITsProperty> node;
    return agent.FindProperty(list, 0, node) && SUCCEEDED(node->Reset());
}

}  // namespace

ConversationNode* ConversationTree::NodeOf(TreeItem item) const {
    return static_cast<ConversationNode*>(items_.GetData(item));
}

ConversationNode* ConversationTree::RequireNode(TreeItem item) const {
    ConversationNode* node = NodeOf(item);
    if (!node) Report(ReportLevel::Assert, kSource, __LINE__, u"Unable to get node address");
    return node;
}

ConversationNode* ConversationTree::NodeAt(std::int32_t treeIndex) const {
    if (treeIndex < 0 || std::size_t(treeIndex) >= byTreeIndex_.size()) return nullptr;
    return byTreeIndex_[std::size_t(treeIndex)];
}

bool ConversationTree::Build(ITsProperty* resource, std::u16string& error) {
    items_.DeleteAllItems();
    byTreeIndex_.clear();
    rootFaults_.clear();
    rootErrorText_.clear();
    root_.Bind(resource);
    error.clear();
    TreeItem rootItem = items_.InsertItem(kNoItem, kInsertLast, u"Root");
    items_.SetImage(rootItem, kRootImage);

    std::vector<ConversationNode*> npcTable(root_.NPCLineListCount(), nullptr);
    std::vector<ConversationNode*> playerTable(root_.PlayerLineListCount(), nullptr);
    std::vector<bool> npcOnPath(npcTable.size()), playerOnPath(playerTable.size());
    std::vector<ConversationNode*> pendingLinks;
    auto fail = [&](std::u16string message) {
        error = std::move(message);
        items_.DeleteAllItems();
        root_.Unbind();
        return false;
    };
    // Lines owned more than once are copied under each owner; refuse before building when
    // that would grow the tree far beyond the conversation.
    if (std::u16string growth; !CheckTreeGrowth(root_, growth)) return fail(std::move(growth));

    std::vector<BuildStep> steps;
    for (std::uint32_t i = root_.StartListCount(); i-- > 0;) {
        CTsComPtr<ITsProperty> entry;
        CAgentConversationStart start;
        std::int32_t index = -1;
        if (!root_.GetStartListItem(i, entry))
            return fail(u"The conversation's start list cannot be read.");
        start.Bind(entry.Get());
        start.GetLineIndex(index);
        steps.push_back({rootItem, static_cast<std::uint32_t>(index), true, false, false});
    }

    while (!steps.empty()) {
        BuildStep step = steps.back();
        steps.pop_back();
        auto& onPath = step.npc ? npcOnPath : playerOnPath;
        if (step.exit) {
            onPath[step.index] = false;
            continue;
        }
        const char16_t* kind = step.npc ? u"NPC" : u"PC";
        if (!step.link && step.index >= onPath.size())
            return fail(ts::Format(u"%ls line [%d] does not exist: the conversation is damaged.",
                                   kind, static_cast<std::int32_t>(step.index)));
        if (!step.link && onPath[step.index])
            return fail(ts::Format(u"%ls line [%d] contains itself: the conversation is damaged.",
                                   kind, static_cast<std::int32_t>(step.index)));

        ConversationNode* node = InsertLine(step.parent, step.index, step.npc, step.link, npcTable,
                                            playerTable, pendingLinks);
        if (!node)
            return fail(ts::Format(u"%ls line [%d] cannot be read.", kind,
                                   static_cast<std::int32_t>(step.index)));
        if (step.link) continue;

        onPath[step.index] = true;
        steps.push_back({step.parent, step.index, step.npc, false, true});
        std::uint32_t transitions = node->line.TransitionListCount();
        for (std::uint32_t t = transitions; t-- > 0;) {
            CTsComPtr<ITsProperty> entry;
            if (!node->line.GetTransitionListItem(t, entry))
                return fail(ts::Format(u"%ls line [%d] has a damaged transition list.", kind,
                                       static_cast<std::int32_t>(step.index)));
            CAgentConversationTransition transition;
            transition.Bind(entry.Get());
            bool isLink = false;
            std::int32_t index = -1;
            transition.GetIsLink(isLink);
            transition.GetLineIndex(index);
            steps.push_back(
                {node->treeItem, static_cast<std::uint32_t>(index), !step.npc, isLink, false});
        }
    }

    for (ConversationNode* link : pendingLinks) {
        auto& table = link->isNPC ? npcTable : playerTable;
        ConversationNode* target =
            link->lineIndex < table.size() ? table[link->lineIndex] : nullptr;
        if (!target)
            return fail(ts::Format(
                u"%ls link refers to source ID [%d] which does not exist.  This is a toolset bug.",
                link->isNPC ? u"NPC" : u"PC", static_cast<std::int32_t>(link->lineIndex)));
        link->linkTarget = target;
        link->line.Bind(target->line.GetNode());
    }

    Renumber();
    UpdateAmbient(rootItem);
    RefreshAll();
    return true;
}

ConversationNode* ConversationTree::InsertLine(TreeItem parent, std::uint32_t index, bool npc,
                                               bool link, std::vector<ConversationNode*>& npcTable,
                                               std::vector<ConversationNode*>& playerTable,
                                               std::vector<ConversationNode*>& pendingLinks) {
    // A link owns no line: it takes its target's once links are resolved.
    CTsComPtr<ITsProperty> lineNode;
    bool read = link || (npc ? root_.GetNPCLineListItem(index, lineNode)
                             : root_.GetPlayerLineListItem(index, lineNode));
    if (!read) return nullptr;
    auto& table = npc ? npcTable : playerTable;
    // A line with a second full item gets a record of its own, so that each full item writes
    // back its own line and transitions.
    if (!link && table[index]) {
        CTsComPtr<ITsProperty> copy;
        if (FAILED(lineNode->Clone(kTsCloneDeep, copy.Put()))) return nullptr;
        lineNode = copy;
    }

    auto owned = std::make_unique<ConversationNode>();
    ConversationNode* node = owned.get();
    node->lineIndex = index;
    node->isNPC = npc;
    node->isLink = link;
    node->line.Bind(lineNode.Get());
    node->treeItem = items_.InsertItem(parent, kInsertLast, std::u16string(), std::move(owned));
    if (link)
        pendingLinks.push_back(node);
    else
        table[index] = node;
    return node;
}

namespace {

// A copy of the conversation's root for writing back: its own fields copied, its start and line
// lists new and empty. Nothing of it is shared with the open conversation.
CTsComPtr<ITsProperty> CopyRootWithoutLines(ITsProperty* source) {
    CTsComPtr<ITsProperty> root;
    if (!source || FAILED(source->Clone(kTsCloneShallow, root.Put()))) return {};
    std::uint32_t count = 0;
    ITsProperty* const* children = nullptr;
    if (FAILED(root->GetChildArray(&children, &count))) return {};
    for (std::uint32_t i = 0; i < count; ++i) {
        CTsComPtr<ITsProperty> child;
        if (FAILED(root->GetChildAt(i, child.Put()))) return {};
        TsAtom name = child->GetNameAtom();
        bool lines =
            name == StartListAtom() || name == NPCLineListAtom() || name == PlayerLineListAtom();
        CTsComPtr<ITsProperty> copy;
        if (FAILED(child->Clone(lines ? kTsCloneShallow : kTsCloneDeep, copy.Put())) ||
            (lines && FAILED(copy->Reset())) || FAILED(root->RemoveChildAt(i)) ||
            FAILED(root->InsertChild(i, copy.Get())))
            return {};
    }
    return root;
}

}  // namespace

bool ConversationTree::WriteBack(CAgentConversation& target) const {
    target.Unbind();
    TreeItem rootItem = RootItem();
    CTsComPtr<ITsProperty> root = CopyRootWithoutLines(root_.GetNode());
    if (!root) return false;
    CAgentConversation written;
    written.Bind(root.Get());

    // The numbering must be current: it keys the tables below.
    std::vector<std::uint32_t> lineIndex(byTreeIndex_.size(), 0);
    std::vector<CTsComPtr<ITsProperty>> copies(byTreeIndex_.size());
    auto numbered = [&](const ConversationNode* node) {
        return node->TreeIndex > 0 && std::size_t(node->TreeIndex) < byTreeIndex_.size() &&
               byTreeIndex_[std::size_t(node->TreeIndex)] == node;
    };

    // Pass 1: copies of the lines in depth-first order of their full items.
    std::uint32_t npcCount = 0, playerCount = 0;
    for (TreeItem item = items_.GetChild(rootItem); item != kNoItem;
         item = items_.NextInPreOrder(item)) {
        ConversationNode* node = NodeOf(item);
        if (!node || !numbered(node)) {
            Report(ReportLevel::Assert, kSource, __LINE__, u"Unable to get data from tree node");
            return false;
        }
        if (node->isLink) continue;
        auto at = std::size_t(node->TreeIndex);
        CTsComPtr<ITsProperty> copy;
        if (!node->line.GetNode() || FAILED(node->line.GetNode()->Clone(kTsCloneDeep, copy.Put())))
            return false;
        CAgentConversationLine line;
        line.Bind(copy.Get());
        if (!EmptyList(line, TransitionListAtom()) ||
            !written.AddItemToPropertyList(copy.Get(),
                                           node->isNPC ? NPCLineListAtom() : PlayerLineListAtom()))
            return false;
        lineIndex[at] = node->isNPC ? npcCount++ : playerCount++;
        copies[at] = std::move(copy);
    }

    // Pass 2: links take their target's new index; a link to a line that is not in the tree
    // cannot be written.
    for (TreeItem item = items_.GetChild(rootItem); item != kNoItem;
         item = items_.NextInPreOrder(item)) {
        ConversationNode* node = NodeOf(item);
        if (!node->isLink) continue;
        if (!node->linkTarget || !numbered(node->linkTarget) || node->linkTarget->isLink) {
            Report(ReportLevel::Assert, kSource, __LINE__, u"A link refers to no line");
            return false;
        }
        lineIndex[std::size_t(node->TreeIndex)] =
            lineIndex[std::size_t(node->linkTarget->TreeIndex)];
    }

    // Pass 3: starts and transitions. New entries are copies of one prototype each, which is
    // much cheaper than declaring every entry's fields anew.
    CAgentConversationStart startPrototype;
    CAgentConversationTransition transitionPrototype;
    if (!startPrototype.CreateOn(nullptr) || !transitionPrototype.CreateOn(nullptr)) return false;
    for (TreeItem item = rootItem; item != kNoItem; item = items_.NextInPreOrder(item)) {
        ConversationNode* node = item == rootItem ? nullptr : NodeOf(item);
        if (node && node->isLink) continue;
        CAgentConversationLine line;
        if (node) line.Bind(copies[std::size_t(node->TreeIndex)].Get());
        for (TreeItem childItem = items_.GetChild(item); childItem != kNoItem;
             childItem = items_.GetNextSibling(childItem)) {
            ConversationNode* child = NodeOf(childItem);
            if (!child) {
                Report(ReportLevel::Assert, kSource, __LINE__, u"l_pChild == NULL");
                return false;
            }
            CTsComPtr<ITsProperty> entry;
            auto index = static_cast<std::int32_t>(lineIndex[std::size_t(child->TreeIndex)]);
            if (!node) {
                if (FAILED(startPrototype.GetNode()->Clone(kTsCloneDeep, entry.Put())))
                    return false;
                CAgentConversationStart start;
                start.Bind(entry.Get());
                if (!start.SetLineIndex(index) ||
                    !written.AddItemToPropertyList(entry.Get(), StartListAtom()))
                    return false;
            } else {
                if (FAILED(transitionPrototype.GetNode()->Clone(kTsCloneDeep, entry.Put())))
                    return false;
                CAgentConversationTransition transition;
                transition.Bind(entry.Get());
                if (!transition.SetIsLink(child->isLink) || !transition.SetLineIndex(index) ||
                    !line.AddItemToPropertyList(entry.Get(), TransitionListAtom()))
                    return false;
            }
        }
    }
    target.Bind(root.Get());
    return true;
}

void ConversationTree::Renumber() {
    byTreeIndex_.clear();
    TreeItem rootItem = RootItem();
    if (rootItem == kNoItem) return;
    byTreeIndex_.push_back(nullptr);
    for (TreeItem item = items_.GetChild(rootItem); item != kNoItem;
         item = items_.NextInPreOrder(item)) {
        ConversationNode* node = NodeOf(item);
        if (node) node->TreeIndex = static_cast<std::int32_t>(byTreeIndex_.size());
        byTreeIndex_.push_back(node);
    }
}

TreeItem ConversationTree::SubtreeEnd(TreeItem item) const {
    for (TreeItem i = item; i != kNoItem; i = items_.GetParent(i))
        if (TreeItem next = items_.GetNextSibling(i)) return next;
    return kNoItem;
}

void ConversationTree::UpdateAmbient(TreeItem from) {
    TreeItem end = SubtreeEnd(from);
    for (TreeItem item = from; item != kNoItem && item != end; item = items_.NextInPreOrder(item)) {
        ConversationNode* node = NodeOf(item);
        if (!node) continue;
        // Parents come first in pre-order, so their flag is already up to date.
        ConversationNode* parent = NodeOf(items_.GetParent(item));
        bool own = false;
        if (!node->isLink) node->line.GetAmbient(own);
        node->isAmbient = own || (parent && parent->isAmbient);
    }
}

std::u16string ConversationTree::LabelOf(ConversationNode& node) const {
    const ConversationNode& shown = node.Shown();
    std::u16string text, speaker, comment, owner;
    shown.line.GetText(text);
    if (shown.isNPC) {
        shown.line.GetSpeaker(speaker);
        shown.line.GetComment(comment);
        if (speaker.empty()) root_.GetDefaultNPCSpeaker(owner);
    }
    Label label =
        MakeLabel({shown.isNPC, text, speaker, comment, owner, items_.HasChildren(shown.treeItem)});
    node.isComment = label.isComment;
    return label.text;
}

void ConversationTree::RefreshColours(TreeItem item) {
    const DlgEditorSettings& s = TheDlgEditorSettings();
    ConversationNode* node = NodeOf(item);
    if (!node) {
        bool faulty = item == RootItem() && !rootErrorText_.empty();
        items_.SetColours(item, kNoColour, faulty ? ToScreenColour(s.ErrorColor) : kNoColour);
        return;
    }
    const ConversationNode& shown = node->Shown();
    SettingsColour text = node->isLink  ? s.LinkColor
                          : node->isNPC ? (node->isComment ? s.NPCCommentColor : s.NPCColor)
                                        : s.PCColor;
    std::uint32_t back = kNoColour;
    if (node->isAmbient) back = ToScreenColour(s.AmbientColor);
    if (!shown.errorText.empty()) back = ToScreenColour(s.ErrorColor);
    items_.SetColours(item, ToScreenColour(text), back);
}

void ConversationTree::RefreshItem(TreeItem item) {
    if (ConversationNode* node = NodeOf(item)) items_.SetText(item, LabelOf(*node));
    RefreshColours(item);
}

void ConversationTree::RefreshAllColours() {
    for (TreeItem item = RootItem(); item != kNoItem; item = items_.NextInPreOrder(item))
        RefreshColours(item);
}

void ConversationTree::RefreshSubtree(TreeItem from) {
    TreeItem end = SubtreeEnd(from);
    for (TreeItem item = from; item != kNoItem && item != end; item = items_.NextInPreOrder(item))
        RefreshItem(item);
}

}  // namespace dlg
