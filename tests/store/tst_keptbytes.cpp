// What a user wrote stays as written: includes across open-save cycles, the backup when its copy
// fails, inputs that are no regular file, NUL characters, paths kept absolute.
#include "testenv.h"
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/language.h"
#include "app/session.h"
#include "frame/settings.h"
#include "frame/textfile.h"
#include "store/recentfiles.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QTest>

#include <sys/stat.h>

using namespace fenwork;

namespace {

bool abandonCopy(const QString &)
{
    return false;
}

} // namespace

class TestKeptBytes : public QObject
{
    Q_OBJECT

private slots:
    // Open, save over the file, again and again: the second and third saves write the bytes of
    // the first. The lines read through an include, and the note of one that failed, never reach
    // the file.
    void includesAcrossSaves_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QStringList>("files"); // name, content, name, content ...
        QTest::addColumn<QByteArray>("neverSaved");
        const QStringList parts{ "parts.abc", "P:A\nw:from the include\n" };
        // clang-format off
        QTest::newRow("missing, in the header") << QByteArray("%abc\n%%abc-include gone.abc\nX:1\nT:A\nK:C\nabc|\n") << QStringList() << QByteArray("!!!");
        QTest::newRow("folder, in the header") << QByteArray("%abc\n%%abc-include sub\nX:1\nT:A\nK:C\nabc|\n") << QStringList{ "sub/x.abc", "" } << QByteArray("!!!");
        QTest::newRow("in the header") << QByteArray("%abc\n%%abc-include parts.abc\nX:1\nT:A\nK:C\nabc|\n") << parts << QByteArray("from the include");
        QTest::newRow("in a tune's header") << QByteArray("X:1\nT:A\n%%abc-include parts.abc\nK:C\nabc|\n") << parts << QByteArray("from the include");
        QTest::newRow("in a tune's body") << QByteArray("X:1\nT:A\nK:C\nabc|\n%%abc-include parts.abc\ndef|\n") << parts << QByteArray("from the include");
        QTest::newRow("nested") << QByteArray("X:1\nT:A\nK:C\nabc|\n%%abc-include outer.abc\n") << QStringList{ "outer.abc", "w:outer\n%%abc-include inner.abc\n", "inner.abc", "w:inner\n" } << QByteArray("w:");
        // clang-format on
    }
    void includesAcrossSaves()
    {
        QFETCH(QByteArray, input);
        QFETCH(QStringList, files);
        QFETCH(QByteArray, neverSaved);
        test::TestEnv env;
        for (qsizetype i = 0; i + 1 < files.size(); i += 2)
            env.writeFile(files.at(i), files.at(i + 1).toUtf8());
        const QString path = env.writeFile(QStringLiteral("t.abc"), input);
        QByteArray first;
        for (int cycle = 1; cycle <= 3; ++cycle) {
            createWorkspaceRoot(env.app());
            const QString kFile = env.app().store().FichierOuvrir(path, false, true, false);
            QVERIFY(!kFile.isEmpty());
            QVERIFY(env.app().store().FichierSaveFromKey(kFile, path, QString()));
            const QByteArray saved = test::readBytes(path);
            QVERIFY2(!saved.contains(neverSaved), saved.constData());
            if (cycle == 1)
                first = saved;
            QCOMPARE(saved, first);
        }
        QCOMPARE(env.ui().messages(), QStringList());
    }

    // The backup holds the bytes as they were on disk, before any rewrite; the old one stays until a
    // whole new copy replaces it or when backups are off. Inputs that are no regular file are
    // refused before anything is copied, with a message that names them.
    void backupAndInputs_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("opens");
        QTest::addColumn<QString>("said");
        QTest::newRow("copied and renamed") << "file" << true << "";
        QTest::newRow("backups off") << "off" << true << "";
        QTest::newRow("stopped before the rename") << "abandoned" << false << "backup";
        QTest::newRow("a FIFO") << "fifo" << false << "not a regular file";
        QTest::newRow("a character device") << "device" << false << "not a regular file";
        QTest::newRow("a folder") << "folder" << false << "folder";
    }
    void backupAndInputs()
    {
        QFETCH(QString, kind);
        QFETCH(bool, opens);
        QFETCH(QString, said);
        test::TestEnv env;
        createWorkspaceRoot(env.app());
        env.app().ini().set(keys::FichBak, QStringLiteral("1"));
        const QByteArray bytes("X:1\nT:New\nK:C\nabc| 1 d\\'e :|:\n");
        QString path = env.path(QStringLiteral("t.abc"));
        if (kind == u"device") {
            path = QStringLiteral("/dev/zero");
        } else {
            env.writeFile(QStringLiteral("t.abc.BAK"), "old copy");
            if (kind == u"fifo")
                QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
            else if (kind == u"folder")
                QVERIFY(QDir().mkpath(path));
            else
                env.writeFile(QStringLiteral("t.abc"), bytes);
        }
        if (kind == u"off")
            env.app().ini().set(keys::FichBak, QStringLiteral("0"));
        if (kind == u"abandoned")
            setBeforeRenameHook(abandonCopy);
        const auto unhook = qScopeGuard([] { setBeforeRenameHook(nullptr); });

        const QString kFile = env.app().store().FichierOuvrir(path, false, true, false);
        QCOMPARE(!kFile.isEmpty(), opens);
        if (kind == u"device") {
            QVERIFY(!QFile::exists(path + QStringLiteral(".BAK")));
        } else {
            QCOMPARE(test::readBytes(path + QStringLiteral(".BAK")), kind == u"file" ? bytes : QByteArray("old copy"));
            QCOMPARE(QDir(env.path(QString())).entryList({ QStringLiteral("t.abc.BAK*") }, QDir::Files | QDir::Hidden),
                     QStringList{ QStringLiteral("t.abc.BAK") });
        }
        if (opens) {
            QCOMPARE(test::readBytes(path), bytes); // opening never writes the file
        } else {
            QCOMPARE(env.ui().messages().size(), 1);
            QVERIFY2(env.ui().lastMessage().contains(path) && env.ui().lastMessage().contains(said, Qt::CaseInsensitive),
                     qPrintable(env.ui().lastMessage()));
        }
    }

    // NUL characters inside a line stay there; they are no line end.
    void nulInsideLine()
    {
        test::TestEnv env;
        createWorkspaceRoot(env.app());
        const QString path = env.writeFile(QStringLiteral("t.abc"), QByteArray("X:1\nT:A\nK:C\nab\0\0cd|\n", 20));
        const QString kFile = env.app().store().FichierOuvrir(path, false, true, false);
        QVERIFY(!kFile.isEmpty());
        QCOMPARE(env.app().store().GetStringTune(kFile + QStringLiteral("_tune1"), false),
                 QStringLiteral("X:1\r\nT:A\r\nK:C\r\nab") + QString(2, QChar(0)) + QStringLiteral("cd|\r\n"));
    }

    // A file opened by a relative path is known by its absolute one: in the tree, the recent list
    // and the open-file list that the next start reads from wherever it runs.
    void relativePathKeptAbsolute()
    {
        test::TestEnv env;
        createWorkspaceRoot(env.app());
        const QString path = env.writeFile(QStringLiteral("rel.abc"), "X:1\nT:A\nK:C\nabc|\n");
        const QString before = QDir::currentPath();
        const auto back = qScopeGuard([&] { QDir::setCurrent(before); });
        QVERIFY(QDir::setCurrent(env.path(QString())));
        const QString kFile = env.app().store().FichierOuvrir(QStringLiteral("rel.abc"), false, true, false);
        QVERIFY(!kFile.isEmpty());
        QVERIFY(QDir::setCurrent(before));
        QCOMPARE(env.app().tree().find(kFile)->Tag, path);
        QCOMPARE(env.app().recent().items().value(0), path);
        env.app().ini().set(keys::Rouvrir, QStringLiteral("1"));
        writeOpenFiles(env.app(), false);
        QCOMPARE(sessionFilesToRestore(env.app().ini()), QStringList{ path });
    }
};

FENWORK_TEST(TestKeptBytes)
#include "tst_keptbytes.moc"
