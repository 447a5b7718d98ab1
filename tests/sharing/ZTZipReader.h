#pragma once

// Reads a zip archive back for the sharing tests. Header-only: each test
// program includes it.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>

#include <zip.h>

class ZTZipReader {
public:
    explicit ZTZipReader(const QString &path)
    {
        int error = 0;
        m_archive = zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY | ZIP_CHECKCONS, &error);
    }
    ~ZTZipReader()
    {
        if (m_archive)
            zip_discard(m_archive);
    }
    ZTZipReader(const ZTZipReader &) = delete;
    ZTZipReader &operator=(const ZTZipReader &) = delete;

    bool isOpen() const { return m_archive != nullptr; }

    QStringList names() const
    {
        QStringList names;
        for (zip_int64_t i = 0; m_archive && i < zip_get_num_entries(m_archive, 0); ++i)
            names << QString::fromUtf8(zip_get_name(m_archive, zip_uint64_t(i), ZIP_FL_ENC_GUESS));
        return names;
    }

    // The entry's compression method (ZIP_CM_DEFLATE …), or -1 when absent.
    int compressionOf(const QString &name) const
    {
        zip_stat_t st;
        if (!m_archive || zip_stat(m_archive, name.toUtf8().constData(), 0, &st) != 0)
            return -1;
        return st.comp_method;
    }

    QByteArray read(const QString &name) const
    {
        if (!m_archive)
            return {};
        zip_stat_t st;
        if (zip_stat(m_archive, name.toUtf8().constData(), 0, &st) != 0)
            return {};
        zip_file_t *file = zip_fopen(m_archive, name.toUtf8().constData(), 0);
        if (!file)
            return {};
        QByteArray bytes(qsizetype(st.size), '\0');
        const zip_int64_t got = zip_fread(file, bytes.data(), st.size);
        zip_fclose(file);
        return got == zip_int64_t(st.size) ? bytes : QByteArray();
    }

private:
    zip_t *m_archive = nullptr;
};
