#include "testmain.h"

#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "scripteddialogs.h"
#include "frame/settings.h"
#include "app/widgets/firststartdialog.h"
#include "frame/widgets/icons.h"
#include "app/widgets/languagechooser.h"
#include "app/widgets/qttranslation.h"
#include "app/widgets/unixsignals.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QEventLoop>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLibraryInfo>
#include <QListWidget>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
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
    void firstStartWindow_data();
    void firstStartWindow();
    void toolkitButtonsSpeakTheLanguage_data();
    void toolkitButtonsSpeakTheLanguage();
    void terminationEndsModalLoops_data();
    void terminationEndsModalLoops();
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

void TestStartWindows::firstStartWindow_data()
{
    QTest::addColumn<bool>("untick");
    QTest::addColumn<QString>("how"); // ok, close (the title bar's X), esc, terminate
    QTest::addColumn<QString>("stored"); // FichBak afterwards

    QTest::newRow("OK keeps backups on") << false << "ok" << "1";
    QTest::newRow("OK after unticking") << true << "ok" << "0";
    QTest::newRow("title bar X keeps the default") << false << "close" << "1";
    QTest::newRow("Esc keeps the default") << false << "esc" << "1";
    QTest::newRow("a termination is no answer") << false << "terminate" << "<missing>";
}

void TestStartWindows::firstStartWindow()
{
    QFETCH(bool, untick);
    QFETCH(QString, how);
    QFETCH(QString, stored);

    StartEnv env({ { QStringLiteral("English.txt"), QByteArray("[Options]\n<saveBak>=Keep a copy\n") } });
    env.app->lang().setName(QStringLiteral("English"));
    FirstStartDialog first(*env.app);
    first.show();
    QVERIFY(QTest::qWaitForWindowExposed(&first));
    auto *bak = first.findChild<QCheckBox *>(QStringLiteral("chk_Bak"));
    QVERIFY(bak);
    QVERIFY(bak->isChecked());
    if (untick)
        bak->click();
    if (how == u"ok")
        first.findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
    else if (how == u"close")
        first.close();
    else if (how == u"esc")
        QTest::keyClick(&first, Qt::Key_Escape);
    else {
        first.setModal(true);
        closeModalWindows();
    }
    QVERIFY(!first.isVisible());
    QCOMPARE(env.setting(keys::FichBak), stored);
}

void TestStartWindows::toolkitButtonsSpeakTheLanguage_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QStringList>("buttons"); // Yes, No, Cancel, Close

    const QStringList french { "&Oui", "&Non", "Annuler", "Fermer" };
    const QStringList english { "&Yes", "&No", "Cancel", "Close" };
    QTest::newRow("Français") << "Français" << french;
    QTest::newRow("named in any case") << "FRANÇAIS" << french;
    QTest::newRow("named in English") << "French" << french;
    QTest::newRow("English") << "English" << english;
    QTest::newRow("no such language") << "Elvish runes" << english;
    QTest::newRow("none chosen") << "" << english;
}

void TestStartWindows::toolkitButtonsSpeakTheLanguage()
{
    QFETCH(QString, language);
    QFETCH(QStringList, buttons);
    if (!QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + QStringLiteral("/qtbase_fr.qm")))
        QSKIP("Qt's translations are not installed (qt6-translations-l10n)");

    // French first, so that each row also shows the earlier language gives way.
    QVERIFY(installQtTranslation(QStringLiteral("Français")));
    installQtTranslation(language);
    QMessageBox box(QMessageBox::Question, QString(), QString(),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel | QMessageBox::Close);
    const QStringList shown { box.button(QMessageBox::Yes)->text(), box.button(QMessageBox::No)->text(),
        box.button(QMessageBox::Cancel)->text(), box.button(QMessageBox::Close)->text() };
    installQtTranslation(QString());
    QCOMPARE(shown, buttons);
}

void TestStartWindows::terminationEndsModalLoops_data()
{
    QTest::addColumn<QString>("window");
    QTest::newRow("Yes/No box") << "question";
    QTest::newRow("dialog") << "dialog";
    QTest::newRow("pop-up menu") << "menu";
    QTest::newRow("box opened on the signal itself") << "late box";
}

void TestStartWindows::terminationEndsModalLoops()
{
    QFETCH(QString, window);

    UnixSignals watch;
    bool returned = false;
    bool returnedBeforeReady = false;
    const auto open = [&] {
        if (window == u"menu") {
            QMenu menu;
            menu.addAction(QStringLiteral("Item"));
            menu.exec(QPoint(10, 10));
        } else if (window == u"dialog") {
            QDialog dialog;
            dialog.exec();
        } else {
            QMessageBox box(QMessageBox::Question, QString(), QStringLiteral("Sure?"),
                QMessageBox::Yes | QMessageBox::No);
            box.exec();
        }
        returned = true;
    };
    // Stands for the program's main loop; the windows open in loops nested in it.
    QEventLoop mainLoop;
    int ready = 0;
    connect(&watch, &UnixSignals::readyToQuit, &mainLoop, [&] {
        if (ready++ == 0)
            returnedBeforeReady = returned;
        mainLoop.quit();
    });
    if (window == u"late box") {
        connect(&watch, &UnixSignals::terminationRequested, &mainLoop, open);
        QTimer::singleShot(0, [] { ::raise(SIGTERM); });
    } else {
        QTimer::singleShot(0, open);
        QTimer::singleShot(100, [] { ::raise(SIGTERM); });
    }
    QTimer::singleShot(10000, &mainLoop, &QEventLoop::quit);
    mainLoop.exec();
    QVERIFY(watch.wasRequested());
    QVERIFY(returned);
    // The quit may only start once the code that opened the window has its answer.
    QVERIFY(returnedBeforeReady);
    QVERIFY(!QApplication::activeModalWidget());
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
    // The score's picture when there is nothing to engrave.
    QVERIFY(!QImage(program + QStringLiteral("/img/blank_std.bmp")).isNull());
}

FENWORK_TEST(TestStartWindows)
#include "tst_startwindows.moc"
