#include "ui/app/ZTSampleLibrary.h"

#include "library/ZTDocument.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTimeZone>

namespace {
const char *s_groups[] = {"books", "music", "movies", "comics"};
const char *s_names[] = {"Sample Books", "Sample Music", "Sample Movies", "Sample Comics"};
} // namespace

QList<QVariantMap> ZTSampleLibrary::entries(ZTMediaKind kind)
{
    QFile file(QStringLiteral(":/sample/sample.json"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonArray array =
        QJsonDocument::fromJson(file.readAll()).object().value(QLatin1String(s_groups[int(kind)])).toArray();
    QList<QVariantMap> result;
    for (const QJsonValue &value : array)
        if (value.isObject()) {
            QVariantMap entry = value.toObject().toVariantMap();
            // JSON has no dates: a year stands for the first of January of it.
            const int year = entry.take(QStringLiteral("year")).toInt();
            if (year > 0)
                entry.insert(QStringLiteral("datePublished"),
                             QDateTime(QDate(year, 1, 1), QTime(12, 0), QTimeZone::utc()));
            result.append(entry);
        }
    return result;
}

bool ZTSampleLibrary::create(const QString &path, ZTMediaKind kind, int count, QString *error)
{
    if (QDir(path).exists(QStringLiteral("data.sql")))
        return true;
    const QList<QVariantMap> titles = entries(kind);
    if (titles.isEmpty()) {
        if (error)
            *error = QStringLiteral("the sample titles are missing");
        return false;
    }
    if (!ZTDocument::createPackage(path, kind, error))
        return false;
    auto document = ZTDocument::create(kind);
    if (!document->readFromURL(path, error))
        return false;
    const int total = count < 0 ? int(titles.size()) : count;
    // Added in reverse so that the first title ends up first in the library.
    for (int i = total - 1; i >= 0; --i) {
        QVariantMap entry = titles[i % titles.size()];
        if (i >= titles.size())
            entry.insert(QStringLiteral("title"), QStringLiteral("%1, vol. %2")
                                                      .arg(entry.value(QStringLiteral("title")).toString())
                                                      .arg(i / titles.size() + 1));
        document->addItemFromDictionary(entry);
    }
    document->updateChangeCount(ZTDocument::ChangeType::Done);
    const bool saved = document->saveDocument(error);
    document->close();
    return saved;
}

QString ZTSampleLibrary::ensureInDataFolder(ZTMediaKind kind, QString *error)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    const QString path = QDir(folder).filePath(QLatin1String(s_names[int(kind)]) + QLatin1Char('.') +
                                               ZTMediaKinds::packageExtension(kind));
    return create(path, kind, -1, error) ? path : QString();
}
