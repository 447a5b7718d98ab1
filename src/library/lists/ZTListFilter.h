#pragma once

#include "lists/ZTListTally.h"

#include <QStringList>
#include <QVariantMap>

class ZTDocument;
class ZTList;

// What the filter browser shows for a list: per cacheable attribute the
// sorted values, and under "[[[COUNT]]]" and "[[[OID]]]" the count (as a
// decimal string) and the oids of every value. `addressBookNames` seeds the
// "personName" completion list.
// The value caches need the counts alone: `withOids` false leaves out the
// "[[[OID]]]" table, the larger part of the work and of the memory.
namespace ZTListFilter {
QVariantMap filterDictionaryFromDocument(const ZTList &list, const ZTDocument &document,
                                         const QStringList &addressBookNames = {}, bool withOids = true);
// The same pass, before it is put in property-list form.
ZTListTally tallyFromDocument(const ZTList &list, const ZTDocument &document,
                              const QStringList &addressBookNames = {}, bool withOids = true);
} // namespace ZTListFilter
