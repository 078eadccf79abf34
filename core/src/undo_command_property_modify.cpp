#include "core/undo_command_property_modify.h"

#include <utility>

CTsUndoCommandPropertyModify::CTsUndoCommandPropertyModify(std::u16string label,
                                                           CTsComPtr<ITsProperty> property,
                                                           variant before, variant after,
                                                           std::uint32_t changeFlags)
    : CTsUndoCommand(std::move(label)),
      property_(std::move(property)),
      before_(std::move(before)),
      after_(std::move(after)),
      changeFlags_(changeFlags) {}

std::unique_ptr<CTsUndoCommandPropertyModify> CTsUndoCommandPropertyModify::Make(
    std::u16string label, ITsProperty* property, variant after, std::uint32_t changeFlags) {
    if (!property) return nullptr;
    variant before;
    if (FAILED(property->GetValue(&before))) return nullptr;
    return std::make_unique<CTsUndoCommandPropertyModify>(
        std::move(label), CTsComPtr<ITsProperty>(property), std::move(before), std::move(after),
        changeFlags);
}

bool CTsUndoCommandPropertyModify::Write(const variant& value) {
    return property_ && SUCCEEDED(property_->SetValue(value));
}

bool CTsUndoCommandPropertyModify::Do(CTsUndoSupportBase&) {
    return Write(after_);
}

bool CTsUndoCommandPropertyModify::Undo(CTsUndoSupportBase&) {
    return Write(before_);
}

bool CTsUndoCommandPropertyModify::CanMerge(const CTsUndoCommand& other) const {
    const auto* modify = dynamic_cast<const CTsUndoCommandPropertyModify*>(&other);
    return modify && property_ && modify->property_.Get() == property_.Get();
}

bool CTsUndoCommandPropertyModify::Merge(CTsUndoCommand& other) {
    if (!CanMerge(other)) return false;
    after_ = static_cast<CTsUndoCommandPropertyModify&>(other).after_;
    return true;
}

bool CTsUndoCommandPropertyModify::IsEmpty() const {
    return !property_;
}

const char* CTsUndoCommandPropertyModify::KindName() const {
    return "CTsUndoCommandPropertyModify";
}
