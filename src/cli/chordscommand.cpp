#include "cli/chordscommand.h"

#include "cli/clicommands.h"
#include "frame/appcontext.h"
#include "frame/strutil.h"
#include "store/node.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"
#include "tools/chords.h"

#include <QFileInfo>

namespace fenwork {

namespace {

int usage(const QString &text)
{
    cli::writeErr(QStringLiteral("fenwork-cli chords: ") + text + u'\n' + chordsCommandHelp());
    return cli::Usage;
}

// The X: number of a tune's text, as its first line gives it.
QString xNumber(const QString &tune)
{
    const QString first = tune.left(tune.indexOf(u'\r'));
    return first.startsWith(QLatin1String("X:")) ? trimBlanks(first.mid(2)) : QString();
}

} // namespace

QString chordsCommandHelp()
{
    return QStringLiteral(
        "Usage: fenwork-cli chords FILE X [--two]\n"
        "Prints tune X (its X: number) of FILE with a chord in front of every bar, or of every half\n"
        "bar with --two. Chords and annotations already in the music lines are replaced. Lines end\n"
        "in CR LF; FILE is left as it is.\n");
}

int runChordsCommand(AppContext &app, const QStringList &arguments)
{
    QStringList plain;
    bool twoPerBar = false;
    for (const QString &arg : arguments) {
        if (arg == u"--two")
            twoPerBar = true;
        else if (arg.startsWith(u"--"))
            return usage(QStringLiteral("unknown option '%1'").arg(arg));
        else
            plain << arg;
    }
    if (plain.size() != 2)
        return usage(QStringLiteral("takes FILE and X"));

    const QFileInfo info(plain.at(0));
    app.store().backupOnOpen = false;
    const QString kFile = app.store().FichierOuvrir(info.absoluteFilePath(), false, true, true);
    if (kFile.isEmpty())
        return cli::Failed;
    const Node *file = app.tree().find(kFile);
    const Node *body = file ? file->child(1) : nullptr;
    if (body) {
        for (const Node *tune : body->children()) {
            const QString text = app.store().GetStringTune(tune->Key, false);
            if (xNumber(text) != plain.at(1))
                continue;
            const QString result = AddChords(app, text, twoPerBar, false);
            if (result.isEmpty() && !text.isEmpty())
                return cli::Failed;
            cli::writeOut(result);
            return cli::Ok;
        }
    }
    cli::writeErr(QStringLiteral("fenwork-cli chords: no tune X:%1 in %2\n").arg(plain.at(1), plain.at(0)));
    return cli::Failed;
}

} // namespace fenwork
