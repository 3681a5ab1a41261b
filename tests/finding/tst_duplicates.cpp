// Marking the tunes of a file whose X: numbers are doubled.
#include "testenv.h"
#include "testmain.h"

#include "store/duplicates.h"
#include "frame/inifile.h"
#include "frame/settings.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QTest>

using namespace fenwork;

namespace {

// A file of one tune per X value, in order.
QByteArray tunesWithX(const QStringList &numbers)
{
    QByteArray text;
    for (const QString &x : numbers)
        text += "X:" + x.toUtf8() + "\nT:Tune " + x.toUtf8() + "\nK:C\nCDE|\n";
    return text;
}

} // namespace

class TestDuplicates : public QObject
{
    Q_OBJECT

private slots:
    void marks_data()
    {
        QTest::addColumn<QStringList>("numbers");
        QTest::addColumn<bool>("setting");
        QTest::addColumn<bool>("forced");
        QTest::addColumn<QList<int>>("marked"); // places of the marked tunes
        const QList<int> none;
        QTest::newRow("setting on, not forced")
            << QStringList { "1", "2", "2", "3" } << true << false << QList<int> { 1, 2 };
        QTest::newRow("setting off, not forced")
            << QStringList { "1", "2", "2", "3" } << false << false << none;
        QTest::newRow("letters ignore case")
            << QStringList { "a1", "B", "A1", "b", "c" } << false << true << QList<int> { 0, 1, 2, 3 };
        QTest::newRow("number and comment differ")
            << QStringList { "12 % old", "12" } << false << true << none;
        QTest::newRow("12 and 2 differ") << QStringList { "12", "2", "112" } << false << true << none;
        QTest::newRow("regex characters are plain")
            << QStringList { "1.2", "1x2", "a+", "aa" } << false << true << none;
        QTest::newRow("empty numbers") << QStringList { "", "", "1" } << false << true << QList<int> { 0, 1 };
    }
    void marks()
    {
        QFETCH(QStringList, numbers);
        QFETCH(bool, setting);
        QFETCH(bool, forced);
        QFETCH(QList<int>, marked);
        test::TestEnv env;
        createWorkspaceRoot(env.app());
        env.app().ini().setBool(keys::ShowDoublons, setting);
        const QString path = env.writeFile(QStringLiteral("d.abc"), tunesWithX(numbers));
        const QString kFile = env.app().store().FichierOuvrir(path, false, true, false);
        QVERIFY(!kFile.isEmpty());

        int count = 5; // callers start at 0; the procedure only adds
        ShowDoublonsX(env.app(), kFile, forced, count);

        QCOMPARE(count, 5 + int(marked.size()));
        const Node *body = env.app().tree().find(kFile + key::BdyFile);
        QCOMPARE(body->childCount(), int(numbers.size()));
        for (int i = 0; i < body->childCount(); ++i)
            QCOMPARE(body->child(i)->BackColor, marked.contains(i) ? color::DuplicateX : kDefaultColor);
        QVERIFY(!env.ui().progress.visible);
    }

    void silentOnMissingFile_data()
    {
        QTest::addColumn<QString>("kFile");
        QTest::newRow("closed file") << "_file4";
        QTest::newRow("a tune, not a file") << "_file1_tune1";
    }
    void silentOnMissingFile()
    {
        QFETCH(QString, kFile);
        test::TestEnv env;
        createWorkspaceRoot(env.app());
        env.app().store().FichierOuvrir(
            env.writeFile(QStringLiteral("d.abc"), tunesWithX({ "1", "1" })), false, true, false);
        int count = 0;
        ShowDoublonsX(env.app(), kFile, true, count);
        QCOMPARE(count, 0);
        QVERIFY(env.ui().shown.isEmpty());
        QVERIFY(!env.ui().captionHistory.contains(QStringLiteral("Searching...")));
    }

    void trashBox()
    {
        test::TestEnv env;
        createWorkspaceRoot(env.app());
        env.app().store().AddStringTune(QStringLiteral("X:3\r\nK:C\r\nC|\r\n"), key::Trash, true);
        env.app().store().AddStringTune(QStringLiteral("X:3\r\nK:D\r\nD|\r\n"), key::Trash, true);
        int count = 0;
        ShowDoublonsX(env.app(), key::Trash, true, count);
        QCOMPARE(count, 2);
    }
};

FENWORK_TEST(TestDuplicates)
#include "tst_duplicates.moc"
