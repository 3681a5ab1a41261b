#pragma once
// Automatic insertion: a short code typed in the text, then F3, becomes a stored text. The codes
// live in one small file of the user root, rewritten whole after every change.
#include <QList>
#include <QString>

namespace fenwork {

class AppContext;

struct InsertionEntry
{
    QString code; // holds no blank
    QString text;
};

QString insAutoFile(const AppContext &app);
// The entries of the file in order; a missing or unreadable file gives none.
QList<InsertionEntry> Lire_insAuto(const QString &path);
// The user's table; until the user has one, the table shipped in the program folder. The first
// change writes the user's own file, which holds the shipped entries from then on.
QList<InsertionEntry> loadInsertions(const AppContext &app);
// The count on the first line, then one `"code","text"` line per entry.
bool writeInsAuto(const QString &path, const QList<InsertionEntry> &entries, QString *error = nullptr);
// The entry whose code equals `code`, case counting; -1 when none.
int findInsertion(const QList<InsertionEntry> &entries, const QString &code);

struct TextSpan
{
    qsizetype start = 0;
    qsizetype length = 0;
};
// The word around `caret`: up to the nearest line end, blank or punctuation of ABC on each side.
TextSpan insertionWordAt(const QString &text, qsizetype caret);

// Asks for a code for `selection` and stores the pair; a code with a blank inside is asked again,
// a code in use is replaced only when the user agrees. False when nothing was stored.
bool def_Insertion(AppContext &app, const QString &selection);

} // namespace fenwork
