// The plain parts of the desktop toolset: menu texts from command names, the command line, and
// which resources the picker offers for a filter.
#include <gtest/gtest.h>

#include "command_text.h"
#include "qt_host_ui.h"
#include "toolset_options.h"
#include "ts/text.h"

namespace {

TEST(ToolsetParts, MenuTextsComeFromCommandNames) {
    // The name without its menu and editor parts, in words; runs of capitals stay together.
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"Edit.DialogEditor.Insert.Line.After", u"Insert Line After"},
        {u"Edit.CollapseBranch", u"Collapse Branch"},
        {u"Tools.DialogEditor.Preview.Line.NoVOFaceFX", u"Preview Line No VO Face FX"},
        {u"Single", u"Single"},
    };
    for (const auto& [name, text] : cases)
        EXPECT_EQ(toolset::CommandText(name), text) << ts::Utf16ToUtf8(name);
}

TEST(ToolsetParts, TheCommandLineIsCheckedBeforeAnythingOpens) {
    auto parse = [](std::vector<const char*> args, toolset::ToolsetOptions& options,
                    std::string& error) {
        args.insert(args.begin(), "toolset");
        return toolset::ParseToolsetOptions(int(args.size()), const_cast<char**>(args.data()),
                                            options, error);
    };
    toolset::ToolsetOptions options;
    std::string error;
    ASSERT_TRUE(
        parse({"--module", "m.tsmod", "--open", "a.dlg", "--expand-all", "--screenshot", "s.png"},
              options, error));
    EXPECT_EQ(options.module, "m.tsmod");
    EXPECT_EQ(options.open, "a.dlg");
    EXPECT_EQ(options.screenshot, "s.png");
    EXPECT_TRUE(options.expandAll);

    const std::vector<std::vector<const char*>> wrong = {
        {"--module"}, {"--module", "--open", "a.dlg"}, {"--open", "a.dlg"}, {"--expand-all"},
        {"extra"}};
    for (const auto& args : wrong) {
        toolset::ToolsetOptions o;
        error.clear();
        EXPECT_FALSE(parse(args, o, error));
        EXPECT_FALSE(error.empty());
    }
}

TEST(ToolsetParts, ThePickerOffersTheFilterTypes) {
    std::vector<ts::ResourceInfo> resources(4);
    resources[0].name = u"scr_a", resources[0].type = u"nss";
    resources[1].name = u"plt_b", resources[1].type = u"plo";
    resources[2].name = u"talk", resources[2].type = u"dlg";
    resources[3].name = u"scr_c", resources[3].type = u"NSS";
    using V = std::vector<std::u16string>;
    EXPECT_EQ(toolset::ResourcesMatching(resources, u"nss"), (V{u"scr_a.nss", u"scr_c.NSS"}));
    EXPECT_EQ(toolset::ResourcesMatching(resources, u"nss;plo"),
              (V{u"scr_a.nss", u"plt_b.plo", u"scr_c.NSS"}));
    EXPECT_EQ(toolset::ResourcesMatching(resources, u"*.dlg"), (V{u"talk.dlg"}));
    EXPECT_EQ(toolset::ResourcesMatching(resources, u"").size(), 4u);
    EXPECT_EQ(toolset::ResourcesMatching(resources, u"*").size(), 4u);
    EXPECT_TRUE(toolset::ResourcesMatching(resources, u"stg").empty());
}

}  // namespace
