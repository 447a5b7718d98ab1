#include "app/cli/ZTCliLibrary.h"

#include "app/cli/ZTCli.h"
#include "library/ZTDocument.h"
#include "model/ZTItem.h"

#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QTextStream>

std::unique_ptr<ZTDocument> ZTCliLibrary::open(const QString &path)
{
    ZTMediaKind kind;
    if (!ZTDocument::kindForPath(path, &kind)) {
        ZTCli::fail(QStringLiteral("\"%1\" is not a library (expected .ztbooklib, .ztmusiclib, .ztmovielib or .ztcomiclib)")
                        .arg(path));
        return nullptr;
    }
    if (!QFileInfo(path).isDir()) {
        ZTCli::fail(QStringLiteral("no library at \"%1\"").arg(path));
        return nullptr;
    }
    auto document = ZTDocument::create(kind);
    QString error;
    if (!document->readFromURL(path, &error)) {
        ZTCli::fail(error);
        return nullptr;
    }
    QTextStream err(stderr);
    for (const QString &problem : document->openProblems())
        err << "zettary-cli: warning: " << problem << "\n";
    document->documentDidOpen();
    return document;
}

bool ZTCliLibrary::save(ZTDocument &document)
{
    QString error;
    if (!document.saveDocument(&error)) {
        ZTCli::fail(QStringLiteral("the library could not be saved: %1").arg(error));
        return false;
    }
    return true;
}

QJsonValue ZTCliLibrary::toJson(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QDateTime:
        return value.toDateTime().toLocalTime().date().toString(Qt::ISODate);
    case QMetaType::QDate:
        return value.toDate().toString(Qt::ISODate);
    case QMetaType::QByteArray:
        return QJsonValue::Undefined;
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        QJsonArray array;
        for (const QVariant &v : value.toList()) {
            const QJsonValue j = toJson(v);
            if (!j.isUndefined())
                array.append(j);
        }
        return array;
    }
    case QMetaType::QVariantMap: {
        QJsonObject object;
        const QVariantMap map = value.toMap();
        for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
            const QJsonValue j = toJson(it.value());
            if (!j.isUndefined())
                object.insert(it.key(), j);
        }
        return object;
    }
    default:
        if (!value.isValid() || value.isNull())
            return QJsonValue::Null;
        return QJsonValue::fromVariant(value);
    }
}

QJsonObject ZTCliLibrary::itemToJson(const ZTItem &item)
{
    QJsonObject object = toJson(item.dictionary()).toObject();
    object.insert(QStringLiteral("oid"), item.oid());
    return object;
}

QVariant ZTCliLibrary::fromJson(const QJsonValue &value) { return value.toVariant(); }
