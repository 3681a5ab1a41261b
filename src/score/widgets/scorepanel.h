#pragma once
#include <QImage>
#include <QWidget>

class QLabel;
class QScrollArea;

namespace fenwork {

// The score `pic_Mus`: the page picture `img_Mus` on a neutral desk, scrolled by `scr_musH` and
// `scr_musV`. Until a tune's page is drawn it shows the blank page.
class ScorePanel : public QWidget
{
    Q_OBJECT
public:
    explicit ScorePanel(QWidget *parent = nullptr);

    // The picture shown when there is no score; a missing file gives a drawn blank page.
    void setBlankPicturePath(const QString &path);
    QString blankPicturePath() const { return m_blankPath; }
    void showBlank();
    void showPicture(const QImage &page);
    QImage picture() const { return m_page; }
    bool isBlank() const { return m_blank; }

    // The zoom in dots per inch the score is drawn at; kept between runs.
    int zoom() const { return m_zoom; }
    void setZoom(int zoom) { m_zoom = zoom; }

private:
    QImage m_page;
    QString m_blankPath;
    QScrollArea *m_scroll;
    QLabel *m_image;
    int m_zoom = 110;
    bool m_blank = true;
};

} // namespace fenwork
