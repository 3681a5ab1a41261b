#include "cli/langkeyscommand.h"

#include "frame/langkeys.h"
#include "frame/paths.h"

#include <QFileInfo>
#include <QTextStream>

namespace fenwork {

namespace {

void print(QTextStream &out, const QList<LangKey> &keys)
{
    for (const LangKey &key : keys)
        out << key.section << u'\t' << key.key << u'\n';
}

} // namespace

QString langKeysCommandHelp()
{
    return QStringLiteral(
        "  langkeys [--check NAME]\n"
        "                      Print every key a language file must supply, as SECTION<TAB>KEY.\n"
        "                      With --check, print the keys lang/NAME.txt lacks or leaves empty;\n"
        "                      exit 1 when there are any, 2 when there is no such file.\n");
}

int runLangKeysCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QString checked;
    if (arguments.size() == 2 && arguments.at(0) == u"--check") {
        checked = arguments.at(1);
    } else if (!arguments.isEmpty()) {
        err << QStringLiteral("Usage: fenwork-cli langkeys [--check NAME]\n");
        return 2;
    }
    const Paths paths = Paths::fromEnvironment();
    // The reference language says how many tips there are to translate.
    const int tips = tipCountOf(paths.inProgram(QStringLiteral("lang/English.txt")));
    const QList<LangKey> keys = languageKeys(tips);
    if (checked.isEmpty()) {
        print(out, keys);
        return 0;
    }
    const QString file = paths.inProgram(QStringLiteral("lang/") + checked + QStringLiteral(".txt"));
    const auto missing = QFileInfo(file).isFile() ? missingLanguageKeys(file, keys) : std::nullopt;
    if (!missing) {
        err << QStringLiteral("fenwork-cli: no language file ") << file << u'\n';
        return 2;
    }
    print(out, *missing);
    return missing->isEmpty() ? 0 : 1;
}

} // namespace fenwork
