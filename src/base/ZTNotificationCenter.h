#pragma once

#include <QMutex>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <vector>

// A process-wide notification centre: observers register for a name and are
// called on the poster's thread, in the order they registered.
struct ZTNotification {
    QString name;
    const void *object = nullptr;
    QVariantMap userInfo;
};

class ZTNotificationCenter {
public:
    using Handler = std::function<void(const ZTNotification &)>;
    using Token = quint64;

    static ZTNotificationCenter &defaultCenter();

    // An empty name observes every notification; a null object observes any poster.
    Token addObserver(const QString &name, const void *object, Handler handler);
    void removeObserver(Token token);

    void post(const QString &name, const void *object = nullptr, const QVariantMap &userInfo = {});

private:
    struct Entry {
        Token token;
        QString name;
        const void *object;
        Handler handler;
    };
    QMutex m_mutex;
    std::vector<Entry> m_entries;
    Token m_next = 1;
};

// Removes its observation when it goes out of scope.
class ZTObservation {
public:
    ZTObservation() = default;
    ZTObservation(const QString &name, const void *object, ZTNotificationCenter::Handler handler);
    ~ZTObservation();
    ZTObservation(ZTObservation &&other) noexcept;
    ZTObservation &operator=(ZTObservation &&other) noexcept;
    ZTObservation(const ZTObservation &) = delete;
    ZTObservation &operator=(const ZTObservation &) = delete;

private:
    ZTNotificationCenter::Token m_token = 0;
};
