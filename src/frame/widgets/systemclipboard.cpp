#include "frame/widgets/systemclipboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace fenwork {

void SystemClipboard::setText(const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
}

QString SystemClipboard::text() const
{
    return QGuiApplication::clipboard()->text();
}

} // namespace fenwork
