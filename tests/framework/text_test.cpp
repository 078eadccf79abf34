// Text: UTF-8 and UTF-16, ASCII case folding, formatting and the atom table of names.
#include <gtest/gtest.h>

#include <string>

#include "ts/atoms.h"
#include "ts/format.h"
#include "ts/text.h"

namespace {

// Conversions keep every character, and replace malformed input instead of dropping it.
TEST(Text, ConvertsBetweenUtf8AndUtf16) {
    std::u16string wide = u"Gr\u00fc\u00dfe \U0001F600 \u4e16";
    std::string narrow = ts::Utf16ToUtf8(wide);
    EXPECT_EQ(narrow,
              "Gr\xc3\xbc\xc3\x9f"
              "e \xf0\x9f\x98\x80 \xe4\xb8\x96");
    EXPECT_EQ(ts::Utf8ToUtf16(narrow), wide);

    EXPECT_EQ(ts::Utf8ToUtf16("a\xff!"), u"a\ufffd!");
    EXPECT_EQ(ts::Utf8ToUtf16("\xc3"), u"\ufffd");            // cut short
    EXPECT_EQ(ts::Utf8ToUtf16("\xe0\x80\x80x"), u"\ufffdx");  // overlong
    EXPECT_EQ(ts::Utf8ToUtf16("\xed\xa0\x80"), u"\ufffd");    // encoded surrogate
    EXPECT_EQ(ts::Utf16ToUtf8(std::u16string(1, char16_t(0xD800))), "\xef\xbf\xbd");
}

TEST(Text, CutsNeverSplitASurrogatePair) {
    std::u16string s = u"ab\U0001F600c";  // a b <hi> <lo> c
    EXPECT_EQ(ts::CutUtf16(s, 3), u"ab");
    EXPECT_EQ(ts::CutUtf16(s, 4), u"ab\U0001F600");
    EXPECT_EQ(ts::CutUtf16(s, 99), s);
    EXPECT_EQ(ts::CutUtf16(s, 0), u"");
}

TEST(Text, FoldsAsciiCaseOnly) {
    EXPECT_EQ(ts::AsciiUpper(u"owner \u00e9"), u"OWNER \u00e9");
    EXPECT_EQ(ts::AsciiLower(u"PREVSPEAKER"), u"prevspeaker");
    EXPECT_TRUE(ts::EqualsIgnoreAsciiCase(u"Player", u"PLAYER"));
    EXPECT_FALSE(ts::EqualsIgnoreAsciiCase(u"\u00c9", u"\u00e9"));
    EXPECT_FALSE(ts::EqualsIgnoreAsciiCase(u"abc", u"ab"));
}

// Every directive is filled from its typed argument; where arguments or directives are missing
// the text is left as it is.
TEST(Format, FillsEveryDirectiveFromTypedArguments) {
    EXPECT_EQ(ts::Format(u"%ls link refers to source ID [%d] which does not exist.", u"NPC", 12),
              u"NPC link refers to source ID [12] which does not exist.");
    EXPECT_EQ(ts::Format(u"%u %lu %ld %d %u", 7u, 8ul, -9l, -10, -1), u"7 8 -9 -10 4294967295");
    EXPECT_EQ(ts::Format(u"%f, %f", 1.5, -0.25), u"1.500000, -0.250000");
    EXPECT_EQ(ts::Format(u"%s/%ls", "narrow \xc3\xa9", std::u16string(u"wide")),
              u"narrow \u00e9/wide");
    EXPECT_EQ(ts::Format(u"100%% of %d", 3), u"100% of 3");

    EXPECT_EQ(ts::Format(u"StartLine=%d&EndLine=%d", 4), u"StartLine=4&EndLine=%d");
    EXPECT_EQ(ts::Format(u"50%x and a lone %"), u"50%x and a lone %");
    EXPECT_EQ(ts::Format(u"%l"), u"%l");
}

// Atoms are shared ignoring ASCII case, keep the first spelling, and refuse names the table
// cannot hold.
TEST(Atoms, AreSharedIgnoringAsciiCaseAndKeepTheFirstSpelling) {
    TsAtom a = TsAddAtom(u"ConditionPlotURI");
    ASSERT_GE(a, kTsFirstAtom);
    EXPECT_EQ(TsAddAtom(u"conditionploturi"), a);
    EXPECT_EQ(TsFindAtom(u"CONDITIONPLOTURI"), a);
    EXPECT_EQ(TsGetAtomName(a), u"ConditionPlotURI");
    EXPECT_EQ(TsGetAtomName(a, 9), u"Condition");
    EXPECT_NE(TsAddAtom(u"\u00c9t\u00e9"), TsAddAtom(u"\u00e9t\u00e9"));  // accents are not case
    EXPECT_NE(TsAddAtom(u"ActionPlotURI"), a);

    EXPECT_EQ(TsAddAtom(u""), 0);
    EXPECT_EQ(TsAddAtom(std::u16string(256, u'x')), 0);
    EXPECT_NE(TsAddAtom(std::u16string(255, u'x')), 0);
    EXPECT_EQ(TsFindAtom(u"NeverAddedAnywhere"), 0);
    EXPECT_EQ(TsGetAtomName(0), u"");
    EXPECT_EQ(TsGetAtomName(0xFFFF), u"");
}

// Names from outside are quoted in messages on one line, visibly, and at a readable length.
TEST(MessageText, EscapesWhatCannotBeSeenAndCutsWhatIsTooLong) {
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"tavern", u"tavern"},
        {u"a\nb\tc\r", u"a\\nb\\tc\\r"},
        {u"bell\u0007 esc\u001B[31m", u"bell\\u0007 esc\\u001B[31m"},
        {u"\uFEFFID", u"\\uFEFFID"},
        {u"zero\u200Bwidth", u"zero\\u200Bwidth"},
        {u"caf\u00E9 \U0001F600", u"caf\u00E9 \U0001F600"},
        {std::u16string(81, u'x'), std::u16string(80, u'x') + u"... (81 characters)"},
        {std::u16string(79, u'x') + u"\U0001F600",  // a pair is never split
         std::u16string(79, u'x') + u"... (81 characters)"},
    };
    for (const auto& [text, shown] : cases) EXPECT_EQ(ts::MessageText(text), shown);

    std::string huge(1 << 20, 'n');
    EXPECT_EQ(ts::MessageText(huge, 4), u"nnnn... (1048576 bytes)");
    EXPECT_EQ(ts::MessageText(std::string("ok\x01"), 4), u"ok\\u0001");
}

}  // namespace
