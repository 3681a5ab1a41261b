#include "playback/midierror.h"

#include "frame/strutil.h"
#include "frame/userdialogs.h"

namespace fenwork {

QString midiErrorText(const QString &reason, const QString &context)
{
    QString text = CRLF + CRLF + QStringLiteral("* * * MIDI Error * * *");
    if (!context.isEmpty())
        text += CRLF + context;
    // The reason is cut where a 128-byte buffer would cut it.
    return text + CRLF + reason.left(127);
}

void DisplayErrMidi(UserDialogs &ui, const QString &reason, const QString &context)
{
    ui.message(midiErrorText(reason, context), UserDialogs::Icon::Warning);
}

} // namespace fenwork
