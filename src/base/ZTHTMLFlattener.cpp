#include "base/ZTHTMLFlattener.h"

#include "base/ZTHTMLEntities.h"

#include <QXmlStreamReader>

namespace {

// A streaming XML reader hands out the characters in front of a malformed
// reference before it fails; Qt's reader drops the whole run instead. This
// reads the run up to the fault the way a streaming reader would have:
// plain characters, numeric references and the five XML names, stopping at
// markup or at the first reference that is not well-formed.
QString characterDataBeforeError(QStringView raw)
{
    static const QHash<QString, QChar> s_xmlNames = {
        {QStringLiteral("amp"), QLatin1Char('&')},   {QStringLiteral("lt"), QLatin1Char('<')},
        {QStringLiteral("gt"), QLatin1Char('>')},    {QStringLiteral("quot"), QLatin1Char('"')},
        {QStringLiteral("apos"), QLatin1Char('\'')},
    };
    QString out;
    qsizetype at = 0;
    while (at < raw.size() && raw.at(at) != QLatin1Char('<')) {
        const char16_t c = raw.at(at).unicode();
        if (c != u'&') {
            // Control characters and non-characters are not XML: the reader
            // stops there.
            if ((c < 0x20 && c != u'\t' && c != u'\n' && c != u'\r') || c == 0xFFFE || c == 0xFFFF)
                break;
            out += raw.at(at++);
            continue;
        }
        const qsizetype semicolon = raw.indexOf(QLatin1Char(';'), at);
        if (semicolon < 0)
            break;
        const QStringView name = raw.mid(at + 1, semicolon - at - 1);
        bool ok = false;
        uint code = 0;
        if (name.startsWith(QLatin1String("#x")))
            code = name.mid(2).toUInt(&ok, 16);
        else if (name.startsWith(QLatin1Char('#')))
            code = name.mid(1).toUInt(&ok, 10);
        if (ok && code > 0 && code <= 0x10FFFF && !(code >= 0xD800 && code <= 0xDFFF)) {
            const char32_t character = code;
            out += QString::fromUcs4(&character, 1);
        } else if (s_xmlNames.contains(name.toString())) {
            out += s_xmlNames.value(name.toString());
        } else {
            break;
        }
        at = semicolon + 1;
    }
    return out;
}

} // namespace

const QHash<QString, QString> &ZTHTMLFlattener::entityDict()
{
    static const QHash<QString, QString> s_entityDict = [] {
        QHash<QString, QString> dict;
        for (const ZTHTMLEntity &e : ZTHTMLEntities::all()) {
            if (e.decodeCode != 0)
                dict.insert(QString::fromLatin1(e.name), QString::number(quint32(e.decodeCode)));
        }
        return dict;
    }();
    return s_entityDict;
}

QString ZTHTMLFlattener::convertEntitiesInString(const QString &text)
{
    if (text.isNull())
        return QString();
    m_resultString = QStringLiteral("");

    // The XML reader knows only numeric references and the five XML names, so
    // every "&name;" of the table is rewritten to its number first. One pass
    // gives what replacing row by row would: no rewrite can form a new name.
    const QHash<QString, QString> &dict = entityDict();
    QString converted;
    converted.reserve(text.size());
    qsizetype at = 0;
    while (at < text.size()) {
        const qsizetype amp = text.indexOf(QLatin1Char('&'), at);
        if (amp < 0) {
            converted += QStringView(text).mid(at);
            break;
        }
        converted += QStringView(text).mid(at, amp - at);
        // Names are at most eight letters; looking no further keeps a text
        // full of ampersands linear.
        qsizetype semicolon = amp + 1;
        while (semicolon < text.size() && semicolon - amp <= 9 && text.at(semicolon).isLetterOrNumber())
            ++semicolon;
        const auto code = semicolon < text.size() && text.at(semicolon) == QLatin1Char(';')
                              ? dict.constFind(text.mid(amp + 1, semicolon - amp - 1))
                              : dict.constEnd();
        if (code == dict.constEnd()) {
            converted += QLatin1Char('&');
            at = amp + 1;
            continue;
        }
        converted += QLatin1String("&#") + *code + QLatin1Char(';');
        at = semicolon + 1;
    }

    // The text goes through UTF-8 with lossy conversion, as the bytes an XML
    // reader would be handed.
    const QString document = QString::fromUtf8("<parsedString>" + converted.toUtf8() + "</parsedString>");
    QXmlStreamReader reader(document);
    // Where the last piece of markup ended, and what had been gathered by
    // then: the reader's offset is exact there, but not after a text run,
    // for which it has already read ahead.
    qint64 markupEnd = 0;
    QString gatheredAtMarkup = m_resultString;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::Invalid) {
            m_resultString =
                gatheredAtMarkup + characterDataBeforeError(QStringView(document).mid(markupEnd));
            break;
        }
        if (token == QXmlStreamReader::Characters)
            m_resultString += reader.text();
        if (token != QXmlStreamReader::Characters || reader.isCDATA()) {
            markupEnd = reader.characterOffset();
            gatheredAtMarkup = m_resultString;
        }
    }
    return QString(m_resultString);
}
