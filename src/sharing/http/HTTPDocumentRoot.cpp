#include "sharing/http/HTTPDocumentRoot.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {
// O_NONBLOCK keeps a FIFO placed in the folder from hanging the open.
constexpr int kOpenFlags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
} // namespace

HTTPDocumentRoot::File::~File()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

HTTPDocumentRoot::File::File(File &&other) noexcept
    : status(other.status), path(std::move(other.path)), isDirectory(other.isDirectory),
      isRegularFile(other.isRegularFile), size(other.size), m_fd(std::exchange(other.m_fd, -1))
{
}

HTTPDocumentRoot::File &HTTPDocumentRoot::File::operator=(File &&other) noexcept
{
    if (this != &other) {
        if (m_fd >= 0)
            ::close(m_fd);
        status = other.status;
        path = std::move(other.path);
        isDirectory = other.isDirectory;
        isRegularFile = other.isRegularFile;
        size = other.size;
        m_fd = std::exchange(other.m_fd, -1);
    }
    return *this;
}

int HTTPDocumentRoot::File::takeDescriptor()
{
    return std::exchange(m_fd, -1);
}

HTTPDocumentRoot::HTTPDocumentRoot(const QString &path) : m_path(path)
{
    if (path.isEmpty())
        return;
    char resolved[PATH_MAX];
    if (!::realpath(path.toUtf8().constData(), resolved))
        return;
    const int fd = ::open(resolved, O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    m_fd = fd;
    m_canonicalPath = QString::fromUtf8(resolved);
}

HTTPDocumentRoot::~HTTPDocumentRoot()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

bool HTTPDocumentRoot::isCurrent() const
{
    struct stat held {};
    struct stat named {};
    return m_fd >= 0 && ::fstat(m_fd, &held) == 0 && ::stat(m_path.toUtf8().constData(), &named) == 0 &&
           held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

bool HTTPDocumentRoot::contains(const QString &absolutePath) const
{
    if (m_canonicalPath == QLatin1String("/"))
        return absolutePath.startsWith(QLatin1Char('/'));
    return absolutePath == m_canonicalPath || (absolutePath.startsWith(m_canonicalPath) &&
                                               absolutePath.at(m_canonicalPath.size()) == QLatin1Char('/'));
}

bool HTTPDocumentRoot::describe(File &file)
{
    struct stat info {};
    if (::fstat(file.m_fd, &info) != 0)
        return false;
    file.isDirectory = S_ISDIR(info.st_mode);
    file.isRegularFile = S_ISREG(info.st_mode);
    file.size = quint64(info.st_size);
    file.status = Status::Opened;
    return true;
}

HTTPDocumentRoot::File HTTPDocumentRoot::open(const QString &relativePath) const
{
    File file;
    if (m_fd < 0)
        return file;
    const QByteArray relative = relativePath.isEmpty() ? QByteArray(".") : relativePath.toUtf8();
    open_how how{};
    how.flags = kOpenFlags;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    const long fd = ::syscall(SYS_openat2, m_fd, relative.constData(), &how, sizeof how);
    if (fd >= 0) {
        file.m_fd = int(fd);
        file.path = relativePath.isEmpty()
                        ? m_canonicalPath
                        : (m_canonicalPath == QLatin1String("/") ? QString() : m_canonicalPath) +
                              QLatin1Char('/') + relativePath;
        if (!describe(file))
            return File();
        return file;
    }
    if (errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG)
        return file;
    // A symbolic link on the way (or a kernel without openat2): resolve it all.
    return openResolvingLinks(relativePath);
}

HTTPDocumentRoot::File HTTPDocumentRoot::openResolvingLinks(const QString &relativePath) const
{
    File file;
    char resolved[PATH_MAX];
    const QString full = m_canonicalPath + QLatin1Char('/') + relativePath;
    if (!::realpath(full.toUtf8().constData(), resolved))
        return file;
    const QString real = QString::fromUtf8(resolved);
    if (!contains(real)) {
        file.status = Status::Outside;
        return file;
    }
    // The path is free of links now; one swapped in since would be refused.
    const int fd = ::open(resolved, kOpenFlags | O_NOFOLLOW);
    if (fd < 0)
        return file;
    file.m_fd = fd;
    file.path = real;
    if (!describe(file))
        return File();
    return file;
}
