#pragma once
#include <QString>

namespace fenwork {

constexpr int kVersionMajor = FENWORK_VERSION_MAJOR;
constexpr int kVersionMinor = FENWORK_VERSION_MINOR;
constexpr int kVersionPatch = FENWORK_VERSION_PATCH;

// "0.1.0"
inline QString versionText()
{
    return QStringLiteral("%1.%2.%3").arg(kVersionMajor).arg(kVersionMinor).arg(kVersionPatch);
}
// "Fennelworks 0.1", the main window's title as the second instance looks for it.
inline QString programTitle()
{
    return QStringLiteral("Fennelworks %1.%2").arg(kVersionMajor).arg(kVersionMinor);
}

} // namespace fenwork
