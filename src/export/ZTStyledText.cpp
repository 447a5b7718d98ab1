#include "export/ZTStyledText.h"

void ZTStyledText::append(const QString &text, bool italic)
{
    if (text.isEmpty())
        return;
    if (!m_runs.isEmpty() && m_runs.last().italic == italic)
        m_runs.last().text += text;
    else
        m_runs.append({text, italic});
}

void ZTStyledText::append(const ZTStyledText &other)
{
    for (const Run &run : other.m_runs)
        append(run.text, run.italic);
}

QString ZTStyledText::toPlainText() const
{
    QString text;
    for (const Run &run : m_runs)
        text += run.text;
    return text;
}

QString ZTStyledText::toHtml() const
{
    QString body;
    for (const Run &run : m_runs) {
        QString escaped = run.text.toHtmlEscaped();
        escaped.replace(QLatin1Char('\n'), QLatin1String("</p>\n<p>"));
        body += run.italic ? QLatin1String("<i>") + escaped + QLatin1String("</i>") : escaped;
    }
    if (body.endsWith(QLatin1String("<p>")))
        body.chop(3);
    else
        body += QLatin1String("</p>\n");
    return QLatin1String("<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"></head><body>\n<p>") + body +
           QLatin1String("</body></html>\n");
}

QByteArray ZTStyledText::toRtf() const
{
    QByteArray rtf("{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0 Times New Roman;}}\\f0\\fs24\n");
    for (const Run &run : m_runs) {
        if (run.italic)
            rtf += "{\\i ";
        for (const QChar c : run.text) {
            const char16_t u = c.unicode();
            if (u == '\\' || u == '{' || u == '}') {
                rtf += '\\';
                rtf += char(u);
            } else if (u == '\n') {
                rtf += "\\par\n";
            } else if (u >= 0x20 && u < 0x80) {
                rtf += char(u);
            } else if (u >= 0x80) {
                // RTF counts in signed 16-bit units; "?" stands in for readers
                // that do not know \u.
                rtf += "\\u" + QByteArray::number(qint16(u)) + '?';
            }
        }
        if (run.italic)
            rtf += '}';
    }
    rtf += "}\n";
    return rtf;
}
