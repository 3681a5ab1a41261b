#include "cli/publishcommand.h"

#include "cli/clicommands.h"
#include "frame/appcontext.h"
#include "frame/clidialogs.h"
#include "frame/strutil.h"
#include "publishing/formatmodel.h"
#include "publishing/gsexport.h"
#include "publishing/midiexport.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"
#include "tablature/tablaturelist.h"

#include <QFileInfo>

namespace fenwork::cli {

namespace {

int usage(const QString &text)
{
    writeErr(QStringLiteral("fenwork-cli: ") + text + QStringLiteral("\nTry 'fenwork-cli --help'.\n"));
    return Usage;
}

int failed(const QString &text)
{
    writeErr(QStringLiteral("fenwork-cli: ") + replaceAll(text, u"\r\n", u"\n") + u'\n');
    return Failed;
}

// Messages still go to standard error; the progress strip's texts do not, so that a silent run
// says nothing.
class QuietDialogs : public CliDialogs
{
public:
    void statusMessage(const QString &) override { }
    void terminate(int) override { }
};

QString tuneNumber(const QString &text)
{
    for (const QString &line : text.split(CRLF)) {
        if (line.startsWith(u"X:"))
            return trimBlanks(line.mid(2));
    }
    return {};
}

} // namespace

QString publishHelp()
{
    return QStringLiteral(
        "  format IN OUT       Read the format file IN as the export dialog does (a missing IN\n"
        "                      leaves the dialog's initial values) and write it to OUT as the\n"
        "                      dialog writes format.fmt.\n"
        "  tabs FMT            Print the tablature list the format file FMT offers, one row a\n"
        "                      line, then \"blank: \" and the blank score picture.\n"
        "  export IN OUT [--tune X] [--format FMT] [--resolution DPI]\n"
        "                      Export IN (or its first tune numbered X) without a dialog. OUT's\n"
        "                      extension picks pdf, png, bmp, jpg (one grey picture a page,\n"
        "                      OUT's name numbered from 1) or mid (a file: one MIDI file a tune,\n"
        "                      OUT's name with the tune's number). FMT stands for the user's\n"
        "                      format.fmt. Prints each file written, one a line.\n");
}

int format(AppContext &app, const QStringList &args)
{
    if (args.size() != 2)
        return usage(QStringLiteral("format takes IN and OUT"));
    FormatModel model;
    if (!ReadFormat(model, args.at(0), &app.ui()))
        return Failed;
    QString error;
    if (BuildFormat(model, args.at(1), &error).isEmpty())
        return failed(QStringLiteral("cannot write ") + args.at(1) + QStringLiteral(": ") + error);
    return Ok;
}

int tabs(AppContext &app, const QStringList &args)
{
    if (args.size() != 1)
        return usage(QStringLiteral("tabs takes FMT"));
    const TablatureList list = LoadTabsList(app, QFileInfo(args.at(0)).absoluteFilePath());
    if (!list.loaded)
        return failed(QStringLiteral("no such format file: ") + args.at(0));
    writeOut(list.entries.join(u'\n') + QStringLiteral("\nblank: ") + list.blankPicture + u'\n');
    return Ok;
}

int exportFile(AppContext &app, const QStringList &args)
{
    QStringList positional;
    QString tune, formatFile;
    int resolution = 0;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &arg = args.at(i);
        if (arg == u"--tune" || arg == u"--format" || arg == u"--resolution") {
            if (i + 1 >= args.size())
                return usage(arg + QStringLiteral(" needs a value"));
            const QString value = args.at(++i);
            if (arg == u"--tune") {
                tune = value;
            } else if (arg == u"--format") {
                formatFile = QFileInfo(value).absoluteFilePath();
            } else {
                bool ok = false;
                resolution = value.toInt(&ok);
                if (!ok || resolution < 0)
                    return usage(QStringLiteral("--resolution takes a whole number of dots per inch"));
            }
        } else if (arg.startsWith(u"--")) {
            return usage(QStringLiteral("unknown option '") + arg + u'\'');
        } else {
            positional << arg;
        }
    }
    if (positional.size() != 2)
        return usage(QStringLiteral("export takes IN and OUT"));
    const QString target = QFileInfo(positional.at(1)).absoluteFilePath();
    const QString extension = QFileInfo(target).suffix().toLower();
    static const QStringList known = { QStringLiteral("pdf"), QStringLiteral("png"), QStringLiteral("bmp"),
                                       QStringLiteral("jpg"), QStringLiteral("mid") };
    if (!known.contains(extension))
        return usage(QStringLiteral("OUT must end in .pdf, .png, .bmp, .jpg or .mid"));

    QuietDialogs dialogs;
    app.setDialogs(&dialogs);
    app.store().backupOnOpen = false; // reading only
    const QString kFile = app.store().FichierOuvrir(QFileInfo(positional.at(0)).absoluteFilePath(), false, true, true);
    if (kFile.isEmpty())
        return Failed;
    QString source = kFile;
    if (!tune.isEmpty()) {
        source.clear();
        if (const Node *body = app.tree().find(kFile + key::BdyFile)) {
            for (const Node *node : body->children()) {
                if (tuneNumber(app.store().GetStringTune(node->Key, false)) == tune) {
                    source = node->Key;
                    break;
                }
            }
        }
        if (source.isEmpty())
            return failed(QStringLiteral("no tune X:") + tune + QStringLiteral(" in ") + positional.at(0));
    }

    QString answer;
    QStringList written;
    if (extension == u"mid") {
        MidiExporter midi(app);
        QString out = target;
        answer = midi.ExportToMidi(source, out);
        written = midi.written();
        if (answer.isEmpty() && midi.tunesWritten() > written.size())
            writeErr(QStringLiteral("fenwork-cli: tunes sharing an X: number overwrote each other's MIDI file\n"));
    } else {
        GsExporter exporter(app);
        if (!formatFile.isEmpty())
            exporter.setFormatFile(formatFile);
        QString ext = extension, out = target;
        answer = exporter.ExportViaGs(source, ext, out, resolution);
        written = exporter.written();
    }
    if (!answer.isEmpty())
        return failed(answer);
    for (const QString &file : written)
        writeOut(file + u'\n');
    return written.isEmpty() ? Failed : Ok;
}

} // namespace fenwork::cli
