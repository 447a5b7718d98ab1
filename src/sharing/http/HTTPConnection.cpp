#include "sharing/http/HTTPConnection.h"

#include "base/ZTLog.h"
#include "base/ZTNotificationCenter.h"
#include "sharing/http/HTTPFileResponse.h"

#include <QDateTime>
#include <QDir>
#include <QMimeDatabase>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QUrl>

#include <cerrno>
#include <chrono>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

qint64 nowMs()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

// Formatting a date costs more than the rest of a small answer, and it changes
// once a second.
QByteArray currentDateString()
{
    thread_local qint64 s_second = -1;
    thread_local QByteArray s_text;
    const qint64 second = QDateTime::currentSecsSinceEpoch();
    if (second != s_second) {
        s_second = second;
        s_text = HTTPMessage::dateString(second);
    }
    return s_text;
}

// The path of a request target: origin form ("/a/b?q") or absolute form
// ("http://host/a/b"), without query and fragment, still percent-encoded.
QByteArray targetPath(QByteArray target)
{
    const qsizetype end = target.indexOf('?');
    if (end >= 0)
        target.truncate(end);
    const qsizetype hash = target.indexOf('#');
    if (hash >= 0)
        target.truncate(hash);
    const qsizetype scheme = target.indexOf("://");
    if (scheme > 0 && !target.startsWith('/')) {
        const qsizetype slash = target.indexOf('/', scheme + 3);
        return slash < 0 ? QByteArray("/") : target.mid(slash);
    }
    return target;
}

const QString &receivedURLName()
{
    static const QString s_name = QString::fromLatin1(kZFReceivedURLNotification);
    return s_name;
}

const QString &didDieName()
{
    static const QString s_name = QString::fromLatin1(kHTTPConnectionDidDieNotification);
    return s_name;
}
} // namespace

HTTPConnection::HTTPConnection(qintptr socketDescriptor, HTTPServer *server,
                               const HTTPServer::Timeouts &timeouts, QObject *parent)
    : QObject(parent), m_server(server), m_timeouts(timeouts)
{
    m_server->addConnection(this);
    m_socket = new QTcpSocket(this);
    if (!m_socket->setSocketDescriptor(socketDescriptor)) {
        ::close(int(socketDescriptor));
        die();
        return;
    }
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    // Room for two of the longest lines: a client that floods us while we
    // answer is held back by TCP instead of filling memory.
    m_socket->setReadBufferSize(2 * kMaxHeaderLineLength);
    connect(m_socket, &QTcpSocket::readyRead, this, &HTTPConnection::readRequestHeader);
    connect(m_socket, &QTcpSocket::bytesWritten, this, &HTTPConnection::onBytesWritten);
    connect(m_socket, &QTcpSocket::disconnected, this, &HTTPConnection::die);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &HTTPConnection::abortConnection);
    startReadingHeader();
}

HTTPConnection::~HTTPConnection()
{
    // Destroyed with its queue while still open: the server must forget it all the same.
    if (m_state != State::Dead)
        ZTNotificationCenter::defaultCenter().post(didDieName(), this);
}

bool HTTPConnection::supportsMethod(QByteArrayView method, const QString &) const
{
    return method == "GET" || method == "HEAD";
}

bool HTTPConnection::expectsRequestBodyFromMethod(QByteArrayView method, const QString &) const
{
    return method == "POST" || method == "PUT";
}

QString HTTPConnection::logPrefix() const
{
    return QStringLiteral("HTTPConnection[0x%1]").arg(quintptr(this), 0, 16);
}

QString HTTPConnection::requestDescription() const
{
    if (!m_request.target().isEmpty())
        return QString::fromUtf8(m_request.target());
    return QStringLiteral("%1:%2").arg(m_socket->peerAddress().toString()).arg(m_socket->peerPort());
}

HTTPDocumentRoot::File HTTPConnection::openFileForURI(const QString &uri, DirectoryPolicy policy,
                                                      bool lookedAgain)
{
    using File = HTTPDocumentRoot::File;
    const std::shared_ptr<const HTTPDocumentRoot> root = m_server->resolvedDocumentRoot();
    if (root->path().isEmpty()) {
        ZTLog::warning(kHTTPLogContext, QStringLiteral("%1: No configured document root").arg(logPrefix()));
        return File();
    }
    if (!root->isValid()) {
        ZTLog::warning(kHTTPLogContext,
                       QStringLiteral("%1: Document root is invalid file path").arg(logPrefix()));
        return File();
    }
    const QByteArray encodedPath = targetPath(uri.toUtf8());
    if (!encodedPath.startsWith('/'))
        return File();
    const QByteArray decoded = QByteArray::fromPercentEncoding(encodedPath);
    if (decoded.contains('\0'))
        return File();
    // First by the text alone; symbolic links are then kept in by the root.
    const QString lexical = QDir::cleanPath(QLatin1Char('/') + QString::fromUtf8(decoded));
    if (lexical.startsWith(QLatin1String("/.."))) {
        ZTLog::warning(kHTTPLogContext,
                       QStringLiteral("%1: Request for file outside document root").arg(logPrefix()));
        return File();
    }
    const QString relative = lexical.mid(1);
    File file = root->open(relative);
    if (file.status == HTTPDocumentRoot::Status::Missing && !lookedAgain && !root->isCurrent()) {
        // The folder was replaced since it was opened: look again in the new one.
        m_server->forgetDocumentRoot(root);
        return openFileForURI(uri, policy, true);
    }
    if (file.status == HTTPDocumentRoot::Status::Outside)
        ZTLog::warning(kHTTPLogContext,
                       QStringLiteral("%1: Request for file outside document root").arg(logPrefix()));
    if (file.status != HTTPDocumentRoot::Status::Opened || !file.isDirectory ||
        policy == DirectoryPolicy::AllowDirectory)
        return file;
    for (const char *index : {"index.html", "index.htm"}) {
        const QString name = QString::fromLatin1(index);
        File candidate = root->open(relative.isEmpty() ? name : relative + QLatin1Char('/') + name);
        if (candidate.status == HTTPDocumentRoot::Status::Outside) {
            ZTLog::warning(kHTTPLogContext,
                           QStringLiteral("%1: Request for file outside document root").arg(logPrefix()));
            return File();
        }
        if (candidate.status == HTTPDocumentRoot::Status::Opened)
            return candidate;
    }
    return File();
}

QString HTTPConnection::filePathForURI(const QString &uri, DirectoryPolicy policy)
{
    return openFileForURI(uri, policy).path;
}

std::unique_ptr<HTTPFileResponse> HTTPConnection::httpResponseForMethod(QByteArrayView, const QString &uri)
{
    HTTPDocumentRoot::File file = openFileForURI(uri, DirectoryPolicy::ServeIndexFile);
    if (file.status != HTTPDocumentRoot::Status::Opened || !file.isRegularFile)
        return nullptr;
    const quint64 size = file.size;
    const QString path = file.path;
    return std::make_unique<HTTPFileResponse>(file.takeDescriptor(), size, path, this);
}

void HTTPConnection::startReadingHeader()
{
    m_state = State::ReadingHeader;
    m_request = HTTPMessage();
    m_numHeaderLines = 0;
    m_readDeadline = nowMs() + m_timeouts.readHeaderLineMs;
}

void HTTPConnection::readRequestHeader()
{
    if (m_inReadLoop)
        return;
    m_inReadLoop = true;
    while (m_state == State::ReadingHeader) {
        if (!m_socket->canReadLine()) {
            // No line end within the limit: the line can never be accepted.
            if (m_socket->bytesAvailable() >= kMaxHeaderLineLength)
                abortConnection();
            break;
        }
        const QByteArray line = m_socket->readLine(kMaxHeaderLineLength + 1);
        if (line.size() > kMaxHeaderLineLength || !line.endsWith('\n')) {
            abortConnection();
            break;
        }
        m_readDeadline = nowMs() + m_timeouts.readHeaderLineMs;
        if (++m_numHeaderLines > kMaxHeaderLines || !m_request.appendData(line)) {
            ZTLog::warning(
                kHTTPLogContext,
                QStringLiteral("HTTP Server: Error 400 - Bad Request (%1)").arg(requestDescription()));
            sendErrorResponse(400, "Bad Request", true);
            continue;
        }
        if (m_request.isHeaderComplete())
            replyToRequest();
    }
    m_inReadLoop = false;
}

void HTTPConnection::postReceivedURL()
{
    const QUrl url = m_request.url();
    ZTNotificationCenter::defaultCenter().post(
        receivedURLName(), &url,
        {{QStringLiteral("url"), url}, {QStringLiteral("urlText"), QString::fromUtf8(m_request.target())}});
}

bool HTTPConnection::shouldDie() const
{
    const QByteArray connection = m_request.headerField("Connection");
    if (m_request.version() == "HTTP/1.1")
        return connection.compare("close", Qt::CaseInsensitive) == 0;
    if (m_request.version() == "HTTP/1.0")
        return connection.compare("Keep-Alive", Qt::CaseInsensitive) != 0;
    return true;
}

void HTTPConnection::replyToRequest()
{
    m_readDeadline = 0;
    postReceivedURL();
    const QByteArray version = m_request.version();
    const QByteArray method = m_request.method();
    const QString uri = QString::fromUtf8(m_request.target());
    if (version != "HTTP/1.1" && version != "HTTP/1.0") {
        ZTLog::warning(kHTTPLogContext,
                       QStringLiteral("HTTP Server: Error 505 - Version Not Supported: %1 (%2)")
                           .arg(QString::fromLatin1(version), uri));
        sendErrorResponse(505, "HTTP Version Not Supported", true);
        return;
    }
    if (!supportsMethod(method, uri)) {
        ZTLog::warning(kHTTPLogContext, QStringLiteral("HTTP Server: Error 405 - Method Not Allowed: %1 (%2)")
                                            .arg(QString::fromLatin1(method), uri));
        sendErrorResponse(405, "Method Not Allowed", true);
        return;
    }
    if (!expectsRequestBodyFromMethod(method, uri)) {
        // A body we will not read would be taken for the next request.
        const QByteArray length = m_request.headerField("Content-Length");
        bool ok = true;
        const bool hasBody = (!length.isEmpty() && (length.toULongLong(&ok) != 0 || !ok)) ||
                             m_request.hasHeaderField("Transfer-Encoding");
        if (hasBody) {
            ZTLog::warning(kHTTPLogContext,
                           QStringLiteral("HTTP Server: Error 400 - Bad Request (%1)").arg(uri));
            sendErrorResponse(400, "Bad Request", true);
            return;
        }
    }
    std::unique_ptr<HTTPFileResponse> response = httpResponseForMethod(method, uri);
    if (!response) {
        sendErrorResponse(404, "Not Found", shouldDie());
        return;
    }
    sendFileResponse(std::move(response), method == "HEAD");
}

void HTTPConnection::sendErrorResponse(int status, QByteArrayView description, bool close)
{
    HTTPMessage head = HTTPMessage::response(status, description, "HTTP/1.1");
    head.setHeaderField("Content-Length", "0");
    m_parts.clear();
    sendResponse(head, close);
}

void HTTPConnection::sendFileResponse(std::unique_ptr<HTTPFileResponse> response, bool headOnly)
{
    const quint64 length = response->contentLength();
    const QByteArray range = m_request.headerField("Range");
    const QList<HTTPByteRange> ranges =
        range.isEmpty() ? QList<HTTPByteRange>() : HTTPByteRanges::parse(range, length);
    const QByteArray total = QByteArray::number(length);
    m_parts.clear();
    HTTPMessage head;
    if (ranges.isEmpty()) {
        head = HTTPMessage::response(200, "OK", "HTTP/1.1");
        head.setHeaderField("Content-Length", total);
        m_parts.append({{}, 0, length});
    } else if (ranges.size() == 1) {
        const HTTPByteRange &r = ranges.first();
        head = HTTPMessage::response(206, "Partial Content", "HTTP/1.1");
        head.setHeaderField("Content-Length", QByteArray::number(r.length));
        head.setHeaderField("Content-Range", "bytes " + QByteArray::number(r.location) + '-' +
                                                 QByteArray::number(r.last()) + '/' + total);
        m_parts.append({{}, r.location, r.length});
    } else {
        const QByteArray boundary = QByteArray::number(QRandomGenerator::global()->generate64(), 16) +
                                    QByteArray::number(QRandomGenerator::global()->generate64(), 16);
        const QByteArray type = QMimeDatabase()
                                    .mimeTypeForFile(response->filePath(), QMimeDatabase::MatchExtension)
                                    .name()
                                    .toLatin1();
        quint64 bodyLength = 0;
        for (const HTTPByteRange &r : ranges) {
            const QByteArray partHead = "\r\n--" + boundary + "\r\nContent-Type: " + type +
                                        "\r\nContent-Range: bytes " + QByteArray::number(r.location) + '-' +
                                        QByteArray::number(r.last()) + '/' + total + "\r\n\r\n";
            bodyLength += quint64(partHead.size()) + r.length;
            m_parts.append({partHead, 0, 0});
            m_parts.append({{}, r.location, r.length});
        }
        const QByteArray closing = "\r\n--" + boundary + "--\r\n";
        bodyLength += quint64(closing.size());
        m_parts.append({closing, 0, 0});
        head = HTTPMessage::response(206, "Partial Content", "HTTP/1.1");
        head.setHeaderField("Content-Length", QByteArray::number(bodyLength));
        head.setHeaderField("Content-Type", "multipart/byteranges; boundary=" + boundary);
    }
    if (headOnly)
        m_parts.clear();
    else
        m_response = std::move(response);
    sendResponse(head, shouldDie());
}

void HTTPConnection::sendResponse(HTTPMessage &head, bool close)
{
    head.setHeaderField("Date", currentDateString());
    head.setHeaderField("Accept-Ranges", "bytes");
    if (close)
        head.setHeaderField("Connection", "close");
    else if (m_request.version() == "HTTP/1.0")
        head.setHeaderField("Connection", "keep-alive");
    const QByteArray headData = head.messageData();
    m_parts.prepend({headData, 0, 0});
    m_partIndex = 0;
    m_bytesQueued = 0;
    m_headEnd = headData.size();
    m_closeAfterResponse = close;
    m_state = State::Writing;
    m_writeDeadline = nowMs() + m_timeouts.writeHeadMs;
    writeMore();
}

void HTTPConnection::writeMore()
{
    if (m_inWrite)
        return;
    m_inWrite = true;
    // Each round sends at most one chunk of the file; the next round starts
    // only once the socket has handed everything before it to the system.
    while (m_state == State::Writing && m_socket->bytesToWrite() == 0) {
        if (m_partIndex >= m_parts.size()) {
            finishResponse();
            break;
        }
        if (!sendRound()) {
            abortConnection();
            break;
        }
    }
    m_inWrite = false;
    if (m_state == State::ReadingHeader && !m_inReadLoop)
        readRequestHeader();
}

bool HTTPConnection::sendRound()
{
    Pieces pieces;
    qint64 round = 0;
    while (m_partIndex < m_parts.size() && round < kReadChunkSize) {
        BodyPart &part = m_parts[m_partIndex];
        if (!part.literal.isEmpty()) {
            round += part.literal.size();
            pieces.append(std::move(part.literal));
            ++m_partIndex;
            continue;
        }
        if (part.fileRemaining == 0) {
            ++m_partIndex;
            continue;
        }
        const quint64 length = std::min<quint64>(kReadChunkSize, part.fileRemaining);
        if (m_response->offset() != part.fileOffset)
            m_response->setOffset(part.fileOffset);
        if (qint64(length) >= kSendFileMinimum) {
            // Large pieces go from the file to the socket inside the kernel;
            // what is gathered before them leaves first.
            if (!sendPieces(pieces, MoreFollows::Yes))
                return false;
            pieces.clear();
            if (m_socket->bytesToWrite() > 0)
                return true; // the system is full: go on when it has room
            const qint64 sent = m_response->sendDataOfLength(int(m_socket->socketDescriptor()), length);
            if (sent < 0)
                return false;
            m_bytesQueued += sent;
            if (quint64(sent) < length) {
                const QByteArray rest = m_response->readDataOfLength(length - quint64(sent));
                if (quint64(rest.size()) != length - quint64(sent))
                    return false; // the file shrank under us: the promised length cannot be kept
                m_socket->write(rest);
                m_bytesQueued += rest.size();
            }
        } else {
            QByteArray piece = m_response->readDataOfLength(length);
            if (quint64(piece.size()) != length)
                return false;
            pieces.append(std::move(piece));
        }
        part.fileOffset += length;
        part.fileRemaining -= length;
        if (part.fileRemaining == 0)
            ++m_partIndex;
        round += qint64(length);
    }
    return sendPieces(pieces, MoreFollows::No);
}

bool HTTPConnection::sendPieces(const Pieces &pieces, MoreFollows more)
{
    if (pieces.isEmpty())
        return true;
    // The socket's own buffer is empty whenever a round starts, so the bytes
    // may go straight to the system in one call without changing their order;
    // only what the system cannot take now waits in the socket's buffer. This
    // spares the event loop a notifier round trip on almost every answer.
    qint64 sent = 0;
    qint64 total = 0;
    iovec vectors[kMaxVectors];
    int count = 0;
    for (const QByteArray &piece : pieces) {
        total += piece.size();
        if (count < kMaxVectors)
            vectors[count++] = {const_cast<char *>(piece.constData()), size_t(piece.size())};
    }
    msghdr message{};
    message.msg_iov = vectors;
    message.msg_iovlen = size_t(count);
    ssize_t n;
    do {
        n = ::sendmsg(int(m_socket->socketDescriptor()), &message,
                      MSG_NOSIGNAL | MSG_DONTWAIT | (more == MoreFollows::Yes ? MSG_MORE : 0));
    } while (n < 0 && errno == EINTR);
    if (n < 0 && errno != EAGAIN && errno != EWOULDBLOCK)
        return false;
    sent = std::max<qint64>(n, 0);
    m_bytesQueued += total;
    qint64 skip = sent;
    for (const QByteArray &piece : pieces) {
        if (skip >= piece.size()) {
            skip -= piece.size();
            continue;
        }
        if (skip > 0)
            m_socket->write(piece.constData() + skip, piece.size() - skip);
        else
            m_socket->write(piece);
        skip = 0;
    }
    return true;
}

void HTTPConnection::onBytesWritten()
{
    if (m_writeDeadline && m_bytesQueued - m_socket->bytesToWrite() >= m_headEnd)
        m_writeDeadline = 0;
    if (m_state == State::Writing && m_socket->bytesToWrite() == 0)
        writeMore();
}

void HTTPConnection::finishResponse()
{
    m_response.reset();
    m_parts.clear();
    m_partIndex = 0;
    m_writeDeadline = 0;
    if (m_closeAfterResponse) {
        m_state = State::Closing;
        m_socket->disconnectFromHost();
        if (m_socket->state() == QAbstractSocket::UnconnectedState)
            die();
        return;
    }
    startReadingHeader();
}

void HTTPConnection::checkTimeouts()
{
    const qint64 now = nowMs();
    if (m_state == State::ReadingHeader && m_readDeadline && now >= m_readDeadline) {
        abortConnection();
        return;
    }
    if (m_writeDeadline && now >= m_writeDeadline) {
        if (m_bytesQueued - m_socket->bytesToWrite() < m_headEnd)
            abortConnection();
        else
            m_writeDeadline = 0;
    }
}

void HTTPConnection::abortConnection()
{
    if (m_state == State::Dead)
        return;
    m_socket->abort();
    die();
}

void HTTPConnection::die()
{
    if (m_state == State::Dead)
        return;
    m_state = State::Dead;
    m_readDeadline = 0;
    m_writeDeadline = 0;
    m_response.reset();
    m_parts.clear();
    ZTNotificationCenter::defaultCenter().post(didDieName(), this);
    deleteLater();
}
