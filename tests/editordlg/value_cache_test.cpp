// The process-wide value cache: keys ordered by kind and fields, one entry per key with its own
// copy of the key, each list read once, and the library's host events that empty it.
#include <gtest/gtest.h>

#include <functional>

#include "agents/valuecache.h"
#include "model/plugin_events.h"
#include "support/fake_resource.h"
#include "support/report_capture.h"
#include "ts/events.h"
#include "ts/text.h"

namespace {

using ts::test::ReportCapture;

// A key whose lists come from the test, counting how often each is read.
struct CountingKey : CValueCacheKey {
    CountingKey(int id, int* reads, bool succeed = true)
        : CValueCacheKey(u"CountingKey"), id(id), reads(reads), succeed(succeed) {}
    bool Less(const CValueCacheKey& other) const override {
        if (Kind() != other.Kind()) return CValueCacheKey::Less(other);
        return id < static_cast<const CountingKey&>(other).id;
    }
    bool LoadTextPairs(TsTextPairs& list) const override {
        list = {{u"OWNER", u"owner"}, {u"PLAYER", u"player"}};
        return ++*reads, succeed;
    }
    bool LoadNumberedTexts(TsNumberedTexts& list) const override {
        list = {{u"Neutral", 0}, {u"Angry", 1}};
        return ++*reads, succeed;
    }
    std::unique_ptr<CValueCacheKey> Clone() const override {
        return std::make_unique<CountingKey>(*this);
    }
    int id;
    int* reads;
    bool succeed;
};

TEST(ValueCacheKeys, OrderByKindThenByEveryField) {
    const C2daCacheKey appearance(u"appearance", u"MODELTREE");
    const C2daCacheKey column(u"appearance", u"MOVEMENTTREE");
    const C2daCacheKey condition1(u"appearance", u"MODELTREE", {{u"Use", variant(kTsTypeInt, 1)}});
    const C2daCacheKey condition2(u"appearance", u"MODELTREE", {{u"Use", variant(kTsTypeInt, 2)}});
    const C2daCacheKey withDefault(u"appearance", u"MODELTREE", {}, u"(none)");
    const CDbResRefCacheKey scripts(2009), plots(2010);
    const CValueCacheKey* distinct[] = {&appearance,  &column,  &condition1, &condition2,
                                        &withDefault, &scripts, &plots};
    auto equivalent = [](const CValueCacheKey& a, const CValueCacheKey& b) {
        return !a.Less(b) && !b.Less(a);
    };
    EXPECT_TRUE(equivalent(appearance, C2daCacheKey(u"appearance", u"MODELTREE")));
    for (auto* a : distinct)
        for (auto* b : distinct) EXPECT_EQ(equivalent(*a, *b), a == b);
    // Keys of different kinds order by kind, whatever their fields.
    EXPECT_EQ(appearance.Less(scripts), appearance.Kind() < scripts.Kind());
    EXPECT_TRUE(equivalent(*condition1.Clone(), condition1));
}

TEST(ValueCache, ReadsEachListOnceKeepsItsOwnKeyAndRemembersFailures) {
    CValueCache cache;
    int reads = 0;
    const TsTextPairs* pairs = nullptr;
    {
        CountingKey key(1, &reads);
        pairs = cache.TextPairs(key);
        ASSERT_NE(pairs, nullptr);
    }
    // The caller's key is gone; the cache answers from its copy.
    CountingKey equal(1, &reads);
    EXPECT_EQ(cache.TextPairs(equal), pairs);
    EXPECT_EQ(reads, 1);
    EXPECT_EQ(pairs->at(0).first, u"OWNER");

    // The other form is read on its own first request.
    const TsNumberedTexts* numbered = cache.NumberedTexts(equal);
    ASSERT_NE(numbered, nullptr);
    EXPECT_EQ(numbered->at(1), (std::pair<std::u16string, std::int32_t>{u"Angry", 1}));
    cache.NumberedTexts(equal);
    EXPECT_EQ(reads, 2);

    // Forgetting one entry makes its next request read again.
    CountingKey another(2, &reads);
    cache.TextPairs(another);
    EXPECT_EQ(cache.Size(), 2u);
    EXPECT_TRUE(cache.Forget(equal));
    EXPECT_FALSE(cache.Forget(equal));
    EXPECT_TRUE(cache.Contains(another));
    cache.TextPairs(equal);
    EXPECT_EQ(reads, 4);

    // A failed read is not retried until the cache is emptied.
    CountingKey failing(3, &reads, false);
    EXPECT_EQ(cache.TextPairs(failing), nullptr);
    EXPECT_EQ(cache.TextPairs(failing), nullptr);
    EXPECT_EQ(reads, 5);
    cache.Clear();
    EXPECT_EQ(cache.Size(), 0u);
    EXPECT_EQ(cache.TextPairs(failing), nullptr);
    EXPECT_EQ(reads, 6);

    // The library's own keys read through the host's services, and say so when there are none.
    ReportCapture reports;
    EXPECT_EQ(cache.NumberedTexts(C2daCacheKey(u"toolset_dlglang", u"LanguageName")), nullptr);
    EXPECT_EQ(reports.Count(u"Accesing invalid 2DA plugin"), 1u);
    EXPECT_EQ(cache.TextPairs(CDbResRefCacheKey(u"plo")), nullptr);
    EXPECT_EQ(reports.Count(u"Accesing invalid resource manager"), 1u);
    // A number that is no atom names no type: failing beats listing every resource.
    EXPECT_EQ(cache.TextPairs(CDbResRefCacheKey(std::uint16_t{2009})), nullptr);
    EXPECT_EQ(reports.Count(u"Unknown resource type atom 2009"), 1u);
}

TEST(ValueCacheAccessor, LooksUpByFoldedTextOrByValueAndAnswersFalseWithoutAList) {
    CValueCache cache;
    int reads = 0;
    CValueCacheAccessor owners(std::make_unique<CountingKey>(1, &reads), cache);
    CValueCacheAccessor same(std::make_unique<CountingKey>(1, &reads), cache);
    CValueCacheAccessor failing(std::make_unique<CountingKey>(2, &reads, false), cache);

    std::u16string text = u"unchanged";
    std::int32_t value = -7;
    EXPECT_TRUE(owners.SecondTextOf(u"owner", text));
    EXPECT_EQ(text, u"owner");
    EXPECT_TRUE(same.TextOfValue(std::u16string_view(u"player"), text));
    EXPECT_EQ(text, u"PLAYER");
    // Values compare exactly unless the key says otherwise.
    EXPECT_FALSE(same.TextOfValue(std::u16string_view(u"PLAYER"), text));
    EXPECT_TRUE(owners.ValueOf(u"aNGRY", value));
    EXPECT_EQ(value, 1);
    EXPECT_TRUE(same.TextOfValue(0, text));
    EXPECT_EQ(text, u"Neutral");
    EXPECT_EQ(same.TextPairs(), owners.TextPairs());
    EXPECT_EQ(reads, 2);  // one read per form, shared by both accessors

    struct Miss {
        const char* what;
        std::function<bool(CValueCacheAccessor&)> lookup;
    };
    const Miss misses[] = {
        {"second text", [&](CValueCacheAccessor& a) { return a.SecondTextOf(u"OWNERS", text); }},
        {"value", [&](CValueCacheAccessor& a) { return a.ValueOf(u"Neutra", value); }},
        {"text of text", [&](CValueCacheAccessor& a) { return a.TextOfValue(u"nobody", text); }},
        {"text of number", [&](CValueCacheAccessor& a) { return a.TextOfValue(5, text); }},
    };
    text = u"unchanged";
    value = -7;
    for (const auto& miss : misses) {
        EXPECT_FALSE(miss.lookup(owners)) << miss.what;
        // A failed read answers false even where the list would have matched.
        EXPECT_FALSE(miss.lookup(failing)) << miss.what;
    }
    EXPECT_FALSE(failing.SecondTextOf(u"OWNER", text));
    EXPECT_FALSE(failing.TextOfValue(0, text));
    EXPECT_EQ(text, u"unchanged");
    EXPECT_EQ(value, -7);
    TsTextPairs pairs{{u"kept", u"kept"}};
    TsNumberedTexts numbered{{u"kept", 3}};
    EXPECT_FALSE(failing.CopyTextPairs(pairs));
    EXPECT_FALSE(failing.CopyNumberedTexts(numbered));
    EXPECT_EQ(pairs.size(), 1u);
    EXPECT_EQ(numbered.size(), 1u);
    EXPECT_EQ(reads, 4);  // the failed key tried each form once

    ASSERT_TRUE(owners.CopyNumberedTexts(numbered));
    EXPECT_EQ(numbered, *owners.NumberedTexts());
    ASSERT_TRUE(owners.CopyTextPairs(pairs));
    EXPECT_EQ(pairs.size(), 2u);

    // Forgetting through one accessor makes the other read again too.
    owners.Forget();
    EXPECT_FALSE(cache.Contains(same.Key()));
    EXPECT_TRUE(same.ValueOf(u"NEUTRAL", value));
    EXPECT_EQ(reads, 5);
}

TEST(PluginEvents, SevenEventsEmptyTheProcessCacheAndNoOthers) {
    int reads = 0;
    CountingKey key(9, &reads);
    auto resource = CTsComObject<ts::test::FakeResource>::Create();
    using namespace ts::events;
    for (TsAtom event : {Refresh(), RefreshNoArt(), RefreshOverride(), NewResource(),
                         DeleteResource(), SetResourceProperties(), SaveResource()}) {
        CValueCache::Process().TextPairs(key);
        ASSERT_TRUE(CValueCache::Process().Contains(key));
        EXPECT_EQ(editordlg::HandlePluginEvent(event, 0, 0, nullptr), S_OK);
        EXPECT_EQ(CValueCache::Process().Size(), 0u) << ts::Utf16ToUtf8(TsGetAtomName(event));
    }
    CValueCache::Process().TextPairs(key);
    for (TsAtom event : {OptionsChange(), CheckoutResource(), ClosingEnvironment(), Error(),
                         TsAddAtom(u"Unheard"), TsAtom(0)}) {
        EXPECT_EQ(editordlg::HandlePluginEvent(event, 1, 2, resource.Get()), S_OK);
        EXPECT_TRUE(CValueCache::Process().Contains(key)) << ts::Utf16ToUtf8(TsGetAtomName(event));
    }
    EXPECT_EQ(reads, 8);
    CValueCache::Process().Clear();
}

}  // namespace
