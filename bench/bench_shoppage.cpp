// How long reading one shop product page takes. Real pages run to several
// hundred kilobytes of markup and scripts around the few tags that matter;
// the reader walks them with literal searches and flattens the pieces.
#include "lookup/ZTFetcherMoviesAmazon.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>

namespace {

QString page(int paddingKilobytes)
{
    QString noise;
    const QString block = QStringLiteral(
        "<div class=\"a-row\"><span class=\"a-size-base\">Customers also bought &amp; viewed</span>"
        "<script>var x = {\"k\": [1,2,3], \"s\": \"<b>not this</b>\"};</script></div>\n");
    while (noise.size() < paddingKilobytes * 1024)
        noise += block;
    return QStringLiteral("<html><body>") + noise +
           QStringLiteral(
               "<h1 id=\"title\" class=\"a-size-large\"><span>Am\u00e9lie (2001) [Blu-ray]</span></h1>"
               "<div id=\"byline\"><span>Format</span><span>Blu-ray</span></div>"
               "<b class=\"priceLarge\">$14.99</b><h2>Product Details</h2><ul>"
               "<li><b>Actors:</b> Audrey Tautou, Mathieu Kassovitz</li>"
               "<li><b>Directors:</b> Jean-Pierre Jeunet</li><li><b>Rated:</b> R (Restricted)</li>"
               "<li><b>Run Time:</b> 122 minutes</li><li><b>Region:</b> Region A/1</li>"
               "<li><b>DVD Release Date:</b> March 15, 2011</li></ul><h2>Reviews</h2>") +
           noise + QStringLiteral("</body></html>");
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    ZTFetcherMoviesAmazonUS reader;
    reader.setRequestedFetchKeys(reader.fetchableKeys() << QStringLiteral("tracks"));
    for (int kilobytes : {50, 400, 1600}) {
        const QString text = page(kilobytes / 2);
        constexpr int rounds = 20;
        int keys = 0;
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < rounds; ++i)
            keys += int(reader.dictionaryForString(text, QStringLiteral("US")).size());
        const double ms = double(timer.nsecsElapsed()) / rounds / 1e6;
        std::printf("page of %d KB (%lld chars): %.2f ms per read, %d keys found\n", kilobytes,
                    static_cast<long long>(text.size()), ms, keys / rounds);
    }
    return 0;
}
