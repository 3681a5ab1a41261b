#pragma once
#include <QStatusBar>

class QLabel;

namespace fenwork {

// The status bar `stBar`: the current file's path (`kfich`), the selected node's key (`ktree`) and
// the program's version (`kversion`).
class MainStatusBar : public QStatusBar
{
    Q_OBJECT
public:
    explicit MainStatusBar(QWidget *parent = nullptr);

    void setFilePath(const QString &path);
    QString filePath() const { return m_path; }
    void setTreeKey(const QString &key);
    void setVersionText(const QString &text);

private:
    QString m_path;
    QLabel *m_file;
    QLabel *m_key;
    QLabel *m_version;
};

} // namespace fenwork
