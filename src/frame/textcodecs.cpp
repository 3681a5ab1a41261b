#include "textcodecs.h"

#include "userdialogs.h"

#include <QStringList>

#include <iterator>
#include <limits>
#include <utility>

namespace fenwork {

namespace {

struct EscapeEntry
{
    char16_t letter; // the Latin-1 character
    char sign; // accent sign after the backslash
    char base; // letter after the sign
};

// In the order of the passes. "\ae", "\AE" and "\ss" are written as sign 'a', 'A', 's'.
// clang-format off
constexpr EscapeEntry kEscapes[] = {
    {u'à', '`', 'a'},  {u'À', '`', 'A'},  {u'á', '\'', 'a'}, {u'Á', '\'', 'A'}, {u'â', '^', 'a'},
    {u'Â', '^', 'A'},  {u'ã', '~', 'a'},  {u'Ã', '~', 'A'},  {u'ä', '"', 'a'},  {u'Ä', '"', 'A'},
    {u'å', 'o', 'a'},  {u'Å', 'o', 'A'},  {u'ç', ',', 'c'},  {u'Ç', ',', 'C'},  {u'è', '`', 'e'},
    {u'È', '`', 'E'},  {u'é', '\'', 'e'}, {u'É', '\'', 'E'}, {u'ê', '^', 'e'},  {u'Ê', '^', 'E'},
    {u'ë', '"', 'e'},  {u'Ë', '"', 'E'},  {u'ì', '`', 'i'},  {u'Ì', '`', 'I'},  {u'í', '\'', 'i'},
    {u'Í', '\'', 'I'}, {u'î', '^', 'i'},  {u'Î', '^', 'I'},  {u'ï', '"', 'i'},  {u'Ï', '"', 'I'},
    {u'ñ', '~', 'n'},  {u'Ñ', '~', 'N'},  {u'ò', '`', 'o'},  {u'Ò', '`', 'O'},  {u'ó', '\'', 'o'},
    {u'Ó', '\'', 'O'}, {u'ô', '^', 'o'},  {u'Ô', '^', 'O'},  {u'ö', '"', 'o'},  {u'Ö', '"', 'O'},
    {u'õ', '~', 'o'},  {u'Õ', '~', 'O'},  {u'ø', '/', 'o'},  {u'Ø', '/', 'O'},  {u'ù', '`', 'u'},
    {u'Ù', '`', 'U'},  {u'ú', '\'', 'u'}, {u'Ú', '\'', 'U'}, {u'û', '^', 'u'},  {u'Û', '^', 'U'},
    {u'ü', '"', 'u'},  {u'Ü', '"', 'U'},  {u'ý', '\'', 'y'}, {u'Ý', '\'', 'Y'}, {u'ÿ', '"', 'y'},
    {u'æ', 'a', 'e'},  {u'Æ', 'A', 'E'},  {u'ß', 's', 's'},
};
// clang-format on
constexpr int kPassCount = int(std::size(kEscapes)); // 58, the bar's maximum

// Escape sequences by their two ASCII characters, for the decoder's scan.
struct EscapeIndex
{
    char16_t letters[128][128] = {};
    constexpr EscapeIndex()
    {
        for (const EscapeEntry &e : kEscapes)
            letters[int(e.sign)][int(e.base)] = e.letter;
    }
};
constexpr EscapeIndex kEscapeIndex;

// Latin-1 character to its escape, for the coder's scan (0 sign: none).
struct CodeIndex
{
    EscapeEntry entries[256] = {};
    constexpr CodeIndex()
    {
        for (const EscapeEntry &e : kEscapes)
            entries[e.letter] = e;
    }
};
constexpr CodeIndex kCodeIndex;

// The bar moves 5 at every fifth of the 58 passes. The passes are done in one scan (see below),
// so the steps are spread over the scan instead, which gives the same pace on a big text.
class PassProgress
{
public:
    PassProgress(UserDialogs *ui, qsizetype length)
        : m_ui(ui)
        , m_length(length)
    {
        if (!m_ui)
            return;
        m_ui->setProgressRange(kPassCount);
        m_ui->setProgressValue(0);
        advanceTo(0);
    }
    // Position in the scan; emits the steps whose passes would be done by now.
    void at(qsizetype position)
    {
        if (m_ui && position >= m_nextAt)
            advanceTo(position);
    }
    void finish()
    {
        if (m_ui)
            advanceTo(m_length + 1);
    }

private:
    void advanceTo(qsizetype position)
    {
        while (m_step < kPassCount / 5) {
            const qsizetype boundary = m_length * (m_step + 1) * 5 / kPassCount;
            if (position < boundary) {
                m_nextAt = boundary;
                return;
            }
            ++m_step;
            m_ui->setProgressValue(m_ui->progressValue() + 5);
        }
        m_nextAt = std::numeric_limits<qsizetype>::max();
    }

    UserDialogs *m_ui;
    qsizetype m_length;
    int m_step = 0;
    qsizetype m_nextAt = 0;
};

} // namespace

// The coder's passes are "\" -> "\\", "©" -> "(C)", then the table letter by letter. Every pass
// turns one character into ASCII that no later pass looks for, so a single scan that maps each
// character gives exactly the text of the ordered passes.
QString abcEscapeEncode(const QString &text, UserDialogs *progress)
{
    PassProgress bar(progress, text.size());
    const QChar *data = text.constData();
    const qsizetype n = text.size();
    auto needsWork = [](char16_t c) { return c == u'\\' || c >= 128; };
    qsizetype i = 0;
    while (i < n && !needsWork(data[i].unicode()))
        ++i;
    if (i == n) {
        bar.finish();
        return text;
    }
    QString out;
    out.reserve(n + n / 16);
    qsizetype runStart = 0;
    for (; i < n; ++i) {
        const char16_t c = data[i].unicode();
        if (!needsWork(c))
            continue;
        const EscapeEntry *entry = c < 256 ? &kCodeIndex.entries[c] : nullptr;
        const char16_t *replacement = nullptr;
        char16_t seq[3];
        if (c == u'\\') {
            replacement = u"\\\\";
        } else if (c == u'©') {
            replacement = u"(C)";
        } else if (entry && entry->sign != 0) {
            seq[0] = u'\\';
            seq[1] = char16_t(entry->sign);
            seq[2] = char16_t(entry->base);
        } else {
            continue;
        }
        bar.at(i);
        out.append(data + runStart, i - runStart);
        if (replacement)
            out.append(QStringView(replacement));
        else
            out.append(reinterpret_cast<const QChar *>(seq), 3);
        runStart = i + 1;
    }
    out.append(data + runStart, n - runStart);
    bar.finish();
    return out;
}

// The decoder's first pass turns "\\" into "\" (so "\\'e" becomes "\'e" and then "é"); the table
// passes follow. These cannot interact: every sequence is a backslash and two characters that are
// not backslashes, so no two overlap, and what replaces one is a letter outside ASCII that cannot
// begin or complete another. So one scan does all the passes: each backslash, single or the
// first of a pair, yields one backslash of the first pass's text, and the two characters after
// it in that text are the next two of the input unless one of them is a backslash.
QString abcEscapeDecode(const QString &text, UserDialogs *progress)
{
    PassProgress bar(progress, text.size());
    const QStringView view(text);
    const qsizetype n = text.size();
    qsizetype i = view.indexOf(u'\\');
    if (i < 0) {
        bar.finish();
        return text;
    }
    QString out;
    out.reserve(n);
    qsizetype runStart = 0;
    while (i >= 0) {
        bar.at(i);
        out.append(view.mid(runStart, i - runStart));
        const qsizetype after = (i + 1 < n && view[i + 1] == u'\\') ? i + 2 : i + 1;
        char16_t letter = 0;
        if (after + 1 < n) {
            const char16_t sign = view[after].unicode();
            const char16_t base = view[after + 1].unicode();
            if (sign < 128 && base < 128)
                letter = kEscapeIndex.letters[sign][base]; // never set for a backslash
        }
        if (letter != 0) {
            out.append(QChar(letter));
            runStart = after + 2;
        } else {
            out.append(u'\\');
            runStart = after;
        }
        i = view.indexOf(u'\\', runStart);
    }
    out.append(view.mid(runStart));
    bar.finish();
    return out;
}

namespace {

// HTML 4 names of the Latin-1 characters 160 to 255.
// clang-format off
constexpr const char *kEntityNames[96] = {
    "nbsp",   "iexcl",  "cent",   "pound",  "curren", "yen",    "brvbar", "sect",   "uml",    "copy",
    "ordf",   "laquo",  "not",    "shy",    "reg",    "macr",   "deg",    "plusmn", "sup2",   "sup3",
    "acute",  "micro",  "para",   "middot", "cedil",  "sup1",   "ordm",   "raquo",  "frac14", "frac12",
    "frac34", "iquest", "Agrave", "Aacute", "Acirc",  "Atilde", "Auml",   "Aring",  "AElig",  "Ccedil",
    "Egrave", "Eacute", "Ecirc",  "Euml",   "Igrave", "Iacute", "Icirc",  "Iuml",   "ETH",    "Ntilde",
    "Ograve", "Oacute", "Ocirc",  "Otilde", "Ouml",   "times",  "Oslash", "Ugrave", "Uacute", "Ucirc",
    "Uuml",   "Yacute", "THORN",  "szlig",  "agrave", "aacute", "acirc",  "atilde", "auml",   "aring",
    "aelig",  "ccedil", "egrave", "eacute", "ecirc",  "euml",   "igrave", "iacute", "icirc",  "iuml",
    "eth",    "ntilde", "ograve", "oacute", "ocirc",  "otilde", "ouml",   "divide", "oslash", "ugrave",
    "uacute", "ucirc",  "uuml",   "yacute", "thorn",  "yuml",
};
// clang-format on

QString namedEntity(int code)
{
    return u'&' + QLatin1String(kEntityNames[code - 160]) + u';';
}

QString numericEntity(int code)
{
    return QStringLiteral("&#%1;").arg(code);
}

void replacePass(QString &text, const QString &before, const QString &after)
{
    text.replace(before, after, Qt::CaseSensitive);
}

// The decoder's passes, in their order, on one piece of text.
void entityDecodePasses(QString &text)
{
    static const struct Passes
    {
        QList<QPair<QString, QString>> list;
        Passes()
        {
            const QString quote(QChar(u'"'));
            list = { { QStringLiteral("&quot;"), quote }, { QStringLiteral("&#34;"), quote },
                { QStringLiteral("&amp;"), QStringLiteral("&") },
                { QStringLiteral("&#38;"), QStringLiteral("&") },
                { QStringLiteral("&lt;"), QStringLiteral("<") },
                { QStringLiteral("&#60;"), QStringLiteral("<") },
                { QStringLiteral("&gt;"), QStringLiteral(">") },
                { QStringLiteral("&#62;"), QStringLiteral(">") } };
            for (int code = 160; code <= 255; ++code) {
                const QString letter { QChar(char16_t(code)) };
                list.append({ namedEntity(code), letter });
                list.append({ numericEntity(code), letter });
            }
        }
    } passes;
    for (const auto &[before, after] : passes.list) {
        if (!text.startsWith(u'&'))
            return; // nothing can match any more
        replacePass(text, before, after);
    }
}

} // namespace

// Ordered passes, which here do interact: "&amp;lt;" ends as "<", "&amp;quot;" as "&quot;".
// Every pattern begins with "&" and holds no other "&", so each match lies in the stretch from
// one "&" to the next; and what a pass puts in ('"', "&", "<", ">", a Latin-1 letter) can
// complete no pattern in the stretch before. So the passes are run on each such stretch alone,
// and only on its head, since a chain of passes ("&amp;#38;eacute;") touches under 20 characters.
QString htmlEntityDecode(const QString &text)
{
    constexpr qsizetype kHead = 32;
    const QStringView view(text);
    const qsizetype n = text.size();
    qsizetype i = view.indexOf(u'&');
    if (i < 0)
        return text;
    QString out;
    out.reserve(n);
    out.append(view.left(i));
    while (i < n) {
        qsizetype next = view.indexOf(u'&', i + 1);
        if (next < 0)
            next = n;
        const qsizetype headEnd = std::min(next, i + kHead);
        const QStringView head = view.mid(i, headEnd - i);
        if (head.contains(u';')) {
            QString piece = head.toString();
            entityDecodePasses(piece);
            out.append(piece);
        } else {
            out.append(head);
        }
        out.append(view.mid(headEnd, next - headEnd));
        i = next;
    }
    return out;
}

// The passes are: double quote, "&", "<", ">", then 160 to 255. Only the double quote's result
// meets a later pass (its "&" becomes "&amp;", so a quote ends as "&amp;quot;", which pages
// written so far depend on); one scan with that folded in gives the text of the passes.
QString htmlEntityEncode(const QString &text)
{
    const QChar *data = text.constData();
    const qsizetype n = text.size();
    QString out;
    qsizetype runStart = 0;
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t c = data[i].unicode();
        QString replacement;
        switch (c) {
        case u'"':
            replacement = QStringLiteral("&amp;quot;");
            break;
        case u'&':
            replacement = QStringLiteral("&amp;");
            break;
        case u'<':
            replacement = QStringLiteral("&lt;");
            break;
        case u'>':
            replacement = QStringLiteral("&gt;");
            break;
        default:
            if (c < 160 || c > 255)
                continue;
            replacement = namedEntity(c);
            break;
        }
        if (out.isEmpty())
            out.reserve(n + n / 8);
        out.append(data + runStart, i - runStart);
        out.append(replacement);
        runStart = i + 1;
    }
    if (runStart == 0)
        return text;
    out.append(data + runStart, n - runStart);
    return out;
}

QString charsetFromHeader(const QString &headerText)
{
    static const QLatin1String prefix("%%abc-charset");
    const QStringList lines = headerText.split(u'\n');
    for (const QString &rawLine : lines) {
        if (!rawLine.startsWith(prefix))
            continue;
        QString name = rawLine.mid(prefix.size()).toLower();
        name.remove(u' ');
        name.remove(u'-');
        name.remove(u'\r');
        auto has = [&name](const char *part) { return name.contains(QLatin1String(part)); };
        // Substring tests: the longer names go first ("iso885915" holds "iso88591").
        if (has("iso885910") || has("latin6") || has("iso885913") || has("latin7") || has("iso885914")
            || has("latin8") || has("iso885915") || has("latin9"))
            return {};
        if (has("iso88591") || has("latin1"))
            return QStringLiteral("latin1");
        if (has("iso88592") || has("latin2"))
            return QStringLiteral("latin2");
        if (has("iso88593") || has("latin3") || has("iso88594") || has("latin4") || has("iso88595")
            || has("iso88596") || has("iso88597") || has("iso88598") || has("iso88599") || has("latin5")
            || has("unicode") || has("utf"))
            return {};
    }
    return {};
}

QString latin2Fold(const QString &text, const QString &charset)
{
    if (charset != QLatin1String("latin2"))
        return text;
    static const struct Fold
    {
        char16_t table[256] = {};
        Fold()
        {
            // clang-format off
            const std::pair<int, char> folds[] = {
                {154, 's'}, {158, 'z'}, {161, 'A'}, {162, ' '}, {163, 'L'}, {166, 'S'}, {169, 'S'},
                {170, 'S'}, {171, 'T'}, {172, 'Z'}, {174, 'Z'}, {175, 'Z'}, {177, 'a'}, {182, 's'},
                {185, 's'}, {186, 's'}, {187, 't'}, {188, 'z'}, {190, 'z'}, {191, 'z'}, {192, 'R'},
                {195, 'A'}, {197, 'L'}, {198, 'C'}, {200, 'C'}, {201, 'C'}, {202, 'E'}, {204, 'E'},
                {207, 'D'}, {209, 'N'}, {210, 'N'}, {216, 'R'}, {217, 'U'}, {219, 'U'}, {220, 'J'},
                {224, 'r'}, {227, 'a'}, {229, 'l'}, {230, 'c'}, {232, 'c'}, {234, 'e'}, {236, 'e'},
                {239, 'd'}, {241, 'n'}, {242, 'n'}, {248, 'r'}, {249, 'u'}, {251, 'u'}, {254, 't'},
                {255, '\''},
            };
            // clang-format on
            for (const auto &[code, plain] : folds)
                table[code] = char16_t(plain);
        }
    } fold;
    // Each code becomes one ASCII character that no other code is, so the passes reduce to a map.
    QString out = text;
    QChar *data = out.data();
    for (qsizetype i = 0, n = out.size(); i < n; ++i) {
        const char16_t c = data[i].unicode();
        if (c >= 128 && c < 256 && fold.table[c] != 0)
            data[i] = QChar(fold.table[c]);
    }
    return out;
}

} // namespace fenwork
