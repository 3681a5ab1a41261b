// Building a file's nodes: the header lines with their fixed keys, the alias
// question, files without tunes, a header rebuilt after an edit, the trash file.
#include "testenv.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "store/recentfiles.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QFile>
#include <QTest>

using namespace fenwork;

namespace {

QString crlf(QString text)
{
    return text.replace(u'\n', CRLF);
}

// The header's lines as "<key ending> <picture> <text>", one a line, the creator line as a mark.
QString headerDump(AppContext &app, const QString &kFile)
{
    const Node *header = app.tree().find(kFile + key::HdrFile);
    if (!header)
        return QStringLiteral("<no header>");
    QStringList out;
    for (const Node *line : header->children()) {
        QString text = line->Text;
        text.replace(app.creatorLine, QStringLiteral("@CREATOR@"));
        out << line->Key.mid(header->Key.size()) + u' ' + line->imageName() + u' ' + text;
    }
    return out.join(u'\n');
}

} // namespace

class TestFileBuild : public QObject
{
    Q_OBJECT

    QString open(test::TestEnv &env, const QString &text, const QString &name = QStringLiteral("t.abc"),
                 bool noAsk = true, bool readOnly = false)
    {
        if (!env.app().tree().root())
            createWorkspaceRoot(env.app());
        const QString path = env.writeFile(name, crlf(text).toUtf8());
        return env.app().store().FichierOuvrir(path, false, noAsk, readOnly);
    }

private slots:

    // The alias: read from the file, typed, refused or never asked for, and what each does to the
    // caption and the changed state.
    void alias_data()
    {
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("ask4alias");
        QTest::addColumn<bool>("noAsk");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<QString>("aliasLine");
        QTest::addColumn<QString>("picture");
        QTest::addColumn<QString>("caption");
        QTest::newRow("in the file") << "%%abc-alias Reels" << "1" << false << "" << false << "%%abc-alias Reels"
                                     << "fileabc" << "Reels [file.abc]";
        QTest::newRow("typed") << "" << "1" << false << "Jigs" << true << "%%abc-alias Jigs" << "fileabcm"
                               << "Jigs [file.abc]";
        QTest::newRow("cancelled") << "" << "1" << false << "" << true << "%%abc-alias none" << "fileabc"
                                   << "[file.abc]";
        QTest::newRow("asking turned off") << "" << "0" << false << "" << false << "%%abc-alias none" << "fileabc"
                                           << "[file.abc]";
    }
    void alias()
    {
        QFETCH(QString, header);
        QFETCH(QString, ask4alias);
        QFETCH(bool, noAsk);
        QFETCH(QString, answer);
        QFETCH(bool, asked);
        QFETCH(QString, aliasLine);
        QFETCH(QString, picture);
        QFETCH(QString, caption);
        test::TestEnv env;
        AppContext &app = env.app();
        app.ini().set(keys::Ask4alias, ask4alias);
        if (asked)
            env.ui().pushInput(answer);
        const QString kFile = open(env, header + "\nX:1\nT:t\nK:C\nabc\n", "file.abc", noAsk);
        QVERIFY(!kFile.isEmpty());
        const QStringList prompts = env.ui().texts(ScriptedDialogs::Kind::Input);
        if (asked) {
            QCOMPARE(prompts, QStringList{env.path("file.abc") + CRLF + CRLF + app.text("Msg", "<chooseAlias>")});
            QCOMPARE(env.ui().shown.last().title, app.text("Msg", "<aliasFile>"));
        } else {
            QCOMPARE(prompts, QStringList());
        }
        QVERIFY(!env.ui().hadUnexpectedPrompts());
        QCOMPARE(env.ui().messages(), QStringList());
        const Node *line = app.tree().find(kFile + "_hdrFile_lgalias");
        QVERIFY(line);
        QCOMPARE(line->Text, aliasLine);
        QCOMPARE(line->imageName(), QStringLiteral("chpetend"));
        QCOMPARE(app.tree().find(kFile)->imageName(), picture);
        QCOMPARE(app.tree().find(kFile)->Text, caption);
    }

    // A file with header lines only: a warning, an empty body, nothing supplied or asked, and it
    // still counts as an open file.
    void headerOnly()
    {
        test::TestEnv env;
        AppContext &app = env.app();
        const QString kFile = open(env, "%abc\n\n% only a header\n   \n", "hdr.abc", false);
        QCOMPARE(kFile, QStringLiteral("_file1"));
        QCOMPARE(env.ui().messages(), QStringList{env.path("hdr.abc") + CRLF + CRLF + app.text("Msg", "<lackingX>")});
        QCOMPARE(env.ui().texts(ScriptedDialogs::Kind::Input), QStringList());
        QCOMPARE(headerDump(app, kFile), QStringLiteral("_lgabc rem %abc\n_lg2 rem % only a header"));
        QCOMPARE(app.tree().find(kFile + "_bdyFile")->childCount(), 0);
        QCOMPARE(app.tree().find(kFile)->Text, QStringLiteral("[hdr.abc]"));
        QVERIFY(app.tree().root()->Text.startsWith(QStringLiteral("Fennelworks (1 ")));
        QCOMPARE(app.store().GetStringFile(kFile, false, false), crlf("%abc\n% only a header\n\n"));
    }

    // Two lines of one fixed key: the build fails, and the open treats that as fatal.
    void clashingFixedLines_data()
    {
        QTest::addColumn<QString>("header");
        QTest::addColumn<bool>("clash");
        QTest::newRow("two alias lines") << "%abc\n%%abc-alias A\n%%abc-alias B" << true;
        QTest::newRow("two %abc lines") << "%abc\n%abc" << false;
    }
    void clashingFixedLines()
    {
        QFETCH(QString, header);
        QFETCH(bool, clash);
        test::TestEnv env;
        const QString kFile = open(env, header + "\nX:1\nT:t\nK:C\nabc\n");
        if (!clash) {
            QVERIFY(!kFile.isEmpty());
            QCOMPARE(env.ui().messages(), QStringList());
            QVERIFY(!env.ui().exitCode.has_value());
            return;
        }
        QCOMPARE(kFile, QString());
        const QStringList messages = env.ui().messages();
        QCOMPARE(messages.size(), 2);
        const QString prefix = QStringLiteral("Context: AddStringFile") + CRLF + CRLF;
        QVERIFY2(messages.at(0).startsWith(prefix), qPrintable(messages.at(0)));
        QVERIFY(messages.at(0).size() > prefix.size());
        QCOMPARE(messages.at(1), QStringLiteral("Context: FichierOuvrir") + CRLF + CRLF + "kFile is empty");
        QCOMPARE(env.ui().exitCode, std::optional<int>(1));
        QVERIFY(!env.ui().progress.visible);
        QVERIFY(env.app().recent().items().value(0).isEmpty());
    }

    // A header rebuilt from edited text: fixed keys, keys by line count, supplied lines, the caption
    // (more in the golden folder edited-header).
    void rebuildHeader_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("caption");
        QTest::newRow("all fixed lines")
            << "%abc-2.1\n%%abc-alias Jigs\n%%abc-creator Fennelworks 0.0 [1999]\n%%MIDI x"
            << "_lgabc rem %abc-2.1\n_lgalias chpetend %%abc-alias Jigs\n"
               "_lgcreator chpetend @CREATOR@\n_lg4 chpetend %%MIDI x"
            << "Jigs [t.abc]";
        QTest::newRow("none of them") << "T:hdr\n\n   \n%%beginps\nx y\n%%endps"
                                      << "_lgabc rem %abc\n_lgalias chpetend %%abc-alias none\n"
                                         "_lgcreator chpetend @CREATOR@\n_lg1 propr T:hdr\n_lg2 chpetend %%beginps\n"
                                         "_lg3 noabc x y\n_lg4 chpetend %%endps"
                                      << "Old [t.abc]";
        QTest::newRow("alias none")
            << "%abc\n%%abc-alias none"
            << "_lgabc rem %abc\n_lgcreator chpetend @CREATOR@\n_lgalias chpetend %%abc-alias none" << " [t.abc]";
        QTest::newRow("include") << "%abc\n%%abc-include hdr.abc"
                                 << "_lgabc rem %abc\n_lgalias chpetend %%abc-alias none\n"
                                    "_lgcreator chpetend @CREATOR@\n_lg2 include %%abc-include hdr.abc\n"
                                    "_lg2_inclg1 chpetend %%scale 0.8"
                                 << "Old [t.abc]";
    }
    void rebuildHeader()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QFETCH(QString, caption);
        test::TestEnv env;
        env.writeFile("hdr.abc", "%%scale 0.8\r\n");
        const QString kFile = open(env, "%abc\n%%abc-alias Old\nX:1\nT:t\nK:C\nabc\n");
        QCOMPARE(env.app().tree().find(kFile)->Text, QStringLiteral("Old [t.abc]"));
        env.app().store().rebuildFileHeader(kFile, crlf(text));
        QCOMPARE(headerDump(env.app(), kFile), expected);
        QCOMPARE(env.app().tree().find(kFile)->Text, caption);
        QCOMPARE(env.ui().messages(), QStringList());
        QVERIFY(env.app().tree().find(kFile + "_tune1_bdyTune_lg3")); // the tunes are left alone
    }

    // With noSaveHdrFile the header stays in the tree but not on disk; reopening supplies it again.
    void saveWithoutHeader()
    {
        test::TestEnv env;
        AppContext &app = env.app();
        app.ini().set(keys::NoSaveHdrFile, QStringLiteral("1"));
        const QString kFile = open(env, "%abc\n%%abc-alias Reels\n% notes\nX:1\nT:A\nK:G\nabc\n");
        QCOMPARE(app.store().GetStringFile(kFile, true, false), crlf("X:1\nT:A\nK:G\nabc\n\n"));
        const QString path = env.path("t.abc");
        QVERIFY(app.store().FichierSaveFromKey(kFile, path, QString()));
        QCOMPARE(test::readBytes(path), crlf("X:1\nT:A\nK:G\nabc\n\n\n").toUtf8());

        app.tree().remove(app.tree().find(kFile));
        env.ui().pushInput(QString());
        const QString again = app.store().FichierOuvrir(path, false, false, false);
        QVERIFY(!again.isEmpty());
        QCOMPARE(env.ui().texts(ScriptedDialogs::Kind::Input).size(), 1);
        QCOMPARE(headerDump(app, again), QStringLiteral("_lgabc rem %abc\n_lgalias chpetend %%abc-alias none\n"
                                                        "_lgcreator chpetend @CREATOR@"));

        // The trash box keeps its header all the same.
        const QString trash = env.writeFile("trash", crlf("%abc\n% trash notes\nX:1\nT:Gone\nK:C\nabc\n").toUtf8());
        QCOMPARE(app.store().FichierOuvrir(trash, true, true, false), QStringLiteral("_file0"));
        QVERIFY(app.store().FichierSaveFromKey(key::Trash, trash, QString()));
        const QString start = crlf("%abc\n" + app.creatorLine + "\n% trash notes\n\nX:1\n");
        QVERIFY(test::readBytes(trash).startsWith(start.toUtf8()));
    }

    // The trash file goes into the trash box's own nodes: no file node, no alias, no backup, no
    // includes followed, and it isn't a recent file.
    void trashLoad()
    {
        test::TestEnv env;
        AppContext &app = env.app();
        createWorkspaceRoot(app);
        env.writeFile("inc.abc", "T:included\r\n");
        const QString path = env.writeFile(
            "trash", crlf("%abc\n%%abc-creator Fennelworks 1\nX:1\n%~~~EX~~~ _file3\nT:Gone\n%%abc-include inc.abc\n"
                          "K:C\nabc\nX:2\nT:Gone too\nK:D\ndef\n")
                         .toUtf8());
        QCOMPARE(app.store().FichierOuvrir(path, true, false, false), QStringLiteral("_file0"));
        QCOMPARE(app.tree().root()->childCount(), 1);
        QCOMPARE(env.ui().shown.size(), 0);
        QVERIFY(!QFile::exists(path + ".BAK"));
        QVERIFY(app.recent().items().value(0).isEmpty());
        QCOMPARE(headerDump(app, "_file0"), QStringLiteral("_lgabc rem %abc\n_lgcreator chpetend @CREATOR@"));
        QVERIFY(app.tree().find("_file0_tune1_hdrTune_lgex"));
        QCOMPARE(app.tree().find("_file0_tune1_hdrTune")->childCount(), 4); // no included line, no error line
        QCOMPARE(app.tree().find("_file0_bdyFile")->childCount(), 2);
    }
};

FENWORK_TEST(TestFileBuild)
#include "tst_filebuild.moc"
