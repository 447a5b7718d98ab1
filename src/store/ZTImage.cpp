#include "store/ZTImage.h"

#include "store/ZTManagedObjectContext.h"
#include "store/ZTOid.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

QString ZTImage::filename() const { return primitiveValueForKey(QStringLiteral("filename")).toString(); }
QString ZTImage::format() const { return primitiveValueForKey(QStringLiteral("format")).toString(); }

QString ZTImage::path() const
{
    const QString name = filename();
    if (name.isEmpty() || !managedObjectContext() || name.contains(QLatin1Char('/')))
        return {};
    const ZTManagedObjectContext *context = managedObjectContext();
    return QDir(hasBeenSaved() ? context->imageFolderPath() : context->stagingFolderPath()).filePath(name);
}

static QByteArray readPicture(const QString &path)
{
    if (path.isEmpty())
        return {};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

QByteArray ZTImage::imageData()
{
    if (m_cachedImageData.isNull())
        m_cachedImageData = readPicture(path());
    return m_cachedImageData;
}

QByteArray ZTImage::imageDataUncached() const
{
    if (!m_cachedImageData.isNull())
        return m_cachedImageData;
    return readPicture(path());
}

ZTImage *ZTImage::clone(ZTManagedObjectContext *target) const
{
    if (!target)
        return nullptr;
    auto *copy = static_cast<ZTImage *>(target->insertNewObject(QStringLiteral("ZTImage")));
    if (!copy)
        return nullptr;
    for (const char *key : {"format", "width", "height", "size", "url", "userFlag"})
        copy->setPrimitiveValueForKey(primitiveValueForKey(QLatin1String(key)), QLatin1String(key));
    const QString suffix = QFileInfo(filename()).suffix();
    copy->setPrimitiveValueForKey(ZTOid::uuid() + (suffix.isEmpty() ? QString() : QLatin1Char('.') + suffix),
                                  QStringLiteral("filename"));
    return copy;
}
