#pragma once
#include <QString>
#include <QStringList>

namespace fenwork {

// Accumulates text piece by piece and joins it once, so that building a file of thousands of
// lines stays linear.
class StrBuild
{
public:
    void Append(const QString &text)
    {
        m_parts.append(text);
        m_length += text.size();
    }
    QString Value() const
    {
        QString out;
        out.reserve(m_length);
        for (const QString &part : m_parts)
            out += part;
        return out;
    }
    void Clear()
    {
        m_parts.clear();
        m_length = 0;
    }
    qsizetype count() const { return m_parts.size(); }

private:
    QStringList m_parts;
    qsizetype m_length = 0;
};

} // namespace fenwork
