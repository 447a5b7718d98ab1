#include "model/ZTItemText.h"

#include <QCoreApplication>
#include <QSet>

namespace ZTItemText {

namespace {

bool isTitleBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

// Reads the code point that ends at (back) or starts at (front) the given
// edge, so that punctuation outside the basic plane is recognised too.
char32_t codePointAtFront(const QString &text, qsizetype start, qsizetype *units)
{
    const QChar c = text.at(start);
    if (c.isHighSurrogate() && start + 1 < text.size() && text.at(start + 1).isLowSurrogate()) {
        *units = 2;
        return QChar::surrogateToUcs4(c, text.at(start + 1));
    }
    *units = 1;
    return c.unicode();
}

char32_t codePointAtBack(const QString &text, qsizetype end, qsizetype start, qsizetype *units)
{
    const QChar c = text.at(end - 1);
    if (c.isLowSurrogate() && end - 2 >= start && text.at(end - 2).isHighSurrogate()) {
        *units = 2;
        return QChar::surrogateToUcs4(text.at(end - 2), c);
    }
    *units = 1;
    return c.unicode();
}

QString trimPunctuation(const QString &text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    qsizetype units = 0;
    while (start < end && QChar::isPunct(codePointAtFront(text, start, &units)))
        start += units;
    while (end > start && QChar::isPunct(codePointAtBack(text, end, start, &units)))
        end -= units;
    return text.mid(start, end - start);
}

QString trimTitleBlanks(const QString &text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && isTitleBlank(text.at(start)))
        ++start;
    while (end > start && isTitleBlank(text.at(end - 1)))
        --end;
    return text.mid(start, end - start);
}

bool isBlank(const QString &text)
{
    return text.trimmed().isEmpty();
}

QString localizedRole(const QString &role)
{
    return QCoreApplication::translate("Localizable", role.toUtf8().constData());
}

} // namespace

const QMap<QString, QStringList> &leadingArticleDictionary()
{
    static const QMap<QString, QStringList> s_articles = {
        {QStringLiteral("EN"), {QStringLiteral("A "), QStringLiteral("An "), QStringLiteral("The ")}},
        {QStringLiteral("FR"),
         {QStringLiteral("Le "), QStringLiteral("La "), QStringLiteral("Les "), QStringLiteral("L'"),
          QStringLiteral("Un "), QStringLiteral("Une ")}},
        {QStringLiteral("DE"),
         {QStringLiteral("Das "), QStringLiteral("Dem "), QStringLiteral("Den "), QStringLiteral("Der "),
          QStringLiteral("Des "), QStringLiteral("Die "), QStringLiteral("Ein "), QStringLiteral("Eine "),
          QStringLiteral("Einem "), QStringLiteral("Einen "), QStringLiteral("Einer "),
          QStringLiteral("Eines ")}},
        {QStringLiteral("NL"),
         {QStringLiteral("De "), QStringLiteral("Een "), QStringLiteral("Eene "), QStringLiteral("Het ")}},
        {QStringLiteral("IT"),
         {QStringLiteral("Gli "), QStringLiteral("I "), QStringLiteral("Il "), QStringLiteral("L'"),
          QStringLiteral("La "), QStringLiteral("Le "), QStringLiteral("Lo "), QStringLiteral("Un "),
          QStringLiteral("Un'"), QStringLiteral("Una "), QStringLiteral("Uno ")}},
        {QStringLiteral("ES"),
         {QStringLiteral("El "), QStringLiteral("La "), QStringLiteral("Los "), QStringLiteral("Las "),
          QStringLiteral("Un "), QStringLiteral("Una "), QStringLiteral("Unos "), QStringLiteral("Unas ")}},
    };
    return s_articles;
}

const QStringList &leadingArticleArray()
{
    static const QStringList s_codes = {QStringLiteral("FR"), QStringLiteral("DE"), QStringLiteral("NL"),
                                        QStringLiteral("IT"), QStringLiteral("ES")};
    return s_codes;
}

QString titleWithoutLeadingArticle(const QString &title, const QString &localeCode)
{
    if (title.isNull() || title.size() < 2)
        return title;
    const QString trimmed = trimPunctuation(trimTitleBlanks(title));
    if (trimmed.size() <= 2)
        return trimmed;

    const QString english = QStringLiteral("EN");
    QStringList languages = {english};
    if (!localeCode.isEmpty() && localeCode != english)
        languages.append(localeCode);

    const QMap<QString, QStringList> &articles = leadingArticleDictionary();
    for (const QString &language : std::as_const(languages)) {
        const auto found = articles.constFind(language);
        if (found == articles.constEnd())
            continue;
        for (const QString &article : found.value()) {
            if (trimmed.startsWith(article, Qt::CaseInsensitive))
                return trimmed.mid(article.size());
        }
    }
    return trimmed;
}

QString lastNameFirst(const QString &name)
{
    const QString trimmed = name.trimmed();
    if (trimmed.size() < 3)
        return trimmed;
    for (qsizetype i = trimmed.size() - 1; i >= 0; --i) {
        if (trimmed.at(i).isSpace())
            return trimmed.mid(i + 1) + QStringLiteral(", ") + trimmed.left(i);
    }
    return trimmed;
}

QStringList lastNameFirstArray(const QStringList &names)
{
    QStringList result;
    result.reserve(names.size());
    for (const QString &name : names)
        result.append(lastNameFirst(name));
    return result;
}

AuthorArrays authorArrays(const QVariantList &authorRoleDicts)
{
    QList<NameAndRole> authors;
    authors.reserve(authorRoleDicts.size());
    for (const QVariant &entry : authorRoleDicts) {
        const QVariantMap map = entry.toMap();
        authors.append(
            {map.value(QStringLiteral("name")).toString(), map.value(QStringLiteral("role")).toString()});
    }
    return authorArrays(authors);
}

AuthorArrays authorArrays(const QList<NameAndRole> &authors)
{
    AuthorArrays arrays;
    arrays.authorsWithTypes.reserve(authors.size());
    arrays.authorsWithTypesByLastNameFirstName.reserve(authors.size());
    for (const NameAndRole &author : authors) {
        const QString name = author.name.trimmed();
        const QString role = author.role.trimmed();
        if (role == CorporateAuthorRole) {
            // A corporate body has no first and last name to swap, and its
            // role says nothing a reader needs to see.
            arrays.authorsWithTypes.append(name);
            arrays.authorsWithTypesByLastNameFirstName.append(name);
            continue;
        }
        QString plain = name;
        QString sorted = lastNameFirst(name);
        if (!role.isEmpty()) {
            const QString suffix = QStringLiteral(" (") + localizedRole(role) + QStringLiteral(")");
            plain += suffix;
            sorted += suffix;
        }
        arrays.authorsWithTypes.append(plain);
        arrays.authorsWithTypesByLastNameFirstName.append(sorted);
    }
    return arrays;
}

QStringList stringsForArray(const QVariantList &array, const QString &key)
{
    QStringList result;
    QSet<QString> seen;
    for (const QVariant &entry : array) {
        const QString value = entry.toMap().value(key).toString();
        if (isBlank(value) || seen.contains(value))
            continue;
        seen.insert(value);
        result.append(value);
    }
    return result;
}

namespace {
bool numberValue(const QVariant &value, qlonglong *number)
{
    if (!value.isValid() || value.isNull())
        return false;
    bool ok = false;
    *number = value.toLongLong(&ok);
    return ok;
}
} // namespace

QString issueNumberCountString(const QVariant &issueNumber, const QVariant &issueCount)
{
    qlonglong number = 0;
    qlonglong count = 0;
    const bool hasNumber = numberValue(issueNumber, &number);
    const bool hasCount = numberValue(issueCount, &count);
    const QString of = QCoreApplication::translate("Localizable", "of");
    if (hasNumber && hasCount)
        return QStringLiteral("%1 %2 %3").arg(QString::number(number), of, QString::number(count));
    if (hasNumber)
        return QString::number(number);
    if (hasCount)
        return QStringLiteral("- %1 %2").arg(of, QString::number(count));
    return {};
}

} // namespace ZTItemText
