#include "ui/mainwindow/ZTDragData.h"

#include "library/ZTDocument.h"

#include <QHash>
#include <QMimeData>
#include <QRegularExpression>
#include <QUrl>

namespace {
const QString s_contentsKey = QStringLiteral("DRAG_CONTENTS_KEY");
const QString s_rootArray = QStringLiteral("RootArray");
const QString s_sourceFormat = QStringLiteral("application/x-zettary-source");

QHash<QString, const ZTDocument *> &documents()
{
    static QHash<QString, const ZTDocument *> s_documents;
    return s_documents;
}

QString quoted(const QString &text)
{
    QString escaped = text;
    escaped.replace(QLatin1Char('\\'), QStringLiteral("\\\\"))
        .replace(QLatin1Char('"'), QStringLiteral("\\\""));
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

QMimeData *make(const ZTDocument &document, const QString &source, const QString &contents,
                const QString &root)
{
    auto *data = new QMimeData;
    const QString plist = QStringLiteral("{\n    %1 = %2;\n    %3 = %4;\n}\n")
                              .arg(s_contentsKey, quoted(contents), s_rootArray, root);
    data->setData(ZTDragData::mimeType(), plist.toUtf8());
    data->setData(s_sourceFormat, (source + QLatin1Char(' ') + document.oid()).toUtf8());
    return data;
}

// Reads the quoted strings of `text` in order, undoing the escapes.
QStringList quotedStrings(const QString &text)
{
    static const QRegularExpression s_quoted(QStringLiteral(R"re("((?:[^"\\]|\\.)*)")re"));
    QStringList strings;
    auto it = s_quoted.globalMatch(text);
    while (it.hasNext()) {
        QString value = it.next().captured(1);
        value.replace(QStringLiteral("\\\""), QStringLiteral("\""))
            .replace(QStringLiteral("\\\\"), QStringLiteral("\\"));
        strings.append(value);
    }
    return strings;
}
} // namespace

QString ZTDragData::mimeType()
{
    return QStringLiteral("application/x-zettary-pbtype");
}

QMimeData *ZTDragData::itemsDrag(const ZTDocument &document, const QStringList &oids)
{
    QStringList quotedOids;
    for (const QString &oid : oids)
        quotedOids.append(quoted(oid));
    return make(document, QStringLiteral("items"), document.mediaDragType(),
                QLatin1Char('(') + quotedOids.join(QStringLiteral(", ")) + QLatin1Char(')'));
}

QMimeData *ZTDragData::listDrag(const ZTDocument &document, int row)
{
    return make(document, QStringLiteral("list"), ZTDragInfo::listType, quoted(QString::number(row)));
}

bool ZTDragData::read(const QMimeData *data, ZTDragInfo *drag)
{
    if (!data || !drag)
        return false;
    if (!data->hasFormat(mimeType())) {
        drag->source = ZTDragInfo::Source::OtherApplication;
        if (data->hasUrls() && !data->urls().isEmpty())
            drag->text = data->urls().constFirst().toString();
        else if (data->hasText())
            drag->text = data->text().trimmed();
        return !drag->text.isEmpty();
    }
    const QString plist = QString::fromUtf8(data->data(mimeType()));
    const QString sourceText = QString::fromUtf8(data->data(s_sourceFormat));
    const qsizetype space = sourceText.indexOf(QLatin1Char(' '));
    const QStringList source = {sourceText.left(space), sourceText.mid(space + 1)};
    const QStringList strings = quotedStrings(plist);
    if (strings.isEmpty() || space < 0)
        return false;
    drag->document = documents().value(source[1]);
    if (!drag->document)
        return false;
    drag->contentsKey = strings.first();
    if (source[0] == QLatin1String("list")) {
        bool ok = false;
        const int row = strings.value(1).toInt(&ok);
        if (!ok)
            return false;
        drag->source = ZTDragInfo::Source::ListTable;
        drag->rootArray = row;
    } else {
        drag->source = ZTDragInfo::Source::ItemTable;
        drag->rootArray = strings.mid(1);
    }
    return true;
}

void ZTDragData::registerDocument(const ZTDocument *document)
{
    documents().insert(document->oid(), document);
}

void ZTDragData::unregisterDocument(const ZTDocument *document)
{
    documents().remove(document->oid());
}
