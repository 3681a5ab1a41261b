#include "app/widgets/mainstatusbar.h"

#include <QLabel>

namespace fenwork {

namespace {

// A long path loses its middle, so that both the folder's start and the file's name stay readable.
class PathLabel : public QLabel
{
public:
    using QLabel::QLabel;
    void setPath(const QString &path)
    {
        m_path = path;
        setToolTip(path);
        elide();
    }

    // Asks for room for the whole text, not for what the last elision left of it.
    QSize sizeHint() const override
    {
        const QMargins m = contentsMargins();
        return { fontMetrics().horizontalAdvance(m_path) + m.left() + m.right() + 2 * margin(),
            QLabel::sizeHint().height() };
    }
    QSize minimumSizeHint() const override { return { 0, QLabel::minimumSizeHint().height() }; }

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        QLabel::resizeEvent(event);
        elide();
    }

private:
    void elide()
    {
        const int room = contentsRect().width();
        setText(room > 0 ? fontMetrics().elidedText(m_path, Qt::ElideMiddle, room) : m_path);
    }
    QString m_path;
};

} // namespace

MainStatusBar::MainStatusBar(QWidget *parent)
    : QStatusBar(parent)
    , m_file(new PathLabel(this))
    , m_node(new PathLabel(this))
    , m_version(new QLabel(this))
{
    setObjectName(QStringLiteral("stBar"));
    m_file->setObjectName(QStringLiteral("kfich"));
    m_node->setObjectName(QStringLiteral("ktree"));
    m_version->setObjectName(QStringLiteral("kversion"));
    for (QLabel *label : { m_file, m_node, m_version }) {
        label->setTextFormat(Qt::PlainText);
        label->setContentsMargins(4, 0, 4, 0);
    }
    m_file->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_file->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_node->setForegroundRole(QPalette::PlaceholderText);
    // A long title gives way before it crowds out the file's path.
    m_node->setMaximumWidth(m_node->fontMetrics().averageCharWidth() * 64);
    addWidget(m_file, 1);
    addPermanentWidget(m_node);
    addPermanentWidget(m_version);
}

void MainStatusBar::setFilePath(const QString &path)
{
    m_path = path;
    static_cast<PathLabel *>(m_file)->setPath(path);
}

void MainStatusBar::setNodeCaption(const QString &caption)
{
    static_cast<PathLabel *>(m_node)->setPath(caption);
}

void MainStatusBar::setVersionText(const QString &text)
{
    m_version->setText(text);
}

} // namespace fenwork
