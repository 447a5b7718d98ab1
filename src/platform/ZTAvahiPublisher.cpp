#include "platform/ZTAvahiPublisher.h"

#include <avahi-client/client.h>
#include <avahi-client/publish.h>
#include <avahi-common/alternative.h>
#include <avahi-common/error.h>
#include <avahi-common/malloc.h>
#include <avahi-common/thread-watch.h>

#include <QDeadlineTimer>

namespace {
// DNS-SD names end in a dot ("_zettary2._tcp.", "local."); Avahi wants them without.
QByteArray withoutFinalDot(const QString &text)
{
    QByteArray bytes = text.toUtf8();
    if (bytes.endsWith('.'))
        bytes.chop(1);
    return bytes;
}

void clientCallback(AvahiClient *client, AvahiClientState state, void *context)
{
    static_cast<ZTAvahiPublisher *>(context)->clientChanged(client, int(state));
}

void groupCallback(AvahiEntryGroup *group, AvahiEntryGroupState state, void *context)
{
    static_cast<ZTAvahiPublisher *>(context)->groupChanged(group, int(state));
}
} // namespace

ZTAvahiPublisher::ZTAvahiPublisher() = default;

ZTAvahiPublisher::~ZTAvahiPublisher()
{
    unpublish();
}

void ZTAvahiPublisher::publish(const QString &name, const QString &type, const QString &domain, quint16 port)
{
    unpublish();
    {
        QMutexLocker lock(&m_mutex);
        m_name = name;
        m_type = type;
        m_domain = domain;
        m_port = port;
        m_state = State::Registering;
        m_error.clear();
    }
    m_poll = avahi_threaded_poll_new();
    if (!m_poll) {
        fail(QStringLiteral("cannot start the DNS-SD thread"));
        return;
    }
    int error = 0;
    // Callbacks may come from within avahi_client_new, before the thread runs,
    // and from the thread afterwards; both take the mutex.
    m_client =
        avahi_client_new(avahi_threaded_poll_get(m_poll), AvahiClientFlags(0), clientCallback, this, &error);
    if (!m_client) {
        fail(QStringLiteral("no DNS-SD service (Avahi: %1)").arg(QString::fromUtf8(avahi_strerror(error))));
        avahi_threaded_poll_free(m_poll);
        m_poll = nullptr;
        return;
    }
    avahi_threaded_poll_start(m_poll);
}

void ZTAvahiPublisher::clientChanged(AvahiClient *client, int state)
{
    switch (AvahiClientState(state)) {
    case AVAHI_CLIENT_S_RUNNING:
        registerService(client);
        break;
    case AVAHI_CLIENT_S_COLLISION:
    case AVAHI_CLIENT_S_REGISTERING:
        if (m_group)
            avahi_entry_group_reset(m_group);
        break;
    case AVAHI_CLIENT_FAILURE:
        fail(QStringLiteral("the DNS-SD service failed (Avahi: %1)")
                 .arg(QString::fromUtf8(avahi_strerror(avahi_client_errno(client)))));
        break;
    case AVAHI_CLIENT_CONNECTING:
        break;
    }
}

void ZTAvahiPublisher::registerService(AvahiClient *client)
{
    if (!m_group)
        m_group = avahi_entry_group_new(client, groupCallback, this);
    if (!m_group) {
        fail(QString::fromUtf8(avahi_strerror(avahi_client_errno(client))));
        return;
    }
    if (!avahi_entry_group_is_empty(m_group))
        return;
    QByteArray name, type, domain;
    quint16 port;
    {
        QMutexLocker lock(&m_mutex);
        name = m_name.toUtf8();
        type = withoutFinalDot(m_type);
        domain = withoutFinalDot(m_domain);
        port = m_port;
    }
    const int rc = avahi_entry_group_add_service(
        m_group, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, AvahiPublishFlags(0), name.constData(),
        type.constData(), domain.isEmpty() ? nullptr : domain.constData(), nullptr, port, nullptr);
    if (rc == AVAHI_ERR_COLLISION) {
        groupChanged(m_group, AVAHI_ENTRY_GROUP_COLLISION);
        return;
    }
    if (rc < 0 || avahi_entry_group_commit(m_group) < 0)
        fail(QStringLiteral("cannot announce the service (Avahi: %1)")
                 .arg(QString::fromUtf8(avahi_strerror(rc < 0 ? rc : avahi_client_errno(client)))));
}

void ZTAvahiPublisher::groupChanged(AvahiEntryGroup *group, int state)
{
    switch (AvahiEntryGroupState(state)) {
    case AVAHI_ENTRY_GROUP_ESTABLISHED: {
        QMutexLocker lock(&m_mutex);
        m_state = State::Established;
        m_changed.wakeAll();
        break;
    }
    case AVAHI_ENTRY_GROUP_COLLISION: {
        // Another host has the name: take the next one the network offers.
        {
            QMutexLocker lock(&m_mutex);
            char *next = avahi_alternative_service_name(m_name.toUtf8().constData());
            m_name = QString::fromUtf8(next);
            avahi_free(next);
        }
        avahi_entry_group_reset(group);
        registerService(avahi_entry_group_get_client(group));
        break;
    }
    case AVAHI_ENTRY_GROUP_FAILURE:
        fail(QString::fromUtf8(avahi_strerror(avahi_client_errno(avahi_entry_group_get_client(group)))));
        break;
    case AVAHI_ENTRY_GROUP_UNCOMMITED:
    case AVAHI_ENTRY_GROUP_REGISTERING:
        break;
    }
}

void ZTAvahiPublisher::fail(const QString &message)
{
    QMutexLocker lock(&m_mutex);
    m_state = State::Failed;
    m_error = message;
    m_changed.wakeAll();
}

void ZTAvahiPublisher::unpublish()
{
    if (m_poll)
        avahi_threaded_poll_stop(m_poll);
    if (m_client)
        avahi_client_free(m_client); // frees the group too
    if (m_poll)
        avahi_threaded_poll_free(m_poll);
    m_client = nullptr;
    m_group = nullptr;
    m_poll = nullptr;
    QMutexLocker lock(&m_mutex);
    if (m_state != State::Failed)
        m_state = State::Idle;
}

QString ZTAvahiPublisher::publishedName() const
{
    QMutexLocker lock(&m_mutex);
    return m_state == State::Established ? m_name : QString();
}

ZTAvahiPublisher::State ZTAvahiPublisher::state() const
{
    QMutexLocker lock(&m_mutex);
    return m_state;
}

QString ZTAvahiPublisher::errorString() const
{
    QMutexLocker lock(&m_mutex);
    return m_error;
}

ZTAvahiPublisher::State ZTAvahiPublisher::waitForRegistration(int ms)
{
    QDeadlineTimer deadline(ms);
    QMutexLocker lock(&m_mutex);
    while (m_state == State::Registering)
        if (!m_changed.wait(&m_mutex, deadline))
            break;
    return m_state;
}
