#pragma once
// Which SoundFont the synthesiser loads: the one the settings name, else the largest General MIDI
// font installed, else the small one the install script puts in place.
#include <QString>
#include <QStringList>

namespace fenwork {

// Where distributions install SoundFonts, the user's own folders first.
QStringList soundFontFolders();
// "/usr/share/sounds/sf2/default-GM.sf2"
QString defaultSoundFont();
// `setting` when it names a readable file; else the largest font in `folders` whose name says
// General MIDI (GM, GS or "general"); else the default. Empty when none of these exists.
QString chooseSoundFont(const QString &setting, const QStringList &folders = soundFontFolders());

} // namespace fenwork
