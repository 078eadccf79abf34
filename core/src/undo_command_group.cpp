#include "core/undo_command_group.h"

#include <deque>
#include <optional>

#include "ts/report.h"

namespace {
constexpr std::size_t kNone = static_cast<std::size_t>(-1);
}

void CTsUndoCommandGroup::Add(std::unique_ptr<CTsUndoCommand> child) {
    if (!child) {
        Report(ReportLevel::Assert, "toolsmfcimpls", __LINE__,
               u"A null command cannot be added to an undo group");
        return;
    }
    children_.push_back(std::move(child));
}

bool CTsUndoCommandGroup::Do(CTsUndoSupportBase& stack) {
    for (std::size_t i = 0; i < children_.size(); ++i) {
        if (children_[i]->DoWithNotify(stack)) continue;
        // Turn back what this attempt changed, newest first. A child that can't be turned back
        // leaves nothing better to do than to go on with the others.
        for (std::size_t j = i; j-- > 0;) children_[j]->UndoWithNotify(stack);
        return false;
    }
    return true;
}

bool CTsUndoCommandGroup::Undo(CTsUndoSupportBase& stack) {
    for (std::size_t i = children_.size(); i-- > 0;) {
        if (children_[i]->UndoWithNotify(stack)) continue;
        for (std::size_t j = i + 1; j < children_.size(); ++j) children_[j]->DoWithNotify(stack);
        return false;
    }
    return true;
}

std::optional<std::vector<std::size_t>> CTsUndoCommandGroup::Pairing(
    const CTsUndoCommandGroup& other) const {
    const std::size_t n = children_.size();
    if (other.children_.size() != n) return std::nullopt;

    // The usual case: the same fields in the same order.
    std::vector<std::size_t> partner(n);
    bool inOrder = true;
    for (std::size_t i = 0; i < n && inOrder; ++i) {
        inOrder = children_[i]->CanMerge(*other.children_[i]);
        partner[i] = i;
    }
    if (inOrder) return partner;

    // Otherwise a one-to-one pairing of children that can merge, found by augmenting paths
    // (a first-come pairing could miss one that exists).
    std::vector<std::vector<bool>> fits(n, std::vector<bool>(n));
    for (std::size_t i = 0; i < n; ++i)
        for (std::size_t j = 0; j < n; ++j)
            fits[i][j] = children_[i]->CanMerge(*other.children_[j]);
    std::vector<std::size_t> ofOther(n, kNone);  // partner here of each child there
    partner.assign(n, kNone);
    for (std::size_t start = 0; start < n; ++start) {
        std::vector<std::size_t> reachedFrom(n, kNone);  // per child there
        std::deque<std::size_t> queue{start};
        std::size_t freeEnd = kNone;
        while (!queue.empty() && freeEnd == kNone) {
            std::size_t i = queue.front();
            queue.pop_front();
            for (std::size_t j = 0; j < n; ++j) {
                if (!fits[i][j] || reachedFrom[j] != kNone) continue;
                reachedFrom[j] = i;
                if (ofOther[j] == kNone) {
                    freeEnd = j;
                    break;
                }
                queue.push_back(ofOther[j]);
            }
        }
        if (freeEnd == kNone) return std::nullopt;
        for (std::size_t j = freeEnd; j != kNone;) {
            std::size_t i = reachedFrom[j];
            std::size_t previous = partner[i];
            partner[i] = j;
            ofOther[j] = i;
            j = previous;
        }
    }
    return partner;
}

bool CTsUndoCommandGroup::CanMerge(const CTsUndoCommand& other) const {
    const auto* group = dynamic_cast<const CTsUndoCommandGroup*>(&other);
    return group && Pairing(*group).has_value();
}

bool CTsUndoCommandGroup::Merge(CTsUndoCommand& other) {
    auto* group = dynamic_cast<CTsUndoCommandGroup*>(&other);
    if (!group) return false;
    std::optional<std::vector<std::size_t>> partner = Pairing(*group);
    if (!partner) return false;
    bool merged = true;
    for (std::size_t i = 0; i < children_.size(); ++i)
        merged = children_[i]->Merge(*group->children_[(*partner)[i]]) && merged;
    return merged;
}

bool CTsUndoCommandGroup::IsEmpty() const {
    return children_.empty();
}

const char* CTsUndoCommandGroup::KindName() const {
    return "CTsUndoCommandGroup";
}
