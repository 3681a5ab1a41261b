#pragma once
// The whole vocabulary a language file must supply: every key by section, the numbered families
// (filter fields, General MIDI instruments, double-click choices, tips) included.
#include <QList>
#include <QString>
#include <optional>

namespace fenwork {

struct LangKey
{
    QString section;
    QString key;
};

// Sections in their fixed order, keys sorted within each; `tipCount` tips ("<1>" ...).
QList<LangKey> languageKeys(int tipCount);
// The "<count>" of a language file's tips, 0 when it has none.
int tipCountOf(const QString &languageFile);
// The keys of `keys` that the file lacks or leaves empty (sections and keys without regard to
// case, as the lookup reads them); nothing when the file cannot be read.
std::optional<QList<LangKey>> missingLanguageKeys(const QString &languageFile, const QList<LangKey> &keys);

} // namespace fenwork
