// Figures of the library window on a generated library of 100,000 books:
// opening the window, reloading the item table, reading the visible rows,
// painting them, a header-click sort and a search keystroke. The table model
// reads the pipeline's oids, so none of these should grow with per-row
// database work.
#include "library/ZTDocument.h"
#include "ui/ZTUi.h"
#include "ui/mainwindow/ZTItemTableModel.h"
#include "ui/mainwindow/ZTLibraryWindow.h"
#include "ui/mainwindow/ZTTableViews.h"

#include <QApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTimeZone>

#include <cstdio>

namespace {
QString word(QRandomGenerator &random, int syllables)
{
    static const char *const parts[] = {"ka", "lo", "mi", "ren", "sta", "vor", "tin", "bel", "dra", "quo"};
    QString w;
    for (int i = 0; i < syllables; ++i)
        w += QLatin1String(parts[random.bounded(10)]);
    w[0] = w[0].toUpper();
    return w;
}

void report(const char *what, QElapsedTimer &timer)
{
    std::printf("%-40s %9.1f ms\n", what, double(timer.nsecsElapsed()) / 1e6);
    timer.restart();
}
} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ZTUi::setUpApplication(app);
    const int count = argc > 1 ? QString::fromLocal8Bit(argv[1]).toInt() : 100000;
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Bench.ztbooklib"));
    QString error;
    auto document = ZTDocument::create(ZTMediaKind::Book);
    if (!ZTDocument::createPackage(path, ZTMediaKind::Book, &error) || !document->readFromURL(path, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 1;
    }
    QRandomGenerator random(20261123);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < count; ++i) {
        QVariantMap d;
        d.insert(QStringLiteral("title"), word(random, 2) + QLatin1Char(' ') + word(random, 3));
        d.insert(QStringLiteral("authors"),
                 QStringList{word(random, 2) + QLatin1Char(' ') + word(random, 3)});
        d.insert(QStringLiteral("genre"), word(random, 2));
        d.insert(QStringLiteral("pages"), 50 + random.bounded(900));
        d.insert(QStringLiteral("rating"), random.bounded(6));
        d.insert(QStringLiteral("datePublished"),
                 QDateTime(QDate(1900 + random.bounded(125), 1, 1), QTime(12, 0), QTimeZone::utc()));
        document->addItemFromDictionary(d);
    }
    std::printf("%d items\n", count);
    report("generate items", timer);

    ZTLibraryWindow window(std::move(document));
    window.setAttribute(Qt::WA_DeleteOnClose, false);
    window.resize(1280, 760);
    window.show();
    report("open window (caches, statistics, views)", timer);

    window.itemModel()->reload();
    report("item table reload", timer);

    ZTItemTableModel *model = window.itemModel();
    int reads = 0;
    for (int row = 0; row < 40; ++row)
        for (int c = 0; c < model->columnCount(); ++c)
            reads += model->data(model->index(row, c), Qt::DisplayRole).isValid() ? 1 : 0;
    report("read 40 visible rows, every column", timer);

    window.itemTable()->viewport()->grab();
    report("paint the visible table", timer);

    const int title = int(model->columns().indexOf(QStringLiteral("title")));
    Q_EMIT window.itemTable()->horizontalHeader()->sectionClicked(title);
    report("header click: sort by title", timer);

    window.itemTable()->viewport()->grab();
    report("paint after the sort", timer);

    window.setSearchText(QStringLiteral("ka"));
    report("search keystroke \"ka\"", timer);
    window.setSearchText(QStringLiteral("kal"));
    report("narrowing keystroke \"kal\"", timer);
    std::printf("%d rows found, %d cells read\n", model->rowCount(), reads);
    return 0;
}
