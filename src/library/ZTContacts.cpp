#include "library/ZTContacts.h"

#include "base/ZTSettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <optional>

namespace {

// Files larger than this are not address books; they are refused unread.
constexpr qint64 s_maximumFileSize = 64 * 1024 * 1024;

// Undoes line folding: a line that starts with a blank or a tab continues the
// one before. Quoted-printable soft breaks ("=" at the end) join too.
QStringList unfoldedLines(const QByteArray &data)
{
    const QString text = QString::fromUtf8(data);
    QStringList lines;
    for (QString line : text.split(QLatin1Char('\n'))) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        if (!lines.isEmpty() && (line.startsWith(QLatin1Char(' ')) || line.startsWith(QLatin1Char('\t')))) {
            lines.last() += line.mid(1);
            continue;
        }
        if (!lines.isEmpty() && lines.last().endsWith(QLatin1Char('=')) &&
            lines.last().contains(QLatin1String("QUOTED-PRINTABLE"), Qt::CaseInsensitive)) {
            lines.last().chop(1);
            lines.last() += line;
            continue;
        }
        lines << line;
    }
    return lines;
}

QString unescaped(const QString &value)
{
    QString out;
    out.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value.at(i);
        if (c == QLatin1Char('\\') && i + 1 < value.size()) {
            const QChar n = value.at(++i);
            out += (n == QLatin1Char('n') || n == QLatin1Char('N')) ? QLatin1Char('\n') : n;
        } else {
            out += c;
        }
    }
    return out;
}

// Splits at separators that are not escaped.
QStringList splitValue(const QString &value, QChar separator)
{
    QStringList parts;
    QString current;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const QChar c = value.at(i);
        if (c == QLatin1Char('\\') && i + 1 < value.size()) {
            current += c;
            current += value.at(++i);
        } else if (c == separator) {
            parts << unescaped(current);
            current.clear();
        } else {
            current += c;
        }
    }
    parts << unescaped(current);
    return parts;
}

QString quotedPrintable(const QString &value)
{
    QByteArray out;
    const QByteArray in = value.toLatin1();
    for (qsizetype i = 0; i < in.size(); ++i) {
        if (in[i] == '=' && i + 2 < in.size()) {
            bool ok = false;
            const int byte = in.mid(i + 1, 2).toInt(&ok, 16);
            if (ok) {
                out += char(byte);
                i += 2;
                continue;
            }
        }
        out += in[i];
    }
    return QString::fromUtf8(out);
}

struct Property {
    QString name;
    QStringList parameters; // upper case, "TYPE=PREF" and bare "PREF" alike
    QString value;
};

std::optional<Property> parseLine(const QString &line)
{
    // The value starts after the first colon outside a quoted parameter.
    bool quoted = false;
    qsizetype colon = -1;
    for (qsizetype i = 0; i < line.size(); ++i) {
        if (line.at(i) == QLatin1Char('"'))
            quoted = !quoted;
        else if (line.at(i) == QLatin1Char(':') && !quoted) {
            colon = i;
            break;
        }
    }
    if (colon <= 0)
        return std::nullopt;
    Property p;
    QStringList head = line.left(colon).split(QLatin1Char(';'));
    p.name = head.takeFirst().toUpper();
    // A group prefix ("item1.EMAIL") does not change what the property is.
    if (const qsizetype dot = p.name.lastIndexOf(QLatin1Char('.')); dot >= 0)
        p.name = p.name.mid(dot + 1);
    for (const QString &parameter : head)
        p.parameters << parameter.toUpper();
    p.value = line.mid(colon + 1);
    if (p.parameters.join(QLatin1Char(';')).contains(QLatin1String("QUOTED-PRINTABLE")))
        p.value = quotedPrintable(p.value);
    return p;
}

bool isPreferred(const Property &p)
{
    for (const QString &parameter : p.parameters) {
        if (parameter == QLatin1String("PREF") || parameter.startsWith(QLatin1String("PREF=")))
            return true;
        if (parameter.startsWith(QLatin1String("TYPE=")) &&
            parameter.mid(5).split(QLatin1Char(',')).contains(QLatin1String("PREF")))
            return true;
    }
    return false;
}

} // namespace

QList<ZTContacts::Person> ZTContacts::parse(const QByteArray &data)
{
    QList<Person> people;
    std::optional<Person> card;
    bool emailIsPreferred = false;
    for (const QString &line : unfoldedLines(data)) {
        const std::optional<Property> p = parseLine(line.trimmed());
        if (!p)
            continue;
        if (p->name == QLatin1String("BEGIN") &&
            p->value.trimmed().compare(QLatin1String("VCARD"), Qt::CaseInsensitive) == 0) {
            card = Person();
            emailIsPreferred = false;
            continue;
        }
        if (!card)
            continue;
        if (p->name == QLatin1String("END")) {
            people << *card;
            card.reset();
        } else if (p->name == QLatin1String("N")) {
            const QStringList parts = splitValue(p->value, QLatin1Char(';'));
            card->lastName = parts.value(0).trimmed();
            card->firstName = parts.value(1).trimmed();
        } else if (p->name == QLatin1String("FN")) {
            card->formattedName = unescaped(p->value).trimmed();
        } else if (p->name == QLatin1String("EMAIL")) {
            // The first address stands as primary unless a later one is marked preferred.
            const QString address = unescaped(p->value).trimmed();
            const bool preferred = isPreferred(*p);
            if (!address.isEmpty() && (card->primaryEmail.isEmpty() || (preferred && !emailIsPreferred))) {
                card->primaryEmail = address;
                emailIsPreferred = preferred;
            }
        } else if (p->name == QLatin1String("CATEGORIES")) {
            for (const QString &category : splitValue(p->value, QLatin1Char(',')))
                if (!category.trimmed().isEmpty())
                    card->categories << category.trimmed();
        }
    }
    return people;
}

ZTContacts ZTContacts::fromPeople(const QList<Person> &people)
{
    QList<const Person *> chosen;
    for (const Person &person : people)
        if (person.categories.contains(ZTContactsKey::group, Qt::CaseInsensitive))
            chosen << &person;
    if (chosen.isEmpty())
        for (const Person &person : people)
            chosen << &person;

    ZTContacts contacts;
    QSet<QString> names;
    for (const Person *person : std::as_const(chosen)) {
        if (person->firstName.isEmpty() && person->lastName.isEmpty())
            continue;
        const QString name = (person->firstName + QLatin1Char(' ') + person->lastName).trimmed();
        if (!names.contains(name)) {
            names.insert(name);
            contacts.m_people << name;
        }
        // A later contact of the same name wins the address.
        if (!person->primaryEmail.isEmpty())
            contacts.m_emails.insert(name, person->primaryEmail);
    }
    return contacts;
}

ZTContacts ZTContacts::fromPath(const QString &path)
{
    if (path.isEmpty())
        return {};
    QStringList files;
    const QFileInfo info(path);
    if (info.isDir()) {
        for (const QFileInfo &entry :
             QDir(path).entryInfoList({QStringLiteral("*.vcf"), QStringLiteral("*.vcard")},
                                      QDir::Files | QDir::Readable, QDir::Name))
            files << entry.absoluteFilePath();
    } else if (info.isFile()) {
        files << info.absoluteFilePath();
    }
    QList<Person> people;
    for (const QString &file : std::as_const(files)) {
        QFile in(file);
        if (in.size() > s_maximumFileSize || !in.open(QIODevice::ReadOnly))
            continue;
        people << parse(in.readAll());
    }
    return fromPeople(people);
}

namespace {
ZTContacts &sharedInstance()
{
    static ZTContacts contacts = ZTContacts::fromPath(ZTSettings::value(ZTContactsKey::path).toString());
    return contacts;
}
} // namespace

const ZTContacts &ZTContacts::shared()
{
    return sharedInstance();
}

void ZTContacts::reload()
{
    sharedInstance() = fromPath(ZTSettings::value(ZTContactsKey::path).toString());
}
