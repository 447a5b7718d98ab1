#include "sharing/http/HTTPByteRanges.h"
#include "sharing/http/HTTPMessage.h"
#include "support/ZTTestMain.h"

#include <QtTest>

Q_DECLARE_METATYPE(HTTPByteRange)

class TestHTTPMessage : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void parsesRequestHead()
    {
        HTTPMessage request;
        QVERIFY(request.appendData("\r\n")); // a stray line end before the request is skipped
        QVERIFY(request.appendData("GET /a%20b?x=1 HTTP/1.1\r\n"));
        QVERIFY(request.appendData("Host: example\r\n"));
        QVERIFY(request.appendData("X-Spaced:   padded value \t\r\n"));
        QVERIFY(request.appendData("host: second\n"));
        QVERIFY(!request.isHeaderComplete());
        QVERIFY(request.appendData("\r\n"));
        QVERIFY(request.isHeaderComplete());
        QCOMPARE(request.method(), QByteArray("GET"));
        QCOMPARE(request.target(), QByteArray("/a%20b?x=1"));
        QCOMPARE(request.version(), QByteArray("HTTP/1.1"));
        QCOMPARE(request.url().path(), QStringLiteral("/a b"));
        QCOMPARE(request.url().query(), QStringLiteral("x=1"));
        QCOMPARE(request.headerField("HOST"), QByteArray("example"));
        QCOMPARE(request.headerField("x-spaced"), QByteArray("padded value"));
        QVERIFY(!request.hasHeaderField("Range"));
        // Nothing may follow the end of the head.
        QVERIFY(!request.appendData("Late: field\r\n"));
    }

    void rejectsMalformedLines_data()
    {
        QTest::addColumn<QByteArray>("requestLine");
        QTest::addColumn<QByteArray>("headerLine");
        const QByteArray good = "GET / HTTP/1.1";
        QTest::newRow("no target") << QByteArray("GET HTTP/1.1") << QByteArray();
        QTest::newRow("only method") << QByteArray("GET") << QByteArray();
        QTest::newRow("HTTP/0.9 style") << QByteArray("GET /") << QByteArray();
        QTest::newRow("double space") << QByteArray("GET  / HTTP/1.1") << QByteArray();
        QTest::newRow("space in target") << QByteArray("GET /a b HTTP/1.1") << QByteArray();
        QTest::newRow("control in target") << QByteArray("GET /a\x01 HTTP/1.1") << QByteArray();
        QTest::newRow("bad version") << QByteArray("GET / HTTP/one") << QByteArray();
        QTest::newRow("long version") << QByteArray("GET / HTTP/1.10") << QByteArray();
        QTest::newRow("lower-case protocol") << QByteArray("GET / http/1.1") << QByteArray();
        QTest::newRow("method with slash") << QByteArray("GE/T / HTTP/1.1") << QByteArray();
        QTest::newRow("leading space") << QByteArray(" GET / HTTP/1.1") << QByteArray();
        QTest::newRow("field without colon") << good << QByteArray("Host example");
        QTest::newRow("empty field name") << good << QByteArray(": value");
        QTest::newRow("space before colon") << good << QByteArray("Host : example");
        QTest::newRow("folded line") << good << QByteArray(" continued");
        QTest::newRow("NUL in value") << good << QByteArray("Host: a\0b", 9);
        QTest::newRow("bare CR in value") << good << QByteArray("Host: a\rb");
    }

    void rejectsMalformedLines()
    {
        QFETCH(QByteArray, requestLine);
        QFETCH(QByteArray, headerLine);
        HTTPMessage request;
        if (headerLine.isNull()) {
            QVERIFY(!request.appendData(requestLine + "\r\n"));
            return;
        }
        QVERIFY(request.appendData(requestLine + "\r\n"));
        QVERIFY(!request.appendData(headerLine + "\r\n"));
    }

    void rejectsConflictingContentLengths()
    {
        HTTPMessage request;
        QVERIFY(request.appendData("GET / HTTP/1.1"));
        QVERIFY(request.appendData("Content-Length: 5"));
        QVERIFY(request.appendData("content-length: 5"));
        QVERIFY(!request.appendData("Content-Length: 6"));
    }

    void buildsResponseHead()
    {
        HTTPMessage response = HTTPMessage::response(206, "Partial Content", "HTTP/1.1");
        response.setHeaderField("Content-Length", "3");
        response.setHeaderField("content-length", "4"); // replaces, whatever the case
        response.setHeaderField("Accept-Ranges", "bytes");
        QCOMPARE(
            response.messageData(),
            QByteArray("HTTP/1.1 206 Partial Content\r\nContent-Length: 4\r\nAccept-Ranges: bytes\r\n\r\n"));
        QVERIFY(!response.appendData("Host: x"));
    }

    void formatsDates_data()
    {
        QTest::addColumn<qint64>("seconds");
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("epoch") << qint64(0) << QByteArray("Thu, 01 Jan 1970 00:00:00 GMT");
        QTest::newRow("leap day") << qint64(951782400) << QByteArray("Tue, 29 Feb 2000 00:00:00 GMT");
        QTest::newRow("end of year") << qint64(1735689599) << QByteArray("Tue, 31 Dec 2024 23:59:59 GMT");
    }

    void formatsDates()
    {
        QFETCH(qint64, seconds);
        QFETCH(QByteArray, text);
        QCOMPARE(HTTPMessage::dateString(seconds), text);
    }

    void resolvesRanges_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<quint64>("length");
        QTest::addColumn<QList<HTTPByteRange>>("expected");
        using R = QList<HTTPByteRange>;
        QTest::newRow("open end") << QByteArray("bytes=0-") << quint64(10) << R{{0, 10}};
        QTest::newRow("closed") << QByteArray("bytes=2-4") << quint64(10) << R{{2, 3}};
        QTest::newRow("single byte") << QByteArray("bytes=9-9") << quint64(10) << R{{9, 1}};
        QTest::newRow("suffix") << QByteArray("bytes=-3") << quint64(10) << R{{7, 3}};
        QTest::newRow("suffix longer than file") << QByteArray("bytes=-30") << quint64(10) << R{{0, 10}};
        QTest::newRow("end cut to file") << QByteArray("bytes=8-100") << quint64(10) << R{{8, 2}};
        QTest::newRow("several, in asked order")
            << QByteArray("bytes=5-6, 0-1,-1") << quint64(10) << R{{5, 2}, {0, 2}, {9, 1}};
        QTest::newRow("unit case and spaces") << QByteArray(" Bytes = 1-2 ") << quint64(10) << R{{1, 2}};
        QTest::newRow("empty elements") << QByteArray("bytes=0-1,,4-5,") << quint64(10) << R{{0, 2}, {4, 2}};
        QTest::newRow("start past end") << QByteArray("bytes=10-") << quint64(10) << R{};
        QTest::newRow("one of several past end") << QByteArray("bytes=0-1,20-30") << quint64(10) << R{};
        QTest::newRow("reversed") << QByteArray("bytes=5-2") << quint64(10) << R{};
        QTest::newRow("empty suffix") << QByteArray("bytes=-0") << quint64(10) << R{};
        QTest::newRow("overlapping") << QByteArray("bytes=0-5,5-6") << quint64(10) << R{};
        QTest::newRow("same range twice") << QByteArray("bytes=1-2,1-2") << quint64(10) << R{};
        QTest::newRow("other unit") << QByteArray("items=0-1") << quint64(10) << R{};
        QTest::newRow("no equals") << QByteArray("bytes 0-1") << quint64(10) << R{};
        QTest::newRow("no dash") << QByteArray("bytes=3") << quint64(10) << R{};
        QTest::newRow("both sides missing") << QByteArray("bytes=-") << quint64(10) << R{};
        QTest::newRow("sign") << QByteArray("bytes=+1-2") << quint64(10) << R{};
        QTest::newRow("overflow") << QByteArray("bytes=0-99999999999999999999999") << quint64(10) << R{};
        QTest::newRow("nothing listed") << QByteArray("bytes=") << quint64(10) << R{};
        QTest::newRow("empty file") << QByteArray("bytes=0-") << quint64(0) << R{};
        QTest::newRow("suffix of empty file") << QByteArray("bytes=-5") << quint64(0) << R{};
    }

    void resolvesRanges()
    {
        QFETCH(QByteArray, header);
        QFETCH(quint64, length);
        QFETCH(QList<HTTPByteRange>, expected);
        QCOMPARE(HTTPByteRanges::parse(header, length), expected);
    }

    void rangesFromArbitraryHeadersStayInsideFile()
    {
        // Whatever a client sends, the ranges handed to the connection never
        // reach past the file and never overlap.
        QRandomGenerator random(20261123);
        const QByteArray alphabet = "0123456789-, =bytes";
        for (int round = 0; round < 20000; ++round) {
            QByteArray header = round % 3 ? "bytes=" : "";
            const int length = int(random.bounded(24));
            for (int i = 0; i < length; ++i)
                header += alphabet[int(random.bounded(alphabet.size()))];
            const quint64 fileLength = random.bounded(40);
            QList<HTTPByteRange> ranges = HTTPByteRanges::parse(header, fileLength);
            std::sort(ranges.begin(), ranges.end(),
                      [](const HTTPByteRange &a, const HTTPByteRange &b) { return a.location < b.location; });
            for (qsizetype i = 0; i < ranges.size(); ++i) {
                QVERIFY2(ranges[i].length > 0, header.constData());
                QVERIFY2(ranges[i].location + ranges[i].length <= fileLength, header.constData());
                if (i > 0)
                    QVERIFY2(ranges[i].location > ranges[i - 1].last(), header.constData());
            }
        }
    }

    void arbitraryLinesNeverYieldAnInvalidRequest()
    {
        QRandomGenerator random(7);
        for (int round = 0; round < 20000; ++round) {
            HTTPMessage request;
            bool accepted = true;
            for (int line = 0; line < 4 && accepted; ++line) {
                QByteArray text = line == 0 && round % 2 ? "GET / HTTP/1.1" : QByteArray();
                const int length = int(random.bounded(20));
                for (int i = 0; i < length; ++i)
                    text += char(random.bounded(256));
                accepted = request.appendData(text);
            }
            if (!request.method().isEmpty()) {
                QVERIFY(!request.target().isEmpty());
                QCOMPARE(request.version().size(), 8);
                for (char c : request.target())
                    QVERIFY(static_cast<unsigned char>(c) > 0x20 && c != 0x7f);
            }
            for (const auto &field : request.allHeaderFields()) {
                QVERIFY(!field.first.isEmpty());
                QVERIFY(!field.second.contains('\n') && !field.second.contains('\r') &&
                        !field.second.contains('\0'));
            }
        }
    }
};

ZT_TEST_MAIN(TestHTTPMessage)
#include "tst_httpmessage.moc"
