#include "views/markup_highlighter.h"

namespace dlg {

MarkupHighlighter::MarkupHighlighter(QTextDocument* document)
    : QSyntaxHighlighter(document), tag_(QStringLiteral("<[^<>]*>")) {
    format_.setForeground(QColor(0x1f, 0x6f, 0xb5));
    format_.setFontWeight(QFont::DemiBold);
}

void MarkupHighlighter::highlightBlock(const QString& text) {
    for (auto it = tag_.globalMatch(text); it.hasNext();) {
        QRegularExpressionMatch match = it.next();
        setFormat(int(match.capturedStart()), int(match.capturedLength()), format_);
    }
}

}  // namespace dlg
