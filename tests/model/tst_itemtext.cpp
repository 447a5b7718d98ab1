#include "model/ZTItemText.h"

#include "TextCompare.h"
#include "support/ZTTestMain.h"

#include <QtTest>

class TestItemText : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void titleWithoutLeadingArticle_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("expected");

        QTest::newRow("null title") << QString() << "US" << QString();
        QTest::newRow("empty") << ""
                               << "US"
                               << "";
        QTest::newRow("one character") << "A"
                                       << "US"
                                       << "A";
        QTest::newRow("A and blank trims to A") << "A "
                                                << "US"
                                                << "A";
        QTest::newRow("article needs its blank") << "The"
                                                 << "US"
                                                 << "The";
        QTest::newRow("english article") << "The Hobbit"
                                         << "US"
                                         << "Hobbit";
        QTest::newRow("case ignored") << "the hobbit"
                                      << "US"
                                      << "hobbit";
        QTest::newRow("An before A is not confused") << "An Essay"
                                                     << "US"
                                                     << "Essay";
        QTest::newRow("article only at start") << "Tell The Truth"
                                               << "US"
                                               << "Tell The Truth";
        QTest::newRow("word starting like article") << "Theory"
                                                    << "US"
                                                    << "Theory";
        QTest::newRow("english applies in any locale") << "The Title"
                                                       << "DE"
                                                       << "Title";
        QTest::newRow("other locale's article kept") << "Der Titel"
                                                     << "US"
                                                     << "Der Titel";
        QTest::newRow("german article in DE") << "Der Titel"
                                              << "DE"
                                              << "Titel";
        QTest::newRow("elided french article") << "L'Amour"
                                               << "FR"
                                               << "Amour";
        QTest::newRow("elided article outside FR") << "L'Amour"
                                                   << "US"
                                                   << "L'Amour";
        QTest::newRow("italian apostrophe") << "Un'estate"
                                            << "IT"
                                            << "estate";
        QTest::newRow("spanish") << "Los Olvidados"
                                 << "ES"
                                 << "Olvidados";
        QTest::newRow("dutch") << "Het Achterhuis"
                               << "NL"
                               << "Achterhuis";
        QTest::newRow("quoted title loses quotes then article") << "\"The Raven\""
                                                                << "US"
                                                                << "Raven";
        QTest::newRow("blanks then punctuation") << " \t\"A Tale\"\n"
                                                 << "US"
                                                 << "Tale";
        QTest::newRow("only one article removed") << "The The"
                                                  << "US"
                                                  << "The";
        QTest::newRow("no locale") << "A Title"
                                   << ""
                                   << "Title";
        QTest::newRow("unknown locale") << "Die Blechtrommel"
                                        << "ZZ"
                                        << "Die Blechtrommel";
        QTest::newRow("trims to two characters") << "...Ab..."
                                                 << "US"
                                                 << "Ab";
        QTest::newRow("only punctuation") << "?!"
                                          << "US"
                                          << "";
        QTest::newRow("unicode punctuation") << QStringLiteral("«Le Monde»") << "FR"
                                             << "Monde";
        QTest::newRow("inner blank kept after article") << "The  Gap"
                                                        << "US"
                                                        << " Gap";
    }

    void titleWithoutLeadingArticle()
    {
        QFETCH(QString, title);
        QFETCH(QString, locale);
        QFETCH(QString, expected);
        COMPARE_TEXT(ZTItemText::titleWithoutLeadingArticle(title, locale), expected);
    }

    void hostileText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("lone high surrogate") << QStringLiteral("The ") + QChar(0xD800);
        QTest::newRow("lone low surrogate first") << QChar(0xDC00) + QStringLiteral("A Title");
        QTest::newRow("punctuation outside the basic plane") << QStringLiteral("𐄀The End𐄀");
        QTest::newRow("nul characters") << QString::fromUtf16(u"\0The\0 \0", 7);
        QTest::newRow("long title") << QStringLiteral("The ") + QString(200000, QLatin1Char('x'));
        QTest::newRow("only punctuation") << QString(1000, QLatin1Char('!'));
        QTest::newRow("only blanks") << QStringLiteral(" \t\r\n ");
    }

    void hostileText()
    {
        QFETCH(QString, text);
        for (const QString &locale : {"US", "FR", "IT", "", "\xff"}) {
            const QString title = ZTItemText::titleWithoutLeadingArticle(text, locale);
            QVERIFY(text.contains(title));
        }
        QVERIFY(ZTItemText::lastNameFirst(text).size() <= text.size() + 2);
        const QVariantList dicts = {QVariantMap{{"name", text}, {"role", text}}};
        QCOMPARE(ZTItemText::authorArrays(dicts).authorsWithTypes.size(), 1);
    }

    void articleTablesHaveTheirLanguages()
    {
        const auto &articles = ZTItemText::leadingArticleDictionary();
        QCOMPARE(articles.keys(), (QStringList{"DE", "EN", "ES", "FR", "IT", "NL"}));
        for (const QString &code : ZTItemText::leadingArticleArray())
            QVERIFY2(articles.contains(code), qPrintable(code));
        QCOMPARE(articles.value("EN"), (QStringList{"A ", "An ", "The "}));
    }

    void lastNameFirst_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("expected");
        QTest::newRow("two names") << "John Smith"
                                   << "Smith, John";
        QTest::newRow("three names split at last blank") << "Ursula K. Le Guin"
                                                         << "Guin, Ursula K. Le";
        QTest::newRow("no suffix rule") << "Martin Luther King Jr."
                                        << "Jr., Martin Luther King";
        QTest::newRow("single name") << "Plato"
                                     << "Plato";
        QTest::newRow("short name with blank") << "A B"
                                               << "B, A";
        QTest::newRow("two characters stay") << "Ab"
                                             << "Ab";
        QTest::newRow("outer blanks trimmed") << "  Jane Austen \n"
                                              << "Austen, Jane";
        QTest::newRow("tab counts as whitespace") << "Jane\tAusten"
                                                  << "Austen, Jane";
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("blank only") << "   "
                                    << "";
    }

    void lastNameFirst()
    {
        QFETCH(QString, name);
        QFETCH(QString, expected);
        QCOMPARE(ZTItemText::lastNameFirst(name), expected);
    }

    void lastNameFirstAppliesToRolesToo()
    {
        QCOMPARE(ZTItemText::lastNameFirstArray({"Harrison Ford", "Han Solo"}),
                 (QStringList{"Ford, Harrison", "Solo, Han"}));
    }

    void authorArrays()
    {
        const QVariantList dicts = {
            QVariantMap{{"name", "Jane Austen"}, {"role", ""}},
            QVariantMap{{"name", " Edith Grossman "}, {"role", " Translator "}},
            QVariantMap{{"name", "Library of Congress"}, {"role", "ent."}},
            QVariantMap{{"name", "Homer"}},
            QVariant(QStringLiteral("not a map")),
        };
        const ZTItemText::AuthorArrays arrays = ZTItemText::authorArrays(dicts);
        QCOMPARE(arrays.authorsWithTypes, (QStringList{"Jane Austen", "Edith Grossman (Translator)",
                                                       "Library of Congress", "Homer", ""}));
        QCOMPARE(arrays.authorsWithTypesByLastNameFirstName,
                 (QStringList{"Austen, Jane", "Grossman, Edith (Translator)", "Library of Congress", "Homer",
                              ""}));
        // Forms met before come back the same, and pairs whose texts run
        // together the same way stay apart.
        QCOMPARE(ZTItemText::authorArrays(dicts).authorsWithTypesByLastNameFirstName,
                 arrays.authorsWithTypesByLastNameFirstName);
        const QList<ZTItemText::NameAndRole> alike{
            {"Ann Lee", "Editor"}, {"Ann LeeEditor", ""}, {"Ann Lee", ""}};
        QCOMPARE(ZTItemText::authorArrays(alike).authorsWithTypes,
                 (QStringList{"Ann Lee (Editor)", "Ann LeeEditor", "Ann Lee"}));
    }

    void stringsForArray()
    {
        const QVariantList dicts = {
            QVariantMap{{"name", "Ann"}, {"role", "Pencils"}},
            QVariantMap{{"name", "Bob"}, {"role", "Inks"}},
            QVariantMap{{"name", "Ann"}, {"role", "Inks"}},
            QVariantMap{{"name", "  "}, {"role", "Colours"}},
            QVariantMap{{"name", "ann"}},
            QVariantMap{{"role", "Letters"}},
            QVariant(42),
        };
        QCOMPARE(ZTItemText::stringsForArray(dicts, "name"), (QStringList{"Ann", "Bob", "ann"}));
        QCOMPARE(ZTItemText::stringsForArray(dicts, "role"),
                 (QStringList{"Pencils", "Inks", "Colours", "Letters"}));
        QVERIFY(ZTItemText::stringsForArray({}, "name").isEmpty());
    }

    void issueNumberCountString_data()
    {
        QTest::addColumn<QVariant>("number");
        QTest::addColumn<QVariant>("count");
        QTest::addColumn<QString>("expected");
        QTest::newRow("both") << QVariant(3) << QVariant(12) << "3 of 12";
        QTest::newRow("number only") << QVariant(3) << QVariant() << "3";
        QTest::newRow("count only") << QVariant() << QVariant(12) << "- of 12";
        QTest::newRow("neither") << QVariant() << QVariant() << QString();
        QTest::newRow("zero is a value") << QVariant(0) << QVariant(0) << "0 of 0";
        QTest::newRow("numeric text") << QVariant("7") << QVariant() << "7";
        QTest::newRow("non-numeric text ignored") << QVariant("seven") << QVariant(9) << "- of 9";
        QTest::newRow("large numbers") << QVariant(qlonglong(5000000000LL)) << QVariant() << "5000000000";
    }

    void issueNumberCountString()
    {
        QFETCH(QVariant, number);
        QFETCH(QVariant, count);
        QFETCH(QString, expected);
        COMPARE_TEXT(ZTItemText::issueNumberCountString(number, count), expected);
    }
};

ZT_TEST_MAIN(TestItemText)
#include "tst_itemtext.moc"
