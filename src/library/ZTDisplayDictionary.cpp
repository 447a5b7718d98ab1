#include "library/ZTDisplayDictionary.h"

#include "base/ZTSettings.h"
#include "library/ZTAttributeTables.h"

#include <QList>
#include <QPair>

#include <array>

namespace {
using Pairs = QList<QPair<const char *, const char *>>;

const Pairs &commonPairs()
{
    static const Pairs pairs{
        {"Title", "title"},
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
        {"Format", "format"},
    };
    return pairs;
}

const Pairs &kindPairs(ZTMediaKind kind)
{
    static const Pairs book{
        {"ISBN", "isbn"},
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
        {"Original Date Published", "originalDatePublished"},
    };
    static const Pairs album{
        {"ASIN", "asin"},
        {"UPC", "upc"},
        {"Number of Media", "numberOfMedia"},
        {"Label", "label"},
        {"Tracks", "tracks"},
        {"Artists", "artists"},
        {"Date Listened", "dateUsed"},
        {"Listened", "usedFlag"},
        {"Date Released", "datePublished"},
        {"Original Date Released", "originalDatePublished"},
    };
    static const Pairs movie{
        {"ASIN", "asin"},
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
        {"Original Date Released", "originalDatePublished"},
    };
    static const Pairs comic{
        {"CBDBN", "cbdbn"},
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
        {"Date Published", "datePublished"},
    };
    switch (kind) {
    case ZTMediaKind::Album:
        return album;
    case ZTMediaKind::Movie:
        return movie;
    case ZTMediaKind::Comic:
        return comic;
    case ZTMediaKind::Book:
        break;
    }
    return book;
}

QHash<QString, QString> buildTable(ZTMediaKind kind)
{
    QHash<QString, QString> table;
    for (const Pairs *pairs : {&commonPairs(), &kindPairs(kind)})
        for (const auto &[label, key] : *pairs)
            table.insert(ZTAttributeTables::localizedLabel(QLatin1String(label)), QLatin1String(key));
    return table;
}
} // namespace

const QHash<QString, QString> &ZTDisplayDictionary::labelToKey(ZTMediaKind kind)
{
    static const std::array<QHash<QString, QString>, 4> tables{
        buildTable(ZTMediaKind::Book), buildTable(ZTMediaKind::Album), buildTable(ZTMediaKind::Movie),
        buildTable(ZTMediaKind::Comic)};
    return tables[size_t(kind)];
}

QVariantMap ZTDisplayDictionary::dictionaryFromDisplayDictionary(ZTMediaKind kind, const QVariantMap &display,
                                                                 const QString &defaultCurrency)
{
    const QHash<QString, QString> &table = labelToKey(kind);
    QVariantMap dictionary;
    for (auto it = display.constBegin(); it != display.constEnd(); ++it) {
        const auto key = table.constFind(it.key());
        if (key != table.constEnd())
            dictionary.insert(*key, it.value());
    }
    static const QString priceLocale = QStringLiteral("priceLocale");
    static const QString pricePaidLocale = QStringLiteral("pricePaidLocale");
    static const QString lockedFlag = QStringLiteral("lockedFlag");
    dictionary.insert(priceLocale, defaultCurrency);
    dictionary.insert(pricePaidLocale, defaultCurrency);
    dictionary.insert(lockedFlag, 0);
    return dictionary;
}

QString ZTDisplayDictionary::defaultCurrency()
{
    const QString code = ZTSettings::value(ZTSettingsKey::DefaultCurrency).toString();
    return code.isEmpty() ? QStringLiteral("USD") : code;
}

QVariantMap ZTDisplayDictionary::withHandleDictionaryDefaults(QVariantMap dictionary)
{
    static const std::array<std::pair<QString, QVariant>, 9> defaults{{
        {QStringLiteral("usedFlag"), false},
        {QStringLiteral("signedFlag"), false},
        {QStringLiteral("ownedFlag"), false},
        {QStringLiteral("lockedFlag"), false},
        {QStringLiteral("rating"), 0},
        {QStringLiteral("dateObtainedBitFlag"), 0},
        {QStringLiteral("dateUsedBitFlag"), 0},
        {QStringLiteral("datePublishedBitFlag"), 0},
        {QStringLiteral("originalDatePublishedBitFlag"), 0},
    }};
    static const QString dateUsed = QStringLiteral("dateUsed");
    for (const auto &[key, value] : defaults) {
        const auto at = dictionary.lowerBound(key);
        if (at == dictionary.end() || at.key() != key)
            dictionary.insert(at, key, value);
    }
    if (dictionary.value(dateUsed).isValid())
        dictionary.insert(defaults[0].first, true);
    return dictionary;
}
