// The Tools window in its two scopes, and how the main window offers it around an edit session.
#include "testenv.h"
#include "testmain.h"

#include "app/widgets/mainmenus.h"
#include "app/widgets/mainwindow.h"
#include "editing/widgets/editcontroller.h"
#include "frame/strutil.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "tools/widgets/toolsdialog.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>

using namespace fenwork;

namespace {

struct Files
{
    test::TestEnv env;
    QString kFile[2];
    Files()
    {
        env.app().store().backupOnOpen = false;
        createWorkspaceRoot(env.app());
        for (int i = 0; i < 2; ++i)
            kFile[i] = env.app().store().FichierOuvrir(
                env.writeFile(QString::number(i) + QStringLiteral(".abc"), "X:1\nT:a\nK:G\nA B % c\n"), false, true,
                false);
    }
    QString text(int i) { return env.app().store().GetStringFile(kFile[i], true, false); }
    QString msg(const char *key) { return env.app().text(QStringLiteral("Msg"), QString::fromLatin1(key)); }
};

template <class T> T *child(QWidget *parent, const char *name)
{
    return parent->findChild<T *>(QString::fromLatin1(name));
}

void tick(ToolsDialog &dialog, int option)
{
    child<QCheckBox>(&dialog, qPrintable(QStringLiteral("chk_clean") + QString::number(option)))->click();
}

} // namespace

class TestToolsDialog : public QObject
{
    Q_OBJECT

private slots:
    void cleanRestoreAndTheFileList()
    {
        Files f;
        ToolsDialog dialog(f.env.app(), ToolsDialog::Scope::File);
        dialog.selectFile(f.kFile[0]);
        dialog.show();
        const QString before = f.text(0);
        auto *restore = child<QPushButton>(&dialog, "bt_restaur");
        QVERIFY(!restore->isVisible());
        tick(dialog, CleanComments);
        dialog.bt_Clean_Click();
        QVERIFY(!f.text(0).contains(u'%'));
        QCOMPARE(f.env.ui().lastMessage(), f.msg("<CleanedFile>") + CRLF + CRLF + f.msg("<infoRestore>"));
        QVERIFY(restore->isVisible());
        // The backup belongs to its file: another one picked hides the button.
        auto *files = child<QComboBox>(&dialog, "lst_fich");
        files->setCurrentIndex(1);
        QVERIFY(!restore->isVisible());
        files->setCurrentIndex(0);
        QVERIFY(restore->isVisible());
        dialog.bt_restaur_Click();
        QCOMPARE(f.text(0), before);
        QVERIFY(f.env.ui().lastMessage().startsWith(f.msg("<fileRestDone>")));
        QVERIFY(!restore->isVisible());
    }

    void nothingToCleanClosesTheWindow()
    {
        Files f;
        ToolsDialog dialog(f.env.app(), ToolsDialog::Scope::File);
        dialog.selectFile(f.kFile[1]);
        dialog.show();
        tick(dialog, CleanRolls);
        dialog.bt_Clean_Click();
        QCOMPARE(f.env.ui().lastMessage(), f.msg("<noCleanedFile>"));
        QVERIFY(!dialog.isVisible());
    }

    void tuneScope()
    {
        Files f;
        ToolsDialog dialog(f.env.app(), ToolsDialog::Scope::Tune);
        QString panel = QStringLiteral("X:1\r\nT:a\r\n~A B\r\n");
        int written = 0;
        dialog.tuneText = [&panel] { return panel; };
        dialog.setTuneText = [&](const QString &text) {
            panel = text;
            ++written;
        };
        dialog.show();
        auto *tabs = child<QTabWidget>(&dialog, "pic_tool");
        QStringList visible;
        for (int i = 0; i < tabs->count(); ++i)
            if (tabs->isTabVisible(i))
                visible << tabs->widget(i)->objectName();
        QCOMPARE(visible, (QStringList { "clean", "chords" }));
        QVERIFY(!child<QComboBox>(&dialog, "lst_fich")->isVisible());
        QVERIFY(!child<QPushButton>(&dialog, "bt_addChords")->isEnabled());

        tick(dialog, CleanRolls);
        dialog.bt_Clean_Click();
        QCOMPARE(panel, QStringLiteral("X:1\r\nT:a\r\nA B\r\n"));
        dialog.bt_Clean_Click(); // nothing left: nothing written, nothing said
        QCOMPARE(written, 1);
        QVERIFY(f.env.ui().messages().isEmpty());
    }

    // The tune tools follow a tune's edit session, and a session's end closes them.
    void offeredDuringATuneSession()
    {
        test::TestEnv env;
        qputenv("FENNELWORKS_AUDIO", "file:" + env.path(QStringLiteral("out.wav")).toUtf8());
        std::unique_ptr<MainWindow> window = test::loadedMainWindow(env);
        const QString kFile = window->openPath(env.writeFile("t.abc", "X:1\nT:a\nK:G\n~ABc|\n"));
        window->SimulerNodeClick(kFile + QStringLiteral("_tune1"));
        QAction *tuneTools = window->menus()->action(QStringLiteral("mnu_fileTools1"));
        QVERIFY(!tuneTools->isEnabled());
        window->editController()->abcedit();
        QApplication::processEvents();
        QVERIFY(tuneTools->isEnabled());
        QVERIFY(window->menus()->isMenuEnabled(QStringLiteral("mnu_Outils")));
        tuneTools->trigger();
        auto *dialog = window->findChild<ToolsDialog *>();
        QVERIFY(dialog && dialog->scope() == ToolsDialog::Scope::Tune);
        tick(*dialog, CleanRolls);
        dialog->bt_Clean_Click();
        QVERIFY(!window->findChild<QPlainTextEdit *>(QStringLiteral("txt_ABC"))->toPlainText().contains(u'~'));
        window->editController()->validate();
        QApplication::processEvents();
        QVERIFY(!window->findChild<ToolsDialog *>());
        QVERIFY(!tuneTools->isEnabled());
        QVERIFY(!env.app().store().GetStringTune(kFile + QStringLiteral("_tune1"), false).contains(u'~'));
        window.reset();
        qunsetenv("FENNELWORKS_AUDIO");
    }
};

FENWORK_TEST(TestToolsDialog)
#include "tst_toolsdialog.moc"
