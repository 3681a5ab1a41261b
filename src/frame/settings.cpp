#include "frame/settings.h"

#include "frame/paths.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace fenwork {

namespace {

// Window size when the screen is known: most of it, leaving room for the desktop's panels.
int defaultWidth(int screenWidth)
{
    return screenWidth > 0 ? screenWidth * 4 / 5 : 1024;
}

int defaultHeight(int screenHeight)
{
    return screenHeight > 0 ? screenHeight * 4 / 5 : 700;
}

} // namespace

QString defaultToolPath(const Paths &paths, const QString &name)
{
    const QFileInfo shipped(paths.inProgram(QStringLiteral("tools/") + name));
    if (shipped.isFile() && shipped.isExecutable())
        return shipped.filePath();
    const QString found = QStandardPaths::findExecutable(name);
    if (!found.isEmpty())
        return found;
    return QStringLiteral("/usr/bin/") + name;
}

QString computedDefault(const SettingKey &key, const Paths &paths, int screenWidth, int screenHeight,
    int windowWidth, int windowHeight)
{
    using C = SettingKey::Computed;
    const int width = windowWidth > 0 ? windowWidth : defaultWidth(screenWidth);
    const int height = windowHeight > 0 ? windowHeight : defaultHeight(screenHeight);
    switch (key.computed) {
    case C::None:
        return key.defaultValue();
    case C::Documents: {
        const QString documents = specialFolder(SF_Documents);
        return documents.isEmpty() ? QDir::homePath() + u'/' : documents;
    }
    case C::ToolAbc2midi:
        return defaultToolPath(paths, QStringLiteral("abc2midi"));
    case C::ToolAbcm2ps:
        return defaultToolPath(paths, QStringLiteral("abcm2ps"));
    case C::ToolAbc2abc:
        return defaultToolPath(paths, QStringLiteral("abc2abc"));
    case C::ToolMidi2abc:
        return defaultToolPath(paths, QStringLiteral("midi2abc"));
    case C::FmtFile:
        return paths.inProgram(QStringLiteral("fmt/whistle_new.fmt"));
    case C::ScreenWidth:
        return QString::number(defaultWidth(screenWidth));
    case C::ScreenHeight:
        return QString::number(defaultHeight(screenHeight));
    case C::PanelX:
        return QString::number(width / 3);
    case C::PanelYD:
        return QString::number(height / 2);
    case C::PanelYG:
        return QString::number(height * 3 / 4);
    }
    return key.defaultValue();
}

} // namespace fenwork
