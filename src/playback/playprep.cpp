#include "playback/playprep.h"

#include "frame/appcontext.h"
#include "frame/toolrunner.h"

namespace fenwork {

// Placeholder bodies: the preparation is being written.
QStringList GetM(const QString &) { return {}; }
PlayText preparePlayText(const PlayInput &input, const PlayOptions &)
{
    PlayText out;
    out.text = input.text;
    return out;
}
QString convertToMidi(AppContext &, const QString &) { return kWaitTimeout; }

} // namespace fenwork
