#include "sharing/http/HTTPFileResponse.h"

#include "app/ZTLog.h"
#include "sharing/http/HTTPServer.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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
