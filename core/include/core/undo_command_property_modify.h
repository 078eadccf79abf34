#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "core/undo_command.h"
#include "ts/comptr.h"
#include "ts/property.h"
#include "ts/variant.h"

// Sets one property node's value: Do writes the after-value, Undo the before-value. A run of
// edits to one node merges into one step that keeps the first before-value and the last
// after-value. The change flags are the caller's word about what changed (the editor's change
// code); the command only carries them.
class CTsUndoCommandPropertyModify : public CTsUndoCommand {
public:
    CTsUndoCommandPropertyModify(std::u16string label, CTsComPtr<ITsProperty> property,
                                 variant before, variant after, std::uint32_t changeFlags = 0);

    // A command whose before-value is the node's present value; null when the node is null or
    // its value can't be read (a list node has none).
    static std::unique_ptr<CTsUndoCommandPropertyModify> Make(std::u16string label,
                                                              ITsProperty* property, variant after,
                                                              std::uint32_t changeFlags = 0);

    const CTsComPtr<ITsProperty>& Property() const { return property_; }
    const variant& Before() const { return before_; }
    const variant& After() const { return after_; }
    std::uint32_t ChangeFlags() const { return changeFlags_; }

    // Both fail when the node is null or refuses the value (a value of another type).
    bool Do(CTsUndoSupportBase& stack) override;
    bool Undo(CTsUndoSupportBase& stack) override;
    // The other sets the same node (the same object, not an equal one).
    bool CanMerge(const CTsUndoCommand& other) const override;
    // Takes the other's after-value.
    bool Merge(CTsUndoCommand& other) override;
    // No node to set.
    bool IsEmpty() const override;
    const char* KindName() const override;

private:
    bool Write(const variant& value);

    CTsComPtr<ITsProperty> property_;
    variant before_;
    variant after_;
    std::uint32_t changeFlags_;
};
