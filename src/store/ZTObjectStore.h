#pragma once

#include <QHash>
#include <QString>

struct sqlite3;
class ZTManagedObjectContext;
class ZTObjectModel;
class ZTEntity;

// The SQLite side of a session: one table per root entity ("Z" + upper-cased
// name), Z_PK as the permanent identity, Z_ENT naming the concrete entity, a
// column per attribute and a key column per to-one relationship.
class ZTObjectStore {
public:
    explicit ZTObjectStore(const ZTObjectModel &model);
    ~ZTObjectStore();

    bool open(const QString &path, QString *error);
    void close();
    QString storeIdentifier() const { return m_identifier; }

    // Reads every row of every table into the context.
    bool loadAll(ZTManagedObjectContext &context, QString *error);
    // Writes the context's change sets in one transaction.
    bool commit(ZTManagedObjectContext &context, QString *error);

    // Creates the tables and columns of the model that the file lacks.
    bool ensureSchema(QString *error);

private:
    bool exec(const char *sql, QString *error);
    QString lastError() const;
    const ZTObjectModel &m_model;
    sqlite3 *m_db = nullptr;
    QString m_identifier;
    QHash<QString, qint64> m_maxPrimaryKey; // by table
};
