// Opening ABC files: line ends, the spelling rewrites, PostScript blocks,
// encodings kept on save, and files that cannot be opened. Golden folders under data/ hold whole
// files: input.abc (with any files it includes), expected.abc (what a save writes, the creator line
// as "@CREATOR@") and tree.txt (the nodes below the file node).
#include "testenv.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/textfile.h"
#include "store/recentfiles.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QTest>

using namespace fenwork;

namespace {

QByteArray crlf(QByteArray text)
{
    return text.replace("\n", "\r\n");
}

QByteArray crlf(const QString &text)
{
    return crlf(text.toUtf8());
}

// A tune's lines after the first `skip` ones, joined by "\n".
QString tuneLinesAfter(const QString &tuneText, int skip)
{
    QStringList lines = tuneText.split(CRLF);
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines.mid(skip).join(u'\n');
}

QString colorName(int color)
{
    return QStringLiteral("%1").arg(color, 6, 16, QLatin1Char('0'));
}

// One line per node: key, picture, text, and the colour when one is set.
void dumpNode(const Node *node, int depth, const QString &creator, QStringList &out)
{
    QString text = node->Text;
    text.replace(creator, QStringLiteral("@CREATOR@"));
    QString line = QString(depth * 2, u' ') + node->Key + QStringLiteral(" | ") + node->imageName()
                   + QStringLiteral(" | ") + text;
    if (node->ForeColor != kDefaultColor)
        line += QStringLiteral(" | #") + colorName(node->ForeColor);
    out.append(line);
    for (const Node *child : node->children())
        dumpNode(child, depth + 1, creator, out);
}

QString dumpFile(AppContext &app, const QString &kFile)
{
    QStringList out;
    if (const Node *file = app.tree().find(kFile))
        for (const Node *child : file->children())
            dumpNode(child, 0, app.creatorLine, out);
    return out.join(u'\n');
}

// What a save writes, creator line replaced by a mark, CR LF as "\n".
QString savedText(test::TestEnv &env, const QString &kFile)
{
    const QString target = env.path(QStringLiteral("out/saved.abc"));
    QDir().mkpath(QFileInfo(target).absolutePath());
    if (!env.app().store().FichierSaveFromKey(kFile, target, QString()))
        return QStringLiteral("<save failed>");
    const QByteArray bytes = test::readBytes(target);
    if (bytes.count('\r') != bytes.count("\r\n") || bytes.count('\n') != bytes.count("\r\n"))
        return QStringLiteral("<a line end other than CR LF>");
    QString text = QString::fromUtf8(bytes);
    text.replace(env.app().creatorLine, QStringLiteral("@CREATOR@"));
    return text.replace(CRLF, QStringLiteral("\n"));
}

// The tree holds nothing but the root and the trash box.
bool treeIsBare(AppContext &app)
{
    return app.tree().root() && app.tree().root()->childCount() == 1;
}

} // namespace

class TestFileRead : public QObject
{
    Q_OBJECT

    QString open(test::TestEnv &env, const QByteArray &bytes, const QString &name = QStringLiteral("t.abc"))
    {
        createWorkspaceRoot(env.app());
        const QString path = env.writeFile(name, bytes);
        return env.app().store().FichierOuvrir(path, false, true, false);
    }

private slots:
    // Every line-end convention, also mixed, reads as CR LF; a line end left at the end of the
    // file changes nothing either.
    void lineEnds_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray lines[] = {"%abc-2.1", "% head", "X:1", "T:A", "K:G", "abc|", "X:2", "T:B", "def|"};
        const auto join = [&](const QList<QByteArray> &ends) {
            QByteArray out;
            for (int i = 0; i < 9; ++i)
                out += lines[i] + ends.at(i % ends.size());
            return out;
        };
        QTest::newRow("mixed") << join({"\r\n", "\n", "\r", "\n", "\r\n", "\r", "\r", "\n", "\r\n"});
        QTest::newRow("blank lines") << join({"\n\n", "\r\r", "\r\n\r\n"});
    }
    void lineEnds()
    {
        QFETCH(QByteArray, bytes);
        test::TestEnv env;
        const QString kFile = open(env, bytes);
        QVERIFY(!kFile.isEmpty());
        QCOMPARE(env.ui().messages(), QStringList());
        QCOMPARE(savedText(env, kFile),
                 QStringLiteral("%abc-2.1\n%%abc-alias none\n@CREATOR@\n% head\n\nX:1\nT:A\nK:G\nabc|\n\n"
                                "X:2\nT:B\nK:C\ndef|\n\n\n"));
    }

    // Rewrites the golden folders do not show, seen in a tune's lines after "X:1", "T:t".
    void rewrites_data()
    {
        QTest::addColumn<QString>("body");
        QTest::addColumn<QString>("expected");
        QTest::newRow("blanks before a glued repeat") << "K:C\nabc\n   |:K:D\ndef" << "K:C\nabc\n|:K:D\ndef";
        QTest::newRow("glued before a PostScript block keeps the block")
            << "K:C\n|:P:A\n%%beginps\n/x 1 def\n%%endps\nabc|"
            << "K:C\nP:A\n|:\n%%beginps\n/x 1 def\n%%endps\nabc|";
        QTest::newRow("a lone @ is text") << "K:C\n@x\nabc @@ d" << "K:C\n@x\nabc @@ d";
        QTest::newRow("doubled backslash decodes") << R"(K:C
w:\\'e a\\b)" << "K:C\nw:é a\\b";
    }
    void rewrites()
    {
        QFETCH(QString, body);
        QFETCH(QString, expected);
        test::TestEnv env;
        const QString kFile = open(env, crlf(QStringLiteral("X:1\nT:t\n") + body + u'\n'));
        QVERIFY(!kFile.isEmpty());
        QCOMPARE(env.ui().messages(), QStringList());
        QCOMPARE(tuneLinesAfter(env.app().store().GetStringTune(kFile + "_tune1", false), 2), expected);
    }

    // PostScript blocks are spared every rewrite; a block without its end is no block.
    void postScript()
    {
        test::TestEnv env;
        const QByteArray input = crlf(QByteArray(R"(%%beginps
/bar { 0 0 moveto | 1 } def
/x ::
Caf\'e | |
%%endps
X:1
K:C
abc| 1 d
%%beginps
/y { | 1 } def
%%endps
e f
%%beginps
/z | 1 def
)"));
        const QString kFile = open(env, input);
        QVERIFY(!kFile.isEmpty());
        QCOMPARE(env.ui().messages(), QStringList());
        QCOMPARE(savedText(env, kFile), QString::fromUtf8(R"(%abc
%%abc-alias none
@CREATOR@
%%beginps
/bar { 0 0 moveto | 1 } def
/x ::
Caf\'e | |
%%endps

X:1
T:(untitled)
K:C
abc|1 d
%%beginps
/y { | 1 } def
%%endps
e f
%%beginps/z |1 def


)"));
    }

    // A path already open, in any case of letters, gives the open key: nothing is read again.
    void alreadyOpen()
    {
        test::TestEnv env;
        const QString kFile = open(env, crlf(QByteArray("X:1\nT:One\nK:C\nabc\n")), QStringLiteral("Tune.abc"));
        QVERIFY(!kFile.isEmpty());
        QFile::remove(env.path("Tune.abc.BAK"));
        env.writeFile("Tune.abc", crlf(QByteArray("X:1\nT:One\nK:C\nabc\nX:2\nT:Two\nabc\n")));
        const QString before = dumpFile(env.app(), kFile);
        TuneStore &store = env.app().store();
        QCOMPARE(store.FichierOuvrir(env.path("TUNE.ABC"), false, true, false), kFile);
        QCOMPARE(store.FichierOuvrir(env.path("Tune.abc"), false, true, false), kFile);
        QCOMPARE(dumpFile(env.app(), kFile), before);
        QCOMPARE(env.app().tree().root()->childCount(), 2);
        QVERIFY(!QFile::exists(env.path("Tune.abc.BAK")));
        QCOMPARE(env.ui().messages(), QStringList());
        QCOMPARE(env.app().recent().items().value(0), env.path("Tune.abc"));
    }

    // A file keeps its encoding on save; escapes in a plain ASCII file become UTF-8 letters unless
    // the header asks for Latin-1, which must not cost the letters Latin-1 lacks. With ABCstr the
    // letters go out as escapes, a backslash doubled.
    void encodings_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("abcStr");
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<QByteArray>("notWritten");
        // clang-format off
        QTest::newRow("Latin-1 with escapes") << QByteArray("X:1\nT:Caf\xe9 \\`a la cr\\`eme\nK:C\nabc\n") << false << QByteArray("T:Caf\xe9 \xe0 la cr\xe8me\r\n") << QByteArray("\xc3");
        QTest::newRow("UTF-8") << QByteArray("X:1\nT:Caf\xc3\xa9 \xc3\xa0 la cr\xc3\xa8me\nK:C\nabc\n") << false << QByteArray("T:Caf\xc3\xa9 \xc3\xa0 la cr\xc3\xa8me\r\n") << QByteArray("\xe9 ");
        QTest::newRow("ASCII escapes") << QByteArray("X:1\nT:Caf\\'e \\`a la cr\\`eme\nK:C\nabc\n") << false << QByteArray("T:Caf\xc3\xa9 \xc3\xa0 la cr\xc3\xa8me\r\n") << QByteArray("\\'e");
        QTest::newRow("Latin-1 declared, letters it lacks") << QByteArray("%%abc-charset latin1\nX:1\nT:Dvo\xc5\x99\xc3\xa1k\nK:C\nabc\n") << false << QByteArray("T:Dvo\xc5\x99\xc3\xa1k\r\n") << QByteArray("Dvo?");
        QTest::newRow("saved as escapes") << QByteArray("X:1\nT:Caf\xc3\xa9 \xc3\x85se\nK:C\nw:C:\\a\nabc\n") << true << QByteArray("T:Caf\\'e \\oAse\r\nK:C\r\nw:C:\\\\a\r\n") << QByteArray("\xc3");
        // clang-format on
    }
    void encodings()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, abcStr);
        QFETCH(QByteArray, written);
        QFETCH(QByteArray, notWritten);
        test::TestEnv env;
        env.app().ini().setBool(keys::ABCstr, abcStr);
        const QString kFile = open(env, bytes);
        QVERIFY(!kFile.isEmpty());
        const QString out = env.path("out.abc");
        QVERIFY(env.app().store().FichierSaveFromKey(kFile, out, QString()));
        const QByteArray saved = test::readBytes(out);
        QVERIFY2(saved.contains(written), saved.constData());
        QVERIFY2(!saved.contains(notWritten), saved.constData());
    }

    // A UTF-8 file written with a byte order mark is still a tune file.
    void byteOrderMark()
    {
        test::TestEnv env;
        const QString kFile = open(env, QByteArray("\xef\xbb\xbfX:1\r\nT:Bom\r\nK:D\r\nabc\r\n"));
        QVERIFY(!kFile.isEmpty());
        QCOMPARE(env.ui().messages(), QStringList());
        QVERIFY(env.app().tree().find(kFile + "_tune1"));
    }

    // Files that cannot be opened: one message, nothing half made in the tree, no bar or busy cursor
    // left behind, backups on. A line beginning "@@" stands for a PostScript block that is not there.
    void unopenable_data()
    {
        QTest::addColumn<QString>("kind"); // "bytes", "missing", "folder" or "locked"
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("said"); // how the message starts; "<key>": the path, then that message
        const QString context = QStringLiteral("Context: FichierOuvrir\r\n\r\n");
        // clang-format off
        QTest::newRow("blanks and line ends") << "bytes" << QByteArray("   \r\n  \n \r   \r\n") << "<openFail>";
        QTest::newRow("@@ without blocks") << "bytes" << crlf(QByteArray("X:1\nK:C\n@@ x\nabc\n")) << context;
        QTest::newRow("@@ after a block") << "bytes" << crlf(QByteArray("%%beginps\n/x 1 def\n%%endps\nX:1\nK:C\n@@@\nabc\n")) << context;
        QTest::newRow("missing") << "missing" << QByteArray() << context;
        QTest::newRow("folder") << "folder" << QByteArray() << context;
        QTest::newRow("unreadable") << "locked" << QByteArray("X:1\nK:C\nabc\n") << context;
        // clang-format on
    }
    void unopenable()
    {
        QFETCH(QString, kind);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, said);
        test::TestEnv env;
        createWorkspaceRoot(env.app());
        env.app().ini().set(keys::FichBak, QStringLiteral("1"));
        const QString path = env.path(QStringLiteral("t.abc"));
        if (kind == u"folder")
            QVERIFY(QDir().mkpath(path));
        else if (kind != u"missing")
            env.writeFile(QStringLiteral("t.abc"), bytes);
        const auto restore
            = qScopeGuard([&] { QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner); });
        if (kind == u"locked") {
            QVERIFY(QFile::setPermissions(path, QFileDevice::Permissions()));
            QFile probe(path);
            if (probe.open(QIODevice::ReadOnly))
                QSKIP("this user reads files whatever their permissions (root)");
        }
        QCOMPARE(env.app().store().FichierOuvrir(path, false, true, false), QString());
        QCOMPARE(env.ui().messages().size(), 1);
        const QString message = env.ui().lastMessage();
        if (said.startsWith(u'<'))
            QCOMPARE(message, path + CRLF + CRLF + env.app().text(QStringLiteral("Msg"), said));
        else
            QVERIFY2(message.startsWith(said) && message.size() > said.size(), qPrintable(message));
        QVERIFY(treeIsBare(env.app()));
        QVERIFY(!env.ui().progress.visible);
        QCOMPARE(env.ui().busyDepth, 0);
        QVERIFY(!env.ui().exitCode.has_value());
        QVERIFY(env.app().recent().items().value(0).isEmpty());
    }

    // Some fifty megabytes of tunes with long lines: all of them arrive, the last one whole.
    void largeFile()
    {
        test::TestEnv env;
        QByteArray music;
        for (int i = 0; i < 20; ++i)
            music += "\"D\"d2fd Adfd|\"G\"g2bg \"A\"a2fa|\"D\"d2fd Adfd|\"G\"gfed \"A\"cABc|";
        const QByteArray tune = "T:Reel number %1\nR:reel\nM:4/4\nL:1/8\nK:D\n|:" + music + ":|\n"
                                "|: fd | 1 \"G\"B2 B2 \"A\"A4 | \"D\" defg a4 :|2 \"Bm\"b2ag \"A\"f2e2|" + music
                                + "\"D\"d6|]\n% Caf\\'e :|: x\n\n";
        QByteArray bytes = "%abc-2.1\n%%abc-alias Big\n";
        bytes.reserve(52 * 1024 * 1024);
        int count = 0;
        while (bytes.size() < 50 * 1024 * 1024) {
            ++count;
            const QByteArray number = QByteArray::number(count);
            bytes += "X:" + number + "\n" + QByteArray(tune).replace("%1", number);
        }
        const QString kFile = open(env, bytes, QStringLiteral("big.abc"));
        QVERIFY(!kFile.isEmpty());
        QCOMPARE(env.ui().messages(), QStringList());
        const Node *body = env.app().tree().find(kFile + "_bdyFile");
        QCOMPARE(body->childCount(), count);
        const QString last = kFile + "_tune" + QString::number(count);
        QCOMPARE(env.app().tree().find(last)->Text, QStringLiteral("[%1]  Reel number %1").arg(count));
        const QString text = env.app().store().GetStringTune(last, false);
        QVERIFY(text.contains(QStringLiteral("|: fd |1 \"G\"B2")));
        QVERIFY(text.contains(QStringLiteral("% Café :||: x")));
    }

    void golden_data()
    {
        QTest::addColumn<QString>("folder");
        const QDir data(test::testDataDir() + QStringLiteral("/store/data"));
        const QStringList cases = data.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        QVERIFY(!cases.isEmpty());
        for (const QString &name : cases)
            QTest::newRow(qPrintable(name)) << data.filePath(name);
    }
    // Each case folder is copied beside a fresh user root, so that the backup and the includes stay there.
    void golden()
    {
        QFETCH(QString, folder);
        test::TestEnv env;
        createWorkspaceRoot(env.app());
        const QDir source(folder);
        for (const QString &name : source.entryList(QDir::Files)) {
            if (name != u"expected.abc" && name != u"tree.txt")
                env.writeFile(name, test::readBytes(source.filePath(name)));
        }
        const QString kFile = env.app().store().FichierOuvrir(env.path("input.abc"), false, true, false);
        QVERIFY(!kFile.isEmpty());
        // A header the user edited is given back as the edit session does.
        if (source.exists(QStringLiteral("edited-header.abc"))) {
            QString edited = QString::fromUtf8(test::readBytes(source.filePath(QStringLiteral("edited-header.abc"))));
            env.app().store().rebuildFileHeader(kFile, edited.replace(u'\n', CRLF));
        }
        QCOMPARE(env.ui().messages(), QStringList());
        const auto expected = [&](const QString &name) {
            QString text = QString::fromUtf8(test::readBytes(source.filePath(name)));
            text.replace(CRLF, QStringLiteral("\n"));
            return text;
        };
        if (source.exists(QStringLiteral("tree.txt")))
            QCOMPARE(dumpFile(env.app(), kFile) + u'\n', expected(QStringLiteral("tree.txt")));
        if (source.exists(QStringLiteral("expected.abc"))) {
            const QString saved = savedText(env, kFile);
            QCOMPARE(saved, expected(QStringLiteral("expected.abc")));
        }
    }
};

FENWORK_TEST(TestFileRead)
#include "tst_fileread.moc"
