#include "scan/ZTBarcodeValidator.h"
#include "scan/ZTImageManager.h"
#include "scan/ZTScanEdge.h"
#include "scan/ZTSecondaryScanState.h"
#include "scan/ZTStillImageScanner.h"
#include "scan/ZTTemplateReader.h"

#include "support/ZTBarcodeRenderer.h"
#include "support/ZTImageDegradations.h"
#include "support/ZTTestMain.h"

#include <QtTest>

#include <random>
#include <vector>

namespace R = ZTBarcodeRenderer;

namespace {

QImage greyPicture(int width, int height, int value)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(QColor(value, value, value));
    return image;
}

// Samples of a code, `perModule` per module, as the template reader sees them
// after normalising: 0 for dark, 255 for light.
std::vector<qint64> templateSamples(const QString &code, int perModule)
{
    std::vector<qint64> samples;
    for (QChar module : R::modules(code)) {
        for (int i = 0; i < perModule; ++i)
            samples.push_back(module == QLatin1Char('1') ? 0 : 255);
    }
    return samples;
}

} // namespace

class TestImageManager : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void thresholdsToTry_data();
    void thresholdsToTry();
    void greyValuesFollowByteOrder();
    void columnsReadFromByteOffset();
    void sweepBandsAlternateFromLight();
    void walkBandsCountEighthsFromDark();
    void outliersNeedEightOtherNeighbours();
    void twoValuedPictureMovesThreshold_data();
    void twoValuedPictureMovesThreshold();
    void uniformPictureGivesNothingAfterOnePass();
    void firstThresholdWithResultEndsSearch();
    void resultsCarryTheirEdges();
    void walksBetweenEdgesCount_data();
    void walksBetweenEdgesCount();
    void codeFromBarBandMatchesTemplates_data();
    void codeFromBarBandMatchesTemplates();
    void normalizeAndThresholdBands();
    void secondaryReaderVotesOverSixFrames();
    void secondaryReaderRestsAfterSuccess();
    void secondaryDecision_data();
    void secondaryDecision();
    void shortRowsGiveNoCandidate();
};

void TestImageManager::thresholdsToTry_data()
{
    QTest::addColumn<qint64>("first");
    QTest::addColumn<qint64>("delta");
    QTest::addColumn<qint64>("margin");
    QTest::addColumn<QList<qint64>>("expected");
    QList<qint64> ladder{128};
    for (qint64 k = 1; k <= 10; ++k)
        ladder << 128 - 10 * k << 128 + 10 * k;
    QTest::newRow("retry ladder") << qint64(128) << qint64(10) << qint64(100) << ladder;
    QTest::newRow("no margin") << qint64(128) << qint64(10) << qint64(0) << QList<qint64>{128};
    QTest::newRow("no delta") << qint64(128) << qint64(0) << qint64(100) << QList<qint64>{128};
    QTest::newRow("low end kept down to 0")
        << qint64(20) << qint64(10) << qint64(30) << QList<qint64>{20, 10, 30, 0, 40, 50};
    QTest::newRow("high end below 256")
        << qint64(240) << qint64(15) << qint64(20) << QList<qint64>{240, 225, 255};
    QTest::newRow("huge step overflows nothing") << qint64(128) << std::numeric_limits<qint64>::max()
                                                 << std::numeric_limits<qint64>::max() << QList<qint64>{128};
}

void TestImageManager::thresholdsToTry()
{
    QFETCH(qint64, first);
    QFETCH(qint64, delta);
    QFETCH(qint64, margin);
    QFETCH(QList<qint64>, expected);
    QCOMPARE(ZTImageManager::thresholdsToTry(first, delta, margin), expected);
}

void TestImageManager::greyValuesFollowByteOrder()
{
    // Bytes in memory order b0, b1, b2 weigh 0.122, 0.624 and 0.247.
    QImage image(3, 1, QImage::Format_RGBA8888);
    image.setPixel(0, 0, qRgb(10, 20, 30));
    image.setPixel(1, 0, qRgb(255, 255, 255));
    image.setPixel(2, 0, qRgb(0, 0, 255));
    ZTImageManager manager(image);
    const qint64 *row = manager.pixelsForRow(0);
    QVERIFY(row);
    QCOMPARE(row[0], qint64(21)); // 0.247 × 30 + 0.624 × 20 + 0.122 × 10 = 21.11
    QCOMPARE(row[1], qint64(253));
    QCOMPARE(row[2], qint64(63));
    QCOMPARE(manager.pixelAtColumn(-1, 0), qint64(255));
    QCOMPARE(manager.pixelAtColumn(3, 0), qint64(255));
    QCOMPARE(manager.pixelAtColumn(0, 1), qint64(255));
    QCOMPARE(manager.pixelsForRow(1), nullptr);
}

void TestImageManager::columnsReadFromByteOffset()
{
    // Column c starts at byte c of the first row, not at pixel c: column 1
    // reads G, B and A of pixel 0.
    QImage image(4, 2, QImage::Format_RGBA8888);
    image.fill(Qt::white);
    image.setPixel(0, 0, qRgb(10, 20, 30));
    image.setPixel(0, 1, qRgb(0, 0, 0));
    ZTImageManager manager(image);
    const qint64 *column = manager.pixelsForColumn(1);
    QVERIFY(column);
    QCOMPARE(column[0], qint64(84)); // 0.247 × 255 + 0.624 × 30 + 0.122 × 20 = 84.1
    QCOMPARE(column[1], qint64(63)); // 0.247 × 255 for the alpha byte
    QCOMPARE(manager.pixelsForColumn(4), nullptr);
}

void TestImageManager::sweepBandsAlternateFromLight()
{
    QImage image = greyPicture(20, 2, 255);
    for (int x : {0, 1, 5, 6, 7, 12})
        image.setPixel(x, 0, qRgb(0, 0, 0));
    for (int x : {3, 4})
        image.setPixel(x, 1, qRgb(0, 0, 0));
    ZTImageManager manager(image);
    qint64 band[ZTImageManager::s_maxBandSize + 1];

    // Starting dark: element 0 is 0.
    QCOMPARE(manager.numberOfBarsForColumn(0, 0, band, 128, 90), qint64(7));
    QCOMPARE(QList<qint64>(band, band + 8), QList<qint64>({0, 2, 3, 3, 4, 1, 7, 0}));
    // The other way along the same row.
    QCOMPARE(manager.numberOfBarsForColumn(19, 0, band, 128, 270), qint64(6));
    QCOMPARE(QList<qint64>(band, band + 7), QList<qint64>({7, 1, 4, 3, 3, 2, 0}));
    QCOMPARE(manager.numberOfBarsForColumn(0, 1, band, 128, 90), qint64(3));
    QCOMPARE(QList<qint64>(band, band + 4), QList<qint64>({3, 2, 15, 0}));
    // The histogram counts every pixel of every line visited.
    QCOMPARE(manager.delegate().pixelHistogramValue(0), qint64(6 + 6 + 2));
    QCOMPARE(manager.delegate().pixelHistogramValue(253), qint64(14 + 14 + 18));
}

void TestImageManager::walkBandsCountEighthsFromDark()
{
    QImage image = greyPicture(40, 40, 255);
    QPainter(&image).fillRect(10, 0, 5, 40, Qt::black);
    ZTImageManager manager(image);
    qint64 band[ZTImageManager::s_maxBandSize + 1];

    // Starting light: element 0 is an empty dark run.
    QCOMPARE(manager.numberOfBarsAndSpacesWithCol1(0, 5, 30, 5, band, 128), qint64(4));
    QCOMPARE(QList<qint64>(band, band + 5), QList<qint64>({0, 80, 40, 128, 0}));
    // A diagonal walk is four-connected: it visits dx + dy + 1 pixels.
    const qint64 n = manager.numberOfBarsAndSpacesWithCol1(0, 0, 30, 30, band, 128);
    qint64 sum = 0;
    for (qint64 i = 0; i < n; ++i)
        sum += band[i];
    QCOMPARE(sum, qint64(8 * 61));
    // Beyond the picture everything is light.
    QCOMPARE(manager.numberOfBarsAndSpacesWithCol1(-20, 5, -1, 5, band, 128), qint64(2));
    QCOMPARE(band[1], qint64(160));
    // A walk far longer than any picture is not taken.
    QCOMPARE(manager.numberOfBarsAndSpacesWithCol1(0, 0, qint64(1) << 40, 3, band, 128), qint64(0));
    QCOMPARE(band[0], qint64(0));
}

void TestImageManager::outliersNeedEightOtherNeighbours()
{
    QImage image = greyPicture(5, 5, 255);
    image.setPixel(2, 2, qRgb(0, 0, 0));
    image.setPixel(0, 0, qRgb(0, 0, 0));
    ZTImageManager manager(image);
    QVERIFY(manager.isOutlierWithColumn(2, 2, 128));
    QVERIFY(!manager.isOutlierWithColumn(0, 0, 128)); // on the border
    QVERIFY(!manager.isOutlierWithColumn(1, 1, 128));
    image.setPixel(3, 3, qRgb(0, 0, 0));
    ZTImageManager touching(image);
    QVERIFY(!touching.isOutlierWithColumn(2, 2, 128));
}

void TestImageManager::twoValuedPictureMovesThreshold_data()
{
    QTest::addColumn<int>("dark");
    QTest::addColumn<int>("light");
    QTest::addColumn<qint64>("threshold");
    // Grey values come out of the weights as 0.993 of the byte value.
    QTest::newRow("both below 128") << 20 << 100 << qint64((20 + 99) / 2);
    QTest::newRow("both above 128") << 150 << 250 << qint64((149 + 248) / 2);
    QTest::newRow("128 lies between") << 0 << 255 << qint64(128);
}

void TestImageManager::twoValuedPictureMovesThreshold()
{
    QFETCH(int, dark);
    QFETCH(int, light);
    QFETCH(qint64, threshold);
    R::Options o;
    o.dark = dark;
    o.light = light;
    const QString code = QStringLiteral("8711000530450");
    ZTImageManager manager(R::render(code, o));
    const QList<ZTScanResult> results = manager.scanResultsForScanContext(ZTScanContext());
    QCOMPARE(manager.delegate().numberOfPositiveHistogramValues(), qint64(2));
    QVERIFY(!manager.hasCalculatedThreshold());
    QCOMPARE(manager.delegate().threshold(), threshold);
    QCOMPARE(results.size(), 1);
    QCOMPARE(results.first().decodedString(), code);
    QCOMPARE(results.first().threshold(), threshold);
    // Later passes start from the stored threshold, whatever the context says.
    ZTScanContext other;
    other.threshold = 3;
    const QList<ZTScanResult> again = manager.scanResultsForScanContext(other);
    QCOMPARE(again.size(), 1);
    QCOMPARE(again.first().threshold(), threshold);
}

void TestImageManager::uniformPictureGivesNothingAfterOnePass()
{
    ZTImageManager manager(greyPicture(480, 300, 200));
    ZTScanContext context;
    context.thresholdMargin = 100;
    QVERIFY(manager.scanResultsForScanContext(context).isEmpty());
    QVERIFY(manager.delegate().hasCalculatedThreshold());
    QCOMPARE(manager.delegate().numberOfPositiveHistogramValues(), qint64(1));
    QVERIFY(!manager.hasCalculatedThreshold());
    // A blank frame costs about height / 5 lines per direction, each counted once.
    QCOMPARE(manager.delegate().pixelHistogramValue(199), qint64(480 * 60));
}

void TestImageManager::firstThresholdWithResultEndsSearch()
{
    // Light at about 120 and dark near 60: 128 sees no light at all, 118 is
    // the first to part them, and 138 is never tried.
    R::Options o;
    o.dark = 60;
    o.light = 121;
    const QString code = QStringLiteral("6291041500213");
    const QImage picture = ZTImageDegradations::noise(R::render(code, o), 0.8, 5);
    ZTImageManager manager(picture);
    ZTScanContext context;
    QVERIFY(manager.scanResultsForScanContext(context).isEmpty());
    QVERIFY(manager.hasCalculatedThreshold());
    context.thresholdMargin = 100;
    const QList<ZTScanResult> results = manager.scanResultsForScanContext(context);
    QCOMPARE(results.size(), 1);
    QCOMPARE(results.first().threshold(), qint64(118));
    QCOMPARE(results.first().decodedString(), code);
}

void TestImageManager::resultsCarryTheirEdges()
{
    const QString code = QStringLiteral("4006381333931");
    R::Options o;
    ZTImageManager manager(R::render(code, o));
    const QList<ZTScanResult> results = manager.scanResultsForScanContext(ZTScanContext());
    QCOMPARE(results.size(), 1);
    const ZTScanResult &r = results.first();
    QCOMPARE(r.scanAngle(), qint64(90));
    QVERIFY(r.codeCount() > 10);
    QVERIFY(!r.hasCodeDict());
    QCOMPARE(r.startingScanEdge(), nullptr); // detached from the pass
    // The edges lie on the outer bars of the guards and were lengthened to
    // the full bar height (rows 90 to 209).
    const int left = (480 - (95 + 24) * 3) / 2 + 36;
    QCOMPARE(qRound(r.startingEdge().x1()), left);
    QCOMPARE(qRound(r.endingEdge().x1()), left + 95 * 3 - 1);
    QVERIFY(r.startingEdge().y1() <= 92);
    QVERIFY(r.startingEdge().y2() >= 207);
    // Upright edges have empty bounds, and so has their union.
    QVERIFY(r.boundingRectangle().isEmpty());
}

void TestImageManager::walksBetweenEdgesCount_data()
{
    QTest::addColumn<QString>("modules");
    QTest::addColumn<qint64>("walkThreshold");
    QTest::addColumn<int>("sign");
    const QString good = R::modules(QStringLiteral("0036000291452"));
    // The second left digit drawn from set G: every walk has 59 elements,
    // none decodes, because no leading digit has that parity pattern.
    QString badParity = good;
    badParity.replace(10, 7, QStringLiteral("0100111"));
    QTest::newRow("every walk decodes") << good << qint64(128) << 1;
    QTest::newRow("walks with a parity no code has") << badParity << qint64(128) << -1;
    QTest::newRow("no walk has 59 elements") << good << qint64(0) << 0;
}

void TestImageManager::walksBetweenEdgesCount()
{
    QFETCH(QString, modules);
    QFETCH(qint64, walkThreshold);
    QFETCH(int, sign);
    // A picture drawn module by module, 3 pixels each, rows 50 to 149.
    QImage image = greyPicture(480, 200, 255);
    QPainter painter(&image);
    for (qsizetype i = 0; i < modules.size(); ++i) {
        if (modules[i] == QLatin1Char('1'))
            painter.fillRect(90 + int(i) * 3, 50, 3, 100, Qt::black);
    }
    painter.end();
    ZTImageManager manager(image);
    ZTBarcodeValidator validator(1);
    ZTBarcodeValidator *const validators[] = {&validator};
    qint64 band[ZTImageManager::s_maxBandSize + 1];
    manager.adjustedThresholdWithValidatorList(validators, band, 128, 90, 5);
    validator.processWithValidatorIndex(1);
    validator.updateScanEdges();
    QCOMPARE(validator.listOfStartingScanEdges().size(), size_t(1));
    ZTScanEdge *start = validator.listOfStartingScanEdges().front();
    ZTScanEdge *end = start->listOfScanEdges().front();
    const qint64 walks = qint64(start->lineSegment().y2() - start->lineSegment().y1()) + 1;
    QVERIFY(walks > 20);
    QCOMPARE(manager.scanCountWithValidator(validator, start, end, band, walkThreshold), sign * walks);
    QCOMPARE(validator.scanResults().size(), size_t(sign > 0 ? 1 : 0));
}

void TestImageManager::codeFromBarBandMatchesTemplates_data()
{
    QTest::addColumn<QString>("modulesOf");
    QTest::addColumn<int>("perModule");
    QTest::addColumn<int>("damage");
    QTest::addColumn<QString>("expected");
    QTest::newRow("one sample a module") << "9780306406157" << 1 << 0 << "9780306406157";
    QTest::newRow("three samples a module") << "0036000291452" << 3 << 0 << "0036000291452";
    QTest::newRow("every leading digit: 5") << "5012345678900" << 2 << 0 << "5012345678900";
    QTest::newRow("light damage still fits") << "4006381333931" << 2 << 8 << "4006381333931";
    QTest::newRow("heavy damage is refused") << "4006381333931" << 2 << 40 << "";
}

void TestImageManager::codeFromBarBandMatchesTemplates()
{
    QFETCH(QString, modulesOf);
    QFETCH(int, perModule);
    QFETCH(int, damage);
    QFETCH(QString, expected);
    std::vector<qint64> samples = templateSamples(modulesOf, perModule);
    // Flip whole modules inside the digits: the fit worsens but a few flips
    // do not change the best template of most windows.
    std::mt19937 random(4);
    for (int i = 0; i < damage; ++i) {
        const size_t at = size_t(3 + random() % 89) * size_t(perModule);
        samples[at] = 255 - samples[at];
    }
    const QString read = ZTImageManager::codeFromBarBand(samples.data(), perModule);
    if (expected.isEmpty())
        QVERIFY2(read.isNull() || read != modulesOf, qPrintable(read));
    else
        QCOMPARE(read, expected);
}

void TestImageManager::normalizeAndThresholdBands()
{
    qint64 band[] = {50, 100, 150, 50};
    ZTImageManager::normalizeBarBand(band, 4);
    QCOMPARE(QList<qint64>(band, band + 4), QList<qint64>({0, 127, 255, 0}));
    ZTImageManager::thresholdBarBand(band, 4, 128);
    QCOMPARE(QList<qint64>(band, band + 4), QList<qint64>({0, 0, 1, 0}));
    qint64 flat[] = {7, 7, 7};
    ZTImageManager::normalizeBarBand(flat, 3);
    QCOMPARE(QList<qint64>(flat, flat + 3), QList<qint64>({7, 7, 7}));
}

namespace {
// A label that only the template reader reads: the right quiet zone is too
// narrow for the edge reader, and marks beyond it close the gap.
QImage templateOnlyFrame(const QString &code)
{
    R::Options o;
    o.quietZoneRight = 6;
    o.trailingMarks = true;
    return ZTStillImageScanner::frameFromImage(R::render(code, o));
}
} // namespace

void TestImageManager::secondaryReaderVotesOverSixFrames()
{
    const QString code = QStringLiteral("9780306406157");
    const QImage frame = templateOnlyFrame(code);
    ZTSecondaryScanState votes;
    for (int f = 1; f <= 5; ++f) {
        ZTImageManager manager(frame);
        QCOMPARE(manager.secondaryScanCode(votes), QString());
        QCOMPARE(votes.frameCounter, qint64(f));
    }
    QVERIFY(votes.sightings.value(code) >= 2);
    ZTImageManager sixth(frame);
    QCOMPARE(sixth.secondaryScanCode(votes), code);
    QCOMPARE(votes.frameCounter, qint64(-5));
    QVERIFY(votes.sightings.isEmpty());
}

void TestImageManager::secondaryReaderRestsAfterSuccess()
{
    const QImage frame = templateOnlyFrame(QStringLiteral("0036000291452"));
    ZTSecondaryScanState votes;
    votes.frameCounter = -5;
    // Four frames after a success are thrown away, then six are gathered.
    for (int f = 0; f < 4; ++f) {
        ZTImageManager manager(frame);
        QCOMPARE(manager.secondaryScanCode(votes), QString());
        QVERIFY(votes.sightings.isEmpty());
    }
    int frames = 0;
    QString code;
    while (code.isEmpty() && frames < 10) {
        ZTImageManager manager(frame);
        code = manager.secondaryScanCode(votes);
        ++frames;
    }
    QCOMPARE(code, QStringLiteral("0036000291452"));
    // The frame that brings the counter back to 0 gathers already, so the
    // decision comes one frame later than from a fresh start.
    QCOMPARE(frames, 7);
}

void TestImageManager::secondaryDecision_data()
{
    QTest::addColumn<qint64>("counter");
    QTest::addColumn<QStringList>("codes");
    QTest::addColumn<QList<qint64>>("counts");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<qint64>("counterAfter");
    QTest::newRow("two sightings at the sixth frame")
        << qint64(5) << QStringList{"A"} << QList<qint64>{2} << "A" << qint64(-5);
    QTest::newRow("one sighting is not enough")
        << qint64(5) << QStringList{"A"} << QList<qint64>{1} << "" << qint64(0);
    QTest::newRow("tie") << qint64(5) << QStringList{"A", "B"} << QList<qint64>{3, 3} << "" << qint64(0);
    QTest::newRow("rival seen before")
        << qint64(5) << QStringList{"A", "B"} << QList<qint64>{2, 3} << "" << qint64(0);
    QTest::newRow("rival seen after is not counted")
        << qint64(5) << QStringList{"A", "B"} << QList<qint64>{3, 2} << "A" << qint64(-5);
    QTest::newRow("clear lead") << qint64(5) << QStringList{"A", "B"} << QList<qint64>{1, 4} << "B"
                                << qint64(-5);
    QTest::newRow("still gathering") << qint64(4) << QStringList{"A"} << QList<qint64>{9} << "" << qint64(5);
    QTest::newRow("nothing seen") << qint64(7) << QStringList{} << QList<qint64>{} << "" << qint64(0);
}

void TestImageManager::secondaryDecision()
{
    QFETCH(qint64, counter);
    QFETCH(QStringList, codes);
    QFETCH(QList<qint64>, counts);
    QFETCH(QString, expected);
    QFETCH(qint64, counterAfter);
    ZTSecondaryScanState state;
    state.frameCounter = counter;
    for (qsizetype i = 0; i < codes.size(); ++i)
        state.sightings.insert(codes[i], counts[i]);
    QCOMPARE(ZTTemplateReader::decide(state), expected);
    QCOMPARE(state.frameCounter, counterAfter);
    QCOMPARE(state.sightings.isEmpty(), counter >= 5);
}

void TestImageManager::shortRowsGiveNoCandidate()
{
    const QImage frame = templateOnlyFrame(QStringLiteral("9780306406157"));
    ZTSecondaryScanState votes;
    ZTImageManager(frame).secondaryScanCode(votes);
    QVERIFY(votes.sightings.value(QStringLiteral("9780306406157")) >= 2);
    // Squeezed below 95 pixels, no stretch between two gaps can hold 95 modules.
    votes = {};
    ZTImageManager(frame.scaled(94, frame.height())).secondaryScanCode(votes);
    QVERIFY(votes.sightings.isEmpty());
    QCOMPARE(votes.frameCounter, qint64(1));
}

ZT_TEST_GUI_MAIN(TestImageManager)
#include "tst_imagemanager.moc"
