#pragma once

#include "lookup/ZTFetcher.h"
#include "lookup/sites/ZTAmazonTags.h"
#include "model/ZTMediaKind.h"

#include <QDateTime>

// The shop's public product pages, for books, albums and movies in eight
// countries. This class reads a page into a dictionary of labelled values and
// runs the steps every kind shares (the UPC search, the cover); the kinds turn
// that dictionary into attributes. All of them share one type, so the shops
// are asked strictly one after the other.
class ZTFetcherAmazon : public ZTFetcher {
public:
    using ZTFetcher::ZTFetcher;

    static const QString s_type;

    QString type() const override;
    QString name() const override;
    QString locale() const override;
    virtual ZTMediaKind kind() const = 0;
    // "US", "UK", … as the class name ends.
    virtual QString countrySuffix() const = 0;
    virtual QString domain() const;
    // Albums and movies are searched by ASIN, else by UPC; books override both.
    QVariantMap fetchKeyIdentifierDictionary() const override;
    void startFetchingWithDictionary(const QVariantMap &dictionary) override;

    QVariantMap dictionaryForString(const QString &text, const QString &locale) const;
    static bool isValidSubtitle(const QString &text);
    static bool isValidPrice(const QString &text);
    static QString keyForDictionary(const QVariantMap &dictionary, const QString &key);
    // The cells of a track table, and entries without their leading numbers.
    static QStringList trackCells(const QString &body);
    static QStringList cleanTracks(const QStringList &entries);

    // A shop date: the date at noon and its partial-date flag.
    struct ShopDate {
        QDateTime date;
        int flag = 2;
    };
    std::optional<ShopDate> dateFromString(const QString &text) const;

protected:
    const ZTAmazonTags::Country &country() const { return ZTAmazonTags::country(countrySuffix()); }
    QUrl productURL(const QString &code) const;
    QUrl urlOnDomain(const QString &pathAndQuery) const;
    // The keys of a kind followed by the picture keys every shop page offers.
    static QStringList withImageKeys(QStringList keys);
    void setupUPCSearch();
    void handleUPCSearch();
    void processImagesFromMainSourceString(const QString &text);

    void processData() override;
    // The product page, already known to be one; the kinds read it here.
    virtual void processMainPage(const QString &text, const QVariantMap &result) = 0;
    // Steps of a kind's own; the page is null when it could not be read.
    virtual void processOtherStep(const QString &step, const QString &text);

    void setIfRequested(const QString &key, const QVariant &value);
    void setDateIfRequested(const QString &key, const QString &text);
    // The title as a book page gives it, with the format in its last brackets.
    void takeBracketedFormat(QString *title, QString *format) const;
    void takePrice(const QVariantMap &result);
    void takeNumberOfMedia(const QVariantMap &result);
    void addStep(const QString &step, const QUrl &url);
};

// The concrete shops differ only in country; each is declared by this line.
#define ZT_AMAZON_FETCHER(ClassName, Base, Suffix)                                                           \
    class ClassName : public Base {                                                                          \
    public:                                                                                                  \
        using Base::Base;                                                                                    \
        QString countrySuffix() const override { return QStringLiteral(Suffix); }                            \
        QString className() const override { return QStringLiteral(#ClassName); }                            \
    };
