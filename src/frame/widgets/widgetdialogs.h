#pragma once
#include "frame/userdialogs.h"

#include <QObject>
#include <QPointer>

class QWidget;

namespace fenwork {

class ProgressStrip;

// The dialogs seam over Qt: message and question boxes, input boxes and file dialogs parented
// to the main window, the progress strip under the tree, the busy cursor, and the Esc key as an
// application-wide event filter sees it during long work.
class WidgetDialogs : public QObject, public UserDialogs
{
    Q_OBJECT
public:
    explicit WidgetDialogs(QWidget *parent = nullptr, ProgressStrip *strip = nullptr);
    ~WidgetDialogs() override;

    void setParentWidget(QWidget *parent) { m_parent = parent; }
    QWidget *parentWidget() const { return m_parent; }
    // The next input box opens beside `anchor` rather than over the window's middle.
    void setNextInputNear(QWidget *anchor) { m_inputAnchor = anchor; }
    void setProgressStrip(ProgressStrip *strip);
    ProgressStrip *progressStrip() const { return m_strip; }

    void message(const QString &text, Icon icon = Icon::Warning, const QString &title = {}) override;
    Answer question(const QString &text, bool withCancel = false, const QString &title = {}) override;
    QString inputText(const QString &prompt, const QString &title, const QString &defaultText) override;
    QString openFileName(const QString &title, const QString &folder, const QStringList &filters) override;
    QStringList openFileNames(
        const QString &title, const QString &folder, const QStringList &filters) override;
    QString saveFileName(const QString &title, const QString &startPath, const QStringList &filters,
        int *selectedFilter = nullptr) override;
    QString folderName(const QString &title, const QString &folder) override;

    void showProgress(bool visible) override;
    void setProgressCaption(const QString &caption) override;
    void setProgressRange(int maximum) override;
    void setProgressValue(int value) override;
    int progressValue() const override { return m_value; }

    void setBusy(bool busy) override;
    void statusMessage(const QString &text) override;
    void processEvents() override;
    bool escapePressed() override;
    void watchEscape(bool on) override;
    void terminate(int exitCode) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QWidget> m_parent;
    QPointer<QWidget> m_inputAnchor;
    QPointer<ProgressStrip> m_strip;
    bool m_progressVisible = false;
    QString m_caption;
    int m_maximum = 0;
    int m_value = 0;
    int m_busyDepth = 0;
    int m_pumpDepth = 0;
    bool m_escape = false;
    int m_escapeWatch = 0; // waits that watch, nested ones counted
};

} // namespace fenwork
