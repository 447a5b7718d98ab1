// An item's cover picture: replacing it, and reading it back.
#include "model/ZTItem.h"

#include "store/ZTImage.h"
#include "store/ZTManagedObjectContext.h"
#include "store/ZTOid.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImageReader>
#include <QUrl>

namespace {
const QString s_toCoverImage = QStringLiteral("toCoverImage");

QImage decode(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return {};
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    // A hostile picture may claim enormous dimensions.
    const QSize size = reader.size();
    if (size.isValid() && qint64(size.width()) * size.height() > 64LL * 1024 * 1024)
        return {};
    return reader.read();
}
} // namespace

bool ZTItem::isValidImage(const QByteArray &bytes)
{
    const QImage image = decode(bytes);
    return !image.isNull() && image.width() > 1 && image.height() > 1;
}

ZTImage *ZTItem::coverImage() const { return static_cast<ZTImage *>(toOneForKey(s_toCoverImage)); }

QVariantMap ZTItem::handleImage(const QImage &image, const QByteArray &imageData, const QString &url,
                                const QString &type, bool isUser)
{
    QVariantMap result;
    ZTManagedObjectContext *context = managedObjectContext();
    auto removeCover = [&] {
        if (ZTImage *old = coverImage()) {
            const QString name = old->filename();
            if (!name.isEmpty())
                result.insert(QStringLiteral("oldImageFilename"), name);
            setToOneForKey(s_toCoverImage, nullptr);
            if (context)
                context->deleteObject(old);
        }
        if (m_transient)
            m_transient->storedImage = QImage();
    };
    const bool haveBytes = !imageData.isEmpty();
    // Missing input or bytes that are no picture take the present cover away.
    if ((image.isNull() && !haveBytes) || (haveBytes && !isValidImage(imageData))) {
        removeCover();
        return result;
    }
    QByteArray bytes;
    QString format, extension;
    int width = 0, height = 0;
    bool userFlag = isUser;
    if (!haveBytes) {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        format = QStringLiteral("PNG");
        extension = QStringLiteral("png");
        width = image.width();
        height = image.height();
        userFlag = true;
    } else {
        static const QStringList known{QStringLiteral("JPEG"), QStringLiteral("GIF"), QStringLiteral("PNG"),
                                       QStringLiteral("TIFF")};
        if (known.contains(type)) {
            format = type;
        } else {
            const QString suffix = QFileInfo(QUrl(url).path()).suffix().toLower();
            if (suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg"))
                format = QStringLiteral("JPEG");
            else if (suffix == QLatin1String("gif"))
                format = QStringLiteral("GIF");
            else if (suffix == QLatin1String("tiff"))
                format = QStringLiteral("TIFF");
            else if (suffix == QLatin1String("png"))
                format = QStringLiteral("PNG");
        }
        const QImage decoded = decode(imageData);
        width = decoded.width();
        height = decoded.height();
        if (!format.isEmpty()) {
            bytes = imageData;
            extension = format == QLatin1String("JPEG") ? QStringLiteral("jpg") : format.toLower();
        } else {
            QBuffer buffer(&bytes);
            buffer.open(QIODevice::WriteOnly);
            decoded.save(&buffer, "JPEG");
            format = QStringLiteral("JPEG");
            extension = QStringLiteral("jpg");
        }
    }
    removeCover();
    if (!context)
        return result;
    auto *row = static_cast<ZTImage *>(context->insertNewObject(QStringLiteral("ZTImage")));
    const QString filename = ZTOid::uuid() + QLatin1Char('.') + extension;
    row->setPrimitiveValueForKey(format, QStringLiteral("format"));
    row->setPrimitiveValueForKey(filename, QStringLiteral("filename"));
    row->setPrimitiveValueForKey(width, QStringLiteral("width"));
    row->setPrimitiveValueForKey(height, QStringLiteral("height"));
    row->setPrimitiveValueForKey(bytes.size(), QStringLiteral("size"));
    if (!url.isEmpty())
        row->setPrimitiveValueForKey(url, QStringLiteral("url"));
    row->setPrimitiveValueForKey(userFlag, QStringLiteral("userFlag"));
    row->setCachedImageData(bytes);
    setToOneForKey(s_toCoverImage, row);
    result.insert(QStringLiteral("newImageFilename"), filename);
    result.insert(QStringLiteral("newImageData"), bytes);
    return result;
}

void ZTItem::replaceCover(const QImage &image, const QByteArray &imageData, const QString &url, const QString &type,
                          bool isUser)
{
    const QVariantMap result = handleImage(image, imageData, url, type, isUser);
    if (ZTManagedObjectContext *context = managedObjectContext()) {
        if (result.contains(QStringLiteral("newImageFilename")))
            context->insertImageWithFilename(result.value(QStringLiteral("newImageFilename")).toString(),
                                             result.value(QStringLiteral("newImageData")).toByteArray());
        if (result.contains(QStringLiteral("oldImageFilename")))
            context->deleteImageWithFilename(result.value(QStringLiteral("oldImageFilename")).toString());
    }
    updateCoverImageStatus();
}

QByteArray ZTItem::largestImageAvailable() const
{
    ZTImage *cover = coverImage();
    return cover ? cover->imageData() : QByteArray();
}

QByteArray ZTItem::largestImageAvailableUncached() const
{
    ZTImage *cover = coverImage();
    return cover ? cover->imageDataUncached() : QByteArray();
}

QImage ZTItem::image() const
{
    if (m_transient && !m_transient->storedImage.isNull())
        return m_transient->storedImage;
    QImage picture = decode(largestImageAvailable());
    // One point is one pixel, whatever resolution the file claims.
    if (!picture.isNull())
        picture.setDevicePixelRatio(1.0);
    return picture;
}
