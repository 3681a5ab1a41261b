#pragma once
#include <QIcon>
#include <QString>

namespace fenwork {

// The program's own picture <programFolder>/img/<name>.svg (node pictures such as "tune",
// "fileabcm", "poub"). Loaded once per name and folder; a missing file gives a null icon.
QIcon pictureIcon(const QString &name, const QString &programFolder);

// The desktop theme's icon of that freedesktop name, else our picture `fallbackPictureName`.
QIcon themeIcon(
    const QString &freedesktopName, const QString &fallbackPictureName, const QString &programFolder);

// The icon of a tool bar or menu picture name ("open", "save", "tunecut" ...): the theme icon
// that stands for it, else our own picture of that name.
QIcon programIcon(const QString &pictureName, const QString &programFolder);

// Without a desktop Qt names no theme, or only "hicolor", which holds next to nothing: use
// breeze then. Call once after the application object exists.
void setupIconTheme();

} // namespace fenwork
