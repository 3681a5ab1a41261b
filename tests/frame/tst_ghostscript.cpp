#include "testmain.h"

#include "frame/ghostscript.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>

using namespace fenwork;

namespace {

QString writePostScript(const QTemporaryDir &dir, const QByteArray &program)
{
    const QString path = dir.filePath(QStringLiteral("in.ps"));
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(program);
    return path;
}

} // namespace

class TestGhostscript : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        clearGhostscriptMessages();
        if (!ghostscriptAvailable())
            QSKIP("the Ghostscript library is not installed");
    }

    void rendersPages()
    {
        QTemporaryDir dir;
        const QString ps = writePostScript(dir,
            "%!PS\n0 setgray 72 72 moveto 144 144 lineto stroke showpage\n"
            "72 72 moveto 300 300 lineto stroke showpage\n");
        const QString out = dir.filePath(QStringLiteral("page%d.bmp"));
        QString error;
        QVERIFY2(
            RunGhostscript(
                { QStringLiteral("ps2bmp"), QStringLiteral("-dNOPAUSE"), QStringLiteral("-dBATCH"),
                    QStringLiteral("-dSAFER"), QStringLiteral("-r50"), QStringLiteral("-sDEVICE=bmpgray"),
                    QStringLiteral("-sOutputFile=") + out, QStringLiteral("-c"), QStringLiteral("-f"), ps },
                &error),
            qPrintable(error));
        QImage first(dir.filePath(QStringLiteral("page1.bmp")));
        QVERIFY(!first.isNull());
        // A4 or Letter at 50 dots per inch.
        QVERIFY(first.width() > 400 && first.width() < 450);
        QVERIFY(QFile::exists(dir.filePath(QStringLiteral("page2.bmp"))));
        QVERIFY(!QFile::exists(dir.filePath(QStringLiteral("page3.bmp"))));
    }

};

FENWORK_TEST(TestGhostscript)
#include "tst_ghostscript.moc"
