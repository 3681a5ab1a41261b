#pragma once
#include <QStatusBar>

class QLabel;

namespace fenwork {

// The status bar `stBar`: the current file's path (`kfich`), what is selected in the tree (`ktree`) and
// the program's version (`kversion`).
class MainStatusBar : public QStatusBar
{
    Q_OBJECT
public:
    explicit MainStatusBar(QWidget *parent = nullptr);

    void setFilePath(const QString &path);
    QString filePath() const { return m_path; }
    // The file and tune captions of the selected node.
    void setNodeCaption(const QString &caption);
    void setVersionText(const QString &text);

private:
    QString m_path;
    QLabel *m_file;
    QLabel *m_node;
    QLabel *m_version;
};

} // namespace fenwork
