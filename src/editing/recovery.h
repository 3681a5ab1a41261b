#pragma once
// What an edit session left behind when the program ended without closing it.
#include <QString>

class QDateTime;

namespace fenwork {

class AppContext;

// The crash signal: a recovery copy left by an edit session that never ended. Its text is moved
// to user/recovered/ under a name of its date and the tune's title, where it stays until the user
// deletes it; the user is told that file and asked where to open it.
struct RecoveryOffer
{
    enum class Open { Nowhere, InProgram, InEditor };
    QString keptFile; // empty when there was nothing to recover
    Open open = Open::Nowhere;
};
RecoveryOffer offerRecovery(AppContext &app);

// "yyyy-MM-dd HH.mm <title>.abc": the title of the first T: line, made safe as a file name.
QString recoveredFileName(const QString &text, const QDateTime &when);

} // namespace fenwork
