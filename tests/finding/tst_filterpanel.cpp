// The search panel driven through its controls, found by their names.
#include "testenv.h"
#include "testmain.h"

#include "finding/masks.h"
#include "finding/widgets/filterpanel.h"
#include "frame/commandstate.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
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
    template <typename T>
    T *get(const QString &name)
    {
        T *child = panel->findChild<T *>(name);
        if (!child)
            qWarning("no control %s", qPrintable(name));
        return child;
    }
    QLineEdit *row(int r) { return get<QLineEdit>(QStringLiteral("txt_Chp%1").arg(r)); }
    QLineEdit *field(const char *marker) { return row(filterRowOfCaption(QString::fromLatin1(marker))); }
    QComboBox *masks() { return get<QComboBox>(QStringLiteral("lst_Msk")); }
    QPushButton *button(const char *name) { return get<QPushButton>(QString::fromLatin1(name)); }
    QString text(const char *section, const char *key)
    {
        return env.app().text(QString::fromLatin1(section), QString::fromLatin1(key));
    }
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

const QColor kYellow(0xFF, 0xFF, 0xC0);

} // namespace

class TestFilterPanel : public QObject
{
    Q_OBJECT

private slots:
    void controls()
    {
        Fixture f;
        FilterPanel &panel = f.make();
        QCOMPARE(panel.objectName(), QStringLiteral("pic_search"));
        for (int r = 0; r < kFilterRowCount; ++r) {
            QCOMPARE(f.get<QLabel>(QStringLiteral("lab_chp%1").arg(r))->text(), filterRowCaption(r));
            const QString description = f.env.app().text(QStringLiteral("MainForm"), QStringLiteral("<chp%1>").arg(r));
            QCOMPARE(f.get<QLabel>(QStringLiteral("lab_ChpDescr%1").arg(r))->text(), description);
            QVERIFY(f.row(r));
        }
        for (const char *name : {"txt_anywhere", "txt_mus"})
            QVERIFY(f.get<QLineEdit>(QString::fromLatin1(name)));
        for (const char *name : {"chk_noCaseSens", "chk_invSearch", "chk_startOnly"})
            QVERIFY(f.get<QCheckBox>(QString::fromLatin1(name)));
        for (const char *name : {"bt_Search", "bt_SupprFltr", "bt_memMask", "bt_delMask", "bt_mskClear"})
            QVERIFY(f.button(name));
        QVERIFY(f.get<QScrollArea>(QStringLiteral("pic_pattern")));
        QVERIFY(f.get<QWidget>(QStringLiteral("fr_pattern")));
        QVERIFY(f.get<QScrollBar>(QStringLiteral("scr_patternV")));
        QCOMPARE(f.get<QLabel>(QStringLiteral("lab_infoFind"))->text(),
                 f.text("MainForm", "<infoFind1>") + u'\n' + f.text("MainForm", "<infoFind2>") + u'\n'
                     + f.text("MainForm", "<infoFind3>"));
        auto *domain = f.get<QComboBox>(QStringLiteral("lst_domaineFind"));
        QCOMPARE(domain->count(), 2);
        QCOMPARE(domain->itemText(1), f.text("MainForm", "<domainFltr>"));
        auto *results = f.get<QComboBox>(QStringLiteral("lst_resFind"));
        QCOMPARE(results->count(), 3);
        QCOMPARE(results->itemText(2), f.text("MainForm", "<resFind2>"));
        QCOMPARE(f.button("bt_Search")->text(), f.text("MainForm", "<applyfiltering>"));
        QVERIFY(!f.button("bt_memMask")->isEnabled());
        QVERIFY(!f.button("bt_delMask")->isEnabled());
        QCOMPARE(f.masks()->currentText(), QStringLiteral("NewMask1"));
    }

    void languageChange()
    {
        Fixture f;
        FilterPanel &panel = f.make();
        auto *results = f.get<QComboBox>(QStringLiteral("lst_resFind"));
        results->setCurrentIndex(2);
        f.env.app().lang().setName(QStringLiteral("Français"));
        panel.LoadLang();
        QCOMPARE(results->currentIndex(), 0);
        QCOMPARE(results->itemText(0), f.text("MainForm", "<resFind0>"));
        QCOMPARE(f.get<QLabel>(QStringLiteral("lab_ChpDescr20"))->text(), f.text("MainForm", "<chp20>"));
    }

    void searchAndShowAll()
    {
        Fixture f;
        FilterPanel &panel = f.make();
        QSignalSpy changed(&panel, &FilterPanel::treeFilterChanged);
        QSignalSpy showTree(&panel, &FilterPanel::showTreeRequested);
        QSignalSpy select(&panel, &FilterPanel::selectNodeRequested);
        QLineEdit *title = f.field("T:");
        QVERIFY(title->palette().color(QPalette::Base) != kYellow);
        QTest::keyClicks(title, QStringLiteral("Reel"));
        QCOMPARE(title->palette().color(QPalette::Base), kYellow);
        QVERIFY(f.button("bt_memMask")->isEnabled());

        QTest::keyClick(title, Qt::Key_Return);
        QCOMPARE(f.shown(), (QStringList{"1", "3"}));
        QVERIFY(panel.isFilterActive());
        QCOMPARE(changed.last().at(0).toBool(), true);
        QCOMPARE(showTree.count(), 1);
        QCOMPARE(select.last().at(0).toString(), key::Root);
        QVERIFY(f.env.app().commands().isEnabled(QStringLiteral("mnu_saveTunesFltr")));

        // The tune shown gets its marks from the boxes.
        const QString text = f.env.app().store().GetStringTune(f.kFile + QStringLiteral("_tune1"), false, 0);
        const QVector<HighlightRange> ranges = panel.ColorerFind(text);
        QCOMPARE(ranges.size(), 1);
        QCOMPARE(text.mid(ranges.first().start, ranges.first().length), QStringLiteral("Reel"));

        // Among the shown tunes only, with the melody.
        f.get<QComboBox>(QStringLiteral("lst_domaineFind"))->setCurrentIndex(1);
        title->clear();
        QTest::keyClicks(f.get<QLineEdit>(QStringLiteral("txt_mus")), QStringLiteral("G?A B"));
        QTest::mouseClick(f.button("bt_Search"), Qt::LeftButton);
        QCOMPARE(f.shown(), QStringList{"3"});

        QTest::mouseClick(f.button("bt_SupprFltr"), Qt::LeftButton);
        QCOMPARE(f.shown(), (QStringList{"1", "2", "3"}));
        QVERIFY(!panel.isFilterActive());
        QCOMPARE(changed.last().at(0).toBool(), false);
        QCOMPARE(showTree.count(), 3);
        QVERIFY(!f.env.app().commands().isEnabled(QStringLiteral("mnu_saveTunesFltr")));
        QVERIFY(panel.ColorerFind(text).isEmpty());
        QVERIFY(f.env.ui().messages().isEmpty());
    }

    void returnKeys()
    {
        Fixture f;
        f.make();
        QTest::keyClicks(f.get<QLineEdit>(QStringLiteral("txt_anywhere")), QStringLiteral("Jig"));
        QTest::keyClick(f.get<QLineEdit>(QStringLiteral("txt_anywhere")), Qt::Key_Return);
        QVERIFY(!f.panel->isFilterActive());
        QVERIFY(!f.button("bt_memMask")->isEnabled()); // the anywhere box does not ask for a save
        QTest::keyClick(f.get<QLineEdit>(QStringLiteral("txt_mus")), Qt::Key_Return);
        QVERIFY(f.panel->isFilterActive());
        QCOMPARE(f.shown(), QStringList{"2"});
    }

    void starTypedInMelody()
    {
        Fixture f;
        f.make();
        auto *mus = f.get<QLineEdit>(QStringLiteral("txt_mus"));
        QTest::keyClicks(mus, QStringLiteral("G*B"));
        QCOMPARE(mus->text(), QStringLiteral("G?B"));
        QCOMPARE(mus->palette().color(QPalette::Base), kYellow);
        mus->clear();
        QVERIFY(mus->palette().color(QPalette::Base) != kYellow);
    }

    void saveChooseDeleteMask()
    {
        Fixture f;
        QVERIFY(saveMask(f.env.app().paths(), QStringLiteral("Airs"), FilterConditions()));
        f.make();
        QComboBox *masks = f.masks();
        QCOMPARE(masks->count(), 1);
        QCOMPARE(masks->currentText(), QStringLiteral("NewMask1"));

        QTest::keyClicks(f.field("R:"), QStringLiteral("reel"));
        QTest::keyClicks(f.get<QLineEdit>(QStringLiteral("txt_anywhere")), QStringLiteral("D*"));
        f.get<QCheckBox>(QStringLiteral("chk_invSearch"))->setChecked(true);
        masks->lineEdit()->clear();
        QTest::keyClicks(masks->lineEdit(), QStringLiteral("Reels"));
        QVERIFY(f.button("bt_memMask")->isEnabled());
        QVERIFY(!f.button("bt_delMask")->isEnabled());
        QTest::mouseClick(f.button("bt_memMask"), Qt::LeftButton);
        QVERIFY(QFile::exists(f.maskPath(QStringLiteral("Reels"))));
        QCOMPARE(masks->count(), 2);
        QVERIFY(!f.button("bt_memMask")->isEnabled());
        QVERIFY(f.env.ui().texts(ScriptedDialogs::Kind::Question).isEmpty()); // a new name asks nothing

        QTest::mouseClick(f.button("bt_mskClear"), Qt::LeftButton);
        QCOMPARE(f.field("R:")->text(), QString());
        QCOMPARE(f.get<QLineEdit>(QStringLiteral("txt_anywhere"))->text(), QString());
        QCOMPARE(masks->currentText(), QString());
        QVERIFY(f.get<QCheckBox>(QStringLiteral("chk_invSearch"))->isChecked()); // check boxes stay
        f.get<QCheckBox>(QStringLiteral("chk_invSearch"))->setChecked(false);

        const int row = masks->findText(QStringLiteral("Reels"));
        masks->setCurrentIndex(row);
        emit masks->activated(row);
        QCOMPARE(f.field("R:")->text(), QStringLiteral("reel"));
        QCOMPARE(f.get<QLineEdit>(QStringLiteral("txt_anywhere"))->text(), QStringLiteral("D*"));
        QVERIFY(f.get<QCheckBox>(QStringLiteral("chk_invSearch"))->isChecked());
        QVERIFY(f.button("bt_delMask")->isEnabled());
        QVERIFY(!f.button("bt_memMask")->isEnabled());

        // Deleting asks first; No keeps everything.
        f.env.ui().pushAnswer(UserDialogs::Answer::No);
        QTest::mouseClick(f.button("bt_delMask"), Qt::LeftButton);
        QVERIFY(QFile::exists(f.maskPath(QStringLiteral("Reels"))));
        QCOMPARE(f.env.ui().texts(ScriptedDialogs::Kind::Question).last(),
                 f.text("Msg", "<confKillMsk>") + QStringLiteral(" 'Reels'"));
        f.env.ui().pushAnswer(UserDialogs::Answer::Yes);
        QTest::mouseClick(f.button("bt_delMask"), Qt::LeftButton);
        QVERIFY(!QFile::exists(f.maskPath(QStringLiteral("Reels"))));
        QCOMPARE(masks->count(), 1);
        QCOMPARE(masks->currentIndex(), -1);
        QCOMPARE(f.field("R:")->text(), QString());
        QVERIFY(!f.button("bt_delMask")->isEnabled());
        QVERIFY(!f.env.ui().hadUnexpectedPrompts());
    }

    void typedNameOfASavedMaskSavesOverIt()
    {
        Fixture f;
        FilterConditions saved;
        saved.anywhere = QStringLiteral("from the file");
        QVERIFY(saveMask(f.env.app().paths(), QStringLiteral("Jigs"), saved));
        f.make();
        QTest::keyClicks(f.field("R:"), QStringLiteral("jig"));
        QComboBox *masks = f.masks();
        masks->lineEdit()->clear();
        QTest::keyClicks(masks->lineEdit(), QStringLiteral("Jigs"));
        f.env.ui().pushAnswer(UserDialogs::Answer::Yes);
        QTest::keyClick(masks->lineEdit(), Qt::Key_Return);
        QCOMPARE(f.env.ui().texts(ScriptedDialogs::Kind::Question), QStringList{f.text("Msg", "<mskExist>")});
        // The boxes were saved, not replaced by the file's: the name was typed, not chosen.
        QCOMPARE(f.field("R:")->text(), QStringLiteral("jig"));
        QVERIFY(!f.button("bt_delMask")->isEnabled());
        FilterConditions back;
        loadMask(f.env.app().paths(), QStringLiteral("Jigs"), back);
        QCOMPARE(back.field(filterRowOfCaption(QStringLiteral("R:"))), QStringLiteral("jig"));
        QCOMPARE(masks->count(), 1);

        // Answering No leaves the file as it was.
        QTest::keyClicks(masks->lineEdit(), QStringLiteral("x"));
        masks->lineEdit()->setText(QStringLiteral("Jigs"));
        QTest::keyClicks(f.field("R:"), QStringLiteral("s"));
        f.env.ui().pushAnswer(UserDialogs::Answer::No);
        QTest::mouseClick(f.button("bt_memMask"), Qt::LeftButton);
        loadMask(f.env.app().paths(), QStringLiteral("Jigs"), back);
        QCOMPARE(back.field(filterRowOfCaption(QStringLiteral("R:"))), QStringLiteral("jig"));

        // Leaving the box after typing a saved name does not load that mask either.
        f.field("R:")->setText(QStringLiteral("typed"));
        masks->lineEdit()->clear();
        QTest::keyClicks(masks->lineEdit(), QStringLiteral("Jigs"));
        emit masks->lineEdit()->editingFinished();
        QCOMPARE(f.field("R:")->text(), QStringLiteral("typed"));
    }

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
        QTest::keyClicks(f.field("Z:"), QStringLiteral("kept"));
        QTest::keyClicks(f.get<QLineEdit>(QStringLiteral("txt_anywhere")), QStringLiteral("emptied"));
        f.get<QCheckBox>(QStringLiteral("chk_noCaseSens"))->setChecked(true);
        QComboBox *masks = f.masks();
        int row = masks->findText(QStringLiteral("Short"));
        emit masks->activated(row);
        QCOMPARE(f.get<QLineEdit>(QStringLiteral("txt_mus"))->text(), QStringLiteral("GAB"));
        QCOMPARE(f.field("%")->text(), QStringLiteral("%x"));
        QCOMPARE(f.field("B:")->text(), QStringLiteral("Book"));
        QCOMPARE(f.field("Z:")->text(), QStringLiteral("kept"));
        QCOMPARE(f.get<QLineEdit>(QStringLiteral("txt_anywhere"))->text(), QString());
        QVERIFY(!f.get<QCheckBox>(QStringLiteral("chk_noCaseSens"))->isChecked());
        const QStringList status = f.env.ui().texts(ScriptedDialogs::Kind::Status);
        QVERIFY(!status.isEmpty());
        QVERIFY(status.last().contains(QStringLiteral("Short")) && status.last().contains(QStringLiteral("line 4")));

        QVERIFY(QFile::remove(QDir(folder).filePath(QStringLiteral("Gone"))));
        row = masks->findText(QStringLiteral("Gone"));
        emit masks->activated(row);
        QVERIFY(f.env.ui().lastMessage().startsWith(QStringLiteral("Context: lst_Msk_Click\r\n\r\n")));
        QCOMPARE(f.field("B:")->text(), QStringLiteral("Book"));
    }
};

FENWORK_TEST(TestFilterPanel)
#include "tst_filterpanel.moc"
