#include "lookup/ZTLookupRun.h"

#include "base/ZTNotificationCenter.h"
#include "lookup/ZTFetcher.h"
#include "model/ZTLookupMerge.h"

#include <QEventLoop>

ZTLookupRun::ZTLookupRun(ZTMediaKind kind, const QList<ZTFetcher *> &fetchers,
                         ZTFetchManager::CoverImages covers)
    : m_kind(kind), m_managers(ZTFetchManager::managersForFetchers(fetchers, covers))
{
}

ZTLookupRun::~ZTLookupRun()
{
    for (const auto &manager : m_managers)
        manager->cancelFetch();
}

QList<QVariantMap> ZTLookupRun::run(const QVariantList &codes)
{
    QList<QVariantMap> items(codes.size());
    QList<QVariantMap> orders(codes.size());
    if (codes.isEmpty() || m_managers.empty())
        return items;

    // A manager reports its codes one by one, in order, so its n-th report
    // belongs to the n-th code.
    std::vector<int> reports(m_managers.size(), 0);
    qsizetype pending = qsizetype(m_managers.size()) * codes.size();
    QEventLoop loop;
    std::vector<ZTObservation> observations;
    for (size_t i = 0; i < m_managers.size(); ++i) {
        observations.emplace_back(QStringLiteral("ZTFetchManagerDoneFetching"), m_managers[i].get(),
                                  [&, i](const ZTNotification &note) {
                                      const int index = reports[i]++;
                                      if (index >= items.size())
                                          return;
                                      const QVariantMap result =
                                          note.userInfo.value(QStringLiteral("itemDict")).toMap();
                                      ZTLookupMerge::transferDataFromSourceDictionary(
                                          m_kind, result, items[index], orders[index],
                                          result.value(QStringLiteral("order"), 0).toInt());
                                      if (--pending == 0)
                                          loop.quit();
                                  });
    }
    for (const auto &manager : m_managers)
        manager->fetchCodes(codes);
    if (pending > 0)
        loop.exec();
    return items;
}
