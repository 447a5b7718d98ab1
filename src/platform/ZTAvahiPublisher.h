#pragma once

#include "sharing/http/HTTPServicePublisher.h"

#include <QMutex>
#include <QString>
#include <QWaitCondition>

struct AvahiClient;
struct AvahiEntryGroup;
struct AvahiThreadedPoll;

// Announces a server through the Avahi daemon over D-Bus. Avahi runs its own
// thread; publish returns at once and the registration goes on there. With no
// daemon (or no system bus) nothing is announced, the state says why, and the
// server serves all the same.
class ZTAvahiPublisher : public HTTPServicePublisher {
public:
    enum class State { Idle, Registering, Established, Failed };

    ZTAvahiPublisher();
    ~ZTAvahiPublisher() override;

    void publish(const QString &name, const QString &type, const QString &domain, quint16 port) override;
    void unpublish() override;
    QString publishedName() const override;

    State state() const;
    // Why the service is not announced, when it is not.
    QString errorString() const;
    // Waits until the registration is established or has failed, at most `ms`.
    State waitForRegistration(int ms);

    // Avahi's callbacks; not for callers.
    void clientChanged(AvahiClient *client, int state);
    void groupChanged(AvahiEntryGroup *group, int state);

private:
    void registerService(AvahiClient *client);
    void fail(const QString &message);

    mutable QMutex m_mutex;
    QWaitCondition m_changed;
    AvahiThreadedPoll *m_poll = nullptr;
    AvahiClient *m_client = nullptr;
    AvahiEntryGroup *m_group = nullptr;
    QString m_name;
    QString m_type;
    QString m_domain;
    quint16 m_port = 0;
    State m_state = State::Idle;
    QString m_error;
};
