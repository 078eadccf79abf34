#pragma once

#include <string>
#include <string_view>

#include "agents/agentbase.h"
#include "ts/text.h"

namespace ts::agents {

// Binds `found` to the first element of `owner`'s list `list` that `match` accepts, viewed as an
// `Element`; leaves it unbound and returns false when none does. A missing list is reported by
// the list operations; elements that can't be read are skipped.
template <class Element, class Match>
bool FindListElement(const CAgentBase& owner, TsAtom list, Match match, CAgentBase& found) {
    found.Unbind();
    const std::uint32_t count = owner.GetPropertyListEntryCount(list);
    for (std::uint32_t i = 0; i < count; ++i) {
        CTsComPtr<ITsProperty> node;
        if (!owner.GetPropertyFromList(list, i, node)) continue;
        Element element;
        element.Bind(node.Get());
        if (match(element)) {
            found.Bind(node.Get());
            return true;
        }
    }
    return false;
}

// The first element whose Tag equals `tag` without regard to ASCII case; tags are stored in lower
// case but the reserved ones in capitals, and users type either. An empty tag matches nothing.
template <class Element>
bool FindListElementByTag(const CAgentBase& owner, TsAtom list, std::u16string_view tag, CAgentBase& found) {
    if (tag.empty()) {
        found.Unbind();
        return false;
    }
    return FindListElement<Element>(owner, list, [tag](const Element& element) {
        std::u16string elementTag;
        return element.GetTag(elementTag) && ts::EqualsIgnoreAsciiCase(elementTag, tag);
    }, found);
}

}  // namespace ts::agents
