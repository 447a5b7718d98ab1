#pragma once

#include "model/ZTDateBit.h"
#include "model/ZTMediaKind.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

class ZTDocument;
class ZTItem;
struct ZTTypedAttribute;

// One file column of the import table.
struct ZTImportColumn {
    bool state = false; // imported or not
    QString fromColumn; // the title in the file's first line, quotes and all
    QString toColumn;   // the attribute's display title
    // For a to-many attribute the delimiter inside the cell (may be empty); for
    // a date the index into dateDicts(); otherwise unused.
    QVariant value;
};

// One data line: the cell under each file column, by the column's position;
// a null text where the line has no cell there (or an empty one).
using ZTImportRow = QStringList;
// The precision of each date a row gave, by attribute title. A row has few
// dates, so a short list beats a hash.
using ZTImportDateBits = QList<std::pair<QString, ZTDateBit>>;

struct ZTImportDateFormat {
    QString displayFormat; // translated, as the pop-up shows it
    QString dateFormat;
};

// Imports a delimited text file (tab or comma) into a library. Loading and
// parsing change nothing in the library; save() adds one item per row.
class ZTItemImportController {
public:
    explicit ZTItemImportController(ZTDocument *document = nullptr);

    void setDocument(ZTDocument *document);
    ZTDocument *document() const { return m_document; }
    ZTMediaKind mediaKind() const { return m_kind; }

    static const QList<ZTImportDateFormat> &dateDicts();
    // The kind's importable titles, sorted: the choices of "Into Column".
    const QStringList &toColumns() const { return m_toColumns; }

    // Drops the text, the columns, the rows and the path.
    void clear();
    // Reads the file as UTF-8 and parses it. A file that cannot be read, is
    // not UTF-8 or holds a NUL byte gives no text; fileProblem() says why.
    bool loadFile(const QString &path);
    bool loadData(const QByteArray &bytes);
    void setFileContents(const QString &text);
    QString path() const { return m_path; }
    const QString &fileContents() const { return m_fileContents; }
    // Builds the column table and the rows from the text.
    void parseFile();

    // Why this file must not be imported: unreadable, not UTF-8, a NUL byte,
    // no header, a header column without a title or named twice, or a line
    // with more filled cells than the header has titles. Empty when fine.
    QString fileProblem() const { return m_problem; }

    QChar delimiter() const { return m_delimiter; }
    QList<ZTImportColumn> &keyDicts() { return m_keyDicts; }
    const QList<ZTImportColumn> &keyDicts() const { return m_keyDicts; }
    const QList<ZTImportRow> &rows() const { return m_rows; }
    // A row as the column titles name its cells; for reading, not for speed.
    QHash<QString, QString> rowDictionary(const ZTImportRow &row) const;

    // Choosing an attribute switches the column on and forgets its value.
    void setToColumn(int column, const QString &title);
    // "Delimiter:" for a to-many attribute, "Date Format:" for a date, else empty.
    QString optionText(int column) const;
    const ZTTypedAttribute *attributeForTitle(const QString &title) const;

    enum class SaveResult { Imported, NoColumnsSelected, FileProblem, NoDocument };
    // Adds one item per row that yields any value, through the document's door
    // for new items; `added` receives how many.
    SaveResult save(int *added = nullptr);
    static QString noColumnsTitle();
    static QString noColumnsMessage();

    // One row as the item will take it: attribute titles to converted values.
    // Partial dates that had to be read with a shorter pattern report their
    // precision in `dateBits`.
    QVariantMap displayDictionaryForRow(const ZTImportRow &row, ZTImportDateBits *dateBits);

    // The conversions by attribute type ("integer", "float", "rating", "boolean").
    static QVariant convertedValue(const QString &type, const QString &text);
    // NSString's integerValue: leading blanks, a sign, digits; 0 when none.
    static qint64 integerValue(const QString &text);
    // Reads a date with one of the eight patterns; a cell the full pattern
    // cannot read may still give a year and month, or a year, in the same order.
    static QDateTime parseDate(const QString &text, int formatIndex, ZTDateBit *bit);

private:
    // The attribute of each chosen column (null for the others); a date column
    // without a format is given the first.
    QList<const ZTTypedAttribute *> columnAttributes();
    QVariantMap displayDictionaryForRow(const ZTImportRow &row,
                                        const QList<const ZTTypedAttribute *> &attributes,
                                        ZTImportDateBits *dateBits) const;
    void validateTable(const QList<QStringList> &lines);
    // What every row of one save shares, worked out once.
    struct SaveContext {
        QString currency;
        QString lentOutLabel;
    };
    QVariantMap itemDictionary(const QVariantMap &display, const ZTImportDateBits &dateBits,
                               const SaveContext &shared) const;
    // Gives an item from a row marked lent out its loan, when the row did not.
    void applyLending(ZTItem *item) const;

    ZTDocument *m_document = nullptr;
    ZTMediaKind m_kind = ZTMediaKind::Book;
    QString m_path;
    QString m_fileContents;
    QString m_problem;
    QChar m_delimiter = QLatin1Char('\t');
    QList<ZTImportColumn> m_keyDicts;
    QList<ZTImportRow> m_rows;
    QStringList m_toColumns;
};
