#pragma once

#include <QString>

// Announces a running server on the local network (DNS-SD). The server calls
// publish when it starts listening and unpublish when it stops; an adaptor
// over the system's DNS-SD service implements it, a fake stands in for tests.
class HTTPServicePublisher {
public:
    virtual ~HTTPServicePublisher() = default;
    virtual void publish(const QString &name, const QString &type, const QString &domain, quint16 port) = 0;
    virtual void unpublish() = 0;
    // The name under which the service is known, which the network may have
    // changed to keep it unique; empty while nothing is published.
    virtual QString publishedName() const = 0;
};
