#include "base/ZTNotificationCenter.h"

ZTNotificationCenter &ZTNotificationCenter::defaultCenter()
{
    static ZTNotificationCenter center;
    return center;
}

ZTNotificationCenter::Token ZTNotificationCenter::addObserver(const QString &name, const void *object,
                                                              Handler handler)
{
    QMutexLocker lock(&m_mutex);
    Token token = m_next++;
    m_entries.push_back({token, name, object, std::move(handler)});
    return token;
}

void ZTNotificationCenter::removeObserver(Token token)
{
    QMutexLocker lock(&m_mutex);
    for (auto it = m_entries.begin(); it != m_entries.end(); ++it) {
        if (it->token == token) {
            m_entries.erase(it);
            return;
        }
    }
}

void ZTNotificationCenter::post(const QString &name, const void *object, const QVariantMap &userInfo)
{
    // Handlers may add or remove observers, so call them outside the lock on a snapshot.
    std::vector<std::pair<Token, Handler>> targets;
    {
        QMutexLocker lock(&m_mutex);
        for (const Entry &e : m_entries) {
            if ((e.name.isEmpty() || e.name == name) && (e.object == nullptr || e.object == object))
                targets.emplace_back(e.token, e.handler);
        }
    }
    ZTNotification note{name, object, userInfo};
    for (auto &[token, handler] : targets) {
        bool stillRegistered = false;
        {
            QMutexLocker lock(&m_mutex);
            for (const Entry &e : m_entries)
                if (e.token == token) {
                    stillRegistered = true;
                    break;
                }
        }
        if (stillRegistered)
            handler(note);
    }
}

ZTObservation::ZTObservation(const QString &name, const void *object, ZTNotificationCenter::Handler handler)
    : m_token(ZTNotificationCenter::defaultCenter().addObserver(name, object, std::move(handler)))
{
}

ZTObservation::~ZTObservation()
{
    if (m_token)
        ZTNotificationCenter::defaultCenter().removeObserver(m_token);
}

ZTObservation::ZTObservation(ZTObservation &&other) noexcept : m_token(other.m_token)
{
    other.m_token = 0;
}

ZTObservation &ZTObservation::operator=(ZTObservation &&other) noexcept
{
    if (this != &other) {
        if (m_token)
            ZTNotificationCenter::defaultCenter().removeObserver(m_token);
        m_token = other.m_token;
        other.m_token = 0;
    }
    return *this;
}
