// The file commands: save and save as with their refusals, the trash box, closing with its
// question, saving the selected tunes, the recent list, and a save that cannot write.
#include "testenv.h"
#include "testmain.h"

#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "store/filecommands.h"
#include "store/recentfiles.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <memory>

using namespace fenwork;
using Answer = UserDialogs::Answer;

namespace {

const QByteArray kTwoTunes = "%abc\n%%abc-alias none\nX:1\nT:First\nK:G\nabc|\n\nX:2\nT:Second\nK:D\ndef|\n";

QByteArray crlf(QByteArray text)
{
    return text.replace("\n", "\r\n");
}

// A test's world: a fresh user root, the workspace root, no alias questions.
class World
{
public:
    World()
    {
        createWorkspaceRoot(app());
        app().ini().set(keys::Ask4alias, QStringLiteral("0"));
        QObject::connect(&app().store(), &TuneStore::nodeSelectionRequested,
            [this](const QString &key) { selected.append(key); });
    }
    AppContext &app() { return env.app(); }
    ScriptedDialogs &ui() { return env.ui(); }
    TuneStore &store() { return app().store(); }
    Node *node(const QString &key) { return app().tree().find(key); }

    QString open(const QString &name, const QByteArray &bytes = kTwoTunes, bool readOnly = false)
    {
        const QString path = env.writeFile(name, bytes);
        return store().FichierOuvrir(path, false, true, readOnly);
    }
    // Opens a file and marks it and its first tune changed, as an accepted edit does.
    QString openChanged(const QString &name, const QByteArray &bytes = kTwoTunes, bool readOnly = false)
    {
        const QString kFile = open(name, bytes, readOnly);
        store().SetFlagModifFile(kFile);
        app().tree().setImage(node(kFile + QStringLiteral("_tune1")), Pic::TuneM);
        return kFile;
    }
    QString expectedSave(const QByteArray &header, const QByteArray &tunes)
    {
        QString text = QString::fromUtf8(header);
        text.replace(QStringLiteral("@CREATOR@"), env.app().creatorLine);
        return QString::fromUtf8(crlf(text.toUtf8() + "\n" + tunes + "\n"));
    }
    QString msg(const char *key) { return app().text(QStringLiteral("Msg"), QString::fromLatin1(key)); }

    test::TestEnv env;
    QStringList selected;
};

// The creator line is supplied right after the first header line.
const QByteArray kSavedHeader = "%abc\n@CREATOR@\n%%abc-alias none\n";
const QByteArray kSavedTunes = "X:1\nT:First\nK:G\nabc|\n\nX:2\nT:Second\nK:D\ndef|\n\n";

} // namespace

class TestFileCommands : public QObject
{
    Q_OBJECT

private slots:
    void saveWritesAndClearsChangedState()
    {
        World w;
        const QString kFile = w.openChanged(QStringLiteral("a.abc"));
        const QString path = w.node(kFile)->Tag;
        w.app().commands().setEnabled(QStringLiteral("save"), true);

        w.app().selection().setFileKey(kFile);
        mnu_save(w.app(), 0);

        QCOMPARE(test::readAll(path), w.expectedSave(kSavedHeader, kSavedTunes));
        QCOMPARE(w.node(kFile)->Image, Pic::FileAbc);
        QCOMPARE(w.node(kFile + QStringLiteral("_tune1"))->Image, Pic::Tune);
        QVERIFY(!w.app().commands().isEnabled(QStringLiteral("save")));
        QCOMPARE(w.app().recent().items().first(), path);
        QVERIFY(w.ui().messages().isEmpty());
        QVERIFY(!w.ui().hadUnexpectedPrompts());
    }

    void saveAsLineEnds_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QByteArray>("lineEnd");
        QTest::newRow("Unix line ends") << 2 << QByteArray("\n");
        QTest::newRow("classic Mac line ends") << 3 << QByteArray("\r");
        QTest::newRow("text file") << 4 << QByteArray("\r\n");
    }
    void saveAsLineEnds()
    {
        QFETCH(int, row);
        QFETCH(QByteArray, lineEnd);
        World w;
        const QString kFile
            = w.openChanged(QStringLiteral("a.abc"), "%abc\n%%abc-alias Reels\nX:1\nT:First\nK:G\nabc|\n");
        const QString oldPath = w.node(kFile)->Tag;
        const QByteArray oldBytes = test::readBytes(oldPath);
        const QString target = w.env.path(QStringLiteral("copy.abc"));
        w.ui().pushFileName(target, row);

        QVERIFY(FichierEnregistrer(w.app(), kFile, 1));

        // The whole text takes the chosen line end but for the one the write adds last.
        QByteArray expected
            = w.expectedSave("%abc\n@CREATOR@\n%%abc-alias Reels\n", "X:1\nT:First\nK:G\nabc|\n\n").toUtf8();
        expected.chop(2);
        expected.replace("\r\n", lineEnd);
        expected += "\r\n";
        QCOMPARE(test::readBytes(target), expected);
        QCOMPARE(test::readBytes(oldPath), oldBytes);
        QCOMPARE(w.node(kFile)->Tag, target);
        QCOMPARE(w.node(kFile)->Text, QStringLiteral("Reels [copy.abc]"));

        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::SaveFile), QStringList(oldPath));
    }

    // A save as onto an open file's path is refused, one cancelled does nothing: the file stays changed.
    void saveAsThatDoesNotHappen_data()
    {
        QTest::addColumn<QString>("target"); // "own" or "other" open file, or "" for a cancel
        QTest::newRow("its own path") << "own";
        QTest::newRow("another open file") << "other";
        QTest::newRow("cancelled") << "";
    }
    void saveAsThatDoesNotHappen()
    {
        QFETCH(QString, target);
        World w;
        const QString kFile = w.openChanged(QStringLiteral("a.abc"));
        const QString kOther = w.open(QStringLiteral("b.abc"), "X:1\nK:C\nC|\n");
        const QString path = target.isEmpty() ? QString() : w.node(target == u"own" ? kFile : kOther)->Tag;
        const QByteArray before = test::readBytes(path);
        const QString caption = w.node(kFile)->Text;
        w.ui().pushFileName(path, 1);

        QVERIFY(!FichierEnregistrer(w.app(), kFile, 1));

        QCOMPARE(w.ui().messages(),
            path.isEmpty() ? QStringList() : QStringList(path + CRLF + CRLF + w.msg("<openSyn>")));
        QCOMPARE(test::readBytes(path), before);
        QCOMPARE(w.node(kFile)->Text, caption);
        QCOMPARE(w.node(kFile)->Image, Pic::FileAbcM);
        QCOMPARE(w.node(kFile + QStringLiteral("_tune1"))->Image, Pic::TuneM);
    }

    void newFileSaveTurnsToSaveAs()
    {
        World w;
        const QString folder = w.env.path(QStringLiteral("docs"));
        QDir().mkpath(folder);
        QFile(folder + QStringLiteral("/NewAbcFile1.abc")).open(QIODevice::WriteOnly);
        w.app().ini().set(keys::DirDef, folder);
        const QString kFile = w.store().createNewFile();
        QCOMPARE(w.node(kFile)->Tag, QStringLiteral("<new>"));
        const QString target = folder + QStringLiteral("/Tunes.abc");
        w.ui().pushFileName(target, 1);

        QVERIFY(FichierEnregistrer(w.app(), kFile, 0));

        QCOMPARE(w.ui().shown.size(), 1);
        QCOMPARE(w.ui().shown.first().text, folder + QStringLiteral("/NewAbcFile2.abc"));
        // A file without tunes: its header, an empty line, and the final line end.
        QCOMPARE(test::readAll(target), w.expectedSave("%abc\n%%abc-alias none\n@CREATOR@\n", ""));
        QCOMPARE(w.node(kFile)->Tag, target);
        QCOMPARE(w.node(kFile)->Text, QStringLiteral(" [Tunes.abc]"));
    }

    void readOnlyFileGoesToSaveAs()
    {
        World w;
        const QString kFile = w.openChanged(QStringLiteral("ro.abc"), kTwoTunes, true);
        QCOMPARE(w.node(kFile)->Image, Pic::FileRoM);
        const QString path = w.node(kFile)->Tag;
        const QByteArray before = test::readBytes(path);
        const QString target = w.env.path(QStringLiteral("rw.abc"));
        w.ui().pushFileName(target, 1);
        w.app().selection().setFileKey(kFile);

        mnu_save(w.app(), 0);

        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::SaveFile).size(), 1);
        QCOMPARE(test::readBytes(path), before);
        QVERIFY(QFileInfo::exists(target));
        QCOMPARE(w.node(kFile)->Image, Pic::FileAbc);
        QCOMPARE(w.node(kFile)->Tag, target);
    }

    void saveGuards_data()
    {
        QTest::addColumn<QString>("current");
        QTest::addColumn<bool>("trashHasTune");
        QTest::addColumn<int>("answer"); // -1: no question expected
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("trashWritten");
        QTest::newRow("no current file") << "" << false << -1 << "<selectFile>" << false;
        QTest::newRow("trash box, no") << "_file0" << true << int(Answer::No) << "" << false;
        QTest::newRow("trash box, yes") << "_file0" << true << int(Answer::Yes) << "" << true;
    }
    void saveGuards()
    {
        QFETCH(QString, current);
        QFETCH(bool, trashHasTune);
        QFETCH(int, answer);
        QFETCH(QString, message);
        QFETCH(bool, trashWritten);
        World w;
        if (trashHasTune)
            w.store().AddStringTune(
                QStringLiteral("X:7\r\n%~~~EX~~~<new>\r\nK:C\r\nC|\r\n"), key::Trash, true);
        if (answer >= 0)
            w.ui().pushAnswer(Answer(answer));
        w.app().selection().setFileKey(current);

        mnu_save(w.app(), 0);

        QCOMPARE(w.ui().messages(),
            message.isEmpty() ? QStringList() : QStringList(w.msg(message.toLatin1().constData())));
        if (answer >= 0)
            QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::Question), QStringList(w.msg("<trashSelected>")));
        QCOMPARE(QFileInfo::exists(w.app().paths().trashFile()), trashWritten);
        QVERIFY(w.ui().texts(ScriptedDialogs::Kind::SaveFile).isEmpty());
        QCOMPARE(w.node(key::Trash)->Image, Pic::Poub);
    }

    void closeAnswers_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("closed");
        QTest::addColumn<bool>("written");
        QTest::newRow("yes saves and closes") << int(Answer::Yes) << true << true;
        QTest::newRow("no closes unsaved") << int(Answer::No) << true << false;
        QTest::newRow("cancel keeps the file") << int(Answer::Cancel) << false << false;
    }
    void closeAnswers()
    {
        QFETCH(int, answer);
        QFETCH(bool, closed);
        QFETCH(bool, written);
        World w;
        const QString kFile = w.openChanged(QStringLiteral("a.abc"));
        const QString path = w.node(kFile)->Tag;
        const QByteArray before = test::readBytes(path);
        const QString caption = w.node(kFile)->Text;
        w.ui().pushAnswer(Answer(answer));
        w.app().selection().setFileKey(kFile);
        w.app().selection().setTuneKey(kFile + QStringLiteral("_tune2"));
        int pruned = 0;

        QCOMPARE(mnu_closeFile(w.app(), [&] { ++pruned; }), closed);

        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::Question),
            QStringList(
                w.msg("<fileModified>") + CRLF + CRLF + caption + CRLF + CRLF + w.msg("<saveModif>")));
        QCOMPARE(w.node(kFile) == nullptr, closed);
        QCOMPARE(test::readBytes(path) != before, written);
        QCOMPARE(pruned, closed ? 1 : 0);
        if (closed) {
            QVERIFY(w.app().selection().fileKey().isEmpty());
            QVERIFY(w.app().selection().tuneKey().isEmpty());
            QCOMPARE(w.selected, QStringList(key::Root));
            QCOMPARE(w.app().tree().root()->Text.left(14), QStringLiteral("Fennelworks (0"));
        }
    }

    void closeNewFileWithYes_data()
    {
        QTest::addColumn<bool>("chooseName");
        QTest::newRow("saved as") << true;
        QTest::newRow("save as cancelled") << false;
    }
    void closeNewFileWithYes()
    {
        QFETCH(bool, chooseName);
        World w;
        const QString kFile = w.store().createNewFile();
        w.store().AddStringTune(QStringLiteral("X:1\r\nK:C\r\nC|\r\n"), kFile);
        w.store().SetFlagModifFile(kFile);
        // Another file is current: the save as must still be of the file being closed.
        const QString kOther = w.open(QStringLiteral("other.abc"));
        w.app().selection().setFileKey(kOther);
        const QString target = w.env.path(QStringLiteral("new.abc"));
        w.ui().pushAnswer(Answer::Yes);
        w.ui().pushFileName(chooseName ? target : QString(), 1);

        QCOMPARE(FichierFermer(w.app(), kFile), chooseName);

        QCOMPARE(w.node(kFile) == nullptr, chooseName);
        QCOMPARE(QFileInfo::exists(target), chooseName);
        if (chooseName)
            QVERIFY(test::readAll(target).contains(QStringLiteral("X:1\r\nT:")));
        QCOMPARE(w.node(kOther)->Tag, w.env.path(QStringLiteral("other.abc")));
    }

    void closeAllStopsOnCancel()
    {
        World w;
        const QString k1 = w.openChanged(QStringLiteral("1.abc"));
        const QString k2 = w.open(QStringLiteral("2.abc"));
        const QString k3 = w.openChanged(QStringLiteral("3.abc"));
        const QString k4 = w.openChanged(QStringLiteral("4.abc"));
        w.ui().pushAnswer(Answer::No);
        w.ui().pushAnswer(Answer::Cancel);
        int pruned = 0;

        QVERIFY(!mnu_closeAll(w.app(), [&] { ++pruned; }));

        QVERIFY(!w.node(k1));
        QVERIFY(!w.node(k2));
        QVERIFY(w.node(k3));
        QVERIFY(w.node(k4));
        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::Question).size(), 2);
        QCOMPARE(pruned, 1);
        QVERIFY(w.app().tree().root()->Text.startsWith(QStringLiteral("Fennelworks (2 ")));

        w.ui().pushAnswer(Answer::No);
        w.ui().pushAnswer(Answer::No);
        QVERIFY(mnu_closeAll(w.app()));
        QCOMPARE(openFileCount(w.app()), 0);
        QVERIFY(!FichierFermer(w.app(), key::Trash)); // the trash box never closes
        QVERIFY(w.node(key::Trash));
        QVERIFY(!w.app().commands().isEnabled(QStringLiteral("mnu_SaveAll")));
    }

    // The tunes not greyed, of the current file or of all files (never the trash box's), go to a new
    // file, which is opened on Yes.
    void saveSelectedTunes_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("noSaveHdrFile");
        QTest::addColumn<bool>("openIt");
        QTest::addColumn<QByteArray>("expected");
        const QByteArray first = "X:1\nT:First\nK:G\nabc|\n\n";
        const QByteArray third = "X:2\nT:Third\nK:C\nC|\n\n";
        QTest::newRow("current file") << 0 << "0" << false << "%abc\n@CREATOR@\n\n" + first;
        QTest::newRow("all files, opened") << 1 << "0" << true << "%abc\n@CREATOR@\n\n" + first + third;
        QTest::newRow("all files, no header") << 1 << "1" << false << first + third;
    }
    void saveSelectedTunes()
    {
        QFETCH(int, index);
        QFETCH(QString, noSaveHdrFile);
        QFETCH(bool, openIt);
        QFETCH(QByteArray, expected);
        World w;
        w.app().ini().set(keys::NoSaveHdrFile, noSaveHdrFile);
        const QString k1 = w.open(QStringLiteral("a.abc"));
        w.open(QStringLiteral("b.abc"), "X:9\nT:Third\nK:C\nC|\n");
        w.store().AddStringTune(QStringLiteral("X:5\r\nT:In the trash\r\nK:C\r\nC|\r\n"), key::Trash, true);
        w.app().tree().setForeColor(w.node(k1 + QStringLiteral("_tune2")), color::TuneLeftOut);
        w.app().selection().setFileKey(k1);
        const QString target = w.env.path(QStringLiteral("sel.abc"));
        w.ui().pushFileName(target, 1);
        w.ui().pushAnswer(openIt ? Answer::Yes : Answer::No);

        mnu_saveSelTunes(w.app(), index);

        QString want = QString::fromUtf8(crlf(expected));
        want.replace(QStringLiteral("@CREATOR@"), w.app().creatorLine);
        QCOMPARE(test::readAll(target), want);
        QCOMPARE(w.ui().texts(ScriptedDialogs::Kind::Question), QStringList(w.msg("<askOpen>")));
        QCOMPARE(openFileCount(w.app()), openIt ? 3 : 2);
        if (openIt) {
            QCOMPARE(w.selected.size(), 1);
            QCOMPARE(w.node(w.selected.first())->Tag, target);
        }
    }

    // A save that cannot write (a folder stands at the path: even a superuser cannot write there)
    // leaves the file changed, says why and leaves no scratch file; closing with Yes keeps it open.
    void failingSaveLeavesTheFile()
    {
        World w;
        const QString kFile = w.openChanged(QStringLiteral("locked/a.abc"));
        const QString path = w.node(kFile)->Tag;
        QFile::remove(path);
        QVERIFY(QDir().mkdir(path));

        QVERIFY(!FichierEnregistrer(w.app(), kFile, 0));

        QVERIFY(QFileInfo(path).isDir());
        QCOMPARE(w.node(kFile)->Image, Pic::FileAbcM);
        QCOMPARE(w.ui().messages().size(), 1);
        const QString shown = w.ui().messages().first();
        QVERIFY2(shown.startsWith(QStringLiteral("Context: FichierEnregistrer\r\n\r\n")) && shown.size() > 29,
            qPrintable(shown));
        QCOMPARE(QDir(QFileInfo(path).absolutePath()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
            QStringList({ QStringLiteral("a.abc"), QStringLiteral("a.abc.BAK") }));

        w.ui().pushAnswer(Answer::Yes);
        QVERIFY(!FichierFermer(w.app(), kFile));
        QVERIFY(w.node(kFile));
        QVERIFY(w.ui().messages().last().startsWith(QStringLiteral("Context: FichierFermer\r\n\r\n")));
    }

    // A recent file comes back and goes first; one gone from the disk leaves the list with a word.
    void recents_data()
    {
        QTest::addColumn<bool>("exists");
        QTest::newRow("missing file") << false;
        QTest::newRow("plain file") << true;
    }
    void recents()
    {
        QFETCH(bool, exists);
        World w;
        const QString path = w.env.writeFile(QStringLiteral("r.abc"), kTwoTunes);
        const QString other = w.env.path(QStringLiteral("other.abc"));
        if (!exists)
            QFile::remove(path);
        w.app().recent().add(path);
        w.app().recent().add(other);

        mnu_Recents(w.app(), 1);

        if (!exists) {
            QCOMPARE(w.ui().messages(), QStringList(w.msg("<fileNotFound>")));
            QCOMPARE(w.app().recent().items(), QStringList({ other, QString(), QString(), QString() }));
            QCOMPARE(openFileCount(w.app()), 0);
            return;
        }
        QCOMPARE(openFileCount(w.app()), 1);
        QCOMPARE(w.selected.size(), 1);
        QCOMPARE(w.node(w.selected.first())->Tag, path);
        QCOMPARE(w.app().recent().items().first(), path);
        QVERIFY(w.ui().messages().isEmpty());
    }
};

FENWORK_TEST(TestFileCommands)
#include "tst_filecommands.moc"
