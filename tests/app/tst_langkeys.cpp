// The language files hold every key the program looks up, in each language.
#include "testenv.h"
#include "testmain.h"

#include "app/widgets/aboutdialog.h"
#include "app/widgets/mainwindow.h"
#include "app/widgets/optionsdialog.h"
#include "frame/inifile.h"
#include "frame/langkeys.h"
#include "frame/language.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

using namespace fenwork;

namespace {

// Every key of a language file, whatever its section, with a text.
QSet<QString> filledKeys(const QString &path)
{
    QSet<QString> keys;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return keys;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (const QString &line : lines) {
        const qsizetype equals = line.indexOf(u'=');
        if (equals > 0 && !line.mid(equals + 1).trimmed().isEmpty())
            keys.insert(line.left(equals).trimmed().toCaseFolded());
    }
    return keys;
}

QString langFile(const QString &name)
{
    return test::testDataDir() + QStringLiteral("/../data/lang/") + name + QStringLiteral(".txt");
}

} // namespace

class TestLangKeys : public QObject
{
    Q_OBJECT

private slots:
    void languages_data()
    {
        QTest::addColumn<QString>("language");
        QTest::newRow("English") << "English";
        QTest::newRow("French") << "Français";
    }

    // A key written in the code has a text in the file, in some section.
    void keyLiteralsHaveTexts_data() { languages_data(); }
    void keyLiteralsHaveTexts()
    {
        QFETCH(QString, language);
        const QSet<QString> filled = filledKeys(langFile(language));
        QVERIFY(!filled.isEmpty());
        static const QRegularExpression literal(QStringLiteral("\"(<[A-Za-z][A-Za-z0-9]*>)\""));
        // Not keys: the line break marker inside a text.
        const QSet<QString> notKeys { QStringLiteral("<br>") };
        QStringList missing;
        QDirIterator it(test::testDataDir() + QStringLiteral("/../src"),
            { QStringLiteral("*.cpp"), QStringLiteral("*.h") }, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            const QString source = test::readAll(path);
            for (auto match = literal.globalMatch(source); match.hasNext();) {
                const QString key = match.next().captured(1);
                if (!notKeys.contains(key) && !filled.contains(key.toCaseFolded()))
                    missing << QFileInfo(path).fileName() + u' ' + key;
            }
        }
        missing.removeDuplicates();
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(u'\n')));
    }

    // The whole vocabulary is there; the French file follows the English one.
    void vocabularyIsComplete_data() { languages_data(); }
    void vocabularyIsComplete()
    {
        QFETCH(QString, language);
        const auto missing = missingLanguageKeys(
            langFile(language), languageKeys(tipCountOf(langFile(QStringLiteral("English")))));
        QVERIFY(missing);
        QStringList names;
        for (const LangKey &key : *missing)
            names << key.section + u'\t' + key.key;
        QVERIFY2(names.isEmpty(), qPrintable(names.join(u'\n')));
    }

    // Every lookup of the windows this issue brings finds a text (a strict mode records misses).
    void windowsFindEveryText_data() { languages_data(); }
    void windowsFindEveryText()
    {
        QFETCH(QString, language);
        test::TestEnv env(language);
        QStringList missed;
        env.app().lang().setMissingKeyHandler(
            [&](const QString &section, const QString &key) { missed << section + u' ' + key; });
        auto window = test::loadedMainWindow(env);
        window->openHelp(124);
        OptionsDialog options(env.app(), window.get());
        AboutDialog about(env.app(), window.get());
        missed.removeDuplicates();
        QVERIFY2(missed.isEmpty(), qPrintable(missed.join(u'\n')));
        env.app().lang().setMissingKeyHandler({});
    }
};

FENWORK_TEST(TestLangKeys)
#include "tst_langkeys.moc"
