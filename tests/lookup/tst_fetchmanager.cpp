#include "lookup/ZTFetchManager.h"

#include "base/ZTNotificationCenter.h"
#include "lookup/ZTFetcher.h"
#include "lookup/ZTLookupRun.h"
#include "support/ZTTestMain.h"

#include <QTest>
#include <QTimer>

namespace {

// A site that answers from a script, after a delay, without any transport.
class ScriptedFetcher : public ZTFetcher {
public:
    ScriptedFetcher(QString type, QString name, std::optional<QVariantMap> answer, int delay = 0)
        : m_type(std::move(type)), m_name(std::move(name)), m_answer(std::move(answer)), m_delay(delay)
    {
    }
    QString type() const override { return m_type; }
    QString name() const override { return m_name; }
    QString className() const override { return QStringLiteral("Scripted") + m_name; }
    QString locale() const override { return QStringLiteral("US"); }
    QStringList fetchableKeys() const override
    {
        return {"title", "publisher", "price", "image", "imageLarge"};
    }

    void startFetchingWithDictionary(const QVariantMap &dictionary) override
    {
        ZTFetcher::startFetchingWithDictionary(dictionary);
        asked << dictionary;
        requestedWhenAsked << requestedFetchKeys();
        QTimer::singleShot(m_delay, this, [this] {
            if (!m_answer) {
                bail();
                return;
            }
            for (auto it = m_answer->constBegin(); it != m_answer->constEnd(); ++it)
                m_dict.insert(it.key(), it.value());
            m_currentFetchKey = QString();
            fetchURLWithCurrentKey();
        });
    }

    QList<QVariantMap> asked;
    QList<QStringList> requestedWhenAsked;

private:
    QString m_type;
    QString m_name;
    std::optional<QVariantMap> m_answer;
    int m_delay;
};

struct Watch {
    QList<QVariantMap> infos;
    ZTObservation observation;
    explicit Watch(ZTFetchManager *manager)
        : observation("ZTFetchManagerDoneFetching", manager,
                      [this](const ZTNotification &n) { infos << n.userInfo; })
    {
    }
};

const QVariantMap Code = {{"isbn", "0141439580"}};

} // namespace

class TestFetchManager : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { ZTFetcher::setPauseInterval(0); }
    void theFirstSiteThatAnswersEndsTheGroup();
    void bailingSitesHandOnAndAllBailingLeavesTheSeed();
    void codesAreWalkedOneByOne();
    void requestedKeysComeFromTheManagerOrTheSite();
    void groupingFollowsTypeAndDropsPicturesWhenAsked();
    void mergeAcrossGroupsFollowsSiteOrderNotArrival_data();
    void mergeAcrossGroupsFollowsSiteOrderNotArrival();
    void anEmptySiteListFinishesAtOnce();
};

void TestFetchManager::theFirstSiteThatAnswersEndsTheGroup()
{
    ScriptedFetcher first("shop", "A", QVariantMap{{"title", "Emma"}});
    ScriptedFetcher second("shop", "B", QVariantMap{{"title", "Other"}, {"publisher", "Penguin"}});
    ScriptedFetcher third("shop", "C", QVariantMap{{"publisher", "X"}});
    first.setOrder(0);
    second.setOrder(1);
    third.setOrder(2);
    ZTFetchManager manager("shop");
    manager.addFetcher(&first);
    manager.addFetcher(&second);
    manager.addFetcher(&third);
    Watch watch(&manager);
    manager.fetchCodes({Code});
    QVERIFY(QTest::qWaitFor([&] { return !watch.infos.isEmpty(); }, 5000));
    QTest::qWait(20);
    QCOMPARE(watch.infos.size(), 1);
    const QVariantMap item = watch.infos.first().value("itemDict").toMap();
    QCOMPARE(item.value("title").toString(), QString("Emma"));
    QVERIFY(!item.contains("publisher"));
    QCOMPARE(item.value("originalIsbn").toString(), QString("0141439580"));
    QCOMPARE(watch.infos.first().value("fetcher").toString(), QString("ScriptedA"));
    QCOMPARE(watch.infos.first().value("count").toInt(), 3);
    QVERIFY(second.asked.isEmpty());
    QVERIFY(third.asked.isEmpty());
}

void TestFetchManager::bailingSitesHandOnAndAllBailingLeavesTheSeed()
{
    ScriptedFetcher first("shop", "A", std::nullopt);
    ScriptedFetcher second("shop", "B", QVariantMap{{"publisher", "Penguin"}});
    second.setOrder(1);
    ZTFetchManager manager("shop");
    manager.addFetcher(&first);
    manager.addFetcher(&second);
    Watch watch(&manager);
    manager.fetchCodes({Code});
    QVERIFY(QTest::qWaitFor([&] { return !watch.infos.isEmpty(); }, 5000));
    QVariantMap item = watch.infos.first().value("itemDict").toMap();
    QCOMPARE(item.value("publisher").toString(), QString("Penguin"));
    QCOMPARE(item.value("order").toInt(), 1);

    ScriptedFetcher none1("lib", "X", std::nullopt);
    ScriptedFetcher none2("lib", "Y", std::nullopt);
    ZTFetchManager empty("lib");
    empty.addFetcher(&none1);
    empty.addFetcher(&none2);
    Watch nothing(&empty);
    empty.fetchCodes({Code});
    QVERIFY(QTest::qWaitFor([&] { return !nothing.infos.isEmpty(); }, 5000));
    item = nothing.infos.first().value("itemDict").toMap();
    QCOMPARE(item, QVariantMap({{"originalIsbn", "0141439580"}}));
    QCOMPARE(none2.asked.size(), 1);
}

void TestFetchManager::codesAreWalkedOneByOne()
{
    ScriptedFetcher site("shop", "A", QVariantMap{{"title", "T"}}, 5);
    ZTFetchManager manager("shop");
    manager.addFetcher(&site);
    QStringList events;
    ZTObservation done("ZTFetchManagerDoneFetching", &manager, [&](const ZTNotification &n) {
        events << "done " + n.userInfo.value("itemDict").toMap().value("originalUpc").toString();
        events << QString("asked %1").arg(site.asked.size());
    });
    manager.fetchCodes({QVariantMap{{"upc", "1"}}, QVariantMap{{"upc", "2"}, {"asin", "B0"}}});
    QVERIFY(QTest::qWaitFor([&] { return events.size() >= 4; }, 5000));
    // The first code's report comes before the second code's first request.
    QCOMPARE(events, QStringList({"done 1", "asked 1", "done 2", "asked 2"}));
    QCOMPARE(site.asked.at(1), QVariantMap({{"originalUpc", "2"}, {"originalAsin", "B0"}}));
}

void TestFetchManager::requestedKeysComeFromTheManagerOrTheSite()
{
    ScriptedFetcher site("shop", "A", QVariantMap{});
    ZTFetchManager manager("shop");
    manager.addFetcher(&site);
    Watch watch(&manager);
    manager.fetchCodes({Code});
    QVERIFY(QTest::qWaitFor([&] { return watch.infos.size() == 1; }, 5000));
    QCOMPARE(site.requestedWhenAsked.last(), site.fetchableKeys());
    manager.setRequestedFetchKeys({"title"});
    manager.fetchCodes({Code});
    QVERIFY(QTest::qWaitFor([&] { return watch.infos.size() == 2; }, 5000));
    QCOMPARE(site.requestedWhenAsked.last(), QStringList({"title"}));
    // A site that finishes without finding anything still ends the search.
    QCOMPARE(watch.infos.last().value("itemDict").toMap().value("order").toInt(), 0);
}

void TestFetchManager::groupingFollowsTypeAndDropsPicturesWhenAsked()
{
    ScriptedFetcher a("shop", "A", std::nullopt), b("library", "B", std::nullopt),
        c("shop", "C", std::nullopt);
    auto managers = ZTFetchManager::managersForFetchers({&a, &b, &c}, ZTFetchManager::CoverImages::Skip);
    QCOMPARE(managers.size(), size_t(2));
    QCOMPARE(managers[0]->type(), QString("shop"));
    QCOMPARE(managers[0]->fetchers(), QList<ZTFetcher *>({&a, &c}));
    QCOMPARE(managers[1]->fetchers(), QList<ZTFetcher *>({&b}));
    QCOMPARE(a.fetchManager(), managers[0].get());
    QCOMPARE(managers[0]->requestedFetchKeys(), QStringList({"title", "publisher", "price"}));

    auto withCovers = ZTFetchManager::managersForFetchers({&a}, ZTFetchManager::CoverImages::Fetch);
    QVERIFY(withCovers[0]->requestedFetchKeys().isEmpty());
    withCovers.clear();
    QVERIFY(a.fetchManager() == nullptr);
}

void TestFetchManager::mergeAcrossGroupsFollowsSiteOrderNotArrival_data()
{
    QTest::addColumn<int>("amazonDelay");
    QTest::addColumn<int>("libraryDelay");
    QTest::newRow("library answers first") << 40 << 0;
    QTest::newRow("shop answers first") << 0 << 40;
}

void TestFetchManager::mergeAcrossGroupsFollowsSiteOrderNotArrival()
{
    QFETCH(int, amazonDelay);
    QFETCH(int, libraryDelay);
    ScriptedFetcher us("amazon", "US", std::nullopt);
    ScriptedFetcher uk("amazon", "UK",
                       QVariantMap{{"title", "Emma (shop)"}, {"locale", "GB"}, {"price", 7.99}}, amazonDelay);
    ScriptedFetcher loc("loc", "LOC", QVariantMap{{"title", "Emma (library)"}, {"publisher", "Penguin"}},
                        libraryDelay);
    us.setOrder(0);
    uk.setOrder(1);
    loc.setOrder(2);
    ZTLookupRun run(ZTMediaKind::Book, {&us, &uk, &loc}, ZTFetchManager::CoverImages::Fetch);
    const QList<QVariantMap> items = run.run({Code});
    QCOMPARE(items.size(), 1);
    QCOMPARE(items[0].value("title").toString(), QString("Emma (shop)"));
    QCOMPARE(items[0].value("publisher").toString(), QString("Penguin"));
    QCOMPARE(items[0].value("price").toDouble(), 7.99);
    QCOMPARE(items[0].value("priceLocale").toString(), QString("GBP"));
}

void TestFetchManager::anEmptySiteListFinishesAtOnce()
{
    ZTLookupRun run(ZTMediaKind::Book, {}, ZTFetchManager::CoverImages::Fetch);
    const QList<QVariantMap> items = run.run({Code, Code});
    QCOMPARE(items.size(), 2);
    QVERIFY(items[0].isEmpty());
}

ZT_TEST_MAIN(TestFetchManager)
#include "tst_fetchmanager.moc"
