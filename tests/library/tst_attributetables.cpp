#include "library/ZTAttributeTables.h"
#include "support/ZTTestMain.h"

#include <QCollator>
#include <QSet>
#include <QTranslator>
#include <QtTest>

Q_DECLARE_METATYPE(ZTMediaKind)

namespace {

QSet<QString> setOf(std::initializer_list<const char *> keys)
{
    QSet<QString> result;
    for (const char *key : keys)
        result.insert(QString::fromLatin1(key));
    return result;
}

// Everything an item of the kind can be asked for: stored attributes, the
// dictionary-form keys, transient and derived values and the readers of the
// item model and of lending. Written out independently of the tables, so a
// misspelt key in a table shows up here.
QSet<QString> readableKeys(ZTMediaKind kind)
{
    QSet<QString> keys = setOf({
        "oid",
        "title",
        "genre",
        "source",
        "copies",
        "price",
        "pricePaid",
        "format",
        "language",
        "originalLanguage",
        "series",
        "location",
        "notes",
        "condition",
        "productDescription",
        "rating",
        "usedFlag",
        "dateUsed",
        "dateUsedBitFlag",
        "datePublished",
        "datePublishedBitFlag",
        "originalDatePublished",
        "originalDatePublishedBitFlag",
        "dateObtained",
        "dateObtainedBitFlag",
        "dateAdded",
        "dateModified",
        "ownedFlag",
        "lockedFlag",
        "signedFlag",
        "keywords",
        "locale",
        "priceLocale",
        "pricePaidLocale",
        "hasCoverImageFlag",
        "overdueFlag",
        "titleWithoutLeadingArticle",
        "isOwned",
        "isLocked",
        "isSigned",
        "isUsed",
        "isOverdue",
        "hasCoverImage",
        "year",
        "originalYear",
        "priceString",
        "pricePaidString",
        "largestImageAvailable",
        // lending
        "lentToName",
        "lentToEmail",
        "dateLent",
        "dateDue",
        "lentOutFlag",
        "isLentOut",
        "lentToNameLastNameFirst",
        // the first keyword, which the keyword column sorts by
        "firstKeyword",
    });
    switch (kind) {
    case ZTMediaKind::Book:
        keys += setOf({"isbn",
                       "lccn",
                       "publisher",
                       "locClassification",
                       "deweyClassNumber",
                       "volumeNumber",
                       "editionNumber",
                       "placePublished",
                       "pages",
                       "authors",
                       "locSubjects",
                       "authorRoleDicts",
                       "authorsWithTypes",
                       "authorsWithTypesByLastNameFirstName",
                       "volumeNumberSortable",
                       "locClassificationSortable",
                       "firstAuthor",
                       "firstAuthorByLastNameFirstname",
                       "firstLocSubject",
                       "deweyClassNumberPrefix",
                       "deweyClassNumberDisplayString"});
        break;
    case ZTMediaKind::Album:
        keys += setOf(
            {"asin", "upc", "label", "numberOfMedia", "artists", "tracks", "firstArtist", "firstTrack"});
        break;
    case ZTMediaKind::Movie:
        keys += setOf({"asin",
                       "upc",
                       "studio",
                       "audienceRating",
                       "aspectRatio",
                       "regionCode",
                       "duration",
                       "numberOfMedia",
                       "directors",
                       "actors",
                       "roles",
                       "actorRoleDicts",
                       "directorsByLastNameFirstName",
                       "actorsByLastNameFirstName",
                       "rolesByLastNameFirstName",
                       "actorRoles",
                       "firstDirector",
                       "firstDirectorByLastNameFirstname",
                       "firstActor",
                       "firstActorByLastNameFirstname",
                       "firstRole",
                       "firstRoleByLastNameFirstname"});
        break;
    case ZTMediaKind::Comic:
        keys += setOf({"upc", "isbn", "gcdn", "cbdbn", "publisher", "grade", "pages", "issueNumber",
                       "issueCount", "stories", "artists", "characters", "artistRoleDicts",
                       "characterRoleDicts", "artistsByLastNameFirstName", "characterRoles",
                       "issueNumberCountString", "firstCharacter", "firstArtistByLastNameFirstname"});
        break;
    }
    return keys;
}

// The attribute behind each import title. One map serves all kinds: the
// titles that differ by kind ("Read", "Listened", "Viewed") name the same key.
const QHash<QString, QString> &importTitleKeys()
{
    static const QHash<QString, QString> s_keys = {
        {"Condition", "condition"},
        {"Copies", "copies"},
        {"Date Added", "dateAdded"},
        {"Date Due", "dateDue"},
        {"Date Lent", "dateLent"},
        {"Date Modified", "dateModified"},
        {"Date Obtained", "dateObtained"},
        {"Description", "productDescription"},
        {"Format", "format"},
        {"Genre", "genre"},
        {"Keywords", "keywords"},
        {"Language", "language"},
        {"Lent Out", "lentOutFlag"},
        {"Lent To Name", "lentToName"},
        {"Lent To Email", "lentToEmail"},
        {"Locale", "locale"},
        {"Location", "location"},
        {"Notes", "notes"},
        {"Obtained From", "source"},
        {"Original Language", "originalLanguage"},
        {"Owned", "ownedFlag"},
        {"Price", "price"},
        {"Price Paid", "pricePaid"},
        {"Rating", "rating"},
        {"Series", "series"},
        {"Signed", "signedFlag"},
        {"Title", "title"},
        {"Authors", "authors"},
        {"Read", "usedFlag"},
        {"Listened", "usedFlag"},
        {"Viewed", "usedFlag"},
        {"Date Read", "dateUsed"},
        {"Date Listened", "dateUsed"},
        {"Date Viewed", "dateUsed"},
        {"Date Published", "datePublished"},
        {"Date Released", "datePublished"},
        {"Original Date Published", "originalDatePublished"},
        {"Original Date Released", "originalDatePublished"},
        {"Dewey Class", "deweyClassNumber"},
        {"Edition", "editionNumber"},
        {"ISBN", "isbn"},
        {"LCCN", "lccn"},
        {"LOC Classification", "locClassification"},
        {"LOC Subjects", "locSubjects"},
        {"Pages", "pages"},
        {"Place Published", "placePublished"},
        {"Publisher", "publisher"},
        {"Volume", "volumeNumber"},
        {"Artists", "artists"},
        {"UPC", "upc"},
        {"ASIN", "asin"},
        {"Tracks", "tracks"},
        {"Label", "label"},
        {"Number of Media", "numberOfMedia"},
        {"Directors", "directors"},
        {"Studio", "studio"},
        {"Audience Rating", "audienceRating"},
        {"Aspect Ratio", "aspectRatio"},
        {"Region Code", "regionCode"},
        {"Duration", "duration"},
        {"GCDN", "gcdn"},
        {"CBDBN", "cbdbn"},
        {"Characters", "characters"},
        {"Stories", "stories"},
        {"Grade", "grade"},
        {"Issue Number", "issueNumber"},
        {"Issue Count", "issueCount"},
    };
    return s_keys;
}

void addKindRows()
{
    QTest::addColumn<ZTMediaKind>("kind");
    for (ZTMediaKind kind : ZTMediaKinds::all)
        QTest::newRow(qPrintable(ZTMediaKinds::itemType(kind))) << kind;
}

bool isSortedForDisplay(const QStringList &texts)
{
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    for (qsizetype i = 1; i < texts.size(); ++i) {
        if (collator.compare(texts[i - 1], texts[i]) > 0)
            return false;
    }
    return true;
}

// Answers every lookup with the table's name in front, so a test can see
// which string table each label came from.
class TaggingTranslator : public QTranslator {
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *sourceText, const char *, int) const override
    {
        return QStringLiteral("%1|%2").arg(QLatin1String(context), QString::fromUtf8(sourceText));
    }
};

} // namespace

class TestAttributeTables : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void sortKeysAreReadable_data() { addKindRows(); }
    void sortKeysAreReadable()
    {
        QFETCH(ZTMediaKind, kind);
        const ZTAttributeTables &tables = ZTAttributeTables::forKind(kind);
        const QSet<QString> readable = readableKeys(kind);
        for (const QString &column : tables.columnKeys()) {
            if (column == QLatin1String("cover")) // never sorted
                continue;
            const QString sortKey = tables.sortKeyForColumn(column);
            QVERIFY2(readable.contains(sortKey), qPrintable(column + QLatin1String(" sorts by ") + sortKey));
            QCOMPARE(tables.columnForSortKey(sortKey), column);
        }
        QCOMPARE(tables.sortKeyToColumnDictionary().size(), tables.columnToSortKeyDictionary().size());
    }

    void sortKeysOfTheKind_data()
    {
        QTest::addColumn<ZTMediaKind>("kind");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("sortKey");
        QTest::newRow("book title") << ZTMediaKind::Book << "title"
                                    << "titleWithoutLeadingArticle";
        QTest::newRow("book volume") << ZTMediaKind::Book << "volumeNumber"
                                     << "volumeNumberSortable";
        QTest::newRow("album artists") << ZTMediaKind::Album << "artists"
                                       << "firstArtist";
        QTest::newRow("comic artists") << ZTMediaKind::Comic << "artists"
                                       << "firstArtistByLastNameFirstname";
        QTest::newRow("movie roles") << ZTMediaKind::Movie << "roles"
                                     << "firstRoleByLastNameFirstname";
        QTest::newRow("comic stories unmapped") << ZTMediaKind::Comic << "stories"
                                                << "stories";
        QTest::newRow("album volume not a column") << ZTMediaKind::Album << "volumeNumber"
                                                   << "volumeNumber";
    }
    void sortKeysOfTheKind()
    {
        QFETCH(ZTMediaKind, kind);
        QFETCH(QString, column);
        QFETCH(QString, sortKey);
        QCOMPARE(ZTAttributeTables::forKind(kind).sortKeyForColumn(column), sortKey);
    }

    void filtersReadTheCache_data() { addKindRows(); }
    void filtersReadTheCache()
    {
        QFETCH(ZTMediaKind, kind);
        const ZTAttributeTables &tables = ZTAttributeTables::forKind(kind);
        const ZTCacheableAttributes &cache = tables.cacheableAttributesDictionary();
        QVERIFY(!tables.filterDictionary().isEmpty());
        for (const ZTFilter &filter : tables.filterDictionary()) {
            const QString key = filter.key2.isEmpty() ? filter.key : filter.key2;
            QVERIFY2(cache.all.contains(key), qPrintable(filter.label));
            if (filter.type == QLatin1String("boolean"))
                QVERIFY2(cache.boolean.contains(key), qPrintable(filter.label));
            if (filter.toMany)
                QVERIFY2(cache.array.contains(key), qPrintable(filter.label));
        }
        const QStringList labels = tables.filterKeys();
        QVERIFY(isSortedForDisplay(labels));
        QCOMPARE(QSet<QString>(labels.begin(), labels.end()).size(), labels.size());
    }

    void cacheableAttributesAreReadableAndAllIsTheUnion_data() { addKindRows(); }
    void cacheableAttributesAreReadableAndAllIsTheUnion()
    {
        QFETCH(ZTMediaKind, kind);
        const ZTCacheableAttributes &cache = ZTAttributeTables::forKind(kind).cacheableAttributesDictionary();
        const QSet<QString> readable = readableKeys(kind);
        QStringList union_;
        for (const char *valueClass : {"string", "array", "number", "boolean"}) {
            const QStringList keys = cache.value(QLatin1String(valueClass));
            QVERIFY(!keys.isEmpty());
            for (const QString &key : keys) {
                QVERIFY2(readable.contains(key), qPrintable(key));
                QVERIFY2(!union_.contains(key), qPrintable(key + QLatin1String(" is in two classes")));
                union_.append(key);
            }
        }
        QCOMPARE(cache.value(QStringLiteral("all")), union_);
        QCOMPARE(cache.value(QStringLiteral("anything else")), QStringList());
    }

    void importTitlesNameAttributes_data() { addKindRows(); }
    void importTitlesNameAttributes()
    {
        QFETCH(ZTMediaKind, kind);
        const ZTAttributeTables &tables = ZTAttributeTables::forKind(kind);
        const QSet<QString> readable = readableKeys(kind);
        QStringList unmapped;
        for (const ZTTypedAttribute &row : tables.importableAttributesDictionary()) {
            QVERIFY2(importTitleKeys().contains(row.title), qPrintable(row.title));
            const QString key = importTitleKeys().value(row.title);
            if (!readable.contains(key)) {
                unmapped.append(row.title);
                continue;
            }
            // A column exported and imported again keeps its type.
            const ZTTypedAttribute *exported = tables.exportableAttribute(key);
            QVERIFY2(exported, qPrintable(key));
            QCOMPARE(exported->type, row.type);
            QCOMPARE(exported->toMany, row.toMany);
        }
        // Deliberate: a comic keeps the "Volume" title of the import files made
        // for books, with nothing behind it.
        QCOMPARE(unmapped,
                 kind == ZTMediaKind::Comic ? QStringList{QStringLiteral("Volume")} : QStringList());
        QVERIFY(isSortedForDisplay(tables.importableTitles()));
        QCOMPARE(tables.importableTitles().size(), tables.importableAttributesDictionary().size());
    }

    void exportableAttributesAreReadable_data() { addKindRows(); }
    void exportableAttributesAreReadable()
    {
        QFETCH(ZTMediaKind, kind);
        const ZTAttributeTables &tables = ZTAttributeTables::forKind(kind);
        const QSet<QString> readable = readableKeys(kind);
        const QSet<QString> types = setOf({"string", "integer", "float", "date", "boolean", "rating"});
        for (const ZTTypedAttribute &row : tables.exportableAttributesDictionary()) {
            QVERIFY2(readable.contains(row.key), qPrintable(row.key));
            QVERIFY2(types.contains(row.type), qPrintable(row.key));
        }
        for (const char *key :
             {"usedFlag", "dateUsed", "datePublished", "originalDatePublished", "lentOutFlag", "lentToEmail"})
            QVERIFY(tables.exportableAttribute(QLatin1String(key)));
        // Only a movie exports actors and roles, which no text file imports.
        QCOMPARE(tables.exportableAttribute(QStringLiteral("actors")) != nullptr, kind == ZTMediaKind::Movie);
        QVERIFY(!tables.exportableAttribute(QStringLiteral("volumeNumber")) || kind == ZTMediaKind::Book);
    }

    void columnsAreExportColumnsWithoutTheDescription_data() { addKindRows(); }
    void columnsAreExportColumnsWithoutTheDescription()
    {
        QFETCH(ZTMediaKind, kind);
        const ZTAttributeTables &tables = ZTAttributeTables::forKind(kind);
        QVERIFY(tables.exportColumn(QStringLiteral("productDescription")));
        QVERIFY(!tables.column(QStringLiteral("productDescription")));
        QCOMPARE(tables.columnDictionary().size(), tables.exportColumnDictionary().size() - 1);

        QSet<QString> columnKeys;
        for (const ZTExportColumn &column : tables.columnDictionary()) {
            columnKeys.insert(column.key);
            QCOMPARE(column.width, 100.0);
            const bool image = column.key == QLatin1String("cover") || column.key == QLatin1String("rating");
            QCOMPARE(column.type, image ? QStringLiteral("image") : QStringLiteral("text"));
            QVERIFY(!column.title.isEmpty());
        }
        // The chooser offers exactly the columns the table can show.
        const QStringList chooserKeys = tables.columnKeyDictionary().values();
        QCOMPARE(QSet<QString>(chooserKeys.begin(), chooserKeys.end()), columnKeys);
        QCOMPARE(QSet<QString>(tables.columnKeys().begin(), tables.columnKeys().end()), columnKeys);
        QCOMPARE(tables.displayColumnKeys().size(), tables.columnKeys().size());
        QVERIFY(isSortedForDisplay(tables.displayColumnKeys()));
        for (qsizetype i = 0; i < tables.columnKeys().size(); ++i)
            QCOMPARE(tables.columnKeyDictionary().value(tables.displayColumnKeys()[i]),
                     tables.columnKeys()[i]);
    }

    void exportTitles_data()
    {
        QTest::addColumn<ZTMediaKind>("kind");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("chooserLabel");
        QTest::newRow("lent to") << ZTMediaKind::Album << "lentToName"
                                 << "Lent To"
                                 << "Lent To Name";
        QTest::newRow("cover") << ZTMediaKind::Movie << "cover"
                               << "Cover"
                               << "Cover Image";
        QTest::newRow("loc") << ZTMediaKind::Book << "locClassification"
                             << "LOC Classification"
                             << "LOC Class";
        QTest::newRow("used by kind") << ZTMediaKind::Movie << "usedFlag"
                                      << "Viewed"
                                      << "Viewed";
        QTest::newRow("released") << ZTMediaKind::Album << "datePublished"
                                  << "Date Released"
                                  << "Date Released";
        QTest::newRow("original language") << ZTMediaKind::Comic << "originalLanguage"
                                           << "Orig. Language"
                                           << "Orig. Language";
    }
    void exportTitles()
    {
        QFETCH(ZTMediaKind, kind);
        QFETCH(QString, key);
        QFETCH(QString, title);
        QFETCH(QString, chooserLabel);
        const ZTAttributeTables &tables = ZTAttributeTables::forKind(kind);
        QVERIFY(tables.exportColumn(key));
        QCOMPARE(tables.exportColumn(key)->title, title);
        QCOMPARE(tables.columnKeyDictionary().value(chooserLabel), key);
    }

    void cellsAndTypeAheadReadReadableKeys_data() { addKindRows(); }
    void cellsAndTypeAheadReadReadableKeys()
    {
        QFETCH(ZTMediaKind, kind);
        const ZTAttributeTables &tables = ZTAttributeTables::forKind(kind);
        const QSet<QString> readable = readableKeys(kind);
        for (const QString &column : tables.columnKeys()) {
            const ZTCellReader cell = tables.tableViewEntry(column);
            if (column == QLatin1String("cover"))
                QCOMPARE(cell.key, QStringLiteral("largestImageAvailable"));
            QVERIFY2(readable.contains(cell.key), qPrintable(column + QLatin1String(" reads ") + cell.key));
            QCOMPARE(cell.delimiter.isEmpty(), !cell.toMany);
        }
        for (const ZTCellReader &reader : tables.typeAheadDictionary())
            QVERIFY2(readable.contains(reader.key), qPrintable(reader.column));
        // A column the data leaves out is text read from its own key.
        const ZTCellReader plain = tables.tableViewEntry(QStringLiteral("genre"));
        QCOMPARE(plain.type, QStringLiteral("text"));
        QCOMPARE(plain.key, QStringLiteral("genre"));
        QVERIFY(!plain.toMany);
    }

    void manyValuedCellsByKind_data()
    {
        QTest::addColumn<ZTMediaKind>("kind");
        QTest::addColumn<QString>("column");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("delimiter");
        QTest::newRow("keywords") << ZTMediaKind::Album << "keywords"
                                  << "keywords"
                                  << ", ";
        QTest::newRow("book authors") << ZTMediaKind::Book << "authors"
                                      << "authorsWithTypes"
                                      << "\n";
        QTest::newRow("album tracks") << ZTMediaKind::Album << "tracks"
                                      << "tracks"
                                      << "\n";
        QTest::newRow("movie roles") << ZTMediaKind::Movie << "roles"
                                     << "roles"
                                     << "\n";
        QTest::newRow("comic characters") << ZTMediaKind::Comic << "characters"
                                          << "characters"
                                          << "\n";
    }
    void manyValuedCellsByKind()
    {
        QFETCH(ZTMediaKind, kind);
        QFETCH(QString, column);
        QFETCH(QString, key);
        QFETCH(QString, delimiter);
        const ZTCellReader cell = ZTAttributeTables::forKind(kind).tableViewEntry(column);
        QCOMPARE(cell.key, key);
        QVERIFY(cell.toMany);
        QCOMPARE(cell.delimiter, delimiter);
    }

    void comicTypeAheadIsTheCommonOne()
    {
        const ZTAttributeTables &comic = ZTAttributeTables::forKind(ZTMediaKind::Comic);
        const QList<ZTCellReader> &common = ZTAttributeTableParts::common().typeAhead;
        QCOMPARE(comic.typeAheadDictionary().size(), common.size());
        for (const ZTCellReader &row : common)
            QVERIFY(comic.typeAheadEntry(row.column));
        QVERIFY(!comic.typeAheadEntry(QStringLiteral("artists")));
        QVERIFY(ZTAttributeTables::forKind(ZTMediaKind::Album).typeAheadEntry(QStringLiteral("artists")));
        const ZTCellReader *authors =
            ZTAttributeTables::forKind(ZTMediaKind::Book).typeAheadEntry(QStringLiteral("authors"));
        QVERIFY(authors);
        QCOMPARE(authors->key, QStringLiteral("firstAuthorByLastNameFirstname"));
    }

    void templateTagsAreLowerCaseKeys_data() { addKindRows(); }
    void templateTagsAreLowerCaseKeys()
    {
        QFETCH(ZTMediaKind, kind);
        const ZTAttributeTables &tables = ZTAttributeTables::forKind(kind);
        const QSet<QString> readable = readableKeys(kind);
        QSet<QString> tags;
        for (const ZTTemplateTag &tag : tables.exportToHTMLTemplateDictionary()) {
            QVERIFY2(!tags.contains(tag.tag), qPrintable(tag.tag));
            tags.insert(tag.tag);
            const bool regionCode = kind == ZTMediaKind::Movie && tag.key == QLatin1String("regionCode");
            QCOMPARE(tag.tag, regionCode ? tag.key : tag.key.toLower());
            QVERIFY2(readable.contains(tag.keypath), qPrintable(tag.tag));
            QVERIFY2(!tag.displayName.isEmpty() && tag.displayName != tag.key, qPrintable(tag.tag));
            // An array is written with the separator, anything else as one value.
            const ZTTypedAttribute *exported = tables.exportableAttribute(tag.key);
            QCOMPARE(tag.multiple, exported && exported->toMany);
            QCOMPARE(tag.multipleText(), tag.multiple ? QStringLiteral("yes") : QStringLiteral("no"));
        }
        // Every exported column can be a column of the HTML export too.
        for (const ZTExportColumn &column : tables.exportColumnDictionary()) {
            const QString tag = column.key == QLatin1String("regionCode") ? column.key : column.key.toLower();
            QVERIFY2(tags.contains(tag), qPrintable(column.key));
        }
    }

    void movieRegionCodeTagKeepsItsCapital()
    {
        const ZTAttributeTables &movie = ZTAttributeTables::forKind(ZTMediaKind::Movie);
        const ZTTemplateTag *tag = movie.templateTag(QStringLiteral("regionCode"));
        QVERIFY(tag);
        QCOMPARE(tag->displayName, QStringLiteral("Region Code"));
        QCOMPARE(tag->keypath, QStringLiteral("regionCode"));
        // Cells look tags up in lower case and so find nothing for this column.
        QVERIFY(!movie.templateTag(QStringLiteral("regioncode")));
        QVERIFY(movie.templateTag(QStringLiteral("aspectratio")));

        const ZTTemplateTag *price = movie.templateTag(QStringLiteral("price"));
        QVERIFY(price);
        QCOMPARE(price->keypath, QStringLiteral("priceString"));
        const ZTTemplateTag *authors =
            ZTAttributeTables::forKind(ZTMediaKind::Book).templateTag(QStringLiteral("authors"));
        QVERIFY(authors);
        QCOMPARE(authors->keypath, QStringLiteral("authorsWithTypes"));
        QCOMPARE(authors->multipleText(), QStringLiteral("yes"));
    }

    void smartListRows_data()
    {
        QTest::addColumn<ZTMediaKind>("kind");
        QTest::addColumn<QStringList>("toManyKeys");
        QTest::newRow("Book") << ZTMediaKind::Book << QStringList{"keywords", "locSubjects", "authors"};
        QTest::newRow("Album") << ZTMediaKind::Album << QStringList{"keywords", "artists", "tracks"};
        QTest::newRow("Movie") << ZTMediaKind::Movie
                               << QStringList{"keywords", "directors", "actors", "roles"};
        QTest::newRow("Comic") << ZTMediaKind::Comic
                               << QStringList{"keywords", "artists", "characters", "stories"};
    }
    void smartListRows()
    {
        QFETCH(ZTMediaKind, kind);
        QFETCH(QStringList, toManyKeys);
        const ZTAttributeTables &tables = ZTAttributeTables::forKind(kind);
        const QSet<QString> readable = readableKeys(kind);
        const QSet<QString> types = setOf({"text", "integer", "float", "date", "boolean", "rating"});
        QStringList toMany;
        QSet<QString> titles;
        for (const ZTSmartListAttribute &row : tables.smartListDictionaryArray()) {
            QVERIFY2(!titles.contains(row.title), qPrintable(row.title));
            titles.insert(row.title);
            QVERIFY2(readable.contains(row.key), qPrintable(row.title));
            QVERIFY2(types.contains(row.type), qPrintable(row.title));
            if (row.toMany) {
                QCOMPARE(row.type, QStringLiteral("text"));
                toMany.append(row.key);
            }
            QCOMPARE(tables.smartListAttribute(row.title), &row);
        }
        QCOMPARE(toMany, toManyKeys);
        QCOMPARE(tables.smartListDictionaryArray().first().title, QStringLiteral("Keyword"));
    }

    void perKindListsNameReadableKeys_data() { addKindRows(); }
    void perKindListsNameReadableKeys()
    {
        QFETCH(ZTMediaKind, kind);
        const ZTAttributeTables &tables = ZTAttributeTables::forKind(kind);
        const QSet<QString> readable = readableKeys(kind);
        // A code that identifies an item also finds its duplicates.
        QCOMPARE(tables.itemCodeTypes().size(), 2);
        for (const QString &code : tables.itemCodeTypes()) {
            QVERIFY2(readable.contains(code), qPrintable(code));
            QVERIFY2(tables.duplicateKeys().contains(code), qPrintable(code));
        }
        for (const QString &key : tables.duplicateKeys())
            QVERIFY2(readable.contains(key), qPrintable(key));

        const QSet<QString> editTypes = setOf({"object", "date", "boolean", "flatArray", "array", "rating"});
        QSet<QString> editable;
        for (const ZTEditableAttribute &row : tables.multipleEditableAttributes()) {
            QVERIFY2(!editable.contains(row.key), qPrintable(row.key));
            editable.insert(row.key);
            QVERIFY2(readable.contains(row.key), qPrintable(row.key));
            QVERIFY2(editTypes.contains(row.type), qPrintable(row.key));
            if (row.type == QLatin1String("array") || row.type == QLatin1String("flatArray")) {
                const ZTTypedAttribute *exported = tables.exportableAttribute(row.key);
                QVERIFY2(exported && exported->toMany, qPrintable(row.key));
            }
            // A date is edited together with the record of its known parts.
            if (row.type == QLatin1String("date") && readable.contains(row.key + QLatin1String("BitFlag")))
                QVERIFY2(tables.multipleEditableAttributes().end() !=
                             std::find_if(tables.multipleEditableAttributes().begin(),
                                          tables.multipleEditableAttributes().end(),
                                          [&](const ZTEditableAttribute &r) {
                                              return r.key == row.key + QLatin1String("BitFlag");
                                          }),
                         qPrintable(row.key));
        }
        for (const QString &key : tables.clearableAttributes()) {
            // The cover is cleared through its picture, not an attribute.
            QVERIFY2(key == QLatin1String("cover") || readable.contains(key), qPrintable(key));
        }
        QCOMPARE(
            QSet<QString>(tables.clearableAttributes().begin(), tables.clearableAttributes().end()).size(),
            tables.clearableAttributes().size());
    }

    void codeTypesInTheirOrder()
    {
        QCOMPARE(ZTAttributeTables::forKind(ZTMediaKind::Book).itemCodeTypes(),
                 (QStringList{"isbn", "lccn"}));
        QCOMPARE(ZTAttributeTables::forKind(ZTMediaKind::Album).itemCodeTypes(),
                 (QStringList{"asin", "upc"}));
        QCOMPARE(ZTAttributeTables::forKind(ZTMediaKind::Comic).itemCodeTypes(),
                 (QStringList{"cbdbn", "gcdn"}));
        QCOMPARE(ZTAttributeTables::forKind(ZTMediaKind::Comic).duplicateKeys(),
                 (QStringList{"gcdn", "cbdbn", "upc", "isbn"}));
        // Common rows come first, in their order, then the kind's.
        const QList<ZTEditableAttribute> &rows =
            ZTAttributeTables::forKind(ZTMediaKind::Movie).multipleEditableAttributes();
        QCOMPARE(rows.first().key, QStringLiteral("copies"));
        QCOMPARE(rows.last().key, QStringLiteral("directors"));
        QCOMPARE(rows.last().type, QStringLiteral("array"));
    }

    void overlayReplacesInPlaceAndAppends()
    {
        ZTAttributeTablePart common;
        common.columnLabels = {{"title", "Title"}, {"usedFlag", "Used"}, {"genre", "Genre"}};
        common.exportColumns = {{"title"}, {"usedFlag"}, {"productDescription", "Description"}, {"genre"}};
        common.cells = {{"usedFlag", "boolean", "isUsed"}};
        common.filters = {{"Genre", "text", "genre"}, {"Year", "text", "year"}};
        common.cacheable.string = {"genre"};
        common.cacheable.number = {"year"};
        common.cacheable.boolean = {"isUsed"};
        common.clearable = {"title", "genre"};
        ZTAttributeTablePart own;
        own.columnLabels = {{"usedFlag", "Read"}, {"pages", "Pages"}};
        own.exportColumns = {{"pages"}, {"title", "Name"}};
        own.cells = {{"usedFlag", "text", "usedFlag"}};
        own.filters = {{"Author", "text", "authors", "", true}};
        own.cacheable.string = {"publisher", "genre"};
        own.cacheable.array = {"authors"};
        own.clearable = {"pages", "title"};

        const ZTAttributeTables tables(ZTMediaKind::Book, common, own);
        QStringList exportKeys, exportTitles;
        for (const ZTExportColumn &column : tables.exportColumnDictionary()) {
            exportKeys.append(column.key);
            exportTitles.append(column.title);
        }
        QCOMPARE(exportKeys, (QStringList{"title", "usedFlag", "productDescription", "genre", "pages"}));
        // A replaced row keeps its place; a missing title falls back to the label.
        QCOMPARE(exportTitles, (QStringList{"Name", "Read", "Description", "Genre", "Pages"}));
        QCOMPARE(tables.columnDictionary().size(), 4);
        QCOMPARE(tables.columnKeyDictionary().value(QStringLiteral("Read")), QStringLiteral("usedFlag"));
        QVERIFY(!tables.columnKeyDictionary().contains(QStringLiteral("Used")));
        QCOMPARE(tables.displayColumnKeys(), (QStringList{"Genre", "Pages", "Read", "Title"}));
        QCOMPARE(tables.columnKeys(), (QStringList{"genre", "pages", "usedFlag", "title"}));
        QCOMPARE(tables.tableViewEntry(QStringLiteral("usedFlag")).type, QStringLiteral("text"));
        QCOMPARE(tables.filterKeys(), (QStringList{"Author", "Genre", "Year"}));

        const ZTCacheableAttributes &cache = tables.cacheableAttributesDictionary();
        QCOMPARE(cache.string, (QStringList{"genre", "publisher"}));
        QCOMPARE(cache.all, (QStringList{"genre", "publisher", "authors", "year", "isUsed"}));
        QCOMPARE(tables.clearableAttributes(), (QStringList{"title", "genre", "pages"}));
    }

    void everyKindExtendsTheCommonPart_data() { addKindRows(); }
    void everyKindExtendsTheCommonPart()
    {
        QFETCH(ZTMediaKind, kind);
        const ZTAttributeTables &tables = ZTAttributeTables::forKind(kind);
        const ZTAttributeTablePart &common = ZTAttributeTableParts::common();
        const ZTAttributeTablePart &own = ZTAttributeTableParts::forKind(kind);
        QCOMPARE(tables.columnKeyDictionary().size(), common.columnLabels.size() + own.columnLabels.size());
        QCOMPARE(tables.filterDictionary().size(), common.filters.size() + own.filters.size());
        QCOMPARE(tables.smartListDictionaryArray().size(), common.smartList.size() + own.smartList.size());
        QCOMPARE(tables.importableAttributesDictionary().size(),
                 common.importable.size() + own.importable.size());
        QCOMPARE(tables.exportToHTMLTemplateDictionary().size(),
                 common.templateTags.size() + own.templateTags.size());
        for (qsizetype i = 0; i < common.smartList.size(); ++i)
            QCOMPARE(tables.smartListDictionaryArray()[i].title, common.smartList[i].title);
        // Where a kind restates a common export row, its own row is the one kept.
        for (const ZTTypedAttribute &row : common.exportable)
            QVERIFY2(tables.exportableAttribute(row.key), qPrintable(row.key));
        for (const ZTTypedAttribute &row : own.exportable) {
            const ZTTypedAttribute *kept = tables.exportableAttribute(row.key);
            QVERIFY2(kept && kept->type == row.type && kept->toMany == row.toMany, qPrintable(row.key));
        }
    }

    void labelsAreEnglishWithoutATranslation()
    {
        const ZTAttributeTables &comic = ZTAttributeTables::forKind(ZTMediaKind::Comic);
        QCOMPARE(comic.columnKeyDictionary().value(QStringLiteral("GCDN")), QStringLiteral("gcdn"));
        QCOMPARE(comic.columnKeyDictionary().value(QStringLiteral("Title")), QStringLiteral("title"));
        QCOMPARE(ZTAttributeTables::localizedLabel(QStringLiteral("Obtained From")),
                 QStringLiteral("Obtained From"));
        QCOMPARE(comic.templateTag(QStringLiteral("cbdbn"))->displayName, QStringLiteral("CBDBN"));
        QVERIFY(comic.filter(QStringLiteral("Keyword")));
        QVERIFY(comic.importableAttribute(QStringLiteral("Issue Count")));
        QCOMPARE(&ZTAttributeTables::forKind(ZTMediaKind::Comic), &comic); // built once
    }

    void labelsComeFromTheirStringTable()
    {
        TaggingTranslator translator;
        QCoreApplication::installTranslator(&translator);
        const ZTAttributeTables comic(ZTMediaKind::Comic, ZTAttributeTableParts::common(),
                                      ZTAttributeTableParts::comic());
        const ZTAttributeTables album(ZTMediaKind::Album, ZTAttributeTableParts::common(),
                                      ZTAttributeTableParts::album());
        QCoreApplication::removeTranslator(&translator);

        QCOMPARE(comic.columnKeyDictionary().value(QStringLiteral("Options|GCDN")), QStringLiteral("gcdn"));
        QCOMPARE(comic.columnKeyDictionary().value(QStringLiteral("Options|Title")), QStringLiteral("title"));
        QCOMPARE(comic.columnKeyDictionary().value(QStringLiteral("Localizable|Grade")),
                 QStringLiteral("grade"));
        QCOMPARE(album.columnKeyDictionary().value(QStringLiteral("Options|Listened")),
                 QStringLiteral("usedFlag"));
        QCOMPARE(comic.templateTag(QStringLiteral("cbdbn"))->displayName, QStringLiteral("Options|CBDBN"));
        QCOMPARE(comic.exportColumn(QStringLiteral("cover"))->title, QStringLiteral("Localizable|Cover"));
        QVERIFY(comic.filter(QStringLiteral("Localizable|Keyword")));
        QVERIFY(comic.importableAttribute(QStringLiteral("Options|Volume")));
        QVERIFY(isSortedForDisplay(comic.displayColumnKeys()));
        QVERIFY(isSortedForDisplay(comic.filterKeys()));
        // Smart-list titles are stored in qualifiers and stay English.
        QVERIFY(comic.smartListAttribute(QStringLiteral("Title")));
        // Removing the translator leaves tables already built as they were,
        // and labels looked up afterwards English again.
        QCOMPARE(ZTAttributeTables::localizedLabel(QStringLiteral("GCDN")), QStringLiteral("GCDN"));
    }

    void columnListingForTheCommandLine()
    {
        const ZTAttributeTables &book = ZTAttributeTables::forKind(ZTMediaKind::Book);
        const QStringList lines = book.columnListing();
        QCOMPARE(lines.size(), book.columnKeys().size());
        QVERIFY(lines.contains(QStringLiteral("ISBN\tisbn")));
        QVERIFY(lines.contains(QStringLiteral("Obtained From\tsource")));
        QVERIFY(!lines.contains(QStringLiteral("Description\tproductDescription")));
        QCOMPARE(lines.first(), QStringLiteral("Authors\tauthors"));
        for (const QString &line : lines)
            QCOMPARE(line.count(QLatin1Char('\t')), 1);
    }

    void mediaTypeDisplayNames()
    {
        QCOMPARE(ZTAttributeTables::mediaTypeDisplayNames(),
                 (QStringList{"Books", "Music", "Movies", "Comics"}));
        for (ZTMediaKind kind : ZTMediaKinds::all)
            QCOMPARE(ZTAttributeTables::forKind(kind).mediaTypeDisplayName(),
                     ZTAttributeTables::mediaTypeDisplayNames().at(int(kind)));
    }
};

ZT_TEST_MAIN(TestAttributeTables)
#include "tst_attributetables.moc"
