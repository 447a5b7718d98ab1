#include "lookup/ZTPageGetter.h"
#include "ui/ZTUi.h"
#include "ui/app/ZTApplicationController.h"

#include <QApplication>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    ZTUi::setUpApplication(app);
    app.setApplicationVersion(QStringLiteral(ZETTARY_VERSION));
    ZTPageGetter::install();
    ZTApplicationController controller;
    QStringList arguments = app.arguments();
    arguments.removeFirst();
    if (!controller.start(arguments))
        return 0;
    return app.exec();
}
