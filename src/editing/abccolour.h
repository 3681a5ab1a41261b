#pragma once
// Syntax colouring of ABC text, without the editor: one fixed expression, a style chosen by the
// first two characters of each match, and red for everything the expression leaves alone (the
// notes). The editor resets a region to the default style and then applies these ranges.
#include <QString>
#include <QVector>

namespace fenwork {

enum class AbcStyle : unsigned char {
    Default, // plain music
    Bar, // bars, repeats, endings, tuplets
    InlineField, // [K:D], bracket chords
    Quoted, // "chords" and "^annotations"
    Decoration, // ~ and {grace notes}
    Directive, // %% lines
    Comment,
    Continuation, // a "\" at a line end
    FieldLetter, // "T:" of a field line
    FieldValue,
    Remark, // the value of r:
    Part, // the value of P:
};

struct AbcStyleFormat
{
    int colour = 0; // 0xBBGGRR
    bool bold = false;
    bool italic = false;
};

AbcStyleFormat abcStyleFormat(AbcStyle style);

struct AbcColourRange
{
    qsizetype start = 0; // position in the whole text, the base offset included
    qsizetype length = 0;
    AbcStyle style = AbcStyle::Default;
    int colour = 0;
    bool bold = false;
    bool italic = false;
};

// Ranges of `piece` in ascending order, never overlapping and never empty, each moved by `base`
// (the piece's position in the editor's text). What they leave uncovered has the default style.
// Positions count the characters of the text as given, CR LF included.
QVector<AbcColourRange> abcColourRanges(const QString &piece, qsizetype base = 0);

struct TextRegion
{
    qsizetype start = 0;
    qsizetype length = 0;
};

// The caret's line: from its first character to the start of the next line (its line break
// included), or to the end of the text on the last line.
TextRegion caretLineRegion(const QString &text, qsizetype caret);

// The keystroke case: only the caret's line is coloured. `region` receives that line, which the
// editor resets to the default style before applying the ranges.
QVector<AbcColourRange> abcColourCaretLine(
    const QString &text, qsizetype caret, TextRegion *region = nullptr);

} // namespace fenwork
