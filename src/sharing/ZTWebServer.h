#pragma once

#include <QString>

#include <memory>

class HTTPServer;
class HTTPServicePublisher;

// The sharing and scan services' hold on the HTTP server: it keeps the name,
// type and root they choose and whether the last start succeeded.
class ZTWebServer {
public:
    explicit ZTWebServer(HTTPServicePublisher *publisher = nullptr);
    ~ZTWebServer();

    void handleName(const QString &name);
    void handleType(const QString &type);
    void handleDocumentRoot(const QString &path);
    // 0 (the default) lets the system choose.
    void setPort(quint16 port);
    bool start(QString *error = nullptr);
    void stop();
    bool isStarted() const { return m_isStarted; }

    QString name() const { return m_name; }
    QString type() const { return m_type; }
    QString documentRoot() const { return m_documentRoot; }
    quint16 listeningPort() const;
    HTTPServer &webServer() { return *m_webServer; }

    // "<prefix> [<decimal hash of a string unique to this call>]": every start
    // of a service gets a new name.
    static QString uniqueServiceName(const QString &prefix);

private:
    std::unique_ptr<HTTPServer> m_webServer;
    bool m_isStarted = false;
    QString m_name;
    QString m_type;
    QString m_documentRoot;
};
