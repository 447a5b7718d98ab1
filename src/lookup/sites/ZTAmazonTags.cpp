#include "lookup/sites/ZTAmazonTags.h"

#include <QHash>

namespace {

using Row = QHash<QString, QStringList>; // country code to labels

// Attribute key to its labels by country: US, GB, FR, DE, CA, JP, IT, ES.
struct LabelRow {
    const char *key;
    QStringList us, gb, fr, de, ca, jp, it, es;
};

const QList<LabelRow> &labelRows()
{
    static const QList<LabelRow> s_rows = {
        {"label",
         {"Label"},
         {"Label"},
         {"Label"},
         {"Label"},
         {"Label"},
         {"レーベル"},
         {"Etichetta"},
         {"Sello"}},
        {"format",
         {"Format"},
         {"Format"},
         {"Format"},
         {"Format"},
         {"Format"},
         {"形式"},
         {"Formato"},
         {"Formato"}},
        {"studio",
         {"Studio"},
         {"Studio"},
         {"Studio"},
         {"Studio"},
         {"Studio"},
         {"Studio"},
         {"Studio"},
         {"Estudio"}},
        {"aspectRatio",
         {"Aspect Ratio"},
         {"Aspect Ratio"},
         {"Rapport de forme"},
         {"Bildseitenformat"},
         {"Aspect Ratio"},
         {"Aspect Ratio"},
         {"Formato immagine"},
         {"Relación de aspecto"}},
        {"regionCode",
         {"Region"},
         {"Region"},
         {"Région"},
         {"Region"},
         {"Region"},
         {"Region"},
         {"Regione"},
         {"Región"}},
        {"numberOfDiscs",
         {"Number of Discs", "Number of discs"},
         {"Number of Discs", "Number of discs"},
         {"Nombre de disques"},
         {"Anzahl Disks", "Anzahl Disks/Tonträger"},
         {"Number of Discs", "Number of discs"},
         {"Number of Discs", "Number of discs"},
         {"Numero di dischi"},
         {"Número de discos"}},
        {"language",
         {"Language"},
         {"Language"},
         {"Langue"},
         {"Sprache"},
         {"Language"},
         {"Language"},
         {"Lingua"},
         {"Idioma"}},
        {"actors",
         {"Actors"},
         {"Actors"},
         {"Acteurs"},
         {"Darsteller"},
         {"Actors"},
         {"Actors"},
         {"Attori"},
         {"Actores"}},
        {"directors",
         {"Directors"},
         {"Directors"},
         {"Réalisateurs"},
         {"Regisseur(e)"},
         {"Directors"},
         {"Directors"},
         {"Regista"},
         {"Directores"}},
        {"publisher",
         {"Publisher"},
         {"Publisher"},
         {"Editeur"},
         {"Verlag"},
         {"Publisher"},
         {"Publisher"},
         {"Editore"},
         {"Editor"}},
        {"audienceRating",
         {"Rated"},
         {"Classification"},
         {"Rating"},
         {"FSK"},
         {"MPAA Rating"},
         {"Rating"},
         {"Rating"},
         {"Rating"}},
        {"duration",
         {"Run Time"},
         {"Run Time"},
         {"Durée"},
         {"Spieldauer"},
         {"Run Time"},
         {"Run Time"},
         {"Durata"},
         {"Duración"}},
        {"datePublished",
         {"DVD Release Date"},
         {"DVD Release Date"},
         {"Date de sortie du DVD"},
         {"Erscheinungstermin"},
         {"DVD Release Date"},
         {"DVD Release Date"},
         {"Data versione DVD"},
         {"Fecha de lanzamiento del DVD"}},
        {"series",
         {"Series"},
         {"Series"},
         {"Collection"},
         {"Series"},
         {"Series"},
         {"Series"},
         {"Collana"},
         {"Colección"}},
    };
    return s_rows;
}

const QStringList EnglishMonths = {"january", "february", "march",     "april",   "may",      "june",
                                   "july",    "august",   "september", "october", "november", "december"};
const QStringList ShortEnglishMonths = {"jan", "feb", "mar", "apr", "may", "jun",
                                        "jul", "aug", "sep", "oct", "nov", "dec"};
const QStringList GermanMonths = {"januar", "februar", "märz",      "april",   "mai",      "juni",
                                  "juli",   "august",  "september", "oktober", "november", "dezember"};
const QStringList FrenchMonths = {"janvier", "février", "mars",      "avril",   "mai",      "juin",
                                  "juillet", "août",    "septembre", "octobre", "novembre", "décembre"};
const QStringList ItalianMonths = {"gennaio", "febbraio", "marzo",     "aprile",  "maggio",   "giugno",
                                   "luglio",  "agosto",   "settembre", "ottobre", "novembre", "dicembre"};
const QStringList ShortItalianMonths = {"gen", "feb", "mar", "apr", "mag", "giu",
                                        "lug", "ago", "set", "ott", "nov", "dic"};
const QStringList SpanishMonths = {"enero", "febrero", "marzo",      "abril",   "mayo",      "junio",
                                   "julio", "agosto",  "septiembre", "octubre", "noviembre", "diciembre"};
const QStringList ShortSpanishMonths = {"ene", "feb", "mar",  "abr", "mayo", "jun",
                                        "jul", "ago", "sept", "oct", "nov",  "dic"};

} // namespace

const QList<ZTAmazonTags::Country> &ZTAmazonTags::countries()
{
    static const QList<Country> s_countries = {
        {"US", "US", "www.amazon.com", "USD"},   {"UK", "GB", "www.amazon.co.uk", "GBP"},
        {"DE", "DE", "www.amazon.de", "EUR"},    {"FR", "FR", "www.amazon.fr", "EUR"},
        {"JP", "JP", "www.amazon.co.jp", "JPY"}, {"CA", "CA", "www.amazon.ca", "CAD"},
        {"IT", "IT", "www.amazon.it", "EUR"},    {"ES", "ES", "www.amazon.es", "EUR"},
    };
    return s_countries;
}

const ZTAmazonTags::Country &ZTAmazonTags::country(const QString &suffix)
{
    static const Country s_none;
    for (const Country &c : countries()) {
        if (c.suffix == suffix)
            return c;
    }
    return s_none;
}

QStringList ZTAmazonTags::labels(const QString &countryCode, const QString &key)
{
    for (const LabelRow &row : labelRows()) {
        if (key != QLatin1String(row.key))
            continue;
        if (countryCode == QLatin1String("US"))
            return row.us;
        if (countryCode == QLatin1String("GB"))
            return row.gb;
        if (countryCode == QLatin1String("FR"))
            return row.fr;
        if (countryCode == QLatin1String("DE"))
            return row.de;
        if (countryCode == QLatin1String("CA"))
            return row.ca;
        if (countryCode == QLatin1String("JP"))
            return row.jp;
        if (countryCode == QLatin1String("IT"))
            return row.it;
        if (countryCode == QLatin1String("ES"))
            return row.es;
    }
    return {};
}

const QStringList &ZTAmazonTags::keyList()
{
    // "productDescription" has no labels and "language" stands twice; both
    // are harmless and kept so the order of the searches stays as it was.
    static const QStringList s_keys = {
        "label",         "format",   "studio",         "aspectRatio", "regionCode",
        "numberOfDiscs", "language", "directors",      "actors",      "productDescription",
        "publisher",     "language", "audienceRating", "duration",    "datePublished",
        "series"};
    return s_keys;
}

QString ZTAmazonTags::heading(const QString &countryCode)
{
    static const QHash<QString, QString> s_headings = {
        {"US", "Product Details"},        {"GB", "Product details"},       {"DE", "Produktinformation"},
        {"FR", "Détails sur le produit"}, {"CA", "Product Details"},       {"JP", "Product Details"},
        {"IT", "Dettagli prodotto"},      {"ES", "Detalles del producto"},
    };
    return s_headings.value(countryCode);
}

QStringList ZTAmazonTags::months(const QString &countryCode, ZTMediaKind kind)
{
    const bool movie = kind == ZTMediaKind::Movie;
    if (countryCode == QLatin1String("GB") || countryCode == QLatin1String("CA"))
        return ShortEnglishMonths;
    if (countryCode == QLatin1String("DE"))
        return GermanMonths;
    if (countryCode == QLatin1String("FR"))
        return FrenchMonths;
    if (countryCode == QLatin1String("IT"))
        return movie ? ShortItalianMonths : ItalianMonths;
    if (countryCode == QLatin1String("ES"))
        return movie ? ShortSpanishMonths : SpanishMonths;
    return EnglishMonths;
}
