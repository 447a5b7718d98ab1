#pragma once

#include <QList>
#include <QObject>
#include <QRecursiveMutex>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <vector>

class ZTFetcher;

// Walks a list of codes through one group of sites that share a type, in the
// user's order: for each code the first site that does not bail ends the
// search, and "ZTFetchManagerDoneFetching" reports what it found. Groups of
// different types run side by side in managers of their own. The fetchers
// belong to the document and must outlive the manager's run.
class ZTFetchManager : public QObject {
public:
    explicit ZTFetchManager(const QString &type, QObject *parent = nullptr);
    ~ZTFetchManager() override;

    const QString &type() const { return m_type; }
    const QList<ZTFetcher *> &fetchers() const { return m_fetchers; }
    void addFetcher(ZTFetcher *fetcher);
    const QStringList &requestedFetchKeys() const { return m_requestedFetchKeys; }
    void setRequestedFetchKeys(const QStringList &keys) { m_requestedFetchKeys = keys; }

    void fetchCodes(const QVariantList &codes);
    void fetchAtCurrentIndex();
    // Called by the fetchers: a result, or nothing when the site bailed.
    void handleFetchDictionary(const std::optional<QVariantMap> &dictionary, ZTFetcher *fetcher);
    // Cancels every fetcher's transfer; a consumer stops observing first.
    void cancelFetch();

    // Groups fetchers by type, in order, pointing each at its manager. Without
    // cover images the managers ask only for the keys that are no pictures.
    enum class CoverImages { Fetch, Skip };
    static std::vector<std::unique_ptr<ZTFetchManager>>
    managersForFetchers(const QList<ZTFetcher *> &fetchers, CoverImages covers);
    static const QStringList &imageKeys();

private:
    QString m_type;
    QList<ZTFetcher *> m_fetchers;
    QStringList m_requestedFetchKeys;
    int m_fetcherCount = 0;
    int m_fetcherIndex = 0;
    int m_idIndex = 0;
    QVariantList m_codes;
    QList<ZTFetcher *> m_tempFetchers;
    QVariantMap m_dict;
    // The pause before each request turns the event loop, so a second answer
    // can arrive while the first is being posted; on the one thread all of
    // this runs on, a recursive lock keeps that from deadlocking.
    QRecursiveMutex m_lock;
};
