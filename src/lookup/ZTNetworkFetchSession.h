#pragma once

#include "lookup/ZTFetchSession.h"

class QNetworkAccessManager;

// The real session: a QNetworkAccessManager of its own, so cookies live in
// memory for this session only, with no disk cache. Redirects are followed by
// hand, because the fetcher may rewrite where one leads.
class ZTNetworkFetchSession : public ZTFetchSession {
public:
    ZTNetworkFetchSession();
    ~ZTNetworkFetchSession() override;
    ZTFetchTask *startTask(const QNetworkRequest &request, ZTFetchTaskDelegate *delegate) override;

private:
    std::unique_ptr<QNetworkAccessManager> m_manager;
};
