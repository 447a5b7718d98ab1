#include "library/ZTDocumentDefaults.h"

#include "base/ZTSettings.h"

QString ZTDocumentDefaults::associateTagURLSuffix()
{
    const QString tag = ZTSettings::value(ZTSettingsKey::AssociateTag).toString();
    return tag.isEmpty() ? QString() : QStringLiteral("/ref=nosim/%1").arg(tag);
}

QString ZTDocumentDefaults::defaultLocaleCode()
{
    const QString code = ZTSettings::value(ZTSettingsKey::DefaultLocale).toString();
    if (code.isEmpty())
        return QStringLiteral("US");
    // Older settings name Britain by its common abbreviation.
    return code == QLatin1String("UK") ? QStringLiteral("GB") : code;
}

QString ZTDocumentDefaults::defaultCurrencyCode()
{
    const QString code = ZTSettings::value(ZTSettingsKey::DefaultCurrency).toString();
    return code.isEmpty() ? QStringLiteral("USD") : code;
}

bool ZTDocumentDefaults::shouldFetchCoverImages()
{
    return ZTSettings::value(ZTSettingsKey::CoverImagesState).toInt() != 0;
}

bool ZTDocumentDefaults::shouldSpeakTitles()
{
    return ZTSettings::value(ZTSettingsKey::SpeakTitlesState).toBool();
}
