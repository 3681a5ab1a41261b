// The search panel driven through its controls: the boxes and the saved masks (the search itself
// through the main window is in the app tests).
#include "testenv.h"
#include "testmain.h"

#include "finding/masks.h"
#include "finding/widgets/filterpanel.h"
#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using namespace fenwork;

namespace {

const QByteArray kTunes = "X:1\nT:Morning Reel\nR:reel\nK:D\nABc d2|\n"
                          "X:2\nT:The Jig\nR:jig\nK:G\nGAB c2|\n"
                          "X:3\nT:Reel of Two\nK:Ador\nG2 A B|\n";

struct Fixture
{
    test::TestEnv env;
    QString kFile;
    std::unique_ptr<FilterPanel> panel;

    Fixture()
    {
        createWorkspaceRoot(env.app());
        kFile = env.app().store().FichierOuvrir(env.writeFile(QStringLiteral("t.abc"), kTunes), false, true, false);
    }
    FilterPanel &make()
    {
        panel = std::make_unique<FilterPanel>(env.app());
        panel->resize(400, 700);
        return *panel;
    }
    template <typename T> T *get(const char *name)
    {
        return panel->findChild<T *>(QString::fromLatin1(name));
    }
    QLineEdit *field(const char *marker)
    {
        const int row = filterRowOfCaption(QString::fromLatin1(marker));
        return panel->findChild<QLineEdit *>(QStringLiteral("txt_Chp%1").arg(row));
    }
    QComboBox *masks() { return get<QComboBox>("lst_Msk"); }
    QPushButton *button(const char *name) { return get<QPushButton>(name); }
    QString msg(const char *key) { return env.app().text(QStringLiteral("Msg"), QString::fromLatin1(key)); }
    QStringList shown()
    {
        QStringList xs;
        for (const Node *tune : env.app().tree().find(kFile + key::BdyFile)->children())
            if (tune->ForeColor != color::TuneLeftOut)
                xs.append(tune->Text.mid(1, tune->Text.indexOf(u']') - 1));
        return xs;
    }
    QString maskPath(const QString &name) { return QDir(maskFolder(env.app().paths())).filePath(name); }
};

} // namespace

class TestFilterPanel : public QObject
{
    Q_OBJECT

private slots:
    // Return in the anywhere box does not search; in the melody box it does. A typed star is a "?".
    void anywhereAndMelodyBoxes()
    {
        Fixture f;
        f.make();
        QTest::keyClicks(f.get<QLineEdit>("txt_anywhere"), QStringLiteral("Jig"));
        QTest::keyClick(f.get<QLineEdit>("txt_anywhere"), Qt::Key_Return);
        QVERIFY(!f.panel->isFilterActive());
        QVERIFY(!f.button("bt_memMask")->isEnabled()); // the anywhere box does not ask for a save
        auto *mus = f.get<QLineEdit>("txt_mus");
        QTest::keyClicks(mus, QStringLiteral("G*B"));
        QCOMPARE(mus->text(), QStringLiteral("G?B"));
        QVERIFY(f.button("bt_memMask")->isEnabled()); // typed: it offers a save
        mus->clear();
        QTest::keyClick(mus, Qt::Key_Return);
        QCOMPARE(f.shown(), QStringList{"2"});
    }

    void saveChooseDeleteMask()
    {
        Fixture f;
        QVERIFY(saveMask(f.env.app().paths(), QStringLiteral("Airs"), FilterConditions()));
        f.make();
        QComboBox *masks = f.masks();
        QCOMPARE(masks->currentText(), QStringLiteral("NewMask1"));
        QTest::keyClicks(f.field("R:"), QStringLiteral("reel"));
        QTest::keyClicks(f.get<QLineEdit>("txt_anywhere"), QStringLiteral("D*"));
        f.get<QCheckBox>("chk_invSearch")->setChecked(true);
        masks->lineEdit()->clear();
        QTest::keyClicks(masks->lineEdit(), QStringLiteral("Reels"));
        QTest::mouseClick(f.button("bt_memMask"), Qt::LeftButton);
        QVERIFY(QFile::exists(f.maskPath(QStringLiteral("Reels"))));
        QCOMPARE(masks->count(), 2);
        QVERIFY(f.env.ui().texts(ScriptedDialogs::Kind::Question).isEmpty()); // a new name asks nothing

        QTest::mouseClick(f.button("bt_mskClear"), Qt::LeftButton);
        QCOMPARE(f.field("R:")->text(), QString());
        QVERIFY(f.get<QCheckBox>("chk_invSearch")->isChecked()); // check boxes stay
        f.get<QCheckBox>("chk_invSearch")->setChecked(false);

        const int row = masks->findText(QStringLiteral("Reels"));
        masks->setCurrentIndex(row);
        emit masks->activated(row);
        QCOMPARE(f.field("R:")->text(), QStringLiteral("reel"));
        QCOMPARE(f.get<QLineEdit>("txt_anywhere")->text(), QStringLiteral("D*"));
        QVERIFY(f.get<QCheckBox>("chk_invSearch")->isChecked());

        // Deleting asks first; No keeps everything.
        f.env.ui().pushAnswer(UserDialogs::Answer::No);
        QTest::mouseClick(f.button("bt_delMask"), Qt::LeftButton);
        QVERIFY(QFile::exists(f.maskPath(QStringLiteral("Reels"))));
        f.env.ui().pushAnswer(UserDialogs::Answer::Yes);
        QTest::mouseClick(f.button("bt_delMask"), Qt::LeftButton);
        QVERIFY(!QFile::exists(f.maskPath(QStringLiteral("Reels"))));
        QCOMPARE(masks->count(), 1);
        QCOMPARE(masks->currentIndex(), -1);
        QVERIFY(!f.env.ui().hadUnexpectedPrompts());
    }

    // A mask cut short is applied as far as it goes, with a word in the status strip; one deleted
    // behind the panel's back gives a message and leaves the boxes alone.
    void maskCutShortOrGone()
    {
        Fixture f;
        const QString folder = maskFolder(f.env.app().paths());
        QDir().mkpath(folder);
        QFile shortFile(QDir(folder).filePath(QStringLiteral("Short")));
        QVERIFY(shortFile.open(QIODevice::WriteOnly));
        shortFile.write("GAB\r\n%x\r\n\r\nBook\r\n");
        shortFile.close();
        QVERIFY(saveMask(f.env.app().paths(), QStringLiteral("Gone"), FilterConditions()));
        f.make();
        QComboBox *masks = f.masks();
        emit masks->activated(masks->findText(QStringLiteral("Short")));
        QCOMPARE(f.field("B:")->text(), QStringLiteral("Book"));
        const QStringList statuses = f.env.ui().texts(ScriptedDialogs::Kind::Status);
        const QString status = statuses.isEmpty() ? QString() : statuses.last();
        QVERIFY2(status.contains(QStringLiteral("Short")) && status.contains(QStringLiteral("line 4")),
            qPrintable(status));

        QVERIFY(QFile::remove(QDir(folder).filePath(QStringLiteral("Gone"))));
        emit masks->activated(masks->findText(QStringLiteral("Gone")));
        QVERIFY(f.env.ui().lastMessage().startsWith(QStringLiteral("Context: lst_Msk_Click\r\n\r\n")));
        QCOMPARE(f.field("B:")->text(), QStringLiteral("Book"));
    }
};

FENWORK_TEST(TestFilterPanel)
#include "tst_filterpanel.moc"
