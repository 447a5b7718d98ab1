#pragma once

#include <QByteArray>
#include <QVariant>

// Property lists (binary and XML) through libplist. Maps become dictionaries,
// lists arrays, QDateTime dates, QByteArray data, and numbers integers or reals.
class ZTPropertyList {
public:
    enum class Format { Binary, Xml };

    // Returns an empty QByteArray when the value holds something a property list
    // cannot carry.
    static QByteArray serialize(const QVariant &value, Format format = Format::Binary);
    // Reads binary or XML. Bytes that do not parse give an invalid QVariant.
    static QVariant deserialize(const QByteArray &data);

    // The oid arrays on items are by far the most frequent blobs: a fast path
    // reads a binary array of ASCII/UTF-16 strings without building a plist tree,
    // falling back to the general reader for anything else. `ok` is false when the
    // bytes are not a property list holding an array of strings.
    static QStringList stringArray(const QByteArray &data, bool *ok = nullptr);
    static QByteArray serializeStringArray(const QStringList &strings);

    static bool writeFile(const QString &path, const QVariant &value, Format format);
    static QVariant readFile(const QString &path);
};
