#include <gtest/gtest.h>

#include "model/text_tags.h"
#include "ts/text.h"

namespace {

using dlg::TagCheck;

TEST(TextTags, KnownTagsPairedInOrderPassAndEveryFaultIsNamed) {
    dlg::TextTagSet tags;
    tags.Add(u"emp", true);
    tags.Add(u"i", true);
    tags.Add(u"pause", false);
    const std::pair<std::u16string_view, TagCheck> cases[] = {
        {u"", TagCheck::Ok},
        {u"You <emp>dare</emp> threaten <i>me</i>?", TagCheck::Ok},
        {u"<EMP><i>both</i></Emp>", TagCheck::Ok},  // names ignore case
        {u"Wait<pause> for it.", TagCheck::Ok},
        {u"<emp/> alone", TagCheck::Ok},
        {u"a > b", TagCheck::Malformed},
        {u"ends with <", TagCheck::Malformed},
        {u"<emp never closed", TagCheck::Malformed},
        {u"<emp>x</emp>>", TagCheck::Malformed},
        {u"<blink>x</blink>", TagCheck::Unknown},
        {u"<>", TagCheck::Unknown},
        {u"<emp>open", TagCheck::Unmatched},
        {u"close</emp>", TagCheck::Unmatched},
        {u"<emp><i>x</emp></i>", TagCheck::Unmatched},  // crossed pairs
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(dlg::CheckTextTags(text, tags), expected) << ts::Utf16ToUtf8(text);
}

}  // namespace
