#include "scan/ZTBarcodeValidator.h"
#include "scan/ZTScanEdgeFixtures.h"
#include "scan/ZTScanResult.h"
#include "support/ZTTestMain.h"

#include <QtTest>

using Sightings = QList<QPair<QString, int>>;

namespace {

constexpr char16_t s_none = ZTScanResult::s_noReading;

// A raw string from digits; left digits may carry their set-B values.
QString raw(const QList<int> &values)
{
    QString s;
    for (int v : values)
        s.append(QChar(char16_t(v)));
    return s;
}

const QList<int> s_isbn{9, 7, 8, 0, 3, 0, 6, 4, 0, 6, 1, 5, 7};

QList<int> with(QList<int> values, int position, int value)
{
    values[position] = value;
    return values;
}

ZTScanResult resultOf(const Sightings &sightings)
{
    ZTScanResult result(sightings.first().first, 12, nullptr, nullptr, 1);
    for (int i = 1; i < sightings.first().second; ++i)
        result.addCode(sightings.first().first);
    for (qsizetype k = 1; k < sightings.size(); ++k) {
        for (int i = 0; i < sightings[k].second; ++i)
            result.addCode(sightings[k].first);
    }
    return result;
}

} // namespace

using ZTScanEdgeFixtures::fittedEdge;

class TestScanResult : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void votesPositionByPosition_data();
    void votesPositionByPosition();
    void hasSimilarCode_data();
    void hasSimilarCode();
    void sameEdgesKeepTheBetterResult();
    void crossedResultsCountAsOne_data();
    void crossedResultsCountAsOne();
    void resultsSurviveTheirPass();
};

void TestScanResult::votesPositionByPosition_data()
{
    QTest::addColumn<Sightings>("sightings");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<QString>("decoded");
    QTest::newRow("two against one") << Sightings{{raw(s_isbn), 2}, {raw(with(s_isbn, 4, 5)), 1}} << true
                                     << "9780306406157";
    QTest::newRow("failing strings make a passing majority")
        << Sightings{{raw(with(s_isbn, 3, 9)), 1}, {raw(with(s_isbn, 6, 1)), 1}, {raw(with(s_isbn, 9, 2)), 1}}
        << true << "9780306406157";
    QTest::newRow("set B digits count as their digit")
        << Sightings{{raw(with(s_isbn, 2, 18)), 1}} << true << "9780306406157";
    QTest::newRow("majority fails the check digit")
        << Sightings{{raw(with(s_isbn, 4, 5)), 2}, {raw(s_isbn), 1}} << false << "";
    // A string with unread positions that fails opens the rescue, which
    // answers with the most seen string's code, here none at all.
    QTest::newRow("rescue with unread positions")
        << Sightings{{raw(with(with(s_isbn, 2, s_none), 5, 2)), 3}, {raw(s_isbn), 2}} << true << "";
}

void TestScanResult::votesPositionByPosition()
{
    QFETCH(Sightings, sightings);
    QFETCH(bool, valid);
    QFETCH(QString, decoded);
    ZTScanResult result = resultOf(sightings);
    ZTBarcodeValidator validator(1);
    QCOMPARE(result.isValidWithCodeValidator(validator), valid);
    QCOMPARE(result.decodedString(), decoded.isEmpty() ? QString() : decoded);
    QVERIFY(!result.hasCodeDict());
    QVERIFY(result.codeDict().isEmpty());
}

void TestScanResult::hasSimilarCode_data()
{
    QTest::addColumn<QStringList>("held");
    QTest::addColumn<QString>("candidate");
    QTest::addColumn<bool>("similar");
    const QList<int> zeros(13, 0);
    QList<int> sixOnes = zeros, fiveOnes = zeros, threeOnes = zeros, otherThree = zeros;
    for (int i = 0; i < 6; ++i)
        sixOnes[i] = 1;
    for (int i = 0; i < 5; ++i)
        fiveOnes[i] = 1;
    for (int i = 0; i < 3; ++i)
        threeOnes[i] = 1, otherThree[i + 3] = 1;
    const QList<int> ones(13, 1);
    QList<int> unread = ones;
    for (int i = 0; i < 7; ++i)
        unread[i] = s_none;
    QTest::newRow("identical") << QStringList{raw(zeros)} << raw(zeros) << true;
    QTest::newRow("half the positions agree") << QStringList{raw(sixOnes)} << raw(ones) << true;
    QTest::newRow("fewer than half") << QStringList{raw(fiveOnes)} << raw(ones) << false;
    QTest::newRow("agreement adds up across strings")
        << QStringList{raw(threeOnes), raw(otherThree)} << raw(ones) << true;
    QTest::newRow("unread positions do not agree") << QStringList{raw(unread)} << raw(unread) << true;
    QTest::newRow("unread positions against a reading") << QStringList{raw(unread)} << raw(ones) << true;
    QTest::newRow("another length") << QStringList{raw(zeros)} << raw(zeros.mid(1)) << false;
}

void TestScanResult::hasSimilarCode()
{
    QFETCH(QStringList, held);
    QFETCH(QString, candidate);
    QFETCH(bool, similar);
    ZTScanResult result(held.first(), 12, nullptr, nullptr, 1);
    for (qsizetype i = 1; i < held.size(); ++i)
        result.addCode(held[i]);
    QCOMPARE(result.hasSimilarCode(candidate), similar);
}

void TestScanResult::sameEdgesKeepTheBetterResult()
{
    std::vector<std::unique_ptr<ZTScanEdge>> keep;
    ZTScanEdge *start = fittedEdge(keep, 90, true, 100, 0.2);
    ZTScanEdge *end = fittedEdge(keep, 90, false, 384, 0.2);
    ZTBarcodeValidator validator(1);
    const std::vector<int> isbn(s_isbn.begin(), s_isbn.end());
    const std::vector<int> other{4, 0, 0, 6, 3, 8, 1, 3, 3, 3, 9, 3, 1};  // another valid code
    const std::vector<int> broken{1, 2, 1, 2, 1, 2, 1, 2, 1, 2, 1, 2, 1}; // fails its check digit
    for (int i = 0; i < 3; ++i)
        validator.processIntegerCodeList(isbn, 12, start, end);
    validator.processIntegerCodeList(other, 12, start, end);
    validator.processIntegerCodeList(broken, 12, end, start);
    validator.processIntegerCodeList(broken, 12, end, start);
    QCOMPARE(validator.scanResults().size(), size_t(3));
    QCOMPARE(validator.scanResults()[0]->codeCount(), qint64(3));

    validator.chooseBestScanResults();
    QCOMPARE(validator.scanResults().size(), size_t(1));
    QCOMPARE(validator.scanResults()[0]->decodedString(), QStringLiteral("9780306406157"));
}

void TestScanResult::crossedResultsCountAsOne_data()
{
    QTest::addColumn<double>("slope");
    QTest::addColumn<int>("firstCount");
    QTest::addColumn<int>("secondCount");
    QTest::addColumn<QList<int>>("kept");
    QTest::newRow("equal counts drop the earlier") << 0.5 << 2 << 2 << QList<int>{1};
    QTest::newRow("more sightings win") << 0.5 << 3 << 2 << QList<int>{0};
    // Upright edges have empty bounds, which intersect nothing.
    QTest::newRow("upright edges") << 0.0 << 2 << 2 << QList<int>{0, 1};
}

void TestScanResult::crossedResultsCountAsOne()
{
    QFETCH(double, slope);
    QFETCH(int, firstCount);
    QFETCH(int, secondCount);
    QFETCH(QList<int>, kept);
    // One code read left to right (angle 90) and right to left (angle 270):
    // each sweep's start lies on the other's end.
    std::vector<std::unique_ptr<ZTScanEdge>> keep;
    ZTScanEdge *start90 = fittedEdge(keep, 90, true, 100, slope);
    ZTScanEdge *end90 = fittedEdge(keep, 90, false, 384, slope);
    ZTScanEdge *start270 = fittedEdge(keep, 270, true, 384, slope);
    ZTScanEdge *end270 = fittedEdge(keep, 270, false, 100, slope);
    ZTBarcodeValidator validator(1);
    const std::vector<int> isbn(s_isbn.begin(), s_isbn.end());
    for (int i = 0; i < firstCount; ++i)
        validator.processIntegerCodeList(isbn, 12, start90, end90);
    for (int i = 0; i < secondCount; ++i)
        validator.processIntegerCodeList(isbn, 12, start270, end270);
    validator.chooseBestScanResults();
    QCOMPARE(validator.scanResults().size(), size_t(2));
    std::vector<ZTScanResult *> before;
    for (auto &r : validator.scanResults()) {
        r->updateBoundingRectangle();
        before.push_back(r.get());
    }
    QCOMPARE(before[0]->isSimilarToScanResult(*before[1]), true);

    validator.processScanResults();
    QList<int> survivors;
    for (size_t i = 0; i < validator.scanResults().size(); ++i) {
        if (validator.scanResults()[i])
            survivors << int(i);
    }
    QCOMPARE(survivors, kept);
}

void TestScanResult::resultsSurviveTheirPass()
{
    std::vector<std::unique_ptr<ZTScanEdge>> keep;
    ZTScanEdge *start = fittedEdge(keep, 90, true, 100, 0.5);
    ZTScanEdge *end = fittedEdge(keep, 90, false, 384, 0.5);
    ZTScanResult result(raw(s_isbn), 12, start, end, 1);
    QCOMPARE(result.scanAngle(), qint64(90));
    const ZTLineSegment segment = start->lineSegment();
    result.detachFromEdges();
    keep.clear();
    QCOMPARE(result.startingScanEdge(), nullptr);
    QCOMPARE(result.startingEdge().p1(), segment.p1());
    QCOMPARE(result.startingEdge().p2(), segment.p2());
}

ZT_TEST_MAIN(TestScanResult)
#include "tst_scanresult.moc"
