#pragma once

#include <QString>

// Turns HTML into the plain text a browser would show: tags go, named and
// numeric character references are resolved (with the browser's reading of
// 128-159 as Windows-1252), runs of white space collapse to one space, and
// block boundaries, <br> and table rows become line breaks; cells are joined
// with a tab. Script, style and title content is not shown. Unclosed tags at
// the end are dropped, a "<" that starts no tag is text.
//
// Written for fragments cut out of pages, so it never needs a whole document,
// never touches fonts or a GUI object, and is safe on any thread.
class ZTHTMLToText {
public:
    static QString convert(const QString &html);

private:
    explicit ZTHTMLToText(const QString &html) : m_html(html) {}
    QString run();

    void readTag();
    void readEntity();
    void skipRawText(const QString &name);
    void appendText(QChar c);
    void appendText(char32_t codePoint);
    void lineBreak();
    void endBlock();
    void separateCell();

    const QString &m_html;
    qsizetype m_at = 0;
    QString m_out;
    bool m_pendingSpace = false;
    int m_preformatted = 0;
};
