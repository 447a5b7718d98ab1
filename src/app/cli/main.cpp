#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTextStream(stdout) << "zettary-cli\n";
    return 0;
}
