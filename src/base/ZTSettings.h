#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>

#include <memory>

// The per-user settings store. Keys are spoken phrases and are used exactly as
// they stand; values are written as they are given (maps and arrays included).
//
// By default the store is an INI file in the XDG config folder. Tests and the
// command line can point it elsewhere: setFilePath(), or the environment
// variable ZETTARY_SETTINGS_FILE.
class ZTSettings {
public:
    static QSettings &store();
    static void setFilePath(const QString &path);
    static QString filePath();

    static QVariant value(const QString &key, const QVariant &fallback = {});
    static void setValue(const QString &key, const QVariant &value);
    static void remove(const QString &key);
    static bool contains(const QString &key);
    static void synchronize();

private:
    static std::unique_ptr<QSettings> &instance();
};

namespace ZTSettingsKey {
inline const QString FirstRun = QStringLiteral("First Run Key");
inline const QString StatisticsDisplay = QStringLiteral("Statistics Display Key");
inline const QString CoverImagesState = QStringLiteral("Cover Images State Key");
inline const QString DefaultLocale = QStringLiteral("Default Locale Key");
inline const QString DefaultCurrency = QStringLiteral("Default Currency Key");
inline const QString LocaleBooksArray = QStringLiteral("Locale Books Array");
inline const QString LocaleMusicArray = QStringLiteral("Locale Music Array");
inline const QString LocaleMoviesArray = QStringLiteral("Locale Movies Array");
inline const QString LocaleComicsArray = QStringLiteral("Locale Comics Array");
inline const QString LOCState = QStringLiteral("LOC State Key");
inline const QString SpeakTitlesState = QStringLiteral("Speak Titles State Key");
inline const QString AssociateTag = QStringLiteral("Associate Tag Key");
inline const QString SpotlightView = QStringLiteral("Spotlight View Key");
inline const QString LibraryManagerWindow = QStringLiteral("Library Manager Window Key");
inline const QString LibraryManagerWindowSegment = QStringLiteral("Library Manager Window Segment Key");
inline const QString OpenLibraries = QStringLiteral("Open Libraries Key");
inline const QString SharedLibraries = QStringLiteral("Shared Libraries Key");
inline const QString SharingState = QStringLiteral("Sharing State Key");
inline const QString AllowSpotlight = QStringLiteral("Allow Spotlight Key");
// Keys of earlier versions, removed at every start.
inline const QString DefaultDetailLook = QStringLiteral("Default Detail Look Key");
inline const QString OpenDocuments = QStringLiteral("Open Documents Key");
inline const QString SharedDocuments = QStringLiteral("Shared Documents Key");
} // namespace ZTSettingsKey
