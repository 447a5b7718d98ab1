#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

// Reading delimited text the way the importer does: line ends made "\r",
// tab or comma chosen from the first line, and a four-state walk that keeps
// quotes in the fields it collects. Every function is pure.
namespace ZTDelimitedText {

// The bytes as text. Fails, with a sentence saying why, for bytes that are not
// UTF-8 or that hold a NUL (no text file does). A leading byte-order mark is
// dropped.
bool decode(const QByteArray &bytes, QString *text, QString *problem);

// Every line separator ("\r\n", "\n", "\r", U+0085, U+2028, U+2029) becomes
// "\r", and a final "\r" is added, so each line ends with "\r" and only with it.
QString normalizeLineEnds(const QString &text);

// "\t" when the first line holds a tab, else "," when it holds a comma, else "\t".
QChar guessDelimiter(const QString &normalized);

// The fields of each line, as collected: quotes are still in place. The text
// must be normalised.
QList<QStringList> split(const QString &normalized, QChar delimiter);

// A cell as stored: empty, or just two quotes, gives a null string; a cell in
// quotes loses them and its doubled quotes are halved.
QString cleanCell(const QString &field);

} // namespace ZTDelimitedText
