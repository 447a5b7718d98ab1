#include "app/ZTAppController.h"

#include "base/ZTSettings.h"
#include "store/ZTManagedObjectContext.h"
#include "store/ZTPropertyList.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace {
const QStringList s_stubExtensions{QStringLiteral(".ztbook"), QStringLiteral(".ztmusic"),
                                   QStringLiteral(".ztmovie"), QStringLiteral(".ztcomic")};
}

QVariantList ZTAppController::defaultLocaleRows(const QStringList &identifiers)
{
    QVariantList rows;
    for (const QString &identifier : identifiers)
        rows << QVariantMap{{QStringLiteral("locale"), identifier}, {QStringLiteral("activeFlag"), 1}};
    return rows;
}

QVariantMap ZTAppController::firstRunDefaults()
{
    auto amazon = [](const QString &kind) {
        QStringList ids;
        for (const char *country : {"US", "UK", "FR", "DE", "JP", "CA", "IT", "ES"})
            ids << QStringLiteral("%1_%2_Amazon").arg(kind, QLatin1String(country));
        return ids;
    };
    return {
        {ZTSettingsKey::FirstRun, true},
        {ZTSettingsKey::StatisticsDisplay, QVariantMap{{QStringLiteral("itemCount"), 1},
                                                       {QStringLiteral("subItemCount"), 1},
                                                       {QStringLiteral("totalValue"), 1},
                                                       {QStringLiteral("totalPaid"), 1}}},
        {ZTSettingsKey::CoverImagesState, 1},
        {ZTSettingsKey::DefaultLocale, QStringLiteral("US")},
        {ZTSettingsKey::DefaultCurrency, QStringLiteral("USD")},
        {ZTSettingsKey::LocaleBooksArray,
         defaultLocaleRows(amazon(QStringLiteral("Books")) << QStringLiteral("Books_US_LibraryOfCongress"))},
        {ZTSettingsKey::LocaleMusicArray, defaultLocaleRows(amazon(QStringLiteral("Music")))},
        {ZTSettingsKey::LocaleMoviesArray, defaultLocaleRows(amazon(QStringLiteral("Movies")))},
        {ZTSettingsKey::LocaleComicsArray,
         defaultLocaleRows({QStringLiteral("Comics_US_CBDB"), QStringLiteral("Comics_US_GCD")})},
    };
}

bool ZTAppController::isFirstRun()
{
    return !ZTSettings::value(ZTSettingsKey::FirstRun).toBool();
}

void ZTAppController::initializeDefaults()
{
    if (!isFirstRun())
        return;
    // The values are written, not registered as defaults: once there they stay,
    // whatever later versions would choose. The key itself stays false until
    // the first start has run its course.
    const QVariantMap defaults = firstRunDefaults();
    for (auto it = defaults.constBegin(); it != defaults.constEnd(); ++it)
        if (it.key() != ZTSettingsKey::FirstRun)
            ZTSettings::setValue(it.key(), it.value());
    ZTSettings::setValue(ZTSettingsKey::FirstRun, false);
    ZTSettings::synchronize();
}

void ZTAppController::processLegacyPreferences()
{
    for (const QString &key : {ZTSettingsKey::DefaultDetailLook, ZTSettingsKey::OpenDocuments,
                               ZTSettingsKey::SharedDocuments, ZTSettingsKey::AllowSpotlight})
        ZTSettings::remove(key);
    ZTSettings::synchronize();
}

void ZTAppController::ensureFirstRun()
{
    ZTSettings::setValue(ZTSettingsKey::FirstRun, true);
    ZTSettings::synchronize();
}

QString ZTAppController::stubCacheFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           QStringLiteral("/Metadata/Zettary");
}

void ZTAppController::cleanTemporaryFolders()
{
    // Pictures staged by a run that ended badly are discarded.
    QDir(ZTManagedObjectContext::stagingRootPath()).removeRecursively();
    const QString caches = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (!QFileInfo(caches).isDir())
        return;
    QDir(caches + QStringLiteral("/Zettary/Metadata")).removeRecursively();
    QDir stubs(stubCacheFolder());
    for (const QFileInfo &entry :
         stubs.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden)) {
        const QString documentFile = entry.absoluteFilePath() + QStringLiteral("/document.xml");
        if (!QFileInfo::exists(documentFile)) {
            if (entry.isDir())
                QDir(entry.absoluteFilePath()).removeRecursively();
            else
                QFile::remove(entry.absoluteFilePath());
            continue;
        }
        const QVariant document = ZTPropertyList::readFile(documentFile);
        // An unreadable description leaves the folder alone.
        if (document.typeId() != QMetaType::QVariantMap ||
            !document.toMap().contains(QStringLiteral("document")))
            continue;
        const QString library = document.toMap().value(QStringLiteral("document")).toString();
        if (!library.isEmpty() && QFileInfo::exists(library))
            continue;
        QDir(entry.absoluteFilePath()).removeRecursively();
    }
}

QList<ZTAppController::OpenLibrary> ZTAppController::librariesToReopen()
{
    QList<OpenLibrary> result;
    for (const QVariant &row : ZTSettings::value(ZTSettingsKey::OpenLibraries).toList()) {
        const QVariantMap map = row.toMap();
        const QString path = map.value(QStringLiteral("bookmarkData")).toString();
        if (path.isEmpty() || !QFileInfo(path).isDir())
            continue;
        result.append({path, map.value(QStringLiteral("isMiniaturized")).toBool()});
    }
    return result;
}

QVariantMap ZTAppController::archiveDictionaryForLibrary(const OpenLibrary &library)
{
    if (library.path.isEmpty())
        return {};
    return {{QStringLiteral("bookmarkData"), QFileInfo(library.path).absoluteFilePath()},
            {QStringLiteral("isMiniaturized"), library.isMiniaturized}};
}

void ZTAppController::recordOpenLibraries(const QList<OpenLibrary> &libraries)
{
    QVariantList rows;
    for (const OpenLibrary &library : libraries) {
        const QVariantMap row = archiveDictionaryForLibrary(library);
        if (!row.isEmpty())
            rows << row;
    }
    ZTSettings::setValue(ZTSettingsKey::OpenLibraries, rows);
    ZTSettings::synchronize();
}

bool ZTAppController::isStubPath(const QString &path)
{
    for (const QString &extension : s_stubExtensions)
        if (path.endsWith(extension))
            return true;
    return false;
}

ZTAppController::StubTarget ZTAppController::resolveSearchStub(const QString &path)
{
    StubTarget target;
    if (!isStubPath(path))
        return target;
    target.isStub = true;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > 1024 * 1024)
        return target;
    const QByteArray bytes = file.readAll();
    const QString text = QString::fromUtf8(bytes);
    if (text.toUtf8() != bytes)
        return target; // not UTF-8
    const int start = text.indexOf(QStringLiteral("<oid>"));
    const int end = start < 0 ? -1 : text.indexOf(QStringLiteral("</oid>"), start + 5);
    if (end < 0)
        return target;
    const QString oid = text.mid(start + 5, end - start - 5).trimmed();
    if (oid.isEmpty())
        return target;
    const QFileInfo documentFile(QFileInfo(path).absolutePath() + QStringLiteral("/document.xml"));
    if (!documentFile.isFile())
        return target;
    const QVariant document = ZTPropertyList::readFile(documentFile.absoluteFilePath());
    const QString library = document.toMap().value(QStringLiteral("document")).toString();
    if (library.isEmpty())
        return target;
    target.libraryPath = library;
    target.oid = oid;
    return target;
}

bool ZTAppController::shouldSwallowError(const QString &description)
{
    // A stub's extension is also the start of a library's (".ztmusic" in
    // ".ztmusiclib"); errors about libraries must still be shown.
    static const QRegularExpression stub(QStringLiteral("\\.zt(book|music|movie|comic)(?!lib)"));
    return stub.match(description).hasMatch();
}

bool ZTAppController::isSharingExportPath(const QString &path)
{
    return path.contains(QStringLiteral("ZettaryTempSharingExport"));
}
