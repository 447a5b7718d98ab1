#include "library/ZTTextOrder.h"

#include <QDateTime>
#include <QLocale>

#include <unicode/ucol.h>

#include <algorithm>
#include <limits>

namespace {

// An ICU collator set up as a case-insensitive QCollator would be: normalising,
// secondary strength (accents count, case does not), digits one by one, and
// punctuation and spaces as significant as letters.
class Collator {
public:
    Collator()
    {
        QLocale locale;
        if (locale.language() == QLocale::C)
            locale = QLocale(QLocale::English, QLocale::UnitedStates);
        UErrorCode status = U_ZERO_ERROR;
        m_collator = ucol_open(locale.name().toLatin1().constData(), &status);
        if (U_FAILURE(status)) {
            if (m_collator)
                ucol_close(m_collator);
            m_collator = nullptr;
            return;
        }
        ucol_setAttribute(m_collator, UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
        ucol_setAttribute(m_collator, UCOL_STRENGTH, UCOL_SECONDARY, &status);
        ucol_setAttribute(m_collator, UCOL_NUMERIC_COLLATION, UCOL_OFF, &status);
        ucol_setAttribute(m_collator, UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &status);
    }
    ~Collator()
    {
        if (m_collator)
            ucol_close(m_collator);
    }
    Collator(const Collator &) = delete;
    Collator &operator=(const Collator &) = delete;

    // Null when ICU has no collator at all; then texts compare by folded code points.
    const UCollator *get() const { return m_collator; }

private:
    UCollator *m_collator = nullptr;
};

const UCollator *collator()
{
    thread_local const Collator instance;
    return instance.get();
}

const UChar *units(const QString &text)
{
    return reinterpret_cast<const UChar *>(text.utf16());
}

} // namespace

int ZTTextOrder::compare(const QString &a, const QString &b)
{
    const UCollator *c = collator();
    if (!c) {
        const int r = a.compare(b, Qt::CaseInsensitive);
        return r < 0 ? -1 : (r > 0 ? 1 : 0);
    }
    switch (ucol_strcoll(c, units(a), int32_t(a.size()), units(b), int32_t(b.size()))) {
    case UCOL_LESS:
        return -1;
    case UCOL_GREATER:
        return 1;
    default:
        return 0;
    }
}

qsizetype ZTTextOrder::appendSortKey(const QString &text, QByteArray &out)
{
    const qsizetype at = out.size();
    const UCollator *c = collator();
    if (!c) {
        // UTF-8 orders as code points do; a text holds no zero character worth keeping.
        QByteArray folded = text.toCaseFolded().toUtf8();
        folded.replace('\0', QByteArray());
        out.append(folded);
        out.append('\0');
        return folded.size();
    }
    // Most keys are short: a guess of four bytes per character, then the exact size.
    int32_t room =
        int32_t(std::min<qsizetype>(text.size() * 4 + 16, std::numeric_limits<int32_t>::max() / 2));
    out.resize(at + room);
    int32_t length = ucol_getSortKey(c, units(text), int32_t(text.size()),
                                     reinterpret_cast<uint8_t *>(out.data() + at), room);
    if (length > room) {
        out.resize(at + length);
        length = ucol_getSortKey(c, units(text), int32_t(text.size()),
                                 reinterpret_cast<uint8_t *>(out.data() + at), length);
    }
    // The length counts the terminating zero.
    out.resize(at + std::max<int32_t>(length, 1));
    out[out.size() - 1] = '\0';
    return out.size() - at - 1;
}

QByteArray ZTTextOrder::sortKey(const QString &text)
{
    QByteArray key;
    appendSortKey(text, key);
    key.chop(1); // QByteArray keeps its own terminating zero
    return key;
}

bool ZTTextOrder::isText(const QVariant &value)
{
    return value.typeId() == QMetaType::QString || value.typeId() == QMetaType::QStringList;
}

int ZTTextOrder::compareValues(const QVariant &a, const QVariant &b)
{
    if (isText(a) && isText(b)) {
        const QString left =
            a.typeId() == QMetaType::QStringList ? a.toStringList().join(QLatin1Char(' ')) : a.toString();
        const QString right =
            b.typeId() == QMetaType::QStringList ? b.toStringList().join(QLatin1Char(' ')) : b.toString();
        return compare(left, right);
    }
    const QPartialOrdering order = QVariant::compare(a, b);
    if (order == QPartialOrdering::Less)
        return -1;
    if (order == QPartialOrdering::Greater)
        return 1;
    if (order == QPartialOrdering::Equivalent)
        return 0;
    // Values of unlike kinds: fall back to their text so the order stays total.
    return compare(a.toString(), b.toString());
}
