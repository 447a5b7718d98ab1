#include "import/ZTDelimitedText.h"

#include <QCoreApplication>
#include <QStringDecoder>

bool ZTDelimitedText::decode(const QByteArray &bytes, QString *text, QString *problem)
{
    const qsizetype nul = bytes.indexOf('\0');
    if (nul >= 0) {
        *problem = QCoreApplication::translate(
                       "Import", "the file holds a NUL byte (at byte %1), so it is no text file")
                       .arg(nul);
        return false;
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString decoded = decoder.decode(bytes);
    if (decoder.hasError()) {
        *problem = QCoreApplication::translate("Import", "the file is not UTF-8 text");
        return false;
    }
    if (decoded.startsWith(QChar(0xFEFF)))
        decoded.remove(0, 1);
    *text = decoded;
    return true;
}

QString ZTDelimitedText::normalizeLineEnds(const QString &text)
{
    QString out;
    out.reserve(text.size() + 1);
    const QChar *p = text.constData();
    const QChar *end = p + text.size();
    const QChar *runStart = p;
    for (; p < end; ++p) {
        const char16_t c = p->unicode();
        if (c != u'\n' && c != u'\r' && c != 0x85 && c != 0x2028 && c != 0x2029)
            continue;
        out.append(runStart, p - runStart);
        out.append(QLatin1Char('\r'));
        if (c == u'\r' && p + 1 < end && p[1] == QLatin1Char('\n'))
            ++p;
        runStart = p + 1;
    }
    out.append(runStart, end - runStart);
    out.append(QLatin1Char('\r'));
    return out;
}

QChar ZTDelimitedText::guessDelimiter(const QString &normalized)
{
    qsizetype lineEnd = normalized.indexOf(QLatin1Char('\r'));
    const QStringView firstLine = QStringView(normalized).left(lineEnd < 0 ? normalized.size() : lineEnd);
    if (firstLine.contains(QLatin1Char('\t')))
        return QLatin1Char('\t');
    if (firstLine.contains(QLatin1Char(',')))
        return QLatin1Char(',');
    return QLatin1Char('\t');
}

QList<QStringList> ZTDelimitedText::split(const QString &normalized, QChar delimiter)
{
    enum State { FieldStart, Unquoted, QuoteInQuotes, InQuotes };
    QList<QStringList> lines;
    QStringList line;
    State state = FieldStart;
    const char16_t quote = u'"';
    const char16_t cr = u'\r';
    const char16_t delim = delimiter.unicode();
    // Every character that does not end a field belongs to it, quotes
    // included, so a field is always the run from its first character to the
    // delimiter or line end that closes it: it is cut out whole, not built up.
    const QChar *text = normalized.constData();
    const qsizetype size = normalized.size();
    qsizetype fieldStart = 0;
    for (qsizetype i = 0; i < size; ++i) {
        const char16_t c = text[i].unicode();
        if (state == InQuotes) {
            // Inside quotes everything is text, line ends and delimiters included.
            if (c == quote)
                state = QuoteInQuotes;
            continue;
        }
        if (c == cr || c == delim) {
            line.append(QString(text + fieldStart, i - fieldStart));
            fieldStart = i + 1;
            if (c == cr) {
                lines.append(line);
                line.clear();
            }
            state = FieldStart;
            continue;
        }
        if (c == quote)
            state = state == Unquoted ? Unquoted : InQuotes;
        else
            state = state == QuoteInQuotes ? InQuotes : Unquoted;
    }
    // A quote left open swallows the rest of the text into its field; what it
    // collected still counts as the last line's field.
    if (fieldStart < size || !line.isEmpty()) {
        line.append(QString(text + fieldStart, size - fieldStart));
        lines.append(line);
    }
    return lines;
}

QString ZTDelimitedText::cleanCell(const QString &field)
{
    if (field.isEmpty() || field == QLatin1String("\"\""))
        return {};
    if (field.size() >= 2 && field.startsWith(QLatin1Char('"')) && field.endsWith(QLatin1Char('"'))) {
        QString inner = field.mid(1, field.size() - 2);
        inner.replace(QLatin1String("\"\""), QLatin1String("\""));
        return inner;
    }
    return field;
}
