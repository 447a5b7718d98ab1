#pragma once

#include "library/ZTDocument.h"

#include <QTemporaryDir>

#include <memory>

// A real, empty library package in a temporary folder, opened.
namespace ZTTestLibrary {
inline std::unique_ptr<ZTDocument> create(const QTemporaryDir &dir, ZTMediaKind kind,
                                          const QString &name = "lib")
{
    const QString path = dir.filePath(name + QLatin1Char('.') + ZTMediaKinds::packageExtension(kind));
    if (!ZTDocument::createPackage(path, kind))
        return nullptr;
    auto document = ZTDocument::create(kind);
    if (!document->readFromURL(path))
        return nullptr;
    return document;
}
} // namespace ZTTestLibrary
