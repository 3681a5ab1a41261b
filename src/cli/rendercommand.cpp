#include "cli/rendercommand.h"

#include "cli/readingcontext.h"
#include "frame/appcontext.h"
#include "frame/inifile.h"
#include "frame/language.h"
#include "frame/paths.h"
#include "frame/settings.h"
#include "frame/strutil.h"
#include "frame/toolrunner.h"
#include "playback/offlinerender.h"
#include "playback/playerlogic.h"
#include "playback/playprep.h"
#include "store/node.h"
#include "store/treeops.h"
#include "store/tunestore.h"
#include "store/workspacetree.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>

namespace fenwork {

namespace {

enum { Ok = 0, Failed = 1, Usage = 2 };

int usage(QTextStream &err, const QString &text)
{
    err << "fenwork-cli render: " << text << "\n" << renderCommandHelp();
    err.flush();
    return Usage;
}

int fail(QTextStream &err, const QString &text)
{
    err << "fenwork-cli render: " << replaceAll(text, u"\r\n", u"\n") << "\n";
    err.flush();
    return Failed;
}

// The X: number of a tune's text, as written after "X:".
QString tuneNumber(const QString &text)
{
    for (const QString &line : text.split(CRLF)) {
        if (line.startsWith(u"X:"))
            return trimBlanks(line.mid(2));
    }
    return {};
}

bool sameNumber(const QString &a, const QString &b)
{
    bool aNumber = false, bNumber = false;
    const qlonglong x = a.toLongLong(&aNumber);
    const qlonglong y = b.toLongLong(&bNumber);
    return aNumber && bNumber ? x == y : a == b;
}

} // namespace

QString renderCommandHelp()
{
    return QStringLiteral(
        "Usage: fenwork-cli render FILE X OUT.wav [--tempo PERCENT] [--transpose HALFTONES]\n"
        "                          [--program N]\n"
        "Makes tune X of FILE into MIDI as the Play button does (every listening option off) and\n"
        "plays it through the synthesiser, as fast as the machine goes, into OUT.wav (16-bit\n"
        "stereo, 44.1 kHz). PERCENT is the tempo slider, 25 to 300 (default 100; a tune in eighths\n"
        "gets the player's 6/8 factor); HALFTONES the transposition, -12 to 12; N the melody's\n"
        "instrument, 0 to 127 (default the DefaultGM setting). Prints the seconds of sound written.\n"
        "The SoundFont is the Player/SoundFont setting, else the largest General MIDI font installed.\n");
}

int runRenderCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QStringList positional;
    int tempo = 100;
    int transpose = 0;
    int program = -1;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &arg = arguments.at(i);
        const auto number = [&](int minimum, int maximum, int *target) {
            bool ok = false;
            const int value = i + 1 < arguments.size() ? arguments.at(i + 1).toInt(&ok) : 0;
            if (!ok || value < minimum || value > maximum)
                return false;
            *target = value;
            ++i;
            return true;
        };
        if (arg == u"--tempo") {
            if (!number(25, 300, &tempo))
                return usage(err, QStringLiteral("--tempo takes a PERCENT from 25 to 300"));
        } else if (arg == u"--transpose") {
            if (!number(-12, 12, &transpose))
                return usage(err, QStringLiteral("--transpose takes HALFTONES from -12 to 12"));
        } else if (arg == u"--program") {
            if (!number(0, 127, &program))
                return usage(err, QStringLiteral("--program takes N from 0 to 127"));
        } else if (arg.startsWith(u"--")) {
            return usage(err, QStringLiteral("unknown option '%1'").arg(arg));
        } else {
            positional.append(arg);
        }
    }
    if (positional.size() != 3)
        return usage(err, QStringLiteral("FILE, X and OUT.wav are needed, and nothing else"));

    ReadingContext context("render", err);
    if (!context.ok())
        return Failed;
    AppContext &app = context.app();
    if (program < 0)
        program = qBound(0, app.ini().getInt(keys::DefaultGM), 127);

    const QString kFile
        = app.store().FichierOuvrir(QFileInfo(positional.at(0)).absoluteFilePath(), false, true, true);
    if (kFile.isEmpty())
        return Failed;
    QString tuneText;
    if (const Node *body = app.tree().find(kFile + key::BdyFile)) {
        for (const Node *tune : body->children()) {
            const QString text = app.store().GetStringTune(tune->Key, true);
            if (sameNumber(tuneNumber(text), positional.at(1))) {
                tuneText = text;
                break;
            }
        }
    }
    if (tuneText.isEmpty())
        return fail(err, QStringLiteral("no tune X:%1 in %2").arg(positional.at(1), positional.at(0)));

    PlayInput input;
    input.text = tuneText;
    input.fileHeader = app.store().GetStringHdrFile(kFile, false);
    input.tempoDef = app.ini().get(keys::TempoDef);
    PlayOptions options;
    options.gmProgram = program;
    if (const QString missing = missingToolText(app, Tool::Abc2midi); !missing.isEmpty())
        return fail(err, missing);
    // As the Play button: the preparation runs again once when the MIDI file does not come.
    QString answer;
    for (int attempt = 1; attempt <= 2; ++attempt) {
        const PlayText prepared = preparePlayText(input, options);
        if (prepared.oneVoiceRefused)
            return fail(err, app.text(QStringLiteral("Msg"), QStringLiteral("<oneVfield>")));
        answer = convertToMidi(app, prepared.text);
        if (answer.isEmpty())
            break;
    }
    const QDir cache(app.paths().cacheFolder());
    const QString midi = cache.filePath(QStringLiteral("tmp.mid"));
    if (!answer.isEmpty())
        return fail(err, answer + CRLF + app.text(QStringLiteral("Msg"), QStringLiteral("<playError>")));

    RenderSettings settings;
    settings.soundFont = app.ini().get(keys::SoundFont);
    settings.tempo = tempo * player::tempoSoundFactor(tuneText) / 100.0;
    settings.transpose = transpose;
    settings.program = program;
    settings.volume = player::masterVolume(75);
    const RenderResult result
        = renderMidiToWav(midi, QFileInfo(positional.at(2)).absoluteFilePath(), settings);
    QFile::remove(midi);
    QFile::remove(cache.filePath(QStringLiteral("tmp.abc")));
    if (!result.ok)
        return fail(err, result.error);
    out << QString::number(result.seconds(), 'f', 2) << '\n';
    out.flush();
    return Ok;
}

} // namespace fenwork
