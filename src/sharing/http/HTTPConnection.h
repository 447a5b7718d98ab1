#pragma once

#include "sharing/http/HTTPByteRanges.h"
#include "sharing/http/HTTPDocumentRoot.h"
#include "sharing/http/HTTPMessage.h"
#include "sharing/http/HTTPServer.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QVarLengthArray>

#include <memory>

class HTTPFileResponse;
class QTcpSocket;

// Serves one client: reads request heads line by line, answers each from the
// server's document root, and keeps the connection for the next request until
// either side ends it. Lives and runs on one of the server's queues.
class HTTPConnection : public QObject {
    Q_OBJECT
public:
    static constexpr int kMaxHeaderLineLength = 8190; // including the line end
    static constexpr int kMaxHeaderLines = 100;
    static constexpr qint64 kReadChunkSize = 524288;

    enum class DirectoryPolicy { ServeIndexFile, AllowDirectory };

    HTTPConnection(qintptr socketDescriptor, HTTPServer *server, const HTTPServer::Timeouts &timeouts,
                   QObject *parent);
    ~HTTPConnection() override;

    bool supportsMethod(QByteArrayView method, const QString &path) const;
    bool expectsRequestBodyFromMethod(QByteArrayView method, const QString &path) const;
    std::unique_ptr<HTTPFileResponse> httpResponseForMethod(QByteArrayView method, const QString &uri);
    // The file a request target names under the document root, or empty when
    // there is none or it would lie outside the root.
    QString filePathForURI(const QString &uri, DirectoryPolicy policy);

    // Closes the connection when a time-out has passed; called now and then by its queue.
    void checkTimeouts();
    // Ends the connection at once, without an answer.
    void abortConnection();

private:
    enum class State { ReadingHeader, Writing, Closing, Dead };
    struct BodyPart {
        QByteArray literal;
        quint64 fileOffset = 0;
        quint64 fileRemaining = 0;
    };

    void readRequestHeader();
    void replyToRequest();
    void postReceivedURL();
    bool shouldDie() const;
    void sendErrorResponse(int status, QByteArrayView description, bool close);
    void sendFileResponse(std::unique_ptr<HTTPFileResponse> response, bool headOnly);
    void sendResponse(HTTPMessage &head, bool close);
    using Pieces = QVarLengthArray<QByteArray, 8>;
    static constexpr int kMaxVectors = 64;
    static constexpr qint64 kSendFileMinimum = 65536;
    enum class MoreFollows { No, Yes };

    void writeMore();
    bool sendRound();
    bool sendPieces(const Pieces &pieces, MoreFollows more);
    void onBytesWritten();
    void finishResponse();
    void startReadingHeader();
    void die();
    QString logPrefix() const;
    QString requestDescription() const;
    HTTPDocumentRoot::File openFileForURI(const QString &uri, DirectoryPolicy policy,
                                          bool lookedAgain = false);

    HTTPServer *m_server;
    HTTPServer::Timeouts m_timeouts;
    QTcpSocket *m_socket = nullptr;
    State m_state = State::ReadingHeader;
    HTTPMessage m_request;
    int m_numHeaderLines = 0;
    bool m_inReadLoop = false;
    bool m_inWrite = false;
    bool m_closeAfterResponse = false;

    std::unique_ptr<HTTPFileResponse> m_response;
    QList<BodyPart> m_parts;
    qsizetype m_partIndex = 0;
    qint64 m_bytesQueued = 0;
    qint64 m_headEnd = 0;

    qint64 m_readDeadline = 0;  // monotonic ms; 0 when not reading a header
    qint64 m_writeDeadline = 0; // monotonic ms; 0 once the head has gone out
};
