#pragma once

#include <QCollator>
#include <QCollatorSortKey>
#include <QString>
#include <QVariant>

// The order people expect in lists: localised and blind to case. One collator
// per thread, since building one costs far more than a comparison.
namespace ZTTextOrder {
const QCollator &collator();
int compare(const QString &a, const QString &b);
QCollatorSortKey sortKey(const QString &text);
// Texts by the rule above; numbers, dates and booleans by value.
int compareValues(const QVariant &a, const QVariant &b);
bool isText(const QVariant &value);
} // namespace ZTTextOrder
