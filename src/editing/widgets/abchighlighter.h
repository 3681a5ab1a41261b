#pragma once
#include <QSyntaxHighlighter>

namespace fenwork {

// Paints the ABC styles into the editor's layout, line by line. The formats live beside the text,
// so colouring never changes the text, the caret, the scroll position or the undo ring, and a
// keystroke repaints only the line it changed.
class AbcHighlighter : public QSyntaxHighlighter
{
    Q_OBJECT
public:
    explicit AbcHighlighter(QTextDocument *document);

    // Off: lines keep whatever format they were written with (the file information block).
    void setColouring(bool on);
    bool isColouring() const { return m_on; }

protected:
    void highlightBlock(const QString &text) override;

private:
    bool m_on = true;
};


} // namespace fenwork
