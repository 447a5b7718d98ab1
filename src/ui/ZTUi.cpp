#include "ui/ZTUi.h"

#include <QApplication>
#include <QGuiApplication>
#include <QIcon>
#include <QPalette>
#include <QStringList>
#include <QStyle>
#include <QStyleFactory>

void ZTUi::setUpApplication(QApplication &app)
{
    app.setApplicationName(QStringLiteral("Zettary"));
    app.setOrganizationName(QStringLiteral("Zettary"));
    // Without a desktop platform theme (offscreen, a bare X server) Qt looks
    // for icons only in its resources: add the XDG icon folders.
    QStringList searchPaths = QIcon::themeSearchPaths();
    QStringList dataDirs = qEnvironmentVariable("XDG_DATA_DIRS").split(QLatin1Char(':'), Qt::SkipEmptyParts);
    if (dataDirs.isEmpty())
        dataDirs = {QStringLiteral("/usr/local/share"), QStringLiteral("/usr/share")};
    for (const QString &dir : std::as_const(dataDirs)) {
        const QString icons = dir + QStringLiteral("/icons");
        if (!searchPaths.contains(icons))
            searchPaths.append(icons);
    }
    QIcon::setThemeSearchPaths(searchPaths);
    // A bare system has no icon theme set; Breeze is a declared dependency.
    if (QIcon::themeName().isEmpty() || QIcon::themeName() == QLatin1String("hicolor"))
        QIcon::setThemeName(QStringLiteral("breeze"));
    if (qEnvironmentVariableIsEmpty("QT_STYLE_OVERRIDE") &&
        QStyleFactory::keys().contains(QStringLiteral("Fusion")) &&
        app.style()->name().compare(QLatin1String("windows"), Qt::CaseInsensitive) == 0)
        app.setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    followPalette();
}

void ZTUi::followPalette()
{
    const QString theme = QIcon::themeName();
    if (theme != QLatin1String("breeze") && theme != QLatin1String("breeze-dark"))
        return;
    const bool dark = QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
    const QString wanted = dark ? QStringLiteral("breeze-dark") : QStringLiteral("breeze");
    if (theme != wanted)
        QIcon::setThemeName(wanted);
}
