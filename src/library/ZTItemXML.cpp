#include "library/ZTItemXML.h"

#include "library/ZTAttributeTables.h"
#include "model/ZTDateBit.h"
#include "model/ZTDateUtil.h"
#include "model/ZTItem.h"

#include <QDateTime>
#include <QHash>

namespace {
const QString s_indent = QStringLiteral("     ");

// The element of one value of a list attribute, and the role map reader for
// lists whose people carry a role.
struct ListShape {
    const char *element;
    const char *roleDicts = nullptr;
};

const QHash<QString, ListShape> &listShapes()
{
    static const QHash<QString, ListShape> shapes{
        {QStringLiteral("keywords"), {"keyword"}},
        {QStringLiteral("authors"), {"author", "authorRoleDicts"}},
        {QStringLiteral("locSubjects"), {"locSubject"}},
        {QStringLiteral("artists"), {"artist"}},
        {QStringLiteral("tracks"), {"track"}},
        {QStringLiteral("directors"), {"director"}},
        {QStringLiteral("actors"), {"actor", "actorRoleDicts"}},
        {QStringLiteral("characters"), {"character"}},
        {QStringLiteral("stories"), {"story"}},
    };
    return shapes;
}

bool isXmlChar(char32_t c)
{
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0x10FFFF);
}

QString isoDate(const QDateTime &date, ZTDateBit bit)
{
    const QDate day = date.toLocalTime().date();
    if (!bit.knowsMonth())
        return QString::number(day.year());
    if (!bit.knowsDay())
        return QStringLiteral("%1-%2").arg(day.year()).arg(day.month(), 2, 10, QLatin1Char('0'));
    return day.toString(Qt::ISODate);
}

QString element(const QString &name, const QString &text, const QString &attributes = QString(),
                const QString &indent = s_indent)
{
    return indent + QLatin1Char('<') + name + attributes + QLatin1Char('>') + ZTItemXML::escape(text) +
           QLatin1String("</") + name + QLatin1String(">\n");
}

QString listElement(const ZTItem &item, const QString &key, const ListShape &shape)
{
    const QString inner = s_indent + s_indent;
    const QString child = QLatin1String(shape.element);
    QString body;
    // Comic artists and characters carry their roles too; they share a name
    // with the album's plain artists, so the reader is chosen by the item.
    QString roleDicts = shape.roleDicts ? QLatin1String(shape.roleDicts) : QString();
    if (item.mediaKind() == ZTMediaKind::Comic &&
        (key == QLatin1String("artists") || key == QLatin1String("characters")))
        roleDicts = key == QLatin1String("artists") ? QStringLiteral("artistRoleDicts")
                                                    : QStringLiteral("characterRoleDicts");
    if (!roleDicts.isEmpty()) {
        for (const QVariant &entry : item.valueForKey(roleDicts).toList()) {
            const QVariantMap map = entry.toMap();
            const QString role = map.value(QStringLiteral("role")).toString();
            const QString attributes =
                role.isEmpty() ? QString() : QStringLiteral(" role=\"%1\"").arg(ZTItemXML::escape(role));
            body += element(child, map.value(QStringLiteral("name")).toString(), attributes, inner);
        }
    } else {
        for (const QString &value : ZTItem::variantToStrings(item.valueForKey(key)))
            body += element(child, value, {}, inner);
    }
    if (body.isEmpty())
        return {};
    return s_indent + QLatin1Char('<') + key + QLatin1String(">\n") + body + s_indent + QLatin1String("</") +
           key + QLatin1String(">\n");
}
} // namespace

QString ZTItemXML::xmlTagNamePlural(ZTMediaKind kind)
{
    switch (kind) {
    case ZTMediaKind::Album:
        return QStringLiteral("albums");
    case ZTMediaKind::Movie:
        return QStringLiteral("movies");
    case ZTMediaKind::Comic:
        return QStringLiteral("comics");
    case ZTMediaKind::Book:
        break;
    }
    return QStringLiteral("books");
}

QString ZTItemXML::escape(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (const char32_t c : text.toUcs4()) {
        switch (c) {
        case U'&':
            out += QLatin1String("&amp;");
            break;
        case U'<':
            out += QLatin1String("&lt;");
            break;
        case U'>':
            out += QLatin1String("&gt;");
            break;
        case U'"':
            out += QLatin1String("&quot;");
            break;
        default:
            if (isXmlChar(c))
                out += QString::fromUcs4(&c, 1);
        }
    }
    return out;
}

QString ZTItemXML::xmlData(const ZTItem &item)
{
    const ZTAttributeTables &tables = ZTAttributeTables::forKind(item.mediaKind());
    QString data;
    for (const ZTExportColumn &column : tables.exportColumnDictionary()) {
        const QString &key = column.key;
        // The picture is not text; a movie's roles travel with its actors.
        if (key == QLatin1String("cover") ||
            (key == QLatin1String("roles") && item.mediaKind() == ZTMediaKind::Movie))
            continue;
        const ZTTypedAttribute *attribute = tables.exportableAttribute(key);
        if (attribute && attribute->toMany) {
            data += listElement(item, key, listShapes().value(key, {"value"}));
            continue;
        }
        const QVariant value = item.valueForKey(key);
        if (!value.isValid() || value.isNull())
            continue;
        const QString type = attribute ? attribute->type : QStringLiteral("string");
        if (type == QLatin1String("date")) {
            const QString bitKey = ZTDateUtil::bitFlagKeyForDateKey(key);
            const ZTDateBit bit = bitKey.isEmpty() ? ZTDateBit(ZTDateBit::FullDate)
                                                   : ZTDateBit::fromVariant(item.valueForKey(bitKey));
            data += element(key, isoDate(value.toDateTime(), bit));
        } else if (type == QLatin1String("boolean") || value.typeId() == QMetaType::Bool) {
            data += element(key, value.toBool() ? QStringLiteral("true") : QStringLiteral("false"));
        } else if (type == QLatin1String("float")) {
            const QString currency = item.valueForKey(key + QLatin1String("Locale")).toString();
            const QString attributes =
                currency.isEmpty() ? QString() : QStringLiteral(" currency=\"%1\"").arg(escape(currency));
            data += element(key, QString::number(value.toDouble(), 'f', 2), attributes);
        } else {
            const QString text = value.toString();
            if (!text.isEmpty())
                data += element(key, text);
        }
    }
    return data;
}

QString ZTItemXML::formatXML(const ZTItem &item)
{
    const QString tag = item.xmlTagNameSingular();
    return QLatin1Char('<') + tag + QLatin1String(">\n") + xmlData(item) + QLatin1String("</") + tag +
           QLatin1String(">\n");
}
