#include "testmain.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/scripteddialogs.h"
#include "frame/settings.h"
#include "frame/widgets/icons.h"
#include "frame/widgets/languagechooser.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

using namespace fenwork;

namespace {

// A user root and a program folder of our own, with the language files a test asks for.
struct StartEnv
{
    QTemporaryDir dir;
    ScriptedDialogs ui;
    std::unique_ptr<AppContext> app;

    explicit StartEnv(const QMap<QString, QByteArray> &langFiles)
    {
        QDir().mkpath(program() + QStringLiteral("/lang"));
        QDir().mkpath(dir.filePath(QStringLiteral("root")));
        for (auto it = langFiles.cbegin(); it != langFiles.cend(); ++it) {
            QFile file(program() + QStringLiteral("/lang/") + it.key());
            if (file.open(QIODevice::WriteOnly))
                file.write(it.value());
        }
        app = std::make_unique<AppContext>(Paths(dir.filePath(QStringLiteral("root")), program()), &ui);
    }
    QString program() const { return dir.filePath(QStringLiteral("program")); }
    QString setting(const SettingKey &key) const
    {
        return app->ini().getValue(key.sectionName(), key.keyName(), QStringLiteral("<missing>"));
    }
};

} // namespace

class TestStartWindows : public QObject
{
    Q_OBJECT
private slots:
    void languageChooser_data();
    void languageChooser();
    void treePictures();
};

void TestStartWindows::languageChooser_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("listed");
    QTest::addColumn<QString>("chosen"); // after Return; empty: nothing taken

    // clang-format off
    QTest::newRow("English among others") << QStringList { "Français.txt", "English.txt", "Deutsch.txt", "notes.md" }
                                          << QStringList { "Deutsch", "English", "Français" } << "English";
    QTest::newRow("no English: nothing preselected") << QStringList { "Français.txt" } << QStringList { "Français" } << "";
    QTest::newRow("empty folder") << QStringList {} << QStringList {} << "";
    // clang-format on
}

void TestStartWindows::languageChooser()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, listed);
    QFETCH(QString, chosen);

    QMap<QString, QByteArray> langFiles;
    for (const QString &f : files)
        langFiles.insert(f, QByteArray());
    StartEnv env(langFiles);
    LanguageChooser chooser(*env.app);
    chooser.show();
    QVERIFY(QTest::qWaitForWindowExposed(&chooser));
    auto *list = chooser.findChild<QListWidget *>(QStringLiteral("lst_lang"));
    QVERIFY(list);
    QStringList rows;
    for (int i = 0; i < list->count(); ++i)
        rows << list->item(i)->text();
    QCOMPARE(rows, listed);

    QTest::keyClick(list, Qt::Key_Return);
    QCOMPARE(chooser.chosen(), chosen);
    if (chosen.isEmpty()) {
        QCOMPARE(env.setting(keys::Lang), QStringLiteral("<missing>"));
        // Without a row taken the window waits, unless there is nothing to choose from.
        QCOMPARE(chooser.isVisible(), !listed.isEmpty());
        chooser.close();
        QCOMPARE(chooser.chosen(), QString());
    } else {
        QVERIFY(!chooser.isVisible());
        QCOMPARE(chooser.result(), int(QDialog::Accepted));
        QCOMPARE(env.setting(keys::Lang), chosen);
        QCOMPARE(env.app->lang().name(), chosen);
    }
}

void TestStartWindows::treePictures()
{
    // Every picture the tree names must load (the SVG plugin is there, the file parses) and
    // draw something; a changed or read-only state must look different from the plain one.
    const QString program = QStringLiteral(FENWORK_DATA_DIR);
    auto image = [&](const QString &name) {
        return pictureIcon(name, program).pixmap(16, 16).toImage().convertToFormat(QImage::Format_ARGB32);
    };
    const QStringList names { "abcroot", "poub", "hdrfile", "bdyfile", "fileabc", "fileabcm", "filero",
        "filerom", "tune", "tunem", "hdrtune", "bdytune", "include", "chpetend", "rem", "part", "propr",
        "voix", "mus", "noabc" };
    for (const QString &name : names) {
        const QImage img = image(name);
        QVERIFY2(!img.isNull(), qPrintable(name));
        int opaque = 0;
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x)
                opaque += qAlpha(img.pixel(x, y)) > 128;
        QVERIFY2(opaque > 20, qPrintable(name));
    }
    for (const auto &[plain, marked] : { std::pair { "fileabc", "fileabcm" }, { "fileabc", "filero" },
             { "filero", "filerom" }, { "tune", "tunem" } })
        QVERIFY2(image(QString::fromLatin1(plain)) != image(QString::fromLatin1(marked)), marked);
    QVERIFY(pictureIcon(QStringLiteral("nosuchpicture"), program).isNull());
}

FENWORK_TEST(TestStartWindows)
#include "tst_startwindows.moc"
