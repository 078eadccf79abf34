#include <gtest/gtest.h>

#include "model/text_tags.h"

namespace {

using dlg::CheckTextTags;
using dlg::TagCheck;

dlg::TextTagSet Tags() {
    dlg::TextTagSet set;
    set.Add(u"emp", true);
    set.Add(u"i", true);
    set.Add(u"pause", false);
    return set;
}

TEST(TextTags, AcceptsKnownTagsPairedInOrder) {
    auto tags = Tags();
    EXPECT_EQ(CheckTextTags(u"", tags), TagCheck::Ok);
    EXPECT_EQ(CheckTextTags(u"No markup at all.", tags), TagCheck::Ok);
    EXPECT_EQ(CheckTextTags(u"You <emp>dare</emp> threaten <i>me</i>?", tags), TagCheck::Ok);
    EXPECT_EQ(CheckTextTags(u"<EMP><i>both</i></Emp>", tags), TagCheck::Ok) << "names ignore case";
    EXPECT_EQ(CheckTextTags(u"Wait<pause> for it.", tags), TagCheck::Ok);
    EXPECT_EQ(CheckTextTags(u"<emp/> alone", tags), TagCheck::Ok);
}

TEST(TextTags, RefusesMalformedMarkup) {
    auto tags = Tags();
    EXPECT_EQ(CheckTextTags(u"a > b", tags), TagCheck::Malformed);
    EXPECT_EQ(CheckTextTags(u"ends with <", tags), TagCheck::Malformed);
    EXPECT_EQ(CheckTextTags(u"<emp never closed", tags), TagCheck::Malformed);
    EXPECT_EQ(CheckTextTags(u"<emp>x</emp>>", tags), TagCheck::Malformed);
}

TEST(TextTags, RefusesUnknownAndUnmatchedTags) {
    auto tags = Tags();
    EXPECT_EQ(CheckTextTags(u"<blink>x</blink>", tags), TagCheck::Unknown);
    EXPECT_EQ(CheckTextTags(u"<>", tags), TagCheck::Unknown);
    EXPECT_EQ(CheckTextTags(u"<emp>open", tags), TagCheck::Unmatched);
    EXPECT_EQ(CheckTextTags(u"close</emp>", tags), TagCheck::Unmatched);
    EXPECT_EQ(CheckTextTags(u"<emp><i>x</emp></i>", tags), TagCheck::Unmatched) << "crossed pairs";
}

}  // namespace
