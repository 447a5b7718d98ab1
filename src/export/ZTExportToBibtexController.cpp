#include "export/ZTExportToBibtexController.h"

#include "export/ZTBookCitation.h"
#include "model/ZTBook.h"

#include <QCoreApplication>
#include <QHash>

QString ZTExportToBibtexController::title() const
{
    return QCoreApplication::translate("Localizable", "BibTeX");
}

namespace {
// "a" … "z", "aa" … : the suffix of the nth repeat of a key.
QString suffix(int n)
{
    QString letters;
    for (--n; n >= 0; n = n / 26 - 1)
        letters.prepend(QChar(u'a' + n % 26));
    return letters;
}
} // namespace

QString ZTExportToBibtexController::exportString()
{
    QString text;
    QHash<QString, int> used;
    for (const ZTItem *item : itemsToExport()) {
        const auto *book = dynamic_cast<const ZTBook *>(item);
        if (!book)
            continue;
        QString record = ZTBookCitation::formatBibtex(*book);
        const QString key = ZTBookCitation::bibtexKey(*book);
        int &repeats = used[key];
        if (repeats > 0) {
            const QString head = QStringLiteral("@book {") + key;
            record.replace(0, head.size(), head + suffix(repeats));
        }
        ++repeats;
        text += record;
    }
    return text;
}
