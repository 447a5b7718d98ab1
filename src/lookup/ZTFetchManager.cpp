#include "lookup/ZTFetchManager.h"

#include "base/ZTCollections.h"
#include "base/ZTNotificationCenter.h"
#include "base/ZTStringExtras.h"
#include "lookup/ZTFetcher.h"

namespace {
const QString DoneFetching = QStringLiteral("ZTFetchManagerDoneFetching");
}

ZTFetchManager::ZTFetchManager(const QString &type, QObject *parent) : QObject(parent), m_type(type) {}

// Fetchers point at their manager weakly, so they forget it by themselves.
ZTFetchManager::~ZTFetchManager() = default;

void ZTFetchManager::addFetcher(ZTFetcher *fetcher)
{
    m_fetchers.append(fetcher);
    fetcher->setFetchManager(this);
}

const QStringList &ZTFetchManager::imageKeys()
{
    static const QStringList s_keys = {
        QStringLiteral("imageUrl"),      QStringLiteral("imageUrlSmall"), QStringLiteral("imageUrlMedium"),
        QStringLiteral("imageUrlLarge"), QStringLiteral("image"),         QStringLiteral("imageSmall"),
        QStringLiteral("imageMedium"),   QStringLiteral("imageLarge"),
    };
    return s_keys;
}

std::vector<std::unique_ptr<ZTFetchManager>>
ZTFetchManager::managersForFetchers(const QList<ZTFetcher *> &fetchers, CoverImages covers)
{
    std::vector<std::unique_ptr<ZTFetchManager>> managers;
    for (ZTFetcher *fetcher : fetchers) {
        ZTFetchManager *manager = nullptr;
        for (const auto &candidate : managers) {
            if (candidate->type() == fetcher->type()) {
                manager = candidate.get();
                break;
            }
        }
        if (!manager) {
            managers.push_back(std::make_unique<ZTFetchManager>(fetcher->type()));
            manager = managers.back().get();
        }
        manager->addFetcher(fetcher);
        if (covers == CoverImages::Skip) {
            QStringList keys = manager->requestedFetchKeys();
            for (const QString &key : fetcher->fetchableKeys()) {
                if (!keys.contains(key) && !imageKeys().contains(key))
                    keys.append(key);
            }
            manager->setRequestedFetchKeys(keys);
        }
    }
    return managers;
}

void ZTFetchManager::fetchCodes(const QVariantList &codes)
{
    m_fetcherIndex = 0;
    m_idIndex = 0;
    m_fetcherCount = int(m_fetchers.size());
    m_codes = codes;
    m_tempFetchers = m_fetchers;
    fetchAtCurrentIndex();
}

void ZTFetchManager::fetchAtCurrentIndex()
{
    if (m_idIndex >= m_codes.size())
        return;
    m_dict.clear();
    const QVariantMap code = m_codes.at(m_idIndex).toMap();
    for (auto it = code.constBegin(); it != code.constEnd(); ++it)
        m_dict.insert(QStringLiteral("original") + ZTText::capitalizedFirstLetterString(it.key()),
                      it.value());
    if (m_fetcherIndex >= m_fetchers.size()) {
        // An empty group has nobody to ask; the code is done at once.
        handleFetchDictionary(std::nullopt, nullptr);
        return;
    }
    ZTFetcher *fetcher = m_fetchers.at(m_fetcherIndex);
    fetcher->setRequestedFetchKeys(!m_requestedFetchKeys.isEmpty() ? m_requestedFetchKeys
                                                                   : fetcher->fetchableKeys());
    fetcher->startFetchingWithDictionary(m_dict);
}

void ZTFetchManager::handleFetchDictionary(const std::optional<QVariantMap> &dictionary, ZTFetcher *fetcher)
{
    const bool emptyGroup = !fetcher && m_fetchers.isEmpty() && m_idIndex < m_codes.size();
    if (!fetcher && !emptyGroup)
        return;
    {
        QMutexLocker locker(&m_lock);
        if (dictionary) {
            for (auto it = dictionary->constBegin(); it != dictionary->constEnd(); ++it)
                m_dict.insert(it.key(), it.value());
            m_dict.insert(QStringLiteral("order"), fetcher->order());
        }
        m_tempFetchers.removeOne(fetcher);
        if (!dictionary && !m_tempFetchers.isEmpty()) {
            ++m_fetcherIndex;
        } else {
            QVariantMap info;
            info.insert(QStringLiteral("fetcher"), fetcher ? fetcher->className() : QString());
            info.insert(QStringLiteral("itemDict"), ZTCollections::deepMutableCopy(m_dict));
            info.insert(QStringLiteral("count"), m_fetcherCount);
            ZTNotificationCenter::defaultCenter().post(DoneFetching, this, info);
            ++m_idIndex;
            m_fetcherIndex = 0;
            m_tempFetchers = m_fetchers;
        }
    }
    fetchAtCurrentIndex();
}

void ZTFetchManager::cancelFetch()
{
    for (ZTFetcher *fetcher : std::as_const(m_fetchers))
        fetcher->cancelFetch();
}
