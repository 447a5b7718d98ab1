#include "library/ZTDocument.h"

#include "base/ZTNotificationCenter.h"
#include "library/ZTAttributeTables.h"
#include "library/ZTKindDocuments.h"
#include "library/ZTLibraryModel.h"
#include "lists/ZTList.h"
#include "lists/ZTSmartList.h"
#include "model/ZTItem.h"
#include "model/ZTItemResources.h"
#include "store/ZTEntity.h"
#include "store/ZTManagedObjectContext.h"
#include "store/ZTOid.h"
#include "store/ZTPropertyList.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <sys/stat.h>

#include <limits>

namespace {
const QString s_priceLocale = QStringLiteral("ZTPriceLocale");
const QString s_code = QStringLiteral("code");
} // namespace

ZTDocument::ZTDocument(ZTMediaKind kind) : m_kind(kind), m_oid(ZTOid::uuid()) {}

ZTDocument::~ZTDocument() = default;

std::unique_ptr<ZTDocument> ZTDocument::create(ZTMediaKind kind)
{
    switch (kind) {
    case ZTMediaKind::Book:
        return std::make_unique<ZTBookDocument>();
    case ZTMediaKind::Album:
        return std::make_unique<ZTAlbumDocument>();
    case ZTMediaKind::Movie:
        return std::make_unique<ZTMovieDocument>();
    case ZTMediaKind::Comic:
        return std::make_unique<ZTComicDocument>();
    }
    return nullptr;
}

bool ZTDocument::kindForPath(const QString &path, ZTMediaKind *kind)
{
    QString p = path;
    while (p.endsWith(QLatin1Char('/')) && p.size() > 1)
        p.chop(1);
    return ZTMediaKinds::fromPackageExtension(QFileInfo(p).suffix(), kind);
}

const ZTAttributeTables &ZTDocument::attributeTables() const
{
    return ZTAttributeTables::forKind(m_kind);
}

QString ZTDocument::displayName() const
{
    QString p = m_path;
    while (p.endsWith(QLatin1Char('/')) && p.size() > 1)
        p.chop(1);
    return QFileInfo(p).completeBaseName();
}

// ---- the template store ----

bool ZTDocument::writeTemplateStore(const QString &path, QString *error)
{
    QFile::remove(path);
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) {
            if (error)
                *error = QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
            return false;
        }
    }
    const QString folder = QFileInfo(path).absolutePath();
    const QString name = QFileInfo(path).fileName();
    ZTManagedObjectContext context(ZTLibraryModel::objectModel());
    // The session opens "data.sql" inside a folder; work beside the target.
    QTemporaryDir work(folder + QStringLiteral("/.template-XXXXXX"));
    if (!work.isValid() || !QFile::rename(path, work.filePath(QStringLiteral("data.sql")))) {
        if (error)
            *error = QStringLiteral("cannot prepare the template in %1").arg(folder);
        return false;
    }
    if (!context.open(work.path(), error))
        return false;
    ZTList *main = ZTList::createInManagedObjectContext(&context, 0);
    main->setName(QStringLiteral("Library"));
    main->setLibraryFlag(true);
    for (const QString &code : ZTItemResources::locales())
        context.insertNewObject(QStringLiteral("ZTLocale"))->setPrimitiveValueForKey(code, s_code);
    for (const QString &code : ZTItemResources::priceLocales())
        context.insertNewObject(s_priceLocale)->setPrimitiveValueForKey(code, s_code);
    if (!context.save(error))
        return false;
    return QFile::rename(work.filePath(QStringLiteral("data.sql")), QDir(folder).filePath(name));
}

QByteArray ZTDocument::templateStoreData()
{
    QFile resource(QStringLiteral(":/data.sql"));
    if (resource.open(QIODevice::ReadOnly))
        return resource.readAll();
    // A build without the shipped template makes one from the resources.
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("data.sql"));
    if (!writeTemplateStore(path))
        return {};
    QFile made(path);
    return made.open(QIODevice::ReadOnly) ? made.readAll() : QByteArray();
}

bool ZTDocument::createPackage(const QString &path, ZTMediaKind kind, QString *error)
{
    Q_UNUSED(kind)
    QDir dir(path);
    if (dir.exists() && !dir.isEmpty()) {
        if (error)
            *error = QStringLiteral("\"%1\" already exists").arg(path);
        return false;
    }
    if (!QDir().mkpath(path) || !dir.mkpath(QStringLiteral("images"))) {
        if (error)
            *error = QStringLiteral("cannot create \"%1\"").arg(path);
        return false;
    }
    const QByteArray data = templateStoreData();
    QFile store(dir.filePath(QStringLiteral("data.sql")));
    if (data.isEmpty() || !store.open(QIODevice::WriteOnly) || store.write(data) != data.size()) {
        if (error)
            *error = QStringLiteral("cannot write the store of \"%1\"").arg(path);
        return false;
    }
    store.close();
    const QString version = QCoreApplication::applicationVersion().isEmpty()
                                ? QStringLiteral(ZETTARY_VERSION)
                                : QCoreApplication::applicationVersion();
    ZTPropertyList::writeFile(dir.filePath(QStringLiteral(".version.xml")),
                              QVariantMap{{QStringLiteral("version"), version}}, ZTPropertyList::Format::Xml);
    return true;
}

// ---- opening ----

bool ZTDocument::readFromURL(const QString &path, QString *error)
{
    QFileInfo info(path);
    if (!info.exists() || !info.isDir()) {
        if (error)
            *error = QStringLiteral("\"%1\" is not a library").arg(path);
        return false;
    }
    m_path = info.absoluteFilePath();
    if (!QFileInfo::exists(QDir(m_path).filePath(QStringLiteral("data.sql")))) {
        if (error)
            *error = QStringLiteral("\"%1\" holds no store (data.sql)").arg(path);
        return false;
    }
    m_context = std::make_unique<ZTManagedObjectContext>(ZTLibraryModel::objectModel());
    QString message;
    if (!m_context->open(m_path, &message)) {
        if (error)
            *error = message;
        m_context.reset();
        return false;
    }
    if (!QFileInfo(QDir(m_path).filePath(QStringLiteral("images"))).isDir())
        m_openProblems << QStringLiteral("the library has no images folder; covers read as absent");
    loadInitialObjects();
    return true;
}

void ZTDocument::loadInitialObjects()
{
    fixDatabase();
    ZTManagedObjectContext *context = m_context.get();
    const QList<ZTManagedObject *> mains =
        context->fetch(QStringLiteral("ZTList"), QStringLiteral("libraryFlag"), true);
    for (const char *entity : {"ZTLocale", "ZTPriceLocale", "ZTImage", "ZTLendingContext"})
        for (ZTManagedObject *row : context->fetch(QLatin1String(entity)))
            row->awakeFromFetch();
    // Shared rows enter the oid table before any item reads its names through it.
    for (const char *entity :
         {"ZTAuthor", "ZTAuthorRole", "ZTSubject", "ZTKeyword", "ZTStory", "ZTMusicalArtist",
          "ZTGraphicalArtist", "ZTGraphicalArtistRole", "ZTCharacter", "ZTCharacterRole", "ZTTrack",
          "ZTActor", "ZTActorRole", "ZTDirector", "ZTStory"}) {
        const QList<ZTManagedObject *> rows = context->fetch(QLatin1String(entity));
        for (ZTManagedObject *row : rows)
            row->awakeFromFetch();
        context->updateOidObjectDictionaryWithObjects(rows, QLatin1String(entity));
    }
    const QList<ZTManagedObject *> items = context->fetch(itemEntityName());
    context->updateOidObjectDictionaryWithObjects(items, itemEntityName());
    int unreadable = 0;
    for (ZTManagedObject *row : items) {
        row->awakeFromFetch();
        if (row->oid().isEmpty())
            ++unreadable;
    }
    if (unreadable)
        m_openProblems << QStringLiteral("%1 item rows have no identity and cannot be shown").arg(unreadable);
    for (ZTManagedObject *row : mains)
        row->awakeFromFetch();
    m_mainList = mains.isEmpty() ? nullptr : static_cast<ZTList *>(mains.first());
    if (!m_mainList) {
        // A store without its main list still shows its items.
        m_mainList = ZTList::createInManagedObjectContext(context, 0);
        m_mainList->setName(QStringLiteral("Library"));
        m_mainList->setLibraryFlag(true);
        QStringList oids;
        for (ZTManagedObject *row : items)
            if (!row->oid().isEmpty())
                oids << row->oid();
        m_mainList->setItemOids(oids);
        m_openProblems << QStringLiteral("the library had no main list; one was made");
    }
    m_itemLists.clear();
    for (ZTManagedObject *row : context->fetch(QStringLiteral("ZTList"), QStringLiteral("libraryFlag"), false,
                                               QStringLiteral("order"))) {
        row->awakeFromFetch();
        m_itemLists << static_cast<ZTList *>(row);
    }
}

void ZTDocument::fixDatabase()
{
    ZTManagedObjectContext *context = m_context.get();
    QList<ZTManagedObject *> work = context->fetch(s_priceLocale);
    QList<ZTManagedObject *> keep, drop;
    // The key is the number behind the entity name in the identity's text form.
    auto keyOf = [](ZTManagedObject *row) {
        const QString uri = row->objectIDURI();
        const QString tail = uri.mid(uri.lastIndexOf(s_priceLocale) + s_priceLocale.size());
        QString digits;
        for (QChar c : tail)
            if (c.isDigit())
                digits += c;
        return digits.toLongLong();
    };
    while (!work.isEmpty()) {
        ZTManagedObject *a = work.first();
        if (work.size() >= 2) {
            const QString code = a->primitiveValueForKey(s_code).toString();
            for (int i = 1; i < work.size(); ++i) {
                ZTManagedObject *b = work[i];
                if (b->primitiveValueForKey(s_code).toString() != code)
                    continue;
                if (keyOf(a) < keyOf(b)) {
                    keep << a;
                    drop << b;
                } else {
                    keep << b;
                    drop << a;
                }
                work.removeAt(i);
                break;
            }
        }
        work.removeFirst();
    }
    for (int i = 0; i < drop.size(); ++i) {
        for (const char *relation : {"toPriceLocale", "toPricePaidLocale"})
            for (ZTManagedObject *item :
                 context->fetchRelated(QStringLiteral("ZTItem"), QLatin1String(relation), drop[i]))
                item->setToOneForKey(QLatin1String(relation), keep[i]);
    }
    for (ZTManagedObject *row : drop)
        context->deleteObject(row);
    if (!drop.isEmpty())
        context->save();
    // Old libraries lack this currency.
    if (context->fetch(s_priceLocale, s_code, QStringLiteral("HKD")).isEmpty()) {
        context->insertNewObject(s_priceLocale)->setPrimitiveValueForKey(QStringLiteral("HKD"), s_code);
        context->save();
    }
}

void ZTDocument::documentDidOpen()
{
    m_changeCount = 0;
    ZTNotificationCenter::defaultCenter().post(ZTDocumentNotification::opening, this);
}

void ZTDocument::close()
{
    ZTNotificationCenter::defaultCenter().post(ZTDocumentNotification::closing, this);
}

// ---- items ----

ZTItem *ZTDocument::itemForOid(const QString &oid) const
{
    return m_context ? static_cast<ZTItem *>(m_context->objectForEntity(itemEntityName(), oid)) : nullptr;
}

QList<ZTItem *> ZTDocument::itemsForOids(const QStringList &oids) const
{
    QList<ZTItem *> items;
    if (!m_context)
        return items;
    const auto rows = m_context->resolvedObjects(itemEntityName(), oids);
    items.reserve(qsizetype(rows->size()));
    for (ZTManagedObject *row : *rows)
        if (row)
            items << static_cast<ZTItem *>(row);
    return items;
}

QList<ZTItem *> ZTDocument::allItems() const
{
    return m_mainList ? itemsForOids(m_mainList->itemOids()) : QList<ZTItem *>();
}

ZTItem *ZTDocument::addItemFromDictionary(const QVariantMap &dictionary)
{
    ZTItem *item = ZTItem::itemFromAttributeDictionary(m_kind, dictionary, m_context.get());
    if (!item)
        return nullptr;
    m_context->setOidObject(itemEntityName(), item->oid(), item);
    if (m_mainList)
        m_mainList->addItem(item->oid());
    insertOid(item->oid());
    updateSmartListsWithItem(item);
    return item;
}

void ZTDocument::removeItemsFromLibrary(const QStringList &oids)
{
    const QSet<QString> gone(oids.begin(), oids.end());
    auto strip = [&](ZTList *list) {
        QStringList kept;
        bool changed = false;
        for (const QString &oid : list->itemOids()) {
            if (gone.contains(oid))
                changed = true;
            else
                kept << oid;
        }
        if (changed)
            list->setItemOids(kept);
    };
    if (m_mainList)
        strip(m_mainList);
    for (ZTList *list : std::as_const(m_itemLists))
        strip(list);
    for (const QString &oid : oids) {
        ZTItem *item = itemForOid(oid);
        if (!item)
            continue;
        item->replaceCover({}, {}, {}, {}, false);
        item->removeLending();
        m_context->removeOidObject(itemEntityName(), oid);
        m_context->deleteObject(item);
        deleteOid(oid);
    }
}

// ---- saving ----

QList<QPair<QString, QString>> ZTDocument::prunePairs() const
{
    return {{QStringLiteral("ZTKeyword"), QStringLiteral("keywordOids")}};
}

void ZTDocument::prune()
{
    // Nothing can have lost its last user unless a name array changed or an
    // item went: a save after ordinary edits skips the walk over every item.
    if (!m_context || !m_context->takeSharedNamesChanged())
        return;
    const QList<ZTItem *> items = [this] {
        QList<ZTItem *> all;
        for (ZTManagedObject *row : m_context->fetch(itemEntityName()))
            all << static_cast<ZTItem *>(row);
        return all;
    }();
    // The people an item names are the people of its role rows: their use is
    // read from the roles in use rather than from every item again.
    struct PersonThroughRole {
        const char *personKey;
        const char *roleKey;
        const char *roleEntity;
    };
    static const PersonThroughRole throughRoles[] = {
        {"authorOids", "authorRoleOids", "ZTAuthorRole"},
        {"actorOids", "actorRoleOids", "ZTActorRole"},
        {"characterOids", "characterRoleOids", "ZTCharacterRole"},
        {"artistOids", "artistRoleOids", "ZTGraphicalArtistRole"}};
    QHash<QString, QSet<QString>> usedByKey;
    auto usedOids = [&](const QString &key) -> const QSet<QString> & {
        auto found = usedByKey.constFind(key);
        if (found != usedByKey.constEnd())
            return *found;
        QSet<QString> used;
        bool derived = false;
        for (const PersonThroughRole &through : throughRoles) {
            if (key != QLatin1String(through.personKey))
                continue;
            const auto roles = m_context->oidObjectDictionary().value(QLatin1String(through.roleEntity));
            if (roles.isEmpty())
                break;
            derived = true;
            QSet<QString> roleOids;
            for (ZTItem *item : items)
                for (const QString &oid : item->valueForKey(QLatin1String(through.roleKey)).toStringList())
                    roleOids.insert(oid);
            for (const QString &roleOid : std::as_const(roleOids))
                if (ZTManagedObject *role = roles.value(roleOid))
                    if (ZTManagedObject *person = role->toOne(0))
                        used.insert(person->oid());
            usedByKey.insert(QLatin1String(through.roleKey), roleOids);
            break;
        }
        if (!derived)
            for (ZTItem *item : items)
                for (const QString &oid : item->valueForKey(key).toStringList())
                    used.insert(oid);
        return *usedByKey.insert(key, used);
    };
    for (const auto &[entity, key] : prunePairs()) {
        auto &table = m_context->mutableOidTable(entity);
        if (table.isEmpty())
            continue;
        const QSet<QString> &used = usedOids(key);
        QStringList unused;
        for (auto it = table.constBegin(); it != table.constEnd(); ++it)
            if (!used.contains(it.key()))
                unused << it.key();
        for (const QString &oid : unused) {
            m_context->deleteObject(table.value(oid));
            table.remove(oid);
        }
    }
}

bool ZTDocument::saveDocument(QString *error)
{
    if (!m_context)
        return false;
    prune();
    writeListData();
    if (!m_context->save(error))
        return false;
    QVariantMap info;
    const qint64 node = nodeID();
    if (node != std::numeric_limits<qint64>::max())
        info.insert(QStringLiteral("nodeID"), node);
    ZTNotificationCenter::defaultCenter().post(ZTDocumentNotification::savedLibrary, this, info);
    updateChangeCount(ChangeType::Cleared);
    return true;
}

QVariantMap ZTDocument::oidChangeDictionary() const
{
    QVariantMap map;
    auto oidsOf = [this](const QList<ZTManagedObject *> &rows) {
        QStringList oids;
        for (ZTManagedObject *row : rows)
            if (row->entity()->isKindOf(QStringLiteral("ZTItem")))
                oids << row->oid();
        return oids;
    };
    map.insert(QStringLiteral("oidsInserted"),
               oidsOf(m_context ? m_context->insertedObjects() : QList<ZTManagedObject *>()));
    map.insert(QStringLiteral("oidsUpdated"),
               oidsOf(m_context ? m_context->updatedObjects() : QList<ZTManagedObject *>()));
    map.insert(QStringLiteral("oidsDeleted"),
               oidsOf(m_context ? m_context->deletedObjects() : QList<ZTManagedObject *>()));
    return map;
}

void ZTDocument::insertOid(const QString &oid)
{
    if (!oid.isNull())
        m_oidsInserted.insert(oid);
}
void ZTDocument::updateOid(const QString &oid)
{
    if (!oid.isNull())
        m_oidsUpdated.insert(oid);
}
void ZTDocument::deleteOid(const QString &oid)
{
    if (!oid.isNull())
        m_oidsDeleted.insert(oid);
}
void ZTDocument::deleteOids(const QStringList &oids)
{
    for (const QString &oid : oids)
        deleteOid(oid);
}

void ZTDocument::updateChangeCount(ChangeType change)
{
    if (change == ChangeType::Cleared)
        m_changeCount = 0;
    else
        ++m_changeCount;
}

qint64 ZTDocument::nodeID() const
{
    struct stat st;
    if (m_path.isEmpty() || ::stat(QFile::encodeName(m_path).constData(), &st) != 0)
        return std::numeric_limits<qint64>::max();
    return qint64(st.st_ino);
}

// ---- kinds ----

QList<QPair<QString, QString>> ZTBookDocument::prunePairs() const
{
    return ZTDocument::prunePairs() +
           QList<QPair<QString, QString>>{{QStringLiteral("ZTAuthor"), QStringLiteral("authorOids")},
                                          {QStringLiteral("ZTAuthorRole"), QStringLiteral("authorRoleOids")},
                                          {QStringLiteral("ZTSubject"), QStringLiteral("subjectOids")}};
}

QList<QPair<QString, QString>> ZTAlbumDocument::prunePairs() const
{
    return ZTDocument::prunePairs() +
           QList<QPair<QString, QString>>{{QStringLiteral("ZTMusicalArtist"), QStringLiteral("artistOids")},
                                          {QStringLiteral("ZTTrack"), QStringLiteral("trackOids")}};
}

QList<QPair<QString, QString>> ZTMovieDocument::prunePairs() const
{
    return ZTDocument::prunePairs() +
           QList<QPair<QString, QString>>{{QStringLiteral("ZTDirector"), QStringLiteral("directorOids")},
                                          {QStringLiteral("ZTActor"), QStringLiteral("actorOids")},
                                          {QStringLiteral("ZTActorRole"), QStringLiteral("actorRoleOids")}};
}

QList<QPair<QString, QString>> ZTComicDocument::prunePairs() const
{
    return ZTDocument::prunePairs() +
           QList<QPair<QString, QString>>{
               {QStringLiteral("ZTStory"), QStringLiteral("storyOids")},
               {QStringLiteral("ZTGraphicalArtist"), QStringLiteral("artistOids")},
               {QStringLiteral("ZTGraphicalArtistRole"), QStringLiteral("artistRoleOids")},
               {QStringLiteral("ZTCharacter"), QStringLiteral("characterOids")},
               {QStringLiteral("ZTCharacterRole"), QStringLiteral("characterRoleOids")}};
}
