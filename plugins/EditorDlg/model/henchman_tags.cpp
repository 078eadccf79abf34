#include "model/henchman_tags.h"

#include "model/validation/reference_lists.h"

namespace dlg {

std::unique_ptr<CValueCacheKey> HenchmenKey() {
    return std::make_unique<C2daCacheKey>(std::u16string(kHenchmenTable),
                                          std::u16string(kHenchmenTagColumn));
}

std::u16string HenchmanTagText(std::u16string_view tag) {
    return u"HENCH:" + std::u16string(tag);
}

std::u16string HenchmanPlaceholder(std::int32_t number) {
    std::string digits = std::to_string(number);
    return u"HENCHMAN " + std::u16string(digits.begin(), digits.end());
}

bool HenchmanTags(CValueCacheAccessor& henchmen, std::int32_t maxHenchmen,
                  std::vector<std::u16string>& out) {
    out.clear();
    const TsNumberedTexts* tags = henchmen.NumberedTexts();
    if (tags) {
        for (const auto& [tag, row] : *tags)
            // A row without a tag names nobody a line could be spoken by.
            if (!tag.empty()) out.push_back(HenchmanTagText(tag));
    }
    for (std::int32_t number = 1; number <= maxHenchmen; ++number)
        out.push_back(HenchmanPlaceholder(number));
    return tags != nullptr;
}

std::vector<std::u16string> CreatureAndHenchmanTags(CValueCache& cache, std::int32_t maxHenchmen) {
    std::vector<std::u16string> tags;
    if (const TsTextPairs* creatures = cache.TextPairs(CCreatureTagsCacheKey()))
        for (const auto& pair : *creatures) tags.push_back(pair.first);
    CValueCacheAccessor henchmen(HenchmenKey(), cache);
    std::vector<std::u16string> henchmanTags;
    HenchmanTags(henchmen, maxHenchmen, henchmanTags);
    tags.insert(tags.end(), henchmanTags.begin(), henchmanTags.end());
    return tags;
}

}  // namespace dlg
