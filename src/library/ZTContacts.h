#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

// The borrower names offered when lending, read from vCard files: the
// program's stand-in for an address book. A setting names one .vcf file or a
// folder of them. When some contacts belong to a group called "Zettary"
// (CATEGORIES), only those are offered, so a user can keep the list short.
class ZTContacts {
public:
    struct Person {
        QString firstName;
        QString lastName;
        QString formattedName;
        QString primaryEmail;
        QStringList categories;
    };

    // Reads the file or every .vcf file of the folder; unreadable files are skipped.
    static ZTContacts fromPath(const QString &path);
    // Parses vCard text (versions 2.1, 3.0 and 4.0); malformed cards are skipped.
    static QList<Person> parse(const QByteArray &data);
    static ZTContacts fromPeople(const QList<Person> &people);

    // The contacts the program uses: those of the path in the settings, read once.
    static const ZTContacts &shared();
    // Reads the settings again (after the user chose another file).
    static void reload();

    const QStringList &peopleFromAddressBook() const { return m_people; }
    const QHash<QString, QString> &peopleFromAddressBookEmailDict() const { return m_emails; }
    QString emailForName(const QString &name) const { return m_emails.value(name); }

private:
    QStringList m_people;
    QHash<QString, QString> m_emails;
};

namespace ZTContactsKey {
// The settings key of the vCard file or folder.
inline const QString path = QStringLiteral("Contacts File Key");
inline const QString group = QStringLiteral("Zettary");
} // namespace ZTContactsKey
