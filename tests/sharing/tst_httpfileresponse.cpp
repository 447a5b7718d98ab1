#include "sharing/http/HTTPFileResponse.h"
#include "support/ZTTestMain.h"

#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

class TestHTTPFileResponse : public QObject {
    Q_OBJECT
private:
    QTemporaryDir m_dir;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        QFile file(m_dir.filePath("data.bin"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write("abcdefghij"), qint64(10));
        file.close();
        QVERIFY(QDir(m_dir.path()).mkdir("folder"));
        QVERIFY(QFile::link(m_dir.filePath("data.bin"), m_dir.filePath("link.bin")));
        QCOMPARE(::mkfifo(QFile::encodeName(m_dir.filePath("fifo")).constData(), 0600), 0);
    }

    void opensOnlyRegularFiles_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("valid");
        QTest::newRow("regular file") << "data.bin" << true;
        QTest::newRow("folder") << "folder" << false;
        QTest::newRow("symbolic link") << "link.bin" << false;
        QTest::newRow("FIFO") << "fifo" << false;
        QTest::newRow("missing") << "missing.bin" << false;
    }

    void opensOnlyRegularFiles()
    {
        QFETCH(QString, name);
        QFETCH(bool, valid);
        HTTPFileResponse response(m_dir.filePath(name), nullptr);
        QCOMPARE(response.isValid(), valid);
        if (!valid)
            QVERIFY(response.readDataOfLength(4).isEmpty());
    }

    void readsFromTheOffsetToTheEnd()
    {
        HTTPFileResponse response(m_dir.filePath("data.bin"), nullptr);
        QCOMPARE(response.contentLength(), quint64(10));
        QCOMPARE(response.readDataOfLength(3), QByteArray("abc"));
        QCOMPARE(response.offset(), quint64(3));
        response.setOffset(8);
        QVERIFY(!response.isDone());
        QCOMPARE(response.readDataOfLength(100), QByteArray("ij"));
        QVERIFY(response.isDone());
        QVERIFY(response.readDataOfLength(1).isEmpty());
        response.setOffset(50); // past the end stays at the end
        QCOMPARE(response.offset(), quint64(10));
    }

    void sendsStraightToASocket()
    {
        int pair[2];
        QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM, 0, pair), 0);
        HTTPFileResponse response(m_dir.filePath("data.bin"), nullptr);
        response.setOffset(2);
        QCOMPARE(response.sendDataOfLength(pair[0], 5), qint64(5));
        QCOMPARE(response.offset(), quint64(7));
        char buffer[16] = {};
        QCOMPARE(::read(pair[1], buffer, sizeof buffer), ssize_t(5));
        QCOMPARE(QByteArray(buffer, 5), QByteArray("cdefg"));
        ::close(pair[1]);
        // The reader has gone: a failure, not a signal that ends the program.
        signal(SIGPIPE, SIG_IGN);
        QCOMPARE(response.sendDataOfLength(pair[0], 3), qint64(-1));
        ::close(pair[0]);
    }
};

ZT_TEST_MAIN(TestHTTPFileResponse)
#include "tst_httpfileresponse.moc"
