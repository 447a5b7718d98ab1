#pragma once

#include <QList>
#include <QString>

// Text in runs, some of them in italics: what the bibliography formats give,
// and what a rich text file or an HTML page can show.
class ZTStyledText {
public:
    struct Run {
        QString text;
        bool italic = false;
    };

    void append(const QString &text, bool italic = false);
    void append(const ZTStyledText &other);
    const QList<Run> &runs() const { return m_runs; }
    bool isEmpty() const { return m_runs.isEmpty(); }

    QString toPlainText() const;
    // A complete HTML page, one paragraph per line.
    QString toHtml() const;
    // A complete RTF document; characters outside ASCII as \u escapes.
    QByteArray toRtf() const;

private:
    QList<Run> m_runs;
};
