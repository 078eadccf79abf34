#include "agents/valuecache.h"
#include "ts/text.h"

CValueCacheAccessor::CValueCacheAccessor(std::unique_ptr<CValueCacheKey> key)
    : CValueCacheAccessor(std::move(key), CValueCache::Process()) {}

CValueCacheAccessor::CValueCacheAccessor(std::unique_ptr<CValueCacheKey> key, CValueCache& cache)
    : key_(std::move(key)), cache_(cache) {}

void CValueCacheAccessor::Forget() {
    cache_.Forget(*key_);
}

const TsTextPairs* CValueCacheAccessor::TextPairs() {
    return cache_.TextPairs(*key_);
}

const TsNumberedTexts* CValueCacheAccessor::NumberedTexts() {
    return cache_.NumberedTexts(*key_);
}

bool CValueCacheAccessor::CopyTextPairs(TsTextPairs& out) {
    const TsTextPairs* list = TextPairs();
    if (!list) return false;
    out = *list;
    return true;
}

bool CValueCacheAccessor::CopyNumberedTexts(TsNumberedTexts& out) {
    const TsNumberedTexts* list = NumberedTexts();
    if (!list) return false;
    out = *list;
    return true;
}

bool CValueCacheAccessor::SecondTextOf(std::u16string_view text, std::u16string& out) {
    const TsTextPairs* list = TextPairs();
    if (!list) return false;
    for (const auto& [first, second] : *list) {
        if (ts::EqualsIgnoreAsciiCase(first, text)) {
            out = second;
            return true;
        }
    }
    return false;
}

bool CValueCacheAccessor::ValueOf(std::u16string_view text, std::int32_t& out) {
    const TsNumberedTexts* list = NumberedTexts();
    if (!list) return false;
    for (const auto& [first, value] : *list) {
        if (ts::EqualsIgnoreAsciiCase(first, text)) {
            out = value;
            return true;
        }
    }
    return false;
}

bool CValueCacheAccessor::TextOfValue(std::u16string_view value, std::u16string& out) {
    const TsTextPairs* list = TextPairs();
    if (!list) return false;
    for (const auto& [first, second] : *list) {
        if (key_->TextValueEquals(second, value)) {
            out = first;
            return true;
        }
    }
    return false;
}

bool CValueCacheAccessor::TextOfValue(std::int32_t value, std::u16string& out) {
    const TsNumberedTexts* list = NumberedTexts();
    if (!list) return false;
    for (const auto& [first, stored] : *list) {
        if (key_->NumberValueEquals(stored, value)) {
            out = first;
            return true;
        }
    }
    return false;
}
