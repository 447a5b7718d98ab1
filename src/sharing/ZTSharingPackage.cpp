#include "sharing/ZTSharingPackage.h"
#include "library/lists/ZTListFilter.h"

#include "library/ZTDocument.h"
#include "library/ZTItemXML.h"
#include "lists/ZTList.h"
#include "model/ZTItem.h"
#include "sharing/ZTSharingLayout.h"
#include "store/ZTImage.h"
#include "store/ZTOid.h"
#include "store/ZTPropertyList.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>
#include <zip.h>

namespace {
const QString s_xmlDeclaration = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");

class PackageWriter {
public:
    explicit PackageWriter(const QString &folder) : m_folder(folder) {}

    void plist(const QString &name, const QVariant &value)
    {
        ZTPropertyList::writeFile(m_folder.filePath(name), value, ZTPropertyList::Format::Xml);
        m_manifest << name;
    }
    void text(const QString &name, const QString &content)
    {
        QFile file(m_folder.filePath(name));
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write(content.toUtf8());
    }
    void list(const QString &name) { m_manifest << name; }
    QString path(const QString &name) const { return m_folder.filePath(name); }
    QStringList manifest() const { return m_manifest; }

private:
    QDir m_folder;
    QStringList m_manifest;
};

QVariantList itemList(const QStringList &oids)
{
    QVariantList list;
    list.reserve(oids.size());
    for (const QString &oid : oids)
        list << oid;
    return list;
}

// The search rows go in through one prepared statement in one transaction;
// a file that cannot be opened leaves the index empty and the export goes on.
class SearchIndex {
public:
    explicit SearchIndex(const QString &path)
    {
        if (sqlite3_open_v2(QFile::encodeName(path).constData(), &m_db, SQLITE_OPEN_READWRITE, nullptr) !=
            SQLITE_OK) {
            sqlite3_close(m_db);
            m_db = nullptr;
            return;
        }
        sqlite3_exec(m_db, "BEGIN TRANSACTION", nullptr, nullptr, nullptr);
        sqlite3_prepare_v2(m_db, "INSERT INTO INDEXED_ITEM (OID, ITEM_TEXT) VALUES (?1, ?2)", -1, &m_insert,
                           nullptr);
    }
    ~SearchIndex()
    {
        if (!m_db)
            return;
        sqlite3_finalize(m_insert);
        sqlite3_exec(m_db, "COMMIT TRANSACTION", nullptr, nullptr, nullptr);
        sqlite3_close(m_db);
    }
    void add(const QString &oid, const QString &text)
    {
        if (!m_insert)
            return;
        const QByteArray o = oid.toUtf8();
        const QByteArray t = text.toUtf8();
        sqlite3_bind_text(m_insert, 1, o.constData(), int(o.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(m_insert, 2, t.constData(), int(t.size()), SQLITE_TRANSIENT);
        sqlite3_step(m_insert);
        sqlite3_reset(m_insert);
    }

private:
    sqlite3 *m_db = nullptr;
    sqlite3_stmt *m_insert = nullptr;
};

QString subtitleOf(const ZTItem &item, const QString &key)
{
    const QVariant value = item.valueForKey(key);
    if (!value.isValid() || value.isNull())
        return {};
    if (value.typeId() == QMetaType::QStringList || value.typeId() == QMetaType::QVariantList)
        return ZTItem::variantToStrings(value).join(QStringLiteral(", "));
    return value.toString();
}

// Each localisation's strings for the companion, under its "LANGUAGE".
QVariantMap localizedStrings()
{
    QVariantMap strings;
    QDirIterator it(QStringLiteral(":/"), {QStringLiteral("Finger.xml")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QVariantMap dictionary = ZTPropertyList::deserialize(file.readAll()).toMap();
        const QString language = dictionary.value(QStringLiteral("LANGUAGE")).toString();
        if (!language.isEmpty())
            strings.insert(language, dictionary);
    }
    return strings;
}
} // namespace

QString ZTSharingPackage::typeForPath(const QString &libraryPath)
{
    ZTMediaKind kind;
    if (!ZTMediaKinds::fromPackageExtension(QFileInfo(libraryPath).suffix(), &kind))
        return {};
    return ZTMediaKinds::cliName(kind);
}

QVariantMap ZTSharingPackage::infoDictionary(const ZTDocument &document, const QString &libraryPath,
                                             qint64 nodeID)
{
    const QFileInfo file(libraryPath);
    QVariantMap info{{QStringLiteral("filename"), file.fileName()},
                     {QStringLiteral("name"), file.completeBaseName()},
                     {QStringLiteral("itemCount"), document.mainList() ? document.mainList()->count() : 0},
                     {QStringLiteral("id"), nodeID}};
    const QString type = typeForPath(libraryPath);
    if (!type.isEmpty())
        info.insert(QStringLiteral("type"), type);
    return info;
}

QString ZTSharingPackage::formatXMLWithImage(const ZTItem &item)
{
    const QString tag = item.xmlTagNameSingular();
    QString data = ZTItemXML::xmlData(item);
    if (ZTImage *cover = item.coverImage(); cover && !cover->filename().isEmpty())
        data += QStringLiteral("     <image>%1</image>\n").arg(ZTItemXML::escape(cover->filename()));
    return QLatin1Char('<') + tag + QLatin1String(">\n") + data + QLatin1String("</") + tag +
           QLatin1String(">\n");
}

QStringList ZTSharingPackage::writePackage(const ZTDocument &document, const QString &libraryPath,
                                           qint64 nodeID, const QString &packageFolder,
                                           const QString &imagesFolder)
{
    PackageWriter out(packageFolder);
    ZTList *main = document.mainList();
    const QStringList mainOids = main ? main->itemOids() : QStringList();
    const ZTMediaKind kind = document.mediaKind();

    out.plist(QStringLiteral("info.xml"), infoDictionary(document, libraryPath, nodeID));

    // List identifiers are made here, so every export names its list folders anew.
    QVariantList lists{
        QVariantMap{{QStringLiteral("name"), QCoreApplication::translate("Localizable", "Library")},
                    {QStringLiteral("count"), int(mainOids.size())},
                    {QStringLiteral("type"), QStringLiteral("library")}}};
    QList<QPair<QString, ZTList *>> listFolders;
    for (ZTList *list : document.itemLists()) {
        const QString uuid = ZTOid::uuid();
        listFolders << qMakePair(uuid, list);
        lists << QVariantMap{{QStringLiteral("oid"), uuid},
                             {QStringLiteral("name"), list->name()},
                             {QStringLiteral("count"), list->count()},
                             {QStringLiteral("type"),
                              list->isSmartList() ? QStringLiteral("smartList") : QStringLiteral("list")}};
    }
    out.plist(QStringLiteral("lists.xml"), lists);
    QDir(packageFolder).mkdir(QStringLiteral("items"));
    out.plist(QStringLiteral("items.xml"), itemList(mainOids));
    out.plist(QStringLiteral("filter.xml"),
              main ? ZTListFilter::filterDictionaryFromDocument(*main, document) : QVariantMap());

    QFile::copy(QStringLiteral(":/search.sql"), out.path(QStringLiteral("search.sql")));
    QFile::setPermissions(out.path(QStringLiteral("search.sql")),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup |
                              QFileDevice::ReadOther);
    out.list(QStringLiteral("search.sql"));

    QVariantMap titles, subtitles, imageFilenames;
    const QString subtitleKey = ZTSharingLayout::formatiPhoneSubtitleKey(kind);
    {
        SearchIndex index(out.path(QStringLiteral("search.sql")));
        for (ZTItem *item : document.itemsForOids(mainOids)) {
            if (!item)
                continue;
            const QString oid = item->oid();
            titles.insert(oid, item->title());
            subtitles.insert(oid, subtitleOf(*item, subtitleKey));
            if (ZTImage *cover = item->coverImage(); cover && !cover->filename().isEmpty())
                imageFilenames.insert(oid, cover->filename());
            const QString name = QStringLiteral("items/%1.xml").arg(oid);
            out.text(name, s_xmlDeclaration + formatXMLWithImage(*item));
            out.list(name);
            index.add(oid, item->indexedString());
        }
    }
    out.plist(QStringLiteral("titleDict.xml"), titles);
    out.plist(QStringLiteral("subtitleDict.xml"), subtitles);
    out.plist(QStringLiteral("imageFilenameDict.xml"), imageFilenames);

    // The pictures are only read from the library; nothing of it is changed.
    const QDir images(imagesFolder);
    if (images.exists()) {
        QDir(packageFolder).mkdir(QStringLiteral("images"));
        QDirIterator it(imagesFolder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString source = it.next();
            const QString name = QStringLiteral("images/") + images.relativeFilePath(source);
            QDir().mkpath(QFileInfo(out.path(name)).absolutePath());
            QFile::copy(source, out.path(name));
            out.list(name);
        }
    }

    for (const auto &[uuid, list] : std::as_const(listFolders)) {
        QDir(packageFolder).mkdir(uuid);
        out.plist(uuid + QStringLiteral("/items.xml"), itemList(list->itemOids()));
        out.plist(uuid + QStringLiteral("/filter.xml"),
                  ZTListFilter::filterDictionaryFromDocument(*list, document));
    }

    out.plist(QStringLiteral("layoutDict.xml"), ZTSharingLayout::layoutDictionary(kind));
    out.plist(QStringLiteral("localizedStringsDict.xml"), localizedStrings());
    const QStringList manifest = out.manifest();
    ZTPropertyList::writeFile(out.path(QStringLiteral("manifest.xml")), QVariant(manifest),
                              ZTPropertyList::Format::Xml);
    return manifest;
}

bool ZTSharingPackage::zipFolder(const QString &root, const QString &zipPath, QString *error)
{
    const QDir base = QFileInfo(root).absoluteDir();
    int code = 0;
    zip_t *archive = zip_open(QFile::encodeName(zipPath).constData(), ZIP_CREATE | ZIP_TRUNCATE, &code);
    if (!archive) {
        if (error)
            *error = QStringLiteral("cannot create \"%1\"").arg(zipPath);
        return false;
    }
    bool ok = zip_dir_add(archive, base.relativeFilePath(root).toUtf8().constData(), ZIP_FL_ENC_UTF_8) >= 0;
    QDirIterator it(root, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                    QDirIterator::Subdirectories);
    while (ok && it.hasNext()) {
        const QFileInfo entry(it.next());
        const QByteArray name = base.relativeFilePath(entry.absoluteFilePath()).toUtf8();
        if (entry.isDir()) {
            ok = zip_dir_add(archive, name.constData(), ZIP_FL_ENC_UTF_8) >= 0;
            continue;
        }
        zip_source_t *source =
            zip_source_file(archive, QFile::encodeName(entry.absoluteFilePath()).constData(), 0, -1);
        const zip_int64_t index =
            source ? zip_file_add(archive, name.constData(), source, ZIP_FL_ENC_UTF_8 | ZIP_FL_OVERWRITE)
                   : -1;
        if (index < 0) {
            if (source)
                zip_source_free(source);
            ok = false;
            break;
        }
        // The package travels to a handheld over the local network.
        zip_set_file_compression(archive, zip_uint64_t(index), ZIP_CM_DEFLATE, 9);
    }
    if (!ok) {
        if (error)
            *error = QString::fromUtf8(zip_strerror(archive));
        zip_discard(archive);
        return false;
    }
    if (zip_close(archive) != 0) {
        if (error)
            *error = QString::fromUtf8(zip_strerror(archive));
        zip_discard(archive);
        return false;
    }
    return true;
}
