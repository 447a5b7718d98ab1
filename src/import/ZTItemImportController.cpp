#include "import/ZTItemImportController.h"

#include "base/ZTStringExtras.h"
#include "import/ZTDelimitedText.h"
#include "import/ZTImportBatch.h"
#include "library/ZTAttributeTables.h"
#include "library/ZTDisplayDictionary.h"
#include "library/ZTDocument.h"
#include "lists/ZTList.h"
#include "model/ZTDateUtil.h"
#include "model/ZTItem.h"
#include "model/ZTPatternDateFormatter.h"
#include "store/ZTManagedObjectContext.h"

#include <QCoreApplication>
#include <QFile>
#include <QSet>
#include <QVarLengthArray>

#include <future>
#include <limits>
#include <vector>

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("Localizable", text);
}

// The lengths of the runs of decimal digits in text.
QList<int> digitRunLengths(const QString &text)
{
    QList<int> runs;
    int run = 0;
    for (const QChar c : text) {
        if (c.isDigit()) {
            ++run;
        } else if (run) {
            runs << run;
            run = 0;
        }
    }
    if (run)
        runs << run;
    return runs;
}
} // namespace

ZTItemImportController::ZTItemImportController(ZTDocument *document)
{
    setDocument(document);
}

void ZTItemImportController::setDocument(ZTDocument *document)
{
    m_document = document;
    if (document)
        m_kind = document->mediaKind();
    m_toColumns = ZTAttributeTables::forKind(m_kind).importableTitles();
}

const QList<ZTImportDateFormat> &ZTItemImportController::dateDicts()
{
    static const QList<ZTImportDateFormat> formats = [] {
        const char *pairs[][2] = {{"MM/DD/YYYY", "MM/dd/yyyy"}, {"DD/MM/YYYY", "dd/MM/yyyy"},
                                  {"YYYY/MM/DD", "yyyy/MM/dd"}, {"YYYY/DD/MM", "yyyy/dd/MM"},
                                  {"MM-DD-YYYY", "MM-dd-yyyy"}, {"DD-MM-YYYY", "dd-MM-yyyy"},
                                  {"YYYY-MM-DD", "yyyy-MM-dd"}, {"YYYY-DD-MM", "yyyy-dd-MM"}};
        QList<ZTImportDateFormat> list;
        for (const auto &pair : pairs)
            list.append({tr(pair[0]), QLatin1String(pair[1])});
        return list;
    }();
    return formats;
}

void ZTItemImportController::clear()
{
    m_path.clear();
    m_fileContents = QString();
    m_problem.clear();
    m_delimiter = QLatin1Char('\t');
    m_keyDicts.clear();
    m_rows.clear();
}

bool ZTItemImportController::loadFile(const QString &path)
{
    clear();
    m_path = path;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_problem =
            QCoreApplication::translate("Import", "cannot read \"%1\": %2").arg(path, file.errorString());
        return false;
    }
    const QByteArray bytes = file.readAll();
    const QString keptPath = m_path;
    const bool ok = loadData(bytes);
    m_path = keptPath;
    return ok;
}

bool ZTItemImportController::loadData(const QByteArray &bytes)
{
    clear();
    QString text;
    QString problem;
    if (!ZTDelimitedText::decode(bytes, &text, &problem)) {
        // No text: the table stays empty.
        m_problem = problem;
        return false;
    }
    setFileContents(text);
    return m_problem.isEmpty();
}

void ZTItemImportController::setFileContents(const QString &text)
{
    m_fileContents = text;
    parseFile();
}

void ZTItemImportController::parseFile()
{
    if (m_fileContents.isNull() || !ZTText::containsNonWhitespace(m_fileContents)) {
        m_problem = QCoreApplication::translate("Import", "the file holds no text");
        return;
    }
    m_keyDicts.clear();
    m_rows.clear();
    m_problem.clear();
    const QString normalized = ZTDelimitedText::normalizeLineEnds(m_fileContents);
    m_delimiter = ZTDelimitedText::guessDelimiter(normalized);
    const QList<QStringList> lines = ZTDelimitedText::split(normalized, m_delimiter);
    if (lines.isEmpty())
        return;

    const QString isbn = ZTAttributeTables::localizedLabel(QStringLiteral("ISBN"));
    for (const QString &title : lines.first()) {
        ZTImportColumn column;
        column.fromColumn = title;
        column.toColumn = isbn;
        // A plain substring test either way: a column called "Date" takes the
        // first attribute title that holds that word.
        const QString lower = title.toLower();
        for (const QString &candidate : std::as_const(m_toColumns)) {
            const QString candidateLower = candidate.toLower();
            if (candidateLower == lower || candidateLower.contains(lower) || lower.contains(candidateLower)) {
                column.toColumn = candidate;
                column.state = true;
                break;
            }
        }
        m_keyDicts.append(column);
    }

    const QStringList &titles = lines.first();
    m_rows.reserve(lines.size() - 1);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QStringList &cells = lines.at(i);
        const qsizetype count = std::min(cells.size(), titles.size());
        ZTImportRow row(count);
        bool any = false;
        for (qsizetype c = 0; c < count; ++c) {
            row[c] = ZTDelimitedText::cleanCell(cells.at(c));
            any = any || !row[c].isNull();
        }
        if (any)
            m_rows.append(row);
    }
    validateTable(lines);
}

void ZTItemImportController::validateTable(const QList<QStringList> &lines)
{
    const QStringList &titles = lines.first();
    bool anyTitle = false;
    for (const QString &title : titles)
        anyTitle = anyTitle || !title.trimmed().isEmpty();
    if (!anyTitle) {
        m_problem = QCoreApplication::translate("Import", "the first line names no columns");
        return;
    }
    QSet<QString> seen;
    for (qsizetype c = 0; c < titles.size(); ++c) {
        if (titles.at(c).trimmed().isEmpty()) {
            m_problem =
                QCoreApplication::translate("Import", "column %1 of the first line has no title").arg(c + 1);
            return;
        }
        if (seen.contains(titles.at(c))) {
            m_problem = QCoreApplication::translate("Import", "the first line names the column %1 twice")
                            .arg(titles.at(c));
            return;
        }
        seen.insert(titles.at(c));
    }
    // Cells past the last title would be lost without a word; empty ones (a
    // trailing delimiter) lose nothing.
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QStringList &cells = lines.at(i);
        for (qsizetype c = titles.size(); c < cells.size(); ++c) {
            if (!ZTDelimitedText::cleanCell(cells.at(c)).isNull()) {
                m_problem = QCoreApplication::translate(
                                "Import", "line %1 has %2 cells but the first line names %3 columns")
                                .arg(i + 1)
                                .arg(cells.size())
                                .arg(titles.size());
                return;
            }
        }
    }
}

const ZTTypedAttribute *ZTItemImportController::attributeForTitle(const QString &title) const
{
    return ZTAttributeTables::forKind(m_kind).importableAttribute(title);
}

void ZTItemImportController::setToColumn(int column, const QString &title)
{
    if (column < 0 || column >= m_keyDicts.size())
        return;
    ZTImportColumn &record = m_keyDicts[column];
    record.toColumn = title;
    record.value = QVariant();
    record.state = true;
}

QString ZTItemImportController::optionText(int column) const
{
    if (column < 0 || column >= m_keyDicts.size())
        return {};
    const ZTTypedAttribute *attribute = attributeForTitle(m_keyDicts.at(column).toColumn);
    if (!attribute)
        return {};
    if (attribute->toMany)
        return tr("Delimiter:");
    if (attribute->type == QLatin1String("date"))
        return tr("Date Format:");
    return {};
}

QString ZTItemImportController::noColumnsTitle()
{
    return tr("No Columns Selected.");
}

QString ZTItemImportController::noColumnsMessage()
{
    return tr("You must select at least one column to import, otherwise press Cancel.");
}

qint64 ZTItemImportController::integerValue(const QString &text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    bool negative = false;
    if (i < text.size() && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+'))) {
        negative = text.at(i) == QLatin1Char('-');
        ++i;
    }
    qint64 value = 0;
    constexpr qint64 limit = std::numeric_limits<qint64>::max();
    for (; i < text.size(); ++i) {
        const int digit = text.at(i).digitValue();
        if (digit < 0 || !text.at(i).isDigit())
            break;
        // Saturate rather than wrap: a huge number reads as the largest one.
        value = value > (limit - digit) / 10 ? limit : value * 10 + digit;
    }
    return negative ? -value : value;
}

QVariant ZTItemImportController::convertedValue(const QString &type, const QString &text)
{
    if (type == QLatin1String("integer"))
        return integerValue(text);
    if (type == QLatin1String("float")) {
        // Deliberately simple: all the digits, and two decimals when the text
        // has a point at all. Signs and other separators are dropped.
        double number = 0;
        for (const QChar c : text)
            if (c.isDigit() && c.digitValue() >= 0)
                number = number * 10 + c.digitValue();
        if (text.contains(QLatin1Char('.')))
            number /= 100;
        return number;
    }
    if (type == QLatin1String("rating")) {
        const qint64 rating = integerValue(text);
        return rating < 0 || rating >= 6 ? 0 : rating;
    }
    if (type == QLatin1String("boolean")) {
        const QString lower = text.toLower();
        if (lower == tr("Yes").toLower() || lower == tr("Y").toLower())
            return 1;
        if (lower == tr("No").toLower() || lower == tr("N").toLower())
            return 0;
        return integerValue(text);
    }
    return text;
}

QDateTime ZTItemImportController::parseDate(const QString &text, int formatIndex, ZTDateBit *bit)
{
    const QList<ZTImportDateFormat> &formats = dateDicts();
    if (formatIndex < 0 || formatIndex >= formats.size())
        formatIndex = 0;
    // The formatters are made once: an import reads the same few patterns for
    // every row.
    static const QList<ZTPatternDateFormatter> fullFormatters = [&formats] {
        QList<ZTPatternDateFormatter> list;
        for (const ZTImportDateFormat &format : formats)
            list.append(ZTPatternDateFormatter(format.dateFormat));
        return list;
    }();
    static const ZTPatternDateFormatter yearMonth(QStringLiteral("yyyy/MM"));
    static const ZTPatternDateFormatter monthYear(QStringLiteral("MM/yyyy"));
    static const ZTPatternDateFormatter yearOnly(QStringLiteral("yyyy"));
    const QString &pattern = formats.at(formatIndex).dateFormat;
    *bit = ZTDateBit::FullDate;
    const QDateTime full = fullFormatters.at(formatIndex).dateFromString(text);
    if (full.isValid())
        return full;
    // Partial dates, as the export writes them for an item that knows only the
    // month or the year: the year must be written in full so that a stray
    // number is not taken for one.
    const QList<int> runs = digitRunLengths(text);
    const bool yearFirst = pattern.startsWith(QLatin1Char('y'));
    if (runs.size() == 2 && runs.at(yearFirst ? 0 : 1) == 4) {
        const QDateTime date = (yearFirst ? yearMonth : monthYear).dateFromString(text);
        if (date.isValid()) {
            *bit = ZTDateBit::YearMonth;
            return date;
        }
    }
    if (runs.size() == 1 && runs.first() == 4) {
        const QDateTime date = yearOnly.dateFromString(text);
        if (date.isValid()) {
            *bit = ZTDateBit::Year;
            return date;
        }
    }
    return {};
}

QHash<QString, QString> ZTItemImportController::rowDictionary(const ZTImportRow &row) const
{
    QHash<QString, QString> dictionary;
    for (qsizetype c = 0; c < row.size() && c < m_keyDicts.size(); ++c)
        if (!row[c].isNull())
            dictionary.insert(m_keyDicts[c].fromColumn, row[c]);
    return dictionary;
}

QVariantMap ZTItemImportController::displayDictionaryForRow(const ZTImportRow &row,
                                                            ZTImportDateBits *dateBits)
{
    // The attribute of each column is looked up once per row, not per value.
    const QList<const ZTTypedAttribute *> attributes = columnAttributes();
    return displayDictionaryForRow(row, attributes, dateBits);
}

QList<const ZTTypedAttribute *> ZTItemImportController::columnAttributes()
{
    QList<const ZTTypedAttribute *> attributes;
    attributes.reserve(m_keyDicts.size());
    for (ZTImportColumn &column : m_keyDicts) {
        const ZTTypedAttribute *attribute = column.state ? attributeForTitle(column.toColumn) : nullptr;
        // A date column without a chosen format reads with the first one, and
        // says so from then on.
        if (attribute && !attribute->toMany && attribute->type == QLatin1String("date") &&
            (!column.value.isValid() || column.value.toString().isEmpty()))
            column.value = 0;
        attributes << attribute;
    }
    return attributes;
}

QVariantMap ZTItemImportController::displayDictionaryForRow(const ZTImportRow &row,
                                                            const QList<const ZTTypedAttribute *> &attributes,
                                                            ZTImportDateBits *dateBits) const
{
    QVariantMap display;
    // Columns whose text becomes a number or a flag, by title, the later of two
    // columns for one title replacing the earlier; a row has few of them.
    QVarLengthArray<std::pair<QString, const ZTTypedAttribute *>, 8> converted;
    for (qsizetype i = 0; i < m_keyDicts.size(); ++i) {
        const ZTImportColumn &column = m_keyDicts[i];
        const ZTTypedAttribute *attribute = attributes.at(i);
        if (!column.state || !attribute)
            continue;
        if (i >= row.size() || row[i].isNull())
            continue;
        const QString *cell = &row[i];
        if (attribute->toMany) {
            QStringList values = display.value(column.toColumn).toStringList();
            const QString delimiter = column.value.toString();
            if (delimiter.isEmpty())
                values << *cell;
            else
                values << cell->split(delimiter);
            display.insert(column.toColumn, values);
        } else if (attribute->type == QLatin1String("date")) {
            ZTDateBit bit;
            const QDateTime date = parseDate(*cell, column.value.toInt(), &bit);
            if (date.isValid()) {
                display.insert(column.toColumn, date);
                auto known = std::find_if(dateBits->begin(), dateBits->end(),
                                          [&](const auto &entry) { return entry.first == column.toColumn; });
                if (known == dateBits->end())
                    dateBits->append({column.toColumn, bit});
                else
                    known->second = bit;
            }
        } else {
            display.insert(column.toColumn, *cell);
            if (attribute->type != QLatin1String("string")) {
                auto known = std::find_if(converted.begin(), converted.end(),
                                          [&](const auto &entry) { return entry.first == column.toColumn; });
                if (known == converted.end())
                    converted.append({column.toColumn, attribute});
                else
                    known->second = attribute;
            }
        }
    }
    // Converted once all columns are in: of two columns naming one attribute
    // the later wins.
    for (const auto &[title, attribute] : converted)
        display.insert(title, convertedValue(attribute->type, display.value(title).toString()));
    return display;
}

QVariantMap ZTItemImportController::itemDictionary(const QVariantMap &display,
                                                   const ZTImportDateBits &dateBits,
                                                   const SaveContext &shared) const
{
    QVariantMap dictionary =
        ZTDisplayDictionary::dictionaryFromDisplayDictionary(m_kind, display, shared.currency);
    const QHash<QString, QString> &keys = ZTDisplayDictionary::labelToKey(m_kind);
    for (const auto &[title, bit] : dateBits) {
        const QString bitKey = ZTDateUtil::bitFlagKeyForDateKey(keys.value(title));
        if (!bitKey.isEmpty())
            dictionary.insert(bitKey, bit.value());
    }
    dictionary = ZTDisplayDictionary::withHandleDictionaryDefaults(std::move(dictionary));
    // A loan is made only for a row that says it is lent out. The name is read
    // from a "Lent To" title, which the importable titles do not offer ("Lent
    // To Name" is one), so imported loans come without a name.
    if (display.value(shared.lentOutLabel).toLongLong() != 0) {
        const QList<QPair<QString, const char *>> lending{{QStringLiteral("lentToName"), "Lent To"},
                                                          {QStringLiteral("lentToEmail"), "Lent To Email"},
                                                          {QStringLiteral("dateLent"), "Date Lent"},
                                                          {QStringLiteral("dateDue"), "Date Due"}};
        for (const auto &[key, title] : lending) {
            const QVariant value = display.value(ZTAttributeTables::localizedLabel(QLatin1String(title)));
            if (value.isValid())
                dictionary.insert(key, value);
        }
    }
    return dictionary;
}

void ZTItemImportController::applyLending(ZTItem *item) const
{
    if (item->isLentOut())
        return;
    // Lent out with no detail at all: the loan still has to exist.
    ZTManagedObjectContext *context = item->managedObjectContext();
    if (ZTManagedObject *lending =
            context ? context->insertNewObject(QStringLiteral("ZTLendingContext")) : nullptr) {
        item->setToOneForKey(QStringLiteral("toLendingContext"), lending);
        item->updateOverdueStatus();
        m_document->updateSmartListsWithItem(item);
    }
}

ZTItemImportController::SaveResult ZTItemImportController::save(int *added)
{
    if (added)
        *added = 0;
    if (!m_problem.isEmpty())
        return SaveResult::FileProblem;
    if (!m_document)
        return SaveResult::NoDocument;
    bool anyColumn = false;
    for (const ZTImportColumn &column : std::as_const(m_keyDicts))
        anyColumn = anyColumn || column.state;
    if (!anyColumn)
        return SaveResult::NoColumnsSelected;

    const QList<const ZTTypedAttribute *> attributes = columnAttributes();
    const SaveContext shared{ZTDisplayDictionary::defaultCurrency(),
                             ZTAttributeTables::localizedLabel(QStringLiteral("Lent Out"))};
    // Turning rows into item maps needs nothing but the rows and the columns,
    // so a helper thread does it a batch ahead while this one adds the items
    // of the batch before: a large file comes in in little more than the time
    // the items take.
    struct ConvertedRow {
        QVariantMap dictionary;
        bool lentOut = false;
    };
    // Each batch also takes the maps of the one before it to free, so that
    // memory goes back on the thread that took it.
    auto convert = [this, &attributes, &shared](qsizetype begin, qsizetype end,
                                                std::vector<ConvertedRow> done) {
        done.clear();
        std::vector<ConvertedRow> converted;
        converted.reserve(size_t(end - begin));
        for (qsizetype i = begin; i < end; ++i) {
            ZTImportDateBits dateBits;
            const QVariantMap display = displayDictionaryForRow(m_rows.at(i), attributes, &dateBits);
            if (display.isEmpty())
                continue;
            converted.push_back({itemDictionary(display, dateBits, shared),
                                 display.value(shared.lentOutLabel).toLongLong() != 0});
        }
        return converted;
    };
    constexpr qsizetype batch = 512;
    const qsizetype rowCount = m_rows.size();
    auto startBatch = [&](qsizetype begin, std::vector<ConvertedRow> done) {
        const qsizetype end = std::min(rowCount, begin + batch);
        return rowCount > batch ? std::async(std::launch::async, convert, begin, end, std::move(done))
                                : std::async(std::launch::deferred, convert, begin, end, std::move(done));
    };

    int count = 0;
    // The main list takes every new item at its front; it is written out once.
    ZTList *mainList = m_document->mainList();
    if (mainList)
        mainList->beginUpdates();
    std::future<std::vector<ConvertedRow>> next = startBatch(0, {});
    std::vector<ConvertedRow> previous;
    for (qsizetype begin = 0; begin < rowCount; begin += batch) {
        std::vector<ConvertedRow> current = next.get();
        if (begin + batch < rowCount)
            next = startBatch(begin + batch, std::move(previous));
        for (const ConvertedRow &row : current) {
            ZTItem *item = m_document->addItemFromDictionary(row.dictionary);
            if (!item)
                continue;
            if (row.lentOut)
                applyLending(item);
            ++count;
        }
        previous = std::move(current);
    }
    if (mainList)
        mainList->endUpdates();
    if (count > 0)
        ZTImportBatch::finish(*m_document);
    if (added)
        *added = count;
    return SaveResult::Imported;
}
