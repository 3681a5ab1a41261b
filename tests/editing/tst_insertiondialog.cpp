// The window that keeps the automatic insertions: every change is in the file at once, and the
// shipped table serves until the user changes it.
#include "testenv.h"
#include "testmain.h"

#include "editing/autoinsert.h"
#include "editing/widgets/insertiondialog.h"
#include "frame/paths.h"

#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

using namespace fenwork;
using Answer = UserDialogs::Answer;

namespace {

QStringList pairs(const QList<InsertionEntry> &entries)
{
    QStringList out;
    for (const InsertionEntry &e : entries)
        out.append(e.code + u'=' + e.text);
    return out;
}

} // namespace

class TestInsertionDialog : public QObject
{
    Q_OBJECT

private slots:
    // Steps: "new", "del", "all" (delete all), "insert", "code:typed", "text:new text".
    void changesReachTheFile_data()
    {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<bool>("agree");
        QTest::addColumn<QStringList>("stored");
        QTest::addColumn<QString>("message");
        const QStringList both { "a=alpha", "b=beta" };
        QTest::newRow("new entry") << QStringList { "new" } << true
                                   << QStringList { "a=alpha", "b=beta", "NewCode=NewText" } << "";
        QTest::newRow("code and text changed")
            << QStringList { "code:zz", "text:Z\nY" } << true << QStringList { "zz=Z\r\nY", "b=beta" } << "";
        QTest::newRow("blank refused")
            << QStringList { "code:x y" } << true << QStringList { "xy=alpha", "b=beta" } << "<spaceForbid>";
        QTest::newRow("chosen deleted") << QStringList { "del" } << true << QStringList { "b=beta" } << "";
        QTest::newRow("delete all refused") << QStringList { "all" } << false << both << "";
        QTest::newRow("delete all") << QStringList { "all", "new" } << true
                                    << QStringList { "NewCode=NewText" } << "";
        QTest::newRow("insert into locked text")
            << QStringList { "insert" } << true << both << "<lockedText>";
    }
    void changesReachTheFile()
    {
        QFETCH(QStringList, steps);
        QFETCH(bool, agree);
        QFETCH(QStringList, stored);
        QFETCH(QString, message);
        test::TestEnv env;
        const QString file = insAutoFile(env.app());
        QVERIFY(writeInsAuto(file, { { "a", "alpha" }, { "b", "beta" } }));
        InsertionDialog dialog(env.app());
        dialog.insertText = [](const QString &) { return false; };
        const auto press
            = [&](const char *name) { dialog.findChild<QPushButton *>(QString::fromLatin1(name))->click(); };
        auto *code = dialog.findChild<QLineEdit *>(QStringLiteral("txt_code"));
        for (const QString &step : std::as_const(steps)) {
            if (step == u"new")
                press("bt_new");
            else if (step == u"del")
                press("bt_sup");
            else if (step == u"insert")
                press("bt_Inser");
            else if (step == u"all") {
                env.ui().pushAnswer(agree ? Answer::Yes : Answer::No);
                press("bt_suptout");
            } else if (step.startsWith(u"code:")) {
                code->selectAll();
                QTest::keyClicks(code, step.mid(5));
            } else if (step.startsWith(u"text:")) {
                dialog.findChild<QPlainTextEdit *>(QStringLiteral("txt_remp"))->setPlainText(step.mid(5));
            }
        }
        QCOMPARE(pairs(Lire_insAuto(file)), stored);
        QCOMPARE(dialog.findChild<QListWidget *>(QStringLiteral("lst_code"))->count(), stored.size());
        const QStringList said = env.ui().messages();
        QCOMPARE(said,
            message.isEmpty() ? QStringList()
                              : QStringList { env.app().text(QStringLiteral("Msg"), message) });
    }

    // A fresh user root reads the table shipped with the program; the first change gives the user
    // a file of their own holding it.
    void shippedTableUntilChanged()
    {
        test::TestEnv env;
        const QString own = insAutoFile(env.app());
        const QList<InsertionEntry> shipped
            = Lire_insAuto(env.app().paths().inProgram(QStringLiteral("insauto.dat")));
        QVERIFY(shipped.size() >= 3);
        QVERIFY(findInsertion(shipped, QStringLiteral("hdr")) >= 0);
        InsertionDialog dialog(env.app());
        QCOMPARE(pairs(dialog.entries()), pairs(shipped));
        QVERIFY(!QFile::exists(own));
        dialog.bt_new_Click();
        QCOMPARE(Lire_insAuto(own).size(), shipped.size() + 1);
    }
};

FENWORK_TEST(TestInsertionDialog)
#include "tst_insertiondialog.moc"
