#include "support/ZTLibraryFixture.h"

#include "library/ZTDocument.h"

#include <QBuffer>
#include <QDir>
#include <QImage>

ZTLibraryFixture::ZTLibraryFixture(ZTMediaKind kind, const QString &name)
{
    m_path = QDir(m_dir.path()).filePath(name + QLatin1Char('.') + ZTMediaKinds::packageExtension(kind));
    m_valid = m_dir.isValid() && ZTDocument::createPackage(m_path, kind);
}

ZTLibraryFixture::~ZTLibraryFixture() = default;

std::unique_ptr<ZTDocument> ZTLibraryFixture::open() const
{
    ZTMediaKind kind;
    if (!ZTDocument::kindForPath(m_path, &kind))
        return nullptr;
    auto document = ZTDocument::create(kind);
    if (!document->readFromURL(m_path))
        return nullptr;
    document->documentDidOpen();
    return document;
}

static QByteArray encoded(int width, int height, unsigned rgb, const char *format)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(QColor::fromRgb(rgb));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

QByteArray zt_pngBytes(int width, int height, unsigned rgb) { return encoded(width, height, rgb, "PNG"); }
QByteArray zt_jpegBytes(int width, int height, unsigned rgb) { return encoded(width, height, rgb, "JPEG"); }
