#include "agents/valuecache.h"

#include <algorithm>
#include <tuple>

#include "ts/report.h"

namespace {

// Orders condition values of the kinds a row condition may hold: by type code, then value.
bool ValueLess(const variant& a, const variant& b) {
    if (a.type() != b.type()) return a.type() < b.type();
    switch (a.type()) {
        case kTsTypeInt:
            return a.GetInt() < b.GetInt();
        case kTsTypeString:
            return a.GetString() < b.GetString();
        case kTsTypeBool:
            return a.GetBool() < b.GetBool();
        default:
            return false;
    }
}

bool ConditionsLess(const std::vector<TsRowCondition>& a, const std::vector<TsRowCondition>& b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](const TsRowCondition& x, const TsRowCondition& y) {
                                            if (x.column != y.column) return x.column < y.column;
                                            return ValueLess(x.value, y.value);
                                        });
}

}  // namespace

C2daCacheKey::C2daCacheKey(std::u16string table, std::u16string column,
                           std::vector<TsRowCondition> rowConditions, std::u16string defaultText)
    : CValueCacheKey(u"C2daCacheKey"),
      table_(std::move(table)),
      column_(std::move(column)),
      rowConditions_(std::move(rowConditions)),
      defaultText_(std::move(defaultText)) {
    for (const auto& condition : rowConditions_) {
        auto type = condition.value.type();
        if (type != kTsTypeInt && type != kTsTypeString && type != kTsTypeBool)
            Report(ReportLevel::Assert, "engine2da", __LINE__, u"Invalid row condition type");
    }
}

C2daCacheKey::C2daCacheKey(std::u16string table, std::u16string column, std::int32_t firstOption,
                           std::vector<TsRowCondition> rowConditions, std::u16string textOption,
                           std::int32_t secondOption, std::u16string defaultText,
                           std::uint32_t flag)
    : C2daCacheKey(std::move(table), std::move(column), std::move(rowConditions),
                   std::move(defaultText)) {
    firstOption_ = firstOption;
    textOption_ = std::move(textOption);
    secondOption_ = secondOption;
    flag_ = flag;
}

bool C2daCacheKey::Less(const CValueCacheKey& other) const {
    if (Kind() != other.Kind()) return CValueCacheKey::Less(other);
    const auto& o = static_cast<const C2daCacheKey&>(other);
    if (table_ != o.table_) return table_ < o.table_;
    if (column_ != o.column_) return column_ < o.column_;
    if (firstOption_ != o.firstOption_) return firstOption_ < o.firstOption_;
    if (ConditionsLess(rowConditions_, o.rowConditions_)) return true;
    if (ConditionsLess(o.rowConditions_, rowConditions_)) return false;
    return std::tie(textOption_, secondOption_, defaultText_, flag_) <
           std::tie(o.textOption_, o.secondOption_, o.defaultText_, o.flag_);
}

std::unique_ptr<CValueCacheKey> C2daCacheKey::Clone() const {
    return std::make_unique<C2daCacheKey>(*this);
}

CDbResRefCacheKey::CDbResRefCacheKey(std::uint16_t resourceType)
    : CValueCacheKey(u"CDbResRefCacheKey"), resourceType_(resourceType) {}

CDbResRefCacheKey::CDbResRefCacheKey(std::u16string_view resourceType)
    : CDbResRefCacheKey(TsAddAtom(resourceType)) {}

bool CDbResRefCacheKey::Less(const CValueCacheKey& other) const {
    if (Kind() != other.Kind()) return CValueCacheKey::Less(other);
    return resourceType_ < static_cast<const CDbResRefCacheKey&>(other).resourceType_;
}

std::unique_ptr<CValueCacheKey> CDbResRefCacheKey::Clone() const {
    return std::make_unique<CDbResRefCacheKey>(*this);
}

CValueCache& CValueCache::Process() {
    static CValueCache cache;
    return cache;
}

CValueCacheEntry& CValueCache::Entry(const CValueCacheKey& key) {
    auto it = entries_.find(key);
    if (it == entries_.end())
        it = entries_.emplace(key.Clone(), std::make_unique<CValueCacheEntry>()).first;
    return *it->second;
}

bool CValueCache::Contains(const CValueCacheKey& key) const {
    return entries_.find(key) != entries_.end();
}

bool CValueCache::Forget(const CValueCacheKey& key) {
    auto it = entries_.find(key);
    if (it == entries_.end()) return false;
    entries_.erase(it);
    return true;
}

const TsTextPairs* CValueCache::TextPairs(const CValueCacheKey& key) {
    CValueCacheEntry& entry = Entry(key);
    if (!entry.textPairsLoaded) {
        entry.textPairsLoaded = true;
        entry.textPairsOk = key.LoadTextPairs(entry.textPairs);
    }
    return entry.textPairsOk ? &entry.textPairs : nullptr;
}

const TsNumberedTexts* CValueCache::NumberedTexts(const CValueCacheKey& key) {
    CValueCacheEntry& entry = Entry(key);
    if (!entry.numberedTextsLoaded) {
        entry.numberedTextsLoaded = true;
        entry.numberedTextsOk = key.LoadNumberedTexts(entry.numberedTexts);
    }
    return entry.numberedTextsOk ? &entry.numberedTexts : nullptr;
}
