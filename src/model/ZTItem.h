#pragma once

#include "model/ZTItemText.h"
#include "model/ZTMediaKind.h"
#include "store/ZTManagedObject.h"

#include <QDateTime>
#include <QHash>
#include <QImage>
#include <QStringList>
#include <QVariantMap>

#include <memory>

class ZTImage;
class ZTLendingContext;

// One catalogued thing. Every subsystem moves data in and out of an item through
// its attribute keys and its dictionary form; a key the item does not know reads
// as nothing and writing it does nothing.
class ZTItem : public ZTManagedObject {
public:
    ZTItem();
    ~ZTItem() override;

    virtual ZTMediaKind mediaKind() const = 0;
    QString itemType() const { return ZTMediaKinds::itemType(mediaKind()); }
    virtual QString xmlTagNameSingular() const = 0;
    // The code attributes of the kind, in order ("isbn", "lccn" for a book).
    virtual QStringList itemCodeTypes() const = 0;

    // Creation and copying.
    static ZTItem *itemFromAttributeDictionary(ZTMediaKind kind, const QVariantMap &dictionary,
                                               ZTManagedObjectContext *context);
    ZTItem *clone(ZTManagedObjectContext *target) const;

    // The dictionary form.
    QVariantMap dictionary() const;
    void handleDictionary(const QVariantMap &dictionary);
    bool takeAttributesFromDictionary(const QVariantMap &dictionary);
    void clearAttributes(const QStringList &keys);

    QVariant valueForKey(const QString &key) const override;
    void setValueForKey(const QVariant &value, const QString &key) override;
    bool hasKey(const QString &key) const;

    // A list key whose values stand one for one on shared rows the item names
    // by oid (keywords, subjects, authors): a pass over many items can count
    // such values row by row, making each row's value once, instead of making
    // every item's list. The item's list is the values of the rows found, in
    // order; a row's blank value is left out when `dropsBlanks`, else it is a
    // blank entry.
    struct RowValues {
        const QStringList &(*oids)(const ZTItem &) = nullptr;
        QString entity;
        QString (*value)(const ZTManagedObject &row) = nullptr;
        bool dropsBlanks = false;
    };

    // Reading one key of many items of a kind (the view's caches, sorts and
    // filters): the key is looked up once, then each read is a direct call.
    // read() answers exactly what valueForKey() would.
    struct KeyReader {
        QString key;
        const ZTEntity *entity = nullptr;
        QVariant (*get)(const ZTItem &) = nullptr;
        int slot = -1;
        // Set for a key whose values come from rows; only for items of `entity`.
        const RowValues *rows = nullptr;
        QVariant read(const ZTItem &item) const;
        // For a stored attribute, the stored value without a copy; false when the
        // key is computed (then use read()). *value is null for an empty slot.
        bool peek(const ZTItem &item, const QVariant **value) const
        {
            if (get || slot < 0 || item.entity() != entity)
                return false;
            *value = item.primitiveValuePointer(slot);
            return true;
        }
    };
    KeyReader readerForKey(const QString &key) const;

    // Derived values.
    virtual void updateAttributes();
    void updateTitleWithoutLeadingArticle();
    void updateOverdueStatus();
    void updateCoverImageStatus();

    // Common attributes.
    QString title() const;
    void setTitle(const QString &title);
    QString titleWithoutLeadingArticle() const { return m_titleWithoutLeadingArticle; }
    QVariant year() const;
    QVariant originalYear() const;
    bool isOwned() const;
    bool isLocked() const;
    bool isSigned() const;
    bool isUsed() const;
    bool isOverdue() const { return m_overdueFlag; }
    bool hasCoverImage() const { return m_hasCoverImageFlag; }
    bool isNew() const { return isTemporaryID(); }
    int rating() const;

    // Locales by code; the currency falls back to the default row's code.
    QString locale() const;
    QString priceLocale() const;
    QString pricePaidLocale() const;
    // The currency rows themselves (the default row when none is set), for
    // passes that total many items and read each row's code once.
    ZTManagedObject *priceLocaleRow() const;
    ZTManagedObject *pricePaidLocaleRow() const;
    static QString localeCodeOfRow(const ZTManagedObject *row);
    void setLocale(const QString &code);
    void setPriceLocale(const QString &code);
    void setPricePaidLocale(const QString &code);
    QString priceString() const;
    QString pricePaidString() const;

    // Keywords.
    QStringList keywords() const;
    void setKeywords(const QStringList &names);
    const QStringList &keywordOids() const { return m_keywordOids; }
    void setKeywordOids(const QStringList &oids);

    // Lending.
    ZTLendingContext *lendingContext() const;
    QString lentToName() const;
    QString lentToEmail() const;
    QDateTime dateLent() const;
    QDateTime dateDue() const;
    void setLentToName(const QString &name);
    void setLentToEmail(const QString &email);
    void setDateLent(const QDateTime &date);
    void setDateDue(const QDateTime &date);
    bool isLentOut() const { return lendingContext() != nullptr; }
    // True makes an empty loan if there is none; false or nothing ends the loan.
    void setLentOutFlag(const QVariant &flag);
    QString lentToNameLastNameFirst() const;
    void removeLending();

    // The cover.
    ZTImage *coverImage() const;
    QVariantMap handleImage(const QImage &image, const QByteArray &imageData, const QString &url,
                            const QString &type, bool isUser);
    // Runs handleImage and the store's file work in the order callers must keep.
    void replaceCover(const QImage &image, const QByteArray &imageData, const QString &url,
                      const QString &type, bool isUser);
    QByteArray largestImageAvailable() const;
    QByteArray largestImageAvailableUncached() const;
    QImage image() const;
    static bool isValidImage(const QByteArray &bytes);

    // Search.
    bool containsString(const QString &text) const;
    QString indexedString() const;
    virtual QStringList indexKeysSingle() const;
    virtual QStringList indexKeysMultiple() const;

    // Shop links: maps with "site" and "url".
    QVariantList urlDictionariesWithAssociateTag(const QString &tag) const;
    QString urlWithAssociateTag(const QString &tag) const;
    QString url() const { return urlWithAssociateTag({}); }

    void awakeFromInsert() override;
    void awakeFromFetch() override;

    // Shared names: the oid of the row with exactly that name, inserted if there is none.
    QStringList oidArrayForIncomingArray(const QStringList &names, const QString &entityName);
    QStringList namesForOids(const QStringList &oids, const QString &entityName) const;
    // Role rows: maps with "name" and "role". `blankRole` says how a missing role is looked up.
    enum class MissingRole { Empty, LiteralNil, Unset };
    QStringList oidArrayForRoleDicts(const QVariantList &dicts, const QString &roleEntity,
                                     const QString &personEntity, const QString &personKey,
                                     const QString &inverseKey, MissingRole missing);
    // The same from names and roles already taken out of their maps; an
    // invalid role is a missing one.
    struct IncomingRole {
        QString name;
        QVariant role;
    };
    static QList<IncomingRole> rolesForNames(const QStringList &names);
    QStringList oidArrayForRoles(const QList<IncomingRole> &entries, const QString &roleEntity,
                                 const QString &personEntity, const QString &personKey, MissingRole missing);
    QVariantList roleDictsForOids(const QStringList &oids, const QString &roleEntity,
                                  const QString &personKey) const;
    QStringList personOidsForRoleOids(const QStringList &oids, const QString &roleEntity,
                                      const QString &personKey) const;
    static QStringList stringsForArray(const QVariantList &dicts, const QString &key);
    // What stringsForArray(roleDictsForOids(...), name or role) gives, read
    // straight from the rows: names are read for every item by the view's
    // passes, imports and exports, and a map per row costs more than the read.
    enum class RoleField { Name, Role };
    // The name and role of each role row, in order, as roleDictsForOids has them.
    QList<ZTItemText::NameAndRole> roleEntriesForOids(const QStringList &oids, const QString &roleEntity,
                                                      const QString &personKey) const;
    QStringList roleStringsForOids(const QStringList &oids, const QString &roleEntity,
                                   const QString &personKey, RoleField field) const;
    // A list of texts from whatever list-like value a dictionary holds.
    static QStringList variantToStrings(const QVariant &value);
    // Role maps from what a role key is given: maps as they are, and a plain
    // name (what the name keys read) as a name without a role.
    static QVariantList roleDictsFromValue(const QVariant &value);

    // Transient picture data handed in through a dictionary.
    struct Transient {
        QByteArray imageSmall, imageMedium, imageLarge, imageUser;
        QString imageSmallUrl, imageMediumUrl, imageLargeUrl;
        QImage storedImage;
    };
    Transient &transient();
    const Transient *transientIfAny() const { return m_transient.get(); }

protected:
    struct Accessor {
        QVariant (*get)(const ZTItem &) = nullptr;
        void (*set)(ZTItem &, const QVariant &) = nullptr;
        const RowValues *rows = nullptr;
    };
    using AccessorTable = QHash<QString, Accessor>;
    static AccessorTable commonAccessors();

    // Table entries built from member functions of a kind.
    template <typename Kind, auto Method> static QVariant read(const ZTItem &item)
    {
        return QVariant::fromValue((static_cast<const Kind &>(item).*Method)());
    }
    template <typename Kind, auto Method> static QVariant readFirst(const ZTItem &item)
    {
        const QStringList values = (static_cast<const Kind &>(item).*Method)();
        return values.isEmpty() ? QVariant() : QVariant(values.first());
    }
    template <typename Kind, auto Method> static void writeStrings(ZTItem &item, const QVariant &value)
    {
        (static_cast<Kind &>(item).*Method)(variantToStrings(value));
    }
    template <typename Kind, auto Method> static void writeRoles(ZTItem &item, const QVariant &value)
    {
        (static_cast<Kind &>(item).*Method)(roleDictsFromValue(value));
    }

    virtual const AccessorTable &accessors() const = 0;
    // The value of a shared name row (a keyword, a subject, an artist).
    static QString rowName(const ZTManagedObject &row);

    // Every key an item of the kind answers to, resolved once per kind: its
    // accessor, or the slot of its stored value. One lookup serves a read, a
    // comparison and a write of the same key.
    struct KeyAccess {
        const Accessor *accessor = nullptr;
        const ZTAttribute *attribute = nullptr; // the stored attribute of that name, if any
        int slot = -1;
        bool settable = false; // setValueForKey may change it
    };
    using KeyAccessTable = QHash<QString, KeyAccess>;
    const KeyAccessTable &keyAccess() const;
    QVariant read(const KeyAccess &access) const;
    void write(const KeyAccess &access, const QVariant &value);

    // Kind hooks.
    virtual void addDictionaryValues(QVariantMap &dictionary) const = 0;
    virtual void handleKindDictionary(const QVariantMap &dictionary) = 0;
    virtual bool kindContainsString(const QString &text) const = 0;
    virtual void decodeBlobs() = 0;

    // Name arrays live in memory as oid lists; their stored bytes are written
    // just before the row is and dropped again after, so a large library keeps
    // one copy. `blobKey` must outlive the item (a file-level constant).
    void storeOidArray(QStringList &member, const QStringList &oids, const QString &blobKey);
    // Reads the stored bytes, sharing each oid's text with the row it names.
    QStringList decodeOidBlob(const QString &blobKey, const QString &entityName);
    void willSave() override;
    void didSave() override;
    void setDate(const QString &key, const QVariant &value);

private:
    QStringList m_keywordOids;
    QString m_titleWithoutLeadingArticle;
    bool m_overdueFlag = false;
    bool m_hasCoverImageFlag = false;
    std::unique_ptr<Transient> m_transient;
    std::vector<std::pair<const QString *, const QStringList *>> m_unwrittenArrays;
};

namespace ZTItemKey {
inline const QString oid = QStringLiteral("oid");
inline const QString title = QStringLiteral("title");
inline const QString locale = QStringLiteral("locale");
inline const QString priceLocale = QStringLiteral("priceLocale");
inline const QString pricePaidLocale = QStringLiteral("pricePaidLocale");
inline const QString keywords = QStringLiteral("keywords");
inline const QString allKeys = QStringLiteral("allKeys");
inline const QString image = QStringLiteral("image");
inline const QString imageUrl = QStringLiteral("imageUrl");
inline const QString originalIsbn = QStringLiteral("originalIsbn");
inline const QString dateAdded = QStringLiteral("dateAdded");
inline const QString dateModified = QStringLiteral("dateModified");
inline const QString dateDue = QStringLiteral("dateDue");
} // namespace ZTItemKey
