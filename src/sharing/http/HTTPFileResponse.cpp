#include "sharing/http/HTTPFileResponse.h"

#include "base/ZTLog.h"
#include "sharing/http/HTTPServer.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
// The connection threads block SIGPIPE; take the one a dead client raised so
// that it does not stay pending.
void discardPendingPipeSignal()
{
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    const timespec now{0, 0};
    while (::sigtimedwait(&pipe, nullptr, &now) == SIGPIPE) {
    }
}
} // namespace

HTTPFileResponse::HTTPFileResponse(const QString &filePath, HTTPConnection *connection)
    : m_filePath(filePath), m_connection(connection)
{
    const QByteArray encoded = filePath.toUtf8();
    // O_NOFOLLOW: the path given has already been resolved, so a symbolic link
    // here means it was swapped in since; O_NONBLOCK keeps a FIFO from hanging us.
    const int fd = ::open(encoded.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (fd < 0)
        return;
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        return;
    }
    m_fd = fd;
    m_contentLength = quint64(info.st_size);
}

HTTPFileResponse::HTTPFileResponse(int descriptor, quint64 length, const QString &filePath,
                                   HTTPConnection *connection)
    : m_filePath(filePath), m_connection(connection), m_fd(descriptor), m_contentLength(length)
{
}

HTTPFileResponse::~HTTPFileResponse()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

void HTTPFileResponse::setOffset(quint64 offset)
{
    m_offset = std::min(offset, m_contentLength);
}

QByteArray HTTPFileResponse::readDataOfLength(quint64 length)
{
    if (m_fd < 0 || isDone())
        return {};
    length = std::min(length, m_contentLength - m_offset);
    QByteArray data(qsizetype(length), Qt::Uninitialized);
    qsizetype filled = 0;
    while (filled < data.size()) {
        const ssize_t n =
            ::pread(m_fd, data.data() + filled, size_t(data.size() - filled), off_t(m_offset + filled));
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            ZTLog::warning(kHTTPLogContext, QStringLiteral("HTTPFileResponse[%1]: Error reading file %2")
                                                .arg(quintptr(m_connection), 0, 16)
                                                .arg(m_filePath));
            break;
        }
        filled += n;
    }
    data.truncate(filled);
    m_offset += quint64(filled);
    return data;
}

qint64 HTTPFileResponse::sendDataOfLength(int socketDescriptor, quint64 length)
{
    if (m_fd < 0 || isDone())
        return 0;
    length = std::min(length, m_contentLength - m_offset);
    quint64 sent = 0;
    while (sent < length) {
        off_t position = off_t(m_offset);
        const ssize_t n = ::sendfile(socketDescriptor, m_fd, &position, size_t(length - sent));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
            break;
        if (n < 0) {
            if (errno == EPIPE)
                discardPendingPipeSignal();
            return -1;
        }
        if (n == 0)
            break; // the file shrank; the caller finds out when it reads the rest
        sent += quint64(n);
        m_offset += quint64(n);
    }
    return qint64(sent);
}
