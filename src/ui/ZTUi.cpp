#include "ui/ZTUi.h"

#include <QApplication>
#include <QIcon>
#include <QStyle>
#include <QStyleFactory>

void ZTUi::setUpApplication(QApplication &app)
{
    app.setApplicationName(QStringLiteral("Zettary"));
    app.setOrganizationName(QStringLiteral("Zettary"));
    // A bare system has no icon theme set; Breeze is a declared dependency.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QLatin1String("hicolor"))
        QIcon::setThemeName(QStringLiteral("breeze"));
    if (qEnvironmentVariableIsEmpty("QT_STYLE_OVERRIDE") && QStyleFactory::keys().contains(QStringLiteral("Fusion")) &&
        app.style()->name().compare(QLatin1String("windows"), Qt::CaseInsensitive) == 0)
        app.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}
