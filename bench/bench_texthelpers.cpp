// Prints how long the text helpers take on page-sized input, to show what the
// full HTML flattening costs against the quick tag strip it stands beside.
#include "base/ZTStringExtras.h"
#include "model/ZTCodeFormatter.h"

#include <QElapsedTimer>
#include <QTextStream>

#include <functional>

namespace {

QString samplePage()
{
    QString page =
        QStringLiteral("<html><head><title>Product</title><script>var a = '<b>';</script></head><body>");
    for (int i = 0; i < 200; ++i) {
        page += QStringLiteral("<div class=\"row\"><p>Caf&eacute; &amp; <b>Bar</b> &#x263A; &#8364;%1</p>"
                               "<ul><li>One</li><li>Two&nbsp;items</li></ul><br><table><tr><td>a</td>"
                               "<td>b</td></tr></table></div>\n")
                    .arg(i);
    }
    return page + QStringLiteral("</body></html>");
}

void measure(QTextStream &out, const char *name, qsizetype bytes, const std::function<void()> &work)
{
    // Warm up once, then run for at least half a second.
    work();
    QElapsedTimer timer;
    timer.start();
    int runs = 0;
    while (timer.elapsed() < 500 || runs < 3) {
        work();
        ++runs;
    }
    const double micros = double(timer.nsecsElapsed()) / 1000.0 / runs;
    out << qSetFieldWidth(28) << Qt::left << name << qSetFieldWidth(0)
        << QStringLiteral("%1 us/call").arg(micros, 10, 'f', 1);
    if (bytes > 0)
        out << QStringLiteral("  %1 MB/s").arg(double(bytes) / micros, 8, 'f', 1);
    out << "\n";
}

} // namespace

int main()
{
    QTextStream out(stdout);
    const QString page = samplePage();
    const qsizetype size = page.size() * 2;
    out << "page of " << page.size() << " UTF-16 units\n";
    measure(out, "flattenHTML", size, [&] { (void)ZTText::flattenHTML(page); });
    measure(out, "quickFlattenHTML", size, [&] { (void)ZTText::quickFlattenHTML(page); });
    measure(out, "decodeHTML", size, [&] { (void)ZTText::decodeHTML(page); });
    measure(out, "convertHTMLToRegularText", size, [&] { (void)ZTText::convertHTMLToRegularText(page); });
    measure(out, "rangeBetweenString x100", 0, [&] {
        for (int i = 0; i < 100; ++i)
            (void)ZTText::rangeBetweenString(page, QStringLiteral("<td>"), QStringLiteral("</td>"),
                                             ZTSearchOption::Backwards);
    });

    const QStringList codes = {QStringLiteral("ISBN 978-0-306-40615-7"), QStringLiteral("0-306-40615-2"),
                               QStringLiteral("9780306406157 51999"),
                               QStringLiteral("not a code at all, no")};
    measure(out, "isbnFromString x4", 0, [&] {
        for (const QString &code : codes)
            (void)ZTCodeFormatter::isbnFromString(code);
    });
    const QString longText(100000, QLatin1Char('5'));
    measure(out, "isbnFromString 100k digits", 0, [&] { (void)ZTCodeFormatter::isbnFromString(longText); });
    return 0;
}
