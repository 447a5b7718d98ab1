#include "import/ZTImportConfiguration.h"

#include <QCoreApplication>

QList<ZTImportSource> ZTImportConfigurationController::importConfigurationArray(ZTMediaKind kind)
{
    // Only the delimited importer exists so far; the others are listed so the
    // sheet shows them, greyed out, in their final places.
    QList<ZTImportSource> sources{{QStringLiteral("Text file"), ZTImportSelector::file, true},
                                  {QStringLiteral("Zettary v.1"), ZTImportSelector::b1, false}};
    switch (kind) {
    case ZTMediaKind::Book:
        sources << ZTImportSource{QStringLiteral("Bookpedia"), ZTImportSelector::pd, false}
                << ZTImportSource{QStringLiteral("Books"), ZTImportSelector::bk, false}
                << ZTImportSource{QStringLiteral("Delicious Library"), ZTImportSelector::dl, false};
        break;
    case ZTMediaKind::Album:
        sources << ZTImportSource{QStringLiteral("CDpedia"), ZTImportSelector::pd, false}
                << ZTImportSource{QStringLiteral("Delicious Library"), ZTImportSelector::dl, false};
        break;
    case ZTMediaKind::Movie:
        sources << ZTImportSource{QStringLiteral("DVDpedia"), ZTImportSelector::pd, false}
                << ZTImportSource{QStringLiteral("Delicious Library"), ZTImportSelector::dl, false};
        break;
    case ZTMediaKind::Comic:
        break;
    }
    return sources;
}

QString ZTImportConfigurationController::windowTitle()
{
    return QCoreApplication::translate("Localizable", "Import Configuration");
}

bool ZTImportConfigurationController::select(int tag)
{
    const QList<ZTImportSource> all = sources();
    if (tag < 0 || tag >= all.size() || !all.at(tag).available)
        return false;
    m_choice = tag;
    return true;
}

QString ZTImportConfigurationController::selectorString() const
{
    const QList<ZTImportSource> all = sources();
    if (m_choice < 0 || m_choice >= all.size())
        return {};
    return all.at(m_choice).selectorString;
}
