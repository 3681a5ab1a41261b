// Saved masks: the file format, reading files that are cut short or garbled, the mask folder.
#include "testenv.h"
#include "testmain.h"

#include "finding/masks.h"
#include "finding/tunefilter.h"
#include "frame/paths.h"

#include <QDir>
#include <QTest>

using namespace fenwork;

namespace {

FilterConditions sample()
{
    FilterConditions c;
    c.melody = QStringLiteral(" G?A [Bc] ");
    c.fields[0] = QStringLiteral("trad*");
    c.fields[20] = QStringLiteral("Reel|Jig");
    c.fields[32] = QStringLiteral("program 1");
    c.anywhere = QStringLiteral("Éire");
    c.ignoreCase = true;
    c.invert = false;
    return c;
}

// Conditions whose every box holds something, to see what a load leaves alone.
FilterConditions filled()
{
    FilterConditions c;
    c.melody = QStringLiteral("old melody");
    for (int row = 0; row < kFilterRowCount; ++row)
        c.fields[row] = QStringLiteral("old %1").arg(row);
    c.anywhere = QStringLiteral("old anywhere");
    c.ignoreCase = true;
    c.invert = true;
    c.startOnly = true;
    return c;
}

QByteArray lines(int count, const QByteArray &end = "\r\n")
{
    QByteArray text;
    for (int i = 1; i <= count; ++i) {
        if (i == 35 || i == 36)
            text += " 1 ";
        else
            text += "line" + QByteArray::number(i);
        text += end;
    }
    return text;
}

} // namespace

class TestMasks : public QObject
{
    Q_OBJECT

private slots:
    void fileFormat()
    {
        test::TestEnv env;
        const Paths &paths = env.app().paths();
        QVERIFY(saveMask(paths, QStringLiteral("Reels"), sample()));
        const QByteArray bytes = test::readBytes(QDir(maskFolder(paths)).filePath(QStringLiteral("Reels")));
        QByteArray expected = " G?A [Bc] \r\ntrad*\r\n";
        for (int row = 1; row < 20; ++row)
            expected += "\r\n";
        expected += "Reel|Jig\r\n";
        for (int row = 21; row < 32; ++row)
            expected += "\r\n";
        expected += "program 1\r\n 1 \r\n 0 \r\n" + QStringLiteral("Éire").toUtf8() + "\r\n";
        QCOMPARE(bytes, expected);

        FilterConditions back;
        const MaskLoad load = loadMask(paths, QStringLiteral("Reels"), back);
        QVERIFY(load.opened);
        QVERIFY2(load.problems.isEmpty(), qPrintable(load.problems.join(u' ')));
        QCOMPARE(back.melody, sample().melody);
        QCOMPARE(back.fields, sample().fields);
        QCOMPARE(back.anywhere, sample().anywhere);
        QCOMPARE(back.ignoreCase, true);
        QCOMPARE(back.invert, false);
    }

    void cutShort_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("problem");
        QTest::newRow("empty") << 0 << true;
        QTest::newRow("rows, no check boxes") << 34 << true;
        QTest::newRow("no anywhere line") << 36 << true;
        QTest::newRow("whole") << 37 << false;
    }
    void cutShort()
    {
        QFETCH(int, count);
        QFETCH(bool, problem);
        FilterConditions c = filled();
        const QStringList problems = applyMaskText(QString::fromLatin1(lines(count)), c);
        QCOMPARE(!problems.isEmpty(), problem);
        if (problem)
            QVERIFY(problems.first().contains(count == 0 ? QStringLiteral("empty") : QString::number(count)));
        QCOMPARE(c.melody, count >= 1 ? QStringLiteral("line1") : QStringLiteral("old melody"));
        for (int row = 0; row < kFilterRowCount; ++row)
            QCOMPARE(c.fields.at(row), row + 2 <= count ? QStringLiteral("line%1").arg(row + 2) : QStringLiteral("old %1").arg(row));
        QCOMPARE(c.ignoreCase, count >= 35);
        QCOMPARE(c.invert, count >= 36);
        QCOMPARE(c.anywhere, count >= 37 ? QStringLiteral("line37") : QString());
        QVERIFY(c.startOnly);
    }

    // Line ends of any kind, no final line end, lines beyond the mask's.
    void otherLayouts_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("problems");
        QTest::newRow("LF") << lines(37, "\n") << 0;
        QTest::newRow("CR") << lines(37, "\r") << 0;
        QTest::newRow("no final line end") << lines(37).chopped(2) << 0;
        QTest::newRow("extra lines") << lines(37) + "more\r\nand more\r\n" << 1;
        // A check box line must be a number: a word is an error, trailing junk too.
        QTest::newRow("word for a check box") << lines(37).replace(" 1 ", "yes") << 2;
        QTest::newRow("number and junk") << lines(37).replace(" 1 ", "1x") << 2;
    }
    void otherLayouts()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, problems);
        FilterConditions c;
        QCOMPARE(applyMaskText(QString::fromLatin1(text), c).size(), problems);
        QCOMPARE(c.fields.at(32), QStringLiteral("line34"));
        QCOMPARE(c.anywhere, QStringLiteral("line37"));
    }

    void badNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("empty") << "";
        QTest::newRow("dot dot") << "..";
        QTest::newRow("slash") << "a/b";
    }
    void badNames()
    {
        QFETCH(QString, name);
        test::TestEnv env;
        const Paths &paths = env.app().paths();
        QString error;
        QVERIFY(!saveMask(paths, name, sample(), &error));
        QVERIFY(!error.isEmpty());
        FilterConditions c;
        const MaskLoad load = loadMask(paths, name, c);
        QVERIFY(!load.opened);
        QVERIFY(!load.error.isEmpty());
        QVERIFY(!QFileInfo::exists(paths.inUser(QStringLiteral("a"))));
    }
};

FENWORK_TEST(TestMasks)
#include "tst_masks.moc"
