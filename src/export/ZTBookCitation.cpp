#include "export/ZTBookCitation.h"

#include "model/ZTBook.h"
#include "model/ZTCodeFormatter.h"
#include "model/ZTItemText.h"

#include <QCoreApplication>

namespace {
const QString s_editor = QStringLiteral("ed.");
const QString s_translator = QStringLiteral("trans.");

QString tr(const char *text)
{
    return QCoreApplication::translate("Localizable", text);
}

struct People {
    QStringList names;
    QStringList roles;
};

// The book's people whose role passes the test, in order.
template <typename Test> People people(const ZTBook &book, Test test)
{
    People result;
    for (const QVariant &entry : book.authorRoleDicts()) {
        const QVariantMap map = entry.toMap();
        const QString name = map.value(QStringLiteral("name")).toString().trimmed();
        const QString role = map.value(QStringLiteral("role")).toString().trimmed();
        if (name.isEmpty() || !test(role))
            continue;
        result.names << name;
        result.roles << role;
    }
    return result;
}

QString text(const ZTBook &book, const char *key)
{
    return book.valueForKey(QLatin1String(key)).toString().trimmed();
}

// A corporate name loses an English leading article unless the book's locale
// has articles of its own, where the words may not be articles at all.
QString corporateName(const QString &name, const QString &localeCode)
{
    if (ZTItemText::leadingArticleArray().contains(localeCode.toUpper()))
        return name;
    for (const QString &article : ZTItemText::leadingArticleDictionary().value(QStringLiteral("EN")))
        if (name.startsWith(article, Qt::CaseInsensitive) && name.size() > article.size())
            return name.mid(article.size());
    return name;
}

QString yearText(const ZTBook &book)
{
    const QVariant year = book.year();
    return year.isValid() && !year.isNull() ? QString::number(year.toLongLong()) : QString();
}
} // namespace

QString ZTBookCitation::balancedBraces(const QString &text)
{
    // Keep a brace only when its partner is there too.
    QList<qsizetype> open;
    QList<bool> keep(text.size(), true);
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) == QLatin1Char('{')) {
            open << i;
        } else if (text.at(i) == QLatin1Char('}')) {
            if (open.isEmpty())
                keep[i] = false;
            else
                open.removeLast();
        }
    }
    for (qsizetype i : open)
        keep[i] = false;
    QString out;
    for (qsizetype i = 0; i < text.size(); ++i)
        if (keep.at(i))
            out += text.at(i);
    return out;
}

QString ZTBookCitation::bibtexKey(const ZTBook &book)
{
    const People authors = people(book, [](const QString &role) { return role != s_editor; });
    const QVariant year = book.year();
    std::optional<int> yearValue;
    if (year.isValid() && !year.isNull())
        yearValue = year.toInt();
    const QString key = ZTCodeFormatter::bibTexCode(ZTItemText::lastNameFirstArray(authors.names),
                                                    book.titleWithoutLeadingArticle(), yearValue);
    return key.isEmpty() ? QStringLiteral("book") : key;
}

QString ZTBookCitation::formatBibtex(const ZTBook &book)
{
    const People authors = people(book, [](const QString &role) { return role != s_editor; });
    const People editors = people(book, [](const QString &role) { return role == s_editor; });
    const QList<QPair<const char *, QString>> fields{
        {"title", text(book, "title")},
        {"author", authors.names.join(QLatin1String(" and "))},
        {"editor", editors.names.join(QLatin1String(" and "))},
        {"publisher", text(book, "publisher")},
        {"year", yearText(book)},
        {"series", text(book, "series")},
        {"volume", text(book, "volumeNumber")},
        {"edition", text(book, "editionNumber")},
        {"isbn", text(book, "isbn")},
        {"lccn", text(book, "lccn")},
        {"pages", text(book, "pages")},
        {"address", text(book, "placePublished")},
        {"keywords", book.keywords().join(QLatin1Char(','))},
    };
    QString record = QStringLiteral("@book {") + bibtexKey(book);
    for (const auto &[name, value] : fields) {
        if (value.isEmpty())
            continue;
        record += QStringLiteral(",\n   %1 = {%2}").arg(QLatin1String(name), balancedBraces(value));
    }
    record += QLatin1String("}\n");
    return record;
}

QString ZTBookCitation::mlaNames(const QStringList &names, const QStringList &roles,
                                 const QString &localeCode)
{
    QStringList shown;
    for (qsizetype i = 0; i < names.size(); ++i) {
        const bool corporate = roles.value(i) == ZTItemText::CorporateAuthorRole;
        if (corporate)
            shown << corporateName(names.at(i), localeCode);
        else
            shown << (i == 0 ? ZTItemText::lastNameFirst(names.at(i)) : names.at(i));
    }
    const QString andWord = tr("and");
    switch (shown.size()) {
    case 0:
        return {};
    case 1:
        return shown.first();
    case 2:
        return shown.at(0) + QLatin1String(", ") + andWord + QLatin1Char(' ') + shown.at(1);
    case 3:
        return shown.at(0) + QLatin1String(", ") + shown.at(1) + QLatin1String(", ") + andWord +
               QLatin1Char(' ') + shown.at(2);
    default:
        return shown.first() + QLatin1String(", et al. ");
    }
}

ZTStyledText ZTBookCitation::formatMLA(const ZTBook &book)
{
    // Every part ends in ". " so the next can follow; a part that already ends
    // a sentence is not given a second period.
    auto sentence = [](const QString &part) {
        if (part.endsWith(QLatin1String(". ")))
            return part;
        if (part.endsWith(QLatin1Char('.')))
            return part + QLatin1Char(' ');
        return part + QLatin1String(". ");
    };
    const QString locale = book.locale();
    ZTStyledText entry;
    const People authors = people(book, [](const QString &role) { return role != s_translator; });
    const QString names = mlaNames(authors.names, authors.roles, locale);
    if (!names.isEmpty())
        entry.append(sentence(names));
    const QString title = text(book, "title");
    if (!title.isEmpty()) {
        entry.append(title, true);
        entry.append(QStringLiteral(". "));
    }
    const People translators = people(book, [](const QString &role) { return role == s_translator; });
    if (!translators.names.isEmpty())
        entry.append(
            sentence(QStringLiteral("Trans. ") + mlaNames(translators.names, translators.roles, locale)));
    const QString series = text(book, "series");
    if (!series.isEmpty())
        entry.append(sentence(series));
    const QString edition = text(book, "editionNumber");
    if (!edition.isEmpty()) {
        const QString lower = edition.toLower();
        if (lower.endsWith(QLatin1String("ed.")))
            entry.append(edition + QLatin1Char(' '));
        else if (lower.endsWith(QLatin1String("ed")) || lower.endsWith(QLatin1String("edition")))
            entry.append(edition + QLatin1String(". "));
        else
            entry.append(edition + QLatin1String(" ed. "));
    }
    const QString volume = text(book, "volumeNumber");
    if (!volume.isEmpty())
        entry.append(sentence(QStringLiteral("Vol. ") + volume));
    // A missing publisher is "n.p." like a missing place.
    const QString place = text(book, "placePublished");
    const QString publisher = text(book, "publisher");
    const QString year = yearText(book);
    // "n.d." already ends the entry; a year is followed by the closing period.
    entry.append((place.isEmpty() ? QStringLiteral("n.p.") : place) + QLatin1String(": ") +
                 (publisher.isEmpty() ? QStringLiteral("n.p.") : publisher) + QLatin1String(", ") +
                 (year.isEmpty() ? QStringLiteral("n.d.") : year + QLatin1Char('.')));
    return entry;
}
