// Opening and saving a large library: prints how long a 100,000-book library
// takes to open (every row in memory, oid table complete), how much memory it
// holds, and how long a save after changing one item takes.
#include "library/ZTDocument.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"
#include "store/ZTManagedObjectContext.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <cstdio>

static long residentKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLong();
    return -1;
}

static int measure(const QString &path);

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    // The opening is measured in a process of its own, so that memory and caches
    // left by building the library do not count.
    if (argc > 2 && QByteArray(argv[1]) == "--open")
        return measure(QString::fromLocal8Bit(argv[2]));
    const int count = argc > 1 ? atoi(argv[1]) : 100000;
    const int covers = qMin(1000, count);
    // BENCH_LIBRARY_DIR keeps the library for later runs (and profilers).
    QTemporaryDir dir;
    const QString folder = qEnvironmentVariableIsSet("BENCH_LIBRARY_DIR") ? qEnvironmentVariable("BENCH_LIBRARY_DIR")
                                                                          : dir.path();
    const QString path = folder + QStringLiteral("/bench.ztbooklib");
    qputenv("ZETTARY_SETTINGS_FILE", (folder + QStringLiteral("/settings.conf")).toUtf8());
    if (!ZTDocument::createPackage(path, ZTMediaKind::Book)) {
        fprintf(stderr, "cannot create the library\n");
        return 1;
    }
    QByteArray cover;
    {
        QImage image(300, 450, QImage::Format_RGB32);
        image.fill(Qt::darkBlue);
        QBuffer buffer(&cover);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "JPEG");
    }
    QElapsedTimer timer;
    timer.start();
    {
        auto document = ZTDocument::create(ZTMediaKind::Book);
        document->readFromURL(path);
        for (int i = 0; i < count; ++i) {
            ZTItem *item = document->addItemFromDictionary(
                {{QStringLiteral("title"), QStringLiteral("The Book Number %1").arg(i)},
                 {QStringLiteral("authors"), QStringList{QStringLiteral("Author %1").arg(i % 20000),
                                                         QStringLiteral("Second Author %1").arg(i % 3000)}},
                 {QStringLiteral("keywords"), QStringList{QStringLiteral("keyword %1").arg(i % 500),
                                                          QStringLiteral("shelf %1").arg(i % 40)}},
                 {QStringLiteral("isbn"), QStringLiteral("%1").arg(306406152 + i, 10, 10, QLatin1Char('0'))},
                 {QStringLiteral("publisher"), QStringLiteral("Publisher %1").arg(i % 300)},
                 {QStringLiteral("pages"), 100 + i % 900},
                 {QStringLiteral("price"), 5.0 + (i % 50)},
                 {QStringLiteral("datePublished"), QDate(1900 + i % 120, 1 + i % 12, 1 + i % 28)},
                 {QStringLiteral("productDescription"), QStringLiteral("A description of book %1, long enough to "
                                                                       "be like the blurbs shops give.").arg(i)}});
            if (i < covers)
                item->replaceCover({}, cover, {}, QStringLiteral("JPEG"), false);
        }
        document->saveDocument();
    }
    printf("built %d books (%d with covers) in %.1f s\n", count, covers, timer.elapsed() / 1000.0);
    fflush(stdout);
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedChannels);
    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--open"), path});
    child.waitForFinished(-1);
    return child.exitCode();
}

static int measure(const QString &path)
{
    QElapsedTimer timer;
    const long before = residentKilobytes();
    timer.restart();
    auto document = ZTDocument::create(ZTMediaKind::Book);
    if (!document->readFromURL(path)) {
        fprintf(stderr, "cannot open the library\n");
        return 1;
    }
    const qint64 openMs = timer.elapsed();
    const long after = residentKilobytes();
    const int tableSize = int(document->managedObjectContext()->oidObjectDictionary().value(QStringLiteral("ZTBook")).size());
    printf("open: %lld ms, %d items in the oid table\n", openMs, tableSize);
    printf("resident memory: %.1f MB after opening (%.1f MB before)\n", after / 1024.0, before / 1024.0);

    for (int round = 0; round < 5; ++round) {
        ZTItem *item = document->itemForOid(document->mainList()->itemOids().at(round * 17));
        item->takeAttributesFromDictionary({{QStringLiteral("notes"), QStringLiteral("changed %1 at %2").arg(round).arg(QDateTime::currentMSecsSinceEpoch())},
                                            {QStringLiteral("isbn"), item->valueForKey(QStringLiteral("isbn"))}});
        timer.restart();
        document->saveDocument();
        printf("save after changing one item: %.1f ms\n", timer.nsecsElapsed() / 1e6);
    }
    return 0;
}
