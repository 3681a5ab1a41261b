#pragma once
#include <QObject>

namespace fenwork {

// Told once each time the options are applied, so that every open window follows the settings
// it shows (the editor's font, the score mode, the default instrument, the templates, the
// language); the rest is read where it is used.
class SettingsNotice : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

signals:
    // `languageChanged`: every window sets its texts again.
    void changed(bool languageChanged);
};

} // namespace fenwork
