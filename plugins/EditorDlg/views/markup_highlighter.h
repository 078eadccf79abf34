#pragma once

#include <QRegularExpression>
#include <QSyntaxHighlighter>

namespace dlg {

// Shows the markup tags of a line's text ("<i>", "</i>") in a colour of their own, so that the
// writer sees at once where the text ends and the markup begins.
class MarkupHighlighter : public QSyntaxHighlighter {
    Q_OBJECT
public:
    explicit MarkupHighlighter(QTextDocument* document);

protected:
    void highlightBlock(const QString& text) override;

private:
    QRegularExpression tag_;
    QTextCharFormat format_;
};

}  // namespace dlg
