#pragma once

#include "store/ZTManagedObject.h"

#include <QByteArray>

// The one cover picture of an item. The row is the authority; the file lives in
// the session's staging folder until the next commit, and in the package's
// "images" folder after it.
class ZTImage : public ZTManagedObject {
public:
    QString filename() const;
    QString format() const;
    QString path() const;
    bool hasBeenSaved() const { return !isTemporaryID(); }

    // Reads the file once and keeps its bytes.
    QByteArray imageData();
    // The kept bytes, or the file read without keeping it.
    QByteArray imageDataUncached() const;
    void setCachedImageData(const QByteArray &bytes) { m_cachedImageData = bytes; }
    bool hasCachedImageData() const { return !m_cachedImageData.isNull(); }

    ZTImage *clone(ZTManagedObjectContext *target) const;

private:
    QByteArray m_cachedImageData;
};
