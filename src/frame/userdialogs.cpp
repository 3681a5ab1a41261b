#include "frame/userdialogs.h"

#include "frame/strutil.h"

namespace fenwork {

void UserDialogs::contextError(const QString &context, const QString &description)
{
    message(QStringLiteral("Context: ") + context + CRLF + CRLF + description, Icon::Warning);
}

} // namespace fenwork
