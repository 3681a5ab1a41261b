// The options dialog: what each control writes, what follows at once, and the checks of apply.
#include "testenv.h"
#include "testmain.h"

#include "app/widgets/mainwindow.h"
#include "app/widgets/optionsdialog.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/settings.h"
#include "score/widgets/scorepanel.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QListWidget>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

using namespace fenwork;

namespace {

// The main window with the options dialog open over it.
struct Fixture
{
    explicit Fixture(const std::function<void(IniFile &)> &before = {})
    {
        if (before)
            before(env.app().ini());
        window = test::loadedMainWindow(env);
        dialog = std::make_unique<OptionsDialog>(env.app(), window.get());
        dialog->show();
    }
    template <class T = QWidget> T *control(const QString &name) { return dialog->findChild<T *>(name); }
    void click(const char *button) { control<QPushButton>(QString::fromLatin1(button))->click(); }
    // Sets a control as a user would: a box is ticked or not, a list takes the row (or the text),
    // a text box is typed into and left.
    void set(const QString &name, const QString &value)
    {
        QWidget *widget = control(name);
        QVERIFY2(widget, qPrintable(name));
        if (auto *box = qobject_cast<QCheckBox *>(widget)) {
            box->setChecked(value == u"1");
        } else if (auto *list = qobject_cast<QComboBox *>(widget)) {
            const int row = list->findText(value);
            list->setCurrentIndex(row >= 0 ? row : value.toInt());
        } else if (auto *edit = qobject_cast<QLineEdit *>(widget)) {
            edit->selectAll();
            QTest::keyClicks(edit, value);
            emit edit->editingFinished();
        }
    }
    // A value as the settings file holds it, blanks included (reading trims them).
    QString raw(const QString &key)
    {
        for (const QString &line : test::readAll(env.app().ini().path()).split(u'\n'))
            if (line.startsWith(key + u'=', Qt::CaseInsensitive))
                return line.mid(key.size() + 1).remove(u'\r');
        return QStringLiteral("?");
    }
    QString text(const char *section, const char *key)
    {
        return env.app().text(QString::fromLatin1(section), QString::fromLatin1(key));
    }

    test::TestEnv env;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<OptionsDialog> dialog;
};

} // namespace

class TestOptions : public QObject
{
    Q_OBJECT

private slots:
    void controlWritesKey_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("written");
        // clang-format off
        QTest::newRow("check box") << "chk_Bak" << "1" << "FichBak" << "1";
        QTest::newRow("check box off") << "chk_newVersion" << "0" << "checkNewVersion" << "0";
        QTest::newRow("list row") << "lst_dblClc" << "1" << "DblClcIdx" << "1";
        QTest::newRow("options padded") << "txt_Cmd2midi" << "-o" << "cmd2midi" << " -o ";
        QTest::newRow("options trimmed") << "txt_Cmd2ps" << "  -s0.8  " << "cmd2ps" << " -s0.8 ";
        QTest::newRow("repeats floor") << "txt_nbRepeat" << "0" << "nbRepeat" << "1";
        QTest::newRow("repeats typed through 1") << "txt_nbRepeat" << "12" << "nbRepeat" << "12";
        QTest::newRow("trash floor") << "txt_TrashMax" << "7" << "TrashMax" << "50";
        QTest::newRow("digits only") << "txt_tempoDef" << "1a2b0" << "tempoDef" << "120";
        QTest::newRow("programmable key") << "txt_editProgr2" << "|:" << "ToucheProgr2" << "|:";
        // clang-format on
    }
    void controlWritesKey()
    {
        QFETCH(QString, control);
        QFETCH(QString, value);
        QFETCH(QString, key);
        QFETCH(QString, written);
        Fixture f;
        f.set(control, value);
        f.click("bt_Appliquer");
        QCOMPARE(f.raw(key), written);
        QVERIFY(f.dialog->isVisible());
        QVERIFY(!f.env.ui().hadUnexpectedPrompts());
    }

    // What the main window shows follows at once, without a restart.
    void effectsFollowAtOnce()
    {
        Fixture f;
        f.set(QStringLiteral("lst_polEdSize"), QStringLiteral("16"));
        f.set(QStringLiteral("chk_seeScore"), QStringLiteral("0"));
        f.set(QStringLiteral("lst_GM"), QStringLiteral("40"));
        f.click("bt_ok");
        QVERIFY(!f.dialog->isVisible());
        QCOMPARE(f.window->findChild<QPlainTextEdit *>(QStringLiteral("txt_ABC"))->font().pointSize(), 16);
        QVERIFY(f.window->scorePanel()->isManualOnly());
        QCOMPARE(f.window->findChild<QComboBox *>(QStringLiteral("lst_GMplayer"))->currentIndex(), 40);
    }

    // A converter that is not there falls back, with its options, and the dialog stays open.
    void badToolPathFallsBack()
    {
        Fixture f;
        f.set(QStringLiteral("txt_Tool2"), QStringLiteral("/nowhere/abcm2ps"));
        f.set(QStringLiteral("txt_Cmd2ps"), QStringLiteral("-x"));
        f.set(QStringLiteral("txt_Tool0"), QStringLiteral("/nowhere/viewer"));
        f.click("bt_ok");
        QVERIFY(f.dialog->isVisible());
        const QString notFound = f.text("Msg", "<toolNotExist>") + QStringLiteral("\r\n\r\n");
        QCOMPARE(f.env.ui().messages(),
            (QStringList { notFound + "/nowhere/viewer", notFound + "/nowhere/abcm2ps" }));
        QCOMPARE(f.env.app().ini().get(keys::Tool2ps), computedDefault(keys::Tool2ps, f.env.app().paths()));
        QCOMPARE(f.raw(QStringLiteral("cmd2ps")), keys::Cmd2ps.defaultValue());
        QCOMPARE(f.control<QLineEdit>(QStringLiteral("txt_Cmd2ps"))->text(), keys::Cmd2ps.defaultValue());
        QCOMPARE(f.raw(QStringLiteral("VisuBitmap")), QString());
    }

    // Every open window takes the new language at once, this dialog included.
    void languageSwitchRetitles()
    {
        Fixture f;
        f.window->openHelp(0);
        for (const char *tool : { "mnu_toExtras1", "mnu_inserAuto" })
            f.window->findChild<QAction *>(QString::fromLatin1(tool))->trigger();
        f.set(QStringLiteral("lst_lang"), QStringLiteral("Français"));
        f.click("bt_Appliquer");
        const Language french(f.env.app().paths(), QStringLiteral("Français"));
        QCOMPARE(f.window->findChild<QMenu *>(QStringLiteral("mnu_Fichier"))->title(),
            french.text(QStringLiteral("Menus"), QStringLiteral("<file>")));
        QCOMPARE(f.dialog->findChild<QTabWidget *>()->tabText(4),
            french.text(QStringLiteral("Options"), QStringLiteral("<tabAudio>")));
        QCOMPARE(f.window->findChild<QLineEdit *>(QStringLiteral("txt_findHelp"))->placeholderText(),
            french.text(QStringLiteral("TTText"), QStringLiteral("<helpFind>")));
        QCOMPARE(f.window->findChild<QWidget *>(QStringLiteral("f_tempo"))->windowTitle(),
            french.text(QStringLiteral("Tempo"), QStringLiteral("<tempoMtr>")));
        QCOMPARE(f.window->findChild<QPushButton *>(QStringLiteral("bt_Inser"))->text(),
            french.text(QStringLiteral("InserAuto"), QStringLiteral("<insert>")));
    }

    // The templates tab works on the files of the template folder.
    void templatesTab()
    {
        Fixture f([](IniFile &ini) {
            const QString folder = QFileInfo(ini.path()).path() + QStringLiteral("/user/tmpl/");
            QDir().mkpath(folder);
            for (const char *name : { "Air.txt", "Reel.txt" }) {
                QFile file(folder + QString::fromLatin1(name));
                QVERIFY(file.open(QIODevice::WriteOnly) && file.write("X:1\r\nK:D\r\n") > 0);
            }
        });
        const QString folder = f.env.app().paths().inUser(QStringLiteral("tmpl/"));
        auto *names = f.control<QListWidget>(QStringLiteral("lst_Mdl"));
        QCOMPARE(names->currentItem()->text(), QStringLiteral("Air"));
        f.set(QStringLiteral("txt_fichMdl"), QStringLiteral("Reel"));
        f.click("bt_newName");
        QCOMPARE(f.env.ui().messages(), QStringList { f.text("Msg", "<tmplExist>") });
        f.set(QStringLiteral("txt_fichMdl"), QStringLiteral("Jig"));
        f.click("bt_newName");
        QVERIFY(QFile::exists(folder + "Jig.txt") && !QFile::exists(folder + "Air.txt"));
        QVERIFY(f.control<QComboBox>(QStringLiteral("lst_mdlDef"))->findText(QStringLiteral("Jig")) > 0);
        f.control<QPlainTextEdit>(QStringLiteral("txt_Mdl"))->setPlainText(QStringLiteral("X:1\nT:New\nK:G"));
        f.click("bt_saveMdl");
        QCOMPARE(test::readAll(folder + "Jig.txt"), QStringLiteral("X:1\nT:New\nK:G"));
        f.env.ui().pushAnswer(UserDialogs::Answer::No);
        f.click("bt_delTmpl");
        f.env.ui().pushAnswer(UserDialogs::Answer::Yes);
        f.click("bt_delTmpl");
        QVERIFY(!QFile::exists(folder + "Jig.txt"));
        QCOMPARE(names->count(), 1);
    }

    void reinitSurvivesCancel()
    {
        Fixture f;
        f.click("bt_reinitOp");
        f.click("bt_cancel");
        QCOMPARE(f.env.app().ini().get(keys::NbFiles), QStringLiteral("x"));
    }

    // No header means no alias; the advice comes for a click, not for loading.
    void noHeaderClearsAlias()
    {
        Fixture f([](IniFile &ini) { ini.set(keys::NoSaveHdrFile, QStringLiteral("1")); });
        auto *alias = f.control<QCheckBox>(QStringLiteral("chk_Alias"));
        QVERIFY(!alias->isEnabled() && !alias->isChecked());
        auto *noHeader = f.control<QCheckBox>(QStringLiteral("chk_noSaveHdrFile"));
        noHeader->click();
        QVERIFY(alias->isEnabled());
        noHeader->click();
        QCOMPARE(f.env.ui().messages(), QStringList { f.text("Msg", "<noHdrAdv>") });
    }
};

FENWORK_TEST(TestOptions)
#include "tst_options.moc"
