// fenwork-cli: the batch companion of Fennelworks, on the core alone.
#include "cli/chordscommand.h"
#include "cli/clicommands.h"
#include "cli/findcommand.h"
#include "cli/publishcommand.h"
#include "cli/listcommand.h"
#include "cli/langkeyscommand.h"
#include "cli/rendercommand.h"
#include "cli/similarcommand.h"
#include "cli/toolscommand.h"

#include "frame/appcontext.h"
#include "frame/clidialogs.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "store/treeops.h"

#include <QCoreApplication>
#include <QDir>
#include <QTextStream>

using namespace fenwork;

namespace {
// Each command family keeps its own help text.
QString allHelp()
{
    return QStringList { cli::helpText(), cli::publishHelp(), renderCommandHelp(), toolsCommandHelp(),
        listCommandHelp(), langKeysCommandHelp() }.join(u'\n');
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication qapp(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("fenwork-cli"));
    QStringList args = QCoreApplication::arguments().mid(1);
    if (args.isEmpty()) {
        cli::writeErr(allHelp());
        return cli::Usage;
    }
    const QString command = args.takeFirst();
    if (command == u"help" || command == u"--help" || command == u"-h") {
        cli::writeOut(allHelp());
        return cli::Ok;
    }
    if (command == u"langkeys") {
        QTextStream out(stdout);
        QTextStream err(stderr);
        out.setEncoding(QStringConverter::Utf8);
        err.setEncoding(QStringConverter::Utf8);
        return runLangKeysCommand(args, out, err);
    }

    if (command == u"render") {
        QTextStream out(stdout);
        QTextStream err(stderr);
        out.setEncoding(QStringConverter::Utf8);
        err.setEncoding(QStringConverter::Utf8);
        return runRenderCommand(args, out, err);
    }
    if (command == u"find") {
        // Sets up its own context: it opens the file read-only.
        QTextStream out(stdout);
        QTextStream err(stderr);
        out.setEncoding(QStringConverter::Utf8);
        err.setEncoding(QStringConverter::Utf8);
        return runFindCommand(args, out, err);
    }
    if (command == u"similar") {
        QTextStream out(stdout);
        QTextStream err(stderr);
        out.setEncoding(QStringConverter::Utf8);
        err.setEncoding(QStringConverter::Utf8);
        return runSimilarCommand(args, out, err);
    }

    // The same user root as the program: settings and language come from there.
    const Paths paths = Paths::fromEnvironment();
    if (!QDir().mkpath(paths.userRoot()) || !QDir().mkpath(paths.cacheFolder())) {
        cli::writeErr(QStringLiteral("fenwork-cli: cannot make the user folder ") + paths.userRoot() + u'\n');
        return cli::Failed;
    }
    CliDialogs dialogs;
    AppContext app(paths, &dialogs);
    if (app.lang().name().isEmpty())
        app.lang().setName(QStringLiteral("English"));
    app.buildStartupTexts();
    createWorkspaceRoot(app);

    if (command == u"normalize")
        return cli::normalize(app, args);
    if (command == u"tree")
        return cli::tree(app, args);
    if (command == u"dupx")
        return cli::dupx(app, args);
    if (command == u"format")
        return cli::format(app, args);
    if (command == u"tabs")
        return cli::tabs(app, args);
    if (command == u"export")
        return cli::exportFile(app, args);
    if (command == u"chords")
        return runChordsCommand(app, args);
    if (isToolsCommand(command))
        return runToolsCommand(app, command, args);
    if (command == u"list2abc")
        return runList2AbcCommand(app, args);
    if (command == u"set")
        return runSetCommand(app, args);
    cli::writeErr(QStringLiteral("fenwork-cli: unknown command '") + command
        + QStringLiteral("'\nTry 'fenwork-cli --help'.\n"));
    return cli::Usage;
}
