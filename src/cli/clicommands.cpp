#include "cli/clicommands.h"

#include "cli/chordscommand.h"
#include "cli/findcommand.h"
#include "cli/similarcommand.h"
#include "store/duplicates.h"
#include "frame/appcontext.h"
#include "frame/paths.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <cstdio>

namespace fenwork::cli {

namespace {

void writeBytes(const QByteArray &bytes, FILE *stream)
{
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

// Opens a file as the program does on its open command: the read-only attribute as the file has
// it, but the alias is never asked. The backup is made, per the settings, only by a command that
// writes the file back; the others leave every file but their output as it was. Empty on
// failure, the reason already on standard error.
QString openFile(AppContext &app, const QString &argument, bool backup)
{
    const QFileInfo info(argument);
    const QString path = info.absoluteFilePath();
    app.store().backupOnOpen = backup;
    return app.store().FichierOuvrir(path, false, true, info.exists() && !info.isWritable());
}

int usageError(const QString &text)
{
    writeErr(QStringLiteral("fenwork-cli: ") + text + QStringLiteral("\nTry 'fenwork-cli --help'.\n"));
    return Usage;
}

} // namespace

void writeOut(const QString &text)
{
    writeBytes(text.toUtf8(), stdout);
}

void writeErr(const QString &text)
{
    writeBytes(text.toUtf8(), stderr);
}

QString helpText()
{
    return QStringLiteral(
               "Usage: fenwork-cli COMMAND ARGUMENTS\n"
               "\n"
               "Works on ABC files with the Fennelworks core, without a window.\n"
               "\n"
               "Commands:\n"
               "  normalize IN [OUT]  Open IN as the program opens a file and write it back as the\n"
               "                      program saves it: line ends made CR LF, lines trimmed, blank lines\n"
               "                      inside tunes and headers dropped, the usual ABC spellings\n"
               "                      normalised, and the \"%abc\", creator and alias header lines\n"
               "                      supplied. The result goes to OUT (which may be IN) or, without OUT,\n"
               "                      to standard output, byte for byte what OUT would receive.\n"
               "                      As on opening in the program, IN.BAK is written first when the\n"
               "                      backup setting is on (the default). No alias is asked for.\n"
               "  tree IN             Print the tree the program shows for IN: one node a line in tree\n"
               "                      order, indented by two blanks per level below the file node,\n"
               "                      as KEY<TAB>PICTURE<TAB>TEXT. The trash box, always empty here,\n"
               "                      is left out.\n"
               "  dupx IN             Print the caption of every tune whose X: number another tune of\n"
               "                      IN also uses (compared without regard to case), one a line, then\n"
               "                      the number of such tunes on the last line.\n"
               "  find IN ...         Print the captions of the tunes of IN that pass the tune filter\n"
               "                      (see below).\n"
               "  chords IN X [--two] Print tune X of IN with a chord in front of every bar (see below).\n"
               "  similar IN ...      Rank the tunes of IN by how well a melody fragment, in any key\n"
               "                      and with a wrong note, fits them (see below).\n"
               "  help, --help, -h    Print this text.\n"
               "\n"
               "Only normalize writes IN.BAK; the other commands leave IN and its backup as they are.\n"
               "Settings and language are read from the user root: FENNELWORKS_ROOT when set, else\n"
               "~/.local/share/Fennelworks (created when missing). Messages go to standard error.\n"
               "\n"
               "Exit status: 0 done, 1 a file could not be read or written (or the program's fatal\n"
               "\"kFile is empty\" state), 2 wrong command line.\n")
        + u'\n' + findCommandHelp() + u'\n' + chordsCommandHelp() + u'\n' + similarCommandHelp();
}

int normalize(AppContext &app, const QStringList &args)
{
    if (args.isEmpty() || args.size() > 2)
        return usageError(QStringLiteral("normalize takes IN and an optional OUT"));
    const QString kFile = openFile(app, args.at(0), true);
    if (kFile.isEmpty())
        return Failed;

    QString why;
    if (args.size() == 2) {
        const QString out = QFileInfo(args.at(1)).absoluteFilePath();
        if (!app.store().FichierSaveFromKey(kFile, out, QString(), &why)) {
            writeErr(QStringLiteral("fenwork-cli: cannot write ") + out + QStringLiteral(": ") + why + u'\n');
            return Failed;
        }
        return Ok;
    }
    // Through a scratch file, so that standard output gets exactly what a save writes.
    QTemporaryDir scratch(QDir(app.paths().cacheFolder()).filePath(QStringLiteral("cli-XXXXXX")));
    if (!scratch.isValid()) {
        writeErr(
            QStringLiteral("fenwork-cli: cannot make a scratch folder: ") + scratch.errorString() + u'\n');
        return Failed;
    }
    const QString out = scratch.filePath(QStringLiteral("normalized.abc"));
    if (!app.store().FichierSaveFromKey(kFile, out, QString(), &why)) {
        writeErr(QStringLiteral("fenwork-cli: cannot write a scratch file: ") + why + u'\n');
        return Failed;
    }
    QFile file(out);
    if (!file.open(QIODevice::ReadOnly)) {
        writeErr(QStringLiteral("fenwork-cli: cannot read a scratch file: ") + file.errorString() + u'\n');
        return Failed;
    }
    writeBytes(file.readAll(), stdout);
    return Ok;
}

int tree(AppContext &app, const QStringList &args)
{
    if (args.size() != 1)
        return usageError(QStringLiteral("tree takes one file"));
    const QString kFile = openFile(app, args.at(0), false);
    if (kFile.isEmpty())
        return Failed;
    const Node *root = app.tree().root();
    QString out;
    for (Node *file : root->children()) {
        if (file->Key == key::Trash)
            continue;
        app.tree().walk(file, [&](Node *node) {
            int depth = 0;
            for (const Node *up = node; up->parent() && up->parent() != root; up = up->parent())
                ++depth;
            out += QString(2 * depth, u' ') + node->Key + u'\t' + node->imageName() + u'\t' + node->Text
                + u'\n';
            return true;
        });
    }
    writeOut(out);
    return Ok;
}

int dupx(AppContext &app, const QStringList &args)
{
    if (args.size() != 1)
        return usageError(QStringLiteral("dupx takes one file"));
    const QString kFile = openFile(app, args.at(0), false);
    if (kFile.isEmpty())
        return Failed;
    int count = 0;
    ShowDoublonsX(app, kFile, true, count);
    QString out;
    if (const Node *file = app.tree().find(kFile)) {
        if (const Node *body = file->child(1)) {
            for (const Node *tune : body->children())
                if (tune->BackColor == color::DuplicateX)
                    out += tune->Text + u'\n';
        }
    }
    out += QString::number(count) + u'\n';
    writeOut(out);
    return Ok;
}

} // namespace fenwork::cli
