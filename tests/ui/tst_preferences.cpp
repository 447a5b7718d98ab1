#include "base/ZTSettings.h"
#include "sharing/ZTSharingController.h"
#include "sharing/ZTWebServer.h"
#include "store/ZTPropertyList.h"
#include "support/ZTHttpRequest.h"
#include "support/ZTLibraryFixture.h"
#include "support/ZTTestMain.h"
#include "support/ZTTestSupport.h"
#include "ui/app/ZTApplicationController.h"
#include "ui/mainwindow/ZTLibraryWindow.h"
#include "ui/prefs/ZTPreferencesWindow.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QTreeWidget>
#include <QtTest>

// The Sharing pane drives the real service: what it ticks is what a handheld
// reads from the server on 127.0.0.1.
class TestPreferences : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void sharingPaneDrivesTheService();
    void oneWindowFromTheMenu();

private:
    QStringList servedNames(quint16 port);
    QTemporaryDir m_settings;
    QTemporaryDir m_cache;
};

void TestPreferences::initTestCase()
{
    qputenv("XDG_CACHE_HOME", QFile::encodeName(m_cache.path()));
    ZTTestSupport::useTemporarySettings(m_settings);
}

QStringList TestPreferences::servedNames(quint16 port)
{
    const ZTHttpReply reply = ztHttpRequest(port, "GET", "/sharedLibraries.xml");
    if (reply.status != 200)
        return {QStringLiteral("status %1").arg(reply.status)};
    QStringList names;
    for (const QVariant &library : ZTPropertyList::deserialize(reply.body).toList())
        names << library.toMap().value(QStringLiteral("name")).toString();
    return names;
}

void TestPreferences::sharingPaneDrivesTheService()
{
    ZTLibraryFixture books(ZTMediaKind::Book, QStringLiteral("Shelf"));
    ZTLibraryFixture films(ZTMediaKind::Movie, QStringLiteral("Films"));
    ZTApplicationController app;
    QVERIFY(app.openLibrary(books.path()));
    QVERIFY(app.openLibrary(films.path()));
    ZTSharingController *sharing = app.sharingController();
    sharing->webServer().setPort(0);

    ZTPreferencesWindow *prefs = app.showPreferences();
    QTreeWidget *list = prefs->libraryList();
    // "All Libraries" first, then the two open libraries, none ticked.
    QCOMPARE(list->topLevelItemCount(), 3);
    QCOMPARE(list->topLevelItem(0)->text(0), QStringLiteral("All Libraries"));
    QStringList shown{list->topLevelItem(1)->text(0), list->topLevelItem(2)->text(0)};
    shown.sort();
    QCOMPARE(shown, QStringList({"Films", "Shelf"}));
    QCOMPARE(list->topLevelItem(0)->checkState(0), Qt::Unchecked);
    QVERIFY(!prefs->sharingCheckBox()->isChecked());
    QCOMPARE(prefs->sharingStatusLabel()->text(), QStringLiteral("Sharing is off."));

    prefs->sharingCheckBox()->click();
    QCOMPARE(ZTSettings::value(ZTSettingsKey::SharingState).toBool(), true);
    QVERIFY(sharing->webServer().isStarted());
    const quint16 port = sharing->listeningPort();
    QVERIFY(port != 0);
    QVERIFY2(prefs->sharingStatusLabel()->text().contains(QStringLiteral(":%1/").arg(port)),
             qPrintable(prefs->sharingStatusLabel()->text()));
    QCOMPARE(servedNames(port), QStringList());

    // Ticking one library shares it; the "all" entry shows a partial tick.
    QTreeWidgetItem *shelf = list->findItems(QStringLiteral("Shelf"), Qt::MatchExactly).value(0);
    QVERIFY(shelf);
    shelf->setCheckState(0, Qt::Checked);
    QCoreApplication::processEvents(); // the list is rebuilt after the tick
    QCOMPARE(ZTSettings::value(ZTSettingsKey::SharedLibraries).toStringList(), QStringList{books.path()});
    QCOMPARE(servedNames(port), QStringList{"Shelf"});
    QCOMPARE(list->topLevelItem(0)->checkState(0), Qt::PartiallyChecked);
    // Shared libraries are listed first.
    QCOMPARE(list->topLevelItem(1)->text(0), QStringLiteral("Shelf"));

    list->topLevelItem(0)->setCheckState(0, Qt::Checked);
    QCoreApplication::processEvents(); // the list is rebuilt after the tick
    QStringList both = servedNames(port);
    both.sort();
    QCOMPARE(both, QStringList({"Films", "Shelf"}));

    list->topLevelItem(0)->setCheckState(0, Qt::Unchecked);
    QCoreApplication::processEvents(); // the list is rebuilt after the tick
    QCOMPARE(ZTSettings::value(ZTSettingsKey::SharedLibraries).toStringList(), QStringList());
    QCOMPARE(servedNames(port), QStringList());

    prefs->sharingCheckBox()->click();
    QVERIFY(!sharing->webServer().isStarted());
    QCOMPARE(prefs->sharingStatusLabel()->text(), QStringLiteral("Sharing is off."));
    prefs->close();
}

void TestPreferences::oneWindowFromTheMenu()
{
    ZTLibraryFixture books;
    ZTApplicationController app;
    ZTLibraryWindow *window = app.openLibrary(books.path());
    QVERIFY(window);
    QAction *preferences = nullptr;
    for (QAction *action : window->actions())
        if (action->data().toInt() == 1003)
            preferences = action;
    QVERIFY(preferences);
    QVERIFY(preferences->isEnabled());
    preferences->trigger();
    ZTPreferencesWindow *first = app.showPreferences();
    QVERIFY(first->isVisible());
    preferences->trigger();
    QCOMPARE(app.showPreferences(), first);
    first->close();
}

ZT_TEST_GUI_MAIN(TestPreferences)
#include "tst_preferences.moc"
