// The settings file: reading what people and other programs leave in it, writing in place without
// a cache, and files that cannot be read or written.
#include "testmain.h"

#include "frame/inifile.h"
#include "frame/settings.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace fenwork;

namespace {

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

} // namespace

class TestIniFile : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY(m_dir.isValid());
        m_path = m_dir.filePath(QStringLiteral("fenwork.ini"));
        QFile::remove(m_path);
    }

    void read_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected");
        // clang-format off
        const QByteArray window = "[Window]\r\nWindowState=2\r\nTop=120\r\n";
        QTest::newRow("names in other case") << window << "WINDOW" << "Windowstate" << "2";
        QTest::newRow("missing key") << window << "Window" << "Left" << "default";
        QTest::newRow("stored empty") << QByteArray("[W]\nScrollHScore=\n") << "W" << "ScrollHScore" << "";
        QTest::newRow("blanks around names and value") << QByteArray("  [ Window ]  \n  Top  =  77  \n") << "Window" << "Top" << "77";
        QTest::newRow("equals in value") << QByteArray("[W]\nk=a=b\n") << "W" << "k" << "a=b";
        QTest::newRow("first duplicate key wins") << QByteArray("[W]\nk=1\nK=2\n") << "W" << "k" << "1";
        QTest::newRow("first duplicate section wins") << QByteArray("[W]\nk=1\n[w]\nk=2\n") << "W" << "k" << "1";
        QTest::newRow("key only in repeated section") << QByteArray("[W]\nk=1\n[X]\n[W]\nj=2\n") << "W" << "j" << "default";
        QTest::newRow("comment line") << QByteArray("[W]\n;k=1\n") << "W" << "k" << "default";
        QTest::newRow("key before any section") << QByteArray("k=1\n[W]\n") << "W" << "k" << "default";
        QTest::newRow("bracket never closed") << QByteArray("[W\nk=1\n") << "W" << "k" << "default";
        QTest::newRow("no final line end") << QByteArray("[W]\nk=last") << "W" << "k" << "last";
        QTest::newRow("utf-8") << QByteArray("[W]\nk=caf\xc3\xa9\n") << "W" << "k" << QStringLiteral("café");
        QTest::newRow("latin-1") << QByteArray("[W]\nk=caf\xe9\n") << "W" << "k" << QStringLiteral("café");
        QTest::newRow("utf-8 mark") << QByteArray("\xef\xbb\xbf[W]\nk=1\n") << "W" << "k" << "1";
        static const char withNul[] = "[W]\n\0\0garbage\0\nk=1\n";
        QTest::newRow("nul bytes around") << QByteArray(withNul, sizeof(withNul) - 1) << "W" << "k" << "1";
        QTest::newRow("cut at 254") << "[W]\nk=" + QByteArray(300, 'v') + "\n" << "W" << "k" << QString(254, u'v');
        QTest::newRow("over-long line before") << "[W]\n" + QByteArray(2 * 1024 * 1024, 'x') + "\nk=ok\n" << "W" << "k" << "ok";
        // clang-format on
    }
    void read()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, expected);
        writeFile(m_path, content);
        QCOMPARE(IniFile(m_path).getValue(section, key, QStringLiteral("default")), expected);
    }

    // No folder, or a folder at the path: reads give the default, writes are lost and make nothing.
    void nowhereToWrite()
    {
        const IniFile missing(m_dir.filePath(QStringLiteral("none/fenwork.ini")));
        QCOMPARE(missing.get(keys::TempoDef), QStringLiteral("100"));
        QCOMPARE(missing.writeValue(QStringLiteral("General"), QStringLiteral("lang"), QStringLiteral("x")),
            QStringLiteral("0"));
        QVERIFY(!QFileInfo::exists(m_dir.filePath(QStringLiteral("none"))));
        IniFile folder(m_dir.path());
        QStringList told;
        folder.setWriteFailureHandler([&told](const QString &path) { told << path; });
        QCOMPARE(folder.getValue(QStringLiteral("A"), QStringLiteral("b"), QStringLiteral("d")),
            QStringLiteral("d"));
        QCOMPARE(folder.writeValue(QStringLiteral("A"), QStringLiteral("b"), QStringLiteral("c")),
            QStringLiteral("0"));
        QCOMPARE(folder.writeValue(QStringLiteral("A"), QStringLiteral("e"), QStringLiteral("f")),
            QStringLiteral("0"));
        // Said once a run, not at every lost write.
        QCOMPARE(told, QStringList{ m_dir.path() });
    }

    void write_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QByteArray>("after");
        // clang-format off
        QTest::newRow("new file") << QByteArray() << "General" << "lang" << "English" << QByteArray("[General]\nlang=English\n");
        QTest::newRow("replace keeps the stored spelling") << QByteArray("[Window]\nWindowState=0\nTop=1\n") << "window" << "Windowstate" << "2" << QByteArray("[Window]\nWindowState=2\nTop=1\n");
        QTest::newRow("new key after the last line of its section") << QByteArray("; settings\n[A]\nx=1\n; note\n\n[B]\ny=2\n") << "A" << "z" << "3" << QByteArray("; settings\n[A]\nx=1\n; note\nz=3\n\n[B]\ny=2\n");
        QTest::newRow("new key in an empty section") << QByteArray("[A]\n[B]\ny=2\n") << "A" << "z" << "3" << QByteArray("[A]\nz=3\n[B]\ny=2\n");
        QTest::newRow("new section at the end") << QByteArray("[A]\nx=1") << "B" << "y" << "2" << QByteArray("[A]\nx=1\n\n[B]\ny=2\n");
        QTest::newRow("first duplicate section is updated") << QByteArray("[A]\nx=1\n[a]\nx=2\n") << "A" << "x" << "9" << QByteArray("[A]\nx=9\n[a]\nx=2\n");
        QTest::newRow("line ends become LF") << QByteArray("[A]\r\nx=1\r\ny=2\r\n") << "A" << "y" << "3" << QByteArray("[A]\nx=1\ny=3\n");
        QTest::newRow("latin-1 file is written as UTF-8") << QByteArray("[A]\nt=caf\xe9\n") << "A" << "u" << "1" << QByteArray("[A]\nt=caf\xc3\xa9\nu=1\n");
        QTest::newRow("line breaks in a value stay on its line") << QByteArray() << "A" << "x" << "one\r\n[B]\nx=two" << QByteArray("[A]\nx=one  [B] x=two\n");
        // clang-format on
    }
    void write()
    {
        QFETCH(QByteArray, before);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, value);
        QFETCH(QByteArray, after);
        if (!before.isNull())
            writeFile(m_path, before);
        const IniFile ini(m_path);
        QCOMPARE(ini.writeValue(section, key, value), QStringLiteral("1"));
        QCOMPARE(readFile(m_path), after);
    }

    void namesTheFormatCannotHold_data()
    {
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::newRow("empty section") << "" << "k";
        QTest::newRow("equals in key") << "A" << "a=b";
        QTest::newRow("bracket in section") << "A]" << "k";
    }
    void namesTheFormatCannotHold()
    {
        QFETCH(QString, section);
        QFETCH(QString, key);
        QCOMPARE(IniFile(m_path).writeValue(section, key, QStringLiteral("v")), QStringLiteral("0"));
        QVERIFY(!QFileInfo::exists(m_path));
    }

    // Another writer changes the file behind the store's back: the next read sees it, and the
    // next write keeps it.
    void noCache()
    {
        const IniFile ini(m_path);
        QCOMPARE(ini.writeValue(QStringLiteral("Editeur"), QStringLiteral("Zoom"), QStringLiteral("120")),
            QStringLiteral("1"));
        writeFile(m_path, "[Editeur]\nZoom=90\n; edited by hand\nFontSize=12\n");
        QCOMPARE(
            ini.getValue(QStringLiteral("editeur"), QStringLiteral("zoom"), QString()), QStringLiteral("90"));
        const IniFile other(m_path);
        QCOMPARE(other.writeValue(QStringLiteral("Editeur"), QStringLiteral("SaveZoom"), QStringLiteral("0")),
            QStringLiteral("1"));
        QCOMPARE(
            ini.getValue(QStringLiteral("Editeur"), QStringLiteral("SaveZoom"), QString()), QStringLiteral("0"));
        QCOMPARE(
            readFile(m_path), QByteArray("[Editeur]\nZoom=90\n; edited by hand\nFontSize=12\nSaveZoom=0\n"));
    }

    // A file that cannot be read must not be replaced by a write that knows nothing of its content.
    void unreadableFileIsNotReplaced()
    {
        writeFile(m_path, "[General]\nlang=English\n");
        QVERIFY(QFile::setPermissions(m_path, QFileDevice::WriteOwner));
        QFile probe(m_path);
        const bool readable = probe.open(QIODevice::ReadOnly);
        probe.close();
        if (!readable) {
            const IniFile ini(m_path);
            QCOMPARE(ini.writeValue(QStringLiteral("General"), QStringLiteral("x"), QStringLiteral("1")),
                QStringLiteral("0"));
        }
        QFile::setPermissions(m_path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        QCOMPARE(readFile(m_path), QByteArray("[General]\nlang=English\n"));
        if (readable)
            QSKIP("running with rights that ignore file permissions");
    }

    // Numbers and flags as other programs write them.
    void typed_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<bool>("fileExpand"); // default "1"
        QTest::addColumn<bool>("showDoublons"); // default "0"
        QTest::addColumn<int>("tempo"); // default "100"
        // clang-format off
        QTest::newRow("other numbers")
            << QByteArray("[General]\nfileExpand=-1\nshowDoublons=2\n[Player]\ntempoDef=96.6\n") << true << true << 97;
        QTest::newRow("not numbers")
            << QByteArray("[General]\nfileExpand=yes\nshowDoublons=x\n[Player]\ntempoDef=fast\n") << true << false << 100;
        QTest::newRow("stored empty")
            << QByteArray("[General]\nfileExpand=\nshowDoublons=\n[Player]\ntempoDef=\n") << true << false << 100;
        // clang-format on
    }
    void typed()
    {
        QFETCH(QByteArray, content);
        QFETCH(bool, fileExpand);
        QFETCH(bool, showDoublons);
        QFETCH(int, tempo);
        writeFile(m_path, content);
        const IniFile ini(m_path);
        QCOMPARE(ini.getBool(keys::FileExpand), fileExpand);
        QCOMPARE(ini.getBool(keys::ShowDoublons), showDoublons);
        QCOMPARE(ini.getInt(keys::TempoDef), tempo);
    }

private:
    QTemporaryDir m_dir;
    QString m_path;
};

FENWORK_TEST(TestIniFile)
#include "tst_inifile.moc"
