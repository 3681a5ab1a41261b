#pragma once
#include <QObject>
#include <QString>

namespace fenwork {

// What most commands work on: the current tune key and the current file key, each empty when
// nothing of its kind is selected. Set by the node click; whoever shows them follows `changed`.
class Selection : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    const QString &tuneKey() const { return m_tune; }
    const QString &fileKey() const { return m_file; }
    void set(const QString &tuneKey, const QString &fileKey)
    {
        if (tuneKey == m_tune && fileKey == m_file)
            return;
        m_tune = tuneKey;
        m_file = fileKey;
        emit changed(m_tune, m_file);
    }
    void setTuneKey(const QString &tuneKey) { set(tuneKey, m_file); }
    void setFileKey(const QString &fileKey) { set(m_tune, fileKey); }

signals:
    void changed(const QString &tuneKey, const QString &fileKey);

private:
    QString m_tune;
    QString m_file;
};

} // namespace fenwork
