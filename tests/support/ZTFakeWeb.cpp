#include "support/ZTFakeWeb.h"

#include "support/ZTTestSupport.h"

#include <QFile>
#include <QPointer>
#include <QTimer>

namespace {

QString keyFor(const QUrl &url)
{
    return url.adjusted(QUrl::RemoveFragment).toString();
}

class FakeTask : public ZTFetchTask {
public:
    FakeTask(QNetworkRequest request, ZTFetchTaskDelegate *delegate)
        : m_request(std::move(request)), m_delegate(delegate)
    {
        QTimer::singleShot(0, this, [this] { run(); });
    }

    void cancel() override
    {
        if (m_done)
            return;
        m_done = true;
        QTimer::singleShot(0, this, [this] {
            m_delegate->taskDidComplete(this, true);
            deleteLater();
        });
    }

private:
    void run()
    {
        if (m_done)
            return;
        ZTFakeWeb &web = ZTFakeWeb::instance();
        QNetworkRequest request = m_request;
        for (int redirects = 0;; ++redirects) {
            web.requested << keyFor(request.url());
            web.methods << request.attribute(QNetworkRequest::CustomVerbAttribute, QByteArrayLiteral("GET"))
                               .toByteArray();
            const ZTFakeWeb::Response *response = web.find(request.url());
            if (!response || response->fail)
                return finish(true);
            if (!response->redirectTo.isValid()) {
                m_delegate->taskDidReceiveResponse(this);
                for (const QByteArray &chunk : response->chunks) {
                    if (m_done)
                        return;
                    m_delegate->taskDidReceiveData(this, chunk);
                }
                return finish(false);
            }
            if (redirects >= ZTFetchSession::s_maxRedirects)
                return finish(true);
            QNetworkRequest next = request;
            next.setUrl(request.url().resolved(response->redirectTo));
            request = m_delegate->taskWillPerformRedirection(this, next);
            if (m_done)
                return;
        }
    }

    void finish(bool failed)
    {
        if (m_done)
            return;
        m_done = true;
        m_delegate->taskDidComplete(this, failed);
        deleteLater();
    }

    QNetworkRequest m_request;
    ZTFetchTaskDelegate *m_delegate;
    bool m_done = false;
};

class FakeSession : public ZTFetchSession {
public:
    ZTFetchTask *startTask(const QNetworkRequest &request, ZTFetchTaskDelegate *delegate) override
    {
        return new FakeTask(request, delegate);
    }
};

} // namespace

ZTFakeWeb &ZTFakeWeb::instance()
{
    static ZTFakeWeb s_web;
    return s_web;
}

void ZTFakeWeb::install()
{
    ZTFetchSession::setFactory([] { return std::make_unique<FakeSession>(); });
}

void ZTFakeWeb::uninstall()
{
    ZTFetchSession::setFactory({});
}

void ZTFakeWeb::clear()
{
    m_responses.clear();
    requested.clear();
    methods.clear();
}

void ZTFakeWeb::serve(const QString &url, const Response &response)
{
    m_responses.insert(keyFor(QUrl(url)), response);
}

void ZTFakeWeb::serveBytes(const QString &url, const QByteArray &body, int chunkSize)
{
    Response response;
    for (qsizetype i = 0; i < body.size(); i += chunkSize)
        response.chunks << body.mid(i, chunkSize);
    serve(url, response);
}

void ZTFakeWeb::serveFixture(const QString &url, const QString &fixture)
{
    QFile file(ZTTestSupport::fixturePath(fixture));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing fixture %s", qPrintable(fixture));
    serveBytes(url, file.readAll());
}

void ZTFakeWeb::redirect(const QString &from, const QString &to)
{
    Response response;
    response.redirectTo = QUrl(to);
    serve(from, response);
}

void ZTFakeWeb::failWith(const QString &url)
{
    Response response;
    response.fail = true;
    serve(url, response);
}

const ZTFakeWeb::Response *ZTFakeWeb::find(const QUrl &url) const
{
    const auto it = m_responses.constFind(keyFor(url));
    return it == m_responses.constEnd() ? nullptr : &*it;
}
