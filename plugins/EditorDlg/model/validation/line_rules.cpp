#include "model/validation/line_rules.h"

#include "model/validation/reference_lists.h"
#include "model/validation/text_normal_form.h"
#include "ts/format.h"
#include "ts/text.h"

namespace dlg {

namespace {

bool HasFlag(const TsNumberedTexts& flags, std::int32_t flag) {
    for (const auto& entry : flags)
        if (entry.second == flag) return true;
    return false;
}

bool HasPlace(const TsNumberedTexts& places, std::u16string_view tag) {
    for (const auto& entry : places)
        if (ts::EqualsIgnoreAsciiCase(entry.first, tag)) return true;
    return false;
}

}  // namespace

const TsNumberedTexts* LineRules::PlotFlags(std::u16string_view plot) {
    std::u16string name = ResolveResourceName(plot, u"plo");
    return name.empty() ? nullptr : cache_.NumberedTexts(CPlotFlagsCacheKey(std::move(name)));
}

const TsNumberedTexts* LineRules::StagePlaces(std::u16string_view stage) {
    std::u16string name = ResolveResourceName(stage, u"stg");
    return name.empty() ? nullptr : cache_.NumberedTexts(CStagePlacesCacheKey(std::move(name)));
}

void LineRules::CheckPlotReference(std::u16string_view kind, const std::u16string& reference,
                                   std::int32_t flag, std::vector<std::u16string>& out) {
    if (reference.empty() || flag == -1) return;
    std::u16string name = ResolveResourceName(reference, u"plo");
    if (name.empty()) {
        out.push_back(ts::Format(u"Plot has an invalid URI \"%ls\"", ts::MessageText(reference)));
        return;
    }
    const TsNumberedTexts* flags = PlotFlags(name);
    if (!flags)
        out.push_back(ts::Format(u"Invalid %ls \"%ls\"", kind, name));
    else if (!HasFlag(*flags, flag))
        out.push_back(ts::Format(u"The flag specified for the %ls no longer exists in plot \"%ls\"",
                                 kind, name));
}

void LineRules::CheckRoot(const CAgentConversation& root, std::vector<std::u16string>& out) {
    std::u16string plot;
    std::int32_t flag = -1;
    root.GetEndConversationPlotURI(plot);
    root.GetEndConversationPlotFlag(flag);
    if (!plot.empty() && flag == -1)
        out.push_back(u"The root has an end plot with no plot flags selected");
    CheckPlotReference(u"Conversation End Plot", plot, flag, out);
}

void LineRules::CheckLine(const ConversationNode& node, std::vector<std::u16string>& out) {
    // Each field read touches a node of its own somewhere in memory, which is what a run over a
    // large conversation pays for: fields that can't matter for the line are not read.
    const CAgentConversationLine& line = node.line;
    std::u16string conditionPlot, actionPlot;
    std::int32_t conditionFlag = -1, actionFlag = -1;
    if (line.GetConditionPlotURI(conditionPlot) && !conditionPlot.empty())
        line.GetConditionPlotFlag(conditionFlag);
    if (line.GetActionPlotURI(actionPlot) && !actionPlot.empty())
        line.GetActionPlotFlag(actionFlag);
    if ((!conditionPlot.empty() && conditionFlag == -1) ||
        (!actionPlot.empty() && actionFlag == -1))
        out.push_back(u"The line has plots with no plot flags selected");
    CheckPlotReference(u"Condition Plot", conditionPlot, conditionFlag, out);
    CheckPlotReference(u"Action Plot", actionPlot, actionFlag, out);

    std::u16string text;
    line.GetText(text);
    if (!node.isNPC && node.isAmbient && !text.empty())
        out.push_back(u"Player lines cannot be flagged as ambient if they have text");

    // A slide-show line shows a picture instead of spoken text, so its length doesn't matter.
    // The normal form is never longer than the text, so short texts need no more.
    std::size_t limit = node.isNPC ? kMaxNPCLineLength : kMaxPlayerLineLength;
    if (text.size() > limit && NormalFormLength(text) > limit) {
        std::u16string texture;
        line.GetSlideShowTexture(texture);
        if (texture.empty()) out.push_back(u"Line exceeds maximum length allowed by game");
    }

    if (!node.isNPC) return;
    std::u16string stage;
    line.GetStageURI(stage);
    if (stage.empty()) return;
    std::u16string speaker;
    line.GetSpeaker(speaker);
    // An empty speaker, or "OWNER", is whoever owns the conversation when it plays: only the game
    // knows which creature that is, so there is no tag to look for on the stage.
    if (speaker.empty() || ts::EqualsIgnoreAsciiCase(speaker, u"OWNER")) return;
    const TsNumberedTexts* places = StagePlaces(stage);
    if (!places)
        out.push_back(ts::Format(u"The stage \"%ls\" does not exist or cannot be read",
                                 ts::MessageText(stage)));
    else if (!HasPlace(*places, speaker))
        out.push_back(ts::Format(u"The speaker \"%ls\" is not mapped to a stage place", speaker));
}

}  // namespace dlg
