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
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTimer>

using namespace fenwork;

namespace {

struct Fixture
{
    Fixture() { window = test::loadedMainWindow(env); }
    ~Fixture()
    {
        dialog.reset();
        window.reset();
    }
    OptionsDialog &open()
    {
        dialog = std::make_unique<OptionsDialog>(env.app(), window.get());
        dialog->show();
        return *dialog;
    }
    template <class T> T *control(const QString &name) { return dialog->findChild<T *>(name); }
    void click(const char *button) { control<QPushButton>(QString::fromLatin1(button))->click(); }
    QString ini(const SettingKey &key) { return env.app().ini().get(key); }

    test::TestEnv env;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<OptionsDialog> dialog;
};

// Sets a control the way a user would: a check box is toggled, a list takes the row (or text),
// a box takes the text and is left.
void setControl(QWidget *widget, const QString &value)
{
    if (auto *box = qobject_cast<QCheckBox *>(widget)) {
        box->setChecked(value == u"1");
    } else if (auto *list = qobject_cast<QComboBox *>(widget)) {
        const int row = list->findText(value);
        list->setCurrentIndex(row >= 0 ? row : value.toInt());
    } else if (auto *edit = qobject_cast<QLineEdit *>(widget)) {
        edit->setFocus();
        edit->selectAll();
        QTest::keyClicks(edit, value);
        emit edit->editingFinished();
    }
}

// A value as the settings file holds it, blanks included (reading trims them).
QString rawValue(const QString &iniPath, const QString &key)
{
    const QStringList lines = test::readAll(iniPath).split(u'\n');
    for (const QString &line : lines)
        if (line.startsWith(key + u'=', Qt::CaseInsensitive))
            return line.mid(key.size() + 1).remove(u'\r');
    return QStringLiteral("?");
}

} // namespace

class TestOptions : public QObject
{
    Q_OBJECT

private slots:
    void controlWritesKey_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("written");
        QTest::newRow("backup on") << "chk_Bak" << "1" << "General" << "FichBak" << "1";
        QTest::newRow("reopen off") << "chk_openFiles" << "0" << "OpenFiles" << "Rouvrir" << "0";
        QTest::newRow("tips off") << "chk_showTips" << "0" << "General" << "showTips" << "0";
        QTest::newRow("version check off") << "chk_newVersion" << "0" << "General" << "checkNewVersion" << "0";
        QTest::newRow("double click edits") << "lst_dblClc" << "1" << "General" << "DblClcIdx" << "1";
        QTest::newRow("options padded") << "txt_Cmd2midi" << "-o" << "Tools" << "cmd2midi" << " -o ";
        QTest::newRow("options trimmed") << "txt_Cmd2ps" << "  -s0.8  " << "Tools" << "cmd2ps" << " -s0.8 ";
        QTest::newRow("repeats floor") << "txt_nbRepeat" << "0" << "Player" << "nbRepeat" << "1";
        QTest::newRow("repeats twelve") << "txt_nbRepeat" << "12" << "Player" << "nbRepeat" << "12";
        QTest::newRow("trash floor") << "txt_TrashMax" << "7" << "General" << "TrashMax" << "50";
        QTest::newRow("digits only") << "txt_tempoDef" << "1a2b0" << "Player" << "tempoDef" << "120";
        QTest::newRow("programmable key") << "txt_editProgr2" << "|:" << "Editeur" << "ToucheProgr2" << "|:";
        QTest::newRow("server") << "txt_updateServer" << "http://127.0.0.1:9" << "General" << "updateServer"
                                << "http://127.0.0.1:9";
    }
    void controlWritesKey()
    {
        QFETCH(QString, control);
        QFETCH(QString, value);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, written);
        Fixture f;
        f.open();
        QWidget *widget = f.control<QWidget>(control);
        QVERIFY2(widget, qPrintable(control));
        setControl(widget, value);
        f.click("bt_Appliquer");
        QCOMPARE(f.env.app().ini().getValue(section, key, QStringLiteral("?")), written.trimmed());
        QCOMPARE(rawValue(f.env.app().ini().path(), key), written);
        QVERIFY(f.dialog->isVisible());
        QVERIFY(!f.env.ui().hadUnexpectedPrompts());
    }

    // What the main window shows follows at once, without a restart.
    void effectsFollowAtOnce()
    {
        Fixture f;
        f.open();
        setControl(f.control<QComboBox>(QStringLiteral("lst_polEdSize")), QStringLiteral("16"));
        setControl(f.control<QCheckBox>(QStringLiteral("chk_seeScore")), QStringLiteral("0"));
        setControl(f.control<QComboBox>(QStringLiteral("lst_GM")), QStringLiteral("40"));
        f.click("bt_ok");
        QVERIFY(!f.dialog->isVisible());
        auto *editor = f.window->findChild<QPlainTextEdit *>(QStringLiteral("txt_ABC"));
        QCOMPARE(editor->font().pointSize(), 16);
        QVERIFY(f.window->scorePanel()->isManualOnly());
        QCOMPARE(f.window->findChild<QComboBox *>(QStringLiteral("lst_GMplayer"))->currentIndex(), 40);
        QCOMPARE(f.ini(keys::DefaultGM), QStringLiteral("40"));
    }

    // A converter that is not there falls back, with its options, and the dialog stays open.
    void badToolPathFallsBack()
    {
        Fixture f;
        f.open();
        setControl(f.control<QLineEdit>(QStringLiteral("txt_Tool2")), QStringLiteral("/nowhere/abcm2ps"));
        setControl(f.control<QLineEdit>(QStringLiteral("txt_Cmd2ps")), QStringLiteral("-x"));
        setControl(f.control<QLineEdit>(QStringLiteral("txt_Tool0")), QStringLiteral("/nowhere/viewer"));
        f.click("bt_ok");
        QVERIFY(f.dialog->isVisible());
        const QStringList shown = f.env.ui().messages();
        QCOMPARE(shown.size(), 2);
        const QString notFound = f.env.app().text(QStringLiteral("Msg"), QStringLiteral("<toolNotExist>"));
        QCOMPARE(shown.at(1), notFound + QStringLiteral("\r\n\r\n/nowhere/abcm2ps"));
        QCOMPARE(f.ini(keys::Tool2ps), computedDefault(keys::Tool2ps, f.env.app().paths()));
        QCOMPARE(rawValue(f.env.app().ini().path(), QStringLiteral("cmd2ps")), keys::Cmd2ps.defaultValue());
        QCOMPARE(f.control<QLineEdit>(QStringLiteral("txt_Cmd2ps"))->text(), keys::Cmd2ps.defaultValue());
        QCOMPARE(f.ini(keys::VisuBitmap), QString());
    }

    // Every open window takes the new language at once, this dialog included.
    void languageSwitchRetitles()
    {
        Fixture f;
        f.window->openHelp(0);
        OptionsDialog &dialog = f.open();
        setControl(f.control<QComboBox>(QStringLiteral("lst_lang")), QStringLiteral("Français"));
        f.click("bt_Appliquer");
        Language french(f.env.app().paths(), QStringLiteral("Français"));
        QCOMPARE(f.ini(keys::Lang), QStringLiteral("Français"));
        QCOMPARE(f.window->findChild<QMenu *>(QStringLiteral("mnu_Fichier"))->title(),
            french.text(QStringLiteral("Menus"), QStringLiteral("<file>")));
        QCOMPARE(dialog.windowTitle(), french.text(QStringLiteral("Options"), QStringLiteral("<options>")));
        QCOMPARE(dialog.findChild<QTabWidget *>()->tabText(4), french.text(QStringLiteral("Options"), QStringLiteral("<tabAudio>")));
        auto *find = f.window->findChild<QLineEdit *>(QStringLiteral("txt_findHelp"));
        QCOMPARE(find->placeholderText(), french.text(QStringLiteral("TTText"), QStringLiteral("<helpFind>")));
    }

    void reinitSurvivesCancel()
    {
        Fixture f;
        f.open();
        f.click("bt_reinitOp");
        f.click("bt_cancel");
        QCOMPARE(f.ini(keys::NbFiles), QStringLiteral("x"));
    }

    // No header means no alias; the advice comes for a click, not for loading.
    void noHeaderClearsAlias()
    {
        Fixture f;
        f.env.app().ini().set(keys::NoSaveHdrFile, QStringLiteral("1"));
        f.open();
        auto *alias = f.control<QCheckBox>(QStringLiteral("chk_Alias"));
        QVERIFY(!alias->isEnabled() && !alias->isChecked());
        QVERIFY(f.env.ui().messages().isEmpty());
        auto *noHeader = f.control<QCheckBox>(QStringLiteral("chk_noSaveHdrFile"));
        noHeader->click();
        QVERIFY(alias->isEnabled());
        noHeader->click();
        QCOMPARE(f.env.ui().messages(), QStringList { f.env.app().text(QStringLiteral("Msg"), QStringLiteral("<noHdrAdv>")) });
    }

    // The menu opens the dialog modally; a template renamed in it reaches the editor's list.
    void menuOpensModalDialog()
    {
        Fixture f;
        bool modal = false;
        QTimer::singleShot(0, [&] {
            auto *dialog = qobject_cast<OptionsDialog *>(QApplication::activeModalWidget());
            modal = dialog != nullptr;
            if (dialog)
                dialog->reject();
        });
        f.window->findChild<QAction *>(QStringLiteral("mnu_Options"))->trigger();
        QVERIFY(modal);
    }
};

FENWORK_TEST(TestOptions)
#include "tst_options.moc"
