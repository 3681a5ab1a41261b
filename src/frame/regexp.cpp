#include "regexp.h"

#include <QRegularExpression>

#include <algorithm>

namespace fenwork {

namespace {

bool isHexDigit(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= u'0' && u <= u'9') || (u >= u'a' && u <= u'f') || (u >= u'A' && u <= u'F');
}

// The engine's newline convention is (*ANYCRLF), so that its own multiline "^" starts a line after
// LF, after a lone CR and after a whole CR LF, never between CR and LF, and keeps its quick
// line-start search. Its "." and "$" then differ from ours and are rewritten:
// "." takes everything but LF (the CR of a CR LF included, so ".*$" swallows it), and a multiline
// "$" stands before CR and before LF (so ".+?$" stops before the CR). Without MultiLine "$" is
// the very end only, never before a final line break.
QString translatePattern(const QString &pattern, bool multiLine)
{
    static const QString anyButLf = QStringLiteral("[^\\n]");
    static const QString lineEnd = QStringLiteral("(?![^\\r\\n])");
    static const QString subjectEnd = QStringLiteral("\\z");

    QString out = QStringLiteral("(*ANYCRLF)");
    out.reserve(pattern.size() + 32);
    const qsizetype n = pattern.size();
    bool inClass = false;
    qsizetype i = 0;
    while (i < n) {
        const QChar c = pattern.at(i);
        if (c == u'\\') {
            if (i + 1 < n && pattern.at(i + 1) == u'Q') {
                // Quoted run: copied as it stands up to and including "\E".
                const qsizetype end = pattern.indexOf(QLatin1String("\\E"), i + 2);
                const qsizetype stop = end < 0 ? n : end + 2;
                out += QStringView(pattern).mid(i, stop - i);
                i = stop;
                continue;
            }
            // Two escapes of the script dialect that the engine spells otherwise: "\uXXXX" and
            // "\v" (a vertical tab, not any vertical space).
            if (i + 5 < n && pattern.at(i + 1) == u'u') {
                const QStringView hex = QStringView(pattern).mid(i + 2, 4);
                if (std::all_of(hex.begin(), hex.end(), isHexDigit)) {
                    out += QStringLiteral("\\x{");
                    out += hex;
                    out += u'}';
                    i += 6;
                    continue;
                }
            }
            if (i + 1 < n && pattern.at(i + 1) == u'v') {
                out += QStringLiteral("\\x0B");
                i += 2;
                continue;
            }
            out += c;
            if (i + 1 < n)
                out += pattern.at(i + 1);
            i += 2;
            continue;
        }
        if (inClass) {
            if (c == u']') {
                inClass = false;
            } else if (c == u'[' && i + 1 < n
                && (pattern.at(i + 1) == u':' || pattern.at(i + 1) == u'.' || pattern.at(i + 1) == u'=')) {
                // A POSIX class such as [:alpha:] inside a bracket: its "]" does not close.
                const QString closer = QString(pattern.at(i + 1)) + u']';
                const qsizetype end = pattern.indexOf(closer, i + 2);
                if (end >= 0) {
                    out += QStringView(pattern).mid(i, end + 2 - i);
                    i = end + 2;
                    continue;
                }
            }
            out += c;
            ++i;
            continue;
        }
        switch (c.unicode()) {
        case u'[':
            inClass = true;
            out += c;
            ++i;
            if (i < n && pattern.at(i) == u'^') {
                out += u'^';
                ++i;
            }
            // A "]" first in a class is a literal to the engine.
            if (i < n && pattern.at(i) == u']') {
                out += u']';
                ++i;
            }
            continue;
        case u'(':
            if (pattern.mid(i, 3) == QLatin1String("(?#")) {
                const qsizetype end = pattern.indexOf(u')', i);
                const qsizetype stop = end < 0 ? n : end + 1;
                out += QStringView(pattern).mid(i, stop - i);
                i = stop;
                continue;
            }
            out += c;
            break;
        case u'.':
            out += anyButLf;
            break;
        case u'$':
            out += multiLine ? lineEnd : subjectEnd;
            break;
        default:
            out += c;
            break;
        }
        ++i;
    }
    return out;
}

// A lone surrogate would make the engine refuse the whole subject; a replacement character of
// the same length keeps every position.
QString sanitizeSubject(const QString &subject)
{
    const qsizetype n = subject.size();
    const QChar *data = subject.constData();
    qsizetype i = 0;
    for (; i < n; ++i) {
        const QChar c = data[i];
        if (!c.isSurrogate())
            continue;
        if (c.isHighSurrogate() && i + 1 < n && data[i + 1].isLowSurrogate()) {
            ++i;
            continue;
        }
        break;
    }
    if (i >= n)
        return subject;
    QString copy = subject;
    QChar *out = copy.data();
    for (; i < n; ++i) {
        const QChar c = out[i];
        if (!c.isSurrogate())
            continue;
        if (c.isHighSurrogate() && i + 1 < n && out[i + 1].isLowSurrogate()) {
            ++i;
            continue;
        }
        out[i] = QChar::ReplacementCharacter;
    }
    return copy;
}

RegExpMatch toMatch(const QRegularExpressionMatch &m)
{
    RegExpMatch r;
    r.firstIndex = m.capturedStart(0);
    r.length = m.capturedLength(0);
    r.value = m.captured(0);
    const int groups = m.lastCapturedIndex();
    const int total = m.regularExpression().captureCount();
    r.subMatches.reserve(total);
    for (int g = 1; g <= total; ++g)
        r.subMatches.append(g <= groups ? m.captured(g) : QString());
    return r;
}

} // namespace

struct RegExp::Compiled
{
    QString pattern;
    bool ignoreCase = false;
    bool multiLine = false;
    QRegularExpression re;
    bool valid = false;
};

RegExp::RegExp() = default;
RegExp::~RegExp() = default;

const RegExp::Compiled &RegExp::compiled()
{
    if (m_compiled && m_compiled->pattern == Pattern && m_compiled->ignoreCase == IgnoreCase
        && m_compiled->multiLine == MultiLine)
        return *m_compiled;

    auto c = std::make_unique<Compiled>();
    c->pattern = Pattern;
    c->ignoreCase = IgnoreCase;
    c->multiLine = MultiLine;
    QRegularExpression::PatternOptions options;
    if (IgnoreCase)
        options |= QRegularExpression::CaseInsensitiveOption;
    if (MultiLine)
        options |= QRegularExpression::MultilineOption;
    c->re = QRegularExpression(translatePattern(Pattern, MultiLine), options);
    c->valid = c->re.isValid();
    if (c->valid)
        c->re.optimize();
    m_compiled = std::move(c);
    return *m_compiled;
}

bool RegExp::isValid()
{
    return compiled().valid;
}

QString RegExp::errorText()
{
    const Compiled &c = compiled();
    return c.valid ? QString() : c.re.errorString();
}

namespace {

// Walks the matches the way the classic engines do: each search starts where the last match
// ended, and an empty match moves the start on by one character so that the walk ends.
template <typename Visit>
void walkMatches(const QRegularExpression &re, const QString &subject, bool global, Visit visit)
{
    const qsizetype n = subject.size();
    qsizetype offset = 0;
    // The subject has been cleaned of lone surrogates, so the engine may skip its own check,
    // which would otherwise cost a pass over the whole subject per match.
    const auto options = QRegularExpression::DontCheckSubjectStringMatchOption;
    while (offset <= n) {
        const QRegularExpressionMatch m = re.match(subject, offset, QRegularExpression::NormalMatch, options);
        if (!m.hasMatch())
            return;
        visit(m);
        if (!global)
            return;
        const qsizetype end = m.capturedEnd(0);
        if (end > m.capturedStart(0)) {
            offset = end;
        } else {
            offset = end + 1;
            // Never start inside a surrogate pair.
            if (offset < n && subject.at(offset).isLowSurrogate() && subject.at(offset - 1).isHighSurrogate())
                ++offset;
        }
    }
}

// Appends the expansion of `replacement` for one match: "$n" and "$nn" take a group when the
// group exists (two digits first, then one), "$&" the whole match, "$`" and "$'" the text before
// and after it, "$$" a dollar; anything else stays as written.
void appendReplacement(QString &out, const QString &replacement, const QRegularExpressionMatch &m,
    const QString &subject, int groupCount)
{
    const qsizetype n = replacement.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = replacement.at(i);
        if (c != u'$' || i + 1 >= n) {
            out += c;
            continue;
        }
        const QChar d = replacement.at(i + 1);
        if (d == u'$') {
            out += u'$';
            ++i;
        } else if (d == u'&') {
            out += m.capturedView(0);
            ++i;
        } else if (d == u'`') {
            out += QStringView(subject).left(m.capturedStart(0));
            ++i;
        } else if (d == u'\'') {
            out += QStringView(subject).mid(m.capturedEnd(0));
            ++i;
        } else if (d.isDigit() && d.unicode() < 128) {
            int group = d.unicode() - '0';
            int used = 1;
            if (i + 2 < n && replacement.at(i + 2).unicode() >= '0'
                && replacement.at(i + 2).unicode() <= '9') {
                const int two = group * 10 + (replacement.at(i + 2).unicode() - '0');
                if (two >= 1 && two <= groupCount) {
                    group = two;
                    used = 2;
                }
            }
            if (group >= 1 && group <= groupCount) {
                out += m.capturedView(group); // empty for a group that did not take part
                i += used;
            } else {
                out += c;
            }
        } else {
            out += c;
        }
    }
}

} // namespace

bool RegExp::Test(const QString &subject)
{
    const Compiled &c = compiled();
    if (!c.valid)
        return false;
    return c.re.match(sanitizeSubject(subject)).hasMatch();
}

QVector<RegExpMatch> RegExp::Execute(const QString &subject)
{
    QVector<RegExpMatch> matches;
    const Compiled &c = compiled();
    if (!c.valid)
        return matches;
    const QString clean = sanitizeSubject(subject);
    walkMatches(c.re, clean, Global, [&](const QRegularExpressionMatch &m) { matches.append(toMatch(m)); });
    if (clean.constData() != subject.constData()) {
        // Values are reported from the subject as given, not from the cleaned copy.
        for (RegExpMatch &m : matches)
            m.value = subject.mid(m.firstIndex, m.length);
    }
    return matches;
}

QString RegExp::Replace(const QString &subject, const QString &replacement)
{
    const Compiled &c = compiled();
    if (!c.valid)
        return subject;
    const QString clean = sanitizeSubject(subject);
    const int groupCount = c.re.captureCount();
    QString out;
    qsizetype copied = 0;
    bool any = false;
    walkMatches(c.re, clean, Global, [&](const QRegularExpressionMatch &m) {
        if (!any) {
            out.reserve(subject.size());
            any = true;
        }
        out += QStringView(subject).mid(copied, m.capturedStart(0) - copied);
        appendReplacement(out, replacement, m, subject, groupCount);
        copied = m.capturedEnd(0);
    });
    if (!any)
        return subject;
    out += QStringView(subject).mid(copied);
    return out;
}

} // namespace fenwork
