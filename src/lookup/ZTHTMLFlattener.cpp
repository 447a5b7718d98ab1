#include "lookup/ZTHTMLFlattener.h"

#include "lookup/ZTHTMLEntities.h"

#include <QXmlStreamReader>

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
    m_resultString.clear();

    // The XML reader knows only numeric references and the five XML names, so
    // every HTML name is rewritten to its number first.
    QString converted = text;
    const QHash<QString, QString> &dict = entityDict();
    for (auto it = dict.constBegin(); it != dict.constEnd(); ++it) {
        converted.replace(QLatin1Char('&') + it.key() + QLatin1Char(';'),
                          QLatin1String("&#") + it.value() + QLatin1Char(';'));
    }

    const QByteArray document = "<parsedString>" + converted.toUtf8() + "</parsedString>";
    QXmlStreamReader reader(document);
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::Invalid)
            break;
        if (token == QXmlStreamReader::Characters)
            m_resultString += reader.text();
    }
    return QString(m_resultString);
}
