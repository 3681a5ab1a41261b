#include "testmain.h"

#include "frame/scripteddialogs.h"
#include "frame/widgets/progressstrip.h"
#include "frame/widgets/widgetdialogs.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QTest>
#include <QVBoxLayout>

using namespace fenwork;
using Answer = UserDialogs::Answer;
using Kind = ScriptedDialogs::Kind;

Q_DECLARE_METATYPE(UserDialogs::Answer)

class TestDialogs : public QObject
{
    Q_OBJECT
private slots:
    void scriptedQuestion_data();
    void scriptedQuestion();
    void scriptedInputsAndFiles();
    void scriptedProgressAndEscape();
    void contextErrorText();
    void widgetProgressStrip();
    void widgetBusyCursorNests();
    void widgetEscapeFilter();
};

void TestDialogs::scriptedQuestion_data()
{
    QTest::addColumn<QList<Answer>>("script");
    QTest::addColumn<bool>("withCancel");
    QTest::addColumn<Answer>("expected");
    QTest::addColumn<int>("unexpected");

    QTest::newRow("yes") << QList<Answer> { Answer::Yes } << false << Answer::Yes << 0;
    QTest::newRow("no") << QList<Answer> { Answer::No } << true << Answer::No << 0;
    QTest::newRow("cancel offered") << QList<Answer> { Answer::Cancel } << true << Answer::Cancel << 0;
    // A Yes/No box has no Cancel: closing it is No.
    QTest::newRow("cancel not offered") << QList<Answer> { Answer::Cancel } << false << Answer::No << 0;
    QTest::newRow("nothing scripted") << QList<Answer> {} << false << Answer::No << 1;
    QTest::newRow("nothing scripted, cancel offered") << QList<Answer> {} << true << Answer::No << 1;
}

void TestDialogs::scriptedQuestion()
{
    QFETCH(QList<Answer>, script);
    QFETCH(bool, withCancel);
    QFETCH(Answer, expected);
    QFETCH(int, unexpected);

    ScriptedDialogs ui;
    for (Answer a : script)
        ui.pushAnswer(a);
    QCOMPARE(ui.question(QStringLiteral("Save?"), withCancel, QStringLiteral("Quit")), expected);
    QCOMPARE(ui.unexpectedPrompts, unexpected);
    QCOMPARE(ui.shown.size(), 1);
    QCOMPARE(ui.shown.first().kind, Kind::Question);
    QCOMPARE(ui.shown.first().text, QStringLiteral("Save?"));
    QCOMPARE(ui.shown.first().title, QStringLiteral("Quit"));
    QVERIFY(ui.messages().isEmpty());
}

void TestDialogs::scriptedInputsAndFiles()
{
    ScriptedDialogs ui;
    ui.pushInput(QStringLiteral("Reels"));
    ui.pushFileName(QStringLiteral("/tmp/out.abc"), 2);
    ui.pushFileName(QStringLiteral("/a.abc\n/b.abc"));

    QCOMPARE(
        ui.inputText(QStringLiteral("Name?"), QString(), QStringLiteral("NewSet1")), QStringLiteral("Reels"));
    int row = 0;
    const QStringList filters { QStringLiteral("ABC (*.abc)"), QStringLiteral("Text (*.txt)") };
    QCOMPARE(ui.saveFileName(QStringLiteral("Save as"), QStringLiteral("/tmp"), filters, &row),
        QStringLiteral("/tmp/out.abc"));
    QCOMPARE(row, 2);
    QCOMPARE(ui.openFileNames(QStringLiteral("Open"), QStringLiteral("/"), filters),
        (QStringList { QStringLiteral("/a.abc"), QStringLiteral("/b.abc") }));
    QVERIFY(ui.queuesEmpty());
    QCOMPARE(ui.unexpectedPrompts, 0);

    // Empty queues give the cancelled answers, counted as unexpected; a cancelled save keeps the row.
    row = 7;
    QCOMPARE(ui.inputText(QStringLiteral("Again?"), QString(), QStringLiteral("x")), QString());
    QCOMPARE(ui.saveFileName(QStringLiteral("Save as"), QString(), filters, &row), QString());
    QCOMPARE(row, 7);
    QCOMPARE(ui.folderName(QStringLiteral("Folder"), QString()), QString());
    QCOMPARE(ui.unexpectedPrompts, 3);

    const QList<Kind> kinds { Kind::Input, Kind::SaveFile, Kind::OpenFiles, Kind::Input, Kind::SaveFile,
        Kind::Folder };
    QCOMPARE(ui.shown.size(), kinds.size());
    for (qsizetype i = 0; i < kinds.size(); ++i)
        QCOMPARE(ui.shown.at(i).kind, kinds.at(i));
    QCOMPARE(ui.shown.at(1).filters, filters);

    ui.message(QStringLiteral("first"), UserDialogs::Icon::Information);
    ui.statusMessage(QStringLiteral("strip"));
    ui.message(QStringLiteral("second"));
    QCOMPARE(ui.messages(), (QStringList { QStringLiteral("first"), QStringLiteral("second") }));
    QCOMPARE(ui.lastMessage(), QStringLiteral("second"));
    QCOMPARE(ui.shown.last().icon, UserDialogs::Icon::Warning);
    ui.clear();
    QVERIFY(ui.shown.isEmpty());
    QCOMPARE(ui.unexpectedPrompts, 0);
}

void TestDialogs::scriptedProgressAndEscape()
{
    ScriptedDialogs ui;
    ui.showProgress(true);
    ui.setProgressCaption(QStringLiteral("Load..."));
    ui.setProgressRange(10);
    ui.setProgressValue(8);
    ui.setProgressCaption(QStringLiteral("Build..."));
    ui.setProgressRange(3); // a smaller range pulls the value in
    QCOMPARE(ui.progressValue(), 3);
    QCOMPARE(ui.captionHistory, (QStringList { QStringLiteral("Load..."), QStringLiteral("Build...") }));
    QVERIFY(ui.progress.visible);
    {
        BusyScope busy(ui);
        QCOMPARE(ui.busyDepth, 1);
    }
    QCOMPARE(ui.busyDepth, 0);

    ui.setEscapePressed(true, 2);
    QVERIFY(!ui.escapePressed());
    QVERIFY(!ui.escapePressed());
    QVERIFY(ui.escapePressed());
    QVERIFY(!ui.escapePressed()); // one press is seen once
    QCOMPARE(ui.escapeChecks(), 4);

    ui.terminate(3);
    QCOMPARE(ui.exitCode, std::optional<int>(3));
}

void TestDialogs::contextErrorText()
{
    ScriptedDialogs ui;
    ui.contextError(QStringLiteral("FichierOuvrir"), QStringLiteral("No such file"));
    QCOMPARE(ui.messages(), QStringList { QStringLiteral("Context: FichierOuvrir\r\n\r\nNo such file") });
    QCOMPARE(ui.shown.first().icon, UserDialogs::Icon::Warning);
}

void TestDialogs::widgetProgressStrip()
{
    QWidget window;
    auto *layout = new QVBoxLayout(&window);
    auto *strip = new ProgressStrip;
    layout->addWidget(strip);
    window.show();

    WidgetDialogs ui(&window);
    // Work reported before the strip is attached shows up once it is.
    ui.showProgress(true);
    ui.setProgressCaption(QStringLiteral("Load..."));
    ui.setProgressRange(40);
    ui.setProgressValue(12);
    QCOMPARE(ui.progressValue(), 12);
    QVERIFY(!strip->isVisibleTo(&window));
    ui.setProgressStrip(strip);

    auto *caption = window.findChild<QLabel *>(QStringLiteral("lab_Progress"));
    auto *bar = window.findChild<QProgressBar *>(QStringLiteral("ProgB"));
    QVERIFY(caption && bar);
    QCOMPARE(strip->objectName(), QStringLiteral("pic_Progress"));
    QVERIFY(strip->isVisibleTo(&window));
    QCOMPARE(caption->text(), QStringLiteral("Load..."));
    QCOMPARE(bar->maximum(), 40);
    QCOMPARE(bar->value(), 12);

    ui.setProgressValue(41); // past the end: the bar stays full
    QCOMPARE(bar->value(), 40);
    ui.showProgress(false);
    QVERIFY(!strip->isVisibleTo(&window));

    // A status text alone brings the strip back, without the bar; it goes when cleared.
    ui.statusMessage(QStringLiteral("\r\n Escape was pressed, refreshing stopped"));
    QVERIFY(strip->isVisibleTo(&window));
    QVERIFY(!bar->isVisibleTo(&window));
    QCOMPARE(strip->statusText(), QStringLiteral("\r\n Escape was pressed, refreshing stopped"));
    ui.statusMessage(QString());
    QVERIFY(!strip->isVisibleTo(&window));

    // An empty job must not turn the bar into a busy indicator.
    ui.showProgress(true);
    ui.setProgressRange(0);
    QVERIFY(bar->maximum() > bar->minimum());
}

void TestDialogs::widgetBusyCursorNests()
{
    QVERIFY(!QApplication::overrideCursor());
    {
        WidgetDialogs ui;
        ui.setBusy(true);
        ui.setBusy(true);
        ui.setBusy(false);
        QVERIFY(QApplication::overrideCursor());
        ui.setBusy(false);
        QVERIFY(!QApplication::overrideCursor());
        ui.setBusy(false); // one too many must not pop someone else's cursor
        QApplication::setOverrideCursor(Qt::CrossCursor);
        ui.setBusy(false);
        QVERIFY(QApplication::overrideCursor());
        QApplication::restoreOverrideCursor();
        ui.setBusy(true); // left on: the object puts it back when it goes
    }
    QVERIFY(!QApplication::overrideCursor());
}

void TestDialogs::widgetEscapeFilter()
{
    WidgetDialogs ui;
    QWidget target;
    target.show();
    QVERIFY(!ui.escapePressed());

    QCoreApplication::postEvent(&target, new QKeyEvent(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier));
    ui.processEvents();
    QVERIFY(!ui.escapePressed());

    QCoreApplication::postEvent(&target, new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
    QVERIFY(!ui.escapePressed()); // not delivered yet
    ui.processEvents();
    QVERIFY(ui.escapePressed());
    QVERIFY(!ui.escapePressed());
}

FENWORK_TEST(TestDialogs)
#include "tst_dialogs.moc"
