#pragma once

#include <QByteArray>
#include <QString>

class HTTPConnection;

// Streams one regular file to a connection, a piece at a time. The file is
// opened once, at construction, so a file replaced while it is being sent is
// still sent whole and consistent.
class HTTPFileResponse {
public:
    HTTPFileResponse(const QString &filePath, HTTPConnection *connection);
    // Takes over a descriptor already open on a regular file of the given length.
    HTTPFileResponse(int descriptor, quint64 length, const QString &filePath, HTTPConnection *connection);
    ~HTTPFileResponse();
    HTTPFileResponse(const HTTPFileResponse &) = delete;
    HTTPFileResponse &operator=(const HTTPFileResponse &) = delete;

    // False when the path could not be opened or is not a regular file
    // (a directory, a device, a pipe, a symbolic link).
    bool isValid() const { return m_fd >= 0; }
    QString filePath() const { return m_filePath; }

    quint64 contentLength() const { return m_contentLength; }
    quint64 offset() const { return m_offset; }
    void setOffset(quint64 offset);
    // Up to length bytes from the offset on, which then moves past them. Empty
    // at the end of the file, or when the file can no longer be read (it shrank).
    QByteArray readDataOfLength(quint64 length);
    // Like readDataOfLength, but the bytes go straight from the file to a
    // non-blocking socket. Returns how many went (maybe fewer than asked when
    // the socket is full), or -1 when the socket failed.
    qint64 sendDataOfLength(int socketDescriptor, quint64 length);
    bool isDone() const { return m_offset >= m_contentLength; }

private:
    QString m_filePath;
    HTTPConnection *m_connection = nullptr;
    int m_fd = -1;
    quint64 m_contentLength = 0;
    quint64 m_offset = 0;
};
