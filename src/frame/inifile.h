#pragma once
#include <QHash>
#include <QString>

#include <functional>

namespace fenwork {

struct SettingKey;

// The settings store on the classic private-profile format: "[Section]" and "key=value" lines,
// sections and keys matched without regard to case. Every read and write goes to the file: no
// cache, so a value written by one dialog is seen at once by every other reader. Never throws;
// a failed write is lost, and the first one of a run is reported to the failure handler.
class IniFile
{
public:
    static constexpr int kMaxValueLength = 254;

    explicit IniFile(const QString &path = {});
    QString path() const { return m_path; }

    // The stored value cut to 254 characters; `def` when the key is missing; empty when the key
    // is stored empty.
    QString getValue(const QString &section, const QString &key, const QString &def) const;
    // Writes at once, creating file and section as needed. Returns "1" on success, "0" on failure.
    QString writeValue(const QString &section, const QString &key, const QString &value) const;

    // Typed access through the key table of settings.h.
    QString get(const SettingKey &key) const;
    bool getBool(const SettingKey &key) const; // "1" (or any non-zero number) is true
    int getInt(const SettingKey &key) const;   // non-numbers read as the default's number
    void set(const SettingKey &key, const QString &value) const;
    void setBool(const SettingKey &key, bool value) const;

    // Reads one value from any file of this format (language files use the same lookup).
    static QString readValue(const QString &path, const QString &section, const QString &key,
                             const QString &def);

    // Every value of a file's content, cut and trimmed as getValue gives it, keyed by
    // valueKey(section, key); the first of duplicate sections and keys wins, as on reading. For
    // files that are looked up often and never written, such as the language files.
    static QHash<QString, QString> parseValues(const QByteArray &bytes);
    static QString valueKey(const QString &section, const QString &key);

    // Called once, at the first write that could not reach the file (read-only, a folder in its
    // place ...): settings that silently go unsaved would surprise the user at the next start.
    void setWriteFailureHandler(std::function<void(const QString &path)> handler) { m_onFailure = std::move(handler); }

private:
    QString failed() const;

    QString m_path;
    std::function<void(const QString &path)> m_onFailure;
    mutable bool m_failureTold = false;
};

} // namespace fenwork
