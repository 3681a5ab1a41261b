#pragma once
#include <QWidget>

class QLabel;
class QProgressBar;
class QTimer;

namespace fenwork {

// The strip under the tree that shows long work: a caption (`lab_Progress`) and a bar (`ProgB`),
// and below them the last short status text. The strip is hidden while it has nothing to show.
class ProgressStrip : public QWidget
{
    Q_OBJECT
public:
    explicit ProgressStrip(QWidget *parent = nullptr);

    void setProgressVisible(bool visible);
    bool isProgressVisible() const { return m_progressVisible; }
    void setCaption(const QString &caption);
    QString caption() const;
    void setRange(int maximum);
    int maximum() const { return m_maximum; }
    void setValue(int value);
    int value() const { return m_value; }

    // A short text that needs no answer; it stays until replaced, cleared, or a while has passed.
    void setStatusText(const QString &text);
    QString statusText() const { return m_status; }
    void clearStatusText() { setStatusText(QString()); }

    // How long a status text stays on screen, in milliseconds (0 keeps it).
    void setStatusTimeout(int msec) { m_statusTimeout = msec; }

private:
    void updateVisibility();
    void applyToBar();

    QLabel *m_caption;
    QProgressBar *m_bar;
    QLabel *m_statusLabel;
    QTimer *m_statusTimer;
    QString m_status;
    bool m_progressVisible = false;
    int m_maximum = 0;
    int m_value = 0;
    int m_statusTimeout = 15000;
};

} // namespace fenwork
