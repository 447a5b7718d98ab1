// Citation keys for the BibTeX export: "Knuth:ArtComp1968".
#include "model/ZTCodeFormatter.h"

#include "base/ZTStringExtras.h"

#include <QHash>

namespace {

// Letters that do not decompose into an ASCII letter and a mark.
QString spelledOut(QChar c)
{
    static const QHash<char16_t, QString> s_letters = {
        {0x00DF, QStringLiteral("ss")}, {0x00E6, QStringLiteral("ae")}, {0x00C6, QStringLiteral("AE")},
        {0x0153, QStringLiteral("oe")}, {0x0152, QStringLiteral("OE")}, {0x00F8, QStringLiteral("o")},
        {0x00D8, QStringLiteral("O")},  {0x0142, QStringLiteral("l")},  {0x0141, QStringLiteral("L")},
        {0x0111, QStringLiteral("d")},  {0x0110, QStringLiteral("D")},  {0x00F0, QStringLiteral("d")},
        {0x00D0, QStringLiteral("D")},  {0x00FE, QStringLiteral("th")}, {0x00DE, QStringLiteral("Th")},
        {0x0131, QStringLiteral("i")},
    };
    return s_letters.value(c.unicode());
}

QString authorPiece(const QString &name)
{
    qsizetype cut = name.indexOf(QLatin1Char(','));
    if (cut < 0)
        cut = name.indexOf(QLatin1Char(' '));
    return cut < 0 ? name : name.left(cut);
}

QString titlePiece(const QString &title)
{
    QString pieces;
    int count = 0;
    for (const QString &word : title.split(QLatin1Char(' '))) {
        const QString cleaned = ZTText::stringByTrimmingPunctuation(ZTText::stringByTrimmingWhitespace(word));
        if (cleaned.size() < 4)
            continue;
        pieces += ZTText::stringByTrimmingPunctuation(cleaned.left(4));
        if (++count == 4)
            break;
    }
    return pieces;
}

QString keyPiece(const QString &text)
{
    return ZTText::stringByStrippingPunctuation(ZTCodeFormatter::bibTexFormattedString(text));
}

} // namespace

QString ZTCodeFormatter::bibTexFormattedString(const QString &text)
{
    QString out;
    for (QChar c : text.normalized(QString::NormalizationForm_KD)) {
        const char16_t u = c.unicode();
        if ((u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9'))
            out.append(c);
        else
            out += spelledOut(c);
    }
    return out;
}

QString ZTCodeFormatter::bibTexCode(const QStringList &authors, const QString &titleWithoutLeadingArticle,
                                    std::optional<int> year)
{
    QString names;
    for (const QString &author : authors)
        names += authorPiece(author);
    QString key = keyPiece(names);
    if (!key.isEmpty())
        key += QLatin1Char(':');
    key += keyPiece(titlePiece(titleWithoutLeadingArticle));
    if (year)
        key += QString::number(*year);
    return key;
}
