#include "base/ZTHelperThread.h"

#include <QThreadPool>

#include <future>

namespace {
thread_local bool t_onHelper = false;

QThreadPool &helperPool()
{
    static QThreadPool pool;
    static const bool configured = [] {
        pool.setMaxThreadCount(1);
        // The helper's memos are the point of keeping it: it never retires.
        pool.setExpiryTimeout(-1);
        return true;
    }();
    Q_UNUSED(configured)
    return pool;
}
} // namespace

void ZTHelperThread::runSideBySide(const std::function<void()> &here, const std::function<void()> &there)
{
    if (t_onHelper) {
        here();
        there();
        return;
    }
    std::promise<void> done;
    std::future<void> finished = done.get_future();
    helperPool().start([&] {
        t_onHelper = true;
        there();
        t_onHelper = false;
        done.set_value();
    });
    here();
    finished.wait();
}
