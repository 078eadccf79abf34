#include <gtest/gtest.h>

#include "model/dlg_editor_settings.h"

namespace {

using dlg::SettingsColour;
using dlg::ToScreenColour;

TEST(DlgEditorSettings, ColoursPackRedLowTruncatedAndClamped) {
    EXPECT_EQ(ToScreenColour({0.5f, 0.5f, 0.5f}), 0x7F7F7Fu) << "0.5 gives 127, not 128";
    EXPECT_EQ(ToScreenColour({1.0f, 0.9f, 1.0f}), 0xFFE5FFu) << "0.9 gives 229";
    EXPECT_EQ(ToScreenColour({1, 0, 0}), 0x0000FFu) << "red in the low byte";
    EXPECT_EQ(ToScreenColour({0, 0, 1}), 0xFF0000u);
    EXPECT_EQ(ToScreenColour({2.0f, -0.5f, 1.5f}), 0xFF00FFu) << "clamped before packing";
    EXPECT_EQ(ToScreenColour({-1, -1, -1}), dlg::kNoColour);
    EXPECT_EQ(ToScreenColour({-1, -1, 0}), 0x000000u) << "only all three -1 means no colour";
}

TEST(DlgEditorSettings, BuiltInDefaultsLeaveTheDeliberatelyUnsetOnesZero) {
    dlg::DlgEditorSettings s;
    EXPECT_TRUE(s.PasteLinkSourceToDestination);
    EXPECT_FALSE(s.DragLinkSourceToDestination);
    EXPECT_EQ(ToScreenColour(s.LinkColor), 0x7F7F7Fu);
    EXPECT_EQ(ToScreenColour(s.PCColor), 0xFF0000u);
    EXPECT_EQ(ToScreenColour(s.NPCColor), 0x0000FFu);
    EXPECT_EQ(ToScreenColour(s.NPCCommentColor), 0x007F00u);
    EXPECT_EQ(ToScreenColour(s.AmbientColor), 0xFFE5FFu);
    EXPECT_EQ(s.ErrorColor, (SettingsColour{0, 0, 0}));
    EXPECT_EQ(s.VORecordedColor, (SettingsColour{0, 0, 0}));
    EXPECT_EQ(s.SafeFrameOuterColor, (SettingsColour{0, 0, 0}));
    EXPECT_EQ(s.MaxHenchmen, 0);
    EXPECT_EQ(s.SafeFrameAspectRatio, 0.0f);
    EXPECT_TRUE(s.FXAName.empty());
}

}  // namespace
