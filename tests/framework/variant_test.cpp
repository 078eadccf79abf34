#include <gtest/gtest.h>

#include "support/report_capture.h"
#include "ts/variant.h"

namespace {

using ts::test::ReportCapture;

// Codes that share a representation share its accessor.
TEST(Variant, AccessorsAcceptTheirWholeGroup) {
    EXPECT_EQ(variant(kTsTypeUInt2, std::uint32_t(8)).GetUInt(), 8u);
    EXPECT_EQ(variant(kTsTypeDateTime, 46000.5).GetDouble(), 46000.5);
    EXPECT_EQ(variant(kTsTypeString2, u"x").GetString(), u"x");
    EXPECT_EQ(variant(kTsTypeColour, TsColour{0.1f, 0.2f, 0.3f, 0.4f}).GetColour(),
              (TsColour{0.1f, 0.2f, 0.3f, 0.4f}));
}

// A wrong accessor gives zero and a constructor given a code outside its group gives an empty
// value; both are reported as failed assertions.
TEST(Variant, MisuseReportsAndGivesNothing) {
    ReportCapture reports;
    EXPECT_EQ(variant(kTsTypeString, u"12").GetInt(), 0);
    EXPECT_EQ(variant(kTsTypeInt, std::int32_t(3)).GetString(), u"");
    EXPECT_FALSE(variant(kTsTypeInt, std::int32_t(1)).GetBool());
    EXPECT_EQ(variant().GetFloat(), 0.0f) << "an empty value has no accessor";
    EXPECT_EQ(reports.Count(u"Invalid variant type request"), 4u);
    EXPECT_EQ(reports.entries()[0].level, 0);

    variant wrong(kTsTypeString, std::int32_t(5));
    EXPECT_TRUE(wrong.empty());
    EXPECT_EQ(wrong.type(), kTsTypeList);
    EXPECT_TRUE(variant(kTsTypeInt, 1.0f).empty());
    EXPECT_TRUE(variant(99, true).empty());
    EXPECT_EQ(reports.Count(u"Invalid constructor type"), 3u);
}

TEST(Variant, ComparesTypeAndValue) {
    EXPECT_EQ(variant(kTsTypeInt, std::int32_t(1)), variant(kTsTypeInt, std::int32_t(1)));
    EXPECT_NE(variant(kTsTypeInt, std::int32_t(1)), variant(kTsTypeInt, std::int32_t(2)));
    EXPECT_NE(variant(kTsTypeDouble, 1.0), variant(kTsTypeDateTime, 1.0));
    EXPECT_NE(variant(kTsTypeString, u"a"), variant(kTsTypeString, u"A"));
    EXPECT_EQ(variant(), variant());
}

}  // namespace
