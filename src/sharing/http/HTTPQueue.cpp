#include "sharing/http/HTTPQueue.h"

#include <QMetaObject>

HTTPQueue::HTTPQueue(const QString &name)
{
    m_thread.setObjectName(name);
    m_context = new QObject;
    m_context->moveToThread(&m_thread);
    m_thread.start();
}

HTTPQueue::~HTTPQueue()
{
    stop();
}

void HTTPQueue::post(std::function<void()> work)
{
    QMetaObject::invokeMethod(m_context, std::move(work), Qt::QueuedConnection);
}

void HTTPQueue::sync(const std::function<void()> &work)
{
    if (isCurrent())
        work();
    else
        QMetaObject::invokeMethod(m_context, work, Qt::BlockingQueuedConnection);
}

void HTTPQueue::stop()
{
    if (!m_context)
        return;
    // Work posted earlier runs first; then the children (sockets, timers) are
    // destroyed on the thread that owns their notifiers.
    QObject *context = m_context;
    m_context = nullptr;
    QMetaObject::invokeMethod(
        context, [context] { delete context; }, Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}
