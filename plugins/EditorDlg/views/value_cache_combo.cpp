#include "views/value_cache_combo.h"

#include <QSignalBlocker>

namespace dlg {

void CValueCacheCombo::Fill(CValueCacheAccessor& list) {
    QSignalBlocker quiet(this);
    clear();
    if (const TsNumberedTexts* rows = list.NumberedTexts())
        for (const auto& [text, number] : *rows)
            addItem(QString::fromStdU16String(text), QVariant(number));
}

void CValueCacheCombo::SelectValue(std::int32_t value) {
    QSignalBlocker quiet(this);
    setCurrentIndex(findData(QVariant(value)));
}

std::int32_t CValueCacheCombo::Value(std::int32_t otherwise) const {
    QVariant data = currentData();
    return data.isValid() ? data.toInt() : otherwise;
}

}  // namespace dlg
