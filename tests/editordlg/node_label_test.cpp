#include <gtest/gtest.h>

#include "model/node_label.h"

namespace {

using dlg::LabelInput;
using dlg::MakeLabel;

TEST(NodeLabel, NpcLinesNameTheirSpeakerOrShowTheirComment) {
    EXPECT_EQ(MakeLabel({true, u"Halt!", u"guard", u"", u"OWNER", false}).text, u"[guard] Halt!");
    EXPECT_EQ(MakeLabel({true, u"Halt!", u"", u"", u"OWNER", false}).text, u"[[OWNER]] Halt!");
    EXPECT_EQ(MakeLabel({true, u"Halt!", u"", u"", u"", false}).text, u"[(default)] Halt!");

    auto comment = MakeLabel({true, u"", u"guard", u"Branch for thieves", u"OWNER", true});
    EXPECT_EQ(comment.text, u"[COMMENT] Branch for thieves");
    EXPECT_TRUE(comment.isComment);
    auto bare = MakeLabel({true, u"", u"guard", u"", u"OWNER", false});
    EXPECT_EQ(bare.text, u"[guard]") << "empty text and no comment: the prefix alone";
    EXPECT_FALSE(bare.isComment);
}

TEST(NodeLabel, PlayerLinesShowHowTheConversationGoesOn) {
    EXPECT_EQ(MakeLabel({false, u"Farewell.", u"", u"", u"", false}).text, u"Farewell. [END DIALOGUE]");
    EXPECT_EQ(MakeLabel({false, u"", u"", u"", u"", true}).text, u"[CONTINUE]");
    EXPECT_EQ(MakeLabel({false, u"Tell me more.", u"", u"", u"", true}).text, u"Tell me more.");
    EXPECT_EQ(MakeLabel({false, u"", u"", u"", u"", false}).text, u"[END DIALOGUE]");
    EXPECT_FALSE(MakeLabel({false, u"", u"", u"a comment", u"", true}).isComment) << "only NPC lines";
}

TEST(NodeLabel, CutsTextThenLabelWithoutSplittingPairs) {
    std::u16string text(300, u'x');
    EXPECT_EQ(MakeLabel({true, text, u"guard", u"", u"", false}).text, u"[guard] " + std::u16string(200, u'x'));

    // A long speaker tag pushes the label past 250: it is cut there.
    std::u16string speaker(100, u's');
    auto label = MakeLabel({true, text, speaker, u"", u"", false}).text;
    EXPECT_EQ(label.size(), 250u);
    EXPECT_EQ(label.substr(0, 102), u"[" + speaker + u"]");

    // Text of 199 units then an emoji: the cut at 200 would split the pair, so it keeps 199.
    std::u16string emoji = std::u16string(199, u'y') + u"\U0001F600";
    auto cut = MakeLabel({false, emoji, u"", u"", u"", true}).text;
    EXPECT_EQ(cut, std::u16string(199, u'y'));
}

}  // namespace
