#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QPair>
#include <QUrl>

// One HTTP/1.x message head. A request is filled line by line as it arrives
// (appendData) and rejects any line that is not well formed; a response is
// built field by field and serialised with messageData. Bodies are not kept
// here: the connection streams them.
class HTTPMessage {
public:
    // An empty request, to be filled with appendData.
    HTTPMessage() = default;
    static HTTPMessage response(int statusCode, QByteArrayView description, QByteArrayView version);

    // Takes one line of the head, with or without its line end. Returns false
    // for a line that is not valid at this point; the message is then useless.
    bool appendData(QByteArrayView line);
    bool isHeaderComplete() const { return m_headerComplete; }
    bool isRequest() const { return m_isRequest; }

    QByteArray version() const { return m_version; }
    QByteArray method() const { return m_method; }
    // The request target exactly as the client sent it (still percent-encoded).
    QByteArray target() const { return m_target; }
    QUrl url() const;
    int statusCode() const { return m_statusCode; }

    // Field names compare without regard to case; the first field of a name wins.
    QByteArray headerField(QByteArrayView name) const;
    bool hasHeaderField(QByteArrayView name) const;
    const QList<QPair<QByteArray, QByteArray>> &allHeaderFields() const { return m_fields; }
    void setHeaderField(QByteArrayView name, QByteArrayView value);

    // The serialised head, ending with the empty line.
    QByteArray messageData() const;

    // The text of a "Date" field for the given moment, always in English and GMT.
    static QByteArray dateString(qint64 secondsSinceEpoch);
    // Without the spaces and tabs that HTTP allows around values.
    static QByteArrayView trimmedWhitespace(QByteArrayView text);

private:
    bool parseRequestLine(QByteArrayView line);
    bool parseHeaderLine(QByteArrayView line);

    bool m_isRequest = true;
    bool m_headerComplete = false;
    QByteArray m_method;
    QByteArray m_target;
    QByteArray m_version;
    int m_statusCode = 0;
    QByteArray m_description;
    QList<QPair<QByteArray, QByteArray>> m_fields;
};
