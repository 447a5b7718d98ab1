#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

// What the application does at start and at quit, apart from windows: the
// first settings, clean-up of temporary folders, the libraries to reopen, and
// the search stubs a user may open.
class ZTAppController {
public:
    // Writes the first-start settings while "First Run Key" is not true.
    static void initializeDefaults();
    static QVariantMap firstRunDefaults();
    static QVariantList defaultLocaleRows(const QStringList &identifiers);
    // Removes settings of earlier versions.
    static void processLegacyPreferences();
    static void ensureFirstRun();
    static bool isFirstRun();
    // Deletes the staging folder of pictures and stale search-stub folders.
    static void cleanTemporaryFolders();
    static QString stubCacheFolder();

    // One library to reopen: its path and whether its window was minimised.
    struct OpenLibrary {
        QString path;
        bool isMiniaturized = false;
    };
    // In the stored order; the last one was frontmost. Paths that no longer
    // exist are left out.
    static QList<OpenLibrary> librariesToReopen();
    // Records the open libraries at quit, frontmost last.
    static void recordOpenLibraries(const QList<OpenLibrary> &libraries);
    static QVariantMap archiveDictionaryForLibrary(const OpenLibrary &library);

    // A search stub (.ztbook …): whether it is one, and the library and item it names.
    struct StubTarget {
        bool isStub = false; // the path has a stub extension: the program answers for it
        QString libraryPath; // empty when the stub leads nowhere
        QString oid;
    };
    static StubTarget resolveSearchStub(const QString &path);
    static bool isStubPath(const QString &path);

    // Errors whose text names a stub are swallowed.
    static bool shouldSwallowError(const QString &description);
    // The temporary copy that sharing makes is no recent document.
    static bool isSharingExportPath(const QString &path);
};
