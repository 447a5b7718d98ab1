#include "lookup/ZTSiteOverride.h"

#include <QMutex>
#include <QStringList>

namespace {

struct Table {
    QMutex mutex;
    bool loaded = false;
    QHash<QString, QUrl> bases;
};

Table &table()
{
    static Table s_table;
    return s_table;
}

QHash<QString, QUrl> parse(const QString &text)
{
    QHash<QString, QUrl> bases;
    const QStringList entries = text.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString &entry : entries) {
        const qsizetype equals = entry.indexOf(QLatin1Char('='));
        if (equals <= 0)
            continue;
        const QString host = entry.left(equals).trimmed().toLower();
        const QUrl base(entry.mid(equals + 1).trimmed());
        if (!host.isEmpty() && base.isValid() && !base.host().isEmpty())
            bases.insert(host, base);
    }
    return bases;
}

} // namespace

QUrl ZTSiteOverride::overriddenURL(const QUrl &url)
{
    Table &t = table();
    QMutexLocker locker(&t.mutex);
    if (!t.loaded) {
        t.bases = parse(qEnvironmentVariable("ZETTARY_SITE_OVERRIDE"));
        t.loaded = true;
    }
    const auto it = t.bases.constFind(url.host().toLower());
    if (it == t.bases.constEnd())
        return QUrl();
    QUrl result = url;
    result.setScheme(it->scheme());
    result.setHost(it->host());
    result.setPort(it->port());
    QString basePath = it->path();
    if (basePath.endsWith(QLatin1Char('/')))
        basePath.chop(1);
    result.setPath(basePath + url.path());
    return result;
}

void ZTSiteOverride::setOverrides(const QString &text)
{
    Table &t = table();
    QMutexLocker locker(&t.mutex);
    t.bases = parse(text);
    t.loaded = true;
}
