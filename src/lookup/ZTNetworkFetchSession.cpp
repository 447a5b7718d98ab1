#include "lookup/ZTNetworkFetchSession.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>
#include <QTimer>

namespace {

ZTFetchSession::Factory &factoryStore()
{
    static ZTFetchSession::Factory s_factory;
    return s_factory;
}

bool isRedirect(QNetworkReply *reply)
{
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    return status >= 300 && status < 400 && reply->hasRawHeader("Location");
}

class ZTNetworkFetchTask : public ZTFetchTask {
public:
    ZTNetworkFetchTask(QNetworkAccessManager *manager, ZTFetchTaskDelegate *delegate)
        : ZTFetchTask(manager), m_manager(manager), m_delegate(delegate)
    {
    }

    void start(QNetworkRequest request)
    {
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
        request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
        request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
        // Fetchers set no time-out of their own; this is the HTTP layer's
        // customary minute, so that a silent server cannot hold a lookup forever.
        if (request.transferTimeout() == 0)
            request.setTransferTimeout(60000);
        m_request = request;
        m_responseSent = false;
        m_reply = m_manager->get(request);
        connect(m_reply, &QNetworkReply::readyRead, this, [this] { readChunk(); });
        connect(m_reply, &QNetworkReply::finished, this, [this] { finished(); });
    }

    void cancel() override
    {
        if (m_done)
            return;
        m_done = true;
        dropReply();
        // The delegate hears of it later, as it would of any failed transfer.
        QTimer::singleShot(0, this, [this] {
            m_delegate->taskDidComplete(this, true);
            deleteLater();
        });
    }

private:
    void dropReply()
    {
        if (!m_reply)
            return;
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
        m_reply = nullptr;
    }

    void readChunk()
    {
        if (m_done || !m_reply || isRedirect(m_reply)) {
            if (m_reply)
                m_reply->readAll();
            return;
        }
        sendResponse();
        const QByteArray chunk = m_reply->readAll();
        if (!chunk.isEmpty())
            m_delegate->taskDidReceiveData(this, chunk);
    }

    void sendResponse()
    {
        if (!m_responseSent) {
            m_responseSent = true;
            m_delegate->taskDidReceiveResponse(this);
        }
    }

    void finished()
    {
        if (m_done || !m_reply)
            return;
        QNetworkReply *reply = m_reply;
        if (isRedirect(reply)) {
            const QUrl target = reply->url().resolved(QUrl::fromEncoded(reply->rawHeader("Location")));
            dropReply();
            if (++m_redirects > ZTFetchSession::s_maxRedirects || !target.isValid()) {
                complete(true);
                return;
            }
            QNetworkRequest next = m_request;
            next.setUrl(target);
            next = m_delegate->taskWillPerformRedirection(this, next);
            if (m_done)
                return;
            start(next);
            return;
        }
        readChunk();
        if (m_done)
            return;
        // A page that came back with any HTTP status is a page; only a
        // transfer that produced no response at all has failed.
        const bool failed = reply->error() != QNetworkReply::NoError &&
                            !reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
        if (!failed)
            sendResponse();
        reply->disconnect(this);
        reply->deleteLater();
        m_reply = nullptr;
        complete(failed);
    }

    void complete(bool failed)
    {
        m_done = true;
        m_delegate->taskDidComplete(this, failed);
        deleteLater();
    }

    QNetworkAccessManager *m_manager;
    ZTFetchTaskDelegate *m_delegate;
    QNetworkRequest m_request;
    QNetworkReply *m_reply = nullptr;
    int m_redirects = 0;
    bool m_responseSent = false;
    bool m_done = false;
};

} // namespace

void ZTFetchSession::setFactory(Factory factory)
{
    factoryStore() = std::move(factory);
}

std::unique_ptr<ZTFetchSession> ZTFetchSession::create()
{
    if (factoryStore())
        return factoryStore()();
    return std::make_unique<ZTNetworkFetchSession>();
}

ZTNetworkFetchSession::ZTNetworkFetchSession() : m_manager(std::make_unique<QNetworkAccessManager>())
{
    // Qt's default jar keeps cookies in memory only and no cache is set, which
    // is the ephemeral session the sites expect.
    m_manager->setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

ZTNetworkFetchSession::~ZTNetworkFetchSession() = default;

ZTFetchTask *ZTNetworkFetchSession::startTask(const QNetworkRequest &request, ZTFetchTaskDelegate *delegate)
{
    auto *task = new ZTNetworkFetchTask(m_manager.get(), delegate);
    task->start(request);
    return task;
}
