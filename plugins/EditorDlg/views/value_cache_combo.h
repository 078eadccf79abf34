#pragma once

#include <QComboBox>

#include "agents/valuecache.h"

namespace dlg {

// A combo box offering the rows of a value-cache list: each row's text, with its number as the
// item's data. A list that cannot be read leaves the combo empty (the cache has reported why).
class CValueCacheCombo : public QComboBox {
    Q_OBJECT
public:
    explicit CValueCacheCombo(QWidget* parent = nullptr) : QComboBox(parent) {}

    void Fill(CValueCacheAccessor& list);
    // Selects the row numbered `value`; none (index -1) when the list has no such row.
    void SelectValue(std::int32_t value);
    // The number of the selected row, or `otherwise` without one.
    std::int32_t Value(std::int32_t otherwise) const;
};

}  // namespace dlg
