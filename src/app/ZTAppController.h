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
        bool isStub = false;   // the path has a stub extension: the program answers for it
        QString libraryPath;   // empty when the stub leads nowhere
        QString oid;
    };
    static StubTarget resolveSearchStub(const QString &path);
    static bool isStubPath(const QString &path);

    // Errors whose text names a stub are swallowed.
    static bool shouldSwallowError(const QString &description);
    // The temporary copy that sharing makes is no recent document.
    static bool isSharingExportPath(const QString &path);
};

// The value transformers of the interface, as plain functions.
namespace ZTValueTransformers {
// "Yes"/"No"; nothing reads as "No". `ok` is false for a value without a boolean form.
QString yesNo(const QVariant &value, bool *ok = nullptr);
bool yesNoReverse(const QString &text);
QString stringArray(const QVariant &value);
// "0.pdf" … "5.pdf": the image of a rating limited to 0–5.
QString ratingImageName(const QVariant &value);
bool colorIsActive(const QVariant &value);
QString numberToString(const QVariant &value);
qlonglong stringToNumber(const QString &text);
} // namespace ZTValueTransformers

// Settings a library reads when it opens and whenever they change.
namespace ZTDocumentDefaults {
// "/ref=nosim/TAG" for a non-empty associate tag, else "".
QString associateTagURLSuffix();
// The stored default country; "UK" is read as "GB", nothing as "US".
QString defaultLocaleCode();
// The stored default currency; nothing reads as "USD".
QString defaultCurrencyCode();
bool shouldFetchCoverImages();
bool shouldSpeakTitles();
} // namespace ZTDocumentDefaults
