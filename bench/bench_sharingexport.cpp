// How long the companion waits for a library's package: the whole export of
// a library of a few thousand books (store copy, property lists, one XML file
// per item, search index, zip at level 9), and the package's size.
#include "library/ZTDocument.h"
#include "model/ZTItem.h"
#include "sharing/ZTSharingExportController.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    qputenv("XDG_CACHE_HOME", QFile::encodeName(dir.filePath("cache")));
    for (const int count : {500, 5000}) {
        const QString path = dir.filePath(QStringLiteral("Bench%1.ztbooklib").arg(count));
        ZTDocument::createPackage(path, ZTMediaKind::Book);
        auto document = ZTDocument::create(ZTMediaKind::Book);
        document->readFromURL(path);
        for (int i = 0; i < count; ++i)
            document->addItemFromDictionary(
                {{QStringLiteral("title"), QStringLiteral("Title number %1").arg(i)},
                 {QStringLiteral("authors"), QStringList{QStringLiteral("Author %1").arg(i % 97)}},
                 {QStringLiteral("isbn"), QStringLiteral("978%1").arg(1000000000 + i)},
                 {QStringLiteral("keywords"), QStringList{QStringLiteral("k%1").arg(i % 13)}},
                 {QStringLiteral("notes"),
                  QStringLiteral("Some notes about item %1, a line of text.").arg(i)}});
        document->saveDocument();
        QElapsedTimer timer;
        timer.start();
        const quint64 size = ZTSharingExportController::performExportForURL(
            path, dir.filePath(QStringLiteral("temp")), ZTSharingExportController::sharedDirectoryPath());
        const qint64 ms = timer.elapsed();
        std::printf("export of %d books: %lld ms (%.2f ms/item), zip %llu bytes (%.0f bytes/item)\n", count,
                    static_cast<long long>(ms), double(ms) / count, static_cast<unsigned long long>(size),
                    double(size) / count);
    }
    return 0;
}
