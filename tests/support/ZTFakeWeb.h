#pragma once

#include "lookup/ZTFetchSession.h"

#include <QHash>
#include <QList>
#include <QStringList>
#include <QUrl>

// Fixture responses served to the fetchers in place of the network. Install()
// makes every fetcher created afterwards use it; the answers arrive from the
// event loop, as real ones do.
class ZTFakeWeb {
public:
    struct Response {
        QList<QByteArray> chunks;
        bool fail = false;
        QUrl redirectTo; // when valid, the request is sent there instead
    };

    static ZTFakeWeb &instance();
    void install();
    void uninstall();
    void clear();

    // url is compared without its fragment.
    void serve(const QString &url, const Response &response);
    void serveBytes(const QString &url, const QByteArray &body, int chunkSize = 4096);
    void serveFixture(const QString &url, const QString &fixture);
    void redirect(const QString &from, const QString &to);
    void failWith(const QString &url);

    // Every URL asked for, redirects included, in order.
    QStringList requested;
    QList<QByteArray> methods;

    const Response *find(const QUrl &url) const;

private:
    QHash<QString, Response> m_responses;
};
