// Real collections through open and save: a second save writes what the first wrote, every tune
// is found, and no line of music is lost on the way (allowing for the rewrites an open makes).
#include "testenv.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/textcodecs.h"
#include "frame/textfile.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QDirIterator>
#include <QHash>
#include <QTest>

using namespace fenwork;

namespace {

QStringList splitLines(QString text)
{
    text.replace(CRLF, QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    return text.split(u'\n');
}

// What survives every documented rewrite of a line: its characters but for blanks, bar lines
// and colons (bars are closed up, double repeats split over two lines, a repeat sign glued
// before a field moves to the next line, ":|:" becomes ":||:").
QString canonical(const QString &line)
{
    QString out;
    out.reserve(line.size());
    for (const QChar c : line)
        if (c != u' ' && c != u'|' && c != u':')
            out.append(c);
    return out;
}

// The music lines of a file as it lies on disk, after the rewrites that move text between
// lines: a line beginning with "/" joins the line before it, except inside PostScript blocks,
// which are left out here since no rewrite touches them.
QStringList originalMusicLines(const QString &fileText)
{
    const QStringList raw = splitLines(fileText);
    QVector<bool> inBlock(raw.size(), false);
    for (qsizetype i = 0; i < raw.size(); ++i) {
        if (!raw.at(i).startsWith(QStringLiteral("%%beginps")))
            continue;
        qsizetype end = i + 1;
        while (end < raw.size() && !raw.at(end).startsWith(QStringLiteral("%%endps")))
            ++end;
        if (end == raw.size())
            continue;
        for (qsizetype k = i; k <= end; ++k)
            inBlock[k] = true;
        i = end;
    }
    QStringList joined;
    QVector<bool> joinedBlock;
    for (qsizetype i = 0; i < raw.size(); ++i) {
        if (!inBlock.at(i) && raw.at(i).startsWith(u'/') && !joined.isEmpty()) {
            joined.last() += raw.at(i);
            continue;
        }
        joined.append(raw.at(i));
        joinedBlock.append(inBlock.at(i));
    }
    QStringList music;
    for (qsizetype i = 0; i < joined.size(); ++i) {
        if (joinedBlock.at(i))
            continue;
        QString line = abcEscapeDecode(joined.at(i));
        if (GetIconeLigne(line) != Pic::Mus)
            continue;
        const QString key = canonical(line);
        if (!key.isEmpty())
            music.append(key);
    }
    return music;
}

int xLineCount(const QString &fileText)
{
    int n = 0;
    for (const QString &line : splitLines(fileText))
        if (trimBlanks(line).startsWith(QStringLiteral("X:")))
            ++n;
    return n;
}

bool hasInclude(const QString &fileText)
{
    for (const QString &line : splitLines(fileText))
        if (trimBlanks(line).left(13).toLower() == u"%%abc-include")
            return true;
    return false;
}

} // namespace

class TestRoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void corpusFile_data()
    {
        QTest::addColumn<QString>("path");
        const QString corpus = test::corpusDir();
        if (corpus.isEmpty())
            QSKIP("No corpus of ABC collections beside the project (../shared/corpus)");
        QStringList files;
        QDirIterator it(corpus, { QStringLiteral("*.abc") }, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext())
            files.append(it.next());
        files.sort();
        for (const QString &file : files)
            QTest::newRow(qPrintable(QDir(corpus).relativeFilePath(file))) << file;
    }
    void corpusFile()
    {
        QFETCH(QString, path);
        test::TestEnv env;
        AppContext &app = env.app();
        TuneStore &store = app.store();
        // Nothing may be written beside the corpus: no backup copies.
        app.ini().set(keys::FichBak, QStringLiteral("0"));
        createWorkspaceRoot(app);

        const TextFileResult original = readTextFile(path);
        QVERIFY(original.ok);

        const QString kFile = store.FichierOuvrir(path, false, true, false);
        QVERIFY2(!kFile.isEmpty(), qPrintable(env.ui().messages().join(u'\n')));
        QVERIFY(!env.ui().exitCode);
        const Node *body = app.tree().find(kFile + key::BdyFile);
        QCOMPARE(body ? body->childCount() : 0, xLineCount(original.text));

        const QString first = env.path(QStringLiteral("first.abc"));
        const QString second = env.path(QStringLiteral("second.abc"));
        QDir().mkpath(QFileInfo(first).absolutePath());
        QVERIFY(store.FichierSaveFromKey(kFile, first, QString()));
        createWorkspaceRoot(app);
        store.forgetFile(kFile);
        const QString kAgain = store.FichierOuvrir(first, false, true, false);
        QVERIFY(!kAgain.isEmpty());
        QVERIFY(store.FichierSaveFromKey(kAgain, second, QString()));
        if (!hasInclude(original.text))
            QCOMPARE(test::readBytes(second), test::readBytes(first));

        // Every music line of the original still stands somewhere in what was saved.
        QHash<QString, int> saved;
        for (const QString &line : splitLines(readTextFile(first).text))
            ++saved[canonical(line)];
        const QStringList music = originalMusicLines(original.text);
        // Guards the comparison itself: a collection of tunes has music (the templates have none).
        QVERIFY(
            xLineCount(original.text) == 0 || !music.isEmpty() || path.contains(QStringLiteral("TEMPLATE")));
        QStringList lost;
        for (const QString &line : music) {
            int &left = saved[line];
            if (left > 0)
                --left;
            else
                lost.append(line);
        }
        QVERIFY2(lost.isEmpty(),
            qPrintable(QStringLiteral("%1 music lines lost, first: %2")
                           .arg(lost.size())
                           .arg(lost.mid(0, 3).join(QStringLiteral(" / ")))));
        QVERIFY(!env.ui().hadUnexpectedPrompts());
    }
};

FENWORK_TEST(TestRoundTrip)
#include "tst_roundtrip.moc"
