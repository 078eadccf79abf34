// The value lists read from the demo module as the editor's panes read them: through the host's
// resource manager, once per emptying event however many accessors ask, with row conditions,
// resource lists and the henchman tags.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "agents/valuecache.h"
#include "model/henchman_tags.h"
#include "model/plugin_events.h"
#include "support/demo_module_fixture.h"
#include "support/report_capture.h"
#include "ts/comptr.h"
#include "ts/events.h"
#include "ts/hostcomponents.h"
#include "ts/resourcemanager.h"
#include "ts/text.h"

namespace {

using ts::test::ReportCapture;

class DemoValueCache : public ts::test::DemoModuleTest {
protected:
    static void Send(TsAtom event) {
        EXPECT_EQ(editordlg::HandlePluginEvent(event, 0, 0, nullptr), S_OK);
    }
};

// With the module closed after the first read, only a list already in the cache can answer: that
// tells a shared read from a second one.
TEST_F(DemoValueCache, EditorsShareOneReadUntilAnEmptyingEventAndAFailureStaysUntilThen) {
    CValueCacheAccessor first(dlg::HenchmenKey());
    CValueCacheAccessor second(dlg::HenchmenKey());
    const TsNumberedTexts* tags = first.NumberedTexts();
    ASSERT_NE(tags, nullptr);
    EXPECT_EQ(*tags, (TsNumberedTexts{{u"wren", 1}, {u"maddoc", 2}, {u"iselde", 3}}));

    CloseModule();
    ReportCapture reports;
    std::int32_t row = 0;
    EXPECT_EQ(second.NumberedTexts(), tags);
    EXPECT_TRUE(second.ValueOf(u"MADDOC", row));
    EXPECT_EQ(row, 2);
    Send(ts::events::OptionsChange());
    EXPECT_TRUE(second.ValueOf(u"Iselde", row));
    EXPECT_EQ(row, 3);
    EXPECT_EQ(reports.size(), 0u);

    // Saving a resource may have changed any list: the next request reads again, and with no
    // module open that read fails and is kept failed, even once the module is back.
    Send(ts::events::SaveResource());
    std::u16string tag = u"unchanged";
    EXPECT_FALSE(first.TextOfValue(1, tag));
    EXPECT_EQ(reports.Count(u"Accesing invalid 2DA plugin"), 1u);
    OpenModule();
    EXPECT_FALSE(second.TextOfValue(1, tag));
    EXPECT_FALSE(second.ValueOf(u"wren", row));
    EXPECT_EQ(tag, u"unchanged");
    EXPECT_EQ(reports.Count(u"Accesing invalid 2DA plugin"), 1u);

    Send(ts::events::Refresh());
    EXPECT_TRUE(second.TextOfValue(1, tag));
    EXPECT_EQ(tag, u"wren");

    // The text-pair form of a table is read on its own, pairing each text with its row's id.
    std::u16string id;
    EXPECT_TRUE(first.SecondTextOf(u"ISELDE", id));
    EXPECT_EQ(id, u"3");
    EXPECT_TRUE(first.TextOfValue(std::u16string_view(u"2"), tag));
    EXPECT_EQ(tag, u"maddoc");
}

TEST_F(DemoValueCache, RowConditionsSelectRowsAndMissingPartsFailTheLoad) {
    auto labels = [](std::vector<TsRowCondition> conditions) {
        CValueCacheAccessor poses(
            std::make_unique<C2daCacheKey>(u"poses", u"Label", std::move(conditions)));
        std::vector<std::u16string> out;
        if (const TsNumberedTexts* list = poses.NumberedTexts())
            for (const auto& [label, row] : *list) out.push_back(label);
        else
            out.push_back(u"(failed)");
        return out;
    };
    using Labels = std::vector<std::u16string>;
    EXPECT_EQ(labels({}),
              (Labels{u"Stand", u"Behind the Bar", u"Sit", u"Arms Crossed", u"Leaning on Wall"}));
    EXPECT_EQ(labels({{u"SpecialStaging", variant(kTsTypeInt, 1)}}),
              (Labels{u"Behind the Bar", u"Leaning on Wall"}));
    EXPECT_EQ(labels({{u"UseCommonGestures", variant(kTsTypeBool, true)},
                      {u"specialstaging", variant(kTsTypeInt, 0)}}),
              (Labels{u"Stand", u"Arms Crossed"}));
    EXPECT_EQ(labels({{u"UseCommonGestures", variant(kTsTypeBool, false)}}),
              (Labels{u"Sit", u"Leaning on Wall"}));
    // Animations hold names, not numbers: no number matches them.
    EXPECT_EQ(labels({{u"Animations", variant(kTsTypeString, u"sit_chair_idle_01")}}),
              (Labels{u"Sit"}));
    EXPECT_EQ(labels({{u"Animations", variant(kTsTypeInt, 0)}}), Labels{});

    ReportCapture reports;
    EXPECT_EQ(labels({{u"Mood", variant(kTsTypeInt, 1)}}), (Labels{u"(failed)"}));
    CValueCacheAccessor noColumn(std::make_unique<C2daCacheKey>(u"poses", u"Gesture"));
    CValueCacheAccessor noTable(std::make_unique<C2daCacheKey>(u"toolset_moods", u"Label"));
    std::int32_t row = -1;
    EXPECT_FALSE(noColumn.ValueOf(u"Sit", row));
    EXPECT_FALSE(noTable.ValueOf(u"Sit", row));
    EXPECT_EQ(row, -1);
    ASSERT_EQ(reports.size(), 3u);  // each failure says what was missing
    EXPECT_NE(ts::Utf16ToUtf8(reports.entries()[2].message).find("toolset_moods"),
              std::string::npos);
    EXPECT_EQ(reports.Count(u"Accesing invalid 2DA plugin"), 0u);
}

TEST_F(DemoValueCache, ResourceListsAndHenchmanTags) {
    CValueCacheAccessor plots(std::make_unique<CDbResRefCacheKey>(u"plo"));
    TsTextPairs list;
    ASSERT_TRUE(plots.CopyTextPairs(list));
    std::sort(list.begin(), list.end());
    EXPECT_EQ(list, (TsTextPairs{{u"plt_guild_dues", u"plt_guild_dues.plo"},
                                 {u"plt_lantern_rumours", u"plt_lantern_rumours.plo"},
                                 {u"plt_missing_caravan", u"plt_missing_caravan.plo"}}));
    std::u16string name;
    EXPECT_TRUE(plots.TextOfValue(std::u16string_view(u"plt_guild_dues.plo"), name));
    EXPECT_EQ(name, u"plt_guild_dues");
    // Types are told apart, and the key equals one made from the type's atom.
    CValueCacheAccessor scripts(std::make_unique<CDbResRefCacheKey>(TsAddAtom(u"nss")));
    ASSERT_NE(scripts.TextPairs(), nullptr);
    EXPECT_EQ(scripts.TextPairs()->size(), 4u);
    EXPECT_EQ(CValueCache::Process().Size(), 2u);
    {
        ReportCapture reports;
        EXPECT_EQ(plots.NumberedTexts(), nullptr);
        EXPECT_EQ(reports.Count(u"A resource list has no numbered form"), 1u);
    }

    CValueCacheAccessor henchmen(dlg::HenchmenKey());
    std::vector<std::u16string> tags;
    EXPECT_TRUE(dlg::HenchmanTags(henchmen, 2, tags));
    EXPECT_EQ(tags, (std::vector<std::u16string>{u"HENCH:wren", u"HENCH:maddoc", u"HENCH:iselde",
                                                 u"HENCHMAN 1", u"HENCHMAN 2"}));
    CloseModule();
    CValueCache::Process().Clear();
    ReportCapture reports;
    EXPECT_FALSE(dlg::HenchmanTags(henchmen, 1, tags));
    EXPECT_EQ(tags, (std::vector<std::u16string>{u"HENCHMAN 1"}));
}

}  // namespace
