#include "app/widgets/startup.h"

#include <QApplication>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Fennelworks"));
    QApplication::setOrganizationName(QStringLiteral("Fennelworks"));
    QApplication::setDesktopFileName(QStringLiteral("fennelworks"));
    return fenwork::Main(QCoreApplication::arguments());
}
