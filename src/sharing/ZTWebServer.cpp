#include "sharing/ZTWebServer.h"

#include "sharing/http/HTTPServer.h"

#include <QCoreApplication>
#include <QHash>
#include <QUuid>

ZTWebServer::ZTWebServer(HTTPServicePublisher *publisher) : m_webServer(std::make_unique<HTTPServer>())
{
    m_webServer->setPublisher(publisher);
}

ZTWebServer::~ZTWebServer() = default;

void ZTWebServer::handleName(const QString &name)
{
    m_name = name;
    m_webServer->setName(name);
}

void ZTWebServer::handleType(const QString &type)
{
    m_type = type;
    m_webServer->setType(type);
}

void ZTWebServer::handleDocumentRoot(const QString &path)
{
    m_documentRoot = path;
    m_webServer->setDocumentRoot(path);
}

void ZTWebServer::setPort(quint16 port)
{
    m_webServer->setPort(port);
}

bool ZTWebServer::start(QString *error)
{
    m_isStarted = m_webServer->start(error);
    return m_isStarted;
}

void ZTWebServer::stop()
{
    m_webServer->stop();
    m_isStarted = false;
}

quint16 ZTWebServer::listeningPort() const
{
    return m_webServer->listeningPort();
}

QString ZTWebServer::uniqueServiceName(const QString &prefix)
{
    const QString unique =
        QUuid::createUuid().toString() + QString::number(QCoreApplication::applicationPid());
    return QStringLiteral("%1 [%2]").arg(prefix).arg(quint64(qHash(unique)));
}
