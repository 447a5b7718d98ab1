#pragma once

#include "base/ZTNotificationCenter.h"

#include <QString>

#include <memory>

class HTTPServicePublisher;
class ZTWebServer;

inline constexpr char kZTScanServiceType[] = "_zettary2scan._tcp.";
// Posted with no object and {"code": text}, on the thread of the request.
inline constexpr char kZTTouchScanCompleteNotification[] = "ZTTouchScanComplete";

// Lets a handheld act as a barcode scanner: it finds the scan service on the
// network and sends "/scan=<base64 of "code=CODE">" as an ordinary request.
// The server only answers 404 from an empty root; the request's target is
// what matters.
class ZTTouchController {
public:
    explicit ZTTouchController(HTTPServicePublisher *publisher = nullptr);
    ~ZTTouchController();

    bool startScanChecking(QString *error = nullptr);
    void stopScanChecking();
    void receivedURL(const QString &urlText);
    // The code a scan request's target carries, or empty when it carries none.
    static QString codeFromURLText(const QString &urlText);
    static QString documentRootPath();

    ZTWebServer &webServer() { return *m_webServer; }

private:
    std::unique_ptr<ZTWebServer> m_webServer;
    ZTObservation m_receivedObservation;
};
