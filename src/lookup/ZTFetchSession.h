#pragma once

#include <QByteArray>
#include <QNetworkRequest>
#include <QObject>

#include <functional>
#include <memory>

class ZTFetchTask;

// What a running request tells the one who started it. Every call arrives on
// the thread that started the task, never from inside startTask() itself.
class ZTFetchTaskDelegate {
public:
    virtual ~ZTFetchTaskDelegate() = default;
    virtual void taskDidReceiveResponse(ZTFetchTask *task) = 0;
    virtual void taskDidReceiveData(ZTFetchTask *task, const QByteArray &chunk) = 0;
    // The server sent the request elsewhere; the answer is the request to go on with.
    virtual QNetworkRequest taskWillPerformRedirection(ZTFetchTask *task, const QNetworkRequest &request) = 0;
    // The transfer is over; failed covers transport errors, cancellation and
    // redirect loops. HTTP status codes are no failure.
    virtual void taskDidComplete(ZTFetchTask *task, bool failed) = 0;
};

// One request in flight. The session deletes it (later) once it has completed.
class ZTFetchTask : public QObject {
public:
    using QObject::QObject;
    // Stops the transfer; the delegate still hears a failed completion, later.
    virtual void cancel() = 0;
};

// The HTTP session of one fetcher: the seam between the fetchers and the
// network, so that tests can serve fixture pages without one.
class ZTFetchSession {
public:
    virtual ~ZTFetchSession() = default;
    // Starts the request at once; the delegate must outlive the task or cancel it.
    virtual ZTFetchTask *startTask(const QNetworkRequest &request, ZTFetchTaskDelegate *delegate) = 0;

    // Redirects a single request may take before it fails; loops end here.
    static constexpr int s_maxRedirects = 16;

    using Factory = std::function<std::unique_ptr<ZTFetchSession>()>;
    // Sessions of fetchers created from now on come from factory; an empty
    // factory restores the network session.
    static void setFactory(Factory factory);
    static std::unique_ptr<ZTFetchSession> create();
};
