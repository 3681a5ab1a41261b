#pragma once
// Regular expressions in the dialect the rest of the program is written against: "." matches any
// character but LF; under MultiLine "^" matches at the start and after a line break, "$" at the
// end and before CR or LF. Global decides whether Execute and Replace take every match or the
// first only.
#include <QString>
#include <QVector>
#include <memory>

namespace fenwork {

struct RegExpMatch
{
    qsizetype firstIndex = 0; // 0-based position in the subject
    qsizetype length = 0;
    QString value;
    QStringList subMatches; // captured groups 1..n; empty string for a group that did not take part
};

class RegExp
{
public:
    RegExp();
    ~RegExp();
    RegExp(const RegExp &) = delete;
    RegExp &operator=(const RegExp &) = delete;

    bool Global = false;
    bool IgnoreCase = false;
    bool MultiLine = false;
    QString Pattern;

    bool isValid();       // the pattern compiles
    QString errorText();  // why it does not

    bool Test(const QString &subject);
    QVector<RegExpMatch> Execute(const QString &subject);
    // "$1".."$99", "$&" (whole match), "$$" in the replacement, as the classic engines do.
    QString Replace(const QString &subject, const QString &replacement);

private:
    struct Compiled;
    const Compiled &compiled();
    std::unique_ptr<Compiled> m_compiled;
};

} // namespace fenwork
