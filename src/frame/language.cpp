#include "frame/language.h"

#include "frame/inifile.h"
#include "frame/paths.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <ctime>
#include <optional>
#include <sys/stat.h>

namespace fenwork {

namespace {

constexpr qint64 kMaxLanguageFile = 16 * 1024 * 1024;

// What the file system says of a file; any write changes at least one of these.
struct FileStamp
{
    qint64 size = -1;
    qint64 mtimeNs = 0;
    qint64 ctimeNs = 0;
    quint64 inode = 0;
    quint64 device = 0;

    bool operator==(const FileStamp &) const = default;
};

std::optional<FileStamp> stampOf(const QString &path)
{
    struct stat st;
    if (::stat(QFile::encodeName(path).constData(), &st) != 0 || !S_ISREG(st.st_mode))
        return std::nullopt;
    FileStamp stamp;
    stamp.size = st.st_size;
    stamp.mtimeNs = qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
    stamp.ctimeNs = qint64(st.st_ctim.tv_sec) * 1000000000 + st.st_ctim.tv_nsec;
    stamp.inode = st.st_ino;
    stamp.device = st.st_dev;
    return stamp;
}

// File times tick coarsely: a file changed twice within one tick keeps its stamp. A stamp is
// trusted only once it is clearly older than the moment it was taken; until then the bytes are
// compared as well.
bool isSettled(const FileStamp &stamp, int settleMs)
{
    timespec now {};
    clock_gettime(CLOCK_REALTIME, &now);
    const qint64 nowNs = qint64(now.tv_sec) * 1000000000 + now.tv_nsec;
    return nowNs - qMax(stamp.mtimeNs, stamp.ctimeNs) > qint64(settleMs) * 1000000;
}

std::optional<QByteArray> readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    // read(max) would allocate the whole maximum up front: read what is there.
    if (file.size() > kMaxLanguageFile)
        return std::nullopt;
    QByteArray bytes = file.readAll();
    if (bytes.size() > kMaxLanguageFile)
        return std::nullopt;
    return bytes;
}

} // namespace

struct Language::Parsed
{
    QString path;
    FileStamp stamp;
    bool settled = false;
    QByteArray bytes;
    QHash<QString, QString> values;
};

Language::Language(const Paths &paths, const QString &name)
    : m_paths(paths)
    , m_name(name)
{ }

QString Language::filePath() const
{
    return m_paths.inProgram(QStringLiteral("lang/") + m_name + QStringLiteral(".txt"));
}

QStringList Language::available() const
{
    const QDir folder(m_paths.inProgram(QStringLiteral("lang")));
    QStringList names = folder.entryList(
        { QStringLiteral("*.txt") }, QDir::Files | QDir::Readable, QDir::Name | QDir::IgnoreCase);
    for (QString &name : names)
        name.chop(4);
    names.removeAll(QString());
    return names;
}

QLocale languageLocale(const QString &name)
{
    if (name.isEmpty())
        return QLocale::c();
    for (int code = QLocale::AnyLanguage + 1; code <= QLocale::LastLanguage; ++code) {
        const auto language = QLocale::Language(code);
        const QLocale locale(language);
        if (locale.language() != language)
            continue; // no locale data for it
        if (locale.nativeLanguageName().compare(name, Qt::CaseInsensitive) == 0
            || QLocale::languageToString(language).compare(name, Qt::CaseInsensitive) == 0)
            return locale;
    }
    return QLocale::c();
}

QString Language::text(const QString &section, const QString &key, const QString &def) const
{
    if (m_name.isEmpty())
        return def;
    const QString path = filePath();
    const std::optional<FileStamp> stamp = stampOf(path);
    if (!stamp) {
        m_parsed.reset();
        return def;
    }
    // The parsed copy serves only while the file on disk is provably the one it was made from.
    const bool known = m_parsed && m_parsed->path == path;
    if (!known || !m_parsed->settled || !(m_parsed->stamp == *stamp)) {
        const std::optional<QByteArray> bytes = readFile(path);
        if (!bytes) {
            m_parsed.reset();
            return def;
        }
        if (!known || m_parsed->bytes != *bytes) {
            auto parsed = std::make_shared<Parsed>();
            parsed->path = path;
            parsed->bytes = *bytes;
            parsed->values = IniFile::parseValues(*bytes);
            m_parsed = std::move(parsed);
        }
        m_parsed->stamp = *stamp;
        m_parsed->settled = isSettled(*stamp, m_settleMs);
    }
    const auto found = m_parsed->values.constFind(IniFile::valueKey(section, key));
    if (m_onMissing && (found == m_parsed->values.constEnd() || found.value().isEmpty()))
        m_onMissing(section, key);
    return found == m_parsed->values.constEnd() ? def : found.value();
}

} // namespace fenwork
