// Maps keyed by the labels the edit sheets show, turned into the dictionary form.
#include "model/ZTItem.h"

#include <QCoreApplication>

namespace {
using Labels = QList<QPair<const char *, const char *>>;

const Labels &commonLabels()
{
    static const Labels labels{{"Title", "title"},
                               {"Genre", "genre"},
                               {"Obtained From", "source"},
                               {"Copies", "copies"},
                               {"Price", "price"},
                               {"Price Paid", "pricePaid"},
                               {"Notes", "notes"},
                               {"Condition", "condition"},
                               {"Description", "productDescription"},
                               {"Keywords", "keywords"},
                               {"Owned", "ownedFlag"},
                               {"Signed", "signedFlag"},
                               {"Location", "location"},
                               {"Locale", "locale"},
                               {"Date Obtained", "dateObtained"},
                               {"Rating", "rating"},
                               {"Series", "series"},
                               {"Language", "language"},
                               {"Original Language", "originalLanguage"},
                               {"Format", "format"}};
    return labels;
}

const Labels &kindLabels(ZTMediaKind kind)
{
    static const Labels book{{"ISBN", "isbn"},
                             {"LCCN", "lccn"},
                             {"Pages", "pages"},
                             {"Publisher", "publisher"},
                             {"LOC Subjects", "locSubjects"},
                             {"LOC Classification", "locClassification"},
                             {"Authors", "authors"},
                             {"Dewey Class", "deweyClassNumber"},
                             {"Volume", "volumeNumber"},
                             {"Edition", "editionNumber"},
                             {"Place Published", "placePublished"},
                             {"Read", "usedFlag"},
                             {"Date Read", "dateUsed"},
                             {"Date Published", "datePublished"},
                             {"Original Date Published", "originalDatePublished"}};
    static const Labels album{{"ASIN", "asin"},
                              {"UPC", "upc"},
                              {"Number of Media", "numberOfMedia"},
                              {"Label", "label"},
                              {"Tracks", "tracks"},
                              {"Artists", "artists"},
                              {"Date Listened", "dateUsed"},
                              {"Listened", "usedFlag"},
                              {"Date Released", "datePublished"},
                              {"Original Date Released", "originalDatePublished"}};
    static const Labels movie{{"ASIN", "asin"},
                              {"UPC", "upc"},
                              {"Directors", "directors"},
                              {"Studio", "studio"},
                              {"Roles", "roles"},
                              {"Actors", "actors"},
                              {"Aspect Ratio", "aspectRatio"},
                              {"Audience Rating", "audienceRating"},
                              {"Duration", "duration"},
                              {"Region Code", "regionCode"},
                              {"Viewed", "usedFlag"},
                              {"Number of Media", "numberOfMedia"},
                              {"Date Released", "datePublished"},
                              {"Date Viewed", "dateUsed"},
                              {"Original Date Released", "originalDatePublished"}};
    static const Labels comic{{"CBDBN", "cbdbn"},
                              {"GCDN", "gcdn"},
                              {"ISBN", "isbn"},
                              {"UPC", "upc"},
                              {"Pages", "pages"},
                              {"Publisher", "publisher"},
                              {"Issue Number", "issueNumber"},
                              {"Grade", "grade"},
                              {"Stories", "stories"},
                              {"Issue Count", "issueCount"},
                              {"Characters", "characters"},
                              {"Artists", "artists"},
                              {"Date Read", "dateUsed"},
                              {"Read", "usedFlag"},
                              {"Original Date Published", "originalDatePublished"},
                              {"Date Published", "datePublished"}};
    switch (kind) {
    case ZTMediaKind::Book:
        return book;
    case ZTMediaKind::Album:
        return album;
    case ZTMediaKind::Movie:
        return movie;
    case ZTMediaKind::Comic:
        return comic;
    }
    return book;
}
} // namespace

QVariantMap ZTItem::dictionaryFromDisplayDictionary(ZTMediaKind kind, const QVariantMap &display,
                                                    const QString &defaultCurrency)
{
    QVariantMap map;
    for (const Labels *labels : {&commonLabels(), &kindLabels(kind)}) {
        for (const auto &[label, key] : *labels) {
            const QString shown = QCoreApplication::translate("Localizable", label);
            const auto it = display.constFind(shown);
            if (it != display.constEnd())
                map.insert(QLatin1String(key), it.value());
        }
    }
    map.insert(QStringLiteral("priceLocale"), defaultCurrency);
    map.insert(QStringLiteral("pricePaidLocale"), defaultCurrency);
    map.insert(QStringLiteral("lockedFlag"), 0);
    return map;
}

void ZTItem::handleDisplayDictionary(const QVariantMap &display, const QString &defaultCurrency)
{
    handleDictionary(dictionaryFromDisplayDictionary(mediaKind(), display, defaultCurrency));
}
