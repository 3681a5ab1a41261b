#pragma once
#include <QStringList>

class QTextStream;

namespace fenwork {

// fenwork-cli langkeys [--check NAME]
// Prints every key a language file must supply, as SECTION<TAB>KEY, one a line, sections in their
// fixed order and keys sorted within each. With --check, prints only the keys that lang/NAME.txt
// lacks or leaves empty. Returns 0, or 1 when keys are missing, 2 for a wrong command line or
// no such language file.
int runLangKeysCommand(const QStringList &arguments, QTextStream &out, QTextStream &err);

QString langKeysCommandHelp();

} // namespace fenwork
