#include "store/ZTManagedObjectContext.h"

#include "store/ZTEntity.h"
#include "store/ZTObjectStore.h"
#include "store/ZTOid.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>

ZTManagedObjectContext::ZTManagedObjectContext(const ZTObjectModel &model)
    : m_model(model), m_uniqueId(ZTOid::uuid())
{
}

ZTManagedObjectContext::~ZTManagedObjectContext() = default;

bool ZTManagedObjectContext::open(const QString &documentPath, QString *error)
{
    m_documentPath = documentPath;
    auto store = std::make_unique<ZTObjectStore>(m_model);
    if (!store->open(dataFilePath(), error))
        return false;
    m_storeIdentifier = store->storeIdentifier();
    if (!store->loadAll(*this, error))
        return false;
    m_store = std::move(store);
    return true;
}

bool ZTManagedObjectContext::isOpen() const
{
    return m_store != nullptr || m_inMemory;
}

void ZTManagedObjectContext::openInMemory()
{
    m_inMemory = true;
}

QString ZTManagedObjectContext::dataFilePath() const
{
    return QDir(m_documentPath).filePath(QStringLiteral("data.sql"));
}

QString ZTManagedObjectContext::imageFolderPath() const
{
    return QDir(m_documentPath).filePath(QStringLiteral("images"));
}

QString ZTManagedObjectContext::stagingRootPath()
{
    return QDir(QDir::tempPath()).filePath(QStringLiteral("ZettaryImages"));
}

QString ZTManagedObjectContext::stagingFolderPath() const
{
    return QDir(stagingRootPath()).filePath(m_uniqueId);
}

ZTManagedObject *ZTManagedObjectContext::create(const ZTEntity *entity)
{
    ZTManagedObject *object = entity->factory ? entity->factory() : new ZTManagedObject;
    object->setUp(entity, this);
    m_owned.emplace_back(object);
    return object;
}

void ZTManagedObjectContext::registerObject(ZTManagedObject *object)
{
    m_byEntity[object->entity()].append(object);
}

ZTManagedObject *ZTManagedObjectContext::insertNewObject(const QString &entityName)
{
    const ZTEntity *entity = m_model.entity(entityName);
    if (!entity || entity->isAbstract)
        return nullptr;
    ZTManagedObject *object = create(entity);
    object->m_state = ZTManagedObject::State::Inserted;
    object->m_temporaryNumber = m_nextTemporary++;
    registerObject(object);
    m_inserted.append(object);
    object->awakeFromInsert();
    return object;
}

void ZTManagedObjectContext::deleteObject(ZTManagedObject *object)
{
    if (!object || object->m_deleted || object->m_context != this)
        return;
    object->m_deleted = true;
    m_sharedNamesChanged = true;
    // Leave the in-memory inverse lists; the row stays alive (marked) until the
    // context goes, so pointers held elsewhere never dangle.
    const ZTEntity *e = object->entity();
    for (int slot = 0; slot < e->toOne.size(); ++slot) {
        ZTManagedObject *target = object->toOne(slot);
        const QString &inverse = e->toOne[slot].inverse;
        if (target && !inverse.isEmpty()) {
            int inv = target->entity()->toManySlot(inverse);
            if (inv >= 0)
                target->m_toMany[size_t(inv)].removeOne(object);
        }
    }
    if (object->isInserted())
        m_inserted.removeOne(object);
    else
        m_deleted.append(object);
    m_byEntity[e].removeOne(object);
}

void ZTManagedObjectContext::noteUpdated(ZTManagedObject *object)
{
    if (!object->m_inUpdatedList) {
        object->m_inUpdatedList = true;
        m_updated.append(object);
    }
}

QList<ZTManagedObject *> ZTManagedObjectContext::fetch(const QString &entityName, const QString &key,
                                                       const QVariant &value, const QString &sortKey,
                                                       bool ascending) const
{
    QList<ZTManagedObject *> result;
    const ZTEntity *entity = m_model.entity(entityName);
    if (!entity)
        return result;
    for (auto it = m_byEntity.constBegin(); it != m_byEntity.constEnd(); ++it) {
        if (!it.key()->isKindOf(entityName))
            continue;
        if (key.isEmpty()) {
            result += it.value();
            continue;
        }
        const int attributeSlot = it.key()->attributeSlot(key);
        const int relationSlot = it.key()->toOneSlot(key);
        const QVariant wanted = attributeSlot >= 0 && value.isValid() && !value.isNull()
                                    ? ZTManagedObject::normalized(it.key()->attributes[attributeSlot], value)
                                    : QVariant();
        for (ZTManagedObject *object : it.value()) {
            if (attributeSlot >= 0) {
                const QVariant v = object->primitiveValue(attributeSlot);
                if (v == wanted || (!v.isValid() && !wanted.isValid()))
                    result << object;
            } else if (relationSlot >= 0) {
                if (object->toOne(relationSlot) == value.value<ZTManagedObject *>())
                    result << object;
            }
        }
    }
    // Rows in the order they were stored, new rows last, unless asked otherwise.
    if (!sortKey.isEmpty()) {
        std::stable_sort(result.begin(), result.end(), [&](ZTManagedObject *a, ZTManagedObject *b) {
            const QVariant va = a->primitiveValueForKey(sortKey), vb = b->primitiveValueForKey(sortKey);
            const auto order = QVariant::compare(va, vb);
            return ascending ? order == QPartialOrdering::Less : order == QPartialOrdering::Greater;
        });
    }
    return result;
}

ZTManagedObject *ZTManagedObjectContext::firstObjectWithText(const QString &entityName, const QString &key,
                                                             const QString &text) const
{
    QString memoKey;
    memoKey.reserve(entityName.size() + key.size() + text.size() + 2);
    memoKey.append(entityName).append(QChar(0x1F)).append(key).append(QChar(0x1F)).append(text);
    if (ZTManagedObject *row = m_firstByText.value(memoKey, nullptr)) {
        // Rows are only ever added after the others, so the first one found
        // stays first while it lives and keeps its text.
        if (!row->isDeleted() && row->primitiveValueForKey(key).toString() == text)
            return row;
        m_firstByText.remove(memoKey);
    }
    const QList<ZTManagedObject *> rows = fetch(entityName, key, text);
    if (rows.isEmpty())
        return nullptr;
    m_firstByText.insert(memoKey, rows.first());
    return rows.first();
}

QList<ZTManagedObject *> ZTManagedObjectContext::fetchRelated(const QString &entityName,
                                                              const QString &relationship,
                                                              const ZTManagedObject *target) const
{
    return fetch(entityName, relationship, QVariant::fromValue(const_cast<ZTManagedObject *>(target)));
}

ZTManagedObject *ZTManagedObjectContext::objectWithPrimaryKey(const QString &entityName,
                                                              qint64 primaryKey) const
{
    if (primaryKey <= 0)
        return nullptr;
    for (ZTManagedObject *object : fetch(entityName))
        if (object->primaryKey() == primaryKey)
            return object;
    return nullptr;
}

ZTManagedObject *ZTManagedObjectContext::objectWithURI(const QString &uri) const
{
    // "x-zettary://STORE/Entity/pN"
    const QStringList parts = uri.split(QLatin1Char('/'));
    if (parts.size() < 5 || !parts.last().startsWith(QLatin1Char('p')))
        return nullptr;
    bool ok = false;
    const qint64 key = parts.last().mid(1).toLongLong(&ok);
    if (!ok)
        return nullptr;
    return objectWithPrimaryKey(parts[parts.size() - 2], key);
}

QList<ZTManagedObject *> ZTManagedObjectContext::insertedObjects() const
{
    return m_inserted;
}

QList<ZTManagedObject *> ZTManagedObjectContext::updatedObjects() const
{
    QList<ZTManagedObject *> result;
    for (ZTManagedObject *object : m_updated)
        if (object->isUpdated())
            result << object;
    return result;
}

QList<ZTManagedObject *> ZTManagedObjectContext::deletedObjects() const
{
    return m_deleted;
}

bool ZTManagedObjectContext::hasChanges() const
{
    return !m_inserted.isEmpty() || !m_deleted.isEmpty() || !updatedObjects().isEmpty();
}

bool ZTManagedObjectContext::save(QString *error)
{
    QSet<QString> deletedFiles;
    static const QString imageEntity = QStringLiteral("ZTImage");
    static const QString filenameKey = QStringLiteral("filename");
    for (ZTManagedObject *object : m_deleted)
        if (object->entityName() == imageEntity) {
            const QString name = object->primitiveValueForKey(filenameKey).toString().trimmed();
            if (!name.isEmpty())
                deletedFiles.insert(name);
        }
    for (ZTManagedObject *object : std::as_const(m_inserted))
        object->willSave();
    for (ZTManagedObject *object : std::as_const(m_updated))
        if (!object->isDeleted())
            object->willSave();
    if (m_store) {
        if (!m_store->commit(*this, error))
            return false;
    } else if (!m_inMemory) {
        if (error)
            *error = QStringLiteral("The library has no store.");
        return false;
    }
    for (ZTManagedObject *object : m_inserted) {
        object->m_state = ZTManagedObject::State::Stored;
        object->m_dirty = 0;
        object->m_dirtyRelations = 0;
        object->didSave();
    }
    for (ZTManagedObject *object : m_updated) {
        object->m_dirty = 0;
        object->m_dirtyRelations = 0;
        object->m_inUpdatedList = false;
        if (!object->isDeleted())
            object->didSave();
    }
    m_inserted.clear();
    m_updated.clear();
    m_deleted.clear();

    QDir().mkpath(stagingFolderPath());
    m_imagesDeleted.unite(deletedFiles);
    const QDir staging(stagingFolderPath());
    const QDir images(imageFolderPath());
    for (const QString &name : std::as_const(m_imagesDeleted)) {
        if (name.contains(QLatin1Char('/')))
            continue;
        QFile::remove(staging.filePath(name));
        if (!m_documentPath.isEmpty())
            QFile::remove(images.filePath(name));
    }
    m_imagesDeleted.clear();
    if (!m_documentPath.isEmpty() && images.exists()) {
        for (const QString &name : staging.entryList(QDir::Files)) {
            const QString target = images.filePath(name);
            QFile::remove(target);
            // A failed move leaves the file staged for the next commit.
            QFile::rename(staging.filePath(name), target);
        }
    }
    return true;
}

ZTManagedObject *ZTManagedObjectContext::objectForEntity(const QString &entityName, const QString &oid) const
{
    if (entityName.isEmpty() || oid.isEmpty())
        return nullptr;
    auto table = m_oidTable.constFind(entityName);
    if (table == m_oidTable.constEnd())
        return nullptr;
    return table->value(oid, nullptr);
}

QList<ZTManagedObject *> ZTManagedObjectContext::objectsForEntity(const QString &entityName,
                                                                  const QStringList &oids) const
{
    QList<ZTManagedObject *> result;
    auto table = m_oidTable.constFind(entityName);
    if (table == m_oidTable.constEnd())
        return result;
    result.reserve(oids.size());
    for (const QString &oid : oids)
        if (ZTManagedObject *object = table->value(oid, nullptr))
            result << object;
    return result;
}

QHash<QString, ZTManagedObject *> &ZTManagedObjectContext::mutableOidTable(const QString &entityName)
{
    noteOidTableChanged(entityName);
    return m_oidTable[entityName];
}

ZTManagedObjectContext::ResolvedObjects ZTManagedObjectContext::resolvedObjects(const QString &entityName,
                                                                                const QStringList &oids) const
{
    const quint64 generation = m_oidTableGenerations.value(entityName);
    for (size_t i = 0; i < m_resolved.size(); ++i) {
        Resolved &entry = m_resolved[i];
        if (entry.generation == generation && entry.oids.isSharedWith(oids) &&
            entry.entityName == entityName) {
            std::rotate(m_resolved.begin(), m_resolved.begin() + qsizetype(i),
                        m_resolved.begin() + qsizetype(i) + 1);
            return m_resolved.front().objects;
        }
    }
    auto objects = std::make_shared<std::vector<ZTManagedObject *>>();
    objects->reserve(size_t(oids.size()));
    const auto table = m_oidTable.constFind(entityName);
    if (table == m_oidTable.constEnd()) {
        objects->resize(size_t(oids.size()), nullptr);
    } else {
        // Hashing an oid reads its characters, which lie anywhere in memory:
        // they are asked for a few oids ahead.
        constexpr qsizetype ahead = 8;
        for (qsizetype i = 0; i < oids.size(); ++i) {
            if (i + ahead < oids.size())
                __builtin_prefetch(oids.at(i + ahead).constData());
            objects->push_back(table->value(oids.at(i), nullptr));
        }
    }
    // Short lists cost little to look up again and are not worth a place.
    if (oids.size() >= s_resolvedMinimum)
        keepResolved(Resolved{entityName, oids, generation, objects});
    return objects;
}

void ZTManagedObjectContext::rememberResolved(const QString &entityName, const QStringList &oids,
                                              std::vector<ZTManagedObject *> objects) const
{
    if (oids.size() < s_resolvedMinimum || qsizetype(objects.size()) != oids.size())
        return;
    keepResolved(Resolved{entityName, oids, m_oidTableGenerations.value(entityName),
                          std::make_shared<const std::vector<ZTManagedObject *>>(std::move(objects))});
}

void ZTManagedObjectContext::keepResolved(Resolved entry) const
{
    // A few lists are in play at once: the main list, the selected list, a search result.
    constexpr size_t kept = 4;
    m_resolved.insert(m_resolved.begin(), std::move(entry));
    if (m_resolved.size() > kept)
        m_resolved.pop_back();
}

void ZTManagedObjectContext::updateOidObjectDictionaryWithObjects(const QList<ZTManagedObject *> &objects,
                                                                  const QString &entityName)
{
    QHash<QString, ZTManagedObject *> table;
    table.reserve(objects.size());
    for (ZTManagedObject *object : objects) {
        const QString oid = object->oid();
        if (!oid.isEmpty())
            table.insert(oid, object);
    }
    m_oidTable.insert(entityName, table);
    noteOidTableChanged(entityName);
}

void ZTManagedObjectContext::setOidObject(const QString &entityName, const QString &oid,
                                          ZTManagedObject *object)
{
    if (!oid.isEmpty() && object) {
        m_oidTable[entityName].insert(oid, object);
        noteOidTableChanged(entityName);
    }
}

void ZTManagedObjectContext::removeOidObject(const QString &entityName, const QString &oid)
{
    auto table = m_oidTable.find(entityName);
    if (table != m_oidTable.end() && table->remove(oid))
        noteOidTableChanged(entityName);
}

void ZTManagedObjectContext::insertImageWithFilename(const QString &filename, const QByteArray &data)
{
    if (filename.isEmpty() || data.isNull() || filename.contains(QLatin1Char('/')))
        return;
    QDir().mkpath(stagingFolderPath());
    QSaveFile file(QDir(stagingFolderPath()).filePath(filename));
    if (file.open(QIODevice::WriteOnly)) {
        file.write(data);
        file.commit();
    }
}

void ZTManagedObjectContext::insertImageWithFilename(const QString &filename, const QString &originalFilename,
                                                     const ZTManagedObjectContext *source, bool isNew)
{
    if (filename.isEmpty() || originalFilename.isEmpty() || !source || filename.contains(QLatin1Char('/')) ||
        originalFilename.contains(QLatin1Char('/')))
        return;
    const QString from =
        QDir(isNew ? source->stagingFolderPath() : source->imageFolderPath()).filePath(originalFilename);
    QDir().mkpath(stagingFolderPath());
    const QString to = QDir(stagingFolderPath()).filePath(filename);
    QFile::remove(to);
    QFile::copy(from, to);
}

void ZTManagedObjectContext::deleteImageWithFilename(const QString &filename)
{
    const QString name = filename.trimmed();
    if (!name.isEmpty())
        m_imagesDeleted.insert(name);
}

QString ZTManagedObjectContext::roleIndexKey(const QString &personName, const QString &role)
{
    return personName + QChar(0) + role;
}

QHash<QString, ZTManagedObject *> &ZTManagedObjectContext::nameIndex(const QString &entityName)
{
    auto it = m_nameIndex.find(entityName);
    if (it != m_nameIndex.end())
        return *it;
    QHash<QString, ZTManagedObject *> index;
    const auto table = m_oidTable.value(entityName);
    const ZTEntity *entity = m_model.entity(entityName);
    const bool isRole = entity && entity->attributeSlot(QStringLiteral("role")) >= 0;
    for (ZTManagedObject *row : fetch(entityName)) {
        if (!table.contains(row->oid()))
            continue;
        QString key;
        if (isRole) {
            ZTManagedObject *person = row->toOne(0);
            const QVariant role = row->primitiveValueForKey(QStringLiteral("role"));
            key = roleIndexKey(person ? person->primitiveValueForKey(QStringLiteral("name")).toString()
                                      : QString(),
                               role.isValid() ? role.toString() : QStringLiteral("\x01unset"));
        } else {
            key = row->primitiveValueForKey(QStringLiteral("name")).toString();
        }
        if (!index.contains(key))
            index.insert(key, row);
    }
    return m_nameIndex.insert(entityName, index).value();
}
