#include "model/node_label.h"

#include "ts/format.h"
#include "ts/text.h"

namespace dlg {

namespace {
void Join(std::u16string& out, std::u16string_view part) {
    if (part.empty()) return;
    if (!out.empty()) out += u' ';
    out += part;
}
}  // namespace

Label MakeLabel(const LabelInput& in) {
    Label label;
    std::u16string_view text = ts::CutUtf16(in.text, kMaxLabelText);
    std::u16string prefix, suffix;
    if (in.isNPC) {
        if (text.empty() && !in.comment.empty()) {
            prefix = u"[COMMENT]";
            text = in.comment;
            label.isComment = true;
        } else if (!in.speaker.empty()) {
            prefix = ts::Format(u"[%s]", in.speaker);
        } else if (!in.defaultOwner.empty()) {
            prefix = ts::Format(u"[[%s]]", in.defaultOwner);
        } else {
            prefix = ts::Format(u"[%s]", u"(default)");
        }
    } else if (!in.hasChildren) {
        suffix = u"[END DIALOGUE]";
    } else if (text.empty()) {
        suffix = u"[CONTINUE]";
    }
    Join(label.text, prefix);
    Join(label.text, text);
    Join(label.text, suffix);
    label.text.resize(ts::CutUtf16(label.text, kMaxLabel).size());
    return label;
}

}  // namespace dlg
