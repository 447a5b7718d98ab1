// How fast a large delimited file comes in and a large library goes out: an
// import of 100,000 rows and a delimited export of 100,000 items, in a real
// library package in a temporary folder. The first argument sets the number of
// rows (100,000 by default).
#include "base/ZTSettings.h"
#include "export/ZTExportController.h"
#include "import/ZTItemImportController.h"
#include "library/ZTDocument.h"
#include "lists/ZTList.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <memory>
#include <vector>

namespace {
// Processor time of this process: on a machine shared with other builds the
// wall clock says more about the neighbours than about the code.
double cpuMs(clockid_t clock = CLOCK_PROCESS_CPUTIME_ID)
{
    timespec t{};
    clock_gettime(clock, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

double threadCpuMs()
{
    return cpuMs(CLOCK_THREAD_CPUTIME_ID);
}

QByteArray makeFile(int rows)
{
    QByteArray text = "Title,Authors,Keywords,Publisher,ISBN,Price,Rating,Date Published,Pages,Notes\n";
    text.reserve(rows * 140);
    for (int i = 0; i < rows; ++i) {
        text += "\"Book " + QByteArray::number(i) + ", a \"\"study\"\"\",";
        text += "Author " + QByteArray::number(i % 5000) + ";Editor " + QByteArray::number(i % 700) + ',';
        text += "kw" + QByteArray::number(i % 50) + ";kw" + QByteArray::number(i % 13) + ',';
        text += "Publisher " + QByteArray::number(i % 300) + ',';
        text += QByteArray::number(9780000000000LL + i) + ',';
        text += '$' + QByteArray::number(i % 90 + 10) + ".99,";
        text += QByteArray::number(i % 6) + ',';
        text += QByteArray::number(i % 12 + 1) + '/' + QByteArray::number(i % 28 + 1) + '/' +
                QByteArray::number(1900 + i % 120) + ',';
        text += QByteArray::number(100 + i % 900) + ",\"line one\nline two\"\n";
    }
    return text;
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    ZTSettings::setFilePath(dir.filePath(QStringLiteral("settings.ini")));
    const int rows = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 100000;
    const QByteArray file = makeFile(rows);
    // ZT_BENCH_ROUNDS=N imports the file N times, each into a new library, and
    // prints the median as well: this machine's speed wanders between runs.
    const int rounds = std::max(1, qEnvironmentVariableIntValue("ZT_BENCH_ROUNDS"));
    std::vector<double> walls;
    std::unique_ptr<ZTDocument> document;
    for (int round = 0; round < rounds; ++round) {
        const QString path = dir.filePath(QStringLiteral("bench%1.ztbooklib").arg(round));
        QString error;
        document = ZTDocument::create(ZTMediaKind::Book);
        if (!ZTDocument::createPackage(path, ZTMediaKind::Book, &error) ||
            !document->readFromURL(path, &error)) {
            std::fprintf(stderr, "cannot make a library: %s\n", qPrintable(error));
            return 1;
        }
        QElapsedTimer timer;
        timer.start();
        const double cpuStart = cpuMs();
        const double threadStart = threadCpuMs();
        ZTItemImportController importer(document.get());
        importer.loadData(file);
        for (int i = 0; i < importer.keyDicts().size(); ++i) {
            const QString title = importer.keyDicts().at(i).fromColumn;
            if (title == QLatin1String("Authors") || title == QLatin1String("Keywords"))
                importer.keyDicts()[i].value = QStringLiteral(";");
        }
        const double parseMs = double(timer.nsecsElapsed()) / 1e6;
        int added = 0;
        importer.save(&added);
        const double importMs = double(timer.nsecsElapsed()) / 1e6;
        const double importCpuMs = cpuMs() - cpuStart;
        const double importThreadMs = threadCpuMs() - threadStart;
        walls.push_back(importMs);
        // Rows are turned into item maps on a helper thread while this one adds
        // the items: the calling thread's CPU time is the critical path, the
        // process's the whole work.
        std::printf(
            "import: %d rows (%.1f MB) read and parsed in %.0f ms, %d items added; total %.0f ms wall, "
            "%.0f ms CPU on the calling thread, %.0f ms CPU in all (%.1f us/row)\n",
            rows, file.size() / 1e6, parseMs, added, importMs, importThreadMs, importCpuMs,
            importCpuMs * 1000 / rows);
        if (round + 1 < rounds)
            continue;
        // The importer's own share: every row made into the map an item takes.
        double rowCpu = cpuMs();
        for (const auto &row : importer.rows()) {
            ZTImportDateBits bits;
            importer.displayDictionaryForRow(row, &bits);
        }
        rowCpu = cpuMs() - rowCpu;
        std::printf("  of which converting rows to item maps: %.0f ms CPU (%.1f us/row), done beside the "
                    "door for new items\n",
                    rowCpu, rowCpu * 1000 / rows);
    }
    if (rounds > 1) {
        std::sort(walls.begin(), walls.end());
        std::printf("import: median of %d rounds %.0f ms wall (fastest %.0f, slowest %.0f)\n", rounds,
                    walls[walls.size() / 2], walls.front(), walls.back());
    }

    // ZT_BENCH_ONLY=import stops here, for profiling the import alone.
    if (qgetenv("ZT_BENCH_ONLY") == "import")
        return 0;
    ZTExportController exporter(document.get());
    exporter.setAttributesToExport(exporter.attributes());
    exporter.setExportFormat(ZTExportController::Format::Comma);
    exporter.setOids(document->mainList()->itemOids());
    for (const auto option : {ZTExportController::MultipleAttributes::SeparateColumns,
                              ZTExportController::MultipleAttributes::SingleColumn}) {
        exporter.setExportMultipleAttributesOption(option);
        exporter.setMultipleDelimiter(QStringLiteral("; "));
        QElapsedTimer timer;
        timer.start();
        const double cpuStart = cpuMs();
        const QString text = exporter.exportString();
        const double exportMs = double(timer.nsecsElapsed()) / 1e6;
        const double exportCpuMs = cpuMs() - cpuStart;
        std::printf("export (%s, %lld columns): %lld items, %.1f MB of text in %.0f ms wall, %.0f ms CPU "
                    "(%.1f us/item)\n",
                    option == ZTExportController::MultipleAttributes::SeparateColumns ? "separate columns"
                                                                                      : "single column",
                    static_cast<long long>(exporter.attributes().size()),
                    static_cast<long long>(exporter.oids().size()), text.size() / 1e6, exportMs, exportCpuMs,
                    exportCpuMs * 1000 / rows);
    }
    return 0;
}
