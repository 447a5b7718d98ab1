#include "base/ZTMacRoman.h"
#include "support/ZTTestMain.h"

#include <QTest>

class TestMacRoman : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void knownBytes_data();
    void knownBytes();
    void everyByteRoundTrips();
    void textWithoutMacForm();
};

void TestMacRoman::knownBytes_data()
{
    // Anchors from Apple's published ROMAN.TXT mapping.
    QTest::addColumn<int>("byte");
    QTest::addColumn<int>("character");
    QTest::newRow("ASCII") << 0x41 << 0x0041;
    QTest::newRow("A diaeresis") << 0x80 << 0x00C4;
    QTest::newRow("C cedilla") << 0x82 << 0x00C7;
    QTest::newRow("dagger") << 0xA0 << 0x2020;
    QTest::newRow("AE") << 0xAE << 0x00C6;
    QTest::newRow("o slash") << 0xBF << 0x00F8;
    QTest::newRow("non-breaking space") << 0xCA << 0x00A0;
    QTest::newRow("euro") << 0xDB << 0x20AC;
    QTest::newRow("fi ligature") << 0xDE << 0xFB01;
    QTest::newRow("Apple logo") << 0xF0 << 0xF8FF;
    QTest::newRow("caron") << 0xFF << 0x02C7;
}

void TestMacRoman::knownBytes()
{
    QFETCH(int, byte);
    QFETCH(int, character);
    QCOMPARE(int(ZTMacRoman::character(static_cast<unsigned char>(byte)).unicode()), character);
}

void TestMacRoman::everyByteRoundTrips()
{
    // The table is a one-to-one map: decoding all 256 bytes and encoding the
    // text again gives the same bytes.
    QByteArray all(256, Qt::Uninitialized);
    for (int i = 0; i < 256; ++i)
        all[i] = char(i);
    const QString text = ZTMacRoman::decode(all);
    QCOMPARE(text.size(), 256);
    QByteArray back;
    QVERIFY(ZTMacRoman::encode(text, &back));
    QCOMPARE(back, all);
}

void TestMacRoman::textWithoutMacForm()
{
    QByteArray bytes("unchanged");
    QVERIFY(!ZTMacRoman::encode(QStringLiteral("a\u4E2Db"), &bytes));
    QCOMPARE(bytes, QByteArray("unchanged"));
    QVERIFY(
        !ZTMacRoman::encode(QStringLiteral("\u00A4"), &bytes)); // the old currency sign gave way to the euro
    QVERIFY(ZTMacRoman::encode(QStringLiteral(""), &bytes));
    QCOMPARE(bytes, QByteArray());
}

ZT_TEST_MAIN(TestMacRoman)
#include "tst_macroman.moc"
