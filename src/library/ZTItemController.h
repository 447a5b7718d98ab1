#pragma once

#include "model/ZTMediaKind.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QVariantMap>

#include <memory>

class ZTItem;
class ZTViewPipeline;

// The logic of the single-item edit sheet: a working map of attribute keys
// that the sheet's fields read and write, the rating and the cover, and the
// save that carries them into the item and spreads the change. The sheet only
// gathers input; nothing here shows anything.
class ZTItemController {
public:
    explicit ZTItemController(ZTViewPipeline &pipeline);
    virtual ~ZTItemController();
    // The controller of the library's kind (ZTBookController for books …).
    static std::unique_ptr<ZTItemController> forKind(ZTMediaKind kind, ZTViewPipeline &pipeline);

    void clear();
    void handleCacheDictionary(const QVariantMap &cacheDictionary) { m_cacheDictionary = cacheDictionary; }
    const QVariantMap &cacheDictionary() const { return m_cacheDictionary; }
    void handleIsAdding(bool adding) { m_isAdding = adding; }
    bool isAdding() const { return m_isAdding; }
    // Opening for a new item: cleared, given the library's completion values.
    void prepareToAdd();
    void handleItem(ZTItem *item);
    ZTItem *item() const { return m_item; }

    // ---- what the sheet's fields do ----
    const QVariantMap &itemDictionary() const { return m_itemDictionary; }
    void setValue(const QString &key, const QVariant &value);
    bool isDirty() const { return m_isDirty; }
    int ratingControl() const { return m_rating; }
    void setRatingControl(int rating);
    // A new picture in the cover view, by the user or from a lookup.
    void setCover(const QImage &image, const QByteArray &rawImageData, const QString &imageType, bool isUser);
    void removeCover();
    // The lent-out switch; off clears the four lending keys of the sheet.
    void clickLentOutButton(bool on);
    // A name picked from the completion list brings its contact address.
    void chooseBorrower(const QString &name);

    // Carries the sheet into the item (a new one when adding). Returns the
    // item, or null when nothing could be made.
    ZTItem *save();

    // ---- stepping through the rows on view ----
    bool showNextItem();
    bool showPreviousItem();
    void updatePreviousNextButtonState();
    bool hasPreviousOid() const { return m_hasPreviousOid; }
    bool hasNextOid() const { return m_hasNextOid; }

protected:
    // The kind's chance to turn localised labels back into stored values.
    virtual void prepareToSave(QVariantMap &dictionary) const;

private:
    bool showItemWithOid(const QString &oid);

    ZTViewPipeline &m_pipeline;
    ZTItem *m_item = nullptr;
    QVariantMap m_itemDictionary;
    QVariantMap m_cacheDictionary;
    bool m_isAdding = false;
    bool m_isDirty = false;
    int m_rating = 0;
    struct Cover {
        bool hasChanged = false;
        bool hasUserImage = false;
        QImage image;
        QByteArray rawImageData;
        QString imageType;
    } m_cover;
    bool m_hasPreviousOid = false;
    bool m_hasNextOid = false;
};

class ZTBookController : public ZTItemController {
public:
    using ZTItemController::ZTItemController;
    // Stored author role keys by their labels in the user's language.
    static QVariantMap authorRoleFromLocalizedDictionary();

protected:
    void prepareToSave(QVariantMap &dictionary) const override;
};

class ZTAlbumController : public ZTItemController {
public:
    using ZTItemController::ZTItemController;
};

class ZTMovieController : public ZTItemController {
public:
    using ZTItemController::ZTItemController;
};

class ZTComicController : public ZTItemController {
public:
    using ZTItemController::ZTItemController;
};
