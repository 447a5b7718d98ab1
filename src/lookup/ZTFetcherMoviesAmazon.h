#pragma once

#include "lookup/ZTFetcherAmazon.h"

// Movies from the shop's product pages, found by ASIN or through the UPC
// search; the cast's roles come from the movie database.
class ZTFetcherMoviesAmazon : public ZTFetcherAmazon {
public:
    using ZTFetcherAmazon::ZTFetcherAmazon;
    ZTMediaKind kind() const override { return ZTMediaKind::Movie; }
    QStringList fetchableKeys() const override;
    static QString processFormatForMoviesWithString(const QString &text);

protected:
    void processMainPage(const QString &text, const QVariantMap &result) override;
    void processOtherStep(const QString &step, const QString &text) override;
    QUrl urlForRedirectedURL(const QUrl &url) const override;
    // Country quirks of the details, read after the common ones.
    virtual void readCountryDetails(const QString &, const QVariantMap &) {}

private:
    QUrl castURL(const QString &text, const QString &title) const;
    void readCast(const QString &text);
};

ZT_AMAZON_FETCHER(ZTFetcherMoviesAmazonUS, ZTFetcherMoviesAmazon, "US")
ZT_AMAZON_FETCHER(ZTFetcherMoviesAmazonUK, ZTFetcherMoviesAmazon, "UK")
ZT_AMAZON_FETCHER(ZTFetcherMoviesAmazonFR, ZTFetcherMoviesAmazon, "FR")
ZT_AMAZON_FETCHER(ZTFetcherMoviesAmazonJP, ZTFetcherMoviesAmazon, "JP")
ZT_AMAZON_FETCHER(ZTFetcherMoviesAmazonIT, ZTFetcherMoviesAmazon, "IT")

// The German shop gives the production year as a detail of its own.
class ZTFetcherMoviesAmazonDE : public ZTFetcherMoviesAmazon {
public:
    using ZTFetcherMoviesAmazon::ZTFetcherMoviesAmazon;
    QString countrySuffix() const override { return QStringLiteral("DE"); }
    QString className() const override { return QStringLiteral("ZTFetcherMoviesAmazonDE"); }

protected:
    void readCountryDetails(const QString &text, const QVariantMap &result) override;
};

// The Spanish shop states the rating in the running text.
class ZTFetcherMoviesAmazonES : public ZTFetcherMoviesAmazon {
public:
    using ZTFetcherMoviesAmazon::ZTFetcherMoviesAmazon;
    QString countrySuffix() const override { return QStringLiteral("ES"); }
    QString className() const override { return QStringLiteral("ZTFetcherMoviesAmazonES"); }

protected:
    void readCountryDetails(const QString &text, const QVariantMap &result) override;
};

// Canadian movie codes have always been looked up on the US shop's host;
// kept, since users' results depend on it.
class ZTFetcherMoviesAmazonCA : public ZTFetcherMoviesAmazon {
public:
    using ZTFetcherMoviesAmazon::ZTFetcherMoviesAmazon;
    QString countrySuffix() const override { return QStringLiteral("CA"); }
    QString className() const override { return QStringLiteral("ZTFetcherMoviesAmazonCA"); }
    QString domain() const override { return ZTAmazonTags::country(QStringLiteral("US")).host; }
};
