#include "scan/ZTBarcodeValidator.h"
#include "scan/ZTIntegerAccumulator.h"
#include "scan/ZTLineSegment.h"
#include "scan/ZTRectangle.h"
#include "scan/ZTScanEdge.h"
#include "scan/ZTScanEdgeDelegate.h"

#include "scan/ZTScanEdgeFixtures.h"
#include "support/ZTBarcodeRenderer.h"
#include "support/ZTTestMain.h"

#include <QtTest>

#include <vector>

namespace {

// Run lengths of a module string ('1' dark), each module `unit` long.
std::vector<qint64> runsOf(const QString &modules, qint64 unit)
{
    std::vector<qint64> runs;
    QChar last;
    for (QChar m : modules) {
        if (runs.empty() || m != last)
            runs.push_back(0);
        runs.back() += unit;
        last = m;
    }
    return runs;
}

// A sweep band for one scan line: light run, the code's runs, light run, sentinel.
std::vector<qint64> sweepBand(qint64 leading, const QString &modules, qint64 unit, qint64 trailing)
{
    std::vector<qint64> band{leading};
    for (qint64 r : runsOf(modules, unit))
        band.push_back(r);
    band.push_back(trailing);
    band.push_back(0);
    return band;
}

} // namespace

using ZTScanEdgeFixtures::makeEdge;

class TestBarcodeValidator : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void widthTable_data();
    void widthTable();
    void codeIndexRoundsToModules_data();
    void codeIndexRoundsToModules();
    void checkDigit_data();
    void checkDigit();
    void sweepFindsOuterWindows_data();
    void sweepFindsOuterWindows();
    void walkBandDecodes();
    void walkBandWithImpossibleParityFails();
    void edgesFitLinesAndDropStrays();
    void edgesTakeWindowsThatLineUp();
    void edgePairsMustLieOneCodeApart_data();
    void edgePairsMustLieOneCodeApart();
    void probesLearnAndCheckTheGuard();
    void edgeEndsIgnoreIsolatedLines();
    void rectanglesFollowDesktopRules_data();
    void rectanglesFollowDesktopRules();
    void segmentDistanceKeepsItsFormula();
    void accumulatorPicksMajority();
};

void TestBarcodeValidator::widthTable_data()
{
    QTest::addColumn<qint64>("pattern");
    QTest::addColumn<int>("index");
    QTest::newRow("digit 0 of set A") << qint64(3211) << 0;
    QTest::newRow("digit 9 of set B") << qint64(2113) << 19;
    QTest::newRow("start and A0") << qint64(1113211) << 20;
    QTest::newRow("start and B9") << qint64(1112113) << 39;
    QTest::newRow("A9 and end") << qint64(3112111) << 49;
    QTest::newRow("centre") << qint64(11111) << 50;
    QTest::newRow("start and B6 is A6 and end") << qint64(1114111) << 46;
    QTest::newRow("unknown") << qint64(1111) << -1;
}

void TestBarcodeValidator::widthTable()
{
    QFETCH(qint64, pattern);
    QFETCH(int, index);
    QCOMPARE(ZTBarcodeValidator::codeIndexForPattern(pattern), index);
}

void TestBarcodeValidator::codeIndexRoundsToModules_data()
{
    QTest::addColumn<QList<qint64>>("widths");
    QTest::addColumn<qint64>("multiplier");
    QTest::addColumn<qint64>("low");
    QTest::addColumn<qint64>("high");
    QTest::addColumn<int>("index");
    QTest::newRow("remainder carried")
        << QList<qint64>{30, 10, 10, 10} << qint64(7) << qint64(0) << qint64(19) << 0;
    QTest::newRow("zero rounds up, excess goes on")
        << QList<qint64>{1, 20, 20, 20} << qint64(7) << qint64(0) << qint64(19) << 4;
    QTest::newRow("flip of largest residue")
        << QList<qint64>{3, 9, 15, 2} << qint64(7) << qint64(0) << qint64(19) << 5;
    QTest::newRow("backward pass") << QList<qint64>{2, 13, 2, 2} << qint64(7) << qint64(0) << qint64(19) << 3;
    QTest::newRow("no attempt fits") << QList<qint64>{2, 10, 15, 2} << qint64(7) << qint64(0) << qint64(19)
                                     << -1;
    QTest::newRow("set B digit") << QList<qint64>{8, 8, 16, 24} << qint64(7) << qint64(0) << qint64(19) << 10;
    // Outside the range the other attempts go on: a flip turns 1123 into 1114.
    QTest::newRow("set B outside right half")
        << QList<qint64>{8, 8, 16, 24} << qint64(7) << qint64(0) << qint64(9) << 6;
    QTest::newRow("start window") << QList<qint64>{5, 5, 5, 15, 10, 5, 5} << qint64(10) << qint64(20)
                                  << qint64(39) << 20;
    // Start with B6 is not in the table; the backward flip reads start with A9.
    QTest::newRow("start with B6 does not exist")
        << QList<qint64>{4, 4, 4, 16, 4, 4, 4} << qint64(10) << qint64(20) << qint64(39) << 29;
    QTest::newRow("as end window it is A6")
        << QList<qint64>{4, 4, 4, 16, 4, 4, 4} << qint64(10) << qint64(40) << qint64(49) << 46;
    QTest::newRow("centre") << QList<qint64>{7, 9, 8, 8, 7} << qint64(5) << qint64(50) << qint64(50) << 50;
    QTest::newRow("empty widths") << QList<qint64>{0, 0, 0, 0} << qint64(7) << qint64(0) << qint64(19) << -1;
}

void TestBarcodeValidator::codeIndexRoundsToModules()
{
    QFETCH(QList<qint64>, widths);
    QFETCH(qint64, multiplier);
    QFETCH(qint64, low);
    QFETCH(qint64, high);
    QFETCH(int, index);
    QCOMPARE(
        ZTBarcodeValidator::codeIndexWithBarBand(widths.constData(), 0, widths.size(), multiplier, low, high),
        index);
}

void TestBarcodeValidator::checkDigit_data()
{
    QTest::addColumn<QList<int>>("raw");
    QTest::addColumn<QString>("code");
    QTest::newRow("isbn") << QList<int>{9, 7, 8, 0, 3, 0, 6, 4, 0, 6, 1, 5, 7} << "9780306406157";
    // Left digits of set B keep 10 to 19 in the raw string.
    QTest::newRow("set B digits") << QList<int>{9, 7, 18, 10, 3, 10, 16, 4, 0, 6, 1, 5, 7} << "9780306406157";
    QTest::newRow("sum a multiple of ten")
        << QList<int>{0, 0, 3, 6, 0, 0, 0, 2, 9, 1, 4, 5, 2} << "0036000291452";
    QTest::newRow("wrong check digit") << QList<int>{9, 7, 8, 0, 3, 0, 6, 4, 0, 6, 1, 5, 8} << "";
    QTest::newRow("swapped digits") << QList<int>{9, 7, 8, 3, 0, 0, 6, 4, 0, 6, 1, 5, 7} << "";
    QTest::newRow("empty") << QList<int>{} << "";
}

void TestBarcodeValidator::checkDigit()
{
    QFETCH(QList<int>, raw);
    QFETCH(QString, code);
    QString string;
    for (int v : raw)
        string.append(QChar(char16_t(v)));
    QCOMPARE(ZTBarcodeValidator::validateCheckDigit(string), !code.isEmpty());
    QCOMPARE(ZTBarcodeValidator::validCode(string), code.isEmpty() ? QString() : code);
}

void TestBarcodeValidator::sweepFindsOuterWindows_data()
{
    QTest::addColumn<qint64>("leading");
    QTest::addColumn<qint64>("trailing");
    QTest::addColumn<bool>("barInFront");
    QTest::addColumn<bool>("extraBar");
    QTest::addColumn<int>("starts");
    QTest::addColumn<int>("ends");
    const qint64 unit = 3;
    QTest::newRow("both quiet zones") << 12 * unit << 12 * unit << false << false << 1 << 1;
    QTest::newRow("wide zone behind a bar") << 12 * unit << 12 * unit << true << false << 1 << 1;
    QTest::newRow("narrow zone in front") << 5 * unit << 12 * unit << true << false << 0 << 1;
    QTest::newRow("narrow zone behind, more to come") << 12 * unit << 5 * unit << false << true << 1 << 0;
    QTest::newRow("line ends right behind the code") << 12 * unit << qint64(1) << false << false << 1 << 1;
    QTest::newRow("line starts right at the code") << qint64(1) << 12 * unit << false << false << 1 << 1;
}

void TestBarcodeValidator::sweepFindsOuterWindows()
{
    QFETCH(qint64, leading);
    QFETCH(qint64, trailing);
    QFETCH(bool, barInFront);
    QFETCH(bool, extraBar);
    QFETCH(int, starts);
    QFETCH(int, ends);
    const QString code = QStringLiteral("4006381333931");
    QString modules = ZTBarcodeRenderer::modules(code);
    std::vector<qint64> band = sweepBand(leading, modules, 3, trailing);
    if (barInFront)
        band.insert(band.begin(), {40, 6});
    if (extraBar) {
        band.pop_back();
        band.push_back(6);
        band.push_back(40);
        band.push_back(0);
    }
    ZTBarcodeValidator validator(1);
    const qint64 narrowest = validator.bsCountWithX(0, 7, qint64(band.size()) - 1, band.data(), 90, 128);
    QCOMPARE(int(validator.listOfStartingScanEdges().size()), starts);
    QCOMPARE(int(validator.listOfEndingScanEdges().size()), ends);
    QCOMPARE(narrowest, starts + ends > 0 ? qint64(30) : ZTBarcodeValidator::s_noWindow);
    if (starts) {
        const ZTScanEdge *edge = validator.listOfStartingScanEdges().front();
        QCOMPARE(edge->val(), qint64(20 + 0)); // digit 0 of set A behind the start guard
        QCOMPARE(edge->rectangleScans().front(), ZTRectangle(leading + (barInFront ? 46 : 0), 7, 30, 1));
    }
    if (ends)
        QCOMPARE(validator.listOfEndingScanEdges().front()->val(), qint64(40 + 1));
}

void TestBarcodeValidator::walkBandDecodes()
{
    const QString code = QStringLiteral("5012345678900");
    const std::vector<qint64> runs = runsOf(ZTBarcodeRenderer::modules(code), 16);
    QCOMPARE(runs.size(), size_t(59));
    std::vector<qint64> band = runs;
    band.push_back(0);
    ZTBarcodeValidator validator(1);
    QVERIFY(validator.isValidWithBarSpaceCount(59, band.data(), nullptr, nullptr));
    QVERIFY(validator.isValidWithBarSpaceCount(59, band.data(), nullptr, nullptr));
    QCOMPARE(validator.scanResults().size(), size_t(1));
    ZTScanResult &result = *validator.scanResults().front();
    QCOMPARE(result.codeCount(), qint64(2));
    QCOMPARE(result.codeLength(), qint64(13));
    QCOMPARE(result.fixedLengthOfCode(), qint64(12));
    const QString raw = result.codeDict().firstKey();
    // 5 has parities ABBAAB: the digits 1 and 2 come out of set B.
    QCOMPARE(raw[2].unicode(), char16_t(11));
    QCOMPARE(ZTBarcodeValidator::validCode(raw), code);
    QVERIFY(!validator.isValidWithBarSpaceCount(58, band.data(), nullptr, nullptr));
}

void TestBarcodeValidator::walkBandWithImpossibleParityFails()
{
    // Digit 3 of set B where EAN-13 always has set A.
    QString modules = ZTBarcodeRenderer::modules(QStringLiteral("0036000291452"));
    modules.replace(3, 7, QStringLiteral("0100001"));
    std::vector<qint64> band = runsOf(modules, 16);
    band.push_back(0);
    ZTBarcodeValidator validator(1);
    QVERIFY(!validator.isValidWithBarSpaceCount(59, band.data(), nullptr, nullptr));
    QVERIFY(validator.scanResults().empty());
}

void TestBarcodeValidator::edgesFitLinesAndDropStrays()
{
    std::vector<std::unique_ptr<ZTScanEdge>> keep;
    std::vector<ZTRectangle> rects = ZTScanEdgeFixtures::windows(90, true, 100, 0.5, 30, 10, 29);
    rects.insert(rects.begin() + 5, ZTRectangle(140, 15, 30, 1)); // a stray line
    ZTScanEdge *edge = makeEdge(keep, 90, true, rects);
    QCOMPARE(edge->averageLongDimension(), qint64(30));
    QVERIFY(edge->isValidWithValidatorIndex(1));
    QCOMPARE(edge->rectangleScans().size(), size_t(20));
    QVERIFY(qAbs(edge->slope() - 0.5) < 0.02);
    QVERIFY(qAbs(edge->lineSegment().x1() - 105) < 0.6);
    QCOMPARE(edge->lineSegment().y1(), 10.0);
    QCOMPARE(edge->lineSegment().y2(), 29.0);
    edge->reset();
    QCOMPARE(edge->storedAverageLongDimension(), qint64(30));
    QVERIFY(edge->rectangleScans().empty());

    // Two lines are too few for an edge.
    ZTScanEdge *thin = makeEdge(keep, 90, true, ZTScanEdgeFixtures::windows(90, true, 100, 0, 30, 0, 1));
    QVERIFY(!thin->isValidWithValidatorIndex(1));
    // Validator 9 asks for eight lines.
    ZTScanEdge *seven = makeEdge(keep, 90, true, ZTScanEdgeFixtures::windows(90, true, 100, 0, 30, 0, 6));
    QVERIFY(!seven->isValidWithValidatorIndex(9));
}

void TestBarcodeValidator::edgesTakeWindowsThatLineUp()
{
    ZTBarcodeValidator validator(1);
    const QString modules = ZTBarcodeRenderer::modules(QStringLiteral("4006381333931"));
    // Three lines of one code, then a line whose window lies 50 pixels to the right.
    for (qint64 y : {0, 4, 8}) {
        std::vector<qint64> band = sweepBand(36 + y / 4, modules, 3, 36);
        validator.bsCountWithX(0, y, qint64(band.size()) - 1, band.data(), 90, 128);
    }
    std::vector<qint64> shifted = sweepBand(86, modules, 3, 36);
    validator.bsCountWithX(0, 12, qint64(shifted.size()) - 1, shifted.data(), 90, 128);
    QCOMPARE(validator.listOfStartingScanEdges().size(), size_t(2));
    QCOMPARE(validator.listOfStartingScanEdges()[0]->rectangleScans().size(), size_t(3));
    // From right to left the same line shows its end guard first: read
    // backwards, it looks like a start with a digit of set B.
    ZTBarcodeValidator backwards(1);
    std::vector<qint64> band = sweepBand(36, modules, 3, 36);
    std::reverse(band.begin(), band.end() - 1);
    backwards.bsCountWithX(479, 0, qint64(band.size()) - 1, band.data(), 270, 128);
    QCOMPARE(backwards.listOfStartingScanEdges().size(), size_t(1));
    QVERIFY(backwards.listOfStartingScanEdges()[0]->val() >= 30);
    QCOMPARE(backwards.listOfStartingScanEdges()[0]->rectangleScans()[0].x(), 479.0 - 36 - 30 + 1);
}

void TestBarcodeValidator::edgePairsMustLieOneCodeApart_data()
{
    QTest::addColumn<double>("endX");
    QTest::addColumn<double>("endSlope");
    QTest::addColumn<qint64>("endWidth");
    QTest::addColumn<bool>("similar");
    // A start at x = 100 and windows of 30 pixels: the end lies 9.5 windows on.
    QTest::newRow("one code apart") << 384.0 << 0.0 << qint64(30) << true;
    QTest::newRow("within one window") << 405.0 << 0.0 << qint64(30) << true;
    QTest::newRow("two windows off") << 444.0 << 0.0 << qint64(30) << false;
    QTest::newRow("slopes differ") << 384.0 << 0.4 << qint64(30) << false;
    QTest::newRow("windows differ in size") << 384.0 << 0.0 << qint64(50) << false;
}

void TestBarcodeValidator::edgePairsMustLieOneCodeApart()
{
    QFETCH(double, endX);
    QFETCH(double, endSlope);
    QFETCH(qint64, endWidth);
    QFETCH(bool, similar);
    std::vector<std::unique_ptr<ZTScanEdge>> keep;
    ZTScanEdge *start = makeEdge(keep, 90, true, ZTScanEdgeFixtures::windows(90, true, 100, 0, 30, 10, 40));
    ZTScanEdge *end =
        makeEdge(keep, 90, false, ZTScanEdgeFixtures::windows(90, false, endX, endSlope, endWidth, 10, 40));
    QVERIFY(start->isValidWithValidatorIndex(1));
    QVERIFY(end->isValidWithValidatorIndex(1));
    QCOMPARE(start->isSimilarToScanEdge(*end), similar);
}

void TestBarcodeValidator::probesLearnAndCheckTheGuard()
{
    std::vector<std::unique_ptr<ZTScanEdge>> keep;
    ZTScanEdge *edge = makeEdge(keep, 90, true, ZTScanEdgeFixtures::windows(90, true, 100, 0, 30, 0, 5));
    // A probe 2 × 30 pixels long: 30 light, then guard and digit in eighths.
    std::vector<qint64> band{0, 240, 24, 24, 24, 72, 48, 24, 24, 0};
    const qint64 n = qint64(band.size()) - 1;
    double learned[4] = {0, 0, 0, 0};
    QVERIFY(edge->isValidWithValidationIndex(-1, learned, n, band.data(), 30));
    QCOMPARE(learned[0], 24.0);
    QCOMPARE(learned[3], 72.0);
    QVERIFY(edge->isValidWithValidationIndex(1, learned, n, band.data(), 30));
    QVERIFY(edge->isValidWithValidationIndex(0, learned, n, band.data(), 30));
    // A guard three times as wide as learned does not agree.
    std::vector<qint64> wide{0, 240, 72, 72, 72, 72, 48, 24, 24, 0};
    QVERIFY(!edge->isValidWithValidationIndex(1, learned, n, wide.data(), 30));
    // The middle of the probe must lie in a light run.
    std::vector<qint64> dark{0, 8, 240, 24, 24, 72, 48, 24, 24, 0};
    QVERIFY(!edge->isValidWithValidationIndex(0, learned, n, dark.data(), 30));
    // Too few elements behind the quiet zone.
    std::vector<qint64> few{0, 240, 24, 24, 24, 0};
    QVERIFY(!edge->isValidWithValidationIndex(0, learned, 5, few.data(), 30));
}

void TestBarcodeValidator::edgeEndsIgnoreIsolatedLines()
{
    ZTScanEdgeDelegate down(50, false);
    for (qint64 t : {50, 49, 48})
        down.shift(t);
    QCOMPARE(down.x(), qint64(48));
    down.shift(44); // one good line beyond a gap
    QCOMPARE(down.x(), qint64(48));
    down.shift(43);
    QCOMPARE(down.x(), qint64(43));

    ZTScanEdgeDelegate up(10, true);
    QCOMPARE(up.x(), qint64(9));
    up.shift(10);
    up.shift(11);
    QCOMPARE(up.x(), qint64(11));
    up.shift(20);
    QCOMPARE(up.x(), qint64(11));
}

void TestBarcodeValidator::rectanglesFollowDesktopRules_data()
{
    QTest::addColumn<ZTRectangle>("a");
    QTest::addColumn<ZTRectangle>("b");
    QTest::addColumn<bool>("intersects");
    QTest::addColumn<ZTRectangle>("united");
    QTest::newRow("overlap") << ZTRectangle(0, 0, 10, 10) << ZTRectangle(5, 5, 10, 10) << true
                             << ZTRectangle(0, 0, 15, 15);
    QTest::newRow("touching edges") << ZTRectangle(0, 0, 10, 10) << ZTRectangle(10, 0, 10, 10) << false
                                    << ZTRectangle(0, 0, 20, 10);
    QTest::newRow("one empty") << ZTRectangle(0, 0, 0, 10) << ZTRectangle(5, 5, 10, 10) << false
                               << ZTRectangle(5, 5, 10, 10);
    QTest::newRow("both empty") << ZTRectangle(3, 0, 0, 10) << ZTRectangle(8, 0, 0, 10) << false
                                << ZTRectangle();
    QTest::newRow("from segment") << ZTRectangle(ZTLineSegment(10, 30, 4, 2)) << ZTRectangle(4, 2, 6, 28)
                                  << true << ZTRectangle(4, 2, 6, 28);
}

void TestBarcodeValidator::rectanglesFollowDesktopRules()
{
    QFETCH(ZTRectangle, a);
    QFETCH(ZTRectangle, b);
    QFETCH(bool, intersects);
    QFETCH(ZTRectangle, united);
    QCOMPARE(a.intersects(b), intersects);
    QCOMPARE(b.intersects(a), intersects);
    QCOMPARE(a.unionWithRectangle(b), united);
}

void TestBarcodeValidator::segmentDistanceKeepsItsFormula()
{
    // |y1 − x1 m − px m py| / √(m² + 1): the product px m py stays.
    const ZTLineSegment segment(0, 0, 10, 10);
    QVERIFY(qAbs(segment.distanceFromPoint(2, 3) - 6.0 / std::sqrt(2.0)) < 1e-9);
    QCOMPARE(segment.length(), std::sqrt(200.0));
    ZTLineSegment moved = segment;
    moved.setP1(-5, -5);
    QCOMPARE(moved.bounds(), segment.bounds());
}

void TestBarcodeValidator::accumulatorPicksMajority()
{
    ZTIntegerAccumulator votes;
    QVERIFY_THROWS_EXCEPTION(ZTIntegerAccumulatorException, votes.highestCount());
    try {
        votes.highestCount();
    } catch (const ZTIntegerAccumulatorException &e) {
        QCOMPARE(QByteArray(e.what()), QByteArray("Hashmap is empty"));
    }
    votes.addInteger(7);
    votes.addInteger(3, 2);
    votes.addInteger(7);
    QCOMPARE(votes.highestCount(), qint64(3)); // a tie goes to the first in order
    votes.addInteger(7);
    QCOMPARE(votes.highestCount(), qint64(7));
}

ZT_TEST_MAIN(TestBarcodeValidator)
#include "tst_barcodevalidator.moc"
