#pragma once

#include <QList>
#include <QVariant>

#include <optional>
#include <type_traits>
#include <utility>

// Small functional helpers over lists, used where page readers gather values.
namespace ZTCollections {

// Applies fn to every element; a result that is empty (a null QVariant, a
// null QString, an empty std::optional) is left out.
template <typename T, typename Fn> auto map(const QList<T> &list, Fn fn)
{
    using R = std::decay_t<std::invoke_result_t<Fn, const T &>>;
    if constexpr (std::is_same_v<R, QVariant> || std::is_same_v<R, QString>) {
        QList<R> out;
        for (const T &item : list) {
            R r = fn(item);
            if (!r.isNull())
                out.append(std::move(r));
        }
        return out;
    } else if constexpr (requires(R r) {
                             r.has_value();
                             *r;
                         }) {
        QList<std::decay_t<decltype(*std::declval<R>())>> out;
        for (const T &item : list) {
            R r = fn(item);
            if (r.has_value())
                out.append(std::move(*r));
        }
        return out;
    } else {
        QList<R> out;
        out.reserve(list.size());
        for (const T &item : list)
            out.append(fn(item));
        return out;
    }
}

template <typename T, typename Fn> QList<T> filter(const QList<T> &list, Fn keep)
{
    QList<T> out;
    for (const T &item : list) {
        if (keep(item))
            out.append(item);
    }
    return out;
}

// fn gives a list per element; the lists are joined.
template <typename T, typename Fn> auto flatMap(const QList<T> &list, Fn fn)
{
    std::decay_t<std::invoke_result_t<Fn, const T &>> out;
    for (const T &item : list)
        out.append(fn(item));
    return out;
}

template <typename T, typename A, typename Fn> A reduce(const QList<T> &list, A initial, Fn fn)
{
    for (const T &item : list)
        initial = fn(std::move(initial), item);
    return initial;
}

// Nested lists anywhere in the list are replaced by their elements, at any depth.
inline QVariantList flatten(const QVariantList &list)
{
    QVariantList out;
    for (const QVariant &item : list) {
        if (item.typeId() == QMetaType::QVariantList || item.typeId() == QMetaType::QStringList)
            out.append(flatten(item.toList()));
        else
            out.append(item);
    }
    return out;
}

// Adds the value unless it is null, so callers can pass lookups straight in.
inline void addSafeObject(QVariantList &list, const QVariant &value)
{
    if (!value.isNull())
        list.append(value);
}

// Qt's containers are values: a copy is already independent at every level
// (shared data detaches on write), so a deep mutable copy is a plain copy.
inline QVariantMap deepMutableCopy(const QVariantMap &map)
{
    return map;
}
inline QVariantList deepMutableCopy(const QVariantList &list)
{
    return list;
}

} // namespace ZTCollections
