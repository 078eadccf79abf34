// The process-wide value cache: keys ordered by kind and fields, one entry per key with its own
// copy of the key, each list read once, and the library's host events that empty it.
#include <gtest/gtest.h>

#include "agents/valuecache.h"
#include "model/plugin_events.h"
#include "support/fake_resource.h"
#include "support/report_capture.h"
#include "ts/events.h"
#include "ts/text.h"

namespace {

using ts::test::ReportCapture;

// A key whose lists come from the test, counting how often each is read.
class CountingKey : public CValueCacheKey {
public:
    CountingKey(int id, int* reads, bool succeed = true)
        : CValueCacheKey(u"CountingKey"), id_(id), reads_(reads), succeed_(succeed) {}

    bool Less(const CValueCacheKey& other) const override {
        if (Kind() != other.Kind()) return CValueCacheKey::Less(other);
        return id_ < static_cast<const CountingKey&>(other).id_;
    }
    bool LoadTextPairs(TsTextPairs& list) const override {
        ++*reads_;
        list = {{u"OWNER", u"owner"}, {u"PLAYER", u"player"}};
        return succeed_;
    }
    bool LoadNumberedTexts(TsNumberedTexts& list) const override {
        ++*reads_;
        list = {{u"Neutral", 0}, {u"Angry", 1}};
        return succeed_;
    }
    std::unique_ptr<CValueCacheKey> Clone() const override {
        return std::make_unique<CountingKey>(*this);
    }

private:
    int id_;
    int* reads_;
    bool succeed_;
};

TEST(ValueCacheKeys, OrderByKindThenByEveryField) {
    C2daCacheKey appearance(u"appearance", u"MODELTREE");
    C2daCacheKey sameAgain(u"appearance", u"MODELTREE");
    C2daCacheKey otherColumn(u"appearance", u"MOVEMENTTREE");
    C2daCacheKey withCondition(u"appearance", u"MODELTREE",
                               {{u"SpecialStaging", variant(kTsTypeInt, 1)}});
    C2daCacheKey withOtherCondition(u"appearance", u"MODELTREE",
                                    {{u"SpecialStaging", variant(kTsTypeInt, 2)}});
    C2daCacheKey withDefault(u"appearance", u"MODELTREE", {}, u"(none)");
    CDbResRefCacheKey scripts(2009), plots(2010);

    auto equivalent = [](const CValueCacheKey& a, const CValueCacheKey& b) {
        return !a.Less(b) && !b.Less(a);
    };
    EXPECT_TRUE(equivalent(appearance, sameAgain));
    const CValueCacheKey* distinct[] = {
        &appearance,  &otherColumn, &withCondition, &withOtherCondition,
        &withDefault, &scripts,     &plots};
    for (auto* a : distinct) {
        for (auto* b : distinct) {
            if (a != b) {
                EXPECT_FALSE(equivalent(*a, *b));
            }
        }
    }
    // Keys of different kinds order by kind, whatever their fields.
    EXPECT_NE(appearance.Kind(), scripts.Kind());
    EXPECT_EQ(appearance.Less(scripts), appearance.Kind() < scripts.Kind());
    EXPECT_EQ(appearance.Kind(), TsFindAtom(u"C2daCacheKey"));

    auto copy = withCondition.Clone();
    EXPECT_TRUE(equivalent(*copy, withCondition));
    EXPECT_EQ(static_cast<C2daCacheKey&>(*copy).RowConditions().size(), 1u);
}

TEST(ValueCache, ReadsEachListOnceAndKeepsItsOwnKey) {
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
    EXPECT_EQ(reads, 2);
    EXPECT_EQ(numbered->at(1), (std::pair<std::u16string, std::int32_t>{u"Angry", 1}));
    cache.NumberedTexts(equal);
    EXPECT_EQ(reads, 2);
    EXPECT_EQ(cache.Size(), 1u);

    CountingKey another(2, &reads);
    cache.TextPairs(another);
    EXPECT_EQ(cache.Size(), 2u);

    // Forgetting one entry makes its next request read again.
    EXPECT_TRUE(cache.Forget(equal));
    EXPECT_FALSE(cache.Forget(equal));
    EXPECT_FALSE(cache.Contains(equal));
    EXPECT_TRUE(cache.Contains(another));
    cache.TextPairs(equal);
    EXPECT_EQ(reads, 4);
}

TEST(ValueCache, AFailedReadStaysFailedUntilEmptied) {
    CValueCache cache;
    int reads = 0;
    CountingKey failing(3, &reads, false);
    EXPECT_EQ(cache.TextPairs(failing), nullptr);
    EXPECT_EQ(cache.TextPairs(failing), nullptr);
    EXPECT_EQ(reads, 1) << "a failed read is not retried";
    cache.Clear();
    EXPECT_EQ(cache.Size(), 0u);
    EXPECT_EQ(cache.TextPairs(failing), nullptr);
    EXPECT_EQ(reads, 2);
}

TEST(ValueCache, ListsNeedTheHostServices) {
    CValueCache cache;
    ReportCapture reports;
    EXPECT_EQ(cache.NumberedTexts(C2daCacheKey(u"toolset_dlglang", u"LanguageName")), nullptr);
    EXPECT_EQ(reports.Count(u"Accesing invalid 2DA plugin"), 1u);
    EXPECT_EQ(cache.TextPairs(CDbResRefCacheKey(2009)), nullptr);
    EXPECT_EQ(reports.Count(u"Accesing invalid resource manager"), 1u);
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
