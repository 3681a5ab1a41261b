// The ".abc" association on temporary XDG folders: the entry is valid, the type is known to a
// fresh process, the entry is the type's default, and a second run changes nothing.
#include "testenv.h"
#include "testmain.h"

#include "app/fileassociation.h"

#include <QDirIterator>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <cstdlib>

using namespace fenwork;

namespace {

// This test program run with FENWORK_MIME_PROBE=<file> prints the type a fresh QMimeDatabase
// gives the file and ends: the child process of the test.
const int mimeProbe = [] {
    const QByteArray file = qgetenv("FENWORK_MIME_PROBE");
    if (!file.isEmpty()) {
        std::puts(QMimeDatabase().mimeTypeForFile(QString::fromLocal8Bit(file)).name().toUtf8().constData());
        std::exit(0);
    }
    return 0;
}();

QString output(const QString &program, const QStringList &arguments, int *exitCode = nullptr)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(30000);
    if (exitCode)
        *exitCode = process.exitCode();
    return QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError()).trimmed();
}

// Every file under `folder` with its modification time.
QStringList snapshot(const QString &folder)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        files << path + u' ' + QString::number(QFileInfo(path).lastModified().toMSecsSinceEpoch());
    }
    files.sort();
    return files;
}

} // namespace

class TestAssociation : public QObject
{
    Q_OBJECT

private slots:
    void associatesAbcFiles_data()
    {
        QTest::addColumn<QString>("program");
        QTest::newRow("plain path") << "/opt/fennel/fenwork";
        QTest::newRow("blank, quote and dollar") << "/opt/Fennel Works/it's \"$HOME\"/fenwork";
    }
    void associatesAbcFiles()
    {
        QFETCH(QString, program);
        if (QStandardPaths::findExecutable(QStringLiteral("xdg-mime")).isEmpty()
            || QStandardPaths::findExecutable(QStringLiteral("desktop-file-validate")).isEmpty())
            QSKIP("xdg-utils and desktop-file-utils are not installed");
        QTemporaryDir xdg;
        test::EnvGuard data("XDG_DATA_HOME", xdg.filePath(QStringLiteral("data")).toUtf8());
        test::EnvGuard config("XDG_CONFIG_HOME", xdg.filePath(QStringLiteral("config")).toUtf8());
        test::TestEnv env;
        QVERIFY(AssociateAbc(env.app(), program));
        QVERIFY2(env.ui().messages().isEmpty(), qPrintable(env.ui().messages().join(u'\n')));

        const QString entry = xdg.filePath(QStringLiteral("data/applications/fennelworks.desktop"));
        int valid = -1;
        const QString complaints = output(QStringLiteral("desktop-file-validate"), { entry }, &valid);
        QVERIFY2(valid == 0 && complaints.isEmpty(), qPrintable(complaints));

        const QString tune = env.writeFile(QStringLiteral("x.abc"), "X:1\nT:t\nK:C\nC|\n");
        QProcess probe;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("FENWORK_MIME_PROBE"), tune);
        probe.setProcessEnvironment(environment);
        probe.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(probe.waitForFinished(30000));
        QCOMPARE(QString::fromUtf8(probe.readAllStandardOutput()).trimmed(), QStringLiteral("text/vnd.abc"));

        QCOMPARE(output(QStringLiteral("xdg-mime"),
                     { QStringLiteral("query"), QStringLiteral("default"), QStringLiteral("text/vnd.abc") }),
            QStringLiteral("fennelworks.desktop"));

        const QStringList before = snapshot(xdg.path());
        QVERIFY(AssociateAbc(env.app(), program));
        QCOMPARE(snapshot(xdg.path()), before);
    }

    void withoutXdgMimeSaysSo()
    {
        test::TestEnv env;
        test::EnvGuard path("PATH", env.root().toUtf8());
        QVERIFY(!AssociateAbc(env.app(), QStringLiteral("/opt/fenwork")));
        QCOMPARE(env.ui().messages().size(), 1);
        QVERIFY(env.ui().messages().first().startsWith(QStringLiteral("Context: AssociateAbc")));
    }
};

FENWORK_TEST(TestAssociation)
#include "tst_association.moc"
