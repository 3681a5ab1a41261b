#include "testmain.h"

#include "frame/textfile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>


using namespace fenwork;

Q_DECLARE_METATYPE(fenwork::TextEncoding)

namespace {

QByteArray bytesOf(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<unreadable>");
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    QCOMPARE(f.write(bytes), bytes.size());
}

} // namespace

class TestTextFile : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    // Every row is read from a file and written back: the bytes must come out as they went in.
    void roundTrip_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<TextEncoding>("encoding");
        QTest::addColumn<QString>("text");

        const auto utf8 = TextEncoding::Utf8;
        const auto latin1 = TextEncoding::Latin1;
        const QString nul(QChar(0));
        const QByteArray longAscii(100, 'a');

        QTest::newRow("empty") << QByteArray() << utf8 << QString();
        QTest::newRow("utf-8 across the 8-byte step") << QByteArray("abcdefg\xc3\xa9") << utf8 << QStringLiteral("abcdefgé");
        QTest::newRow("bom kept") << QByteArray("\xef\xbb\xbfX:1") << utf8 << QStringLiteral("\ufeffX:1");
        QTest::newRow("nul bytes") << QByteArray("a\0b\0", 4) << utf8 << (QStringLiteral("a") + nul + u'b' + nul);
        QTest::newRow("latin-1 after long ascii") << (longAscii + "\xe9") << latin1 << QString::fromLatin1(longAscii + "\xe9");
        QTest::newRow("lone continuation") << QByteArray("a\x80") << latin1 << QStringLiteral("a\u0080");
        QTest::newRow("cut sequence at end") << QByteArray("ab\xc3") << latin1 << QStringLiteral("abÃ");
        QTest::newRow("cut sequence inside") << QByteArray("\xe2\x82z") << latin1 << QStringLiteral("â\u0082z");
        QTest::newRow("overlong two bytes") << QByteArray("\xc0\xaf") << latin1 << QStringLiteral("À¯");
        QTest::newRow("surrogate") << QByteArray("\xed\xa0\x80") << latin1 << QStringLiteral("í\u00a0\u0080");
        QTest::newRow("beyond U+10FFFF") << QByteArray("\xf4\x90\x80\x80") << latin1 << QStringLiteral("ô\u0090\u0080\u0080");
        // clang-format on
    }
    void roundTrip()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(TextEncoding, encoding);
        QFETCH(QString, text);

        const QString path = m_dir.filePath(QStringLiteral("round.abc"));
        writeBytes(path, bytes);
        const TextFileResult read = readTextFile(path);
        QVERIFY2(read.ok, qPrintable(read.error));
        QCOMPARE(read.encoding, encoding);
        QCOMPARE(read.text, text);

        QFile::remove(path);
        QString error;
        QVERIFY(writeTextFile(path, read.text, read.encoding, &error));
        QVERIFY(error.isEmpty());
        QCOMPARE(bytesOf(path), bytes);
    }

    void encodeUnrepresentable()
    {
        QCOMPARE(encodeText(QStringLiteral("é€"), TextEncoding::Latin1), QByteArray("\xe9?"));
        QCOMPARE(encodeText(QStringLiteral("é€"), TextEncoding::Utf8), QByteArray("\xc3\xa9\xe2\x82\xac"));
    }

    // A big file, invalid only in its very last byte, is still seen as Latin-1.
    void bigFile()
    {
        QByteArray bytes;
        const QByteArray line("|:GABc dedB|dedB dedB|c2ec B2dB|c2A2 A2BA:|\r\n");
        bytes.reserve(5 * 1024 * 1024);
        while (bytes.size() < 5 * 1024 * 1024)
            bytes += line;
        QCOMPARE(detectEncoding(bytes), TextEncoding::Utf8);
        bytes += '\xe9';
        const QString path = m_dir.filePath(QStringLiteral("big.abc"));
        writeBytes(path, bytes);
        const TextFileResult read = readTextFile(path);
        QVERIFY(read.ok);
        QCOMPARE(read.encoding, TextEncoding::Latin1);
        QCOMPARE(read.text.size(), bytes.size());
        QCOMPARE(read.text.back(), QChar(u'é'));
    }

    void writeFailures_data()
    {
        // clang-format off
        QTest::addColumn<QString>("name");
        QTest::newRow("folder missing") << "no-such-folder/x.abc";
        QTest::newRow("target is a folder") << "target-folder";
        // clang-format on
    }
    void writeFailures()
    {
        QFETCH(QString, name);
        QDir(m_dir.path()).mkpath(QStringLiteral("target-folder"));
        QString error;
        QVERIFY(!writeTextFile(m_dir.filePath(name), QStringLiteral("X:1"), TextEncoding::Utf8, &error));
        QVERIFY(!error.isEmpty());
        QVERIFY(QFileInfo(m_dir.filePath(QStringLiteral("target-folder"))).isDir());
    }

    // A full disk is said as such, with the file's name.
    void fullDisk()
    {
        QFile full(QStringLiteral("/dev/full"));
        if (!full.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            QSKIP("no /dev/full here");
        QCOMPARE(full.write("X:1\n"), qint64(-1));
        const QString said = writeFailure(full, QStringLiteral("/home/t.abc"));
        QVERIFY2(said.contains(QStringLiteral("disk is full")) && said.contains(QStringLiteral("/home/t.abc")),
            qPrintable(said));
    }

    // A copy replaces its target whole or not at all.
    void copySafely_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<bool>("copied");
        QTest::newRow("a file") << "source.abc" << true;
        QTest::newRow("missing") << "nothing.abc" << false;
        QTest::newRow("a device") << "/dev/zero" << false;
    }
    void copySafely()
    {
        QFETCH(QString, source);
        QFETCH(bool, copied);
        const QString from = source.startsWith(u'/') ? source : m_dir.filePath(source);
        writeBytes(m_dir.filePath(QStringLiteral("source.abc")), "X:1 new");
        const QString to = m_dir.filePath(QStringLiteral("copy.BAK"));
        writeBytes(to, "old");
        QString error;
        QCOMPARE(copyFileSafely(from, to, &error), copied);
        QCOMPARE(bytesOf(to), copied ? QByteArray("X:1 new") : QByteArray("old"));
        QCOMPARE(error.isEmpty(), copied);
        if (!copied)
            QVERIFY2(error.contains(from), qPrintable(error));
    }

};

FENWORK_TEST(TestTextFile)
#include "tst_textfile.moc"
