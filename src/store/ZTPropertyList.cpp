#include "store/ZTPropertyList.h"

#include <QDateTime>
#include <QFile>
#include <QSaveFile>
#include <QTimeZone>

#include <plist/plist.h>

#include <cstring>

namespace {

// Property-list dates count seconds from 2001-01-01 UTC.
const qint64 s_referenceEpoch = 978307200;

plist_t toNode(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QVariantMap: {
        plist_t dict = plist_new_dict();
        const QVariantMap map = value.toMap();
        for (auto it = map.constBegin(); it != map.constEnd(); ++it) {
            plist_t child = toNode(it.value());
            if (!child) {
                plist_free(dict);
                return nullptr;
            }
            plist_dict_set_item(dict, it.key().toUtf8().constData(), child);
        }
        return dict;
    }
    case QMetaType::QVariantList:
    case QMetaType::QStringList: {
        plist_t array = plist_new_array();
        const QVariantList list = value.toList();
        for (const QVariant &v : list) {
            plist_t child = toNode(v);
            if (!child) {
                plist_free(array);
                return nullptr;
            }
            plist_array_append_item(array, child);
        }
        return array;
    }
    case QMetaType::QString:
        return plist_new_string(value.toString().toUtf8().constData());
    case QMetaType::Bool:
        return plist_new_bool(value.toBool() ? 1 : 0);
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::Long:
    case QMetaType::Short:
        return plist_new_uint(uint64_t(value.toLongLong()));
    case QMetaType::Double:
    case QMetaType::Float:
        return plist_new_real(value.toDouble());
    case QMetaType::QByteArray: {
        const QByteArray bytes = value.toByteArray();
        return plist_new_data(bytes.constData(), uint64_t(bytes.size()));
    }
    case QMetaType::QDateTime:
    case QMetaType::QDate: {
        QDateTime dt = value.typeId() == QMetaType::QDate ? value.toDate().startOfDay(Qt::UTC)
                                                          : value.toDateTime();
        qint64 ms = dt.toMSecsSinceEpoch() - s_referenceEpoch * 1000;
        qint64 sec = ms >= 0 ? ms / 1000 : -((-ms + 999) / 1000);
        qint64 usec = (ms - sec * 1000) * 1000;
        return plist_new_date(int32_t(sec), int32_t(usec));
    }
    default:
        if (value.canConvert<QString>())
            return plist_new_string(value.toString().toUtf8().constData());
        return nullptr;
    }
}

QVariant fromNode(plist_t node, int depth)
{
    if (!node || depth > 512)
        return {};
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        uint8_t b = 0;
        plist_get_bool_val(node, &b);
        return bool(b);
    }
    case PLIST_UINT: {
        uint64_t u = 0;
        plist_get_uint_val(node, &u);
        return qlonglong(u);
    }
    case PLIST_REAL: {
        double d = 0;
        plist_get_real_val(node, &d);
        return d;
    }
    case PLIST_STRING:
    case PLIST_KEY: {
        char *s = nullptr;
        if (plist_get_node_type(node) == PLIST_KEY)
            plist_get_key_val(node, &s);
        else
            plist_get_string_val(node, &s);
        QString text = s ? QString::fromUtf8(s) : QString();
        free(s);
        return text;
    }
    case PLIST_DATA: {
        char *d = nullptr;
        uint64_t len = 0;
        plist_get_data_val(node, &d, &len);
        QByteArray bytes(d, qsizetype(len));
        free(d);
        return bytes;
    }
    case PLIST_DATE: {
        int32_t sec = 0, usec = 0;
        plist_get_date_val(node, &sec, &usec);
        return QDateTime::fromMSecsSinceEpoch((qint64(sec) + s_referenceEpoch) * 1000 + usec / 1000,
                                              Qt::UTC);
    }
    case PLIST_ARRAY: {
        QVariantList list;
        const uint32_t n = plist_array_get_size(node);
        list.reserve(qsizetype(n));
        for (uint32_t i = 0; i < n; ++i)
            list.append(fromNode(plist_array_get_item(node, i), depth + 1));
        return list;
    }
    case PLIST_DICT: {
        QVariantMap map;
        plist_dict_iter iter = nullptr;
        plist_dict_new_iter(node, &iter);
        if (!iter)
            return map;
        for (;;) {
            char *key = nullptr;
            plist_t val = nullptr;
            plist_dict_next_item(node, iter, &key, &val);
            if (!key)
                break;
            map.insert(QString::fromUtf8(key), fromNode(val, depth + 1));
            free(key);
        }
        free(iter);
        return map;
    }
    case PLIST_UID: {
        uint64_t u = 0;
        plist_get_uid_val(node, &u);
        return qlonglong(u);
    }
    default:
        return {};
    }
}

// Reads a big-endian unsigned integer of `size` bytes.
bool readUInt(const uchar *p, int size, quint64 *out)
{
    quint64 v = 0;
    for (int i = 0; i < size; ++i)
        v = (v << 8) | p[i];
    *out = v;
    return true;
}

} // namespace

QByteArray ZTPropertyList::serialize(const QVariant &value, Format format)
{
    plist_t node = toNode(value);
    if (!node)
        return {};
    char *out = nullptr;
    uint32_t len = 0;
    if (format == Format::Binary)
        plist_to_bin(node, &out, &len);
    else
        plist_to_xml(node, &out, &len);
    QByteArray bytes(out, qsizetype(len));
    if (format == Format::Binary)
        plist_to_bin_free(out);
    else
        plist_to_xml_free(out);
    plist_free(node);
    return bytes;
}

QVariant ZTPropertyList::deserialize(const QByteArray &data)
{
    if (data.isEmpty() || data.size() > 0x7fffffff)
        return {};
    plist_t node = nullptr;
    if (data.startsWith("bplist00"))
        plist_from_bin(data.constData(), uint32_t(data.size()), &node);
    else if (data.trimmed().startsWith('<'))
        plist_from_xml(data.constData(), uint32_t(data.size()), &node);
    if (!node)
        return {};
    QVariant result = fromNode(node, 0);
    plist_free(node);
    return result;
}

QStringList ZTPropertyList::stringArray(const QByteArray &data, bool *ok)
{
    if (ok)
        *ok = false;
    // Binary property list: header "bplist00", objects, offset table, 32-byte trailer.
    const qsizetype n = data.size();
    if (n >= 8 + 32 && data.startsWith("bplist00")) {
        const uchar *b = reinterpret_cast<const uchar *>(data.constData());
        const uchar *trailer = b + n - 32;
        const int offsetSize = trailer[6];
        const int refSize = trailer[7];
        quint64 numObjects = 0, topObject = 0, tableOffset = 0;
        readUInt(trailer + 8, 8, &numObjects);
        readUInt(trailer + 16, 8, &topObject);
        readUInt(trailer + 24, 8, &tableOffset);
        bool sane = offsetSize >= 1 && offsetSize <= 8 && refSize >= 1 && refSize <= 8 && numObjects > 0 &&
                    numObjects < quint64(n) && topObject < numObjects && tableOffset < quint64(n) - 32 &&
                    tableOffset + numObjects * quint64(offsetSize) <= quint64(n) - 32;
        auto objectOffset = [&](quint64 index, quint64 *off) {
            readUInt(b + tableOffset + index * quint64(offsetSize), offsetSize, off);
            return *off >= 8 && *off < tableOffset;
        };
        // Reads a marker's length: the low nibble, or an integer object after it for 15.
        auto readLength = [&](quint64 pos, quint64 *len, quint64 *start) {
            const uchar marker = b[pos];
            if ((marker & 0x0f) != 0x0f) {
                *len = marker & 0x0f;
                *start = pos + 1;
                return true;
            }
            if (pos + 2 > tableOffset || (b[pos + 1] & 0xf0) != 0x10)
                return false;
            const int intSize = 1 << (b[pos + 1] & 0x0f);
            if (intSize > 8 || pos + 2 + quint64(intSize) > tableOffset)
                return false;
            readUInt(b + pos + 2, intSize, len);
            *start = pos + 2 + quint64(intSize);
            return true;
        };
        quint64 top = 0;
        if (sane && objectOffset(topObject, &top) && (b[top] & 0xf0) == 0xa0) {
            quint64 count = 0, refs = 0;
            if (readLength(top, &count, &refs) && refs + count * quint64(refSize) <= tableOffset) {
                QStringList result;
                result.reserve(qsizetype(count));
                bool good = true;
                for (quint64 i = 0; i < count && good; ++i) {
                    quint64 ref = 0, off = 0;
                    readUInt(b + refs + i * quint64(refSize), refSize, &ref);
                    if (ref >= numObjects || !objectOffset(ref, &off)) {
                        good = false;
                        break;
                    }
                    const uchar type = b[off] & 0xf0;
                    quint64 len = 0, start = 0;
                    if ((type != 0x50 && type != 0x60) || !readLength(off, &len, &start)) {
                        good = false;
                        break;
                    }
                    if (type == 0x50) {
                        if (start + len > tableOffset) {
                            good = false;
                            break;
                        }
                        result.append(QString::fromLatin1(reinterpret_cast<const char *>(b + start), qsizetype(len)));
                    } else {
                        if (len > (tableOffset - start) / 2) {
                            good = false;
                            break;
                        }
                        QString s(qsizetype(len), Qt::Uninitialized);
                        for (quint64 k = 0; k < len; ++k)
                            s[qsizetype(k)] = QChar(ushort((b[start + 2 * k] << 8) | b[start + 2 * k + 1]));
                        result.append(s);
                    }
                }
                if (good) {
                    if (ok)
                        *ok = true;
                    return result;
                }
            }
        }
    }
    const QVariant v = deserialize(data);
    if (v.typeId() != QMetaType::QVariantList)
        return {};
    QStringList result;
    for (const QVariant &item : v.toList()) {
        if (item.typeId() != QMetaType::QString)
            return {};
        result.append(item.toString());
    }
    if (ok)
        *ok = true;
    return result;
}

QByteArray ZTPropertyList::serializeStringArray(const QStringList &strings)
{
    return serialize(QVariant(strings), Format::Binary);
}

bool ZTPropertyList::writeFile(const QString &path, const QVariant &value, Format format)
{
    const QByteArray bytes = serialize(value, format);
    if (bytes.isEmpty())
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(bytes);
    return file.commit();
}

QVariant ZTPropertyList::readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    if (file.size() > 64 * 1024 * 1024)
        return {};
    return deserialize(file.readAll());
}
