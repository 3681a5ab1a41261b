#include "playback/offlinerender.h"

#include "playback/midiplayer.h"
#include "playback/synthengine.h"
#include "playback/wavfile.h"

#include <QVector>

#include <cstdlib>

namespace fenwork {

RenderResult renderMidiToWav(const QString &midiPath, const QString &wavPath, const RenderSettings &settings)
{
    RenderResult result;
    SynthEngine engine(SynthEngine::Mode::Offline);
    engine.setSoundFontSetting(settings.soundFont);
    MidiPlayer player(engine);
    if (!player.load(midiPath, &result.error))
        return result;
    player.setMasterTempo(settings.tempo);
    player.setMasterVolume(settings.volume);
    player.setTranspose(settings.transpose);
    if (settings.program >= 0)
        player.programChange(0, settings.program);

    WavWriter wav;
    if (!wav.open(wavPath, SynthEngine::kSampleRate, 2, &result.error))
        return result;
    result.sampleRate = SynthEngine::kSampleRate;
    if (!player.play()) {
        result.error = QStringLiteral("The player cannot start: ") + SynthEngine::lastLibraryError();
        return result;
    }

    // Small blocks: the player's timer moves once per block written.
    constexpr int kBlock = 512;
    QVector<qint16> buffer(kBlock * 2);
    const qint64 tailLimit = qint64(settings.maxTail * SynthEngine::kSampleRate);
    // However the file loops or stalls, rendering ends.
    const qint64 hardLimit
        = qint64((player.fileInfo().seconds / qMax(0.01, settings.tempo) + settings.maxTail + 5)
            * SynthEngine::kSampleRate);
    qint64 pastEnd = -1;
    while (result.frames < hardLimit) {
        engine.render(buffer.data(), kBlock);
        if (!wav.write(buffer.constData(), kBlock))
            break;
        result.frames += kBlock;
        if (pastEnd < 0 && player.position() >= player.length())
            pastEnd = 0;
        if (pastEnd >= 0) {
            pastEnd += kBlock;
            int peak = 0;
            for (qint16 sample : std::as_const(buffer))
                peak = qMax(peak, std::abs(int(sample)));
            if (peak < 2 || pastEnd >= tailLimit)
                break;
        }
    }
    player.unload();
    if (!wav.close(&result.error))
        return result;
    result.ok = true;
    return result;
}

} // namespace fenwork
