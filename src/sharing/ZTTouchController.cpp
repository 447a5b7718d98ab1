#include "sharing/ZTTouchController.h"

#include "base/ZTDataExtras.h"
#include "sharing/ZTWebServer.h"
#include "sharing/http/HTTPServer.h"

#include <QDir>
#include <QUrl>

namespace {
const QString s_scanMarker = QStringLiteral("/scan=");
}

ZTTouchController::ZTTouchController(HTTPServicePublisher *publisher)
    : m_webServer(std::make_unique<ZTWebServer>(publisher)),
      m_receivedObservation(QString::fromLatin1(kZFReceivedURLNotification), nullptr,
                            [this](const ZTNotification &note) {
                                receivedURL(note.userInfo.value(QStringLiteral("urlText")).toString());
                            })
{
}

ZTTouchController::~ZTTouchController()
{
    m_webServer->stop();
}

QString ZTTouchController::documentRootPath()
{
    return QDir::tempPath() + QStringLiteral("/ZettaryScan");
}

bool ZTTouchController::startScanChecking(QString *error)
{
    const QString root = documentRootPath();
    QDir().mkpath(root);
    m_webServer->stop();
    m_webServer->handleType(QString::fromLatin1(kZTScanServiceType));
    m_webServer->handleName(ZTWebServer::uniqueServiceName(QStringLiteral("Zettary Scanning")));
    m_webServer->handleDocumentRoot(root);
    return m_webServer->start(error);
}

void ZTTouchController::stopScanChecking()
{
    m_webServer->stop();
}

QString ZTTouchController::codeFromURLText(const QString &urlText)
{
    if (!urlText.contains(s_scanMarker))
        return {};
    const QString decoded = QUrl::fromPercentEncoding(urlText.toUtf8());
    const qsizetype at = decoded.indexOf(s_scanMarker);
    if (at < 0)
        return {};
    const QByteArray token = decoded.mid(at + s_scanMarker.size()).toLatin1();
    const QByteArray bytes = ZTData::decodeBase64WithNewLines(token, ZTBase64Lines::Unbroken);
    // One character per byte, as the companion sends plain ASCII.
    const QString text = QString::fromLatin1(bytes);
    const qsizetype code = text.indexOf(QLatin1String("code="));
    if (code < 0)
        return {};
    const QString result = text.mid(code + 5);
    return result.trimmed().isEmpty() ? QString() : result;
}

void ZTTouchController::receivedURL(const QString &urlText)
{
    const QString code = codeFromURLText(urlText);
    if (!code.isEmpty())
        ZTNotificationCenter::defaultCenter().post(QString::fromLatin1(kZTTouchScanCompleteNotification),
                                                   nullptr, {{QStringLiteral("code"), code}});
}
