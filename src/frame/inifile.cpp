#include "frame/inifile.h"

#include "frame/settings.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSet>
#include <QStringDecoder>
#include <QStringList>
#include <cmath>
#include <optional>

namespace fenwork {

namespace {

// A settings or language file is small; anything bigger is not one of ours and is not read whole.
constexpr qint64 kMaxFileSize = 64 * 1024 * 1024;

const QString kOne = QStringLiteral("1");
const QString kZero = QStringLiteral("0");

// The classic format ignores white space around names, around "=" and around values.
bool isIniSpace(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\v' || c == u'\f';
}

QStringView trimmed(QStringView text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && isIniSpace(text[start]))
        ++start;
    while (end > start && isIniSpace(text[end - 1]))
        --end;
    return text.sliced(start, end - start);
}

// Valid UTF-8 (plain ASCII included) is UTF-8; anything else is taken as Latin-1.
QString decodeBytes(const QByteArray &bytes)
{
    QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = utf8.decode(bytes);
    if (utf8.hasError())
        return QString::fromLatin1(bytes);
    return text;
}

// The file's content, or nothing when it is missing, not a plain file, unreadable or too big.
std::optional<QByteArray> readBytes(const QString &path)
{
    if (path.isEmpty())
        return std::nullopt;
    const QFileInfo info(path);
    if (!info.isFile())
        return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    // read(max) would allocate the whole maximum up front: read what is there.
    if (file.size() > kMaxFileSize)
        return std::nullopt;
    QByteArray bytes = file.readAll();
    if (bytes.size() > kMaxFileSize)
        return std::nullopt;
    return bytes;
}

// A read value never exceeds the 254 places of the classic buffer; a surrogate pair is not split.
QString cutValue(QStringView value)
{
    qsizetype length = qMin(value.size(), qsizetype(IniFile::kMaxValueLength));
    if (length < value.size() && length > 0 && value[length - 1].isHighSurrogate())
        --length;
    return value.left(length).toString();
}

struct IniLine
{
    enum Kind { Other, Section, Key };
    Kind kind = Other;
    QStringView name;
    QStringView value;
};

IniLine classify(QStringView line)
{
    const QStringView text = trimmed(line);
    IniLine out;
    if (text.isEmpty() || text.startsWith(u';'))
        return out;
    if (text.startsWith(u'[')) {
        const qsizetype close = text.lastIndexOf(u']');
        if (close > 0) {
            out.kind = IniLine::Section;
            out.name = trimmed(text.sliced(1, close - 1));
            return out;
        }
        // A "[" line without its "]" is read as an ordinary line, as the classic format does.
    }
    const qsizetype equal = text.indexOf(u'=');
    if (equal <= 0)
        return out;
    out.kind = IniLine::Key;
    out.name = trimmed(text.first(equal));
    out.value = trimmed(text.sliced(equal + 1));
    return out;
}

bool sameName(QStringView a, QStringView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// Calls `visit(line)` for every line of `text` (LF separated; a CR before the LF stays in the
// line and counts as white space) until it returns false.
template <typename Visit> void forEachLine(QStringView text, Visit visit)
{
    qsizetype start = 0;
    while (start <= text.size()) {
        qsizetype end = text.indexOf(u'\n', start);
        if (end < 0)
            end = text.size();
        if (!visit(text.sliced(start, end - start)))
            return;
        start = end + 1;
    }
}

// The value of the first `key` in the first `section`: a key that stands only in a later
// section of the same name is not seen.
std::optional<QString> lookup(QStringView text, QStringView section, QStringView key)
{
    std::optional<QString> found;
    bool inSection = false;
    forEachLine(text, [&](QStringView line) {
        const IniLine parsed = classify(line);
        if (parsed.kind == IniLine::Section) {
            if (inSection)
                return false;
            inSection = sameName(parsed.name, section);
        } else if (parsed.kind == IniLine::Key && inSection && sameName(parsed.name, key)) {
            found = cutValue(parsed.value);
            return false;
        }
        return true;
    });
    return found;
}

} // namespace

IniFile::IniFile(const QString &path)
    : m_path(path)
{ }

QString IniFile::getValue(const QString &section, const QString &key, const QString &def) const
{
    return readValue(m_path, section, key, def);
}

QString IniFile::readValue(
    const QString &path, const QString &section, const QString &key, const QString &def)
{
    const QStringView sec = trimmed(section);
    const QStringView name = trimmed(key);
    if (sec.isEmpty() || name.isEmpty())
        return def;
    const std::optional<QByteArray> bytes = readBytes(path);
    if (!bytes)
        return def;
    const QString text = decodeBytes(*bytes);
    return lookup(text, sec, name).value_or(def);
}

QString IniFile::writeValue(const QString &section, const QString &key, const QString &value) const
{
    const QString sec = trimmed(section).toString();
    const QString name = trimmed(key).toString();
    // Names that the format cannot hold would turn into other lines when read back.
    if (m_path.isEmpty() || sec.isEmpty() || name.isEmpty() || sec.contains(u']') || sec.contains(u'\n')
        || name.contains(u'=') || name.contains(u'\n') || name.startsWith(u'[') || name.startsWith(u';'))
        return kZero;

    QString stored = value;
    stored.replace(u'\r', u' ').replace(u'\n', u' ');

    QByteArray before;
    if (QFileInfo::exists(m_path)) {
        // An existing file that cannot be read must not be replaced by one holding this key alone.
        const std::optional<QByteArray> bytes = readBytes(m_path);
        if (!bytes)
            return failed();
        before = *bytes;
    }

    QStringList lines = decodeBytes(before).split(u'\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    for (QString &line : lines) {
        if (line.endsWith(u'\r'))
            line.chop(1);
    }

    qsizetype sectionLine = -1;
    qsizetype keyLine = -1;
    qsizetype lastFilled = -1; // last non-blank line of the section, where a new key goes
    QString storedName;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const IniLine parsed = classify(lines.at(i));
        if (parsed.kind == IniLine::Section) {
            if (sectionLine >= 0)
                break;
            if (sameName(parsed.name, sec)) {
                sectionLine = i;
                lastFilled = i;
            }
            continue;
        }
        if (sectionLine < 0)
            continue;
        if (!trimmed(lines.at(i)).isEmpty())
            lastFilled = i;
        if (parsed.kind == IniLine::Key && sameName(parsed.name, name)) {
            keyLine = i;
            storedName = parsed.name.toString(); // keep the spelling the file already has
            break;
        }
    }

    if (keyLine >= 0) {
        lines[keyLine] = storedName + u'=' + stored;
    } else if (sectionLine >= 0) {
        lines.insert(lastFilled + 1, name + u'=' + stored);
    } else {
        if (!lines.isEmpty() && !trimmed(lines.last()).isEmpty())
            lines.append(QString());
        lines.append(u'[' + sec + u']');
        lines.append(name + u'=' + stored);
    }

    const QByteArray after = lines.join(u'\n').toUtf8() + '\n';
    if (after == before)
        return kOne;
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly))
        return failed();
    if (file.write(after) != after.size()) {
        file.cancelWriting();
        return failed();
    }
    return file.commit() ? kOne : failed();
}

QString IniFile::failed() const
{
    if (!m_failureTold && m_onFailure) {
        m_failureTold = true;
        m_onFailure(m_path);
    }
    return kZero;
}

QString IniFile::get(const SettingKey &key) const
{
    // A computed key has no fixed default: callers see empty and ask computedDefault.
    const QString def = key.computed == SettingKey::Computed::None ? key.defaultValue() : QString();
    return getValue(key.sectionName(), key.keyName(), def);
}

namespace {

std::optional<int> toNumber(const QString &text)
{
    const QString value = trimmed(text).toString();
    bool ok = false;
    const int number = value.toInt(&ok);
    if (ok)
        return number;
    const double real = value.toDouble(&ok);
    if (ok && std::isfinite(real) && std::abs(real) < 2147483647.0)
        return int(std::lround(real));
    return std::nullopt;
}

} // namespace

bool IniFile::getBool(const SettingKey &key) const
{
    const QString value = get(key);
    if (const std::optional<int> number = toNumber(value))
        return *number != 0;
    const QStringView word = trimmed(value);
    if (sameName(word, u"true"))
        return true;
    if (sameName(word, u"false"))
        return false;
    return toNumber(key.defaultValue()).value_or(0) != 0;
}

int IniFile::getInt(const SettingKey &key) const
{
    if (const std::optional<int> number = toNumber(get(key)))
        return *number;
    return toNumber(key.defaultValue()).value_or(0);
}

void IniFile::set(const SettingKey &key, const QString &value) const
{
    writeValue(key.sectionName(), key.keyName(), value);
}

void IniFile::setBool(const SettingKey &key, bool value) const
{
    writeValue(key.sectionName(), key.keyName(), value ? kOne : kZero);
}

QString IniFile::valueKey(const QString &section, const QString &key)
{
    return trimmed(section).toString().toCaseFolded() + QChar(u'\0') + trimmed(key).toString().toCaseFolded();
}

QHash<QString, QString> IniFile::parseValues(const QByteArray &bytes)
{
    QHash<QString, QString> values;
    QSet<QString> seenSections;
    QString current;
    bool active = false; // false before any section and inside a repeated section
    const QString text = decodeBytes(bytes);
    forEachLine(text, [&](QStringView line) {
        const IniLine parsed = classify(line);
        if (parsed.kind == IniLine::Section) {
            current = parsed.name.toString().toCaseFolded();
            active = !seenSections.contains(current);
            seenSections.insert(current);
        } else if (parsed.kind == IniLine::Key && active) {
            const QString id = current + QChar(u'\0') + parsed.name.toString().toCaseFolded();
            if (!values.contains(id))
                values.insert(id, cutValue(parsed.value));
        }
        return true;
    });
    return values;
}

} // namespace fenwork
