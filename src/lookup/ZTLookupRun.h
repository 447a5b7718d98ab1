#pragma once

#include "lookup/ZTFetchManager.h"
#include "model/ZTMediaKind.h"

#include <QList>
#include <QVariantMap>

class ZTFetcher;

// Looks a list of codes up with a library's sites and merges what the site
// groups answer into one item dictionary per code, the user's site order
// deciding each attribute. Blocks the caller while the event loop turns; for
// the command line and for consumers that wait for the whole answer.
class ZTLookupRun {
public:
    ZTLookupRun(ZTMediaKind kind, const QList<ZTFetcher *> &fetchers, ZTFetchManager::CoverImages covers);
    ~ZTLookupRun();

    // One dictionary per code, in order; a code no site knew gives an empty one.
    QList<QVariantMap> run(const QVariantList &codes);

private:
    ZTMediaKind m_kind;
    std::vector<std::unique_ptr<ZTFetchManager>> m_managers;
};
