#include "editing/autoinsert.h"

#include "frame/appcontext.h"
#include "frame/paths.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "frame/userdialogs.h"

#include <QFileInfo>

namespace fenwork {

namespace {

bool isWordEnd(QChar c)
{
    return QStringLiteral("\r\n |,;:.?![({").contains(c);
}

// One field of a comma-delimited line: a quoted string runs to its closing quote, line breaks
// and all, a doubled quote standing for one; an unquoted one to the next comma or line end.
QString readField(const QString &text, qsizetype &at)
{
    while (at < text.size() && text.at(at) == u' ')
        ++at;
    QString field;
    if (at < text.size() && text.at(at) == u'"') {
        ++at;
        while (at < text.size()) {
            const QChar c = text.at(at++);
            if (c != u'"') {
                field += c;
            } else if (at < text.size() && text.at(at) == u'"') {
                field += c;
                ++at;
            } else {
                break;
            }
        }
    } else {
        qsizetype end = at;
        while (end < text.size() && text.at(end) != u',' && text.at(end) != u'\r' && text.at(end) != u'\n')
            ++end;
        field = text.mid(at, end - at);
        at = end;
    }
    // Past the separator: a comma, or the line end.
    while (at < text.size() && text.at(at) != u',' && text.at(at) != u'\n')
        ++at;
    if (at < text.size())
        ++at;
    return field;
}

// Quotes are doubled, so that any text reads back as it was written.
QString quoted(QString text)
{
    return u'"' + text.replace(QStringLiteral("\""), QStringLiteral("\"\"")) + u'"';
}

} // namespace

QString insAutoFile(const AppContext &app)
{
    return app.paths().userRoot() + QStringLiteral("/insauto.dat");
}

QList<InsertionEntry> loadInsertions(const AppContext &app)
{
    const QString own = insAutoFile(app);
    return Lire_insAuto(QFileInfo::exists(own) ? own : app.paths().inProgram(QStringLiteral("insauto.dat")));
}

QList<InsertionEntry> Lire_insAuto(const QString &path)
{
    const TextFileResult read = readTextFile(path);
    if (!read.ok)
        return {};
    const QString &text = read.text;
    qsizetype at = 0;
    const int count = trimBlanks(readField(text, at)).toInt();
    QList<InsertionEntry> entries;
    for (int i = 0; i < count && at < text.size(); ++i) {
        InsertionEntry entry;
        entry.code = readField(text, at);
        entry.text = readField(text, at);
        entries << entry;
    }
    return entries;
}

bool writeInsAuto(const QString &path, const QList<InsertionEntry> &entries, QString *error)
{
    QString out = QString::number(entries.size()) + CRLF;
    for (const InsertionEntry &entry : entries)
        out += quoted(entry.code) + u',' + quoted(entry.text) + CRLF;
    return writeTextFile(path, out, TextEncoding::Utf8, error);
}

int findInsertion(const QList<InsertionEntry> &entries, const QString &code)
{
    for (int i = 0; i < entries.size(); ++i) {
        if (entries.at(i).code == code)
            return i;
    }
    return -1;
}

TextSpan insertionWordAt(const QString &text, qsizetype caret)
{
    caret = qBound(qsizetype(0), caret, text.size());
    qsizetype start = caret;
    while (start > 0 && !isWordEnd(text.at(start - 1)))
        --start;
    qsizetype end = caret;
    while (end < text.size() && !isWordEnd(text.at(end)))
        ++end;
    return { start, end - start };
}

bool def_Insertion(AppContext &app, const QString &selection)
{
    UserDialogs &ui = app.ui();
    if (selection.isEmpty()) {
        ui.message(app.msg("<selBeforeNewInser>"), UserDialogs::Icon::Information);
        return false;
    }
    const QString prompt = app.msg("<createNew1>") + CRLF + CRLF + app.msg("<createNew2>");
    QString code;
    for (;;) {
        // A leading blank asks to keep the selection's format; plain text has none to keep.
        code = trimBlanks(ui.inputText(prompt, app.msg("<newEntry>"), app.msg("<createNew3>")));
        if (code.isEmpty())
            return false;
        if (!code.contains(u' '))
            break;
        ui.message(app.msg("<spaceForbid>"), UserDialogs::Icon::Warning);
    }
    const QString path = insAutoFile(app);
    QList<InsertionEntry> entries = loadInsertions(app);
    const int existing = findInsertion(entries, code);
    if (existing >= 0) {
        if (ui.question(app.msg("<codeAlreadyExist>")) != UserDialogs::Answer::Yes)
            return false;
        entries[existing].text = selection;
    } else {
        entries << InsertionEntry { code, selection };
    }
    QString error;
    if (!writeInsAuto(path, entries, &error)) {
        ui.contextError(QStringLiteral("def_Insertion"), error);
        return false;
    }
    return true;
}

} // namespace fenwork
