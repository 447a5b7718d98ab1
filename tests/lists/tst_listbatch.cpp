// A batch of additions to a list: one encoding of its oids and one
// "ZTListUpdated" when the outermost batch ends, none in between.
#include "base/ZTNotificationCenter.h"
#include "lists/ZTList.h"
#include "store/ZTPropertyList.h"
#include "support/ZTTestLibrary.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"

#include <QTemporaryDir>
#include <QTest>

class TestListBatch : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void batchesEncodeOnceAtTheOutermostEnd()
    {
        QTemporaryDir dir;
        ZTTestSupport::useTemporarySettings(dir);
        auto document = ZTTestLibrary::create(dir, ZTMediaKind::Book);
        ZTList *list = document->mainList();
        QVERIFY(list);
        int posts = 0;
        ZTObservation observation(ZTListNotification::updated, list,
                                  [&](const ZTNotification &) { ++posts; });
        auto stored = [&] { return ZTPropertyList::stringArray(list->itemData()); };

        list->beginUpdates();
        list->addItem("a");
        list->beginUpdates();
        list->addItem("b");
        list->endUpdates();
        QCOMPARE(posts, 0);
        QCOMPARE(stored(), QStringList());
        list->addItem("c");
        list->endUpdates();
        QCOMPARE(posts, 1);
        QCOMPARE(list->itemOids(), (QStringList{"c", "b", "a"}));
        QCOMPARE(stored(), (QStringList{"c", "b", "a"}));

        // Outside a batch every change is written at once; an empty batch and
        // an unmatched end change nothing.
        list->addItem("d");
        QCOMPARE(posts, 2);
        list->beginUpdates();
        list->endUpdates();
        list->endUpdates();
        QCOMPARE(posts, 2);
        QCOMPARE(stored().first(), QStringLiteral("d"));
    }
};

ZT_TEST_MAIN(TestListBatch)
#include "tst_listbatch.moc"
