#include "model/validation/reference_lists.h"

#include <string>

#include "agents/agentcreature.h"
#include "agents/agentplot.h"
#include "agents/agentstage.h"
#include "ts/comptr.h"
#include "ts/hostcomponents.h"
#include "ts/hoststring.h"
#include "ts/report.h"
#include "ts/resourcemanager.h"
#include "ts/resourcestore.h"
#include "ts/text.h"

namespace dlg {

namespace {

// The root of a resource of the module; null when there is none by that name or it can't be
// decoded (the second is worth a line in the log: someone has a broken resource).
CTsComPtr<ITsProperty> OpenRoot(ITsResourceManager& manager, std::u16string_view name,
                                std::u16string_view type) {
    CTsComPtr<ITsResource> resource;
    CTsComPtr<ITsProperty> root;
    HRESULT hr = manager.OpenResource(name, type, resource.Put());
    if (SUCCEEDED(hr)) hr = resource->GetRootProperty(root.Put());
    if (FAILED(hr)) {
        if (hr != TS_E_NOT_FOUND) {
            CTsHostString error;
            manager.GetLastErrorText(error.Put());
            Report(ReportLevel::Warning, __FILE__, __LINE__, error.View());
        }
        root.Reset();
    }
    return root;
}

std::u16string Decimal(std::int32_t value) {
    std::string digits = std::to_string(value);
    return std::u16string(digits.begin(), digits.end());
}

// Reads the named resource's list through `each(element agent)`; false when it doesn't open.
template <class Owner, class Element, class Each>
bool ReadList(std::u16string_view name, std::u16string_view type,
              std::uint32_t (Owner::*count)() const,
              bool (Owner::*item)(std::uint32_t, CTsComPtr<ITsProperty>&) const, Each each) {
    CTsComPtr<ITsResourceManager> manager = TsHostResourceManager();
    if (!manager) return false;
    CTsComPtr<ITsProperty> root = OpenRoot(*manager, ResolveResourceName(name, type), type);
    if (!root) return false;
    Owner owner;
    owner.Bind(root.Get());
    const std::uint32_t n = (owner.*count)();
    for (std::uint32_t i = 0; i < n; ++i) {
        CTsComPtr<ITsProperty> node;
        if (!(owner.*item)(i, node)) continue;
        Element element;
        element.Bind(node.Get());
        each(element, i);
    }
    return true;
}

template <class Key>
bool LessByName(const CValueCacheKey& a, const CValueCacheKey& b, std::u16string Key::*name) {
    if (a.Kind() != b.Kind()) return a.CValueCacheKey::Less(b);
    return static_cast<const Key&>(a).*name < static_cast<const Key&>(b).*name;
}

}  // namespace

std::u16string ResolveResourceName(std::u16string_view reference, std::u16string_view type) {
    std::u16string_view name = reference;
    if (name.size() > type.size() + 1 && name[name.size() - type.size() - 1] == u'.' &&
        ts::EqualsIgnoreAsciiCase(name.substr(name.size() - type.size()), type))
        name.remove_suffix(type.size() + 1);
    return ts::IsValidResourceName(name) ? std::u16string(name) : std::u16string();
}

CPlotFlagsCacheKey::CPlotFlagsCacheKey(std::u16string plot)
    : CValueCacheKey(u"CPlotFlagsCacheKey"), plot_(std::move(plot)) {}

bool CPlotFlagsCacheKey::Less(const CValueCacheKey& other) const {
    return LessByName(*this, other, &CPlotFlagsCacheKey::plot_);
}

std::unique_ptr<CValueCacheKey> CPlotFlagsCacheKey::Clone() const {
    return std::make_unique<CPlotFlagsCacheKey>(*this);
}

bool CPlotFlagsCacheKey::LoadNumberedTexts(TsNumberedTexts& list) const {
    return ReadList<CAgentPlot, CAgentPlotStatus>(
        plot_, u"plo", &CAgentPlot::StatusListCount, &CAgentPlot::GetStatusListItem,
        [&](const CAgentPlotStatus& status, std::uint32_t) {
            std::int32_t flag = 0;
            std::u16string name;
            if (status.GetFlag(flag) && status.GetName(name))
                list.emplace_back(std::move(name), flag);
        });
}

bool CPlotFlagsCacheKey::LoadTextPairs(TsTextPairs& list) const {
    TsNumberedTexts numbered;
    if (!LoadNumberedTexts(numbered)) return false;
    for (auto& [name, flag] : numbered) list.emplace_back(std::move(name), Decimal(flag));
    return true;
}

CStagePlacesCacheKey::CStagePlacesCacheKey(std::u16string stage)
    : CValueCacheKey(u"CStagePlacesCacheKey"), stage_(std::move(stage)) {}

bool CStagePlacesCacheKey::Less(const CValueCacheKey& other) const {
    return LessByName(*this, other, &CStagePlacesCacheKey::stage_);
}

std::unique_ptr<CValueCacheKey> CStagePlacesCacheKey::Clone() const {
    return std::make_unique<CStagePlacesCacheKey>(*this);
}

bool CStagePlacesCacheKey::LoadNumberedTexts(TsNumberedTexts& list) const {
    return ReadList<CAgentStage, CAgentStagePlace>(
        stage_, u"stg", &CAgentStage::PlaceListCount, &CAgentStage::GetPlaceListItem,
        [&](const CAgentStagePlace& place, std::uint32_t index) {
            std::u16string tag;
            if (place.GetTag(tag))
                list.emplace_back(std::move(tag), static_cast<std::int32_t>(index));
        });
}

bool CStagePlacesCacheKey::LoadTextPairs(TsTextPairs& list) const {
    TsNumberedTexts numbered;
    if (!LoadNumberedTexts(numbered)) return false;
    for (auto& [tag, index] : numbered) list.emplace_back(tag, tag);
    return true;
}

CCreatureTagsCacheKey::CCreatureTagsCacheKey() : CValueCacheKey(u"CCreatureTagsCacheKey") {}

std::unique_ptr<CValueCacheKey> CCreatureTagsCacheKey::Clone() const {
    return std::make_unique<CCreatureTagsCacheKey>(*this);
}

bool CCreatureTagsCacheKey::LoadTextPairs(TsTextPairs& list) const {
    CTsComPtr<ITsResourceManager> manager = TsHostResourceManager();
    if (!manager) return false;
    std::vector<ts::ResourceInfo> creatures;
    if (FAILED(manager->ListResources(u"utc", &creatures))) return false;
    for (const ts::ResourceInfo& info : creatures) {
        CTsComPtr<ITsProperty> root = OpenRoot(*manager, info.name, info.type);
        if (!root) continue;
        CAgentCreature creature;
        creature.Bind(root.Get());
        std::u16string tag;
        if (creature.GetTag(tag) && !tag.empty())
            list.emplace_back(std::move(tag), info.name + u"." + info.type);
    }
    return true;
}

bool CCreatureTagsCacheKey::LoadNumberedTexts(TsNumberedTexts&) const {
    return false;
}

}  // namespace dlg
