#pragma once
#include <QString>

namespace fenwork {

// Gives the toolkit's own texts (the Yes, No, Cancel and Close buttons of the standard boxes,
// the file dialogs) the language of the interface, from the translations installed with Qt.
// Replaces the one installed before; false when Qt has none for that language.
bool installQtTranslation(const QString &languageName);

} // namespace fenwork
