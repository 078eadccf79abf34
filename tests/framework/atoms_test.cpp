#include <gtest/gtest.h>

#include <string>

#include "ts/atoms.h"

namespace {

TEST(Atoms, AreSharedIgnoringAsciiCaseAndKeepTheFirstSpelling) {
    TsAtom a = TsAddAtom(u"ConditionPlotURI");
    ASSERT_GE(a, kTsFirstAtom);
    EXPECT_EQ(TsAddAtom(u"conditionploturi"), a);
    EXPECT_EQ(TsFindAtom(u"CONDITIONPLOTURI"), a);
    EXPECT_EQ(TsGetAtomName(a), u"ConditionPlotURI");
    EXPECT_EQ(TsGetAtomName(a, 9), u"Condition");

    // Case folding is ASCII only: accented capitals are different names.
    TsAtom e1 = TsAddAtom(u"\u00c9t\u00e9"), e2 = TsAddAtom(u"\u00e9t\u00e9");
    EXPECT_NE(e1, e2);
    EXPECT_NE(TsAddAtom(u"ActionPlotURI"), a);
}

TEST(Atoms, RefuseNamesTheTableCannotHold) {
    EXPECT_EQ(TsAddAtom(u""), 0);
    EXPECT_EQ(TsAddAtom(std::u16string(256, u'x')), 0);
    EXPECT_NE(TsAddAtom(std::u16string(255, u'x')), 0);
    EXPECT_EQ(TsFindAtom(u"NeverAddedAnywhere"), 0);
    EXPECT_EQ(TsGetAtomName(0), u"");
    EXPECT_EQ(TsGetAtomName(0xFFFF), u"");
}

}  // namespace
