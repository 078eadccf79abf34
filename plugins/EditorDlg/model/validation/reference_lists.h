#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "agents/valuecache.h"

namespace dlg {

// Value lists read from resources rather than tables, kept in the value cache like the others so
// that every editor shares one read and the host's events empty them with the rest. Each opens
// its resource through the host's resource manager; a resource that is missing or can't be
// decoded makes the load fail (the second reported at WARNING).

// The flags of one plot: numbered texts (flag name, flag number) in list order; text pairs
// (flag name, number in decimal).
class CPlotFlagsCacheKey : public CValueCacheKey {
public:
    explicit CPlotFlagsCacheKey(std::u16string plot);
    bool Less(const CValueCacheKey& other) const override;
    bool LoadTextPairs(TsTextPairs& list) const override;
    bool LoadNumberedTexts(TsNumberedTexts& list) const override;
    std::unique_ptr<CValueCacheKey> Clone() const override;

private:
    std::u16string plot_;
};

// The places of one stage: text pairs (place tag, place tag) in list order; numbered texts
// (place tag, position in the list).
class CStagePlacesCacheKey : public CValueCacheKey {
public:
    explicit CStagePlacesCacheKey(std::u16string stage);
    bool Less(const CValueCacheKey& other) const override;
    bool LoadTextPairs(TsTextPairs& list) const override;
    bool LoadNumberedTexts(TsNumberedTexts& list) const override;
    std::unique_ptr<CValueCacheKey> Clone() const override;

private:
    std::u16string stage_;
};

// The tags of the module's creatures: text pairs (tag, "name.utc") in resource order; no
// numbered form. A creature that can't be read is left out (reported); a creature without a tag
// too.
class CCreatureTagsCacheKey : public CValueCacheKey {
public:
    CCreatureTagsCacheKey();
    bool LoadTextPairs(TsTextPairs& list) const override;
    bool LoadNumberedTexts(TsNumberedTexts& list) const override;
    std::unique_ptr<CValueCacheKey> Clone() const override;
};

// The name a plot or stage reference stands for: the reference itself, or without its type
// (".plo" for a plot); empty when it is not a valid resource name.
std::u16string ResolveResourceName(std::u16string_view reference, std::u16string_view type);

}  // namespace dlg
