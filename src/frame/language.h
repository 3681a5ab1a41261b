#pragma once
#include <QLocale>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

namespace fenwork {

class Paths;

// Every interface text comes from lang/<name>.txt in the program folder, found by section and
// key (keys keep their angle brackets: "<saveModif>"). Sections and keys are matched without
// regard to case. A missing file or key gives an empty text; there is no fallback language.
class Language
{
public:
    explicit Language(const Paths &paths, const QString &name = {});

    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    QString filePath() const;        // <program>/lang/<name>.txt
    QStringList available() const;   // names of lang/*.txt, without ".txt", sorted

    // The text of a key, at most 254 characters; `def` when missing (callers pass empty).
    QString text(const QString &section, const QString &key, const QString &def = {}) const;

    // How long a file must have been left alone before its file times alone are trusted; far
    // longer than the file system's time tick.
    void setSettleTime(int ms) { m_settleMs = ms; }

    // Told of every lookup of a key the file lacks or leaves empty: a strict check for tests.
    void setMissingKeyHandler(std::function<void(const QString &section, const QString &key)> handler)
    {
        m_onMissing = std::move(handler);
    }

private:
    const Paths &m_paths;
    QString m_name;
    int m_settleMs = 2000;
    std::function<void(const QString &, const QString &)> m_onMissing;
    // The parsed file, checked against the file on disk at every lookup.
    struct Parsed;
    mutable std::shared_ptr<Parsed> m_parsed;
};

// The locale a language file's name stands for, named in its own tongue ("Français") or in
// English ("French"), without regard to case; the C locale when no language has that name.
QLocale languageLocale(const QString &name);

} // namespace fenwork
