#pragma once
#include <QImage>
#include <QPixmap>
#include <QWidget>

class QScrollBar;

namespace fenwork {

// The page picture `img_Mus` on its desk, with the bars `scr_musH` and `scr_musV`: the picture's
// left is −scr_musH and its top −scr_musV (a page narrower than the desk stands in its middle).
class ScoreCanvas : public QWidget
{
    Q_OBJECT
public:
    explicit ScoreCanvas(QWidget *parent = nullptr);

    void setImage(const QImage &image);
    QImage image() const { return m_image; }

    QScrollBar *horizontalBar() const { return m_h; }
    QScrollBar *verticalBar() const { return m_v; }
    // Moves a bar by `delta`, kept inside its range.
    static void moveBar(QScrollBar *bar, int delta);

    // The picture widget, for tests and for focus handling.
    QWidget *imageWidget() const { return m_picture; }
    // The width a picture may have without needing the horizontal bar.
    int roomForWidth() const;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void updateRanges();
    void placePicture();

    QWidget *m_desk;
    QWidget *m_picture;
    QScrollBar *m_h;
    QScrollBar *m_v;
    QImage m_image;
};

} // namespace fenwork
