#include "testmain.h"

#include "frame/language.h"
#include "frame/paths.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <fcntl.h>
#include <sys/stat.h>

using namespace fenwork;

namespace {

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}

QString shippedLanguage(const QString &name)
{
    return QStringLiteral(FENWORK_DATA_DIR "/lang/") + name + QStringLiteral(".txt");
}

} // namespace

class TestLanguage : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        QVERIFY(QDir(m_root.path()).mkpath(QStringLiteral("program/lang")));
        m_paths = Paths(m_root.filePath(QStringLiteral("user")), m_root.filePath(QStringLiteral("program")));
    }

    void changeIsSeenAtOnce()
    {
        const QString path = m_paths.inProgram(QStringLiteral("lang/Live.txt"));
        writeFile(path, "[Msg]\n<k>=one\n");
        Language lang(m_paths, QStringLiteral("Live"));
        QCOMPARE(lang.text(QStringLiteral("Msg"), QStringLiteral("<k>")), QStringLiteral("one"));

        // Same size, rewritten in place at once: file times may not have moved.
        writeFile(path, "[Msg]\n<k>=two\n");
        QCOMPARE(lang.text(QStringLiteral("Msg"), QStringLiteral("<k>")), QStringLiteral("two"));

        // An old file changed in place with its modification time put back.
        QFile file(path);
        const QDateTime old = QDateTime::currentDateTime().addSecs(-3600);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(old, QFileDevice::FileModificationTime));
        file.close();
        QCOMPARE(lang.text(QStringLiteral("Msg"), QStringLiteral("<k>")), QStringLiteral("two"));
        writeFile(path, "[Msg]\n<k>=six\n");
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(old, QFileDevice::FileModificationTime));
        file.close();
        QCOMPARE(lang.text(QStringLiteral("Msg"), QStringLiteral("<k>")), QStringLiteral("six"));

        QVERIFY(QFile::remove(path));
        QCOMPARE(lang.text(QStringLiteral("Msg"), QStringLiteral("<k>")), QString());
        writeFile(path, "[Msg]\n<k>=back\n");
        QCOMPARE(lang.text(QStringLiteral("Msg"), QStringLiteral("<k>")), QStringLiteral("back"));

        // A change of language needs no reload step.
        writeFile(m_paths.inProgram(QStringLiteral("lang/Other.txt")), "[Msg]\n<k>=other\n");
        lang.setName(QStringLiteral("Other"));
        QCOMPARE(lang.text(QStringLiteral("Msg"), QStringLiteral("<k>")), QStringLiteral("other"));
    }

    // Once a file has been left alone for a while its parsed copy is trusted on its file times
    // alone; a later change must still show, even one that puts the modification time back.
    void changeOfSettledFile()
    {
        const QString path = m_paths.inProgram(QStringLiteral("lang/Settled.txt"));
        writeFile(path, "[Msg]\n<k>=one\n");
        Language lang(m_paths, QStringLiteral("Settled"));
        // Still well above the file system's time tick.
        lang.setSettleTime(100);
        QTest::qSleep(150);
        QCOMPARE(lang.text(QStringLiteral("Msg"), QStringLiteral("<k>")), QStringLiteral("one"));
        QCOMPARE(lang.text(QStringLiteral("Msg"), QStringLiteral("<k>")), QStringLiteral("one"));

        // Put the modification time back to the nanosecond, which Qt's file times cannot do.
        const QByteArray native = QFile::encodeName(path);
        struct stat before;
        QCOMPARE(::stat(native.constData(), &before), 0);
        writeFile(path, "[Msg]\n<k>=two\n");
        const timespec times[2] = { before.st_atim, before.st_mtim };
        QCOMPARE(::utimensat(AT_FDCWD, native.constData(), times, 0), 0);
        QCOMPARE(lang.text(QStringLiteral("Msg"), QStringLiteral("<k>")), QStringLiteral("two"));
    }

    void trashCaptionHasOneColon()
    {
        const Language lang(Paths(m_root.path(), QStringLiteral(FENWORK_DATA_DIR)), QStringLiteral("English"));
        // Restoring from the trash box reads the path behind the first colon of this caption.
        const QString fromFile = lang.text(QStringLiteral("TrashPanel"), QStringLiteral("<fromFile>"));
        QVERIFY(fromFile.endsWith(u':'));
        QCOMPARE(fromFile.count(u':'), 1);
    }

    // Sections and keys are matched without regard to case, so a second spelling of a section or
    // key in a shipped file is dead text that nobody sees.
    void shippedFilesHaveNoDeadText_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("English") << "English";
        QTest::newRow("Français") << "Français";
    }
    void shippedFilesHaveNoDeadText()
    {
        QFETCH(QString, name);
        QFile file(shippedLanguage(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        QSet<QString> sections;
        QSet<QString> keys;
        QString section;
        QStringList dead;
        for (const QString &raw : text.split(u'\n')) {
            const QString line = raw.trimmed();
            if (line.isEmpty() || line.startsWith(u';'))
                continue;
            if (line.startsWith(u'[')) {
                section = line.mid(1, line.lastIndexOf(u']') - 1).trimmed().toCaseFolded();
                if (sections.contains(section))
                    dead.append(u'[' + section + u']');
                sections.insert(section);
                continue;
            }
            const qsizetype equal = line.indexOf(u'=');
            QVERIFY2(equal > 0, qPrintable(line));
            const QString id = section + u'/' + line.left(equal).trimmed().toCaseFolded();
            if (keys.contains(id))
                dead.append(id);
            keys.insert(id);
            QVERIFY2(line.size() - equal - 1 <= 254, qPrintable(id));
        }
        QVERIFY2(dead.isEmpty(), qPrintable(dead.join(u", ")));
    }

private:
    QTemporaryDir m_root;
    Paths m_paths;
};

FENWORK_TEST(TestLanguage)
#include "tst_language.moc"
