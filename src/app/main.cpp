#include "ui/ZTUi.h"

#include <QApplication>
#include <QLabel>

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    ZTUi::setUpApplication(app);
    QLabel label(QStringLiteral("Zettary"));
    label.show();
    return app.exec();
}
