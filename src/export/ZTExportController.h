#pragma once

#include "export/ZTExportFormatController.h"

#include "model/ZTItem.h"
#include "model/ZTPatternDateFormatter.h"

#include <QTimeZone>
#include <QVariant>

#include <array>

// Delimited text: one header line of column titles, then one line per item.
class ZTExportController : public ZTExportFormatController {
public:
    enum class Format { Tab = 0, Comma = 1 };
    enum class MultipleAttributes { SeparateColumns = 0, SingleColumn = 1 };
    enum class LineBreak { LF = 0, CR = 1, CRLF = 2 };

    explicit ZTExportController(ZTDocument *document = nullptr);

    QString className() const override { return QStringLiteral("ZTExportController"); }
    QString title() const override;
    QString selectorString() const override { return QStringLiteral("exportItemsToFile"); }
    void reset() override;

    // The keys offered, in the order of the kind's export columns. The cover
    // is left out: a picture has no text form.
    QStringList attributes() const;
    QStringList attributesToExport() const { return m_attributesToExport; }
    void setAttributesToExport(const QStringList &keys) { m_attributesToExport = keys; }
    // The keys that would be written, in the order of attributes().
    QStringList selectedKeys() const;
    // Whether the chosen keys differ, as sets, from those remembered.
    static bool exportKeysDiffer(const QStringList &remembered, const QStringList &chosen);

    Format exportFormat() const { return m_format; }
    void setExportFormat(Format format) { m_format = format; }
    QChar delimiter() const { return m_format == Format::Comma ? QLatin1Char(',') : QLatin1Char('\t'); }
    MultipleAttributes exportMultipleAttributesOption() const { return m_multiple; }
    void setExportMultipleAttributesOption(MultipleAttributes option) { m_multiple = option; }
    LineBreak lineBreakOption() const { return m_lineBreak; }
    void setLineBreakOption(LineBreak option) { m_lineBreak = option; }
    QString lineBreak() const;
    QString multipleDelimiter() const { return m_multipleDelimiter; }
    void setMultipleDelimiter(const QString &text) { m_multipleDelimiter = text; }

    QString exportString() override;

    // A value as a cell: in double quotes, with its quotes doubled, when it
    // holds the delimiter, a double quote or a line end.
    static QString quotedValue(const QString &value, QChar delimiter);

private:
    struct Column {
        enum class Kind { Other, ToMany, Rating, Boolean, Float, Date };
        Kind kind = Kind::Other;
        ZTItem::KeyReader reader;
        ZTItem::KeyReader localeReader; // a price's currency
        ZTItem::KeyReader bitReader;    // a date's precision
        bool hasBitFlag = false;
        int toManyIndex = -1; // the column's place among the to-many ones
        static QVariant read(const ZTItem &item, const ZTItem::KeyReader &reader);
    };
    QString cellText(const ZTItem &item, const Column &column, const QVariant &value) const;

    QStringList m_attributesToExport;
    Format m_format = Format::Tab;
    MultipleAttributes m_multiple = MultipleAttributes::SeparateColumns;
    LineBreak m_lineBreak = LineBreak::LF;
    QString m_multipleDelimiter;
    std::array<ZTPatternDateFormatter, 3> m_dateFormatters; // by ZTDateBit value
    QTimeZone m_zone;
    QString m_yes, m_no;
};
