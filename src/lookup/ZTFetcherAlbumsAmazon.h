#pragma once

#include "lookup/ZTFetcherAmazon.h"

// Albums from the shop's product pages, found by ASIN or through the UPC search.
class ZTFetcherAlbumsAmazon : public ZTFetcherAmazon {
public:
    using ZTFetcherAmazon::ZTFetcherAmazon;
    ZTMediaKind kind() const override { return ZTMediaKind::Album; }
    QStringList fetchableKeys() const override;
    // The title without the format in its last parentheses or brackets; the
    // format, when the title held one, goes to format.
    static QString processTitleForAlbumsWithResultDictionary(const QVariantMap &result, QString *format);

protected:
    void processMainPage(const QString &text, const QVariantMap &result) override;
    void processOtherStep(const QString &step, const QString &text) override;
};

ZT_AMAZON_FETCHER(ZTFetcherAlbumsAmazonUS, ZTFetcherAlbumsAmazon, "US")
ZT_AMAZON_FETCHER(ZTFetcherAlbumsAmazonUK, ZTFetcherAlbumsAmazon, "UK")
ZT_AMAZON_FETCHER(ZTFetcherAlbumsAmazonDE, ZTFetcherAlbumsAmazon, "DE")
ZT_AMAZON_FETCHER(ZTFetcherAlbumsAmazonFR, ZTFetcherAlbumsAmazon, "FR")
ZT_AMAZON_FETCHER(ZTFetcherAlbumsAmazonJP, ZTFetcherAlbumsAmazon, "JP")
ZT_AMAZON_FETCHER(ZTFetcherAlbumsAmazonCA, ZTFetcherAlbumsAmazon, "CA")
ZT_AMAZON_FETCHER(ZTFetcherAlbumsAmazonIT, ZTFetcherAlbumsAmazon, "IT")
ZT_AMAZON_FETCHER(ZTFetcherAlbumsAmazonES, ZTFetcherAlbumsAmazon, "ES")
