#pragma once

#include <QString>

// The folder a server serves, held open so that files are found beneath it
// with as few system calls as possible: a path without symbolic links is
// opened in one call that the kernel itself keeps beneath the folder; a path
// with links is resolved in full and checked before it is opened. Either way
// nothing outside the folder is ever opened. Safe to share between threads.
class HTTPDocumentRoot {
public:
    enum class Status { Opened, Missing, Outside };

    // An opened file or folder; owns its descriptor.
    class File {
    public:
        File() = default;
        ~File();
        File(File &&other) noexcept;
        File &operator=(File &&other) noexcept;
        File(const File &) = delete;
        File &operator=(const File &) = delete;

        Status status = Status::Missing;
        QString path; // with every symbolic link resolved
        bool isDirectory = false;
        bool isRegularFile = false;
        quint64 size = 0;

        int descriptor() const { return m_fd; }
        // Hands the descriptor over to the caller, who closes it.
        int takeDescriptor();

    private:
        friend class HTTPDocumentRoot;
        int m_fd = -1;
    };

    explicit HTTPDocumentRoot(const QString &path);
    ~HTTPDocumentRoot();
    HTTPDocumentRoot(const HTTPDocumentRoot &) = delete;
    HTTPDocumentRoot &operator=(const HTTPDocumentRoot &) = delete;

    // False when the path is not an existing folder.
    bool isValid() const { return m_fd >= 0; }
    QString path() const { return m_path; }
    QString canonicalPath() const { return m_canonicalPath; }
    // False when the folder at the path has been replaced since it was opened.
    bool isCurrent() const;

    // Opens a path relative to the folder, already free of "." and ".."
    // segments; the empty path is the folder itself.
    File open(const QString &relativePath) const;
    bool contains(const QString &absolutePath) const;

private:
    File openResolvingLinks(const QString &relativePath) const;
    static bool describe(File &file);

    QString m_path;
    QString m_canonicalPath;
    int m_fd = -1;
};
