#pragma once
#include <QWidget>

class QPainter;
class QRectF;

namespace fenwork {

// The program's emblem, two beamed quavers on a staff in a green tile, drawn to fit `rect`.
void paintEmblem(QPainter &painter, const QRectF &rect);

// f_splash: shown without blocking while the main window loads; shows the version and keeps
// the wait cursor up until it is closed.
class SplashWindow : public QWidget
{
    Q_OBJECT
public:
    explicit SplashWindow(QWidget *parent = nullptr);
    ~SplashWindow() override;

    // "Fennelworks <major.minor.revision>"
    static QString caption();

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void releaseCursor();
    bool m_cursorSet = false;
};

} // namespace fenwork
