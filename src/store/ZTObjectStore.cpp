#include "store/ZTObjectStore.h"

#include "store/ZTEntity.h"
#include "store/ZTManagedObjectContext.h"
#include "store/ZTOid.h"

#include <QDateTime>
#include <QSet>
#include <QTimeZone>

#include <sqlite3.h>

#include <cmath>
#include <string>
#include <string_view>
#include <unordered_map>

namespace {

// Dates are stored as seconds from 2001-01-01 UTC, as property lists count them.
const double s_referenceEpoch = 978307200.0;

class Statement {
public:
    Statement(sqlite3 *db, const QString &sql)
    {
        const QByteArray utf8 = sql.toUtf8();
        if (sqlite3_prepare_v2(db, utf8.constData(), int(utf8.size()), &m_stmt, nullptr) != SQLITE_OK)
            m_stmt = nullptr;
    }
    ~Statement() { sqlite3_finalize(m_stmt); }
    sqlite3_stmt *get() const { return m_stmt; }
    explicit operator bool() const { return m_stmt != nullptr; }

private:
    sqlite3_stmt *m_stmt = nullptr;
};

QString sqlType(ZTAttributeType type)
{
    switch (type) {
    case ZTAttributeType::String:
        return QStringLiteral("VARCHAR");
    case ZTAttributeType::Integer:
    case ZTAttributeType::Boolean:
        return QStringLiteral("INTEGER");
    case ZTAttributeType::Double:
    case ZTAttributeType::Date:
        return QStringLiteral("FLOAT");
    case ZTAttributeType::Blob:
        return QStringLiteral("BLOB");
    }
    return QStringLiteral("BLOB");
}

int bindValue(sqlite3_stmt *stmt, int index, const ZTAttribute &a, const QVariant &v)
{
    if (!v.isValid() || v.isNull())
        return sqlite3_bind_null(stmt, index);
    switch (a.type) {
    case ZTAttributeType::String: {
        const QByteArray utf8 = v.toString().toUtf8();
        return sqlite3_bind_text(stmt, index, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
    }
    case ZTAttributeType::Integer:
        return sqlite3_bind_int64(stmt, index, v.toLongLong());
    case ZTAttributeType::Boolean:
        return sqlite3_bind_int(stmt, index, v.toBool() ? 1 : 0);
    case ZTAttributeType::Double:
        return sqlite3_bind_double(stmt, index, v.toDouble());
    case ZTAttributeType::Date:
        return sqlite3_bind_double(stmt, index,
                                   double(v.toDateTime().toMSecsSinceEpoch()) / 1000.0 - s_referenceEpoch);
    case ZTAttributeType::Blob: {
        const QByteArray bytes = v.toByteArray();
        return sqlite3_bind_blob(stmt, index, bytes.constData(), int(bytes.size()), SQLITE_TRANSIENT);
    }
    }
    return sqlite3_bind_null(stmt, index);
}

// Short texts repeat across a library (languages, genres, publishers,
// currencies): each column keeps one copy of every short text it has read, so
// 100,000 items share a few hundred strings instead of holding their own. That
// saves memory and keeps the values that passes over all items compare hot in
// the cache. A column whose texts keep differing (titles) stops collecting.
class TextInterner {
public:
    QString text(const char *utf8, int size)
    {
        if (size > s_longest || (m_closed && m_table.empty()))
            return QString::fromUtf8(utf8, size);
        const std::string_view bytes(utf8, size_t(size));
        auto it = m_table.find(bytes);
        if (it != m_table.end()) {
            ++m_hits;
            return it->second;
        }
        QString value = QString::fromUtf8(utf8, size);
        if (!m_closed) {
            if (m_table.size() >= s_most) {
                // Mostly different texts: looking them up would only cost time.
                m_closed = true;
                if (m_hits < m_table.size())
                    m_table.clear();
            } else
                m_table.emplace(std::string(bytes), value);
        }
        return value;
    }

private:
    struct Hash {
        using is_transparent = void;
        size_t operator()(std::string_view v) const { return std::hash<std::string_view>{}(v); }
    };
    static constexpr int s_longest = 64;
    static constexpr size_t s_most = 4096;
    std::unordered_map<std::string, QString, Hash, std::equal_to<>> m_table;
    size_t m_hits = 0;
    bool m_closed = false;
};

QVariant columnValue(sqlite3_stmt *stmt, int col, ZTAttributeType type, TextInterner *interner = nullptr)
{
    const int t = sqlite3_column_type(stmt, col);
    if (t == SQLITE_NULL)
        return {};
    switch (type) {
    case ZTAttributeType::String: {
        const char *text = reinterpret_cast<const char *>(sqlite3_column_text(stmt, col));
        const int size = sqlite3_column_bytes(stmt, col);
        return interner ? interner->text(text, size) : QString::fromUtf8(text, size);
    }
    case ZTAttributeType::Integer:
        return qlonglong(sqlite3_column_int64(stmt, col));
    case ZTAttributeType::Boolean:
        return sqlite3_column_int64(stmt, col) != 0;
    case ZTAttributeType::Double:
        return sqlite3_column_double(stmt, col);
    case ZTAttributeType::Date: {
        const double seconds = sqlite3_column_double(stmt, col);
        return QDateTime::fromMSecsSinceEpoch(std::llround(seconds * 1000.0) + qint64(s_referenceEpoch) * 1000,
                                              Qt::UTC);
    }
    case ZTAttributeType::Blob: {
        const void *data = sqlite3_column_blob(stmt, col);
        return QByteArray(static_cast<const char *>(data), sqlite3_column_bytes(stmt, col));
    }
    }
    return {};
}

// Every column of a table: the union of its entities' attributes and to-one keys.
struct TableLayout {
    QStringList columns;
    QHash<QString, QString> types;
};

TableLayout layoutFor(const ZTObjectModel &model, const ZTEntity *root)
{
    TableLayout layout;
    for (const ZTEntity *e : model.entitiesInTable(root->name)) {
        for (const ZTAttribute &a : e->attributes)
            if (!layout.types.contains(a.column)) {
                layout.columns << a.column;
                layout.types.insert(a.column, sqlType(a.type));
            }
        for (const ZTRelationship &r : e->toOne)
            if (!layout.types.contains(r.column)) {
                layout.columns << r.column;
                layout.types.insert(r.column, QStringLiteral("INTEGER"));
            }
    }
    return layout;
}

} // namespace

ZTObjectStore::ZTObjectStore(const ZTObjectModel &model) : m_model(model) {}

ZTObjectStore::~ZTObjectStore() { close(); }

void ZTObjectStore::close()
{
    if (m_db) {
        sqlite3_close_v2(m_db);
        m_db = nullptr;
    }
}

QString ZTObjectStore::lastError() const
{
    return m_db ? QString::fromUtf8(sqlite3_errmsg(m_db)) : QStringLiteral("no store");
}

bool ZTObjectStore::exec(const char *sql, QString *error)
{
    char *message = nullptr;
    if (sqlite3_exec(m_db, sql, nullptr, nullptr, &message) != SQLITE_OK) {
        if (error)
            *error = QString::fromUtf8(message ? message : "unknown SQLite error");
        sqlite3_free(message);
        return false;
    }
    return true;
}

bool ZTObjectStore::open(const QString &path, QString *error)
{
    close();
    const QByteArray utf8 = path.toUtf8();
    if (sqlite3_open_v2(utf8.constData(), &m_db, SQLITE_OPEN_READWRITE, nullptr) != SQLITE_OK) {
        if (error)
            *error = QStringLiteral("The library store \"%1\" could not be opened: %2").arg(path, lastError());
        close();
        return false;
    }
    sqlite3_busy_timeout(m_db, 5000);
    // A store that is not SQLite shows up at the first read.
    QString message;
    if (!exec("PRAGMA synchronous=FULL; PRAGMA foreign_keys=OFF;", &message) ||
        !exec("SELECT count(*) FROM sqlite_master;", &message)) {
        if (error)
            *error = QStringLiteral("The library store \"%1\" is not readable: %2").arg(path, message);
        close();
        return false;
    }
    if (!ensureSchema(error)) {
        close();
        return false;
    }
    return true;
}

bool ZTObjectStore::ensureSchema(QString *error)
{
    QString message;
    if (!exec("CREATE TABLE IF NOT EXISTS Z_METADATA (Z_KEY VARCHAR PRIMARY KEY, Z_VALUE VARCHAR);", &message)) {
        if (error)
            *error = QStringLiteral("The library store is not writable: %1").arg(message);
        return false;
    }
    {
        Statement select(m_db, QStringLiteral("SELECT Z_VALUE FROM Z_METADATA WHERE Z_KEY='identifier'"));
        if (select && sqlite3_step(select.get()) == SQLITE_ROW)
            m_identifier = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(select.get(), 0)));
    }
    if (m_identifier.isEmpty()) {
        m_identifier = ZTOid::uuid().toUpper();
        Statement insert(m_db, QStringLiteral("INSERT OR REPLACE INTO Z_METADATA VALUES ('identifier', ?)"));
        const QByteArray id = m_identifier.toUtf8();
        if (insert) {
            sqlite3_bind_text(insert.get(), 1, id.constData(), int(id.size()), SQLITE_TRANSIENT);
            sqlite3_step(insert.get());
        }
    }
    for (const ZTEntity *root : m_model.rootEntities()) {
        const TableLayout layout = layoutFor(m_model, root);
        QSet<QString> existing;
        {
            Statement info(m_db, QStringLiteral("PRAGMA table_info(%1)").arg(root->tableName));
            while (info && sqlite3_step(info.get()) == SQLITE_ROW)
                existing.insert(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(info.get(), 1))));
        }
        if (existing.isEmpty()) {
            QString sql = QStringLiteral("CREATE TABLE %1 (Z_PK INTEGER PRIMARY KEY, Z_ENT INTEGER, Z_OPT INTEGER")
                              .arg(root->tableName);
            for (const QString &c : layout.columns)
                sql += QStringLiteral(", %1 %2").arg(c, layout.types.value(c));
            sql += QStringLiteral(")");
            if (!exec(sql.toUtf8().constData(), &message)) {
                if (error)
                    *error = QStringLiteral("The library store could not be prepared: %1").arg(message);
                return false;
            }
            continue;
        }
        for (const QString &c : layout.columns) {
            if (existing.contains(c))
                continue;
            const QString sql = QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 %3").arg(root->tableName, c, layout.types.value(c));
            if (!exec(sql.toUtf8().constData(), &message)) {
                if (error)
                    *error = QStringLiteral("The library store could not be prepared: %1").arg(message);
                return false;
            }
        }
    }
    return true;
}

bool ZTObjectStore::loadAll(ZTManagedObjectContext &context, QString *error)
{
    // Foreign keys are read as numbers first and turned into pointers once
    // every table is in memory.
    QHash<QString, QHash<qint64, ZTManagedObject *>> byKey; // root table -> pk -> row
    QList<ZTManagedObject *> loaded;
    for (const ZTEntity *root : m_model.rootEntities()) {
        Statement select(m_db, QStringLiteral("SELECT * FROM %1 ORDER BY Z_PK").arg(root->tableName));
        if (!select) {
            if (error)
                *error = QStringLiteral("The table %1 could not be read: %2").arg(root->tableName, lastError());
            return false;
        }
        sqlite3_stmt *stmt = select.get();
        const int columnCount = sqlite3_column_count(stmt);
        QHash<QString, int> columnIndex;
        for (int i = 0; i < columnCount; ++i)
            columnIndex.insert(QString::fromUtf8(sqlite3_column_name(stmt, i)), i);
        const int pkColumn = columnIndex.value(QStringLiteral("Z_PK"), -1);
        const int entColumn = columnIndex.value(QStringLiteral("Z_ENT"), -1);
        // Per concrete entity, the column of each attribute slot and to-one slot.
        struct Plan {
            QVector<int> attributeColumns;
            std::vector<TextInterner> interners; // one per attribute slot
            QVector<int> relationColumns;
        };
        QHash<const ZTEntity *, Plan> plans;
        for (const ZTEntity *e : m_model.entitiesInTable(root->name)) {
            Plan plan;
            for (const ZTAttribute &a : e->attributes)
                plan.attributeColumns << columnIndex.value(a.column, -1);
            plan.interners.resize(size_t(e->attributes.size()));
            for (const ZTRelationship &r : e->toOne)
                plan.relationColumns << columnIndex.value(r.column, -1);
            plans.insert(e, plan);
        }
        const QList<const ZTEntity *> concrete = m_model.entitiesInTable(root->name);
        auto &keys = byKey[root->tableName];
        qint64 maxKey = 0;
        int rc;
        while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
            const qint64 pk = pkColumn >= 0 ? sqlite3_column_int64(stmt, pkColumn) : 0;
            maxKey = qMax(maxKey, pk);
            const ZTEntity *entity = nullptr;
            if (entColumn >= 0)
                entity = m_model.entityForNumber(sqlite3_column_int(stmt, entColumn));
            if (!entity || !entity->isKindOf(root->name) || entity->isAbstract) {
                // A row of an unknown kind: only a table with one concrete entity can take it.
                if (concrete.size() == 1)
                    entity = concrete.first();
                else
                    continue;
            }
            ZTManagedObject *object = context.create(entity);
            object->m_primaryKey = pk;
            Plan &plan = plans[entity];
            // Values come out of the store in slot order and already typed, so
            // they go straight into the row's value array.
            int present = 0;
            for (int slot = 0; slot < plan.attributeColumns.size(); ++slot) {
                const int col = plan.attributeColumns[slot];
                if (col >= 0 && sqlite3_column_type(stmt, col) != SQLITE_NULL)
                    ++present;
            }
            object->m_values.reserve(size_t(present));
            for (int slot = 0; slot < plan.attributeColumns.size(); ++slot) {
                const int col = plan.attributeColumns[slot];
                if (col < 0 || sqlite3_column_type(stmt, col) == SQLITE_NULL)
                    continue;
                object->m_values.push_back(columnValue(stmt, col, entity->attributes[slot].type, &plan.interners[size_t(slot)]));
                object->m_present |= quint64(1) << slot;
            }
            if (!plan.relationColumns.isEmpty()) {
                object->m_pendingKeys.reset(new qint64[size_t(plan.relationColumns.size())]);
                for (int slot = 0; slot < plan.relationColumns.size(); ++slot) {
                    const int col = plan.relationColumns[slot];
                    object->m_pendingKeys[size_t(slot)] =
                        col >= 0 && sqlite3_column_type(stmt, col) != SQLITE_NULL ? sqlite3_column_int64(stmt, col) : 0;
                }
            }
            object->m_dirty = 0;
            object->m_dirtyRelations = 0;
            keys.insert(pk, object);
            context.registerObject(object);
            loaded << object;
        }
        if (rc != SQLITE_DONE) {
            if (error)
                *error = QStringLiteral("The table %1 could not be read: %2").arg(root->tableName, lastError());
            return false;
        }
        m_maxPrimaryKey.insert(root->tableName, maxKey);
    }
    for (ZTManagedObject *object : loaded) {
        object->m_state = ZTManagedObject::State::Stored;
        if (!object->m_pendingKeys)
            continue;
        const ZTEntity *entity = object->entity();
        for (int slot = 0; slot < entity->toOne.size(); ++slot) {
            const qint64 key = object->m_pendingKeys[size_t(slot)];
            if (key <= 0)
                continue;
            const ZTEntity *destination = m_model.entity(entity->toOne[slot].destination);
            if (!destination)
                continue;
            ZTManagedObject *target = byKey.value(destination->tableName).value(key, nullptr);
            if (target && target->entity()->isKindOf(destination->name))
                object->setToOne(slot, target);
        }
        object->m_pendingKeys.reset();
    }
    for (ZTManagedObject *object : loaded) {
        object->m_dirty = 0;
        object->m_dirtyRelations = 0;
        object->m_inUpdatedList = false;
    }
    context.m_updated.clear();
    return true;
}

bool ZTObjectStore::commit(ZTManagedObjectContext &context, QString *error)
{
    if (!m_db) {
        if (error)
            *error = QStringLiteral("The library has no store.");
        return false;
    }
    QString message;
    if (!exec("BEGIN IMMEDIATE;", &message)) {
        if (error)
            *error = message;
        return false;
    }
    // New rows get their keys before anything is written, so that rows that
    // point at each other can be written in any order.
    QHash<QString, qint64> maxKeys = m_maxPrimaryKey;
    QList<ZTManagedObject *> inserted;
    for (ZTManagedObject *object : context.m_inserted)
        if (!object->isDeleted())
            inserted << object;
    for (ZTManagedObject *object : inserted)
        object->m_primaryKey = ++maxKeys[object->entity()->tableName];

    auto fail = [&](const QString &what) {
        if (error)
            *error = what + QStringLiteral(": ") + lastError();
        exec("ROLLBACK;", nullptr);
        for (ZTManagedObject *object : inserted)
            object->m_primaryKey = 0;
        return false;
    };
    auto keyOf = [](ZTManagedObject *target) -> qint64 {
        if (!target || target->isDeleted())
            return 0;
        return target->primaryKey();
    };

    for (ZTManagedObject *object : inserted) {
        const ZTEntity *e = object->entity();
        QStringList columns{QStringLiteral("Z_PK"), QStringLiteral("Z_ENT"), QStringLiteral("Z_OPT")};
        for (const ZTAttribute &a : e->attributes)
            columns << a.column;
        for (const ZTRelationship &r : e->toOne)
            columns << r.column;
        QString sql = QStringLiteral("INSERT INTO %1 (%2) VALUES (?").arg(e->tableName, columns.join(QLatin1Char(',')));
        for (int i = 1; i < columns.size(); ++i)
            sql += QStringLiteral(",?");
        sql += QLatin1Char(')');
        Statement insert(m_db, sql);
        if (!insert)
            return fail(QStringLiteral("A new row could not be written"));
        sqlite3_stmt *stmt = insert.get();
        int index = 1;
        sqlite3_bind_int64(stmt, index++, object->primaryKey());
        sqlite3_bind_int(stmt, index++, e->entityNumber);
        sqlite3_bind_int(stmt, index++, 1);
        for (const ZTAttribute &a : e->attributes)
            bindValue(stmt, index++, a, object->primitiveValue(a.slot));
        for (int slot = 0; slot < e->toOne.size(); ++slot) {
            const qint64 key = keyOf(object->toOne(slot));
            if (key > 0)
                sqlite3_bind_int64(stmt, index++, key);
            else
                sqlite3_bind_null(stmt, index++);
        }
        if (sqlite3_step(stmt) != SQLITE_DONE)
            return fail(QStringLiteral("A new row could not be written"));
    }
    for (ZTManagedObject *object : context.m_updated) {
        if (object->isDeleted() || object->isInserted() || (object->m_dirty == 0 && object->m_dirtyRelations == 0))
            continue;
        const ZTEntity *e = object->entity();
        QStringList assignments;
        QList<int> attributeSlots, relationSlots;
        for (const ZTAttribute &a : e->attributes)
            if (object->m_dirty & (quint64(1) << a.slot)) {
                assignments << a.column + QStringLiteral("=?");
                attributeSlots << a.slot;
            }
        for (int slot = 0; slot < e->toOne.size(); ++slot)
            if (object->m_dirtyRelations & (quint32(1) << slot)) {
                assignments << e->toOne[slot].column + QStringLiteral("=?");
                relationSlots << slot;
            }
        if (assignments.isEmpty())
            continue;
        Statement update(m_db, QStringLiteral("UPDATE %1 SET %2, Z_OPT=COALESCE(Z_OPT,0)+1 WHERE Z_PK=?")
                                   .arg(e->tableName, assignments.join(QLatin1Char(','))));
        if (!update)
            return fail(QStringLiteral("A changed row could not be written"));
        sqlite3_stmt *stmt = update.get();
        int index = 1;
        for (int slot : attributeSlots)
            bindValue(stmt, index++, e->attributes[slot], object->primitiveValue(slot));
        for (int slot : relationSlots) {
            const qint64 key = keyOf(object->toOne(slot));
            if (key > 0)
                sqlite3_bind_int64(stmt, index++, key);
            else
                sqlite3_bind_null(stmt, index++);
        }
        sqlite3_bind_int64(stmt, index, object->primaryKey());
        if (sqlite3_step(stmt) != SQLITE_DONE)
            return fail(QStringLiteral("A changed row could not be written"));
    }
    for (ZTManagedObject *object : context.m_deleted) {
        if (object->primaryKey() <= 0 || object->isInserted())
            continue;
        Statement del(m_db, QStringLiteral("DELETE FROM %1 WHERE Z_PK=?").arg(object->entity()->tableName));
        if (!del)
            return fail(QStringLiteral("A row could not be removed"));
        sqlite3_bind_int64(del.get(), 1, object->primaryKey());
        if (sqlite3_step(del.get()) != SQLITE_DONE)
            return fail(QStringLiteral("A row could not be removed"));
    }
    if (!exec("COMMIT;", &message)) {
        if (error)
            *error = message;
        exec("ROLLBACK;", nullptr);
        for (ZTManagedObject *object : inserted)
            object->m_primaryKey = 0;
        return false;
    }
    m_maxPrimaryKey = maxKeys;
    return true;
}
