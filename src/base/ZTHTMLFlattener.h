#pragma once

#include <QHash>
#include <QString>

// Resolves the named entities of a text by rewriting them as numeric
// references and letting an XML reader gather the characters. The reader
// drops element tags and stops at the first markup that is not well-formed;
// what it gathered up to there is the answer, without an error.
//
// An instance is used for one call on one thread; the table is shared and
// read-only once built.
class ZTHTMLFlattener {
public:
    // Entity name to decimal code, both as text (240 rows).
    static const QHash<QString, QString> &entityDict();

    // A null text gives a null text.
    QString convertEntitiesInString(const QString &text);

    const QString &resultString() const { return m_resultString; }

private:
    QString m_resultString;
};
