#pragma once

#include <QObject>
#include <QString>
#include <QThread>

#include <functional>

// A serial queue: one thread with its own event loop. Work posted to it runs
// in order on that thread; objects parented to context() live there. The
// server accepts on one queue and serves its connections on a few others, so
// that neither the owner's thread nor a slow client can hold up the rest.
class HTTPQueue {
public:
    explicit HTTPQueue(const QString &name);
    // Runs the queue down if stop() was not called: everything on it is deleted.
    ~HTTPQueue();
    HTTPQueue(const HTTPQueue &) = delete;
    HTTPQueue &operator=(const HTTPQueue &) = delete;

    QObject *context() const { return m_context; }
    bool isCurrent() const { return QThread::currentThread() == &m_thread; }

    // Runs work on the queue later.
    void post(std::function<void()> work);
    // Runs work on the queue and waits for it (at once when already on it).
    void sync(const std::function<void()> &work);
    // Deletes everything living on the queue, on its own thread, and ends the thread.
    void stop();

private:
    QThread m_thread;
    QObject *m_context = nullptr;
};
