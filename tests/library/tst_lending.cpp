#include "library/ZTContacts.h"
#include "library/ZTLending.h"
#include "model/ZTLendingContext.h"

#include "ZTLibraryFixture.h"
#include "support/ZTTestMain.h"

#include <QFile>
#include <QtTest>

class TestLending : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void nameLastNameFirst_data();
    void nameLastNameFirst();
    void sortNameSurvivesReopening();
    void dueDateAloneMakesALoan();
    void lentOutFlagFalseDeletesTheDetails();
    void overdueAtDayGranularity_data();
    void overdueAtDayGranularity();
    void lendingLines();
    void vCardsGiveNamesAndPrimaryAddresses();
    void zettaryGroupNarrowsTheContacts();
    void sameDisplayNameTakesTheLaterAddress();
    void hostileVCardsDoNotCrash_data();
    void hostileVCardsDoNotCrash();
    void contactsFromAFolder();
};

void TestLending::nameLastNameFirst_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("sortName");
    QTest::newRow("two words") << "Ann Lee"
                               << "Lee, Ann";
    QTest::newRow("three words split at the last blank") << "Mary Ann Evans"
                                                         << "Evans, Mary Ann";
    QTest::newRow("one word stands") << "Cher"
                                     << "Cher";
    QTest::newRow("under three characters") << "Al"
                                            << "Al";
    QTest::newRow("three characters split") << "A B"
                                            << "B, A";
    QTest::newRow("nothing") << ""
                             << "";
}

void TestLending::nameLastNameFirst()
{
    QFETCH(QString, name);
    QFETCH(QString, sortName);
    ZTLibraryFixture f;
    ZTItem *item = f.add({{QStringLiteral("title"), QStringLiteral("x")}});
    item->setLentOutFlag(true);
    item->setLentToName(name);
    QCOMPARE(item->lentToNameLastNameFirst(), sortName);
    QCOMPARE(item->valueForKey(QStringLiteral("lentToNameLastNameFirst")).toString(), sortName);
}

void TestLending::sortNameSurvivesReopening()
{
    ZTLibraryFixture f;
    const QString oid =
        f.addTitled(QStringLiteral("x"), {{QStringLiteral("lentToName"), QStringLiteral("Ann Lee")}});
    QVERIFY(f.document().saveDocument());
    f.reopen();
    QCOMPARE(f.document().itemForOid(oid)->lentToNameLastNameFirst(), QStringLiteral("Lee, Ann"));
}

void TestLending::dueDateAloneMakesALoan()
{
    ZTLibraryFixture f;
    ZTItem *item = f.add({{QStringLiteral("title"), QStringLiteral("x")}});
    item->setLentToName(QString()); // no name and no loan: nothing
    QVERIFY(!item->isLentOut());
    item->setDateDue(QDateTime(QDate(2030, 1, 1), QTime(0, 0)));
    QVERIFY(item->isLentOut());
    QCOMPARE(item->valueForKey(QStringLiteral("lentOutFlag")).toBool(), true);
    QCOMPARE(item->lentToName(), QString());
}

void TestLending::lentOutFlagFalseDeletesTheDetails()
{
    ZTLibraryFixture f;
    ZTItem *item = f.add({{QStringLiteral("title"), QStringLiteral("x")}});
    ZTLending::lendItem(*item, QStringLiteral("Bo Day"), QStringLiteral("bo@x.org"), {}, {});
    QVERIFY(item->dateLent().isValid());
    QCOMPARE(f.document().managedObjectContext()->fetch(QStringLiteral("ZTLendingContext")).size(), 1);
    item->setValueForKey(false, QStringLiteral("lentOutFlag"));
    QVERIFY(!item->isLentOut());
    QCOMPARE(item->lentToEmail(), QString());
    QVERIFY(f.document().managedObjectContext()->fetch(QStringLiteral("ZTLendingContext")).isEmpty());
    item->setLentOutFlag(QVariant()); // nil on no loan: still none, no crash
    QVERIFY(!item->isLentOut());
}

void TestLending::overdueAtDayGranularity_data()
{
    QTest::addColumn<int>("daysFromToday");
    QTest::addColumn<bool>("overdue");
    QTest::newRow("yesterday") << -1 << true;
    QTest::newRow("today") << 0 << false;
    QTest::newRow("tomorrow") << 1 << false;
}

void TestLending::overdueAtDayGranularity()
{
    QFETCH(int, daysFromToday);
    QFETCH(bool, overdue);
    ZTLibraryFixture f;
    ZTItem *item = f.add({{QStringLiteral("title"), QStringLiteral("x")}});
    // The last minute of the day: a day, not a time, decides.
    item->setDateDue(QDateTime(QDate::currentDate().addDays(daysFromToday), QTime(23, 59)));
    QCOMPARE(item->isOverdue(), overdue);
    item->setDateDue(QDateTime());
    QVERIFY(!item->isOverdue());
}

void TestLending::lendingLines()
{
    ZTLibraryFixture f;
    ZTItem *item = f.add({{QStringLiteral("title"), QStringLiteral("x")}});
    ZTLending::lendItem(*item, QStringLiteral("Ann Lee"), QString(),
                        QDateTime(QDate(2024, 3, 1), QTime(12, 0)), {});
    const QList<ZTLending::Line> lines = ZTLending::lendingLines(*item);
    QCOMPARE(lines.size(), 4);
    QCOMPARE(lines[0].text(), QStringLiteral("Lent To Name: Ann Lee"));
    QVERIFY(lines[0].present);
    QCOMPARE(lines[1].text(), QStringLiteral("Lent To Email: "));
    QVERIFY(!lines[1].present);
    QVERIFY(lines[2].present);
    QVERIFY(lines[2].value.contains(QStringLiteral("2024")));
    QCOMPARE(lines[3].key, QStringLiteral("dateDue"));
    QVERIFY(!lines[3].present);
}

void TestLending::vCardsGiveNamesAndPrimaryAddresses()
{
    const QByteArray cards =
        "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Lee;Ann;;;\r\nFN:Ann Lee\r\n"
        "EMAIL;TYPE=WORK:ann@work.org\r\nEMAIL;TYPE=HOME,PREF:ann@home.org\r\nEND:VCARD\r\n"
        "BEGIN:VCARD\r\nVERSION:4.0\r\nN:Vander;Bartholomew;;;\r\nEMAIL:bart\r\n @x.org\r\nEND:VCARD\r\n"
        "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Only An Organisation\r\nORG:Acme\r\nEND:VCARD\r\n"
        "BEGIN:VCARD\r\nVERSION:2.1\r\nN:Nomail;Ned\r\nEND:VCARD\r\n";
    const ZTContacts contacts = ZTContacts::fromPeople(ZTContacts::parse(cards));
    QCOMPARE(contacts.peopleFromAddressBook(),
             (QStringList{"Ann Lee", "Bartholomew Vander", "Ned Nomail"})); // a card without N is no person
    QCOMPARE(contacts.emailForName(QStringLiteral("Ann Lee")), QStringLiteral("ann@home.org"));
    QCOMPARE(contacts.emailForName(QStringLiteral("Bartholomew Vander")),
             QStringLiteral("bart@x.org")); // folded
    QVERIFY(!contacts.peopleFromAddressBookEmailDict().contains(QStringLiteral("Ned Nomail")));
}

void TestLending::zettaryGroupNarrowsTheContacts()
{
    const QByteArray cards = "BEGIN:VCARD\nN:One;Al\nCATEGORIES:Friends,zettary\nEND:VCARD\n"
                             "BEGIN:VCARD\nN:Two;Bea\nCATEGORIES:Friends\nEND:VCARD\n";
    QCOMPARE(ZTContacts::fromPeople(ZTContacts::parse(cards)).peopleFromAddressBook(), QStringList{"Al One"});
    const QByteArray nobodyInTheGroup =
        "BEGIN:VCARD\nN:One;Al\nEND:VCARD\nBEGIN:VCARD\nN:Two;Bea\nEND:VCARD\n";
    QCOMPARE(ZTContacts::fromPeople(ZTContacts::parse(nobodyInTheGroup)).peopleFromAddressBook().size(), 2);
}

void TestLending::sameDisplayNameTakesTheLaterAddress()
{
    const QByteArray cards = "BEGIN:VCARD\nN:Lee;Ann\nEMAIL:first@x.org\nEND:VCARD\n"
                             "BEGIN:VCARD\nN:Lee;Ann\nEMAIL:second@x.org\nEND:VCARD\n";
    const ZTContacts contacts = ZTContacts::fromPeople(ZTContacts::parse(cards));
    QCOMPARE(contacts.peopleFromAddressBook(), QStringList{"Ann Lee"});
    QCOMPARE(contacts.emailForName(QStringLiteral("Ann Lee")), QStringLiteral("second@x.org"));
}

void TestLending::hostileVCardsDoNotCrash_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no end") << QByteArray("BEGIN:VCARD\nN:Lee;Ann\n");
    QTest::newRow("no colon") << QByteArray("BEGIN:VCARD\nN\nEND:VCARD\n");
    QTest::newRow("binary") << QByteArray("\0\xff\xfe:\n\x01", 7);
    QTest::newRow("dangling escape") << QByteArray("BEGIN:VCARD\nN:Lee\\\nEND:VCARD\n");
    QTest::newRow("bad quoted printable")
        << QByteArray("BEGIN:VCARD\nN;ENCODING=QUOTED-PRINTABLE:L=E=\nEND:VCARD\n");
    QTest::newRow("unbalanced quote") << QByteArray("BEGIN:VCARD\nEMAIL;TYPE=\"x:a@b\nEND:VCARD\n");
}

void TestLending::hostileVCardsDoNotCrash()
{
    QFETCH(QByteArray, data);
    const QList<ZTContacts::Person> people = ZTContacts::parse(data);
    const ZTContacts contacts = ZTContacts::fromPeople(people);
    QVERIFY(contacts.peopleFromAddressBook().size() <= 1);
}

void TestLending::contactsFromAFolder()
{
    QTemporaryDir dir;
    auto write = [&](const char *name, const QByteArray &data) {
        QFile file(dir.filePath(QLatin1String(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(data);
    };
    write("a.vcf", "BEGIN:VCARD\nN:Lee;Ann\nEND:VCARD\n");
    write("b.vcf", "BEGIN:VCARD\nN:Day;Bo\nEND:VCARD\n");
    write("notes.txt", "BEGIN:VCARD\nN:Not;Read\nEND:VCARD\n");
    QCOMPARE(ZTContacts::fromPath(dir.path()).peopleFromAddressBook(), (QStringList{"Ann Lee", "Bo Day"}));
    QCOMPARE(ZTContacts::fromPath(dir.filePath(QStringLiteral("b.vcf"))).peopleFromAddressBook(),
             QStringList{"Bo Day"});
    QVERIFY(
        ZTContacts::fromPath(dir.filePath(QStringLiteral("missing.vcf"))).peopleFromAddressBook().isEmpty());
}

ZT_TEST_MAIN(TestLending)
#include "tst_lending.moc"
