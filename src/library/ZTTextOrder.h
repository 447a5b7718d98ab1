#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

// The order people expect in lists: localised and blind to case (the C locale
// borrows English rules). One collator per thread, since building one costs
// far more than a comparison.
namespace ZTTextOrder {
int compare(const QString &a, const QString &b);
// A text's collation key: keys compare as byte strings (strcmp) exactly as
// their texts do under compare(). It holds no zero byte but its last.
QByteArray sortKey(const QString &text);
// The same key appended to `out` with its terminating zero; its length
// without the zero is returned. For many keys in one buffer.
qsizetype appendSortKey(const QString &text, QByteArray &out);
// Texts by the rule above; numbers, dates and booleans by value.
int compareValues(const QVariant &a, const QVariant &b);
bool isText(const QVariant &value);
} // namespace ZTTextOrder
