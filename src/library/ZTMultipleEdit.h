#pragma once

#include "model/ZTMediaKind.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>

class ZTItem;
class ZTViewPipeline;

// The multiple-item sheet's logic: chosen attributes are set on every
// selected item, and lists of names are merged (renamed, removed, added)
// rather than replaced. A key applies only once ticked.
class ZTMultipleItemEditController {
public:
    // A row of a name table: renames are told from additions by the original.
    struct NameRow {
        bool isNew = false;
        QString newName;
        QString originalName;
    };

    explicit ZTMultipleItemEditController(ZTViewPipeline &pipeline);
    virtual ~ZTMultipleItemEditController();
    static std::unique_ptr<ZTMultipleItemEditController> forKind(ZTMediaKind kind, ZTViewPipeline &pipeline);

    void clear();
    void handleItems(const QList<ZTItem *> &items);
    void handleCacheDictionary(const QVariantMap &cacheDictionary) { m_cacheDictionary = cacheDictionary; }
    const QList<ZTItem *> &items() const { return m_items; }

    const QVariantMap &itemDictionary() const { return m_itemDictionary; }
    // Typing in a field ticks its key.
    void setValue(const QString &key, const QVariant &value);
    void setApplies(const QString &key, bool applies) { m_boolDictionary.insert(key, applies); }
    bool applies(const QString &key) const { return m_boolDictionary.value(key).toBool(); }

    // ---- name tables ("array" keys) ----
    QList<NameRow> nameRows(const QString &key) const { return m_nameRows.value(key); }
    void renameName(const QString &key, const QString &originalName, const QString &newName);
    void addAttributeWithKey(const QString &key, const QString &name);
    void removeAttributeWithKey(const QString &key, const QString &name);
    QStringList removedNames(const QString &key) const { return m_removeDictionary.value(key); }

    // Applies the ticked keys to every item. Returns whether anything applied.
    bool save();
    void saveItem(ZTItem &item, const QString &key, const QString &type);

protected:
    // The role maps a kind keeps behind a name list ("authors" → "authorRoleDicts").
    virtual QString roleDictsKeyForKey(const QString &key) const;

private:
    // A name's new form: itself, its rename, or empty when it goes.
    QString fateOfName(const QString &name, const QString &key) const;
    QStringList additions(const QString &key) const;
    QStringList mergedNames(const QStringList &current, const QString &key) const;
    QVariantList mergedRoleDicts(const QVariantList &current, const QString &key) const;

    ZTViewPipeline &m_pipeline;
    QList<ZTItem *> m_items;
    QVariantMap m_itemDictionary;
    QVariantMap m_boolDictionary;
    QHash<QString, QStringList> m_removeDictionary;
    QHash<QString, QList<NameRow>> m_nameRows;
    QVariantMap m_cacheDictionary;
};

class ZTMultipleBookEditController : public ZTMultipleItemEditController {
public:
    using ZTMultipleItemEditController::ZTMultipleItemEditController;

protected:
    QString roleDictsKeyForKey(const QString &key) const override;
};

class ZTMultipleAlbumEditController : public ZTMultipleItemEditController {
public:
    using ZTMultipleItemEditController::ZTMultipleItemEditController;
};

class ZTMultipleMovieEditController : public ZTMultipleItemEditController {
public:
    using ZTMultipleItemEditController::ZTMultipleItemEditController;
};

class ZTMultipleComicEditController : public ZTMultipleItemEditController {
public:
    using ZTMultipleItemEditController::ZTMultipleItemEditController;

protected:
    QString roleDictsKeyForKey(const QString &key) const override;
};

// The clear sheet: blanks the chosen keys on every selected item that is not locked.
class ZTClearAttributesController {
public:
    explicit ZTClearAttributesController(ZTViewPipeline &pipeline);

    void clear();
    void handleItems(const QList<ZTItem *> &items);
    // The sheet's header: "3 books" and the like.
    QString headerText() const;
    void clickColumnMatrix(const QString &key, bool chosen);
    void selectAllCheckboxes(bool chosen);
    QStringList chosenKeys() const;

    // Returns false when no key was chosen (nothing happens then).
    bool save();

private:
    ZTViewPipeline &m_pipeline;
    QList<ZTItem *> m_items;
    QStringList m_chosen;
};
