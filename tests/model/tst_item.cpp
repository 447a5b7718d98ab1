#include "library/ZTDisplayDictionary.h"
#include "library/ZTDocument.h"
#include "lists/ZTList.h"
#include "model/ZTAlbum.h"
#include "model/ZTBook.h"
#include "model/ZTComic.h"
#include "model/ZTMovie.h"
#include "model/ZTSharedRows.h"
#include "store/ZTImage.h"
#include "store/ZTManagedObjectContext.h"
#include "support/ZTLibraryFixture.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QDir>
#include <QFile>
#include <QtTest>

class TestItem : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_settings;

    static ZTBook *newBook(ZTDocument &document, const QVariantMap &map = {})
    {
        return static_cast<ZTBook *>(document.addItemFromDictionary(map));
    }

private Q_SLOTS:
    void initTestCase() { ZTTestSupport::useTemporarySettings(m_settings); }

    void insertionGivesDefaults()
    {
        ZTLibraryFixture fixture(ZTMediaKind::Album);
        auto document = fixture.open();
        ZTItem *album =
            document->addItemFromDictionary({{QStringLiteral("title"), QStringLiteral("Kind of Blue")}});
        QVERIFY(album);
        QCOMPARE(album->oid().size(), 36);
        QCOMPARE(album->oid(), album->oid().toLower());
        QCOMPARE(album->valueForKey(QStringLiteral("copies")).toInt(), 1);
        QCOMPARE(album->valueForKey(QStringLiteral("numberOfMedia")).toInt(), 1);
        QCOMPARE(album->valueForKey(QStringLiteral("rating")).toInt(), 0);
        QCOMPARE(album->isOwned(), true);
        QCOMPARE(album->isLocked(), false);
        QCOMPARE(album->locale(), QStringLiteral("US"));
        QCOMPARE(album->priceLocale(), QStringLiteral("USD"));
        QVERIFY(album->valueForKey(QStringLiteral("dateAdded")).toDateTime().isValid());
        QVERIFY(album->isNew());
        QCOMPARE(document->mainList()->itemOids().first(), album->oid());
    }

    void undefinedKeysReadAsNothingAndWritesAreIgnored()
    {
        ZTLibraryFixture fixture(ZTMediaKind::Album);
        auto document = fixture.open();
        ZTItem *album = document->addItemFromDictionary({});
        QVERIFY(!album->valueForKey(QStringLiteral("authors")).isValid());
        album->setValueForKey(QStringList{QStringLiteral("Ann")}, QStringLiteral("authors"));
        QVERIFY(!album->valueForKey(QStringLiteral("authors")).isValid());
        QVERIFY(!album->takeAttributesFromDictionary({{QStringLiteral("noSuchKey"), 1}}));
    }

    void identityBlobsAndReadOnlyKeysIgnoreWrites()
    {
        ZTLibraryFixture fixture(ZTMediaKind::Book);
        auto document = fixture.open();
        ZTBook *book = newBook(*document, {{QStringLiteral("authors"), QStringList{QStringLiteral("Ann")}}});
        const QString oid = book->oid();
        const QStringList authorOids = book->valueForKey(QStringLiteral("authorOids")).toStringList();
        QCOMPARE(authorOids.size(), 1);
        book->setValueForKey(QStringLiteral("x"), QStringLiteral("oid"));
        book->setValueForKey(QByteArray("\x01"), QStringLiteral("toAuthorData"));
        book->setValueForKey(QStringList{QStringLiteral("y")}, QStringLiteral("authorOids"));
        QVERIFY(!book->takeAttributesFromDictionary({{QStringLiteral("oid"), QStringLiteral("z")}}));
        QCOMPARE(book->oid(), oid);
        QCOMPARE(book->valueForKey(QStringLiteral("authorOids")).toStringList(), authorOids);
        QVERIFY(!book->primitiveValueForKey(QStringLiteral("toAuthorData")).isValid());
        QVERIFY(book->hasKey(QStringLiteral("authorOids")) && book->hasKey(QStringLiteral("title")));
        QVERIFY(!book->hasKey(QStringLiteral("artists")));
    }

    void readersAnswerAsValueForKeyDoes()
    {
        // Every stored and computed key of every kind, through both doors.
        for (ZTMediaKind kind :
             {ZTMediaKind::Book, ZTMediaKind::Album, ZTMediaKind::Movie, ZTMediaKind::Comic}) {
            ZTLibraryFixture fixture(kind);
            auto document = fixture.open();
            ZTItem *item = document->addItemFromDictionary(
                {{QStringLiteral("title"), QStringLiteral("The Title")},
                 {QStringLiteral("genre"), QStringLiteral("Jazz")},
                 {QStringLiteral("price"), 9.5},
                 {QStringLiteral("pages"), 120},
                 {QStringLiteral("authors"), QStringList{QStringLiteral("Ann")}},
                 {QStringLiteral("artists"), QStringList{QStringLiteral("Bo")}},
                 {QStringLiteral("actors"), QStringList{QStringLiteral("Cy")}},
                 {QStringLiteral("keywords"), QStringList{QStringLiteral("kw")}}});
            QVERIFY(item);
            QStringList keys;
            for (const ZTAttribute &attribute : item->entity()->attributes)
                keys << attribute.name;
            keys << QStringLiteral("authors") << QStringLiteral("artists") << QStringLiteral("actors")
                 << QStringLiteral("keywords") << QStringLiteral("locale") << QStringLiteral("noSuchKey");
            int filled = 0;
            for (const QString &key : std::as_const(keys)) {
                const QVariant direct = item->valueForKey(key);
                QCOMPARE(item->readerForKey(key).read(*item), direct);
                if (item->entity()->attributeSlot(key) >= 0 || direct.isValid())
                    QVERIFY2(item->hasKey(key), qPrintable(key));
                filled += direct.isValid() ? 1 : 0;
            }
            QVERIFY(!item->hasKey(QStringLiteral("noSuchKey")));
            QCOMPARE(item->valueForKey(QStringLiteral("title")).toString(), QStringLiteral("The Title"));
            QVERIFY2(filled > 10, qPrintable(QString::number(filled)));
        }
    }

    void dictionaryFormSurvivesSaveAndReopen_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QVariantMap>("map");
        QTest::newRow("book") << int(ZTMediaKind::Book)
                              << QVariantMap{
                                     {QStringLiteral("title"), QStringLiteral("The Hobbit")},
                                     {QStringLiteral("isbn"), QStringLiteral("0261102214")},
                                     {QStringLiteral("pages"), 310},
                                     {QStringLiteral("keywords"), QStringList{QStringLiteral("fantasy")}},
                                     {QStringLiteral("locSubjects"), QStringList{QStringLiteral("Hobbits")}},
                                     {QStringLiteral("authorRoleDicts"),
                                      QVariantList{QVariantMap{
                                          {QStringLiteral("name"), QStringLiteral("J. R. R. Tolkien")},
                                          {QStringLiteral("role"), QStringLiteral("Author")}}}},
                                     {QStringLiteral("price"), 12.5},
                                     {QStringLiteral("priceLocale"), QStringLiteral("GBP")},
                                     {QStringLiteral("locale"), QStringLiteral("GB")},
                                     {QStringLiteral("datePublished"), QStringLiteral("1937-09-21")},
                                     {QStringLiteral("datePublishedBitFlag"), 0}};
        QTest::newRow("album")
            << int(ZTMediaKind::Album)
            << QVariantMap{{QStringLiteral("title"), QStringLiteral("Blue Train")},
                           {QStringLiteral("upc"), QStringLiteral("724349532722")},
                           {QStringLiteral("artists"), QStringList{QStringLiteral("John Coltrane")}},
                           {QStringLiteral("tracks"),
                            QStringList{QStringLiteral("Blue Train"), QStringLiteral("Moment's Notice")}},
                           {QStringLiteral("label"), QStringLiteral("Blue Note")}};
        QTest::newRow("movie") << int(ZTMediaKind::Movie)
                               << QVariantMap{{QStringLiteral("title"), QStringLiteral("Metropolis")},
                                              {QStringLiteral("directors"),
                                               QStringList{QStringLiteral("Fritz Lang")}},
                                              {QStringLiteral("actorRoleDicts"),
                                               QVariantList{QVariantMap{
                                                   {QStringLiteral("name"), QStringLiteral("Brigitte Helm")},
                                                   {QStringLiteral("role"), QStringLiteral("Maria")}}}},
                                              {QStringLiteral("duration"), 153},
                                              {QStringLiteral("studio"), QStringLiteral("UFA")}};
        QTest::newRow("comic")
            << int(ZTMediaKind::Comic)
            << QVariantMap{{QStringLiteral("title"), QStringLiteral("Little Nemo")},
                           {QStringLiteral("issueNumber"), 3},
                           {QStringLiteral("issueCount"), 12},
                           {QStringLiteral("stories"), QStringList{QStringLiteral("Slumberland")}},
                           {QStringLiteral("artistRoleDicts"),
                            QVariantList{QVariantMap{{QStringLiteral("name"), QStringLiteral("Winsor McCay")},
                                                     {QStringLiteral("role"), QStringLiteral("Artist")}}}},
                           {QStringLiteral("characterRoleDicts"),
                            QVariantList{QVariantMap{{QStringLiteral("name"), QStringLiteral("Nemo")},
                                                     {QStringLiteral("role"), QString()}}}},
                           {QStringLiteral("gcdn"), QStringLiteral("12345")}};
    }
    void dictionaryFormSurvivesSaveAndReopen()
    {
        QFETCH(int, kind);
        QFETCH(QVariantMap, map);
        ZTLibraryFixture fixture{ZTMediaKind(kind)};
        QString oid;
        QVariantMap before;
        {
            auto document = fixture.open();
            ZTItem *item = document->addItemFromDictionary(map);
            oid = item->oid();
            before = item->dictionary();
            QVERIFY(document->saveDocument());
        }
        auto document = fixture.open();
        ZTItem *item = document->itemForOid(oid);
        QVERIFY(item);
        const QVariantMap after = item->dictionary();
        QCOMPARE(after.keys(), before.keys());
        for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
            if (it.key().startsWith(QLatin1String("date")))
                QCOMPARE(after.value(it.key()).toDateTime().toLocalTime().date(),
                         QDate::fromString(it.value().toString(), Qt::ISODate));
            else
                QCOMPARE(after.value(it.key()), it.value());
        }
        QCOMPARE(after, before);
        // A reopened item takes the same dictionary back without change.
        QVERIFY(!item->takeAttributesFromDictionary(after));
        QVERIFY(!item->isNew());
    }

    void repeatedNamesKeepOrderAndShareRows()
    {
        ZTLibraryFixture fixture;
        auto document = fixture.open();
        ZTBook *a =
            newBook(*document,
                    {{QStringLiteral("keywords"), QStringList{QStringLiteral("b"), QStringLiteral("a"),
                                                              QStringLiteral("b"), QStringLiteral("  ")}}});
        QCOMPARE(a->keywords(), (QStringList{QStringLiteral("b"), QStringLiteral("a"), QStringLiteral("b")}));
        QCOMPARE(a->keywordOids().size(), 3);
        QCOMPARE(a->keywordOids()[0], a->keywordOids()[2]);
        ZTBook *b = newBook(*document, {{QStringLiteral("keywords"), QStringList{QStringLiteral("a")}}});
        QCOMPARE(b->keywordOids().first(), a->keywordOids()[1]);
        QCOMPARE(
            document->managedObjectContext()->oidObjectDictionary().value(QStringLiteral("ZTKeyword")).size(),
            2);
    }

    void missingRolesDifferByKind()
    {
        ZTLibraryFixture books(ZTMediaKind::Book);
        auto bookDocument = books.open();
        const QVariantList noRole{QVariantMap{{QStringLiteral("name"), QStringLiteral("Ann Author")}}};
        ZTBook *b1 = newBook(*bookDocument, {{QStringLiteral("authorRoleDicts"), noRole}});
        ZTBook *b2 = newBook(*bookDocument, {{QStringLiteral("authorRoleDicts"), noRole}});
        // A book stores a missing role as "" and finds that row again.
        QCOMPARE(b1->authorRoleOids(), b2->authorRoleOids());
        QCOMPARE(b1->authorRoleDicts().first().toMap().value(QStringLiteral("role")).toString(), QString());

        ZTLibraryFixture movies(ZTMediaKind::Movie);
        auto movieDocument = movies.open();
        auto *m1 = static_cast<ZTMovie *>(
            movieDocument->addItemFromDictionary({{QStringLiteral("actorRoleDicts"), noRole}}));
        auto *m2 = static_cast<ZTMovie *>(
            movieDocument->addItemFromDictionary({{QStringLiteral("actorRoleDicts"), noRole}}));
        // A movie looks a missing role up as "nil", so each such entry makes a new row …
        QVERIFY(m1->actorRoleOids() != m2->actorRoleOids());
        // … but the person is shared.
        QCOMPARE(m1->actorOids(), m2->actorOids());
        const QVariantList withRole{QVariantMap{{QStringLiteral("name"), QStringLiteral("Ann Actor")},
                                                {QStringLiteral("role"), QStringLiteral("Han Solo")}}};
        auto *m3 = static_cast<ZTMovie *>(
            movieDocument->addItemFromDictionary({{QStringLiteral("actorRoleDicts"), withRole}}));
        auto *m4 = static_cast<ZTMovie *>(
            movieDocument->addItemFromDictionary({{QStringLiteral("actorRoleDicts"), withRole}}));
        QCOMPARE(m3->actorRoleOids(), m4->actorRoleOids());
    }

    void sharedAuthorsFollowRenames()
    {
        ZTLibraryFixture fixture;
        auto document = fixture.open();
        auto add = [&](const QVariantList &authors) {
            return static_cast<ZTBook *>(document->addItemFromDictionary({{"authorRoleDicts", authors}}));
        };
        const QVariantMap ann{{"name", "Ann Lee"}, {"role", ""}};
        ZTBook *first = add({ann});
        ZTBook *second = add({ann, QVariantMap{{"name", "Bo Chan"}, {"role", "Editor"}}});
        QCOMPARE(first->authorsWithTypesByLastNameFirstName(), QStringList{"Lee, Ann"});
        QCOMPARE(second->authorsWithTypesByLastNameFirstName(),
                 QStringList({"Lee, Ann", "Chan, Bo (Editor)"}));
        QCOMPARE(second->authorsWithTypes(), QStringList({"Ann Lee", "Bo Chan (Editor)"}));
        // The shared person row renamed in place: a book that reads its authors
        // again shows the new name, not the form made for the old one.
        const QList<ZTManagedObject *> people =
            document->managedObjectContext()->fetch("ZTAuthor", "name", QStringLiteral("Ann Lee"));
        QCOMPARE(people.size(), 1);
        people.first()->setPrimitiveValueForKey(QStringLiteral("Cy Dunn"), "name");
        first->updateAuthors();
        QCOMPARE(first->authorsWithTypesByLastNameFirstName(), QStringList{"Dunn, Cy"});
        // A corporate role on the same name keeps the name as it stands.
        ZTBook *third = add({QVariantMap{{"name", "Cy Dunn"}, {"role", "ent."}}});
        QCOMPARE(third->authorsWithTypesByLastNameFirstName(), QStringList{"Cy Dunn"});
    }

    void roleNameListsSkipBlanksAndRepeats()
    {
        ZTLibraryFixture fixture(ZTMediaKind::Movie);
        auto document = fixture.open();
        auto entry = [](const QString &name, const QString &role) {
            return QVariantMap{{QStringLiteral("name"), name}, {QStringLiteral("role"), role}};
        };
        // A person twice under two roles, a blank name, a blank role, a role twice.
        const QVariantList cast{entry("Ann", "Queen"), entry("  ", "Guard"), entry("Bo", "King"),
                                entry("Ann", "Witch"), entry("Cy", ""),      entry("Di", "King")};
        auto *movie = static_cast<ZTMovie *>(document->addItemFromDictionary({{"actorRoleDicts", cast}}));
        QCOMPARE(movie->actors(), QStringList({"Ann", "Bo", "Cy", "Di"}));
        // An entry without a name is never stored, so its role goes with it.
        QCOMPARE(movie->roles(), QStringList({"Queen", "King", "Witch"}));
        // The lists agree with what the role maps say, entry for entry.
        QCOMPARE(movie->actors(), ZTItem::stringsForArray(movie->actorRoleDicts(), "name"));
        QCOMPARE(movie->roles(), ZTItem::stringsForArray(movie->actorRoleDicts(), "role"));
        QVERIFY(document->saveDocument());
        auto reopened = fixture.open();
        auto *read = static_cast<ZTMovie *>(reopened->itemForOid(movie->oid()));
        QVERIFY(read);
        QCOMPARE(read->actors(), QStringList({"Ann", "Bo", "Cy", "Di"}));
    }

    // A role key takes role maps, plain names (what its name key reads) and
    // what it reads itself; none of them may lose a person.
    void roleKeysTakePlainNamesAndWhatTheyRead()
    {
        const struct {
            ZTMediaKind kind;
            const char *key, *namesKey;
        } cases[] = {{ZTMediaKind::Book, "authorRoleDicts", "authors"},
                     {ZTMediaKind::Movie, "actorRoleDicts", "actors"},
                     {ZTMediaKind::Movie, "actorRoles", "actors"},
                     {ZTMediaKind::Comic, "artistRoleDicts", "artists"},
                     {ZTMediaKind::Comic, "artistRoles", "artists"},
                     {ZTMediaKind::Comic, "characterRoleDicts", "characters"},
                     {ZTMediaKind::Comic, "characterRoles", "characters"}};
        const QStringList names{QStringLiteral("Joker"), QStringLiteral("Alfred")};
        for (const auto &c : cases) {
            ZTLibraryFixture fixture(c.kind);
            auto document = fixture.open();
            ZTItem *item = document->addItemFromDictionary({});
            const QString key = QLatin1String(c.key);
            item->takeAttributesFromDictionary({{key, QVariantList{names[0], names[1]}}});
            QCOMPARE(item->valueForKey(QLatin1String(c.namesKey)).toStringList(), names);
            item->setValueForKey(item->valueForKey(key), key);
            QCOMPARE(item->valueForKey(QLatin1String(c.namesKey)).toStringList(), names);
            item->setValueForKey(QStringLiteral("Ann"), key);
            QCOMPARE(item->valueForKey(QLatin1String(c.namesKey)).toStringList(), QStringList{"Ann"});
        }
    }

    void plainAuthorNamesBecomeRolesThroughTheDictionary()
    {
        ZTLibraryFixture fixture;
        auto document = fixture.open();
        ZTBook *book = newBook(*document);
        book->handleDictionary(
            {{QStringLiteral("authors"), QStringList{QStringLiteral("Ann"), QStringLiteral("Bo")}}});
        const QVariantList dicts = book->authorRoleDicts();
        QCOMPARE(dicts.size(), 2);
        QCOMPARE(dicts[1].toMap().value(QStringLiteral("name")).toString(), QStringLiteral("Bo"));
        QCOMPARE(book->authors(), (QStringList{QStringLiteral("Ann"), QStringLiteral("Bo")}));
    }

    void handleDictionaryDropsTheSmallPictureAddress()
    {
        ZTLibraryFixture fixture;
        auto document = fixture.open();
        ZTBook *source = newBook(*document);
        source->setValueForKey(QStringLiteral("http://x/s.jpg"), QStringLiteral("imageSmallUrl"));
        source->setValueForKey(QStringLiteral("http://x/m.jpg"), QStringLiteral("imageMediumUrl"));
        source->setValueForKey(QStringLiteral("http://x/l.jpg"), QStringLiteral("imageLargeUrl"));
        const QVariantMap form = source->dictionary();
        QVERIFY(form.contains(QStringLiteral("imageSmallUrl")));
        ZTBook *copy = newBook(*document);
        copy->handleDictionary(form);
        QVERIFY(!copy->valueForKey(QStringLiteral("imageSmallUrl")).isValid());
        QCOMPARE(copy->valueForKey(QStringLiteral("imageMediumUrl")).toString(),
                 QStringLiteral("http://x/m.jpg"));
        QCOMPARE(copy->valueForKey(QStringLiteral("imageLargeUrl")).toString(),
                 QStringLiteral("http://x/l.jpg"));
        // A date used makes the item used.
        copy->handleDictionary({{QStringLiteral("dateUsed"), QDate(2020, 5, 1)}});
        QVERIFY(copy->isUsed());
    }

    void takeAttributesReportsChangesAndKeepsTheDateOtherwise()
    {
        ZTLibraryFixture fixture;
        auto document = fixture.open();
        ZTBook *book = newBook(*document, {{QStringLiteral("title"), QStringLiteral("The Title")},
                                           {QStringLiteral("isbn"), QStringLiteral("0306406152")}});
        const QDateTime modified = QDateTime::currentDateTimeUtc().addDays(-3);
        book->setPrimitiveValueForKey(modified, QStringLiteral("dateModified"));
        QVERIFY(
            !book->takeAttributesFromDictionary({{QStringLiteral("title"), QStringLiteral("The Title")},
                                                 {QStringLiteral("isbn"), QStringLiteral("0306406152")}}));
        QCOMPARE(book->valueForKey(QStringLiteral("dateModified")).toDateTime(), modified);
        QVERIFY(book->takeAttributesFromDictionary({{QStringLiteral("title"), QStringLiteral("A Title")},
                                                    {QStringLiteral("isbn"), QStringLiteral("0306406152")}}));
        QVERIFY(book->valueForKey(QStringLiteral("dateModified")).toDateTime() > modified);
    }

    void managedKeysLeftOutAreCleared()
    {
        ZTLibraryFixture fixture;
        auto document = fixture.open();
        ZTBook *book = newBook(*document, {{QStringLiteral("genre"), QStringLiteral("Fantasy")},
                                           {QStringLiteral("notes"), QStringLiteral("signed copy")},
                                           {QStringLiteral("isbn"), QStringLiteral("0306406152")},
                                           {QStringLiteral("lccn"), QStringLiteral("2001012345")}});
        QVERIFY(book->takeAttributesFromDictionary(
            {{QStringLiteral("allKeys"), QStringList{QStringLiteral("genre"), QStringLiteral("notes")}},
             {QStringLiteral("genre"), QStringLiteral("Fantasy")},
             {QStringLiteral("isbn"), QStringLiteral("  ")}}));
        QCOMPARE(book->valueForKey(QStringLiteral("genre")).toString(), QStringLiteral("Fantasy"));
        QVERIFY(!book->valueForKey(QStringLiteral("notes")).isValid());
        // Codes are always taken from the map: blank or missing clears them.
        QVERIFY(!book->valueForKey(QStringLiteral("isbn")).isValid());
        QVERIFY(!book->valueForKey(QStringLiteral("lccn")).isValid());
    }

    void coverCasesAndFileWork()
    {
        ZTLibraryFixture fixture;
        auto document = fixture.open();
        ZTBook *book = newBook(*document);
        ZTManagedObjectContext *context = document->managedObjectContext();
        // Bytes of a known type are kept as they are.
        const QByteArray jpeg = zt_jpegBytes(20, 30);
        QVariantMap result = book->handleImage({}, jpeg, QStringLiteral("http://x/c.JPG?x=1"), {}, false);
        QVERIFY(result.value(QStringLiteral("newImageFilename")).toString().endsWith(QLatin1String(".jpg")));
        QCOMPARE(result.value(QStringLiteral("newImageData")).toByteArray(), jpeg);
        QCOMPARE(book->coverImage()->format(), QStringLiteral("JPEG"));
        QCOMPARE(book->coverImage()->primitiveValueForKey(QStringLiteral("width")).toInt(), 20);
        const QString first = result.value(QStringLiteral("newImageFilename")).toString();
        // Unknown type and address: re-encoded as JPEG; the old name is handed back.
        result = book->handleImage({}, zt_pngBytes(8, 8), QStringLiteral("http://x/cover"),
                                   QStringLiteral("WEBP"), true);
        QCOMPARE(result.value(QStringLiteral("oldImageFilename")).toString(), first);
        QCOMPARE(book->coverImage()->format(), QStringLiteral("JPEG"));
        QVERIFY(result.value(QStringLiteral("newImageData")).toByteArray().startsWith("\xff\xd8"));
        // A picture without bytes becomes a user PNG.
        QImage picture(5, 6, QImage::Format_RGB32);
        picture.fill(Qt::green);
        result = book->handleImage(picture, {}, {}, {}, false);
        QCOMPARE(book->coverImage()->format(), QStringLiteral("PNG"));
        QCOMPARE(book->coverImage()->primitiveValueForKey(QStringLiteral("userFlag")).toBool(), true);
        // Bytes that are no picture, or a picture of one pixel, take the cover away.
        book->updateCoverImageStatus();
        QVERIFY(book->hasCoverImage());
        result = book->handleImage({}, zt_pngBytes(1, 40), {}, QStringLiteral("PNG"), false);
        QVERIFY(!book->coverImage());
        QVERIFY(result.contains(QStringLiteral("oldImageFilename")));
        QVERIFY(!result.contains(QStringLiteral("newImageFilename")));

        // Through the store: replacing twice leaves only the last picture in the package.
        book->replaceCover({}, zt_pngBytes(10, 10, 0x111111), {}, QStringLiteral("PNG"), false);
        book->replaceCover({}, zt_pngBytes(12, 12, 0x222222), {}, QStringLiteral("PNG"), false);
        const QString last = book->coverImage()->filename();
        QVERIFY(document->saveDocument());
        const QStringList files = QDir(context->imageFolderPath()).entryList(QDir::Files);
        QCOMPARE(files, QStringList{last});
        QVERIFY(book->hasCoverImage());
    }

    void cloneCopiesCoverAndLoanIntoAnotherLibrary()
    {
        ZTLibraryFixture from, to;
        auto source = from.open();
        auto target = to.open();
        ZTBook *book = newBook(*source, {{QStringLiteral("title"), QStringLiteral("Lent")},
                                         {QStringLiteral("keywords"), QStringList{QStringLiteral("k")}}});
        book->replaceCover({}, zt_pngBytes(9, 9), {}, QStringLiteral("PNG"), true);
        book->setLentToName(QStringLiteral("Bea"));
        book->setDateDue(QDateTime::currentDateTimeUtc().addDays(-2));
        QVERIFY(book->isOverdue());
        QVERIFY(source->saveDocument());
        auto *copy = static_cast<ZTItem *>(book->clone(target->managedObjectContext()));
        QVERIFY(copy);
        QVERIFY(copy->oid() != book->oid());
        QCOMPARE(copy->title(), QStringLiteral("Lent"));
        QCOMPARE(copy->keywords(), QStringList{QStringLiteral("k")});
        QCOMPARE(copy->lentToName(), QStringLiteral("Bea"));
        QVERIFY(copy->isOverdue());
        QVERIFY(copy->hasCoverImage());
        QVERIFY(copy->coverImage()->filename() != book->coverImage()->filename());
        target->managedObjectContext()->setOidObject(QStringLiteral("ZTBook"), copy->oid(), copy);
        target->mainList()->addItem(copy->oid());
        QVERIFY(target->saveDocument());
        auto reopened = to.open();
        ZTItem *back = reopened->itemForOid(copy->oid());
        QVERIFY(back);
        QCOMPARE(back->largestImageAvailable(), book->largestImageAvailable());
    }

    void derivedValuesFollowTheirSources()
    {
        ZTLibraryFixture fixture;
        auto document = fixture.open();
        ZTBook *book = newBook(
            *document, {{QStringLiteral("title"), QStringLiteral("\"The Hobbit\"")},
                        {QStringLiteral("volumeNumber"), QStringLiteral("Vol. 12")},
                        {QStringLiteral("locClassification"), QStringLiteral("QA76.73")},
                        {QStringLiteral("datePublished"), QDate(1937, 9, 21)},
                        {QStringLiteral("authorRoleDicts"),
                         QVariantList{QVariantMap{{QStringLiteral("name"), QStringLiteral("Ann Smith")},
                                                  {QStringLiteral("role"), QStringLiteral("Editor")}},
                                      QVariantMap{{QStringLiteral("name"), QStringLiteral("Acme Corp")},
                                                  {QStringLiteral("role"), QStringLiteral("ent.")}}}}});
        QCOMPARE(book->titleWithoutLeadingArticle(), QStringLiteral("Hobbit"));
        QCOMPARE(book->volumeNumberSortable(), QStringLiteral("000012Vol. "));
        QCOMPARE(book->locClassificationSortable(), QStringLiteral("QA 0076 .73"));
        QCOMPARE(book->year().toInt(), 1937);
        QCOMPARE(book->authorsWithTypes(),
                 (QStringList{QStringLiteral("Ann Smith (Editor)"), QStringLiteral("Acme Corp")}));
        QCOMPARE(book->authorsWithTypesByLastNameFirstName(),
                 (QStringList{QStringLiteral("Smith, Ann (Editor)"), QStringLiteral("Acme Corp")}));
        QCOMPARE(book->valueForKey(QStringLiteral("firstAuthorByLastNameFirstname")).toString(),
                 QStringLiteral("Smith, Ann"));
        // A volume without numeral or digit keeps the previous key.
        book->takeAttributesFromDictionary({{QStringLiteral("volumeNumber"), QStringLiteral("two")}});
        QCOMPARE(book->volumeNumberSortable(), QStringLiteral("000012Vol. "));
        // Locale changes the articles that apply.
        book->takeAttributesFromDictionary({{QStringLiteral("title"), QStringLiteral("L'Amour")},
                                            {QStringLiteral("locale"), QStringLiteral("FR")}});
        QCOMPARE(book->titleWithoutLeadingArticle(), QStringLiteral("Amour"));
        book->setDateDue(QDateTime(QDate::currentDate(), QTime(12, 0)));
        QVERIFY(!book->isOverdue());
    }

    void searchLooksIntoNamesAndCodes()
    {
        ZTLibraryFixture fixture(ZTMediaKind::Comic);
        auto document = fixture.open();
        ZTItem *comic = document->addItemFromDictionary(
            {{QStringLiteral("title"), QStringLiteral("Nemo")},
             {QStringLiteral("characters"), QStringList{QStringLiteral("Flip")}},
             {QStringLiteral("gcdn"), QStringLiteral("4711")},
             {QStringLiteral("keywords"), QStringList{QStringLiteral("dream")}}});
        QVERIFY(comic->containsString(QStringLiteral("FLIP")));
        QVERIFY(comic->containsString(QStringLiteral("471")));
        QVERIFY(comic->containsString(QStringLiteral("Drea")));
        QVERIFY(!comic->containsString(QStringLiteral("zzz")));
        QVERIFY(!comic->containsString(QString()));
        QVERIFY(comic->indexedString().contains(QStringLiteral("Flip")));
        const QVariantList links = comic->urlDictionariesWithAssociateTag({});
        QVERIFY(!links.isEmpty());
        QVERIFY(
            links.first().toMap().value(QStringLiteral("url")).toString().contains(QStringLiteral("4711")));
    }

    void displayLabelsMapToKeysByKind()
    {
        const QVariantMap display{{QStringLiteral("Title"), QStringLiteral("Dune")},
                                  {QStringLiteral("Date Read"), QDate(2020, 1, 2)},
                                  {QStringLiteral("Authors"), QStringList{QStringLiteral("Frank Herbert")}},
                                  {QStringLiteral("Directors"), QStringList{QStringLiteral("David Lynch")}}};
        const QVariantMap book = ZTDisplayDictionary::dictionaryFromDisplayDictionary(
            ZTMediaKind::Book, display, QStringLiteral("EUR"));
        QCOMPARE(book.value(QStringLiteral("title")).toString(), QStringLiteral("Dune"));
        QVERIFY(book.contains(QStringLiteral("dateUsed")));
        QVERIFY(book.contains(QStringLiteral("authors")));
        QVERIFY(!book.contains(QStringLiteral("directors")));
        QCOMPARE(book.value(QStringLiteral("priceLocale")).toString(), QStringLiteral("EUR"));
        QCOMPARE(book.value(QStringLiteral("lockedFlag")).toInt(), 0);
        const QVariantMap movie = ZTDisplayDictionary::dictionaryFromDisplayDictionary(
            ZTMediaKind::Movie, display, QStringLiteral("USD"));
        QVERIFY(movie.contains(QStringLiteral("directors")));
        QVERIFY(!movie.contains(QStringLiteral("dateUsed"))); // a movie's is "Date Viewed"
        ZTLibraryFixture fixture;
        auto document = fixture.open();
        ZTBook *item = newBook(*document);
        item->handleDictionary(ZTDisplayDictionary::dictionaryFromDisplayDictionary(
            ZTMediaKind::Book, display, QStringLiteral("GBP")));
        QCOMPARE(item->authors(), QStringList{QStringLiteral("Frank Herbert")});
        QVERIFY(item->isUsed());
        QCOMPARE(item->priceLocale(), QStringLiteral("GBP"));
    }

    void unreadableBlobsReadAsEmpty()
    {
        ZTLibraryFixture fixture;
        QString oid;
        {
            auto document = fixture.open();
            ZTBook *book =
                newBook(*document, {{QStringLiteral("title"), QStringLiteral("x")},
                                    {QStringLiteral("keywords"), QStringList{QStringLiteral("k")}}});
            oid = book->oid();
            QVERIFY(document->saveDocument());
            book->setPrimitiveValueForKey(QByteArray("bplist00garbage"), QStringLiteral("toKeywordData"));
            book->setPrimitiveValueForKey(QByteArray("\x01\x02"), QStringLiteral("toAuthorData"));
            QVERIFY(document->saveDocument());
        }
        auto document = fixture.open();
        ZTBook *book = static_cast<ZTBook *>(document->itemForOid(oid));
        QVERIFY(book);
        QVERIFY(book->keywords().isEmpty());
        QVERIFY(book->authors().isEmpty());
        QCOMPARE(book->title(), QStringLiteral("x"));
    }
};

ZT_TEST_MAIN(TestItem)
#include "tst_item.moc"
