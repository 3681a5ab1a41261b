#include "app/widgets/qttranslation.h"

#include "frame/language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace fenwork {

bool installQtTranslation(const QString &languageName)
{
    static QTranslator *installed = nullptr;
    if (installed) {
        QCoreApplication::removeTranslator(installed);
        delete installed;
        installed = nullptr;
    }
    const QLocale locale = languageLocale(languageName);
    // English is what the toolkit speaks untranslated.
    if (locale.language() == QLocale::C || locale.language() == QLocale::English)
        return false;
    auto *translator = new QTranslator;
    if (!translator->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"),
            QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return false;
    }
    QCoreApplication::installTranslator(translator);
    installed = translator;
    return true;
}

} // namespace fenwork
