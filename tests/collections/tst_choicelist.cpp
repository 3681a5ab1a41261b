// The working list: each tune once, in the order gathered; prunes keep the order and the rows
// that the key index gives stay true after every change.
#include "testmain.h"

#include "collections/choicelist.h"
#include "collections/widgets/choicelistmodel.h"

#include <QAbstractItemModelTester>

#include <QSignalSpy>
#include <QTest>

using namespace fenwork;

namespace {

// A script of steps over the list: "+k" adds k, "*a,b,c" adds a batch, "-n" removes row n,
// "~k,l" prunes to the keys named, "0" clears.
void run(ChoiceList &list, const QString &script)
{
    for (const QString &step : script.split(u' ', Qt::SkipEmptyParts)) {
        const QString arg = step.mid(1);
        switch (step.at(0).unicode()) {
        case '+':
            list.add(arg, arg.toUpper());
            break;
        case '*': {
            QVector<ChoiceItem> batch;
            for (const QString &key : arg.split(u','))
                batch.append({ key, key.toUpper(), 1 });
            list.addAll(batch);
            break;
        }
        case '-':
            list.removeAt(arg.toInt());
            break;
        case '~': {
            const QStringList keep = arg.split(u',', Qt::SkipEmptyParts);
            list.prune([&](const QString &key) { return keep.contains(key); });
            break;
        }
        case '0':
            list.clear();
            break;
        }
    }
}

} // namespace

class TestChoiceList : public QObject
{
    Q_OBJECT
private slots:
    void steps_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("keys");
        QTest::newRow("each tune once") << "+a +b +a" << "a b";
        QTest::newRow("empty key refused") << "+ +a" << "a";
        QTest::newRow("batch skips listed and repeated") << "+b *a,b,c,a" << "b a c";
        QTest::newRow("remove then add again goes last") << "+a +b +c -0 +a" << "b c a";
        QTest::newRow("remove out of range") << "+a -3 --1" << "a";
        QTest::newRow("prune keeps order") << "*a,b,c,d ~d,b" << "b d";
        QTest::newRow("prune everything") << "*a,b ~" << "";
        QTest::newRow("clear then gather") << "+a 0 +b" << "b";
    }
    void steps()
    {
        QFETCH(QString, script);
        QFETCH(QString, keys);
        ChoiceList list;
        // The view's model must hear of every change in the order views rely on.
        ChoiceListModel model(list);
        QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QSignalSpy counts(&list, &ChoiceList::countChanged);
        run(list, script);
        QCOMPARE(model.rowCount(), list.count());
        QCOMPARE(list.keys().join(u' '), keys);
        for (int row = 0; row < list.count(); ++row)
            QCOMPARE(list.indexOf(list.at(row).key), row);
        QCOMPARE(list.indexOf(QStringLiteral("zz")), -1);
        if (!counts.isEmpty())
            QCOMPARE(counts.last().at(0).toInt(), list.count());
    }

    // A view inserts what `appended` announces: one notice for a whole batch.
    void batchIsOneNotice()
    {
        ChoiceList list;
        list.add(QStringLiteral("a"), QStringLiteral("A"));
        QSignalSpy appended(&list, &ChoiceList::appended);
        QVector<ChoiceItem> batch;
        for (int i = 0; i < 1000; ++i)
            batch.append({ QStringLiteral("t%1").arg(i), QString(), 1 });
        QCOMPARE(list.addAll(batch), 1000);
        QCOMPARE(appended.size(), 1);
        QCOMPARE(appended.at(0).at(0).toInt(), 1);
        QCOMPARE(appended.at(0).at(1).toInt(), 1000);
        QCOMPARE(list.addAll(batch), 0);
        QCOMPARE(appended.size(), 1);
    }

};

FENWORK_TEST(TestChoiceList)
#include "tst_choicelist.moc"
