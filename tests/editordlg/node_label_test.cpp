#include <gtest/gtest.h>

#include "model/node_label.h"
#include "ts/text.h"

namespace {

using dlg::MakeLabel;

TEST(NodeLabel, NpcLinesNameTheirSpeakerPlayerLinesHowTheConversationGoesOn) {
    // kind, text, speaker, comment, default owner, has children -> label
    const std::pair<dlg::LabelInput, std::u16string> cases[] = {
        {{true, u"Halt!", u"guard", u"", u"OWNER", false}, u"[guard] Halt!"},
        {{true, u"Halt!", u"", u"", u"OWNER", false}, u"[[OWNER]] Halt!"},
        {{true, u"Halt!", u"", u"", u"", false}, u"[(default)] Halt!"},
        {{true, u"", u"guard", u"For thieves", u"OWNER", true}, u"[COMMENT] For thieves"},
        {{true, u"", u"guard", u"", u"OWNER", false}, u"[guard]"},  // the prefix alone
        {{false, u"Farewell.", u"", u"", u"", false}, u"Farewell. [END DIALOGUE]"},
        {{false, u"", u"", u"", u"", true}, u"[CONTINUE]"},
        {{false, u"Tell me more.", u"", u"", u"", true}, u"Tell me more."},
        {{false, u"", u"", u"", u"", false}, u"[END DIALOGUE]"},
        {{false, u"", u"", u"a comment", u"", true}, u"[CONTINUE]"},  // only NPC lines show one
    };
    for (const auto& [input, text] : cases) {
        dlg::Label label = MakeLabel(input);
        EXPECT_EQ(label.text, text) << ts::Utf16ToUtf8(text);
        EXPECT_EQ(label.isComment, text.starts_with(u"[COMMENT]")) << ts::Utf16ToUtf8(text);
    }
}

TEST(NodeLabel, CutsTextThenLabelWithoutSplittingPairs) {
    std::u16string text(300, u'x');
    EXPECT_EQ(MakeLabel({true, text, u"guard", u"", u"", false}).text,
              u"[guard] " + std::u16string(200, u'x'));

    // A long speaker tag pushes the label past 250: it is cut there.
    std::u16string speaker(100, u's');
    auto label = MakeLabel({true, text, speaker, u"", u"", false}).text;
    EXPECT_EQ(label.size(), 250u);
    EXPECT_EQ(label.substr(0, 102), u"[" + speaker + u"]");

    // Text of 199 units then an emoji: the cut at 200 would split the pair, so it keeps 199.
    std::u16string emoji = std::u16string(199, u'y') + u"\U0001F600";
    EXPECT_EQ(MakeLabel({false, emoji, u"", u"", u"", true}).text, std::u16string(199, u'y'));
}

}  // namespace
