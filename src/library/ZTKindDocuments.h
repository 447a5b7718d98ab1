#pragma once

#include "library/ZTDocument.h"

// The four kinds of library. What differs by kind lives here or in the kind's
// attribute tables.
class ZTBookDocument : public ZTDocument {
public:
    ZTBookDocument() : ZTDocument(ZTMediaKind::Book) {}
    QString localeArrayKey() const override { return QStringLiteral("Locale Books Array"); }
    QList<QPair<QString, QString>> prunePairs() const override;
};

class ZTAlbumDocument : public ZTDocument {
public:
    ZTAlbumDocument() : ZTDocument(ZTMediaKind::Album) {}
    QString localeArrayKey() const override { return QStringLiteral("Locale Music Array"); }
    QList<QPair<QString, QString>> prunePairs() const override;
};

class ZTMovieDocument : public ZTDocument {
public:
    ZTMovieDocument() : ZTDocument(ZTMediaKind::Movie) {}
    QString localeArrayKey() const override { return QStringLiteral("Locale Movies Array"); }
    QList<QPair<QString, QString>> prunePairs() const override;
};

class ZTComicDocument : public ZTDocument {
public:
    ZTComicDocument() : ZTDocument(ZTMediaKind::Comic) {}
    QString localeArrayKey() const override { return QStringLiteral("Locale Comics Array"); }
    QList<QPair<QString, QString>> prunePairs() const override;
};
