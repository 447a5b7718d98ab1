#pragma once

#include "model/ZTMediaKind.h"

#include <QString>
#include <QTemporaryDir>
#include <QVariantMap>

#include <memory>

class ZTDocument;

// A real library package in a temporary folder, for tests.
class ZTLibraryFixture {
public:
    explicit ZTLibraryFixture(ZTMediaKind kind = ZTMediaKind::Book, const QString &name = QStringLiteral("test"));
    ~ZTLibraryFixture();

    QString path() const { return m_path; }
    QString folder() const { return m_dir.path(); }
    bool isValid() const { return m_valid; }
    // Opens the package afresh (a new session, as a new start of the program would).
    std::unique_ptr<ZTDocument> open() const;

private:
    QTemporaryDir m_dir;
    QString m_path;
    bool m_valid = false;
};

// A small picture as real PNG bytes.
QByteArray zt_pngBytes(int width, int height, unsigned rgb = 0xff3366);
QByteArray zt_jpegBytes(int width, int height, unsigned rgb = 0x3366ff);
