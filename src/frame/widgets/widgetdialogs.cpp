#include "frame/widgets/widgetdialogs.h"

#include "frame/widgets/progressstrip.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QThread>
#include <cstdio>
#include <cstdlib>

namespace fenwork {

namespace {

QString boxTitle(const QString &title)
{
    return title.isEmpty() ? QStringLiteral("Fennelworks") : title;
}

// Texts are built with CR LF; a label shows a lone CR as a stray glyph.
QString boxText(const QString &text)
{
    QString shown = text;
    shown.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    return shown;
}

QMessageBox::Icon boxIcon(UserDialogs::Icon icon)
{
    switch (icon) {
    case UserDialogs::Icon::Information:
        return QMessageBox::Information;
    case UserDialogs::Icon::Warning:
        return QMessageBox::Warning;
    case UserDialogs::Icon::Critical:
        return QMessageBox::Critical;
    }
    return QMessageBox::Warning;
}

// Handlers that let events run may be entered again from those events; past this depth a pump
// is skipped rather than let the stack grow without bound.
constexpr int kMaxPumpDepth = 8;

} // namespace

WidgetDialogs::WidgetDialogs(QWidget *parent, ProgressStrip *strip)
    : m_parent(parent)
    , m_strip(strip)
{
    if (qApp)
        qApp->installEventFilter(this);
}

WidgetDialogs::~WidgetDialogs()
{
    if (qApp)
        qApp->removeEventFilter(this);
    while (m_busyDepth > 0) {
        QApplication::restoreOverrideCursor();
        --m_busyDepth;
    }
}

void WidgetDialogs::setProgressStrip(ProgressStrip *strip)
{
    m_strip = strip;
    if (m_strip) {
        m_strip->setCaption(m_caption);
        m_strip->setRange(m_maximum);
        m_strip->setValue(m_value);
        m_strip->setProgressVisible(m_progressVisible);
    }
}

void WidgetDialogs::message(const QString &text, Icon icon, const QString &title)
{
    QMessageBox box(boxIcon(icon), boxTitle(title), boxText(text), QMessageBox::Ok, m_parent);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

UserDialogs::Answer WidgetDialogs::question(const QString &text, bool withCancel, const QString &title)
{
    QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No;
    if (withCancel)
        buttons |= QMessageBox::Cancel;
    QMessageBox box(QMessageBox::Question, boxTitle(title), boxText(text), buttons, m_parent);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(withCancel ? QMessageBox::Cancel : QMessageBox::No);
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::Cancel:
        return Answer::Cancel;
    default:
        return Answer::No;
    }
}

QString WidgetDialogs::inputText(const QString &prompt, const QString &title, const QString &defaultText)
{
    const QPointer<QWidget> anchor = m_inputAnchor;
    m_inputAnchor = nullptr;
    if (anchor) {
        QInputDialog box(m_parent);
        box.setWindowTitle(boxTitle(title));
        box.setLabelText(boxText(prompt));
        box.setTextValue(defaultText);
        box.adjustSize();
        // Beside the anchor's top right corner, kept on its screen.
        QPoint at = anchor->mapToGlobal(QPoint(anchor->width(), 0));
        if (const QScreen *screen = anchor->screen()) {
            const QRect room = screen->availableGeometry();
            at.setX(qBound(room.left(), at.x(), room.right() - box.width()));
            at.setY(qBound(room.top(), at.y(), room.bottom() - box.height()));
        }
        box.move(at);
        return box.exec() == QDialog::Accepted ? box.textValue() : QString();
    }
    bool ok = false;
    const QString text = QInputDialog::getText(
        m_parent, boxTitle(title), boxText(prompt), QLineEdit::Normal, defaultText, &ok);
    return ok ? text : QString();
}

QString WidgetDialogs::openFileName(const QString &title, const QString &folder, const QStringList &filters)
{
    return QFileDialog::getOpenFileName(m_parent, boxTitle(title), folder, filters.join(QLatin1String(";;")));
}

QStringList WidgetDialogs::openFileNames(
    const QString &title, const QString &folder, const QStringList &filters)
{
    return QFileDialog::getOpenFileNames(
        m_parent, boxTitle(title), folder, filters.join(QLatin1String(";;")));
}

QString WidgetDialogs::saveFileName(
    const QString &title, const QString &startPath, const QStringList &filters, int *selectedFilter)
{
    QString chosenFilter;
    const QString path = QFileDialog::getSaveFileName(
        m_parent, boxTitle(title), startPath, filters.join(QLatin1String(";;")), &chosenFilter);
    if (selectedFilter && !path.isEmpty()) {
        const int row = int(filters.indexOf(chosenFilter));
        *selectedFilter = row < 0 ? 1 : row + 1;
    }
    return path;
}

QString WidgetDialogs::folderName(const QString &title, const QString &folder)
{
    return QFileDialog::getExistingDirectory(m_parent, boxTitle(title), folder);
}

void WidgetDialogs::showProgress(bool visible)
{
    m_progressVisible = visible;
    if (m_strip)
        m_strip->setProgressVisible(visible);
}

void WidgetDialogs::setProgressCaption(const QString &caption)
{
    m_caption = caption;
    if (m_strip)
        m_strip->setCaption(caption);
}

void WidgetDialogs::setProgressRange(int maximum)
{
    m_maximum = maximum;
    m_value = qMin(m_value, maximum);
    if (m_strip)
        m_strip->setRange(maximum);
}

void WidgetDialogs::setProgressValue(int value)
{
    m_value = value;
    if (m_strip)
        m_strip->setValue(value);
}

void WidgetDialogs::setBusy(bool busy)
{
    if (busy) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        ++m_busyDepth;
    } else if (m_busyDepth > 0) {
        QApplication::restoreOverrideCursor();
        --m_busyDepth;
    }
}

void WidgetDialogs::statusMessage(const QString &text)
{
    if (m_strip)
        m_strip->setStatusText(text);
}

void WidgetDialogs::processEvents()
{
    if (m_pumpDepth >= kMaxPumpDepth)
        return;
    ++m_pumpDepth;
    QCoreApplication::processEvents();
    --m_pumpDepth;
}

bool WidgetDialogs::escapePressed()
{
    const bool pressed = m_escape;
    m_escape = false;
    return pressed;
}

void WidgetDialogs::watchEscape(bool on)
{
    m_escapeWatch = qMax(0, m_escapeWatch + (on ? 1 : -1));
    // The outermost wait starts and ends with no Esc seen.
    if (m_escapeWatch == (on ? 1 : 0))
        m_escape = false;
}

void WidgetDialogs::terminate(int exitCode)
{
    std::fflush(stdout);
    std::fflush(stderr);
    QCoreApplication::exit(exitCode);
    // Before the event loop runs (or after it ended) exit() has nobody to tell.
    if (QThread::currentThread()->loopLevel() == 0)
        std::exit(exitCode);
}

bool WidgetDialogs::eventFilter(QObject *watched, QEvent *event)
{
    // A key event is offered to the filter once per widget it propagates through; only the
    // first delivery matters, and noting it twice does no harm. Where Esc is a shortcut (the
    // edit session's cancel) only its override event comes by.
    const QEvent::Type type = event->type();
    if (m_escapeWatch > 0 && (type == QEvent::KeyPress || type == QEvent::ShortcutOverride)
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
        m_escape = true;
    return QObject::eventFilter(watched, event);
}

} // namespace fenwork
