#pragma once

#include "lookup/ZTFetcherAmazon.h"

// Books from the shop's product pages, found by ISBN.
class ZTFetcherBooksAmazon : public ZTFetcherAmazon {
public:
    using ZTFetcherAmazon::ZTFetcherAmazon;
    ZTMediaKind kind() const override { return ZTMediaKind::Book; }
    QStringList fetchableKeys() const override;
    QVariantMap fetchKeyIdentifierDictionary() const override;
    void startFetchingWithDictionary(const QVariantMap &dictionary) override;

protected:
    void processMainPage(const QString &text, const QVariantMap &result) override;
};

ZT_AMAZON_FETCHER(ZTFetcherBooksAmazonUS, ZTFetcherBooksAmazon, "US")
ZT_AMAZON_FETCHER(ZTFetcherBooksAmazonUK, ZTFetcherBooksAmazon, "UK")
ZT_AMAZON_FETCHER(ZTFetcherBooksAmazonDE, ZTFetcherBooksAmazon, "DE")
ZT_AMAZON_FETCHER(ZTFetcherBooksAmazonFR, ZTFetcherBooksAmazon, "FR")
ZT_AMAZON_FETCHER(ZTFetcherBooksAmazonJP, ZTFetcherBooksAmazon, "JP")
ZT_AMAZON_FETCHER(ZTFetcherBooksAmazonCA, ZTFetcherBooksAmazon, "CA")
ZT_AMAZON_FETCHER(ZTFetcherBooksAmazonIT, ZTFetcherBooksAmazon, "IT")
ZT_AMAZON_FETCHER(ZTFetcherBooksAmazonES, ZTFetcherBooksAmazon, "ES")
