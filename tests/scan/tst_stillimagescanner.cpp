#include "scan/ZTImageManager.h"
#include "scan/ZTStillImageScanner.h"

#include "support/ZTBarcodeRenderer.h"
#include "support/ZTImageDegradations.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QtTest>

#include <functional>
#include <random>

namespace R = ZTBarcodeRenderer;
namespace D = ZTImageDegradations;

using Degrade = std::function<QImage(const QImage &)>;
Q_DECLARE_METATYPE(Degrade)
Q_DECLARE_METATYPE(R::Options)

class TestStillImageScanner : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void readsDegradedRenders_data();
    void readsDegradedRenders();
    void readsWithTemplateReaderWhenEdgesFail();
    void badPicturesGiveNoCode_data();
    void badPicturesGiveNoCode();
    void framesAreScaledToCameraWidth();
    void survivesRandomRawBytes();
    void survivesDamagedBarcodeBytes();
    void cliReadsFixtures();
    void cliPrintsJson();
    void cliRefusesUnreadableFiles_data();
    void cliRefusesUnreadableFiles();
};

void TestStillImageScanner::readsDegradedRenders_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<R::Options>("options");
    QTest::addColumn<Degrade>("degrade");
    QTest::addColumn<bool>("readable");

    const Degrade same = [](const QImage &i) { return i; };
    const R::Options plain;
    R::Options twoPixel;
    twoPixel.moduleWidth = 2;
    R::Options onePixel; // 1-pixel modules on a small picture, scaled up to the camera width
    onePixel.moduleWidth = 1;
    onePixel.width = 220;
    onePixel.height = 140;
    onePixel.barHeight = 60;
    R::Options square; // a quarter turn of it still fits the reader
    square.width = square.height = 420;
    R::Options printed;
    printed.humanReadable = true;
    printed.frame = true;

    // Codes with every leading digit, so every parity pattern is read.
    const char *codes[] = {"0036000291452", "1234567890128", "2000000000015", "3014260004149",
                           "4006381333931", "5012345678900", "6291041500213", "7622210449283",
                           "8711000530450", "9780306406157"};
    for (const char *c : codes)
        QTest::addRow("clean %s", c) << QString::fromLatin1(c) << plain << same << true;
    QTest::newRow("2-pixel modules") << "9780306406157" << twoPixel << same << true;
    QTest::newRow("1-pixel modules, small") << "4006381333931" << onePixel << same << true;
    QTest::newRow("label with frame and digits") << "5012345678900" << printed << same << true;
    QTest::newRow("rotated 4 degrees")
        << "8711000530450" << plain << Degrade([](const QImage &i) { return D::rotate(i, 4); }) << true;
    QTest::newRow("rotated -8 degrees")
        << "8711000530450" << plain << Degrade([](const QImage &i) { return D::rotate(i, -8); }) << true;
    QTest::newRow("upside down") << "7622210449283" << plain
                                 << Degrade([](const QImage &i) { return D::quarterTurn(i, 2); }) << true;
    // Rows cross no bars of an upright-standing code, and column sweeps are
    // off by default: a quarter turn is not read.
    QTest::newRow("quarter turn") << "7622210449283" << square
                                  << Degrade([](const QImage &i) { return D::quarterTurn(i, 1); }) << false;
    QTest::newRow("three quarter turn")
        << "7622210449283" << square << Degrade([](const QImage &i) { return D::quarterTurn(i, 3); })
        << false;
    QTest::newRow("blur") << "3014260004149" << plain
                          << Degrade([](const QImage &i) { return D::blur(i, 2); }) << true;
    QTest::newRow("noise") << "2000000000015" << plain
                           << Degrade([](const QImage &i) { return D::noise(i, 40, 11); }) << true;
    QTest::newRow("low contrast") << "1234567890128" << plain
                                  << Degrade([](const QImage &i) { return D::lowContrast(i, 100, 150); })
                                  << true;
    QTest::newRow("uneven light") << "6291041500213" << plain
                                  << Degrade([](const QImage &i) { return D::unevenLight(i, 0.6); }) << true;
    QTest::newRow("perspective") << "0036000291452" << plain
                                 << Degrade([](const QImage &i) { return D::perspective(i, 0.12); }) << true;
    QTest::newRow("jpeg quality 10") << "9780306406157" << plain
                                     << Degrade([](const QImage &i) { return D::jpeg(i, 10); }) << true;
    QTest::newRow("noise then jpeg") << "4006381333931" << plain << Degrade([](const QImage &i) {
        return D::jpeg(D::noise(i, 20, 3), 40);
    }) << true;
    QTest::newRow("half size") << "5012345678900" << plain
                               << Degrade([](const QImage &i) { return D::shrink(i, 0.5); }) << true;
}

void TestStillImageScanner::readsDegradedRenders()
{
    QFETCH(QString, code);
    QFETCH(R::Options, options);
    QFETCH(Degrade, degrade);
    QFETCH(bool, readable);
    QCOMPARE(R::withCheckDigit(code.left(12)), code);
    const QImage picture = degrade(R::render(code, options));
    QCOMPARE(ZTStillImageScanner::scanImage(picture), readable ? code : QString());
}

void TestStillImageScanner::readsWithTemplateReaderWhenEdgesFail()
{
    // A right quiet zone of 6 modules is too narrow for the edge reader, but
    // with marks beyond it the template reader finds the stretch between the
    // two gaps and answers after its six frames of votes.
    R::Options o;
    o.quietZoneRight = 6;
    o.trailingMarks = true;
    const QString code = QStringLiteral("9780306406157");
    const QImage frame = ZTStillImageScanner::frameFromImage(R::render(code, o));
    ZTImageManager first(frame);
    QVERIFY(first.scanResultsForScanContext(ZTScanContext()).isEmpty());
    QCOMPARE(ZTStillImageScanner::scanFrame(frame), code);

    // Without the marks the light run behind the code reaches the picture's
    // border, and an end at the very end of a scan line needs no quiet zone.
    o.trailingMarks = false;
    ZTImageManager bordered(ZTStillImageScanner::frameFromImage(R::render(code, o)));
    const QList<ZTScanResult> results = bordered.scanResultsForScanContext(ZTScanContext());
    QCOMPARE(results.size(), 1);
    QCOMPARE(results.first().decodedString(), code);
}

void TestStillImageScanner::badPicturesGiveNoCode_data()
{
    QTest::addColumn<QImage>("picture");
    auto filled = [](int w, int h, QColor c, QImage::Format f = QImage::Format_RGB32) {
        QImage i(w, h, f);
        i.fill(c);
        return i;
    };
    QTest::newRow("null") << QImage();
    QTest::newRow("white") << filled(480, 320, Qt::white);
    QTest::newRow("black") << filled(480, 320, Qt::black);
    QTest::newRow("mid grey") << filled(480, 320, QColor(128, 128, 128));
    QTest::newRow("one pixel") << filled(1, 1, Qt::black);
    QTest::newRow("three by two") << filled(3, 2, Qt::gray);
    QTest::newRow("one row") << R::render(QStringLiteral("9780306406157")).copy(0, 150, 480, 1);
    QTest::newRow("one wide row") << filled(3000, 1, Qt::black);
    QTest::newRow("one column") << filled(1, 400, Qt::black);
    QTest::newRow("too tall after scaling")
        << R::render(QStringLiteral("9780306406157")).copy(0, 0, 100, 300);
    QTest::newRow("huge") << filled(6000, 4000, Qt::white);
    QTest::newRow("fully transparent") << filled(480, 320, Qt::transparent, QImage::Format_ARGB32);
    QTest::newRow("mono") << filled(480, 320, Qt::black, QImage::Format_Mono);

    QImage colour(480, 320, QImage::Format_RGB32);
    std::mt19937 random(99);
    for (int y = 0; y < colour.height(); ++y) {
        for (int x = 0; x < colour.width(); ++x)
            colour.setPixel(x, y, qRgb(int(random() % 256), int(random() % 256), int(random() % 256)));
    }
    QTest::newRow("colour noise") << colour;
    // Stripes like bars but with no code in them.
    QImage stripes = filled(480, 320, Qt::white);
    for (int x = 60; x < 420; x += 6)
        QPainter(&stripes).fillRect(x, 40, 3, 240, Qt::black);
    QTest::newRow("stripes") << stripes;
    QByteArray damaged;
    {
        QBuffer buffer(&damaged);
        buffer.open(QIODevice::WriteOnly);
        R::render(QStringLiteral("9780306406157")).save(&buffer, "PNG");
    }
    QTest::newRow("corrupt png") << QImage::fromData(damaged.left(damaged.size() / 3), "PNG");
}

void TestStillImageScanner::badPicturesGiveNoCode()
{
    QFETCH(QImage, picture);
    QCOMPARE(ZTStillImageScanner::scanImage(picture), QString());
}

void TestStillImageScanner::framesAreScaledToCameraWidth()
{
    const QImage big = R::render(QStringLiteral("4006381333931"),
                                 R::Options{.moduleWidth = 6, .barHeight = 240, .width = 960, .height = 600});
    const QImage frame = ZTStillImageScanner::frameFromImage(big);
    QCOMPARE(frame.size(), QSize(480, 300));
    QCOMPARE(ZTStillImageScanner::scanImage(big), QStringLiteral("4006381333931"));
    QCOMPARE(ZTStillImageScanner::frameFromImage(QImage(480, 641, QImage::Format_RGB32)), QImage());
    QCOMPARE(ZTStillImageScanner::frameFromImage(QImage(240, 320, QImage::Format_RGB32)).size(),
             QSize(480, 640));
    // A frame over the reader's limit is refused even when handed in directly.
    QCOMPARE(ZTStillImageScanner::scanFrame(
                 R::render(QStringLiteral("4006381333931"), R::Options{.width = 700, .height = 300})),
             QString());
}

void TestStillImageScanner::survivesRandomRawBytes()
{
    std::mt19937 random(20261123);
    int refused = 0;
    for (int round = 0; round < 400; ++round) {
        const int size = int(random() % 6000);
        QByteArray bytes(size, Qt::Uninitialized);
        for (char &b : bytes)
            b = char(random());
        // Most headers should name a picture the reader accepts.
        if (size >= 4 && round % 4 != 0) {
            const int w = 1 + int(random() % 640), h = 1 + int(random() % 64);
            bytes[0] = char(w & 0xFF), bytes[1] = char(w >> 8), bytes[2] = char(h & 0xFF),
            bytes[3] = char(h >> 8);
        }
        const QString code = ZTStillImageScanner::scanRawBytes(
            reinterpret_cast<const unsigned char *>(bytes.constData()), size_t(size));
        if (!code.isEmpty())
            QCOMPARE(code.size(), 13);
        else
            ++refused;
    }
    QVERIFY(refused > 0);
    QCOMPARE(ZTStillImageScanner::scanRawBytes(nullptr, 0), QString());
}

void TestStillImageScanner::survivesDamagedBarcodeBytes()
{
    const QString code = QStringLiteral("5012345678900");
    const QImage grey = R::render(code, R::Options{.barHeight = 100, .height = 200})
                            .convertToFormat(QImage::Format_Grayscale8);
    QByteArray clean;
    clean.append(char(grey.width() & 0xFF)).append(char(grey.width() >> 8));
    clean.append(char(grey.height() & 0xFF)).append(char(grey.height() >> 8));
    for (int y = 0; y < grey.height(); ++y)
        clean.append(reinterpret_cast<const char *>(grey.constScanLine(y)), grey.width());
    QCOMPARE(ZTStillImageScanner::scanRawBytes(reinterpret_cast<const uchar *>(clean.constData()),
                                               size_t(clean.size())),
             code);

    std::mt19937 random(7);
    int stillRead = 0;
    for (int round = 0; round < 60; ++round) {
        QByteArray bytes = clean;
        const int damage = 1 + int(random() % 2000);
        for (int i = 0; i < damage; ++i)
            bytes[4 + qsizetype(random() % quint32(bytes.size() - 4))] = char(random());
        if (round % 5 == 0)
            bytes.truncate(4 + qsizetype(random() % quint32(bytes.size() - 4)));
        const QString read = ZTStillImageScanner::scanRawBytes(
            reinterpret_cast<const uchar *>(bytes.constData()), size_t(bytes.size()));
        // A damaged picture may lose its code, but never yields another one.
        QVERIFY2(read.isEmpty() || read == code, qPrintable(read));
        stillRead += read == code;
    }
    QVERIFY(stillRead > 0);
}

namespace {
struct CliRun {
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

CliRun runCli(const QStringList &args)
{
    QProcess process;
    process.start(ZTTestSupport::cliPath(), QStringList{QStringLiteral("scan")} + args);
    process.waitForFinished(60000);
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}
} // namespace

void TestStillImageScanner::cliReadsFixtures()
{
    const QString isbn = ZTTestSupport::fixturePath(QStringLiteral("scan/isbn-9780306406157.png"));
    CliRun run = runCli({isbn});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.out, QByteArray("9780306406157\n"));

    const QString photo = ZTTestSupport::fixturePath(QStringLiteral("scan/upc-036000291452-photo.jpg"));
    const QString upside =
        ZTTestSupport::fixturePath(QStringLiteral("scan/ean-4006381333931-upside-down.png"));
    const QString blank = ZTTestSupport::fixturePath(QStringLiteral("scan/blank.png"));
    run = runCli({photo, upside, blank});
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(QString::fromUtf8(run.out).split(QLatin1Char('\n'), Qt::SkipEmptyParts),
             QStringList({photo + QStringLiteral(": 0036000291452"),
                          upside + QStringLiteral(": 4006381333931"), blank + QStringLiteral(": no code")}));
}

void TestStillImageScanner::cliPrintsJson()
{
    const QString isbn = ZTTestSupport::fixturePath(QStringLiteral("scan/isbn-9780306406157.png"));
    const QString blank = ZTTestSupport::fixturePath(QStringLiteral("scan/blank.png"));
    const CliRun run = runCli({QStringLiteral("--json"), isbn, blank});
    QCOMPARE(run.exitCode, 0);
    const QJsonArray array = QJsonDocument::fromJson(run.out).array();
    QCOMPARE(array.size(), 2);
    QCOMPARE(array[0].toObject().value(QStringLiteral("file")).toString(), isbn);
    QCOMPARE(array[0].toObject().value(QStringLiteral("code")).toString(), QStringLiteral("9780306406157"));
    QCOMPARE(array[1].toObject().value(QStringLiteral("file")).toString(), blank);
    QVERIFY(array[1].toObject().value(QStringLiteral("code")).isNull());
}

void TestStillImageScanner::cliRefusesUnreadableFiles_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("message");
    QTest::newRow("missing") << QStringList{ZTTestSupport::fixturePath(
                                    QStringLiteral("scan/nothing-here.png"))}
                             << "cannot read picture";
    QTest::newRow("truncated jpeg") << QStringList{ZTTestSupport::fixturePath(
                                           QStringLiteral("scan/truncated.jpg"))}
                                    << "cannot read picture";
    QTest::newRow("text") << QStringList{ZTTestSupport::fixturePath(QStringLiteral("scan/not-a-picture.png"))}
                          << "cannot read picture";
    QTest::newRow("no picture") << QStringList{} << "at least one picture";
    QTest::newRow("unknown option") << QStringList{QStringLiteral("--fast")} << "unknown option";
}

void TestStillImageScanner::cliRefusesUnreadableFiles()
{
    QFETCH(QStringList, args);
    QFETCH(QString, message);
    const CliRun run = runCli(args);
    QCOMPARE(run.exitCode, 2);
    QVERIFY2(run.err.contains(message.toUtf8()), run.err.constData());
    QVERIFY(run.out.isEmpty());
}

ZT_TEST_GUI_MAIN(TestStillImageScanner)
#include "tst_stillimagescanner.moc"
