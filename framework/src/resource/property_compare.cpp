#include "ts/propertycompare.h"

#include <unordered_map>

#include "ts/format.h"
#include "ts/hoststring.h"

namespace ts {

namespace {

std::u16string Attribute(ITsProperty* node, std::uint32_t which) {
    CTsHostString text;
    node->GetAttribute(static_cast<TsPropertyAttribute>(which), text.Put());
    return std::u16string(text.View());
}

constexpr const char16_t* kAttributeNames[] = {u"display name", u"category", u"sub-category",
                                               u"description", u"editor kind"};

class Comparer {
public:
    explicit Comparer(std::u16string* difference) : difference_(difference) {}

    bool Equal(ITsProperty* a, ITsProperty* b, const std::u16string& path,
               const std::u16string& position) {
        if (!a || !b) return a == b || Differ(path, u"one side has no node");
        std::u16string here = path + TsGetAtomName(a->GetNameAtom()) + position;
        if (a->GetNameAtom() != b->GetNameAtom())
            return Differ(here,
                          Format(u"the names differ (%ls, %ls)", TsGetAtomName(a->GetNameAtom()),
                                 TsGetAtomName(b->GetNameAtom())));
        if (a->GetType() != b->GetType())
            return Differ(here,
                          Format(u"the type codes differ (%u, %u)", a->GetType(), b->GetType()));
        if (a->GetFlags() != b->GetFlags())
            return Differ(here, Format(u"the flags differ (%u, %u)", a->GetFlags(), b->GetFlags()));
        for (std::uint32_t i = 0; i < kTsPropertyAttributeCount; ++i)
            if (Attribute(a, i) != Attribute(b, i))
                return Differ(here, Format(u"the %ls differs (\"%ls\", \"%ls\")",
                                           kAttributeNames[i], Attribute(a, i), Attribute(b, i)));
        if (a->GetType() != kTsTypeList) {
            variant va, vb;
            a->GetValue(&va);
            b->GetValue(&vb);
            return va == vb || Differ(here, u"the values differ");
        }
        ITsProperty* const* ca = nullptr;
        ITsProperty* const* cb = nullptr;
        std::uint32_t na = 0, nb = 0;
        a->GetChildArray(&ca, &na);
        b->GetChildArray(&cb, &nb);
        if (na != nb) return Differ(here, Format(u"the child counts differ (%u, %u)", na, nb));
        // Children that share a name (the elements of a list) are told apart by their ordinal.
        std::unordered_map<TsAtom, std::uint32_t> total, seen;
        for (std::uint32_t i = 0; i < na; ++i) ++total[ca[i]->GetNameAtom()];
        for (std::uint32_t i = 0; i < na; ++i) {
            TsAtom name = ca[i]->GetNameAtom();
            std::uint32_t ordinal = seen[name]++;
            if (!Equal(ca[i], cb[i], here + u"/",
                       total[name] > 1 ? Format(u"[%u]", ordinal) : std::u16string()))
                return false;
        }
        return true;
    }

private:
    bool Differ(const std::u16string& where, const std::u16string& what) {
        if (difference_) *difference_ = where + u": " + what;
        return false;
    }

    std::u16string* difference_;
};

}  // namespace

bool PropertyTreesEqual(ITsProperty* a, ITsProperty* b, std::u16string* difference) {
    return Comparer(difference).Equal(a, b, {}, {});
}

}  // namespace ts
