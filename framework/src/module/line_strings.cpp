#include "ts/linestrings.h"

#include "ts/atoms.h"
#include "ts/comptr.h"
#include "ts/variant.h"

namespace ts {

void CollectLineStrings(ITsProperty* root, std::vector<LineString>& strings) {
    static const TsAtom kStringId = TsAddAtom(u"StringID");
    static const TsAtom kText = TsAddAtom(u"Text");
    static const TsAtom kLanguage = TsAddAtom(u"LanguageID");
    // A walk with a stack of its own: resources may nest deeply, and a record's lines come in
    // the order they are stored.
    std::vector<ITsProperty*> pending;
    if (root) pending.push_back(root);
    while (!pending.empty()) {
        ITsProperty* node = pending.back();
        pending.pop_back();
        if (node->GetType() != kTsTypeList) continue;
        CTsComPtr<ITsProperty> id, text, language;
        if (SUCCEEDED(node->FindChild(kStringId, 0, id.Put())) && id->GetType() == kTsTypeInt &&
            SUCCEEDED(node->FindChild(kText, 0, text.Put())) &&
            TsAccessorGroup(text->GetType()) == kTsTypeString) {
            variant idValue, textValue, languageValue(kTsTypeInt, 0);
            id->GetValue(&idValue);
            text->GetValue(&textValue);
            if (SUCCEEDED(node->FindChild(kLanguage, 0, language.Put())) &&
                language->GetType() == kTsTypeInt)
                language->GetValue(&languageValue);
            if (idValue.GetInt() >= 0)
                strings.push_back({idValue.GetInt(), languageValue.GetInt(),
                                   std::u16string(textValue.GetString())});
        }
        ITsProperty* const* children = nullptr;
        std::uint32_t count = 0;
        node->GetChildArray(&children, &count);
        for (std::uint32_t i = count; i > 0; --i) pending.push_back(children[i - 1]);
    }
}

StoreResult StoreLineStrings(ResourceStore& store, ITsProperty* root) {
    std::vector<LineString> strings;
    CollectLineStrings(root, strings);
    for (const LineString& s : strings)
        if (auto r = store.SetString(s.stringId, s.language, s.text); !r) return r;
    return StoreResult::Success();
}

}  // namespace ts
