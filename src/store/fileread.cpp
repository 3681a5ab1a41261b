// Opening a file: the whole text is read, its line ends and a few ABC spellings are made uniform,
// and the text goes to the file builder.
#include "store/tunestore.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/regexp.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/textcodecs.h"
#include "frame/userdialogs.h"
#include "store/recentfiles.h"
#include "store/workspacetree.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace fenwork {

namespace {

void yield(UserDialogs *ui, const QString &caption)
{
    if (!ui)
        return;
    ui->setProgressCaption(caption);
    ui->processEvents();
}

bool isAsciiWord(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_';
}

// A repeat sign glued before a field ("|:K:G") moves to the start of the next line, where it may
// be glued before a field again and move on. The text has CR LF line ends here, so this is one
// pass over its lines. A line must hold something after "|:K:" to count: taking the line end
// instead would lose the first character of the next line.
bool hasGluedRepeat(const QString &text)
{
    for (qsizetype at = text.indexOf(QStringLiteral("|:")); at >= 0; at = text.indexOf(QStringLiteral("|:"), at + 1)) {
        const bool lineStart = at == 0 || text.at(at - 1) == u'\n' || text.at(at - 1) == u'\r';
        if (lineStart && at + 4 < text.size() && isAsciiWord(text.at(at + 2)) && text.at(at + 3) == u':')
            return true;
    }
    return false;
}

void unglueRepeats(QString &text)
{
    if (!hasGluedRepeat(text))
        return;
    QString out;
    out.reserve(text.size() + 16);
    bool carry = false;
    qsizetype start = 0;
    while (true) {
        const qsizetype end = text.indexOf(CRLF, start);
        const QStringView original = QStringView(text).mid(start, (end < 0 ? text.size() : end) - start);
        // A spared PostScript block is a run of "@" until it is put back: a repeat sign glued to it
        // would hide it from the restore and lose the block, so the sign gets a line of its own.
        if (carry && original.startsWith(u"@@")) {
            out.append(QStringLiteral("|:"));
            out.append(CRLF);
            carry = false;
        }
        const auto at = [&](qsizetype i) { return carry ? (i < 2 ? QStringLiteral("|:").at(i) : original.at(i - 2)) : original.at(i); };
        const qsizetype length = original.size() + (carry ? 2 : 0);
        const bool glued = length >= 5 && at(0) == u'|' && at(1) == u':' && isAsciiWord(at(2)) && at(3) == u':';
        if (glued) {
            out.append(carry ? original : original.mid(2));
        } else {
            if (carry)
                out.append(QStringLiteral("|:"));
            out.append(original);
        }
        carry = glued;
        if (end < 0)
            break;
        out.append(CRLF);
        start = end + 2;
    }
    if (carry) {
        out.append(CRLF);
        out.append(QStringLiteral("|:"));
    }
    text = std::move(out);
}

} // namespace

bool normaliseAbcText(QString &text, UserDialogs *ui, QString *error)
{
    // Every convention of line end, also mixed, becomes CR LF. One pass, with no stand-in
    // character: a NUL the file itself holds must stay a NUL, not turn into a line break.
    {
        QString out;
        out.reserve(text.size() + text.size() / 32);
        const qsizetype n = text.size();
        for (qsizetype i = 0; i < n; ++i) {
            const QChar c = text.at(i);
            if (c == u'\r' || c == u'\n') {
                out.append(CRLF);
                if (c == u'\r' && i + 1 < n && text.at(i + 1) == u'\n')
                    ++i;
            } else {
                out.append(c);
            }
        }
        text = std::move(out);
    }

    text = trimBlanks(text);
    // A file of blanks and line ends only is as empty as a file of nothing.
    if (std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c == u' ' || c == u'\r' || c == u'\n'; })) {
        text.clear();
        return true;
    }

    // PostScript blocks are spared the rewrites: each is overwritten by "@" and put back at the end.
    RegExp regex;
    regex.Global = true;
    regex.MultiLine = true;
    regex.Pattern = QStringLiteral(R"(^%%beginps[\d\D\w\W\s\S]*?^%%endps)");
    QStringList blocks;
    for (const RegExpMatch &match : regex.Execute(text)) {
        blocks.append(match.value);
        text.replace(match.firstIndex, match.length, QString(match.length, u'@'));
    }

    yield(ui, QStringLiteral("ABC-strings..."));
    text = abcEscapeDecode(text, ui);

    regex.Pattern = QStringLiteral(R"(\| *?\|)");
    text = regex.Replace(text, QStringLiteral("||"));

    text = replaceAll(text, u"| 1", u"|1");
    text = replaceAll(text, u":| 2", u":|2");
    text = replaceAll(text, QString(CRLF + u'/'), u"/");
    const QString split = QStringLiteral(":|") + CRLF + QStringLiteral("|:");
    text = replaceAll(text, QString(QStringLiteral("::") + CRLF), split);
    text = replaceAll(text, QString(QStringLiteral(":|:") + CRLF), split);
    text = replaceAll(text, QString(QStringLiteral(":||:") + CRLF), split);

    unglueRepeats(text);

    regex.Pattern = QStringLiteral("^@@+");
    const QVector<RegExpMatch> marks = regex.Execute(text);
    for (qsizetype i = 0; i < marks.size(); ++i) {
        if (i >= blocks.size()) {
            if (error)
                *error = QStringLiteral("Subscript out of range");
            return false;
        }
        const RegExpMatch &mark = marks.at(i);
        const QString &block = blocks.at(i);
        text.replace(mark.firstIndex, qMin(mark.length, block.size()), block.left(mark.length));
    }
    return true;
}

QString TuneStore::FichierOuvrir(const QString &given, bool inTrash, bool noAsk, bool readOnly)
{
    // The tree, the recent list and the open-file list keep the path: a relative one would name
    // another file once the program runs from another folder.
    const QString path = given.isEmpty() ? given : QFileInfo(given).absoluteFilePath();
    UserDialogs &ui = m_app.ui();
    WorkspaceTree &tree = m_app.tree();
    BusyScope busy(ui);

    if (!inTrash) {
        if (Node *root = tree.root()) {
            const QString lower = path.toLower();
            for (Node *file : root->children())
                if (!file->Tag.isEmpty() && file->Tag.toLower() == lower)
                    return file->Key;
        }
    }

    const auto fail = [&](const QString &description) {
        ui.showProgress(false);
        ui.contextError(QStringLiteral("FichierOuvrir"), description);
        return QString();
    };

    ui.setProgressRange(100);
    ui.setProgressValue(0);
    ui.showProgress(true);
    yield(&ui, QStringLiteral("..."));

    QString why;
    if (!checkReadableFile(path, &why))
        return fail(why);

    if (!inTrash && backupOnOpen && m_app.ini().get(keys::FichBak) == u"1") {
        yield(&ui, QStringLiteral("Save BAK..."));
        // The old copy stays until the new one is whole.
        if (!copyFileSafely(path, path + QStringLiteral(".BAK"), &why))
            return fail(QStringLiteral("Can't make the backup copy: ") + why);
    }

    yield(&ui, QStringLiteral("Open..."));
    TextFileResult read = readTextFile(path);
    if (!read.ok)
        return fail(read.error);

    QString text = std::move(read.text);
    // A byte-order mark would hide the first line's "X:" or "%abc".
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    QString error;
    if (!normaliseAbcText(text, &ui, &error))
        return fail(error);
    if (text.isEmpty()) {
        ui.setBusy(false);
        ui.message(path + CRLF + CRLF + m_app.text(QStringLiteral("Msg"), QStringLiteral("<openFail>")));
        ui.setBusy(true);
        ui.showProgress(false);
        return {};
    }

    const QString kFile = AddStringFile(path, text, inTrash, noAsk, readOnly, {}, {}, ReuseWanted);
    if (kFile.isEmpty()) {
        ui.contextError(QStringLiteral("FichierOuvrir"), QStringLiteral("kFile is empty"));
        ui.showProgress(false);
        ui.terminate(1);
        return {};
    }
    setFileEncoding(kFile, read.encoding);
    if (!inTrash && recent)
        recent->add(path);
    return kFile;
}

} // namespace fenwork
